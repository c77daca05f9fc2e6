/* Small helpers shared by the diag log parsers: the version check against a
 * list of accepted versions, sign extension of bit fields, bit-field row
 * reading by record, positioning and packing.  Lines are printed with
 * modem_stats_log_format.h. */
#ifndef MODEM_STATS_LOG_UTIL_H
#define MODEM_STATS_LOG_UTIL_H

#include <stddef.h>
#include <stdint.h>
#include <stdio.h>

#include "modem_stats_unpack.h"

/* Markers of an absent value: 8-bit fields and wider fields. */
constexpr uint32_t MODEM_STATS_ABSENT_U8 = 255;
constexpr uint32_t MODEM_STATS_ABSENT_U16 = 65535;

/* True when `version` is one of `accepted`.  Otherwise counts the packet as
 * refused and prints the VERSION_NOT_SUPPORT line naming `name`. */
bool modem_stats_log_version_check(uint32_t version, const uint32_t *accepted, size_t count, const char *name);

template <size_t N>
inline bool modem_stats_log_version_check(uint32_t version, const uint32_t (&accepted)[N], const char *name)
{
    return modem_stats_log_version_check(version, accepted, N, name);
}

/* Index of `version` in `accepted`, or `count` when absent. */
size_t modem_stats_log_version_index(uint32_t version, const uint32_t *accepted, size_t count);

/* The low `bits` bits of `raw` as a two's complement number. */
int32_t modem_stats_log_sign_extend(uint64_t raw, uint32_t bits);

/* Reads the rows of one fixed-size bit record at the current bit position
 * (which stays), in row order. */
template <size_t N>
inline bool modem_stats_log_read_rows(const modem_stats_bit_field_row (&rows)[N], uint64_t (&values)[N])
{
    return modem_stats_unpk_bit_rows(rows, N, values);
}

/* True when every row of a table fits its destination (for static_assert). */
template <size_t N>
constexpr bool modem_stats_log_rows_fit(const modem_stats_bit_field_row (&rows)[N])
{
    for (size_t i = 0; i < N; i++) {
        if (!modem_stats_bit_row_fits(rows[i])) return false;
    }
    return true;
}

/* True when every row of a table ends within a record of `record_bits`. */
template <size_t N>
constexpr bool modem_stats_log_rows_within(const modem_stats_bit_field_row (&rows)[N], uint32_t record_bits)
{
    for (size_t i = 0; i < N; i++) {
        if (rows[i].offset + rows[i].width > record_bits) return false;
    }
    return true;
}

/* Absolute byte offset of the byte cursor in the payload. */
inline uint32_t modem_stats_log_cursor(void)
{
    return static_cast<uint32_t>(static_cast<int64_t>(g_pk_data_base) + g_pk_data_cnt);
}

/* Places the bit reader at absolute byte `byte` of the payload, so that
 * whole bytes are read from there too.  A position beyond any int32 bit
 * count is refused with the BASE_WITH_BIT message. */
bool modem_stats_log_seek(uint32_t byte);

/* Skips `n` bytes forward at the byte cursor, never more than are left:
 * a length field larger than the rest of the payload leaves nothing to read,
 * so the next field reports that there is not enough. */
void modem_stats_log_skip_bounded(uint32_t n);

/* Packs values in order; stops at the first refusal.  Each entry is
 * {name, value, width}. */
typedef struct {
    const char *name;
    uint64_t value;
    uint32_t width;
} modem_stats_log_pk_field;

template <size_t N>
inline bool modem_stats_log_pk_fields(const modem_stats_log_pk_field (&fields)[N])
{
    for (size_t i = 0; i < N; i++) {
        if (!modem_stats_data_pk(fields[i].name, fields[i].value, fields[i].width)) return false;
    }
    return true;
}

/* Bits of a float as the value to pack (little-endian 32-bit float). */
uint32_t modem_stats_log_float_bits(float value);

#endif
