/* Dispatch of diag log and event packets to their statistics parsers.
 *
 * Each dispatcher prints its header line, starts the unpack state on a
 * zero-filled scratch copy of the payload (at most MODEM_STATS_UNPK_MAX_LEN
 * bytes, as many as the length says), calls the parser registered for the
 * code and then releases the record the parser made (unless the row says the
 * parser keeps it).  Unknown codes run nothing; a null payload prints the
 * start message and runs nothing.
 *
 * Parsers are registered as one row each in a table sorted by code
 * (modem_stats_log_table.cpp, modem_stats_event_table.cpp):
 *
 *   modem_stats_parser_row_of(0xB16D, modem_stats_parse_b16d_diag_log_lte_tx_power),
 *   modem_stats_parser_row_of(0xB062, modem_stats_parse_b062_diag_log_lte_mac_rach_attempt),  // takes sub
 *   modem_stats_parser_row_keep(modem_stats_parser_row_of(0xB887, modem_stats_parse_b887_...)),
 *
 * The parser's signature picks the calling form. */
#ifndef MODEM_STATS_DISPATCH_H
#define MODEM_STATS_DISPATCH_H

#include <stddef.h>
#include <stdint.h>

#include "modem_stats_data_id.h"
#include "modem_stats_record.h"

/* A parser that reports its record through the dispatcher's data id and
 * record pointer. */
typedef void (*modem_stats_parse_fn)(modem_stats_data_id_e_type *data_id,
                                     modem_stats_single_data_common_type **record);
/* The same, taking the subscription first. */
typedef void (*modem_stats_parse_sub_fn)(modem_stats_sub_id_e_type sub, modem_stats_data_id_e_type *data_id,
                                         modem_stats_single_data_common_type **record);
/* A parser whose only argument is the subscription; it keeps or releases
 * its records itself. */
typedef void (*modem_stats_parse_sub_only_fn)(modem_stats_sub_id_e_type sub);

/* Calling form of a registered parser. */
typedef enum : uint8_t {
    MODEM_STATS_PARSER_NONE = 0,     /* no parser (table end marker) */
    MODEM_STATS_PARSER_PLAIN = 1,    /* (data_id, record) */
    MODEM_STATS_PARSER_SUB = 2,      /* (sub, data_id, record) */
    MODEM_STATS_PARSER_SUB_ONLY = 3, /* (sub) */
} modem_stats_parser_kind;

/* One registered parser: `kind` says which one function pointer is set. */
typedef struct {
    uint16_t code;                                /* log code or event id */
    modem_stats_parser_kind kind;                 /* calling form */
    modem_stats_parse_fn parse;                   /* (data_id, record) */
    modem_stats_parse_sub_fn parse_sub;           /* (sub, data_id, record) */
    modem_stats_parse_sub_only_fn parse_sub_only; /* (sub) */
    bool release;                                 /* dispatcher releases the record afterwards */
} modem_stats_parser_row;

constexpr modem_stats_parser_row modem_stats_parser_row_of(uint16_t code, modem_stats_parse_fn fn)
{
    return {code, MODEM_STATS_PARSER_PLAIN, fn, nullptr, nullptr, true};
}
constexpr modem_stats_parser_row modem_stats_parser_row_of(uint16_t code, modem_stats_parse_sub_fn fn)
{
    return {code, MODEM_STATS_PARSER_SUB, nullptr, fn, nullptr, true};
}
/* A parser of the subscription alone keeps or releases its own records. */
constexpr modem_stats_parser_row modem_stats_parser_row_of(uint16_t code, modem_stats_parse_sub_only_fn fn)
{
    return {code, MODEM_STATS_PARSER_SUB_ONLY, nullptr, nullptr, fn, false};
}
/* The same row, but the record stays with the parser. */
constexpr modem_stats_parser_row modem_stats_parser_row_keep(modem_stats_parser_row row)
{
    row.release = false;
    return row;
}

/* True when rows[0..count) are in strictly ascending code order (sorted and
 * unique) and each has a parser.  (Only the kinds are compared: function
 * addresses are not constant expressions in every build.) */
constexpr bool modem_stats_parser_rows_valid(const modem_stats_parser_row *rows, size_t count)
{
    for (size_t i = 0; i < count; i++) {
        if (rows[i].kind == MODEM_STATS_PARSER_NONE) return false;
        if (i > 0 && rows[i - 1].code >= rows[i].code) return false;
    }
    return true;
}

/* A registered table: `count` rows sorted by code. */
typedef struct {
    const modem_stats_parser_row *rows;
    size_t count;
} modem_stats_parser_table;

/* The registered log and event parsers. */
modem_stats_parser_table modem_stats_log_parser_table(void);
modem_stats_parser_table modem_stats_event_parser_table(void);

/* The row registered for `code`, or null. */
const modem_stats_parser_row *modem_stats_parser_find(modem_stats_parser_table table, uint16_t code);

/* Steps shared by both dispatchers, after their header line: start the
 * unpack state on the scratch copy, call the row of `code` in `table` (if
 * any) and release the record unless the row keeps it. */
void modem_stats_diag_dispatch(modem_stats_parser_table table, uint16_t code, int32_t length, uint8_t sub,
                               const uint8_t *payload);

/* Parses one diag log packet's payload of `length` bytes. */
void modem_stats_diag_process_log_ex(int32_t length, uint16_t log_code, uint8_t sub, const uint8_t *payload);
/* Parses one diag event's payload of `length` bytes. */
void modem_stats_diag_process_event_ex(int32_t length, uint16_t event_id, uint8_t sub, const uint8_t *payload);

#endif
