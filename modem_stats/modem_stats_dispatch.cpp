#include "modem_stats_dispatch.h"

#include <stdio.h>
#include <string.h>

#include <algorithm>

#include "modem_stats_unpack.h"

namespace {

/* The payload the parsers read: the caller's bytes, zero-filled up to the
 * readable size, so that reading past the real end never leaves it. */
uint8_t g_modem_stats_scratch[MODEM_STATS_UNPK_MAX_LEN];

const uint8_t *scratch_copy(const uint8_t *payload, int32_t length)
{
    if (!payload) return nullptr;
    size_t n = 0;
    if (length > 0) n = std::min<size_t>(static_cast<size_t>(length), sizeof(g_modem_stats_scratch));
    memcpy(g_modem_stats_scratch, payload, n);
    memset(g_modem_stats_scratch + n, 0, sizeof(g_modem_stats_scratch) - n);
    return g_modem_stats_scratch;
}

void call_parser(const modem_stats_parser_row &row, modem_stats_sub_id_e_type sub, modem_stats_data_id_e_type *data_id,
                 modem_stats_single_data_common_type **record)
{
    switch (row.kind) {
    case MODEM_STATS_PARSER_PLAIN:
        if (row.parse) row.parse(data_id, record);
        break;
    case MODEM_STATS_PARSER_SUB:
        if (row.parse_sub) row.parse_sub(sub, data_id, record);
        break;
    case MODEM_STATS_PARSER_SUB_ONLY:
        if (row.parse_sub_only) row.parse_sub_only(sub);
        break;
    case MODEM_STATS_PARSER_NONE:
        break;
    }
}

}  // namespace

void modem_stats_diag_dispatch(modem_stats_parser_table table, uint16_t code, int32_t length, uint8_t sub_id,
                               const uint8_t *payload)
{
    modem_stats_data_id_e_type data_id = MODEM_STATS_DATA_ID_NONE;
    modem_stats_single_data_common_type *record = nullptr;
    if (!modem_stats_data_unpk_start(code, scratch_copy(payload, length))) return;
    auto sub = static_cast<modem_stats_sub_id_e_type>(sub_id);
    const modem_stats_parser_row *row = modem_stats_parser_find(table, code);
    if (row) call_parser(*row, sub, &data_id, &record);
    if (!row || row->release) modem_stats_data_check_and_update_for_diag(sub, data_id, record);
}

const modem_stats_parser_row *modem_stats_parser_find(modem_stats_parser_table table, uint16_t code)
{
    const modem_stats_parser_row *end = table.rows + table.count;
    const modem_stats_parser_row *it = std::lower_bound(
        table.rows, end, code, [](const modem_stats_parser_row &row, uint16_t c) { return row.code < c; });
    return it != end && it->code == code ? it : nullptr;
}

void modem_stats_diag_process_log_ex(int32_t length, uint16_t log_code, uint8_t sub, const uint8_t *payload)
{
    printf("modem_stats_diag_process_log_ex: log_id 0x%x, length %d, sub_id = %d\n", log_code, length, sub);
    modem_stats_diag_dispatch(modem_stats_log_parser_table(), log_code, length, sub, payload);
}

void modem_stats_diag_process_event_ex(int32_t length, uint16_t event_id, uint8_t sub, const uint8_t *payload)
{
    printf("modem_stats_diag_process_event_ex: event_id %d, length %d, sub_id = %d\n", event_id, length, sub);
    modem_stats_diag_dispatch(modem_stats_event_parser_table(), event_id, length, sub, payload);
}
