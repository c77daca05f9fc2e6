#include "tolvek_group_entry.h"
#include "tolvek_test_groups.h"

/* Option 9: modem statistics over the vendor statistics QMI service. */

/* Sub-command handlers, by sub-command number; none is registered yet. */
static const tolvek_subcmd_entry k_qmi_modem_stats_subcmds[] = {};

int tolvek_test_qmi_modem_stats_do(int argc, char **argv)
{
    return tolvek_group_entry_run(TOLVEK_OPTION_QMI_MODEM_STATS, argc, argv, k_qmi_modem_stats_subcmds,
                                  sizeof(k_qmi_modem_stats_subcmds) / sizeof(k_qmi_modem_stats_subcmds[0]));
}
