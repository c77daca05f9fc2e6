/* Packets per second per diag log code through the log dispatcher, one
 * thread, the parsers' standard output fully buffered into /dev/null and
 * the Android-log lines into /dev/null (RLK_LOGCAT_FILE).  Figures go to
 * the original standard output.  Packets are built to the layouts of
 * docs/diag-log-layouts.md with realistic sizes.
 *
 *   bench_log_parsers [packets per case [log code]]   (default 300000, all codes)
 *   bench_log_parsers --show                prints what each case's packet decodes to */
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <unistd.h>

#include <chrono>
#include <string>
#include <vector>

#include "../unit/modem_stats_logs/log_packet.h"
#include "modem_stats_dispatch.h"

namespace {

using log_test::packet;

constexpr long DEFAULT_PACKETS = 300000;
constexpr size_t STDOUT_BUFFER = 1 << 16;

/* 0xB193, sub-packet version 19: one serving cell, two receive chains. */
packet b193_v19()
{
    packet p = packet().u8(0, 1).u8(1, 1).u8(4, 25).u8(5, 19).u16(6, 364).u32(8, 5780).u16(12, 1);
    uint32_t c = 8 * 8;
    p.bits(c + 64, 9, 185).bits(c + 76, 1, 1).bits(c + 202, 12, 1073).bits(c + 236, 12, 1128).bits(c + 268, 12, 1128);
    p.bits(c + 300, 10, 338).bits(c + 320, 10, 332).bits(c + 340, 10, 338).bits(c + 362, 11, 367);
    p.bits(c + 373, 11, 428).bits(c + 384, 11, 428).bits(c + 576, 9, 249).bits(c + 585, 9, 253);
    return p.size(368);
}

/* 0xB193, sub-packet version 36: two cells of four chains. */
packet b193_v36()
{
    packet p;
    p.u8(0, 1).u8(1, 1).u8(4, 25).u8(5, 36).u16(6, 4 + 8 + 2 * 128).u32(8, 1825).u16(12, 2).u16(14, 0xF);
    for (uint32_t k = 0; k < 2; k++) {
        uint32_t c = (16 + k * 128) * 8;
        p.bits(c, 9, 73 + k).bits(c + 9, 3, k).bits(c + 12, 1, 1);
        for (uint32_t at : {138u, 172u, 204u, 224u, 236u}) p.bits(c + at, 12, 1290);
        for (uint32_t at : {288u, 308u, 330u, 340u, 352u}) p.bits(c + at, 10, 320);
        for (uint32_t at : {384u, 395u, 416u, 427u, 448u}) p.bits(c + at, 11, 640);
        for (uint32_t at : {640u, 649u, 672u, 681u}) p.bits(c + at, 9, 291);
    }
    return p.size(16 + 2 * 128);
}

/* 0xB97F version 2.7: `layers` carriers, each with `cells` cells of
 * `beams` beams; the first cell is the serving one. */
packet b97f(uint32_t layers, uint32_t cells, uint32_t beams)
{
    packet p = packet().u32(0, 0x20007).u8(4, layers);
    uint32_t at = 16;
    for (uint32_t l = 0; l < layers; l++) {
        p.u8(at + 4, cells).u8(at + 5, l).u16(at + 6, 100).u32(at + 12, static_cast<uint32_t>(-12544));
        p.u32(at + 16, static_cast<uint32_t>(-12416));
        at += 32;
        for (uint32_t c = 0; c < cells; c++) {
            p.u16(at, 100 + c).bits(at * 8 + 32, 4, beams).u32(at + 12, static_cast<uint32_t>(-1280));
            at += 16;
            for (uint32_t b = 0; b < beams; b++, at += 44)
                p.u32(at + 20, static_cast<uint32_t>(-12800)).u32(at + 24, static_cast<uint32_t>(-12672));
        }
    }
    return p.size(at);
}

/* 0xB064, sub-packet version 1: five samples with PHR and long BSR, as a
 * phone in the public captures sends them. */
packet b064()
{
    const std::vector<uint8_t> hdr[2] = {{0x3E, 0x1F, 0x00, 0x00, 0x00}, {0x3A, 0x3E, 0x1F, 0x12, 0x00, 0x00, 0x00}};
    packet p = packet().u8(0, 1).u8(1, 1).u8(4, 8).u8(5, 1).u8(8, 5);
    uint32_t at = 9;
    for (int s = 0; s < 5; s++) {
        const std::vector<uint8_t> &h = hdr[s & 1];
        p.u16(at + 4, 26).u16(at + 7, (s & 1) ? 19 : 21).u8(at + 9, 1).u8(at + 10, 4).u8(at + 11, h.size());
        p.raw(at + 12, h);
        at += 12 + static_cast<uint32_t>(h.size());
    }
    return p.u16(6, at - 4);
}

/* 0xB16D version 48: a PUCCH and a PUSCH record. */
packet b16d()
{
    packet p = packet().u8(0, 48).u8(3, 2).bits(32 + 32, 1, 0).bits(32 + 33 + 14, 8, 23);
    uint32_t r = 32 + 416, b = r + 33;
    p.bits(r + 32, 1, 1).bits(b + 223, 8, 20).bits(b + 243, 7, 50).bits(b + 292, 5, 17).bits(b + 311, 3, 2);
    return p.size(4 + 2 * 52);
}

/* 0xB975 version 1.2. */
packet b975()
{
    packet p = packet().u32(0, 0x10002).u32(20, static_cast<uint32_t>(-12800)).u32(24, static_cast<uint32_t>(-1280));
    return p.size(40);
}

struct bench_case {
    const char *label;
    uint16_t code;
    packet p;
    void run() const
    {
        modem_stats_diag_process_log_ex(static_cast<int32_t>(p.bytes().size()), code, 0, p.bytes().data());
    }
};

double packets_per_second(const bench_case &c, long packets)
{
    auto start = std::chrono::steady_clock::now();
    for (long i = 0; i < packets; i++) c.run();
    fflush(stdout);
    std::chrono::duration<double> secs = std::chrono::steady_clock::now() - start;
    return packets / secs.count();
}

}  // namespace

int main(int argc, char **argv)
{
    setenv("RLK_LOGCAT_FILE", "/dev/null", 1);
    const bench_case cases[] = {
        {"0xB193 v19, 1 cell (9 lines)", 0xB193, b193_v19()},
        {"0xB193 v36, 2 serving cells (15 lines)", 0xB193, b193_v36()},
        {"0xB97F 2.7, 1 carrier/cell/beam (5 lines)", 0xB97F, b97f(1, 1, 1)},
        {"0xB97F 2.7, 2x2x2 (17 lines, 2 records)", 0xB97F, b97f(2, 2, 2)},
        {"0xB064 v1, 5 samples (19 lines)", 0xB064, b064()},
        {"0xB16D v48, 2 records (2 lines)", 0xB16D, b16d()},
        {"0xB975 1.2 (2 lines)", 0xB975, b975()},
    };
    if (argc > 1 && std::string(argv[1]) == "--show") {
        for (const bench_case &c : cases) {
            printf("== %s\n", c.label);
            c.run();
        }
        return 0;
    }
    long packets = argc > 1 ? atol(argv[1]) : DEFAULT_PACKETS;
    if (packets <= 0) packets = DEFAULT_PACKETS;
    int figures_fd = dup(STDOUT_FILENO);
    FILE *figures = figures_fd >= 0 ? fdopen(figures_fd, "w") : nullptr;
    if (!figures || !freopen("/dev/null", "w", stdout) || setvbuf(stdout, nullptr, _IOFBF, STDOUT_BUFFER) != 0) {
        fprintf(stderr, "cannot redirect standard output\n");
        return 1;
    }

    fprintf(figures, "diag log parsers through the dispatcher, %ld packets per case, stdout to /dev/null, 1 thread\n",
            packets);
    long only = argc > 2 ? strtol(argv[2], nullptr, 0) : -1;
    for (const bench_case &c : cases) {
        if (only >= 0 && c.code != only) continue;
        fprintf(figures, "  %-44s %12.0f packets/s\n", c.label, packets_per_second(c, packets));
    }
    fclose(figures);
    return 0;
}
