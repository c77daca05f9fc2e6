/* One `rlk 9 0 0` process from start to exit against a warm private
 * simulator, beside /bin/true. */
#include "bench_common.h"

int main()
{
    sim_instance sim;
    if (!bench::start(sim)) return 1;
    return bench::process_against_true({RLK_BINARY, "9", "0", "0"}, sim.env(), 40,
                                       "ASDIV DATA: earfcn: ", " (goal: within 5x)");
}
