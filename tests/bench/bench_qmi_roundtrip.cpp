/* One QMI round trip with a 512-byte payload through the host platform and
 * a private simulator, beside the ping-pong floor of the same socket type
 * (AF_UNIX SOCK_SEQPACKET between two processes, same byte counts, no
 * encoding).  Prints median and p99 in microseconds. */
#include <string.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <vector>

#include "qmi_client.h"
#include "ext_request.h"
#include "sim_fixture.h"
#include "tolvek_extend_service_v01.h"

namespace {

constexpr int k_rounds = 5000;
constexpr int k_warmup = 200;
/* QMI header + the extension message's TLVs. */
constexpr size_t k_request_bytes = 7 + 529;

double now_us()
{
    struct timespec ts;
    clock_gettime(CLOCK_MONOTONIC, &ts);
    return ts.tv_sec * 1e6 + ts.tv_nsec / 1e3;
}

void report(const char *what, std::vector<double> &v)
{
    std::sort(v.begin(), v.end());
    printf("%-44s median %7.1f us   p99 %7.1f us   (%zu rounds)\n", what, v[v.size() / 2],
           v[v.size() * 99 / 100], v.size());
}

std::vector<double> floor_pingpong()
{
    int sv[2];
    socketpair(AF_UNIX, SOCK_SEQPACKET, 0, sv);
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
    std::vector<double> t;
    char buf[1024] = {0};
    for (int i = 0; i < k_rounds + k_warmup; i++) {
        double s = now_us();
        send(sv[0], buf, k_request_bytes, 0);
        recv(sv[0], buf, sizeof(buf), 0);
        if (i >= k_warmup) t.push_back(now_us() - s);
    }
    close(sv[0]);
    waitpid(pid, nullptr, 0);
    return t;
}

std::vector<double> qmi_roundtrips()
{
    qmi_client_type client = nullptr;
    qmi_client_os_params os = {};
    if (qmi_client_init_instance(tolvek_extend_get_service_object_v01(), QMI_CLIENT_INSTANCE_ANY, nullptr, nullptr,
                                 &os, 3000, &client) != 0) {
        fprintf(stderr, "no extension service\n");
        return {};
    }
    tolvek_extend_msg req = make_efs_read_request(), resp;
    std::vector<double> t;
    for (int i = 0; i < k_rounds + k_warmup; i++) {
        double s = now_us();
        if (qmi_client_send_msg_sync(client, 2, &req, sizeof(req), &resp, sizeof(resp), 3000) != 0) {
            fprintf(stderr, "send failed\n");
            break;
        }
        if (i >= k_warmup) t.push_back(now_us() - s);
    }
    qmi_client_release(client);
    return t;
}

}  // namespace

int main()
{
    sim_instance sim;
    long long t0 = monotonic_ms();
    if (!sim.start()) {
        fprintf(stderr, "simulator did not start\n");
        return 1;
    }
    printf("simulator ready after %lld ms (spawn to first answer)\n", monotonic_ms() - t0);
    std::vector<double> floor = floor_pingpong();
    std::vector<double> qmi = qmi_roundtrips();
    if (qmi.empty()) return 1;
    report("seqpacket ping-pong floor (536 bytes)", floor);
    report("QMI round trip, 512-byte payload", qmi);
    return 0;
}
