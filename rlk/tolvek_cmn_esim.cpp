#include "tolvek_cmn_esim.h"

/* The switch arrives with the UIM client; until then the sub-command fails. */
int tolvek_cmn_esim_test(int, char **)
{
    return -1;
}
