#include "tolvek_group_entry.h"
#include "tolvek_test_groups.h"

/* Option 10: MBN configurations through the PDC service. */

/* Sub-command handlers, by sub-command number; none is registered yet. */
static const tolvek_subcmd_entry k_mbn_subcmds[] = {};

int tolvek_test_mbn_do(int argc, char **argv)
{
    return tolvek_group_entry_run(TOLVEK_OPTION_MBN, argc, argv, k_mbn_subcmds,
                                  sizeof(k_mbn_subcmds) / sizeof(k_mbn_subcmds[0]));
}
