#include "ext_stats_debug.h"

#include <string.h>

namespace modemd {
namespace {

constexpr uint32_t k_cmd_stats_debug = 20;
constexpr int64_t k_stats_debug_version = 1;
constexpr size_t k_payload_head = 8; /* command word, result */

struct stats_row {
    const char *counter;
    uint8_t width;
    int64_t initial;
};

/* The blocks in their fixed order; widths as the tool reads them. */
constexpr stats_row k_stats_debug_rows[] = {
    {"stats.version", 1, k_stats_debug_version},
    /* main info */
    {"stats.main.feature_enable_status", 1, 1},
    {"stats.main.version_not_support_num", 8, 0},
    {"stats.main.cmd_ok_count", 8, 0},
    {"stats.main.cmd_fail_count", 8, 0},
    /* diag info */
    {"stats.diag.init_state", 1, 1},
    {"stats.diag.listener_event_num", 4, 16},
    {"stats.diag.listener_event_state", 1, 1},
    {"stats.diag.listener_event_call_num", 4, 0},
    {"stats.diag.listener_event_parse_num", 4, 0},
    {"stats.diag.listener_log_num", 4, 34},
    {"stats.diag.listener_log_state", 1, 1},
    {"stats.diag.listener_log_call_num", 8, 0},
    {"stats.diag.listener_log_parse_num", 8, 0},
    {"stats.diag.poll_update_call_num", 4, 0},
    {"stats.diag.poll_update_parse_num", 4, 0},
    /* call-manager info */
    {"stats.cm.init_state", 1, 1},
    {"stats.cm.listener_state", 1, 1},
    {"stats.cm.listener_call_event_call_num", 4, 0},
    {"stats.cm.listener_call_event_parse_num", 4, 0},
    {"stats.cm.listener_subs_event_call_num", 4, 0},
    {"stats.cm.listener_subs_event_parse_num", 4, 0},
    {"stats.cm.listener_ss_event_call_num", 4, 0},
    {"stats.cm.listener_ss_event_parse_num", 4, 0},
    {"stats.cm.listener_stats_event_call_num", 4, 0},
    {"stats.cm.listener_stats_event_parse_num", 4, 0},
    {"stats.cm.poll_update_rf_call_num", 4, 0},
    {"stats.cm.poll_update_rf_parse_num", 4, 0},
    {"stats.cm.poll_update_lte_call_num", 4, 0},
    {"stats.cm.poll_update_lte_parse_num", 4, 0},
    {"stats.cm.poll_update_nr5g_call_num", 4, 0},
    {"stats.cm.poll_update_nr5g_parse_num", 4, 0},
    /* UIM info */
    {"stats.uim.init_state", 1, 1},
    {"stats.uim.listener_state", 1, 1},
    {"stats.uim.listener_event_call_num", 4, 0},
    {"stats.uim.listener_event_parse_num", 4, 0},
};

constexpr size_t rows_bytes()
{
    size_t n = 0;
    for (const stats_row &r : k_stats_debug_rows) n += r.width;
    return n;
}
static_assert(rows_bytes() == 1 + 25 + 43 + 58 + 10, "the five blocks make 137 bytes");
static_assert(k_payload_head + rows_bytes() <= TOLVEK_EXTEND_DATA_MAX, "the counters fit one answer");

int64_t &counter(daemon &d, const stats_row &row)
{
    auto it = d.counters().find(row.counter);
    if (it == d.counters().end()) it = d.counters().emplace(row.counter, row.initial).first;
    return it->second;
}

void put_le(uint8_t *p, uint64_t v, uint8_t width)
{
    for (uint8_t i = 0; i < width; i++) p[i] = uint8_t(v >> (8 * i));
}

}  // namespace

const char *const k_stats_counter_cmd_ok = "stats.main.cmd_ok_count";
const char *const k_stats_counter_log_records = "stats.diag.listener_log_call_num";
const char *const k_stats_counter_event_records = "stats.diag.listener_event_call_num";

void ext_stats_debug_info(qmi_call &call, const tolvek_extend_msg &, tolvek_extend_msg &resp)
{
    memset(resp.data, 0, sizeof(resp.data));
    put_le(resp.data, k_cmd_stats_debug, 4);
    size_t pos = k_payload_head;
    for (const stats_row &row : k_stats_debug_rows) {
        put_le(resp.data + pos, uint64_t(counter(call.d, row)), row.width);
        pos += row.width;
    }
    /* This answer is a command the framework served. */
    call.d.counters()[k_stats_counter_cmd_ok]++;
    resp.msg_code = 0;
    resp.data_len = uint32_t(pos);
    resp.data_valid = 1;
}

}  // namespace modemd
