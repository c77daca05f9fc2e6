/* Figures of option 5's raw diag commands against a private simulator:
 *
 * 1. Round trip of a small command with result (DIAG_VER, 1 byte out, 3
 *    back) through tolvek_diag_cmd_send_with_result_by_callback_mode and
 *    ..._by_dci_mode: from the tool's call to the reply in its buffer,
 *    session set-up and release included.  Median and p99.
 * 2. The same command with its answer held back 250 ms by the simulator:
 *    the wait ends when the answer comes, not on the next 100 ms tick of
 *    the wait thread.
 * 3. One `rlk 5 0 0 0 0 0x00` process from start to exit beside /bin/true.
 * 4. Item 1 over the simulator's diag port (RLK_DIAG_DEVICE) instead of
 *    the socket: the device opened, locked and released each time.
 * 5. Log packets a second the diag port streams and rlk-replay, reading it
 *    live, decodes: the stream is stopped before the count, so any packet
 *    the port sent and rlk-replay did not decode is a loss.
 *
 * Console output goes to /dev/null while measuring.  Run by hand, never
 * as a timed test. */
#include <fcntl.h>
#include <signal.h>
#include <stdio.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "process_runner.h"
#include "sim_fixture.h"
#include "tolvek_diag_send.h"

namespace {

constexpr int k_rounds = 300;
constexpr int k_delayed_rounds = 10;
constexpr int k_process_rounds = 30;
constexpr int k_delay_ms = 250;

double now_ms()
{
    struct timespec ts;
    clock_gettime(CLOCK_MONOTONIC, &ts);
    return ts.tv_sec * 1e3 + ts.tv_nsec / 1e6;
}

double percentile(std::vector<double> v, double p)
{
    std::sort(v.begin(), v.end());
    size_t i = size_t(p * double(v.size() - 1) + 0.5);
    return v[i];
}

/* Console of the tool off to /dev/null while `fn` runs. */
template <typename F>
void quietly(F fn)
{
    fflush(stdout);
    int saved = dup(1);
    int null_fd = open("/dev/null", O_WRONLY);
    dup2(null_fd, 1);
    close(null_fd);
    fn();
    fflush(stdout);
    dup2(saved, 1);
    close(saved);
}

/* Wall times (ms) of `rounds` with-result round trips in `mode`; failures
 * counted. */
std::vector<double> round_trips(int mode, int rounds, int *failures)
{
    std::vector<double> ms;
    quietly([&] {
        for (int i = 0; i < rounds; i++) {
            unsigned char cmd[1] = {0x1C};
            unsigned char reply[TOLVEK_DIAG_RSP_MAX_LEN];
            int len = sizeof(reply);
            double t0 = now_ms();
            int r = mode == TOLVEK_DIAG_MODE_CALLBACK
                        ? tolvek_diag_cmd_send_with_result_by_callback_mode(cmd, 1, reply, &len, 3000)
                        : tolvek_diag_cmd_send_with_result_by_dci_mode(cmd, 1, reply, &len, 3000);
            ms.push_back(now_ms() - t0);
            if (r != 0 || len != 3 || reply[0] != 0x1C) (*failures)++;
        }
    });
    return ms;
}

std::vector<double> processes(const std::vector<std::string> &argv, const sim_instance &sim)
{
    std::vector<double> ms;
    for (int i = 0; i < k_process_rounds; i++) {
        double t0 = now_ms();
        run_process(argv, sim.env());
        ms.push_back(now_ms() - t0);
    }
    return ms;
}

/* The number after `key` in `text` (0 when absent). */
unsigned long long number_after(const std::string &text, const std::string &key)
{
    size_t at = text.find(key);
    return at == std::string::npos ? 0 : strtoull(text.c_str() + at + key.size(), nullptr, 10);
}

/* Streams at `rate` cycles a second for `seconds` into a live rlk-replay;
 * prints packets a second sent and decoded. */
void stream_rate(sim_instance &sim, unsigned rate, double seconds)
{
    std::string out_path = sim.dir() + "/replay.out";
    pid_t pid = fork();
    if (pid == 0) {
        int fd = open(out_path.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
        dup2(fd, 1);
        execl(RLK_REPLAY_BINARY, RLK_REPLAY_BINARY, "-s", sim.diag_port_path().c_str(), (char *)nullptr);
        _exit(127);
    }
    /* rlk-replay's masks are set once the port has seen a reader. */
    while (number_after(sim.ctl("diag port"), " reader=") == 0) usleep(1000);
    usleep(100000);
    unsigned long long before = number_after(sim.ctl("diag port"), " log-packets=");
    sim.ctl_ok("diag rate " + std::to_string(rate));
    usleep(useconds_t(seconds * 1e6));
    sim.ctl_ok("diag rate 0");
    std::string state = sim.ctl("diag port");
    usleep(300000); /* what is on its way is read */
    kill(pid, SIGINT);
    int status;
    waitpid(pid, &status, 0);
    std::ifstream in(out_path);
    std::stringstream text;
    text << in.rdbuf();
    unsigned long long sent = number_after(state, " log-packets=") - before;
    std::string summary = text.str();
    unsigned long long decoded = number_after(summary, "0xB193 ") + number_after(summary, "0xB97F ");
    printf("  rate %6u cycles/s: sent %.0f packets/s, decoded %.0f packets/s, lost %lld, cycles skipped %llu\n",
           rate, double(sent) / seconds, double(decoded) / seconds, (long long)sent - (long long)decoded,
           number_after(state, " skipped-cycles="));
}

}  // namespace

int main()
{
    sim_instance sim;
    sim.enable_diag_port();
    if (!sim.start()) {
        fprintf(stderr, "simulator did not start\n");
        return 1;
    }
    const struct {
        int mode;
        const char *name;
    } modes[] = {{TOLVEK_DIAG_MODE_CALLBACK, "callback"}, {TOLVEK_DIAG_MODE_DCI, "DCI"}};

    printf("small diag command with result (0x1C), %d rounds, session open to release:\n", k_rounds);
    for (const auto &m : modes) {
        int failures = 0;
        std::vector<double> ms = round_trips(m.mode, k_rounds, &failures);
        printf("  %-8s median %.3f ms, p99 %.3f ms, failures %d\n", m.name, percentile(ms, 0.5),
               percentile(ms, 0.99), failures);
    }

    sim.ctl_ok("diag delay 0x1c " + std::to_string(k_delay_ms));
    printf("answer held back %d ms (the wait thread ticks every 100 ms):\n", k_delay_ms);
    for (const auto &m : modes) {
        int failures = 0;
        std::vector<double> ms = round_trips(m.mode, k_delayed_rounds, &failures);
        printf("  %-8s median %.3f ms (%.3f ms after the answer), failures %d\n", m.name, percentile(ms, 0.5),
               percentile(ms, 0.5) - k_delay_ms, failures);
    }
    sim.ctl_ok("diag clear");

    std::vector<double> rlk = processes({RLK_BINARY, "5", "0", "0", "0", "0", "0x00"}, sim);
    std::vector<double> base = processes({"/bin/true"}, sim);
    printf("rlk 5 0 0 0 0 0x00 as a process, %d rounds: median %.3f ms, p99 %.3f ms (/bin/true %.3f ms)\n",
           k_process_rounds, percentile(rlk, 0.5), percentile(rlk, 0.99), percentile(base, 0.5));
    printf("  an answer ends the wait at once: the wait thread is woken and ends without a tick\n");

    setenv("RLK_DIAG_DEVICE", sim.diag_port_path().c_str(), 1);
    printf("the same over the diag port (device opened, locked and closed each round), %d rounds:\n", k_rounds);
    for (const auto &m : modes) {
        int failures = 0;
        std::vector<double> ms = round_trips(m.mode, k_rounds, &failures);
        printf("  %-8s median %.3f ms, p99 %.3f ms, failures %d\n", m.name, percentile(ms, 0.5),
               percentile(ms, 0.99), failures);
    }
    unsetenv("RLK_DIAG_DEVICE");

    printf("log packets streamed by the diag port and decoded live by rlk-replay (0xB193 + 0xB97F):\n");
    for (unsigned rate : {1000u, 5000u, 20000u, 50000u}) stream_rate(sim, rate, 2.0);
    return 0;
}
