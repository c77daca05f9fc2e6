#include "tolvek_modem_stats_debug_info.h"
#include "tolvek_modem_stats_group.h"
#include "tolvek_test_groups.h"

/* Option 7: modem statistics decoded from diag log and event packets, and
 * the statistics debug information. */

/* Sub-command handlers, by type (the word after the option number). */
static const tolvek_modem_stats_type_entry k_modem_stats_subcmds[] = {
    {0, tolvek_test_modem_stats_log_or_event, "tolvek_test_modem_stats_log_or_event"},
    {1, tolvek_test_modem_stats_log_or_event, "tolvek_test_modem_stats_log_or_event"},
    {2, tolvek_test_modem_stats_get_debug_info, "tolvek_test_modem_stats_get_debug_info"},
};

int64_t tolvek_test_modem_stats_do(int argc, char **argv)
{
    return tolvek_modem_stats_group_run(argc, argv, k_modem_stats_subcmds,
                                        sizeof(k_modem_stats_subcmds) / sizeof(k_modem_stats_subcmds[0]));
}
