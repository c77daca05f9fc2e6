/* rlk-modemd's diag port end to end: rlk's raw diag commands over it
 * (RLK_DIAG_DEVICE) in every mode, with long, dropped and late answers and
 * a log stream flowing; a client written here from the public layouts
 * configuring it as public decoders do and reading the scene back; a
 * reader that stops reading; a port that vanishes; rlk-replay live on it. */
#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <string.h>
#include <termios.h>
#include <time.h>
#include <unistd.h>

#include <cmath>
#include <map>
#include <thread>

#include <gtest/gtest.h>

#include "../../unit/diag/diag_test_util.h"
#include "../extension/ext_test_util.h"
#include "../replay/replay_e2e_util.h"
#include "sim_fixture.h"

using diag_test::bytes;
using diag_test::expect_all;

namespace {

constexpr int k_wait_ms = 5000;

/* Bits [from, from + width) of the little-endian bytes at `at`. */
uint32_t bits(const bytes &b, size_t at, int from, int width)
{
    uint64_t v = 0;
    for (int i = 0; i < 8 && at + size_t(i) < b.size(); i++) v |= uint64_t(b[at + size_t(i)]) << (8 * i);
    return uint32_t((v >> from) & ((1ull << width) - 1));
}

/* A diag client of the port, as a public decoder is one: raw device,
 * HDLC frames out, frames and streams in. */
struct port_client {
    int fd = -1;
    hdlc_decoder dec;
    explicit port_client(const std::string &path)
    {
        fd = open(path.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC | O_NONBLOCK);
        struct termios t;
        if (fd >= 0 && tcgetattr(fd, &t) == 0) {
            cfmakeraw(&t);
            tcsetattr(fd, TCSANOW, &t);
        }
    }
    ~port_client()
    {
        if (fd >= 0) close(fd);
    }
    void send(const bytes &cmd)
    {
        bytes f = diag_test::frame(cmd);
        ASSERT_EQ(write(fd, f.data(), f.size()), ssize_t(f.size()));
    }
    /* Everything the port sends within `ms`. */
    bytes read_for(int ms)
    {
        bytes all;
        uint8_t buf[4096];
        for (long long end = monotonic_ms() + ms, left; (left = end - monotonic_ms()) > 0;) {
            struct pollfd p = {fd, POLLIN, 0};
            ssize_t n = poll(&p, 1, int(left)) > 0 ? read(fd, buf, sizeof(buf)) : 0;
            if (n > 0) all.insert(all.end(), buf, buf + n);
        }
        return all;
    }
    /* The frames the port sends within `ms`. */
    std::vector<hdlc_frame> frames(int ms)
    {
        bytes more = read_for(ms);
        std::vector<hdlc_frame> out;
        dec.feed(more.data(), more.size(), &out);
        return out;
    }
    /* The first frame starting with `code` (others skipped), or empty. */
    bytes answer(uint8_t code)
    {
        for (long long end = monotonic_ms() + k_wait_ms; monotonic_ms() < end;) {
            for (const hdlc_frame &f : frames(50)) {
                if (f.status == HDLC_OK && !f.payload.empty() && f.payload[0] == code) return f.payload;
            }
        }
        return {};
    }
};

/* LOG_CONFIG set mask of equipment 0xB with 0x9FF items (as a public
 * decoder sends it) and these codes set. */
bytes lte_mask(const std::vector<uint16_t> &codes)
{
    bytes cmd = {0x73, 0, 0, 0, 3, 0, 0, 0, 0x0B, 0, 0, 0, 0xFF, 0x09, 0, 0};
    cmd.resize(cmd.size() + (0x9FF + 7) / 8);
    for (uint16_t c : codes) cmd[16 + (c & 0xFFF) / 8] |= uint8_t(1 << (c % 8));
    return cmd;
}

class DiagPortTest : public testing::Test {
protected:
    void SetUp() override
    {
        sim.enable_diag_port();
        ASSERT_TRUE(sim.start());
    }
    rlk_run diag(int mode, int type, int time_out, const std::vector<std::string> &cmd)
    {
        std::vector<std::string> args = {"5", "0", std::to_string(mode), std::to_string(type),
                                         std::to_string(time_out)};
        args.insert(args.end(), cmd.begin(), cmd.end());
        return sim.run_rlk(args, {"RLK_DIAG_DEVICE=" + sim.diag_port_path()});
    }
    /* The "diag port" answer once `done` holds for it (a failure when it
     * does not within k_wait_ms): the port's counters move with its ticks,
     * which a loaded machine delays. */
    template <class F>
    std::string port_when(F done)
    {
        std::string s;
        EXPECT_TRUE(poll_until([&] { return done(s = sim.ctl("diag port")); }, k_wait_ms)) << s;
        return s;
    }
    static unsigned long long counter(const std::string &s, const std::string &name)
    {
        size_t at = s.find(" " + name + "=");
        return at == std::string::npos ? 0 : strtoull(s.c_str() + at + name.size() + 2, nullptr, 10);
    }
    sim_instance sim;
};

TEST_F(DiagPortTest, RlkOverThePortInEveryModeAndAPortThatVanishesEndsTheWaitByItsTimeOut)
{
    const char *ver = "\nrsp data len(3)\nrsp data: 0x1C 0x08 0x00\n";
    const char *dropped[] = {"stop waiting", "note: Error happen! error_code(1)"};
    const struct {
        int mode, type, time_out;
        const char *setup;
        std::vector<std::string> cmd, out; /* out: texts rlk prints, in any order */
    } cases[] = {
        {0, 0, 1000, "", {"0x1C"}, {ver}},
        {1, 0, 1000, "", {"0x1C"}, {ver, "MPSS on ch:0: UP"}},
        {0, 1, 1000, "", {"0x1C"}, {"\ndone without rsp data\n"}},
        {1, 1, 1000, "", {"0x1C"}, {"\ndone without rsp data\n"}},
        {0, 0, 1000, "diag next-size 5000", {"0x1C"}, {"\nrsp data len(5000)\n"}},
        /* Over the port a DCI answer is whole; the library hands it out in
         * 4096-byte pieces as the DCI rules say. */
        {1, 0, 1000, "diag next-size 5000", {"0x1C"},
         {"response, cmd_code = 0x1c, data_size = 4096", "data_size = 904", "\nrsp data len(5000)\n"}},
        {0, 0, 300, "diag drop 0x1c", {"0x1C"}, {dropped[0], dropped[1]}},
        {1, 0, 300, "diag drop 0x1c", {"0x1C"}, {dropped[0], dropped[1]}},
        /* A late answer is still taken, and an error answer is an answer. */
        {0, 0, 2000, "diag delay 0x1c 300", {"0x1C"}, {"\nrsp data: 0x1C 0x08 0x00\n"}},
        {0, 0, 1000, "", {"0xEE", "0x01"}, {"\nrsp data: 0x13 0xEE 0x01\n"}},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(std::to_string(c.mode) + "/" + std::to_string(c.type) + " " + c.setup);
        if (*c.setup) sim.ctl_ok(c.setup);
        rlk_run r = diag(c.mode, c.type, c.time_out, c.cmd);
        EXPECT_TRUE(exited_cleanly(r.status)) << r.err;
        std::string all = r.out;
        for (const log_line &l : r.syslog) all += l.text + "\n";
        expect_all(all, c.out);
        sim.ctl_ok("diag clear");
    }
    EXPECT_EQ(sim.ctl_ok("diag last 1"), "port 0 ee01") << "the commands went over the port";

    /* A port that vanishes ends the wait by its time-out. */
    sim.ctl_ok("diag delay 0x1c 5000");
    rlk_run r;
    std::thread waiter([&] { r = diag(0, 0, 1500, {"0x1C"}); });
    /* The port goes once the command is in. */
    poll_until([&] { return has_text(sim.ctl("diag last 1"), "port 0 1c"); }, k_wait_ms);
    sim.kill_hard();
    waiter.join();
    EXPECT_TRUE(exited_cleanly(r.status));
    expect_all(r.out, {"stop waiting", "note: Error happen! error_code(1)"});
}

TEST_F(DiagPortTest, CommandsAreAnsweredWhileLogsAndEventsFloodAndAStuckReaderStallsNobody)
{
    port_client noisy(sim.diag_port_path());
    ASSERT_GE(noisy.fd, 0);
    sim.ctl_ok("diag rate 2000");
    /* Event reporting goes on before the logs: the stream's first cycle
     * carries an event.  (The other way round, logs alone could fill the
     * room the non-reading client leaves before event reporting is on, and
     * no cycle would run to carry an event.) */
    noisy.send({0x60, 1});
    noisy.send(lte_mask({0xB193, 0xB97F, 0xB0C0}));
    ASSERT_FALSE(noisy.answer(0x73).empty());
    std::string s = port_when([](const std::string &st) { return !has_text(st, " event-packets=0 "); });
    unsigned long long before = counter(s, "log-packets");
    /* The noisy client reads no more: rlk's process gets the stream, and
     * finds each answer behind what the port holds for nobody (up to its
     * stream room and the device's buffer), within a wait that a loaded
     * machine cannot run out.  The answer to EVENT_REPORT is not one of
     * the event reports around it. */
    for (int mode : {0, 1})
        expect_all(diag(mode, 0, k_wait_ms, {"0x1C"}).out, {"\nrsp data len(3)\nrsp data: 0x1C 0x08 0x00\n"});
    expect_all(diag(0, 0, k_wait_ms, {"0x60", "0x00"}).out, {"\nrsp data len(3)\nrsp data: 0x60 0x00 0x00\n"});
    /* What rlk read made room: the stream went on. */
    port_when([&](const std::string &st) { return counter(st, "log-packets") > before; });

    /* Flooded past what it can hold, the port is stuck once it skips
     * cycles; socket clients go on as before: the answer comes within rlk's
     * own wait of 1 s. */
    sim.ctl_ok("diag rate 100000");
    port_when([](const std::string &st) { return !has_text(st, " skipped-cycles=0 "); });
    rlk_run r = sim.run_rlk({"5", "0", "0", "0", "1000", "0x1C"});
    EXPECT_TRUE(has_text(r.out, "\nrsp data: 0x1C 0x08 0x00\n")) << r.out;
    EXPECT_FALSE(has_text(r.out, "stop waiting")) << r.out;
    s = sim.ctl_ok("diag port");
    EXPECT_TRUE(has_text(s, " reader=1 ")) << s;
    EXPECT_FALSE(has_text(s, " skipped-cycles=0 ")) << s;
}

TEST_F(DiagPortTest, APublicClientConfiguresThePortAndReadsTheScene)
{
    for (const char *set : {"lte.0.earfcn 1300", "lte.0.pci 77", "lte.0.rsrp0 -93.75", "lte.0.rsrp1 -97.25",
                            "lte.0.rsrq0 -12.5", "lte.0.rssi2 -70.75", "lte.0.snr3 11.5", "nr.0.rsrp0 -91.5",
                            "nr.0.rsrq -13.25"}) {
        sim.ctl_ok(std::string("vs set 0 ") + set);
    }
    sim.ctl_ok("diag rate 100");
    {
        port_client c(sim.diag_port_path());
        ASSERT_GE(c.fd, 0);
        /* What public decoders send first. */
        c.send({0x00});
        EXPECT_GE(c.answer(0x00).size(), 47u);
        c.send({0x7C});
        EXPECT_GT(c.answer(0x7C).size(), 12u);
        c.send({0x60, 0});
        EXPECT_EQ(c.answer(0x60), (bytes{0x60, 0, 0}));
        c.send({0x73, 0, 0, 0, 1, 0, 0, 0});
        bytes ranges = c.answer(0x73);
        ASSERT_EQ(ranges.size(), 12u + 16 * 4);
        EXPECT_EQ(bits(ranges, 8, 0, 32), 0u) << "result";
        EXPECT_GE(bits(ranges, 12 + 0xB * 4, 0, 32), 0x97Fu) << "equipment 0xB reaches 0xB97F";
        c.send({0x7D, 1});
        EXPECT_EQ(c.answer(0x7D).size(), 12u);
        c.send(lte_mask({0xB193, 0xB17F, 0xB97F, 0xB0C0}));
        bytes set = c.answer(0x73);
        ASSERT_GT(set.size(), 20u);
        EXPECT_EQ(bits(set, 4, 0, 32), 3u);
        EXPECT_EQ(bits(set, 8, 0, 32), 0u);
        c.send({0x60, 1});
        long long now_unix_ms = (long long)time(nullptr) * 1000;
        /* Read until an event 1606 and each code came (ticks run late on a
         * loaded machine): log packets (0x10: code at 6, timestamp at 8,
         * the payload from 16) and event reports (0x60: the first record's
         * id in the low 12 bits at 3). */
        std::map<uint16_t, bytes> first; /* the first payload of each code */
        bool event = false;
        size_t bad = 0;
        for (long long end = monotonic_ms() + k_wait_ms; monotonic_ms() < end && (!event || first.size() < 4);) {
            for (const hdlc_frame &f : c.frames(50)) {
                const bytes &p = f.payload;
                bad += f.status != HDLC_OK;
                if (f.status != HDLC_OK || p.size() < 5) continue;
                event |= p[0] == 0x60 && (bits(p, 3, 0, 12) == 1606);
                if (p[0] != 0x10 || p.size() < 16) continue;
                /* Timestamps: 1.25 ms units since 1980-01-06 in the upper 48 bits. */
                double units = double(bits(p, 10, 0, 32)) + double(bits(p, 14, 0, 16)) * 4294967296.0;
                EXPECT_LT(std::fabs(units * 1.25 + 315964800000.0 - double(now_unix_ms)), 5000.0);
                first.emplace(uint16_t(bits(p, 6, 0, 16)), bytes(p.begin() + 16, p.end()));
            }
        }
        EXPECT_EQ(bad, 0u);
        EXPECT_TRUE(event);
        /* Raw fields: RSRP (x + 180) * 16 or, combined, (x + 140) * 16, RSRQ
         * (x + 30) * 16, RSSI (x + 110) * 16, SNR (x + 20) * 10, and NR
         * values x * 128. */
        const struct {
            uint16_t code;
            size_t at;
            int from, width;
            uint32_t value;
        } fields[] = {
            {0xB193, 0, 0, 8, 1}, {0xB193, 1, 0, 8, 1}, {0xB193, 4, 0, 8, 25}, {0xB193, 5, 0, 8, 36},
            {0xB193, 6, 0, 16, 140}, {0xB193, 8, 0, 32, 1300}, {0xB193, 16, 0, 9, 77}, {0xB193, 16, 12, 1, 1},
            {0xB193, 36, 12, 12, 1324} /* RSRP Rx1 */, {0xB193, 52, 0, 10, 280} /* RSRQ Rx0 */,
            {0xB193, 68, 0, 11, 628} /* RSSI Rx2 */, {0xB193, 100, 9, 9, 315} /* SNR Rx3 */,
            {0xB193, 44, 12, 12, 740} /* combined RSRP: Rx0's */,
            {0xB17F, 0, 0, 8, 5}, {0xB17F, 4, 0, 32, 1300}, {0xB17F, 8, 0, 9, 77},
            {0xB17F, 12, 0, 12, 1380} /* RSRP */, {0xB17F, 20, 0, 10, 280} /* RSRQ */,
            {0xB97F, 0, 0, 32, 0x20007}, {0xB97F, 4, 0, 8, 1}, {0xB97F, 56, 0, 32, uint32_t(-11712)} /* cell RSRP */,
            {0xB97F, 60, 0, 32, uint32_t(-1696)} /* cell RSRQ */, {0xB97F, 84, 0, 32, uint32_t(-11712)} /* beam */,
            {0xB0C0, 0, 0, 8, 15} /* version */, {0xB0C0, 12, 0, 8, 1} /* BCCH-BCH */, {0xB0C0, 4, 0, 16, 77},
            {0xB0C0, 6, 0, 32, 1300}, {0xB0C0, 17, 0, 16, 3},
        };
        const std::map<uint16_t, size_t> sizes = {{0xB193, 4 + 4 + 8 + 128}, {0xB17F, 36}, {0xB97F, 16 + 32 + 16 + 44},
                                                  {0xB0C0, 22}};
        for (const auto &s : sizes) ASSERT_EQ(first[s.first].size(), s.second) << std::hex << s.first;
        for (const auto &f : fields)
            EXPECT_EQ(bits(first[f.code], f.at, f.from, f.width), f.value) << std::hex << f.code << " at " << f.at;
        /* The MIB's SFN bits are the header SFN's upper 8. */
        const bytes &mib = first[0xB0C0];
        EXPECT_EQ(uint32_t(((mib[19] & 0x3) << 6) | (mib[20] >> 2)), bits(mib, 10, 6, 10));
        EXPECT_TRUE(has_text(sim.ctl_ok("diag port"), " events=on logs=0xB193,0xB17F,0xB97F,0xB0C0 "));
        c.send({0x73, 0, 0, 0, 0, 0, 0, 0}); /* disable */
        EXPECT_EQ(c.answer(0x73).size(), 12u);
    }
    /* The reader went: masks and event reporting are reset, and the next
     * reader gets nothing it did not ask for. */
    std::string s = port_when([](const std::string &st) { return has_text(st, " reader=0 "); });
    EXPECT_TRUE(has_text(s, " events=off logs=none ")) << s;
    port_client next(sim.diag_port_path());
    EXPECT_TRUE(next.read_for(100).empty());
}

TEST_F(DiagPortTest, ReplayLiveDecodesTheSceneAndTurnsItsMasksOffOnCtrlC)
{
    sim.ctl_ok("vs set 0 lte.0.rsrp0 -95.5");
    sim.ctl_ok("diag rate 100");
    const struct {
        std::vector<std::string> argv;
        const char *last; /* the last command it sent, after the stop */
    } runs[] = {
        {{RLK_REPLAY_BINARY, sim.diag_port_path()}, "port 0 6000"},
        {{RLK_REPLAY_BINARY, "--log", "0xB193", sim.diag_port_path()}, "port 0 73000000030000000b00000094010000"},
    };
    for (const auto &run : runs) {
        const bool defaults = run.argv.size() == 2;
        replay_e2e::child c = replay_e2e::spawn(run.argv, -1);
        ASSERT_GT(c.pid, 0);
        std::string out, err;
        EXPECT_TRUE(replay_e2e::read_until(c, "rsrp_rx0 = -95.50, rsrp_rx1 = -89.50", k_wait_ms, &out)) << out;
        if (defaults) {
            EXPECT_TRUE(replay_e2e::read_until(c, " UTC event 1606 ", k_wait_ms, &out)) << out;
        }
        kill(c.pid, SIGINT);
        int status = replay_e2e::finish(&c, k_wait_ms, &out, &err);
        EXPECT_EQ(status, 0) << err;
        EXPECT_NE(out.find("log packets per code:\n  0xB193 "), std::string::npos) << out;
        EXPECT_EQ(out.find("event records per id:\n  1606 ") == std::string::npos, !defaults) << out;
        /* Turned off before it let go of the port: an empty mask. */
        std::string last = sim.ctl_ok("diag last 1");
        EXPECT_EQ(last.substr(0, strlen(run.last)), run.last);
        EXPECT_EQ(last.find_first_not_of('0', strlen(run.last)), std::string::npos) << last;
        std::string s = port_when([](const std::string &st) { return has_text(st, " reader=0 "); });
        EXPECT_TRUE(has_text(s, " events=off logs=none ")) << s;
    }
}

}  // namespace
