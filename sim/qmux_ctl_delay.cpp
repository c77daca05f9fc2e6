#include "qmux_ctl_delay.h"

#include <stdlib.h>

namespace modemd {

std::string qmux_ctl_delay::control(const std::vector<std::string> &a)
{
    if (a.size() < 4 || a.size() > 5) return "error usage: qmux delay-ctl MSG MS [COUNT]";
    char *end = nullptr;
    unsigned long msg = strtoul(a[2].c_str(), &end, 0);
    if (*end || msg > 0xFFFF) return "error bad message id " + a[2];
    unsigned long ms = strtoul(a[3].c_str(), &end, 10);
    if (*end || ms > 60000) return "error bad delay " + a[3];
    unsigned long count = a.size() == 5 ? strtoul(a[4].c_str(), &end, 10) : 1;
    if (*end) return "error bad count " + a[4];
    msg_id_ = uint16_t(msg);
    ms_ = uint32_t(ms);
    count_ = ms ? unsigned(count) : 0;
    return "ok";
}

uint32_t qmux_ctl_delay::take(uint16_t msg_id)
{
    if (count_ == 0 || msg_id != msg_id_) return 0;
    count_--;
    return ms_;
}

}  // namespace modemd
