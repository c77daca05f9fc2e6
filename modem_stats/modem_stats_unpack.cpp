#include "modem_stats_unpack.h"

#include <stdio.h>
#include <string.h>

uint32_t g_pk_data_id = 0;
uint8_t g_pk_data_valid = 0;
int32_t g_pk_data_left = 0;
const uint8_t *g_pk_data_ptr = nullptr;
int32_t g_pk_data_base = 0;
uint32_t g_pk_bit_pos = 0;
uint32_t g_pk_data_cnt = 0;
uint64_t g_pk_version_not_support_num = 0;
int32_t g_pk_data_size = 0;
uint8_t g_pk_buf[MODEM_STATS_PK_BUF_LEN + MODEM_STATS_PK_BUF_SLACK];

static_assert(MODEM_STATS_PK_BUF_LEN == MODEM_STATS_RECORD_MAX_LEN, "a full pack buffer is one record");
static_assert(MODEM_STATS_PK_BUF_SLACK >= sizeof(uint64_t), "slack holds the widest value");

namespace {

modem_stats_version_observer_fn g_version_observer = nullptr;

/* Positioning limit: 2000 after a start, 0 before the first one. */
int32_t unpk_pos_limit(void)
{
    return g_pk_data_valid ? MODEM_STATS_UNPK_MAX_LEN : 0;
}

/* Little-endian value of `width` bytes at absolute offset `at` of the
 * current data; bytes outside the backing window read as 0. */
uint64_t read_le(int64_t at, uint32_t width)
{
    uint64_t v = 0;
#if defined(__BYTE_ORDER__) && __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__
    /* Wholly inside the window (the usual case): one copy. */
    if (at >= 0 && width <= sizeof(v) && at + width <= g_pk_data_size) {
        memcpy(&v, g_pk_data_ptr + at, width);
        return v;
    }
#endif
    for (uint32_t i = 0; i < width; i++) {
        int64_t idx = at + i;
        if (idx >= 0 && idx < g_pk_data_size) v |= static_cast<uint64_t>(g_pk_data_ptr[idx]) << (8 * i);
    }
    return v;
}

/* Moves the bit reader to `bit`: base at its byte, cursor 0. */
void bit_pos_commit(uint32_t bit)
{
    g_pk_bit_pos = bit;
    g_pk_data_base = static_cast<int32_t>(g_pk_bit_pos / 8);
    g_pk_data_cnt = 0;
}

}  // namespace

bool modem_stats_data_unpk_start(uint32_t id, const uint8_t *payload)
{
    if (!payload) {
        printf("MODEM_STATS_DATA_UNPK_START, payload is NULL, id(0x%x)\n", g_pk_data_id);
        return false;
    }
    g_pk_data_id = id;
    g_pk_data_valid = 1;
    g_pk_data_left = MODEM_STATS_UNPK_MAX_LEN;
    g_pk_data_base = 0;
    g_pk_data_ptr = payload;
    g_pk_data_size = MODEM_STATS_UNPK_MAX_LEN;
    g_pk_bit_pos = 0;
    g_pk_data_cnt = 0;
    return true;
}

bool modem_stats_data_unpk_raw(const char *name, const char *suffix, uint32_t width, uint64_t *value)
{
    if (!g_pk_data_ptr) {
        printf("MODEM_STATS_DATA_UNPK, g_pk_data_ptr is NULL, name: %s%s, id(0x%x)\n", name, suffix, g_pk_data_id);
        return false;
    }
    if (g_pk_data_left < static_cast<int64_t>(width)) {
        printf("g_pk_data_left(%d) is not enough for %s%s, id(0x%x)\n", g_pk_data_left, name, suffix,
               g_pk_data_id);
        return false;
    }
    *value = read_le(static_cast<int64_t>(g_pk_data_base) + g_pk_data_cnt, width);
    g_pk_data_cnt += width;
    g_pk_data_left -= static_cast<int32_t>(width);
    return true;
}

void modem_stats_data_skip(int32_t n)
{
    g_pk_data_cnt += static_cast<uint32_t>(n);
    g_pk_data_left -= n;
}

bool modem_stats_base_with_bit(void)
{
    uint32_t bit = g_pk_bit_pos + 8u * g_pk_data_cnt;
    if (static_cast<int32_t>(bit) < 0) {
        printf("BASE_WITH_BIT, bit(%d) should >= 0, id(0x%x)\n", static_cast<int32_t>(bit), g_pk_data_id);
        return false;
    }
    bit_pos_commit(bit);
    return true;
}

bool modem_stats_bit_pos_set(int32_t bit)
{
    if (bit < 0) {
        printf("BASE_WITH_BIT, bit(%d) should >= 0, id(0x%x)\n", bit, g_pk_data_id);
        return false;
    }
    bit_pos_commit(static_cast<uint32_t>(bit));
    return true;
}

void modem_stats_bit_advance(uint32_t bits)
{
    bit_pos_commit(g_pk_bit_pos + bits);
}

bool modem_stats_unpk_set_pos(int32_t pos)
{
    int32_t limit = unpk_pos_limit();
    if (pos >= limit) {
        printf("UNPK_SET_POS, pos(%d) should be[0, %d), id(0x%x)\n", pos, limit, g_pk_data_id);
        return false;
    }
    g_pk_data_cnt = static_cast<uint32_t>(pos);
    /* A negative position passes the check; the bytes left are then kept in
     * range instead of overflowing. */
    int64_t left = static_cast<int64_t>(limit) - pos;
    g_pk_data_left = left > INT32_MAX ? INT32_MAX : static_cast<int32_t>(left);
    return true;
}

bool modem_stats_unpk_bits(const char *name, uint32_t skip, uint32_t width, uint32_t dest_bits, bool advance,
                           uint64_t *value)
{
    if (dest_bits > MODEM_STATS_BIT_WORD_BITS) dest_bits = MODEM_STATS_BIT_WORD_BITS;
    uint32_t first = g_pk_bit_pos + skip;
    if (!modem_stats_unpk_set_pos(static_cast<int32_t>(first / 8) - g_pk_data_base)) return false;
    /* 1-based bit numbers within the 64-bit word read at the first byte. */
    int64_t low = first % 8 + 1;
    int64_t high = low + width - 1;
    uint64_t word = 0;
    if (!modem_stats_data_unpk_raw(name, "_tmp", MODEM_STATS_BIT_WORD_BYTES, &word)) return false;
    const int max_bits = static_cast<int>(MODEM_STATS_BIT_WORD_BITS);
    if (low < 1 || low > max_bits) {
        printf("UNPK_MID, low(%d) should be in [1, %d] for %s, id(0x%x)\n", static_cast<int>(low), max_bits, name,
               g_pk_data_id);
        return false;
    }
    if (high < 1 || high > max_bits) {
        printf("UNPK_MID, high(%d) should be in [1, %d] for %s, id(0x%x)\n", static_cast<int>(high), max_bits,
               name, g_pk_data_id);
        return false;
    }
    if (low > high) {
        printf("UNPK_MID, low(%d) should <= high(%d) for %s, id(0x%x)\n", static_cast<int>(low),
               static_cast<int>(high), name, g_pk_data_id);
        return false;
    }
    int64_t bit_num = high - low + 1;
    if (bit_num < 1 || bit_num > dest_bits) {
        printf("UNPK_LOW, bit_num(%d) should be in [1, %d] for %s, id(0x%x)\n", static_cast<int>(bit_num),
               static_cast<int>(dest_bits), name, g_pk_data_id);
        return false;
    }
    uint64_t ones = dest_bits >= 64 ? ~0ull : (1ull << dest_bits) - 1;
    *value = (word >> (low - 1)) & (ones >> (dest_bits - bit_num));
    if (advance) bit_pos_commit(first + width);
    return true;
}

bool modem_stats_unpk_bit_rows(const modem_stats_bit_field_row *rows, size_t count, uint64_t *values)
{
    for (size_t i = 0; i < count; i++) {
        if (!modem_stats_unpk_bits(rows[i].name, rows[i].offset, rows[i].width, rows[i].dest_bits, false,
                                   &values[i]))
            return false;
    }
    return true;
}

void modem_stats_version_not_support(int32_t version, const char *parser)
{
    g_pk_version_not_support_num++;
    printf("VERSION_NOT_SUPPORT, version(%d), not_support_num(%lu), name(%s), id(0x%x)\n", version,
           static_cast<unsigned long>(g_pk_version_not_support_num), parser, g_pk_data_id);
    if (g_version_observer) g_version_observer(g_pk_data_id, version);
}

void modem_stats_set_version_observer(modem_stats_version_observer_fn observer)
{
    g_version_observer = observer;
}

void modem_stats_data_not_valid(int32_t value, const char *parser)
{
    printf("DATA_IS_NOT_VALID(%d), name(%s), id(0x%x)\n", value, parser, g_pk_data_id);
}

void modem_stats_data_pk_begin(void)
{
    memset(g_pk_buf, 0, sizeof(g_pk_buf));
    g_pk_data_ptr = g_pk_buf;
    g_pk_data_size = static_cast<int32_t>(MODEM_STATS_PK_BUF_LEN);
    g_pk_data_cnt = 0;
}

void modem_stats_data_pk_direct(uint64_t value, uint32_t width)
{
    /* Bytes beyond the value's eighth are zero; nothing is written past the
     * buffer's slack. */
    for (uint32_t i = 0; i < width && i < sizeof(value) && g_pk_data_cnt + i < sizeof(g_pk_buf); i++)
        g_pk_buf[g_pk_data_cnt + i] = static_cast<uint8_t>(value >> (8 * i));
    g_pk_data_cnt += width;
}

bool modem_stats_data_pk(const char *name, uint64_t value, uint32_t width)
{
    if (!g_pk_data_ptr) {
        printf("MODEM_STATS_DATA_PK, g_pk_data_ptr is NULL, name: %s, id(0x%x)\n", name, g_pk_data_id);
        return false;
    }
    if (g_pk_data_cnt >= MODEM_STATS_PK_BUF_LEN) {
        printf("Cur(%d) reached max(%d), for %s, id(0x%x)\n", static_cast<int>(g_pk_data_cnt),
               static_cast<int>(MODEM_STATS_PK_BUF_LEN), name, g_pk_data_id);
        return false;
    }
    modem_stats_data_pk_direct(value, width);
    return true;
}

bool modem_stats_data_pk_finish(modem_stats_data_id_e_type id, modem_stats_data_id_e_type *data_id,
                                modem_stats_single_data_common_type **record)
{
    modem_stats_single_data_common_type *made = nullptr;
    if (!modem_stats_new_single_ex(id, g_pk_data_cnt, 0, &made)) return false;
    memcpy(made->data, g_pk_buf, made->data_len);
    if (record) {
        *record = made;
    } else {
        /* Nobody to hand it to: release it as the dispatcher would. */
        modem_stats_data_check_and_update_for_diag(MODEM_STATS_SUB_ID_0, id, made);
    }
    if (data_id) *data_id = id;
    return true;
}
