/* rlk-replay --pcap with --summary-only over the largest sample capture
 * concatenated 20 times, on one core (taskset -c 0 when present), output to
 * /dev/null, the input in the page cache, beside cat of the same file and
 * --summary-only without --pcap.  Best of ten, in wall time and in the CPU
 * time of the child (user and system: the figure that holds on a loaded
 * machine). */
#include <sys/resource.h>

#include <filesystem>

#include "bench_common.h"
#include "capture_files.h"

namespace {

double children_cpu_s()
{
    struct rusage ru;
    getrusage(RUSAGE_CHILDREN, &ru);
    return double(ru.ru_utime.tv_sec + ru.ru_stime.tv_sec) + double(ru.ru_utime.tv_usec + ru.ru_stime.tv_usec) / 1e6;
}

}  // namespace

int main()
{
    namespace fs = std::filesystem;
    std::string dir = capture_files_dir();
    if (dir.empty()) {
        fprintf(stderr, "captures folder %s is absent\n", RLK_CAPTURES_DIR);
        return 1;
    }
    std::string largest = dir + "/att.mi2log";
    if (fs::file_size(dir + "/offline_log_example.mi2log") > fs::file_size(largest)) {
        largest = dir + "/offline_log_example.mi2log";
    }
    char tmp[] = "/tmp/bench_replay_pcap.XXXXXX";
    if (!mkdtemp(tmp)) return 1;
    std::string input = std::string(tmp) + "/capture.qmdl";
    std::string concat = "for i in $(seq 20); do cat '" + largest + "'; done > " + input;
    if (!exited_cleanly(run_process({"/bin/sh", "-c", concat}, {}).status)) return 1;
    double mb = double(fs::file_size(input)) / 1e6;
    std::string pin = access("/usr/bin/taskset", X_OK) == 0 ? "/usr/bin/taskset -c 0 " : "";
    const std::string runs[][2] = {
        {"cat", pin + "cat " + input + " > /dev/null"},
        {"--summary-only", pin + RLK_REPLAY_BINARY + " -s " + input + " > /dev/null"},
        {"--pcap --summary-only", pin + RLK_REPLAY_BINARY + " -s --pcap /dev/null " + input + " > /dev/null"},
        {"--pcap - --summary-only", pin + RLK_REPLAY_BINARY + " -s --pcap - " + input + " > /dev/null 2>&1"},
    };
    printf("%s x20: %.1f MB\n", largest.c_str(), mb);
    for (const auto &run : runs) {
        double wall = 1e9, cpu = 1e9;
        bool ok = true;
        for (int i = 0; i < 10 && ok; i++) {
            double wall0 = bench::now_ms(), cpu0 = children_cpu_s();
            run_result r = run_process({"/bin/sh", "-c", run[1]}, {});
            ok = exited_cleanly(r.status);
            if (!ok) fprintf(stderr, "failed: %s\n%s", run[1].c_str(), r.err.c_str());
            wall = std::min(wall, (bench::now_ms() - wall0) / 1e3);
            cpu = std::min(cpu, children_cpu_s() - cpu0);
        }
        if (ok)
            printf("%-24s wall %.3f s %6.0f MB/s   cpu %.3f s %6.0f MB/s\n", run[0].c_str(), wall, mb / wall, cpu,
                   cpu > 0 ? mb / cpu : 0.0);
    }
    run_process({"/bin/rm", "-rf", tmp}, {});
    return 0;
}
