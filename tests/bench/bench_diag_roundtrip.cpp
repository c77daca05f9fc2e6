/* Figures of option 5's raw diag commands against a private simulator:
 * 1. DIAG_VER with result (1 byte out, 3 back) in callback and DCI modes,
 *    from the tool's call to the reply in its buffer, session set-up and
 *    release included: median and p99;
 * 2. the same with the answer held back 250 ms: the wait ends when the
 *    answer comes, not on the next 100 ms tick of the wait thread;
 * 3. one `rlk 5 0 0 0 0 0x00` process beside /bin/true;
 * 4. item 1 over the diag port (RLK_DIAG_DEVICE), the device opened,
 *    locked and released each time;
 * 5. log packets a second the diag port streams and a live rlk-replay
 *    decodes; the stream stops before the count, so a packet sent and not
 *    decoded is a loss.
 * The tool's console goes to /dev/null while measuring.  Run by hand,
 * never as a timed test. */
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

double now_ms()
{
    struct timespec ts;
    clock_gettime(CLOCK_MONOTONIC, &ts);
    return double(ts.tv_sec) * 1e3 + double(ts.tv_nsec) / 1e6;
}

double percentile(std::vector<double> v, double p)
{
    std::sort(v.begin(), v.end());
    return v[size_t(p * double(v.size() - 1) + 0.5)];
}

/* Prints the median and p99 of `rounds` with-result round trips in each
 * mode, less `delay_ms`, with the tool's console off. */
void round_trips(const char *title, int rounds, int delay_ms)
{
    printf("%s, %d rounds:\n", title, rounds);
    int saved = dup(1), null_fd = open("/dev/null", O_WRONLY);
    for (int mode : {TOLVEK_DIAG_MODE_CALLBACK, TOLVEK_DIAG_MODE_DCI}) {
        std::vector<double> ms;
        int failures = 0;
        fflush(stdout);
        dup2(null_fd, 1);
        for (int i = 0; i < rounds; i++) {
            unsigned char cmd[1] = {0x1C}, reply[TOLVEK_DIAG_RSP_MAX_LEN];
            int len = sizeof(reply);
            double t0 = now_ms();
            int r = mode == TOLVEK_DIAG_MODE_CALLBACK
                        ? tolvek_diag_cmd_send_with_result_by_callback_mode(cmd, 1, reply, &len, 3000)
                        : tolvek_diag_cmd_send_with_result_by_dci_mode(cmd, 1, reply, &len, 3000);
            ms.push_back(now_ms() - t0 - delay_ms);
            if (r != 0 || len != 3 || reply[0] != 0x1C) failures++;
        }
        fflush(stdout);
        dup2(saved, 1);
        printf("  %-8s median %.3f ms, p99 %.3f ms, failures %d\n", mode ? "DCI" : "callback", percentile(ms, 0.5),
               percentile(ms, 0.99), failures);
    }
    close(null_fd);
    close(saved);
}

std::vector<double> process_ms(const std::vector<std::string> &argv, const sim_instance &sim)
{
    std::vector<double> ms;
    for (int i = 0; i < 30; i++) {
        double t0 = now_ms();
        run_process(argv, sim.env());
        ms.push_back(now_ms() - t0);
    }
    return ms;
}

unsigned long long number_after(const std::string &text, const std::string &key)
{
    size_t at = text.find(key);
    return at == std::string::npos ? 0 : strtoull(text.c_str() + at + key.size(), nullptr, 10);
}

/* Streams at `rate` cycles a second for 2 s into a live rlk-replay. */
void stream_rate(sim_instance &sim, unsigned rate)
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
    usleep(2000000);
    sim.ctl_ok("diag rate 0");
    std::string state = sim.ctl("diag port");
    usleep(300000); /* what is on its way is read */
    kill(pid, SIGINT);
    waitpid(pid, nullptr, 0);
    std::stringstream summary;
    summary << std::ifstream(out_path).rdbuf();
    long long sent = (long long)(number_after(state, " log-packets=") - before);
    long long decoded = (long long)(number_after(summary.str(), "0xB193 ") + number_after(summary.str(), "0xB97F "));
    printf("  rate %6u cycles/s: sent %.0f packets/s, decoded %.0f packets/s, lost %lld, cycles skipped %llu\n", rate,
           double(sent) / 2, double(decoded) / 2, sent - decoded, number_after(state, " skipped-cycles="));
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
    round_trips("small diag command with result (0x1C), session open to release", 300, 0);
    sim.ctl_ok("diag delay 0x1c 250");
    round_trips("answer held back 250 ms (the wait thread ticks every 100 ms), time after the answer", 10, 250);
    sim.ctl_ok("diag clear");
    std::vector<double> rlk = process_ms({RLK_BINARY, "5", "0", "0", "0", "0", "0x00"}, sim);
    printf("rlk 5 0 0 0 0 0x00 as a process, 30 rounds: median %.3f ms, p99 %.3f ms (/bin/true %.3f ms)\n",
           percentile(rlk, 0.5), percentile(rlk, 0.99), percentile(process_ms({"/bin/true"}, sim), 0.5));
    setenv("RLK_DIAG_DEVICE", sim.diag_port_path().c_str(), 1);
    round_trips("the same over the diag port (device opened, locked and closed each round)", 300, 0);
    unsetenv("RLK_DIAG_DEVICE");
    printf("log packets streamed by the diag port and decoded live by rlk-replay (0xB193 + 0xB97F):\n");
    for (unsigned rate : {1000u, 5000u, 20000u, 50000u}) stream_rate(sim, rate);
    return 0;
}
