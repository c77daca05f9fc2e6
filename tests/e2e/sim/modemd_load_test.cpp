/* rlk-modemd under clients that misbehave: one that never reads what it
 * asked for, one that never says hello, more connections than descriptors,
 * and floods of frames against the answers they get and the size of the
 * log. */
#include <poll.h>

#include <algorithm>
#include <atomic>
#include <memory>
#include <thread>

#include "../../unit/sim/sim_test_util.h"
#include "diag_channel.h"
#include "ext_request.h"
#include "raw_modemd.h"

namespace {

using bytes = std::vector<uint8_t>;

/* Worst delay a stalled client may cause another client's request (the
 * figure measured is printed; on an idle machine it is well below). */
constexpr long long k_max_delay_ms = 250;

/* A diag packet of `frames` copies of command `code` (each gets an answer). */
bytes diag_frames(size_t frames, uint8_t code)
{
    bytes pkt;
    diag_packet_build(USER_SPACE_RAW_DATA_TYPE, 0, 0, nullptr, 0, &pkt);
    pkt.resize(DIAG_ENVELOPE_LEN);
    for (size_t i = 0; i < frames; i++) hdlc_encode(&code, 1, &pkt);
    return pkt;
}

/* CPU time (user + system, clock ticks) the process has used: fields 14
 * and 15 of its stat, counted on after the command name. */
long cpu_ticks(pid_t pid)
{
    std::string stat = file_text("/proc/" + std::to_string(pid) + "/stat");
    long utime = 0, stime = 0;
    const char *fields = stat.c_str() + stat.rfind(')') + 2;
    if (sscanf(fields, "%*c %*d %*d %*d %*d %*d %*u %*u %*u %*u %*u %ld %ld", &utime, &stime) != 2) return -1;
    return utime + stime;
}

/* Two clients send without reading what they asked for (until the
 * simulator stops taking their packets) while a third makes round trips of
 * a control ping and an extension request: none is slow, and the two are
 * disconnected. */
TEST(ModemdLoad, AClientThatNeverReadsDelaysNoOtherAndIsDisconnected)
{
    sim_instance sim;
    ASSERT_TRUE(sim.start());
    raw_ext_client reader, stalled_ext;
    raw_conn stalled_diag;
    ASSERT_TRUE(reader.attach() && stalled_ext.attach() && stalled_diag.open(MODEMD_CONN_DIAG));
    struct timeval tv = {2, 0}; /* the flood ends when the simulator stops taking packets */
    for (int fd : {stalled_diag.fd, stalled_ext.fd}) setsockopt(fd, SOL_SOCKET, SO_SNDTIMEO, &tv, sizeof(tv));
    sim.ctl_ok("loop reset");
    std::atomic<bool> done(false);
    std::atomic<size_t> diag_sent(0), ext_sent(0);
    auto flood = [](const raw_conn &c, const bytes &pkt, std::atomic<size_t> *sent) {
        while (*sent < 20000 && send(c.fd, pkt.data(), pkt.size(), MSG_NOSIGNAL) == ssize_t(pkt.size())) ++*sent;
    };
    std::thread flooder([&] {
        std::thread diag(flood, std::cref(stalled_diag), diag_frames(400, 0x1c), &diag_sent);
        flood(stalled_ext, raw_ext_client::packet(1, make_efs_read_request("/")), &ext_sent);
        diag.join();
        done = true;
    });
    tolvek_extend_msg req = make_efs_read_request("/"), resp;
    long long worst = 0, start = monotonic_ms();
    size_t rounds = 0;
    bool ok = true;
    for (; ok && (!done || rounds < 50) && monotonic_ms() - start < 20000; rounds++) {
        long long t0 = monotonic_ms();
        ok = sim.ctl("ping") == "ok";
        long long t1 = monotonic_ms();
        ok = ok && reader.call(req, &resp, 10000);
        worst = std::max({worst, t1 - t0, monotonic_ms() - t1});
    }
    flooder.join();
    EXPECT_TRUE(ok) << "round " << rounds;
    std::string busy = sim.ctl_ok("loop");
    printf("[ figure ] slowest of %zu round trips beside a client that sent %zu diag packets of 400 frames and %zu "
           "requests without reading: %lld ms; longest event %s\n",
           rounds, size_t(diag_sent), size_t(ext_sent), worst, busy.c_str());
    EXPECT_LT(worst, k_max_delay_ms);
    EXPECT_LT(atoll(busy.substr(busy.find("cpu-us ") + 7).c_str()), k_max_delay_ms * 1000) << "longest event";
    EXPECT_TRUE(stalled_diag.closed_by_peer(k_wait_ms)) << "the stalled diag client was disconnected";
    EXPECT_TRUE(stalled_ext.closed_by_peer(k_wait_ms)) << "the stalled QMI client was disconnected";
    EXPECT_NE(file_text(sim.log_path()).find("client does not read"), std::string::npos);
    EXPECT_EQ(sim.ctl("ping"), "ok");
}

/* A connection that never says hello is closed after its time, one that
 * did is kept; more connections than descriptors neither make the daemon
 * spin nor starve its store of descriptors for its own files. */
TEST(ModemdLoad, NoHelloIsClosedAndMoreConnectionsThanDescriptorsNeitherSpinNorStarveTheStore)
{
    constexpr unsigned long k_limit = 64;
    sim_instance sim;
    sim.set_extra_args({"--hello-timeout", "200"});
    sim.set_fd_limit(k_limit);
    ASSERT_TRUE(sim.start());
    int silent = seqpacket_at(sim.socket_path(), false);
    raw_conn first;
    ASSERT_TRUE(silent >= 0 && first.open(MODEMD_CONN_CONTROL));
    long long t0 = monotonic_ms();
    char byte;
    pollfd p = {silent, POLLIN, 0};
    ASSERT_EQ(poll(&p, 1, k_wait_ms), 1);
    EXPECT_EQ(recv(silent, &byte, 1, 0), 0) << "closed, not answered";
    EXPECT_GE(monotonic_ms() - t0, 100);
    close(silent);
    usleep(100 * 1000); /* past the hello time-out of the other connection too */
    EXPECT_EQ(ask(first, "ping"), "ok");
    EXPECT_NE(file_text(sim.log_path()).find("no hello within 200 ms"), std::string::npos);

    /* A connection the simulator refuses at once may fail its hello. */
    std::vector<std::unique_ptr<raw_conn>> crowd;
    size_t refused = 0;
    for (unsigned long i = 0; i < k_limit + 20; i++) {
        crowd.emplace_back(new raw_conn);
        refused += crowd.back()->open(MODEMD_CONN_CONTROL) ? 0 : 1;
    }
    usleep(100 * 1000);
    long before = cpu_ticks(sim.pid());
    usleep(500 * 1000);
    EXPECT_LE(cpu_ticks(sim.pid()) - before, 10) << "ticks of CPU time in half a second with connections waiting";
    for (auto &c : crowd) refused += c->fd >= 0 && c->closed_by_peer(0) ? 1 : 0;
    EXPECT_GT(refused, 0u);
    EXPECT_NE(file_text(sim.log_path()).find("connection refused"), std::string::npos);
    /* The store still has descriptors for its own files. */
    EXPECT_EQ(ask(first, "efs put /fd/file 0102ff"), "ok");
    EXPECT_EQ(ask(first, "efs get /fd/file"), "ok 0102ff");
    crowd.clear();
    EXPECT_EQ(sim.ctl("ping"), "ok") << "new clients are served once others left";
}

/* One packet of many frames gets a bounded number of answers; floods of
 * bad frames and malformed packets are summarised, and the log rotated. */
TEST(ModemdLoad, FloodsGetBoundedAnswersAndASummarisedRotatedLog)
{
    constexpr size_t k_log_max = 4096;
    sim_instance sim;
    sim.set_extra_args({"--log-max", std::to_string(k_log_max)});
    ASSERT_TRUE(sim.start());
    const std::string log = sim.log_path(), rotated = log + ".1";
    const long long before = file_text(log).size();
    raw_conn diag;
    raw_ext_client ext;
    ASSERT_TRUE(diag.open(MODEMD_CONN_DIAG) && ext.attach());
    ASSERT_TRUE(diag.send(diag_frames(400, 0x1c)));
    size_t answers = 0;
    while (!diag.recv(300).empty()) answers++;
    EXPECT_EQ(answers, 16u);
    ASSERT_TRUE(diag.send(diag_frames(1, 0x1c)));
    EXPECT_FALSE(diag.recv(k_wait_ms).empty()) << "the connection still serves the next packet";

    bytes junk = diag_frames(0, 0); /* about a packet of frames whose CRC is wrong */
    while (junk.size() + 4 <= MODEMD_MAX_PACKET) junk.insert(junk.end(), {0x1c, 0x00, 0x00, HDLC_FLAG});
    for (int i = 0; i < 10; i++) ASSERT_TRUE(diag.send(junk));
    /* Other kinds of complaint, each rate-limited on its own. */
    for (int i = 0; i < 200; i++) ASSERT_TRUE(ext.send(bytes{0x07, 0x01}) && diag.send(bytes{0x80, 0x00}));
    EXPECT_EQ(sim.ctl("ping"), "ok");
    std::string all;
    EXPECT_TRUE(wait_until([&] {
        all = file_text(rotated) + file_text(log);
        return all.find("more like \"diag: dropped a bad frame") != std::string::npos;
    })) << all;
    EXPECT_NE(all.find("malformed QMI packet"), std::string::npos);
    EXPECT_LE(file_text(log).size(), k_log_max);
    EXPECT_LE(file_text(rotated).size(), k_log_max);
    EXPECT_LT(int64_t(file_text(rotated).size() + file_text(log).size()) - before, int64_t(4 * k_log_max))
        << "10 packets of 64 KiB of bad frames wrote a few lines";
}

}  // namespace
