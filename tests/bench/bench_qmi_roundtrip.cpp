/* One QMI round trip with a 512-byte payload through the host platform and
 * a private simulator, beside the ping-pong floor of the same socket type
 * (AF_UNIX SOCK_SEQPACKET between two processes, same byte counts, no
 * encoding).  Prints median and p99 in microseconds. */
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <functional>
#include <vector>

#include "ext_request.h"
#include "qmi_client.h"
#include "sim_fixture.h"
#include "tolvek_extend_service_v01.h"

namespace {

constexpr int k_rounds = 5000;
constexpr int k_warmup = 200;
constexpr size_t k_request_bytes = 7 + 529; /* QMI header + the extension message's TLVs */

/* Times `round` after a warm-up; stops early when it fails. */
std::vector<double> timed(const std::function<bool()> &round)
{
    std::vector<double> t;
    for (int i = 0; i < k_rounds + k_warmup; i++) {
        auto start = std::chrono::steady_clock::now();
        if (!round()) break;
        std::chrono::duration<double, std::micro> spent = std::chrono::steady_clock::now() - start;
        if (i >= k_warmup) t.push_back(spent.count());
    }
    return t;
}

void report(const char *what, std::vector<double> v)
{
    std::sort(v.begin(), v.end());
    printf("%-44s median %7.1f us   p99 %7.1f us   (%zu rounds)\n", what, v[v.size() / 2], v[v.size() * 99 / 100],
           v.size());
}

int fail(const char *why)
{
    fprintf(stderr, "%s\n", why);
    return 1;
}

}  // namespace

int main()
{
    sim_instance sim;
    long long t0 = monotonic_ms();
    if (!sim.start()) return fail("simulator did not start");
    printf("simulator ready after %lld ms (spawn to first answer)\n", monotonic_ms() - t0);

    int sv[2];
    char buf[1024] = {0};
    socketpair(AF_UNIX, SOCK_SEQPACKET, 0, sv);
    pid_t echo = fork();
    if (echo == 0) { /* the echoing process */
        close(sv[0]);
        for (ssize_t n; (n = recv(sv[1], buf, sizeof(buf), 0)) > 0;) send(sv[1], buf, size_t(n), 0);
        _exit(0);
    }
    close(sv[1]);
    std::vector<double> floor = timed([&] {
        return send(sv[0], buf, k_request_bytes, 0) > 0 && recv(sv[0], buf, sizeof(buf), 0) > 0;
    });
    close(sv[0]);
    waitpid(echo, nullptr, 0);

    qmi_client_type client = nullptr;
    qmi_client_os_params os = {};
    if (qmi_client_init_instance(tolvek_extend_get_service_object_v01(), QMI_CLIENT_INSTANCE_ANY, nullptr, nullptr,
                                 &os, 3000, &client) != 0) {
        return fail("no extension service");
    }
    tolvek_extend_msg req = make_efs_read_request(), resp;
    std::vector<double> qmi = timed([&] {
        return qmi_client_send_msg_sync(client, 2, &req, sizeof(req), &resp, sizeof(resp), 3000) == 0;
    });
    qmi_client_release(client);
    if (qmi.size() < size_t(k_rounds)) return fail("send failed");
    report("seqpacket ping-pong floor (536 bytes)", floor);
    report("QMI round trip, 512-byte payload", qmi);
    return 0;
}
