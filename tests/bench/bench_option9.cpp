/* One `rlk 9 0 0` process from start to exit against a warm private
 * simulator, beside /bin/true started the same way (fork, exec, wait,
 * output collected): median and maximum over several rounds.  Run by
 * hand, never as a timed test. */
#include <stdio.h>

#include <algorithm>
#include <chrono>
#include <string>
#include <vector>

#include "process_runner.h"
#include "sim_fixture.h"

int main()
{
    sim_instance sim;
    if (!sim.start()) {
        fprintf(stderr, "simulator did not start\n");
        return 1;
    }
    const int rounds = 40;
    struct subject {
        const char *label;
        std::vector<std::string> argv;
        const char *expect; /* a run without it failed */
        std::vector<double> ms;
    } subjects[] = {{"rlk 9 0 0", {RLK_BINARY, "9", "0", "0"}, "ASDIV DATA: earfcn: ", {}},
                    {"/bin/true", {"/bin/true"}, "", {}}};
    /* The first round warms the simulator and the caches; not timed. */
    for (int i = 0; i <= rounds; i++) {
        for (subject &s : subjects) {
            auto start = std::chrono::steady_clock::now();
            run_result r = run_process(s.argv, sim.env());
            if (!exited_cleanly(r.status) || r.out.find(s.expect) == std::string::npos) {
                fprintf(stderr, "%s failed\n", s.label);
                return 1;
            }
            std::chrono::duration<double, std::milli> spent = std::chrono::steady_clock::now() - start;
            if (i > 0) s.ms.push_back(spent.count());
        }
    }
    printf("Process start to exit (%d runs each)\n", rounds);
    for (subject &s : subjects) {
        std::sort(s.ms.begin(), s.ms.end());
        printf("  %-20s median %8.2f ms   max %8.2f ms\n", s.label, s.ms[rounds / 2], s.ms.back());
    }
    printf("  ratio of medians     %8.2fx (goal: within 5x)\n", subjects[0].ms[rounds / 2] / subjects[1].ms[rounds / 2]);
    return 0;
}
