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
 * The tool's console goes to /dev/null while measuring. */
#include <signal.h>

#include <fstream>
#include <sstream>

#include "bench_common.h"
#include "tolvek_diag_send.h"

namespace {

/* `rounds` with-result round trips in each mode, the modes in turn, less
 * `delay_ms`. */
void round_trips(const char *title, int rounds, int delay_ms)
{
    printf("%s, %d rounds:\n", title, rounds);
    int failures = 0;
    auto trip = [&failures](bool dci) {
        return [&failures, dci] {
            unsigned char cmd[1] = {0x1C}, reply[TOLVEK_DIAG_RSP_MAX_LEN];
            int len = sizeof(reply);
            int r = dci ? tolvek_diag_cmd_send_with_result_by_dci_mode(cmd, 1, reply, &len, 3000)
                        : tolvek_diag_cmd_send_with_result_by_callback_mode(cmd, 1, reply, &len, 3000);
            failures += r != 0 || len != 3 || reply[0] != 0x1C;
            return true;
        };
    };
    std::vector<std::vector<double>> ms;
    bench::stdout_muted([&] { ms = bench::time_in_turn(rounds, {trip(false), trip(true)}, 0); });
    for (std::vector<double> &mode : ms) {
        for (double &t : mode) t -= delay_ms;
    }
    bench::print_row("callback", ms[0]);
    bench::print_row("DCI", ms[1]);
    printf("  failures %d\n", failures);
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
    if (!bench::start(sim)) return 1;
    round_trips("small diag command with result (0x1C), session open to release", 300, 0);
    sim.ctl_ok("diag delay 0x1c 250");
    round_trips("answer held back 250 ms (the wait thread ticks every 100 ms), time after the answer", 10, 250);
    sim.ctl_ok("diag clear");
    bench::process_against_true({RLK_BINARY, "5", "0", "0", "0", "0", "0x00"}, sim.env(), 30);
    setenv("RLK_DIAG_DEVICE", sim.diag_port_path().c_str(), 1);
    round_trips("the same over the diag port (device opened, locked and closed each round)", 300, 0);
    unsetenv("RLK_DIAG_DEVICE");
    printf("log packets streamed by the diag port and decoded live by rlk-replay (0xB193 + 0xB97F):\n");
    for (unsigned rate : {1000u, 5000u, 20000u, 50000u}) stream_rate(sim, rate);
    return 0;
}
