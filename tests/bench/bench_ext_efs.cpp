/* Two figures of the extension service against a private simulator:
 *
 * 1. A 102410-byte EFS write followed by a read of the same file through
 *    tolvek_efs_write / tolvek_efs_read (the library calls, console output
 *    sent to /dev/null, system log to the fixture's file), beside the floor
 *    of the same number of bare AF_UNIX SOCK_SEQPACKET round trips of the
 *    same sizes between two processes.  The number of requests is the
 *    simulator's own count.
 * 2. One `rlk 4 1 0 550` process from start to exit beside /bin/true. */
#include "bench_common.h"
#include "tolvek_extend_nvefs.h"

int main()
{
    constexpr uint32_t k_len = TOLVEK_EFS_FILE_MAX;
    constexpr char k_path[] = "/bench/efs_102410";
    sim_instance sim;
    if (!bench::start(sim)) return 1;
    std::vector<uint8_t> data(k_len), back(k_len);
    for (size_t i = 0; i < data.size(); i++) data[i] = uint8_t(i * 7 + 3);
    auto write_and_read = [&] {
        uint32_t len = k_len;
        return tolvek_efs_write(0, k_path, sizeof(k_path) - 1, data.data(), k_len) == 0 &&
               tolvek_efs_read(0, k_path, sizeof(k_path) - 1, back.data(), &len) == 0 && len == k_len && back == data;
    };
    auto requests = [&] { return atoll(sim.ctl_ok("counter get ext.requests.2").c_str()); };
    long long n = 0;
    std::vector<std::vector<double>> ms;
    /* The library prints every chunk.  The first round connects and counts
     * the requests; it is not timed. */
    bench::stdout_muted([&] {
        bench::echo_peer echo;
        long long before = requests();
        if (write_and_read()) n = requests() - before;
        auto floor = [&] {
            for (long long i = 0; i < n; i++) {
                if (!echo.round_trip(bench::k_ext_packet_bytes)) return false;
            }
            return true;
        };
        ms = bench::time_in_turn(15, {write_and_read, floor}, 0);
    });
    if (n == 0 || ms[0].empty()) {
        fprintf(stderr, "EFS write/read failed\n");
        return 1;
    }
    double lib = bench::quantile(ms[0], 0.5), flo = bench::quantile(ms[1], 0.5);
    printf("EFS write+read of %u bytes: %lld requests\n", k_len, n);
    printf("  library calls        median %8.2f ms  (%.1f us per request)\n", lib, lib * 1e3 / double(n));
    printf("  socket floor         median %8.2f ms  (%.1f us per round trip)\n", flo, flo * 1e3 / double(n));
    printf("  ratio                %8.2fx (goal: within 3x)\n", lib / flo);
    return bench::process_against_true({RLK_BINARY, "4", "1", "0", "550"}, sim.env(), 40, "", " (goal: within 5x)");
}
