/* `rlk-mbn list` of 60 configurations (three pages) against a warm
 * private simulator, whole process from start to exit, beside /bin/true
 * started the same way (fork, exec, wait, output collected).  Medians over
 * several rounds; run by hand, never as a timed test. */
#include <stdio.h>
#include <time.h>

#include <algorithm>
#include <string>
#include <vector>

#include "process_runner.h"
#include "sim_fixture.h"

namespace {

constexpr int k_rounds = 30;

double median(std::vector<double> v)
{
    std::sort(v.begin(), v.end());
    return v[v.size() / 2];
}

double process_ms(const std::vector<std::string> &argv, const std::vector<std::string> &env)
{
    struct timespec a, b;
    clock_gettime(CLOCK_MONOTONIC, &a);
    run_result r = run_process(argv, env);
    clock_gettime(CLOCK_MONOTONIC, &b);
    double spent = double(b.tv_sec - a.tv_sec) * 1000.0 + double(b.tv_nsec - a.tv_nsec) / 1e6;
    return exited_cleanly(r.status) ? spent : -1;
}

}  // namespace

int main()
{
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
    const std::vector<std::string> list = {RLK_MBN_BINARY, "list"};
    process_ms(list, env); /* warms the caches; not timed */
    std::vector<double> mbn, truth;
    for (int i = 0; i < k_rounds; i++) {
        mbn.push_back(process_ms(list, env));
        truth.push_back(process_ms({"/bin/true"}, env));
    }
    if (*std::min_element(mbn.begin(), mbn.end()) < 0 || *std::min_element(truth.begin(), truth.end()) < 0) {
        fprintf(stderr, "a process failed\n");
        return 1;
    }
    double m = median(mbn), t = median(truth);
    printf("Process start to exit (%d runs each)\n", k_rounds);
    printf("  rlk-mbn list (60 ids, 3 pages)  median %8.2f ms\n", m);
    printf("  /bin/true                       median %8.2f ms\n", t);
    printf("  ratio                           %8.2fx\n", m / t);
    return 0;
}
