/* Android system properties, kept by the simulator in its state directory
 * so that every process that uses the same simulator shares them. */
#include <string.h>

#include <string>

#include "cutils/properties.h"
#include "endpoint.h"

extern "C" int property_get(const char *key, char *value, const char *default_value)
{
    if (!key || !value) return 0;
    std::string answer;
    std::string got;
    if (rlk_host::modemd_control(std::string("getprop ") + key, &answer) && answer.compare(0, 2, "ok") == 0 &&
        answer.size() > 3) {
        got = answer.substr(3);
    }
    if (got.empty() && default_value) got = default_value;
    size_t n = got.size();
    if (n > PROPERTY_VALUE_MAX - 1) n = PROPERTY_VALUE_MAX - 1;
    memcpy(value, got.data(), n);
    value[n] = '\0';
    return static_cast<int>(n);
}

extern "C" int property_set(const char *key, const char *value)
{
    if (!key || !value) return -1;
    if (strlen(value) >= PROPERTY_VALUE_MAX) return -1;
    std::string answer;
    if (!rlk_host::modemd_control(std::string("setprop ") + key + " " + value, &answer)) return -1;
    return answer.compare(0, 2, "ok") == 0 ? 0 : -1;
}
