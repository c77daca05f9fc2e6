/* rlk-modemd under clients that misbehave: one that never reads what it
 * asked for, one that never says hello, more connections than descriptors,
 * and floods of bad frames against the size of the log. */
#include <fcntl.h>
#include <poll.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <fstream>
#include <memory>
#include <sstream>
#include <thread>

#include <gtest/gtest.h>

#include "diag_channel.h"
#include "raw_modemd.h"
#include "sim_fixture.h"

namespace {

using bytes = std::vector<uint8_t>;

/* Worst delay a stalled client may cause another client's request (the
 * figure measured is printed; on an idle machine it is well below). */
constexpr long long k_max_delay_ms = 250;
constexpr int k_wait_ms = 3000;

/* A diag packet of `frames` copies of command `code` (each gets an answer). */
bytes diag_frames(size_t frames, uint8_t code)
{
    bytes pkt;
    diag_packet_build(USER_SPACE_RAW_DATA_TYPE, 0, 0, nullptr, 0, &pkt);
    pkt.resize(DIAG_ENVELOPE_LEN);
    for (size_t i = 0; i < frames; i++) hdlc_encode(&code, 1, &pkt);
    return pkt;
}

/* A diag packet of about `size` bytes of frames whose CRC is wrong. */
bytes diag_bad_frames(size_t size)
{
    bytes pkt;
    diag_packet_build(USER_SPACE_RAW_DATA_TYPE, 0, 0, nullptr, 0, &pkt);
    pkt.resize(DIAG_ENVELOPE_LEN);
    while (pkt.size() + 4 <= size) pkt.insert(pkt.end(), {0x1c, 0x00, 0x00, HDLC_FLAG});
    return pkt;
}

off_t file_size(const std::string &path)
{
    struct stat st;
    return stat(path.c_str(), &st) == 0 ? st.st_size : -1;
}

std::string read_all(const std::string &path)
{
    std::ifstream in(path);
    std::stringstream ss;
    ss << in.rdbuf();
    return ss.str();
}

/* CPU time (user + system, clock ticks) the process has used. */
long cpu_ticks(pid_t pid)
{
    std::string stat = read_all("/proc/" + std::to_string(pid) + "/stat");
    size_t paren = stat.rfind(')');
    if (paren == std::string::npos) return -1;
    std::istringstream in(stat.substr(paren + 2));
    std::string field;
    long utime = 0, stime = 0;
    for (int i = 3; in >> field; i++) {
        if (i == 14) utime = atol(field.c_str());
        if (i == 15) {
            stime = atol(field.c_str());
            break;
        }
    }
    return utime + stime;
}

/* Sends `pkt` on `c` until the simulator drops the connection, at most
 * `max` times; returns how many went out. */
size_t flood(const raw_conn &c, const bytes &pkt, size_t max)
{
    size_t sent = 0;
    while (sent < max && send(c.fd, pkt.data(), pkt.size(), MSG_NOSIGNAL) == ssize_t(pkt.size())) sent++;
    return sent;
}

/* Round trips of a control ping and of an extension request on a client
 * that reads, while `busy` holds. */
struct round_trips {
    std::vector<long long> ping, ext;
    long long worst() const
    {
        long long w = 0;
        for (long long v : ping) w = std::max(w, v);
        for (long long v : ext) w = std::max(w, v);
        return w;
    }
    long long median(std::vector<long long> v) const
    {
        std::sort(v.begin(), v.end());
        return v.empty() ? -1 : v[v.size() / 2];
    }
};

round_trips measure(const sim_instance &sim, raw_ext_client &reader, const tolvek_extend_msg &req,
                    const std::atomic<bool> &done, size_t min_rounds)
{
    round_trips r;
    long long start = monotonic_ms();
    while ((!done || r.ping.size() < min_rounds) && monotonic_ms() - start < 20000) {
        long long t0 = monotonic_ms();
        std::string answer = sim.ctl("ping");
        long long t1 = monotonic_ms();
        tolvek_extend_msg resp;
        bool ok = reader.call(req, &resp, 10000);
        r.ping.push_back(t1 - t0);
        r.ext.push_back(monotonic_ms() - t1);
        EXPECT_EQ(answer, "ok");
        EXPECT_TRUE(ok);
        if (answer != "ok" || !ok) break;
    }
    return r;
}

TEST(ModemdLoad, AClientThatNeverReadsDelaysNoOtherAndIsDisconnected)
{
    sim_instance sim;
    ASSERT_TRUE(sim.start());
    tolvek_extend_msg read_req = {};
    read_req.msg_code = REQUEST_ID_EFS;
    read_req.data_len = TOLVEK_EXTEND_DATA_MAX;
    read_req.data_valid = 1;
    read_req.data[0] = TOLVEK_EFS_OP_READ;
    read_req.data[4] = 1;
    read_req.data[5] = '/';
    raw_ext_client reader;
    ASSERT_TRUE(reader.attach());
    std::atomic<bool> idle_done(true);
    round_trips idle = measure(sim, reader, read_req, idle_done, 50);
    std::string idle_event = sim.ctl_ok("loop reset");

    raw_conn stalled_diag;
    raw_ext_client stalled_ext;
    ASSERT_TRUE(stalled_diag.open(MODEMD_CONN_DIAG));
    ASSERT_TRUE(stalled_ext.attach());
    struct timeval tv = {2, 0}; /* the flood ends when the simulator stops taking packets */
    setsockopt(stalled_diag.fd, SOL_SOCKET, SO_SNDTIMEO, &tv, sizeof(tv));
    setsockopt(stalled_ext.fd, SOL_SOCKET, SO_SNDTIMEO, &tv, sizeof(tv));
    std::atomic<bool> done(false);
    std::atomic<size_t> diag_sent(0), ext_sent(0);
    std::thread diag_flood([&] { diag_sent = flood(stalled_diag, diag_frames(400, 0x1c), 20000); });
    std::thread ext_flood([&] {
        ext_sent = flood(stalled_ext, raw_ext_client::packet(1, read_req), 20000);
        diag_flood.join();
        done = true;
    });
    round_trips busy = measure(sim, reader, read_req, done, 50);
    ext_flood.join();
    std::string busy_event = sim.ctl_ok("loop");

    printf("[ figure ] idle: %zu rounds, ping median %lld ms, request median %lld ms, worst %lld ms\n",
           idle.ping.size(), idle.median(idle.ping), idle.median(idle.ext), idle.worst());
    printf("[ figure ] beside a client that sent %zu diag packets of 400 frames and %zu requests without "
           "reading: %zu rounds, ping median %lld ms, request median %lld ms, worst %lld ms\n",
           size_t(diag_sent), size_t(ext_sent), busy.ping.size(), busy.median(busy.ping), busy.median(busy.ext),
           busy.worst());
    printf("[ figure ] the daemon's longest single event: idle %s, under the flood %s\n", idle_event.c_str(),
           busy_event.c_str());
    EXPECT_LT(busy.worst(), k_max_delay_ms);
    long long cpu_us = atoll(busy_event.substr(busy_event.find("cpu-us ") + 7).c_str());
    EXPECT_LT(cpu_us, k_max_delay_ms * 1000) << "no event kept the daemon busy for long";

    EXPECT_TRUE(stalled_diag.closed_by_peer(k_wait_ms)) << "the stalled diag client was disconnected";
    EXPECT_TRUE(stalled_ext.closed_by_peer(k_wait_ms)) << "the stalled QMI client was disconnected";
    EXPECT_NE(read_all(sim.log_path()).find("client does not read"), std::string::npos);
    EXPECT_EQ(sim.ctl("ping"), "ok");
}

TEST(ModemdLoad, OnePacketOfManyFramesGetsABoundedNumberOfAnswers)
{
    sim_instance sim;
    ASSERT_TRUE(sim.start());
    raw_conn diag;
    ASSERT_TRUE(diag.open(MODEMD_CONN_DIAG));
    ASSERT_TRUE(diag.send(diag_frames(400, 0x1c)));
    size_t answers = 0;
    while (!diag.recv(300).empty()) answers++;
    EXPECT_EQ(answers, 16u);
    /* The connection still serves the next packet. */
    ASSERT_TRUE(diag.send(diag_frames(1, 0x1c)));
    EXPECT_FALSE(diag.recv(k_wait_ms).empty());
}

TEST(ModemdLoad, AConnectionWithoutHelloIsClosedAndOneWithHelloIsKept)
{
    sim_instance sim;
    sim.set_extra_args({"--hello-timeout", "200"});
    ASSERT_TRUE(sim.start());
    int silent = socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0);
    sockaddr_un addr = {};
    addr.sun_family = AF_UNIX;
    snprintf(addr.sun_path, sizeof(addr.sun_path), "%s", sim.socket_path().c_str());
    ASSERT_EQ(connect(silent, reinterpret_cast<sockaddr *>(&addr), sizeof(addr)), 0);
    raw_conn control;
    ASSERT_TRUE(control.open(MODEMD_CONN_CONTROL));

    long long t0 = monotonic_ms();
    char byte;
    pollfd p = {silent, POLLIN, 0};
    ASSERT_EQ(poll(&p, 1, k_wait_ms), 1);
    EXPECT_EQ(recv(silent, &byte, 1, 0), 0) << "closed, not answered";
    EXPECT_GE(monotonic_ms() - t0, 100);
    close(silent);

    usleep(100 * 1000); /* past the hello time-out of the other connection too */
    ASSERT_TRUE(control.send(bytes{'p', 'i', 'n', 'g'}));
    bytes answer = control.recv(k_wait_ms);
    EXPECT_EQ(std::string(answer.begin(), answer.end()), "ok");
    EXPECT_NE(read_all(sim.log_path()).find("no hello within 200 ms"), std::string::npos);
}

TEST(ModemdLoad, MoreConnectionsThanDescriptorsNeitherSpinsNorStarvesTheStore)
{
    constexpr unsigned long k_limit = 64;
    sim_instance sim;
    sim.set_fd_limit(k_limit);
    ASSERT_TRUE(sim.start());
    raw_conn first;
    ASSERT_TRUE(first.open(MODEMD_CONN_CONTROL));
    /* A connection the simulator refuses at once may fail its hello. */
    std::vector<std::unique_ptr<raw_conn>> crowd;
    size_t refused = 0;
    for (unsigned long i = 0; i < k_limit + 20; i++) {
        auto c = std::make_unique<raw_conn>();
        if (c->open(MODEMD_CONN_CONTROL)) {
            crowd.push_back(std::move(c));
        } else {
            refused++;
        }
    }
    usleep(100 * 1000);
    long before = cpu_ticks(sim.pid());
    usleep(500 * 1000);
    long used = cpu_ticks(sim.pid()) - before;
    EXPECT_LE(used, 10) << "ticks of CPU time in half a second with connections waiting";

    for (auto &c : crowd) refused += c->closed_by_peer(0) ? 1 : 0;
    EXPECT_GT(refused, 0u);
    EXPECT_NE(read_all(sim.log_path()).find("connection refused"), std::string::npos);

    /* The store still has descriptors for its own files. */
    std::string put = "efs put /fd/file 0102ff";
    ASSERT_TRUE(first.send(bytes(put.begin(), put.end())));
    bytes a = first.recv(k_wait_ms);
    EXPECT_EQ(std::string(a.begin(), a.end()), "ok");
    std::string get = "efs get /fd/file";
    ASSERT_TRUE(first.send(bytes(get.begin(), get.end())));
    a = first.recv(k_wait_ms);
    EXPECT_EQ(std::string(a.begin(), a.end()), "ok 0102ff");

    crowd.clear();
    EXPECT_EQ(sim.ctl("ping"), "ok") << "new clients are served once others left";
}

TEST(ModemdLoad, FloodsOfBadFramesAreSummarisedAndTheLogIsRotated)
{
    constexpr long k_log_max = 4096;
    sim_instance sim;
    sim.set_extra_args({"--log-max", std::to_string(k_log_max)});
    ASSERT_TRUE(sim.start());
    off_t before = file_size(sim.log_path());
    raw_conn diag;
    ASSERT_TRUE(diag.open(MODEMD_CONN_DIAG));
    bytes junk = diag_bad_frames(MODEMD_MAX_PACKET);
    for (int i = 0; i < 10; i++) ASSERT_TRUE(diag.send(junk));
    /* Other kinds of complaint, each rate-limited on its own. */
    raw_ext_client ext;
    ASSERT_TRUE(ext.attach());
    for (int i = 0; i < 200; i++) ASSERT_TRUE(ext.send(bytes{0x07, 0x01}));
    for (int i = 0; i < 200; i++) ASSERT_TRUE(diag.send(bytes{0x80, 0x00}));
    EXPECT_EQ(sim.ctl("ping"), "ok");

    std::string rotated = sim.log_path() + ".1";
    long long deadline = monotonic_ms() + k_wait_ms;
    std::string all;
    while (monotonic_ms() < deadline) {
        all = read_all(rotated) + read_all(sim.log_path());
        if (all.find("more like \"diag: dropped a bad frame") != std::string::npos) break;
        usleep(50 * 1000);
    }
    EXPECT_NE(all.find("more like \"diag: dropped a bad frame"), std::string::npos) << all;
    EXPECT_NE(all.find("malformed QMI packet"), std::string::npos);
    EXPECT_LE(file_size(sim.log_path()), k_log_max);
    EXPECT_LE(file_size(rotated), k_log_max);
    EXPECT_LT(file_size(rotated) + file_size(sim.log_path()) - before, 4 * k_log_max)
        << "10 packets of 64 KiB of bad frames wrote a few lines";
}

}  // namespace
