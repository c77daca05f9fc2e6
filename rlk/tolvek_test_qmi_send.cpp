#include <stddef.h>

#include "tolvek_group_entry.h"
#include "tolvek_test_groups.h"

/* Option 6: a raw request to the extension QMI service; no sub-command
 * number, the request code and bytes follow the option. */

int tolvek_test_qmi_send_data_do(int argc, char **argv)
{
    /* The raw-send handler arrives with its group. */
    return tolvek_group_entry_run_direct(TOLVEK_OPTION_QMI_SEND, argc, argv, NULL);
}
