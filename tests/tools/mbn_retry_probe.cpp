/* Option 10 as rlk runs it, but with the PDC client's wait between
 * attempts to open shortened to RLK_TEST_PDC_RETRY_MS milliseconds per
 * second, so that a test sees all 20 attempts in a moment.  Only the tests
 * build this program; rlk itself always waits the full interval. */
#include <stdlib.h>
#include <unistd.h>

#include "pdc_utils.h"
#include "tolvek_test_groups.h"

namespace {

unsigned int g_ms_per_second = 1;

void short_sleep(unsigned int seconds) { usleep(seconds * g_ms_per_second * 1000u); }

}  // namespace

int main(int argc, char **argv)
{
    const char *ms = getenv("RLK_TEST_PDC_RETRY_MS");
    if (ms && *ms) g_ms_per_second = unsigned(atoi(ms));
    pdc_set_retry_sleep(short_sleep);
    tolvek_test_mbn_do(argc, argv);
    return 0;
}
