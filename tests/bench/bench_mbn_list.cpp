/* `rlk-mbn list` of 60 configurations (three pages) against a warm private
 * simulator, whole process from start to exit, beside /bin/true. */
#include "bench_common.h"

int main()
{
    sim_instance sim;
    if (!bench::start(sim)) return 1;
    sim.ctl_ok("pdc clear sw");
    sim.ctl_ok("pdc fill sw 60");
    std::vector<std::string> env = sim.env();
    env.push_back("RLK_LOGCAT_FILE=" + sim.dir() + "/bench-logcat.log");
    env.push_back("RLK_SYSLOG_FILE=" + sim.dir() + "/bench-syslog.log");
    return bench::process_against_true({RLK_MBN_BINARY, "list"}, env, 30);
}
