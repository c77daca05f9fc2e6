#include <stddef.h>

#include "tolvek_group_entry.h"
#include "tolvek_test_groups.h"

/* Option 8: one AT command over the AT channel; no sub-command number, the
 * command text follows the option. */

int tolvek_test_at_cmd_do(int argc, char **argv)
{
    /* The AT-command handler arrives with its group. */
    return tolvek_group_entry_run_direct(TOLVEK_OPTION_AT_CMD, argc, argv, NULL);
}
