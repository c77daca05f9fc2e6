#include "modem_stats_log_util.h"

#include <stdint.h>
#include <string.h>

size_t modem_stats_log_version_index(uint32_t version, const uint32_t *accepted, size_t count)
{
    for (size_t i = 0; i < count; i++) {
        if (accepted[i] == version) return i;
    }
    return count;
}

bool modem_stats_log_version_check(uint32_t version, const uint32_t *accepted, size_t count, const char *name)
{
    if (modem_stats_log_version_index(version, accepted, count) < count) return true;
    modem_stats_version_not_support(static_cast<int32_t>(version), name);
    return false;
}

int32_t modem_stats_log_sign_extend(uint64_t raw, uint32_t bits)
{
    if (bits == 0 || bits > 32) return static_cast<int32_t>(raw);
    uint64_t v = raw & ((1ull << bits) - 1);
    uint64_t sign = 1ull << (bits - 1);
    int64_t wide = (v & sign) ? static_cast<int64_t>(v) - static_cast<int64_t>(1ull << bits) : static_cast<int64_t>(v);
    return static_cast<int32_t>(wide);
}

void modem_stats_log_skip_bounded(uint32_t n)
{
    int32_t left = g_pk_data_left > 0 ? g_pk_data_left : 0;
    int32_t step = n > static_cast<uint32_t>(left) ? left : static_cast<int32_t>(n);
    modem_stats_data_skip(step);
}

uint32_t modem_stats_log_float_bits(float value)
{
    uint32_t bits = 0;
    static_assert(sizeof(bits) == sizeof(value), "a packed float is 32 bits");
    memcpy(&bits, &value, sizeof(bits));
    return bits;
}

bool modem_stats_log_seek(uint32_t byte)
{
    int64_t bit = static_cast<int64_t>(byte) * 8;
    return modem_stats_bit_pos_set(bit > INT32_MAX ? -1 : static_cast<int32_t>(bit));
}
