/* One QMI round trip with a 512-byte payload through the host platform and
 * a private simulator, beside the ping-pong floor of the same socket type
 * (AF_UNIX SOCK_SEQPACKET between two processes, same byte counts, no
 * encoding): median and p99 over 5000 rounds after 200 untimed ones. */
#include "bench_common.h"
#include "ext_request.h"
#include "qmi_client.h"
#include "tolvek_extend_service_v01.h"

int main()
{
    sim_instance sim;
    double t0 = bench::now_ms();
    if (!bench::start(sim)) return 1;
    printf("simulator ready after %.1f ms (spawn to first answer)\n", bench::now_ms() - t0);
    qmi_client_type client = nullptr;
    qmi_client_os_params os = {};
    if (qmi_client_init_instance(tolvek_extend_get_service_object_v01(), QMI_CLIENT_INSTANCE_ANY, nullptr, nullptr, &os,
                                 3000, &client) != 0) {
        fprintf(stderr, "no extension service\n");
        return 1;
    }
    bench::echo_peer echo;
    tolvek_extend_msg req = make_efs_read_request(), resp;
    std::vector<std::vector<double>> ms = bench::time_in_turn(
        5000,
        {[&] { return echo.round_trip(bench::k_ext_packet_bytes); },
         [&] { return qmi_client_send_msg_sync(client, 2, &req, sizeof(req), &resp, sizeof(resp), 3000) == 0; }},
        200);
    qmi_client_release(client);
    if (ms[0].empty()) {
        fprintf(stderr, "a round trip failed\n");
        return 1;
    }
    bench::print_row("seqpacket ping-pong floor (536 bytes)", ms[0]);
    bench::print_row("QMI round trip, 512-byte payload", ms[1]);
    return 0;
}
