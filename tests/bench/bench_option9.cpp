/* One `rlk 9 0 0` process from start to exit against a warm private
 * simulator, beside /bin/true started the same way (fork, exec, wait,
 * output collected): median and maximum over several rounds.  Run by
 * hand, never as a timed test. */
#include <stdio.h>
#include <time.h>

#include <algorithm>
#include <string>
#include <vector>

#include "process_runner.h"
#include "sim_fixture.h"

namespace {

constexpr int k_rounds = 40;

double now_ms()
{
    struct timespec ts;
    clock_gettime(CLOCK_MONOTONIC, &ts);
    return double(ts.tv_sec) * 1e3 + double(ts.tv_nsec) / 1e6;
}

double median(std::vector<double> v)
{
    std::sort(v.begin(), v.end());
    return v[v.size() / 2];
}

/* Wall time of one process; -1 when it failed or printed no item. */
double process_ms(const std::vector<std::string> &argv, const sim_instance &sim, const char *expect)
{
    double start = now_ms();
    run_result r = run_process(argv, sim.env());
    double spent = now_ms() - start;
    if (!exited_cleanly(r.status) || (expect && r.out.find(expect) == std::string::npos)) return -1;
    return spent;
}

}  // namespace

int main()
{
    sim_instance sim;
    if (!sim.start()) {
        fprintf(stderr, "simulator did not start\n");
        return 1;
    }
    const std::vector<std::string> rlk_argv = {RLK_BINARY, "9", "0", "0"};
    const char *line = "ASDIV DATA: earfcn: ";
    process_ms(rlk_argv, sim, line); /* warms the simulator and the caches; not timed */
    std::vector<double> rlk, truth;
    for (int i = 0; i < k_rounds; i++) {
        rlk.push_back(process_ms(rlk_argv, sim, line));
        truth.push_back(process_ms({"/bin/true"}, sim, nullptr));
    }
    if (*std::min_element(rlk.begin(), rlk.end()) < 0 || *std::min_element(truth.begin(), truth.end()) < 0) {
        fprintf(stderr, "a process failed\n");
        return 1;
    }
    double r = median(rlk), t = median(truth);
    printf("Process start to exit (%d runs each)\n", k_rounds);
    printf("  rlk 9 0 0            median %8.2f ms   max %8.2f ms\n", r, *std::max_element(rlk.begin(), rlk.end()));
    printf("  /bin/true            median %8.2f ms   max %8.2f ms\n", t,
           *std::max_element(truth.begin(), truth.end()));
    printf("  ratio of medians     %8.2fx (goal: within 5x)\n", r / t);
    return 0;
}
