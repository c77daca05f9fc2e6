#include "tolvek_group_entry.h"
#include "tolvek_test_groups.h"

/* Option 4: NV item and EFS file read, write and delete. */

/* Sub-command handlers, by sub-command number; none is registered yet. */
static const tolvek_subcmd_entry k_nvefs_subcmds[] = {};

int tolvek_test_nvefs_do(int argc, char **argv)
{
    return tolvek_group_entry_run(TOLVEK_OPTION_NVEFS, argc, argv, k_nvefs_subcmds,
                                  sizeof(k_nvefs_subcmds) / sizeof(k_nvefs_subcmds[0]));
}
