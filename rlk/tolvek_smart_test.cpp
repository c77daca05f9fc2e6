#include "tolvek_group_entry.h"
#include "tolvek_test_groups.h"

/* Option 11: modem restart, full dump, NV sync and debug-print switches. */

/* Sub-command handlers, by sub-command number; none is registered yet. */
static const tolvek_subcmd_entry k_smart_test_subcmds[] = {};

int tolvek_smart_test_do(int argc, char **argv)
{
    return tolvek_group_entry_run(TOLVEK_OPTION_SMART_TEST, argc, argv, k_smart_test_subcmds,
                                  sizeof(k_smart_test_subcmds) / sizeof(k_smart_test_subcmds[0]));
}
