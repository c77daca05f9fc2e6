#include "tolvek_group_entry.h"
#include "tolvek_test_groups.h"

/* Option 7: modem statistics decoded from diag log and event packets, and
 * the statistics debug information. */

/* Sub-command handlers, by sub-command number; none is registered yet. */
static const tolvek_subcmd_entry k_modem_stats_subcmds[] = {};

int64_t tolvek_test_modem_stats_do(int argc, char **argv)
{
    return tolvek_group_entry_run(TOLVEK_OPTION_MODEM_STATS, argc, argv, k_modem_stats_subcmds,
                                  sizeof(k_modem_stats_subcmds) / sizeof(k_modem_stats_subcmds[0]));
}
