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
#include <string.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <string>
#include <vector>

#include "process_runner.h"
#include "sim_fixture.h"
#include "tolvek_extend_nvefs.h"

namespace {

constexpr int k_efs_rounds = 15;
constexpr int k_process_rounds = 40;
constexpr uint32_t k_file_len = TOLVEK_EFS_FILE_MAX;
/* QMI header + the extension message's TLVs, both ways. */
constexpr size_t k_packet_bytes = 7 + 529;
constexpr char k_bench_path[] = "/bench/efs_102410";

double now_ms()
{
    struct timespec ts;
    clock_gettime(CLOCK_MONOTONIC, &ts);
    return ts.tv_sec * 1e3 + ts.tv_nsec / 1e6;
}

double median(std::vector<double> v)
{
    std::sort(v.begin(), v.end());
    return v[v.size() / 2];
}

/* Wall time of `trips` ping-pong round trips with a second process. */
double floor_round_trips(int trips)
{
    int sv[2];
    if (socketpair(AF_UNIX, SOCK_SEQPACKET, 0, sv) != 0) return -1;
    pid_t pid = fork();
    if (pid == 0) {
        close(sv[0]);
        char buf[1024];
        for (;;) {
            ssize_t n = recv(sv[1], buf, sizeof(buf), 0);
            if (n <= 0) _exit(0);
            send(sv[1], buf, size_t(n), 0);
        }
    }
    close(sv[1]);
    char buf[1024] = {0};
    double start = now_ms();
    for (int i = 0; i < trips; i++) {
        send(sv[0], buf, k_packet_bytes, 0);
        recv(sv[0], buf, sizeof(buf), 0);
    }
    double spent = now_ms() - start;
    close(sv[0]);
    waitpid(pid, nullptr, 0);
    return spent;
}

long long request_count(const sim_instance &sim)
{
    return atoll(sim.ctl_ok("counter get ext.requests.2").c_str());
}

/* One write and read of the benchmark file; false when either failed or
 * the data did not come back unchanged. */
bool write_and_read(std::vector<uint8_t> &data, std::vector<uint8_t> &back)
{
    if (tolvek_efs_write(0, k_bench_path, sizeof(k_bench_path) - 1, data.data(), k_file_len) != 0) return false;
    uint32_t len = k_file_len;
    if (tolvek_efs_read(0, k_bench_path, sizeof(k_bench_path) - 1, back.data(), &len) != 0) return false;
    return len == k_file_len && back == data;
}

int bench_efs(const sim_instance &sim)
{
    std::vector<uint8_t> data(k_file_len), back(k_file_len);
    for (size_t i = 0; i < data.size(); i++) data[i] = uint8_t(i * 7 + 3);

    /* The library prints every chunk; keep the terminal out of the figure. */
    fflush(stdout);
    int saved = dup(STDOUT_FILENO);
    int devnull = open("/dev/null", O_WRONLY);
    dup2(devnull, STDOUT_FILENO);
    /* The first round connects and counts the requests; it is not timed. */
    long long before = request_count(sim);
    bool ok = write_and_read(data, back);
    long long requests = request_count(sim) - before;
    /* Library and floor rounds alternate, so that both see the same load
     * of the machine. */
    std::vector<double> times, floors;
    for (int i = 0; i < k_efs_rounds && ok; i++) {
        double start = now_ms();
        ok = write_and_read(data, back);
        times.push_back(now_ms() - start);
        floors.push_back(floor_round_trips(int(requests)));
    }
    fflush(stdout);
    dup2(saved, STDOUT_FILENO);
    close(saved);
    close(devnull);
    if (!ok) {
        fprintf(stderr, "EFS write/read failed\n");
        return 1;
    }
    double lib = median(times), flo = median(floors);
    printf("EFS write+read of %u bytes: %lld requests\n", k_file_len, requests);
    printf("  library calls        median %8.2f ms  (%.1f us per request)\n", lib, lib * 1e3 / double(requests));
    printf("  socket floor         median %8.2f ms  (%.1f us per round trip)\n", flo, flo * 1e3 / double(requests));
    printf("  ratio                %8.2fx (goal: within 3x)\n", lib / flo);
    return 0;
}

double process_ms(const std::vector<std::string> &argv, const sim_instance &sim)
{
    double start = now_ms();
    run_result r = run_process(argv, sim.env());
    double spent = now_ms() - start;
    return exited_cleanly(r.status) ? spent : -1;
}

int bench_process(const sim_instance &sim)
{
    std::vector<double> rlk, truth;
    process_ms({RLK_BINARY, "4", "1", "0", "550"}, sim); /* warms the caches; not timed */
    for (int i = 0; i < k_process_rounds; i++) {
        rlk.push_back(process_ms({RLK_BINARY, "4", "1", "0", "550"}, sim));
        truth.push_back(process_ms({"/bin/true"}, sim));
    }
    if (*std::min_element(rlk.begin(), rlk.end()) < 0 || *std::min_element(truth.begin(), truth.end()) < 0) {
        fprintf(stderr, "a process failed\n");
        return 1;
    }
    double r = median(rlk), t = median(truth);
    printf("Process start to exit (%d runs each)\n", k_process_rounds);
    printf("  rlk 4 1 0 550        median %8.2f ms\n", r);
    printf("  /bin/true            median %8.2f ms\n", t);
    printf("  ratio                %8.2fx (goal: within 5x)\n", r / t);
    return 0;
}

}  // namespace

int main()
{
    sim_instance sim;
    if (!sim.start()) {
        fprintf(stderr, "simulator did not start\n");
        return 1;
    }
    int rc = bench_efs(sim);
    return rc != 0 ? rc : bench_process(sim);
}
