/* What the benchmarks share: the clock, order statistics, the console sent
 * to /dev/null, a socket echo peer as the floor of a round trip, runs timed
 * in turn, and the packet dispatch loop with its cases read from a file.
 * Benchmarks report figures; they are run by hand, never as timed tests. */
#ifndef RLK_BENCH_COMMON_H
#define RLK_BENCH_COMMON_H

#include <fcntl.h>
#include <stdio.h>
#include <stdlib.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <functional>
#include <string>
#include <vector>

#include "../unit/replay/table_file.h"
#include "modem_stats_dispatch.h"
#include "process_runner.h"
#include "sim_fixture.h"

namespace bench {

inline double now_ms()
{
    struct timespec ts;
    clock_gettime(CLOCK_MONOTONIC, &ts);
    return double(ts.tv_sec) * 1e3 + double(ts.tv_nsec) / 1e6;
}

/* The `p` quantile (0.5 the median, 1 the maximum) of `v`. */
inline double quantile(std::vector<double> v, double p)
{
    std::sort(v.begin(), v.end());
    return v.empty() ? -1 : v[size_t(p * double(v.size() - 1) + 0.5)];
}

inline void print_row(const char *label, const std::vector<double> &ms)
{
    printf("  %-34s median %9.4f ms   p99 %9.4f ms   max %9.4f ms\n", label, quantile(ms, 0.5), quantile(ms, 0.99),
           quantile(ms, 1));
}

inline bool start(sim_instance &sim)
{
    if (sim.start()) return true;
    fprintf(stderr, "simulator did not start\n");
    return false;
}

/* Runs `fn` with standard output sent to /dev/null: the tool's console
 * stays out of the figures. */
template <typename Fn>
void stdout_muted(Fn fn)
{
    fflush(stdout);
    int saved = dup(STDOUT_FILENO), null_fd = open("/dev/null", O_WRONLY);
    dup2(null_fd, STDOUT_FILENO);
    close(null_fd);
    fn();
    fflush(stdout);
    dup2(saved, STDOUT_FILENO);
    close(saved);
}

/* A second process that sends back every AF_UNIX SOCK_SEQPACKET packet: the
 * floor of a round trip with no encoding. */
class echo_peer {
public:
    echo_peer()
    {
        int sv[2];
        if (socketpair(AF_UNIX, SOCK_SEQPACKET, 0, sv) != 0) return;
        pid_ = fork();
        if (pid_ == 0) {
            close(sv[0]);
            for (ssize_t n; (n = recv(sv[1], buf_, sizeof(buf_), 0)) > 0;) send(sv[1], buf_, size_t(n), 0);
            _exit(0);
        }
        close(sv[1]);
        fd_ = sv[0];
    }
    ~echo_peer()
    {
        close(fd_);
        if (pid_ > 0) waitpid(pid_, nullptr, 0);
    }
    bool round_trip(size_t bytes)
    {
        return send(fd_, buf_, bytes, 0) == ssize_t(bytes) && recv(fd_, buf_, sizeof(buf_), 0) == ssize_t(bytes);
    }

private:
    int fd_ = -1;
    pid_t pid_ = -1;
    char buf_[1024] = {0};
};

/* QMI header and the extension message's TLVs: the bytes of one extension
 * request or answer on the socket. */
constexpr size_t k_ext_packet_bytes = 7 + 529;

/* Milliseconds of `rounds` calls of each subject, the subjects called in
 * turn so that all see the same load of the machine, after `warmup`
 * untimed rounds; empty if a call failed. */
inline std::vector<std::vector<double>> time_in_turn(int rounds, const std::vector<std::function<bool()>> &subjects,
                                                     int warmup = 1)
{
    std::vector<std::vector<double>> ms(subjects.size());
    for (int i = 0; i < warmup + rounds; i++) {
        for (size_t k = 0; k < subjects.size(); k++) {
            double t0 = now_ms();
            if (!subjects[k]()) return std::vector<std::vector<double>>(subjects.size());
            if (i >= warmup) ms[k].push_back(now_ms() - t0);
        }
    }
    return ms;
}

/* One process from start to exit beside /bin/true started the same way
 * (fork, exec, wait, output collected); a run of `argv` must exit cleanly
 * and print `expect`.  `goal` follows the ratio. */
inline int process_against_true(const std::vector<std::string> &argv, const std::vector<std::string> &env, int rounds,
                                const std::string &expect = "", const char *goal = "")
{
    auto run = [&env](const std::vector<std::string> &words, const std::string &text) {
        run_result r = run_process(words, env);
        return exited_cleanly(r.status) && r.out.find(text) != std::string::npos;
    };
    std::vector<std::vector<double>> ms =
        time_in_turn(rounds, {[&] { return run(argv, expect); }, [&] { return run({"/bin/true"}, ""); }});
    if (ms[0].empty()) {
        fprintf(stderr, "a process failed\n");
        return 1;
    }
    std::string label = argv[0].substr(argv[0].rfind('/') + 1);
    for (size_t i = 1; i < argv.size(); i++) label += " " + argv[i];
    printf("Process start to exit (%d runs each)\n", rounds);
    print_row(label.c_str(), ms[0]);
    print_row("/bin/true", ms[1]);
    printf("  ratio of medians %8.2fx%s\n", quantile(ms[0], 0.5) / quantile(ms[1], 0.5), goal);
    return 0;
}

/* Packets per second of each case of the file `cases` of this folder
 * ("kind code payload alternate label": `alternate`, unless "-", is sent
 * every other time; see table_file.h), one thread, the parsers' output fully buffered into
 * /dev/null, the figures on the original standard output.  Arguments:
 * [packets per case [only this code]], or --show to print what each case
 * decodes to. */
inline int dispatch_bench(const char *cases, const char *title, int argc, char **argv)
{
    struct packets {
        bool event;
        uint16_t code;
        std::vector<uint8_t> p[2];
        std::string label;
    };
    std::vector<packets> list;
    for (const words &row : data_rows(BENCH_DATA_DIR "/", cases)) {
        packets c{row[0] == "event",
                  uint16_t(stoul(row[1], nullptr, 0)),
                  {row_bytes({row[2]}, 0), row_bytes({row[3]}, 0)},
                  row[4]};
        if (c.p[1].empty()) c.p[1] = c.p[0];
        list.push_back(c);
    }
    auto run = [](const packets &c, long i) {
        const std::vector<uint8_t> &p = c.p[i & 1];
        auto process = c.event ? modem_stats_diag_process_event_ex : modem_stats_diag_process_log_ex;
        process(static_cast<int32_t>(p.size()), c.code, 0, p.data());
    };
    setenv("RLK_LOGCAT_FILE", "/dev/null", 1);
    if (argc > 1 && std::string(argv[1]) == "--show") {
        for (const packets &c : list) {
            printf("== %s\n", c.label.c_str());
            run(c, 0);
        }
        return 0;
    }
    long packets_per_case = argc > 1 && atol(argv[1]) > 0 ? atol(argv[1]) : 300000;
    long only = argc > 2 ? strtol(argv[2], nullptr, 0) : -1;
    FILE *figures = fdopen(dup(STDOUT_FILENO), "w");
    if (list.empty() || !figures || !freopen("/dev/null", "w", stdout) ||
        setvbuf(stdout, nullptr, _IOFBF, 1 << 16) != 0) {
        fprintf(stderr, "no cases, or cannot redirect standard output\n");
        return 1;
    }
    fprintf(figures, "%s, %ld packets per case, stdout to /dev/null, 1 thread\n", title, packets_per_case);
    for (const packets &c : list) {
        if (only >= 0 && c.code != only) continue;
        double t0 = now_ms();
        for (long i = 0; i < packets_per_case; i++) run(c, i);
        fflush(stdout);
        fprintf(figures, "  %-44s %12.0f packets/s\n", c.label.c_str(),
                double(packets_per_case) * 1e3 / (now_ms() - t0));
    }
    fclose(figures);
    return 0;
}

}  // namespace bench

#endif
