/* Runs the eSIM switch like the common group does for `rlk 5 10 ...`:
 *
 *   esim_probe 5 10 <esim_on> <debug_on>
 *
 * and prints the group's error note for a non-zero result. */
#include <stdio.h>

#include "tolvek_cmn_esim.h"
#include "tolvek_log.h"

int main(int argc, char **argv)
{
    int rc = tolvek_cmn_esim_test(argc, argv);
    if (rc != 0 && !g_tolvek_console_quiet) printf("\nnote: Error happen! error_code(%d)\n", rc);
    return 0;
}
