/* Bit-field unpacker and pack buffer shared by every diag log and event
 * parser.
 *
 * One process-wide unpack state (the g_pk_* globals below) holds the packet
 * in hand.  The dispatcher starts it for each packet; a parser then reads
 * fields in order, fills the pack buffer and turns it into a record.  Every
 * operation that can refuse returns false after printing its one message
 * line; the parser must then return at once without a record.  No operation
 * reports anything else to the dispatcher.
 *
 * How a parser uses it (all reads before any packing):
 *
 *   void modem_stats_parse_xxxx_diag_log_foo(modem_stats_data_id_e_type *data_id,
 *                                            modem_stats_single_data_common_type **record)
 *   {
 *       uint8_t version = 0;
 *       if (!modem_stats_data_unpk("version", &version)) return;
 *       if (version != 48) {
 *           modem_stats_version_not_support(version, __func__);
 *           return;
 *       }
 *       modem_stats_data_skip(2);                      // reserved bytes
 *       uint8_t num = 0;
 *       if (!modem_stats_data_unpk("num", &num)) return;
 *       if (!modem_stats_base_with_bit()) return;      // bytes -> bits
 *       uint8_t chan_type = 0;                         // sequential: skip 5, read 3
 *       if (!modem_stats_unpk_mid("chan_type", 5, 3, &chan_type)) return;
 *       uint16_t power = 0;                            // fixed record: offset from the
 *       if (!modem_stats_unpk_at("power", 14, 9, &power)) return;  // current bit position
 *       modem_stats_bit_advance(416);                  // next fixed-size record
 *       printf("version = %d, num = %d\n", version, num);
 *
 *       modem_stats_data_pk_begin();
 *       if (!modem_stats_data_pk("version", version, 1)) return;
 *       if (!modem_stats_data_pk("power", power, 2)) return;
 *       modem_stats_data_pk_finish(MODEM_STATS_DATA_ID_LTE_TX_POWER, data_id, record);
 *   }
 *
 * The fields of one fixed-size bit record may also be listed as rows
 * {name, bit offset, width} and read in order with
 * modem_stats_unpk_bit_rows(); the order of reads and messages is that of the
 * rows.
 *
 * Layout rules: values are little-endian and unaligned; bit fields count
 * from the least significant bit of the payload's first byte.  A bit field
 * always reads the 8-byte word at its first byte (named "<name>_tmp" in the
 * "not enough" message), so it needs 8 readable bytes there.
 *
 * Memory safety: while unpacking, g_pk_data_ptr addresses g_pk_data_size
 * bytes (the dispatchers pass a zero-filled scratch copy of
 * MODEM_STATS_UNPK_MAX_LEN bytes); a byte the state lets a parser read
 * outside that window reads as 0.  The pack buffer has room for one widest
 * value past its logical end, so a store at the last valid cursor never
 * writes outside it (the record is then refused for its length).
 *
 * Single-threaded: one packet at a time. */
#ifndef MODEM_STATS_UNPACK_H
#define MODEM_STATS_UNPACK_H

#include <stddef.h>
#include <stdint.h>

#include <type_traits>

#include "modem_stats_data_id.h"
#include "modem_stats_record.h"

/* Readable bytes of every payload, whatever its real length. */
constexpr int32_t MODEM_STATS_UNPK_MAX_LEN = 2000;
/* Logical size of the pack buffer and largest record. */
constexpr uint32_t MODEM_STATS_PK_BUF_LEN = 700;
/* Physical room past the logical end: one value of the widest kind. */
constexpr uint32_t MODEM_STATS_PK_BUF_SLACK = 8;
/* Width of the word a bit field is cut from. */
constexpr uint32_t MODEM_STATS_BIT_WORD_BITS = 64;
constexpr uint32_t MODEM_STATS_BIT_WORD_BYTES = 8;

/* ---- Process-wide unpack state ---------------------------------------- */

/* Log code or event id of the packet in hand ("id(0x%x)" in messages). */
extern uint32_t g_pk_data_id;
/* 1 after a start: selects the positioning limit (2000, else 0). */
extern uint8_t g_pk_data_valid;
/* Bytes that may still be read from the cursor. */
extern int32_t g_pk_data_left;
/* The payload while unpacking; the pack buffer while packing. */
extern const uint8_t *g_pk_data_ptr;
/* Byte base of the cursor: g_pk_bit_pos / 8 after a bit operation. */
extern int32_t g_pk_data_base;
/* Absolute bit position of the bit reader. */
extern uint32_t g_pk_bit_pos;
/* Byte cursor relative to g_pk_data_base, or write position when packing. */
extern uint32_t g_pk_data_cnt;
/* Packets refused for an unsupported version since the process started. */
extern uint64_t g_pk_version_not_support_num;
/* Bytes backing g_pk_data_ptr; reads outside [0, size) give zero bytes. */
extern int32_t g_pk_data_size;
/* The pack buffer (MODEM_STATS_PK_BUF_LEN usable bytes plus slack). */
extern uint8_t g_pk_buf[MODEM_STATS_PK_BUF_LEN + MODEM_STATS_PK_BUF_SLACK];

/* ---- Starting a packet -------------------------------------------------- */

/* Starts unpacking `payload` under `id`.  The payload must address
 * MODEM_STATS_UNPK_MAX_LEN bytes (or g_pk_data_size is lowered by the
 * caller).  A null payload prints
 * "MODEM_STATS_DATA_UNPK_START, payload is NULL, id(0x%x)" with the previous
 * id, leaves the state as it was and returns false: parse nothing. */
bool modem_stats_data_unpk_start(uint32_t id, const uint8_t *payload);

/* ---- Whole-byte reads --------------------------------------------------- */

/* Reads `width` (1, 2, 4 or 8) bytes at the cursor as a little-endian
 * unsigned value.  `suffix` is appended to `name` in messages ("" or
 * "_tmp").  Refusals: null pointer, or fewer than `width` bytes left. */
bool modem_stats_data_unpk_raw(const char *name, const char *suffix, uint32_t width, uint64_t *value);

/* Typed whole-byte read: the width is the size of *out. */
template <typename T>
inline bool modem_stats_data_unpk(const char *name, T *out)
{
    static_assert(std::is_integral<T>::value, "whole-byte fields are integers");
    static_assert(sizeof(T) == 1 || sizeof(T) == 2 || sizeof(T) == 4 || sizeof(T) == 8,
                  "whole-byte fields are 1, 2, 4 or 8 bytes");
    uint64_t v = 0;
    if (!modem_stats_data_unpk_raw(name, "", sizeof(T), &v)) return false;
    *out = static_cast<T>(v);
    return true;
}

/* Skips `n` reserved bytes: advances the cursor and lowers the bytes left,
 * without reading and without any check. */
void modem_stats_data_skip(int32_t n);

/* ---- Positioning and bits ---------------------------------------------- */

/* Moves from byte reading to bit reading: the bytes read since the last
 * base are added to the bit position; base = bit position / 8, cursor 0.
 * A negative bit position prints
 * "BASE_WITH_BIT, bit(%d) should >= 0, id(0x%x)" and refuses. */
bool modem_stats_base_with_bit(void);

/* Places the byte cursor at `pos` relative to the base; the bytes left
 * become the limit (2000 after a start, else 0) minus `pos`.  A position not
 * below the limit prints "UNPK_SET_POS, pos(%d) should be[0, %d), id(0x%x)"
 * and refuses. */
bool modem_stats_unpk_set_pos(int32_t pos);

/* Reads a bit field of `width` bits starting `skip` bits after the bit
 * position, into a destination of `dest_bits` (8, 16, 32 or 64) bits.  With
 * `advance` the bit position moves past the field (sequential reading);
 * without it the bit position stays (fields of one fixed-size record).
 * Refusals, in order: the position check, the 8-byte word read
 * ("<name>_tmp"), "UNPK_MID, low(%d) should be in [1, %d] ...",
 * "UNPK_MID, high(%d) should be in [1, %d] ...",
 * "UNPK_MID, low(%d) should <= high(%d) ...",
 * "UNPK_LOW, bit_num(%d) should be in [1, %d] ...". */
bool modem_stats_unpk_bits(const char *name, uint32_t skip, uint32_t width, uint32_t dest_bits, bool advance,
                           uint64_t *value);

/* Sequential bit field: skip `skip` bits, read `width` bits, advance. */
template <typename T>
inline bool modem_stats_unpk_mid(const char *name, uint32_t skip, uint32_t width, T *out)
{
    static_assert(std::is_integral<T>::value && (sizeof(T) == 1 || sizeof(T) == 2 || sizeof(T) == 4 ||
                                                 sizeof(T) == 8),
                  "bit-field destinations are 8, 16, 32 or 64 bits");
    uint64_t v = 0;
    if (!modem_stats_unpk_bits(name, skip, width, sizeof(T) * 8, true, &v)) return false;
    *out = static_cast<T>(v);
    return true;
}

/* Fixed-record bit field: `width` bits at `offset` bits from the bit
 * position, which stays where it is. */
template <typename T>
inline bool modem_stats_unpk_at(const char *name, uint32_t offset, uint32_t width, T *out)
{
    static_assert(std::is_integral<T>::value && (sizeof(T) == 1 || sizeof(T) == 2 || sizeof(T) == 4 ||
                                                 sizeof(T) == 8),
                  "bit-field destinations are 8, 16, 32 or 64 bits");
    uint64_t v = 0;
    if (!modem_stats_unpk_bits(name, offset, width, sizeof(T) * 8, false, &v)) return false;
    *out = static_cast<T>(v);
    return true;
}

/* One field of a fixed-size bit record. */
typedef struct {
    const char *name;   /* field name in messages */
    uint32_t offset;    /* bits from the record's first bit */
    uint32_t width;     /* bits to read */
    uint32_t dest_bits; /* destination width: 8, 16, 32 or 64 */
} modem_stats_bit_field_row;

/* True when a row's width fits its destination (for static_assert). */
constexpr bool modem_stats_bit_row_fits(const modem_stats_bit_field_row &row)
{
    return (row.dest_bits == 8 || row.dest_bits == 16 || row.dest_bits == 32 || row.dest_bits == 64) &&
           row.width >= 1 && row.width <= row.dest_bits;
}

/* Reads `count` rows in order from the current bit position (which stays),
 * storing row i's value in values[i]; stops at the first refusal. */
bool modem_stats_unpk_bit_rows(const modem_stats_bit_field_row *rows, size_t count, uint64_t *values);

/* Moves the bit position forward by `bits` (past a fixed-size record):
 * base = bit position / 8, cursor 0. */
void modem_stats_bit_advance(uint32_t bits);

/* Sets the bit position to a computed value: a negative one prints the
 * BASE_WITH_BIT message and refuses. */
bool modem_stats_bit_pos_set(int32_t bit);

/* ---- Version and validity checks --------------------------------------- */

/* Counts one packet refused for its version and prints
 * "VERSION_NOT_SUPPORT, version(%d), not_support_num(%lu), name(%s), id(0x%x)"
 * with the new count and the parser's name. */
void modem_stats_version_not_support(int32_t version, const char *parser);

/* Called with the packet's id and the refused version each time a version
 * is refused, after its line; null (the default) calls nothing.  Lets a
 * capture replay count refusals without reading the printed text. */
typedef void (*modem_stats_version_observer_fn)(uint32_t id, int32_t version);
void modem_stats_set_version_observer(modem_stats_version_observer_fn observer);

/* Prints "DATA_IS_NOT_VALID(%d), name(%s), id(0x%x)": the packet carries
 * nothing to record. */
void modem_stats_data_not_valid(int32_t value, const char *parser);

/* ---- Packing ------------------------------------------------------------ */

/* Starts packing: clears the pack buffer, points g_pk_data_ptr at it, cursor
 * 0.  The unpack state is given up. */
void modem_stats_data_pk_begin(void);

/* Appends `value` as `width` (1, 2, 4 or 8) little-endian bytes.  Refusals:
 * "MODEM_STATS_DATA_PK, g_pk_data_ptr is NULL, name: %s, id(0x%x)" and
 * "Cur(%d) reached max(%d), for %s, id(0x%x)" (cursor at 700 or beyond). */
bool modem_stats_data_pk(const char *name, uint64_t value, uint32_t width);

/* Stores `value` at the cursor without the checks (a leading run of fields
 * of a fixed layout) and advances the cursor. */
void modem_stats_data_pk_direct(uint64_t value, uint32_t width);

/* Makes the record `id` from the bytes packed so far: the record is stored
 * through `record`, the pack buffer copied into its data and `id` stored
 * through `data_id`.  False (nothing stored) when the length is refused or
 * the allocation fails. */
bool modem_stats_data_pk_finish(modem_stats_data_id_e_type id, modem_stats_data_id_e_type *data_id,
                                modem_stats_single_data_common_type **record);

#endif
