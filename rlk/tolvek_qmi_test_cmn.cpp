#include "tolvek_group_entry.h"
#include "tolvek_test_groups.h"

/* Option 5: the common group (raw diag commands, card status, hot-swap, SAR, eSIM). */

/* Sub-command handlers, by sub-command number; none is registered yet. */
static const tolvek_subcmd_entry k_cmn_subcmds[] = {};

int tolvek_test_cmn_do(int argc, char **argv)
{
    return tolvek_group_entry_run(TOLVEK_OPTION_CMN, argc, argv, k_cmn_subcmds,
                                  sizeof(k_cmn_subcmds) / sizeof(k_cmn_subcmds[0]));
}
