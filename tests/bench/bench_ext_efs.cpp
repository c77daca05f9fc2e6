/* Two figures of the extension service against a private simulator:
 *
 * 1. A 102410-byte EFS write followed by a read of the same file through
 *    tolvek_efs_write / tolvek_efs_read (the library calls, console output
 *    sent to /dev/null, system log to the fixture's file), beside the floor
 *    of the same number of bare AF_UNIX SOCK_SEQPACKET round trips of the
 *    same sizes between two processes.  The number of requests is the
 *    simulator's own count.
 * 2. One `rlk 4 1 0 550` process from start to exit beside /bin/true, both
 *    started the same way (fork, exec, wait, output collected).
 *
 * Medians over several rounds; run by hand, never as a timed test. */
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

#include "process_runner.h"
#include "sim_fixture.h"
#include "tolvek_extend_nvefs.h"

namespace {

constexpr uint32_t k_file_len = TOLVEK_EFS_FILE_MAX;
constexpr size_t k_packet_bytes = 7 + 529; /* QMI header + the extension message's TLVs, both ways */
constexpr char k_path[] = "/bench/efs_102410";

double now_ms()
{
    struct timespec ts;
    clock_gettime(CLOCK_MONOTONIC, &ts);
    return ts.tv_sec * 1e3 + ts.tv_nsec / 1e6;
}

/* The median times of `a` and `b` over `rounds`, run in turn so that both
 * see the same load of the machine; -1 if one ever failed. */
std::pair<double, double> medians_ms(int rounds, const std::function<bool()> &a, const std::function<bool()> &b)
{
    std::vector<double> t[2];
    for (int i = 0; i < rounds; i++) {
        for (int k = 0; k < 2; k++) {
            double start = now_ms();
            if (!(k ? b : a)()) return {-1, -1};
            t[k].push_back(now_ms() - start);
        }
    }
    for (std::vector<double> &v : t) std::sort(v.begin(), v.end());
    return {t[0][size_t(rounds / 2)], t[1][size_t(rounds / 2)]};
}

/* `trips` ping-pong round trips with a second process. */
bool floor_round_trips(long long trips)
{
    int sv[2];
    if (socketpair(AF_UNIX, SOCK_SEQPACKET, 0, sv) != 0) return false;
    char buf[1024] = {0};
    pid_t pid = fork();
    if (pid == 0) {
        close(sv[0]);
        for (ssize_t n; (n = recv(sv[1], buf, sizeof(buf), 0)) > 0;) send(sv[1], buf, size_t(n), 0);
        _exit(0);
    }
    close(sv[1]);
    for (long long i = 0; i < trips; i++) {
        send(sv[0], buf, k_packet_bytes, 0);
        recv(sv[0], buf, sizeof(buf), 0);
    }
    close(sv[0]);
    return waitpid(pid, nullptr, 0) == pid;
}

}  // namespace

int main()
{
    sim_instance sim;
    if (!sim.start()) {
        fprintf(stderr, "simulator did not start\n");
        return 1;
    }
    std::vector<uint8_t> data(k_file_len), back(k_file_len);
    for (size_t i = 0; i < data.size(); i++) data[i] = uint8_t(i * 7 + 3);
    auto write_and_read = [&] {
        uint32_t len = k_file_len;
        return tolvek_efs_write(0, k_path, sizeof(k_path) - 1, data.data(), k_file_len) == 0 &&
               tolvek_efs_read(0, k_path, sizeof(k_path) - 1, back.data(), &len) == 0 && len == k_file_len &&
               back == data;
    };
    auto requests = [&] { return atoll(sim.ctl_ok("counter get ext.requests.2").c_str()); };

    /* The library prints every chunk; keep the terminal out of the figure.
     * The first round connects and counts the requests; it is not timed. */
    fflush(stdout);
    int saved = dup(STDOUT_FILENO);
    dup2(open("/dev/null", O_WRONLY), STDOUT_FILENO);
    long long before = requests();
    bool ok = write_and_read();
    long long n = requests() - before;
    std::pair<double, double> efs = {-1, -1};
    if (ok) efs = medians_ms(15, write_and_read, [n] { return floor_round_trips(n); });
    fflush(stdout);
    dup2(saved, STDOUT_FILENO);
    double lib = efs.first, flo = efs.second;
    if (lib < 0) {
        fprintf(stderr, "EFS write/read failed\n");
        return 1;
    }
    printf("EFS write+read of %u bytes: %lld requests\n", k_file_len, n);
    printf("  library calls        median %8.2f ms  (%.1f us per request)\n", lib, lib * 1e3 / double(n));
    printf("  socket floor         median %8.2f ms  (%.1f us per round trip)\n", flo, flo * 1e3 / double(n));
    printf("  ratio                %8.2fx (goal: within 3x)\n", lib / flo);

    auto run = [&sim](const std::vector<std::string> &argv) {
        return exited_cleanly(run_process(argv, sim.env()).status);
    };
    run({RLK_BINARY, "4", "1", "0", "550"}); /* warms the caches; not timed */
    std::pair<double, double> proc =
        medians_ms(40, [&] { return run({RLK_BINARY, "4", "1", "0", "550"}); }, [&] { return run({"/bin/true"}); });
    double r = proc.first, t = proc.second;
    if (r < 0) {
        fprintf(stderr, "a process failed\n");
        return 1;
    }
    printf("Process start to exit (40 runs each)\n");
    printf("  rlk 4 1 0 550        median %8.2f ms\n", r);
    printf("  /bin/true            median %8.2f ms\n", t);
    printf("  ratio                %8.2fx (goal: within 5x)\n", r / t);
    return 0;
}
