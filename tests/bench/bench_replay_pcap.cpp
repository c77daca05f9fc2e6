/* rlk-replay --pcap with --summary-only over the largest sample capture
 * concatenated 20 times, on one core (taskset -c 0 when present), output to
 * /dev/null, the input in the page cache, beside cat of the same file and
 * --summary-only without --pcap.  Best of ten, in wall time and in the CPU
 * time of the child (user and system: the figure that holds on a loaded
 * machine); run by hand, never as a timed test. */
#include <stdio.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <string>
#include <vector>

#include "capture_files.h"
#include "process_runner.h"

namespace {

constexpr int k_copies = 20;
constexpr int k_rounds = 10;
constexpr double k_mb = 1e6;

double cpu_seconds(void)
{
    struct rusage ru;
    getrusage(RUSAGE_CHILDREN, &ru);
    return double(ru.ru_utime.tv_sec + ru.ru_stime.tv_sec) + double(ru.ru_utime.tv_usec + ru.ru_stime.tv_usec) / 1e6;
}

/* Best wall and CPU seconds of `command`; false when it failed. */
bool best_seconds(const std::string &command, double *wall, double *cpu)
{
    *wall = *cpu = 1e9;
    for (int i = 0; i < k_rounds; i++) {
        struct timespec a, b;
        double cpu_before = cpu_seconds();
        clock_gettime(CLOCK_MONOTONIC, &a);
        run_result r = run_process({"/bin/sh", "-c", command}, {});
        clock_gettime(CLOCK_MONOTONIC, &b);
        if (!exited_cleanly(r.status)) {
            fprintf(stderr, "failed: %s\n%s", command.c_str(), r.err.c_str());
            return false;
        }
        *wall = std::min(*wall, double(b.tv_sec - a.tv_sec) + double(b.tv_nsec - a.tv_nsec) / 1e9);
        *cpu = std::min(*cpu, cpu_seconds() - cpu_before);
    }
    return true;
}

}  // namespace

int main()
{
    std::string dir = capture_files_dir();
    if (dir.empty()) {
        fprintf(stderr, "captures folder %s is absent\n", RLK_CAPTURES_DIR);
        return 1;
    }
    /* The largest capture of the folder. */
    std::string largest;
    off_t size = 0;
    for (const char *name : {"att.mi2log", "offline_log_example.mi2log"}) {
        struct stat st;
        std::string path = dir + "/" + name;
        if (stat(path.c_str(), &st) == 0 && st.st_size > size) {
            size = st.st_size;
            largest = path;
        }
    }
    char tmp[] = "/tmp/bench_replay_pcap.XXXXXX";
    if (!mkdtemp(tmp)) return 1;
    std::string input = std::string(tmp) + "/capture.qmdl";
    std::string concat = "for i in $(seq " + std::to_string(k_copies) + "); do cat '" + largest + "'; done > " + input;
    if (!exited_cleanly(run_process({"/bin/sh", "-c", concat}, {}).status)) return 1;
    double mb = double(size) * k_copies / k_mb;
    std::string pin = access("/usr/bin/taskset", X_OK) == 0 ? "/usr/bin/taskset -c 0 " : "";
    struct {
        const char *name;
        std::string command;
    } runs[] = {
        {"cat", pin + "cat " + input + " > /dev/null"},
        {"--summary-only", pin + RLK_REPLAY_BINARY + " -s " + input + " > /dev/null"},
        {"--pcap --summary-only", pin + RLK_REPLAY_BINARY + " -s --pcap /dev/null " + input + " > /dev/null"},
        {"--pcap - --summary-only", pin + RLK_REPLAY_BINARY + " -s --pcap - " + input + " > /dev/null 2>&1"},
    };
    printf("%s x%d: %.1f MB\n", largest.c_str(), k_copies, mb);
    for (const auto &r : runs) {
        double wall = 0, cpu = 0;
        if (!best_seconds(r.command, &wall, &cpu)) continue;
        printf("%-24s wall %.3f s %6.0f MB/s   cpu %.3f s %6.0f MB/s\n", r.name, wall, mb / wall, cpu,
               cpu > 0 ? mb / cpu : 0.0);
    }
    run_process({"/bin/rm", "-rf", tmp}, {});
    return 0;
}
