/* Registered diag event parsers, one row per event id in ascending order.
 * The dispatcher releases every record an event parser makes. */
#include "modem_stats_dispatch.h"
#include "modem_stats_event_parsers.h"

namespace {

constexpr modem_stats_parser_row k_event_parsers[] = {
    modem_stats_parser_row_of(629, modem_stats_parse_0629_diag_event_cm_call_event_orig),
    modem_stats_parser_row_of(631, modem_stats_parse_0631_diag_event_cm_call_event_end),
    modem_stats_parser_row_of(1428, modem_stats_parse_1428_diag_event_ims_sip_session_start),
    modem_stats_parser_row_of(1429, modem_stats_parse_1429_diag_event_ims_sip_session_ringing),
    modem_stats_parser_row_of(1430, modem_stats_parse_1430_diag_event_ims_sip_session_established),
    modem_stats_parser_row_of(1431, modem_stats_parse_1431_diag_event_ims_sip_session_terminated),
    modem_stats_parser_row_of(1432, modem_stats_parse_1432_diag_event_ims_sip_session_cancel),
    modem_stats_parser_row_of(1433, modem_stats_parse_1433_diag_event_ims_sip_session_failure),
    modem_stats_parser_row_of(1606, modem_stats_parse_1606_diag_event_lte_rrc_state_change),
    modem_stats_parser_row_of(1632, modem_stats_parse_1632_diag_event_lte_emm_timer_expiry),
    modem_stats_parser_row_of(1995, modem_stats_parse_1995_diag_event_lte_rrc_radio_link_failure_stat),
    modem_stats_parser_row_of(2568, modem_stats_parse_2568_diag_event_lte_rrc_new_cell_ind_ext_earfcn),
    modem_stats_parser_row_of(2622, modem_stats_parse_2622_diag_event_mcs_trm_asdiv),
    modem_stats_parser_row_of(3184, modem_stats_parse_3184_diag_event_nr5g_rrc_new_cell_ind_v2ssb),
    modem_stats_parser_row_of(3215, modem_stats_parse_3215_diag_event_nr5g_emm_timer_expiry),
    modem_stats_parser_row_of(3243, modem_stats_parse_3243_diag_event_event_nr5g_rrc_scg_failure),
};
constexpr size_t k_event_parser_count = sizeof(k_event_parsers) / sizeof(k_event_parsers[0]);

constexpr bool all_released(const modem_stats_parser_row *rows, size_t count)
{
    for (size_t i = 0; i < count; i++) {
        if (!rows[i].release) return false;
    }
    return true;
}

static_assert(k_event_parser_count == 16, "sixteen event ids are understood");
static_assert(modem_stats_parser_rows_valid(k_event_parsers, k_event_parser_count),
              "event rows ascend by id, unique, one parser each");
static_assert(all_released(k_event_parsers, k_event_parser_count), "event records are always released");

}  // namespace

modem_stats_parser_table modem_stats_event_parser_table(void)
{
    return {k_event_parsers, k_event_parser_count};
}
