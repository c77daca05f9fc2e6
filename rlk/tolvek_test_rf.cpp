#include "tolvek_group_entry.h"
#include "tolvek_test_groups.h"

/* Option 3: GPIO and RF transmit-antenna tests. */

/* Sub-command handlers, by sub-command number; none is registered yet. */
static const tolvek_subcmd_entry k_rf_subcmds[] = {};

int tolvek_test_rf_do(int argc, char **argv)
{
    return tolvek_group_entry_run(TOLVEK_OPTION_RF, argc, argv, k_rf_subcmds,
                                  sizeof(k_rf_subcmds) / sizeof(k_rf_subcmds[0]));
}
