/* rlk-modemd's QMUX device under frames written by hand: the control
 * service's answers, the client id pool, frames routed by client id,
 * logical channels that close with their client id, malformed frames that
 * leave the device serving, and a flooding writer that holds no socket
 * client up. */
#include <fcntl.h>
#include <poll.h>

#include <algorithm>
#include <atomic>
#include <sstream>
#include <thread>

#include "../../unit/sim/sim_test_util.h"
#include "golden.h"
#include "qmi_codec.h"
#include "qmux.h"

namespace {

using bytes = std::vector<uint8_t>;
constexpr int k_silence_ms = 200; /* how long to watch for a frame that must not come */

/* A frame as the hex bytes of the wire, spaced. */
std::string frame_hex(const qmux_frame &f)
{
    bytes wire;
    qmux_encode(f.flags, f.service, f.client, f.qmi.data(), f.qmi.size(), &wire);
    std::string s;
    for (uint8_t b : wire) s += " " + hex(&b, 1);
    return s.substr(1);
}

class QmuxDevice : public ::testing::Test {
protected:
    void SetUp() override
    {
        sim_.enable_qmux();
        ASSERT_TRUE(sim_.start());
        fd = open(sim_.qmux_path().c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);
        ASSERT_GE(fd, 0);
    }
    void TearDown() override { close(fd); }
    /* The next frame of the device, or false when none came within
     * `timeout_ms`. */
    bool read_frame(qmux_frame *f, int timeout_ms = k_wait_ms)
    {
        while (!reader_.next(f)) {
            struct pollfd p = {fd, POLLIN, 0};
            uint8_t buf[4096];
            ssize_t n = poll(&p, 1, timeout_ms) == 1 ? read(fd, buf, sizeof(buf)) : 0;
            if (n <= 0) return false;
            reader_.feed(buf, size_t(n));
        }
        return true;
    }
    /* Runs the device session kept in the golden file `name`: "#" lines
     * are comments, "> request" a control request to the simulator (its
     * answer on the "=" lines after it), any other line a frame written to
     * the device in hex; the "<" lines after a step are the frames the
     * device sends back, in order.  The session is written down the same
     * way and compared whole with the file; a frame nobody asked for
     * fails the test. */
    void run_session(const std::string &name)
    {
        std::istringstream script(read_golden(__FILE__, name));
        std::vector<std::string> lines;
        for (std::string l; std::getline(script, l);) lines.push_back(l);
        std::string session;
        qmux_frame f;
        for (size_t i = 0; i < lines.size(); i++) {
            const std::string &l = lines[i];
            if (l[0] == '<' || l[0] == '=') continue;
            session += l + "\n";
            if (l[0] == '>') {
                std::istringstream answer(sim_.ctl(l.substr(2)));
                for (std::string a; std::getline(answer, a);) session += "= " + a + "\n";
            } else if (l[0] != '#') {
                std::istringstream hex(l);
                bytes frame;
                for (unsigned b; hex >> std::hex >> b;) frame.push_back(uint8_t(b));
                ASSERT_EQ(write(fd, frame.data(), frame.size()), ssize_t(frame.size())) << l;
            }
            for (size_t j = i + 1; j < lines.size() && (lines[j][0] == '<' || lines[j][0] == '='); j++) {
                if (lines[j][0] == '<') session += "< " + (read_frame(&f) ? frame_hex(f) : "nothing") + "\n";
            }
        }
        EXPECT_FALSE(read_frame(&f, k_silence_ms)) << "a frame nobody asked for: " << frame_hex(f);
        expect_golden(session, __FILE__, name);
    }
    sim_instance sim_;
    qmux_reader reader_;
    int fd = -1;
};

/* Version info, the finite per-service pool, Sync, the control errors, the
 * revocation of a service's ids when it goes down, the link's removal. */
TEST_F(QmuxDevice, ControlServiceAnswersAndClientIdPool)
{
    run_session("qmux_control_pool.golden");
    EXPECT_EQ(access(sim_.qmux_path().c_str(), F_OK), 0);
    sim_.stop();
    EXPECT_NE(access(sim_.qmux_path().c_str(), F_OK), 0) << "the link is removed on exit";
}

/* A request's answer and indication go to the client that asked, under its
 * client id; logical channels a client id opened close with it, when the
 * host releases it and when Sync releases every id. */
TEST_F(QmuxDevice, ClientIdRoutesFramesAndClosesItsChannels)
{
    run_session("qmux_routing.golden");
}

TEST_F(QmuxDevice, MalformedFramesAreDroppedAndCountedWhileServingGoesOn)
{
    run_session("qmux_malformed.golden");
}

/* A writer flooding the device with requests (its answers read by another
 * thread) holds no socket client up: the device is served a bounded piece
 * at a time.  The figures measured are printed. */
TEST_F(QmuxDevice, AFloodingWriterDelaysNoSocketClient)
{
    /* Bounds for a loaded machine; unbounded, one event served all the
     * device held (tens of milliseconds of CPU, pings delayed 0.2-1 s). */
    constexpr long long k_max_delay_ms = 250, k_max_event_cpu_us = 5000, k_flood_bytes = 128 << 10;
    run_session("qmux_dms_client.golden");
    bytes burst;
    for (uint16_t txn = 1; txn <= 2000; txn++) {
        bytes req(QMI_HEADER_LEN), frame;
        qmi_header_write(req.data(), {QMI_TYPE_REQUEST, txn, 0x0023, 0});
        ASSERT_TRUE(qmux_encode(0, 0x02, 1, req.data(), req.size(), &frame)); /* DMS, the session's client id */
        burst.insert(burst.end(), frame.begin(), frame.end());
    }
    fcntl(fd, F_SETFL, O_NONBLOCK); /* the threads below stop when told, whatever the device does */
    std::atomic<bool> done(false);
    std::atomic<long long> written(0);
    std::thread pump([&] { /* writes the burst over and over, reads the answers away */
        uint8_t buf[65536];
        for (size_t off = 0; !done; off %= burst.size()) {
            struct pollfd p = {fd, POLLIN | POLLOUT, 0};
            if (poll(&p, 1, 50) != 1) continue;
            if ((p.revents & POLLIN) && read(fd, buf, sizeof(buf)) == 0) return;
            ssize_t n = (p.revents & POLLOUT) ? write(fd, burst.data() + off, burst.size() - off) : 0;
            off += size_t(std::max<ssize_t>(n, 0));
            written += std::max<ssize_t>(n, 0);
        }
    });
    wait_until([&] { return written >= 200000; }); /* until the flood is on */
    sim_.ctl_ok("loop reset");
    long long before = written, worst = 0;
    size_t pings = 0;
    /* Pings until the writer has written a good deal beside them. */
    for (long long end = monotonic_ms() + 10000;
         (pings < 60 || written - before < k_flood_bytes) && monotonic_ms() < end; pings++) {
        long long t0 = monotonic_ms();
        EXPECT_EQ(sim_.ctl("ping"), "ok");
        worst = std::max(worst, monotonic_ms() - t0);
    }
    std::string busy = sim_.ctl_ok("loop");
    long long flooded = written;
    done = true;
    pump.join();
    printf("[ figure ] %zu control pings beside a QMUX writer that wrote %lld bytes (%lld frames): worst %lld ms; "
           "longest event %s\n",
           pings, flooded, flooded / 13, worst, busy.c_str());
    EXPECT_LT(worst, k_max_delay_ms);
    EXPECT_LT(atoll(busy.substr(busy.find("cpu-us ") + 7).c_str()), k_max_event_cpu_us) << "no event of the device kept the daemon busy for long";
    EXPECT_GE(flooded - before, k_flood_bytes) << "the flood went on, the device read all along";
    EXPECT_EQ(sim_.ctl("ping"), "ok");
}

}  // namespace
