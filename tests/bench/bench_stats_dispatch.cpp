/* Packets per second through the diag statistics dispatchers, single
 * thread, with the parsers' standard output sent to /dev/null.  Figures go
 * to the original standard output.
 *
 *   bench_stats_dispatch [packets per case]   (default 200000) */
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <unistd.h>

#include <chrono>
#include <vector>

#include "modem_stats_dispatch.h"

namespace {

/* The option-7 sample bytes. */
const std::vector<uint8_t> SAMPLE = {
    0x0f, 0x00, 0x03, 0x00, 0x00, 0x00, 0x00, 0x01, 0x13, 0x01, 0x3c, 0x05, 0x00, 0x01, 0x00, 0x00, 0x10,
    0x4d, 0xcd, 0x37, 0xf7, 0x00, 0xfa, 0x00, 0x01, 0x00, 0x00, 0x00, 0x00, 0xc0, 0x07, 0x00, 0x01, 0x02,
    0x1b, 0x06, 0x1d, 0x04, 0x3e, 0x20, 0x83, 0x10, 0x04, 0x10, 0x02, 0x3e, 0xef, 0x04, 0x3f, 0x80, 0x00,
    0x00, 0x00, 0x00, 0x00, 0x88, 0xd0, 0x0e, 0x00, 0x37, 0x88, 0x1a, 0xa0, 0x05, 0x00, 0x00, 0x00, 0x00,
};

struct bench_case {
    const char *label;
    bool event;
    uint16_t code;
    std::vector<uint8_t> payload, alternate; /* alternate: every other packet, when not empty */
};

double packets_per_second(const bench_case &c, long packets)
{
    auto start = std::chrono::steady_clock::now();
    for (long i = 0; i < packets; i++) {
        const std::vector<uint8_t> &p = (!c.alternate.empty() && (i & 1)) ? c.alternate : c.payload;
        auto process = c.event ? modem_stats_diag_process_event_ex : modem_stats_diag_process_log_ex;
        process(static_cast<int32_t>(p.size()), c.code, 0, p.data());
    }
    fflush(stdout);
    std::chrono::duration<double> secs = std::chrono::steady_clock::now() - start;
    return packets / secs.count();
}

}  // namespace

int main(int argc, char **argv)
{
    long packets = argc > 1 ? atol(argv[1]) : 200000;
    if (packets <= 0) packets = 200000;
    int figures_fd = dup(STDOUT_FILENO);
    FILE *figures = figures_fd >= 0 ? fdopen(figures_fd, "w") : nullptr;
    if (!figures || !freopen("/dev/null", "w", stdout)) {
        fprintf(stderr, "cannot redirect standard output\n");
        return 1;
    }

    std::vector<bench_case> cases = {
        {"event 629 call orig (sample)", true, 629, SAMPLE, {}},
        {"event 3184 nr5g new cell (sample)", true, 3184, SAMPLE, {}},
        /* A handover cause: the full path to a 15-byte record. */
        {"event 2568 new cell, handover record", true, 2568, {2, 0x10, 0x27, 0, 0, 0x2c, 0x01}, {}},
        /* Connected and Closing alternating: a set-up record every other packet. */
        {"event 1606 rrc connected/closing", true, 1606, {4}, {7}},
        {"event 630 unknown id", true, 630, SAMPLE, {}},
        {"log 0x1234 unknown code", false, 0x1234, SAMPLE, {}},
    };
    modem_stats_parser_table logs = modem_stats_log_parser_table();
    for (size_t i = 0; i < logs.count && i < 4; i++)
        cases.push_back({"log registered parser (sample)", false, logs.rows[i].code, SAMPLE, {}});

    fprintf(figures, "diag statistics dispatch, %ld packets per case, stdout to /dev/null, 1 thread\n", packets);
    for (const bench_case &c : cases) {
        fprintf(figures, "  %-40s code 0x%04x  %12.0f packets/s\n", c.label, c.code, packets_per_second(c, packets));
    }
    fclose(figures);
    return 0;
}
