/* `rlk-mbn list` of 60 configurations (three pages) against a warm
 * private simulator, whole process from start to exit, beside /bin/true
 * started the same way (fork, exec, wait, output collected).  Medians over
 * several rounds, the two run in turn; run by hand, never as a timed test. */
#include <stdio.h>
#include <time.h>

#include <algorithm>
#include <string>
#include <vector>

#include "process_runner.h"
#include "sim_fixture.h"

int main()
{
    constexpr size_t k_rounds = 30;
    sim_instance sim;
    if (!sim.start()) {
        fprintf(stderr, "simulator did not start\n");
        return 1;
    }
    sim.ctl_ok("pdc clear sw");
    sim.ctl_ok("pdc fill sw 60");
    std::vector<std::string> env = sim.env();
    env.push_back("RLK_LOGCAT_FILE=" + sim.dir() + "/bench-logcat.log");
    env.push_back("RLK_SYSLOG_FILE=" + sim.dir() + "/bench-syslog.log");
    const std::vector<std::string> runs[2] = {{RLK_MBN_BINARY, "list"}, {"/bin/true"}};
    run_process(runs[0], env); /* warms the caches; not timed */
    std::vector<double> ms[2];
    for (size_t i = 0; i < k_rounds * 2; i++) {
        struct timespec a, b;
        clock_gettime(CLOCK_MONOTONIC, &a);
        run_result r = run_process(runs[i % 2], env);
        clock_gettime(CLOCK_MONOTONIC, &b);
        if (!exited_cleanly(r.status)) {
            fprintf(stderr, "a process failed\n");
            return 1;
        }
        ms[i % 2].push_back(double(b.tv_sec - a.tv_sec) * 1000.0 + double(b.tv_nsec - a.tv_nsec) / 1e6);
    }
    for (std::vector<double> &v : ms) std::sort(v.begin(), v.end());
    double m = ms[0][k_rounds / 2], t = ms[1][k_rounds / 2];
    printf("Process start to exit (%zu runs each)\n", k_rounds);
    printf("  rlk-mbn list (60 ids, 3 pages)  median %8.2f ms\n", m);
    printf("  /bin/true                       median %8.2f ms\n", t);
    printf("  ratio                           %8.2fx\n", m / t);
    return 0;
}
