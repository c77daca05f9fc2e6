/* rlk-modemd's QMUX device under frames written by hand: the control
 * service's answers, the client id pool, frames routed by client id,
 * logical channels that close with their client id, malformed frames that
 * leave the device serving, and a flooding writer that holds no socket
 * client up. */
#include <fcntl.h>
#include <poll.h>

#include <algorithm>
#include <atomic>
#include <thread>
#include <tuple>

#include "../../unit/sim/sim_test_util.h"
#include "euicc_es10.h"
#include "qmi_codec.h"
#include "qmux.h"
#include "user_identity_module_v01.h"

namespace {

using bytes = std::vector<uint8_t>;
constexpr int k_silence_ms = 200; /* how long to watch for a frame that must not come */
constexpr uint8_t k_uim = 0x0B;
constexpr uint8_t k_pdc = 0x24;
constexpr uint8_t k_dms = 0x02;
constexpr uint16_t k_no_answer = 0xFFFF;

bytes service_request(uint16_t txn, uint16_t msg_id, const bytes &tlvs = {})
{
    bytes m(QMI_HEADER_LEN);
    qmi_header_write(m.data(), {QMI_TYPE_REQUEST, txn, msg_id, uint16_t(tlvs.size())});
    m.insert(m.end(), tlvs.begin(), tlvs.end());
    return m;
}

/* A host side of the device: writes frames, reads them back whole. */
class qmux_port {
public:
    ~qmux_port() { close(fd); }
    bool open_at(const std::string &path) { return (fd = open(path.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC)) >= 0; }

    void write_bytes(const bytes &b) { ASSERT_EQ(write(fd, b.data(), b.size()), ssize_t(b.size())); }
    void send(uint8_t service, uint8_t cid, const bytes &qmi, uint8_t flags = 0)
    {
        bytes f;
        ASSERT_TRUE(qmux_encode(flags, service, cid, qmi.data(), qmi.size(), &f));
        write_bytes(f);
    }
    /* The next frame, or false when none came within `timeout_ms`. */
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
    /* One control request: the QMI error of its answer, which must be the
     * next frame; its TLV area goes to `answer`. */
    uint16_t ctl(uint16_t msg_id, const bytes &tlvs = {}, bytes *answer = nullptr)
    {
        uint8_t txn = ++ctl_txn_;
        send(QMUX_SERVICE_CTL, 0, qmi_ctl_message(QMI_CTL_FLAG_REQUEST, txn, msg_id, tlvs));
        qmux_frame f;
        qmi_ctl_header h = {};
        if (!read_frame(&f) || !qmi_ctl_header_read(f.qmi.data(), f.qmi.size(), &h)) return k_no_answer;
        EXPECT_EQ(std::make_tuple(f.flags, f.service, h.flags, h.txn, h.msg_id),
                  std::make_tuple(QMUX_FLAG_FROM_SERVICE, QMUX_SERVICE_CTL, QMI_CTL_FLAG_RESPONSE, txn, msg_id));
        bytes r(f.qmi.begin() + QMI_CTL_HEADER_LEN, f.qmi.end());
        uint16_t err = k_no_answer;
        qmi_result_read(r.data(), r.size(), &err);
        if (answer) *answer = r;
        return err;
    }
    uint16_t allocate(uint8_t service, uint8_t *cid)
    {
        bytes r, v;
        uint16_t err = ctl(QMI_CTL_MSG_ALLOCATE_CID, {QMI_CTL_TLV_INFO, 1, 0, service}, &r);
        if (err) return err;
        if (!qmi_tlv_find(r.data(), r.size(), QMI_CTL_TLV_INFO, &v) || v.size() != 2 || v[0] != service) {
            return k_no_answer;
        }
        *cid = v[1];
        return 0;
    }
    uint16_t release(uint8_t service, uint8_t cid)
    {
        return ctl(QMI_CTL_MSG_RELEASE_CID, {QMI_CTL_TLV_INFO, 2, 0, service, cid});
    }

    int fd = -1;

private:
    qmux_reader reader_;
    uint8_t ctl_txn_ = 0;
};

class QmuxDevice : public ::testing::Test {
protected:
    void SetUp() override
    {
        sim_.enable_qmux();
        ASSERT_TRUE(sim_.start());
        ASSERT_TRUE(port.open_at(sim_.qmux_path()));
    }
    sim_instance sim_;
    qmux_port port;
};

/* Version info, the finite per-service pool, Sync, the control errors, the
 * revocation of a service's ids when it goes down, the link's removal. */
TEST_F(QmuxDevice, ControlServiceAnswersAndClientIdPool)
{
    bytes r, list;
    ASSERT_EQ(port.ctl(QMI_CTL_MSG_GET_VERSION_INFO, {}, &r), 0);
    ASSERT_TRUE(qmi_tlv_find(r.data(), r.size(), QMI_CTL_TLV_INFO, &list));
    ASSERT_EQ(list.size(), 1 + size_t(list.at(0)) * 5) << "u8 count, then 5 bytes per service";
    bytes ids;
    for (size_t i = 1; i < list.size(); i += 5) ids.push_back(list[i]);
    EXPECT_EQ(ids, (bytes{QMUX_SERVICE_CTL, k_uim, 0x11, k_pdc, k_dms})) << "16-bit vendor services left out";

    uint8_t cid = 0, first = 0;
    for (int i = 1; i <= 32; i++) ASSERT_EQ(port.allocate(k_uim, i == 1 ? &first : &cid), 0) << i;
    EXPECT_EQ(port.allocate(k_uim, &cid), QMI_PROTOCOL_ERR_CLIENT_IDS_EXHAUSTED);
    EXPECT_EQ(port.allocate(k_dms, &cid), 0) << "the pool is per service";
    EXPECT_EQ(sim_.ctl_ok("qmux clients"),
              "0x02 1\n0x0b 1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16 17 18 19 20 21 22 23 24 25 26 27 28 29 30 31 32");
    EXPECT_EQ(port.release(k_uim, first), 0);
    EXPECT_EQ(port.release(k_uim, first), QMI_PROTOCOL_ERR_INVALID_CLIENT_ID) << "released twice";
    ASSERT_EQ(port.allocate(k_uim, &cid), 0);
    EXPECT_NE(cid, first) << "a released id is not handed out again at once";
    EXPECT_EQ(port.ctl(QMI_CTL_MSG_SYNC), 0);
    EXPECT_EQ(sim_.ctl("qmux clients"), "ok");

    EXPECT_EQ(port.allocate(0x77, &cid), QMI_PROTOCOL_ERR_INVALID_SERVICE_TYPE);
    EXPECT_EQ(port.allocate(QMUX_SERVICE_CTL, &cid), QMI_PROTOCOL_ERR_INVALID_SERVICE_TYPE);
    EXPECT_EQ(port.release(k_uim, 200), QMI_PROTOCOL_ERR_INVALID_CLIENT_ID);
    EXPECT_EQ(port.ctl(0x0099), QMI_PROTOCOL_ERR_INVALID_QMI_COMMAND);
    EXPECT_EQ(port.ctl(QMI_CTL_MSG_ALLOCATE_CID), QMI_PROTOCOL_ERR_MALFORMED) << "without its service TLV";

    ASSERT_EQ(port.allocate(k_uim, &cid), 0);
    sim_.ctl_ok("down uim");
    qmux_frame f;
    ASSERT_TRUE(port.read_frame(&f));
    EXPECT_EQ(f.qmi, qmi_ctl_message(QMI_CTL_FLAG_INDICATION, f.qmi.at(1), QMI_CTL_MSG_REVOKE_CID_IND,
                                     {QMI_CTL_TLV_INFO, 2, 0, k_uim, cid}));
    EXPECT_EQ(f.service, QMUX_SERVICE_CTL);
    EXPECT_EQ(sim_.ctl("qmux clients"), "ok");
    sim_.ctl_ok("down dms");
    EXPECT_EQ(port.allocate(k_dms, &cid), QMI_PROTOCOL_ERR_INVALID_SERVICE_TYPE) << "a service that is down";
    EXPECT_EQ(access(sim_.qmux_path().c_str(), F_OK), 0);
    sim_.stop();
    EXPECT_NE(access(sim_.qmux_path().c_str(), F_OK), 0) << "the link is removed on exit";
}

/* A request's answer and indication go to the client that asked, under its
 * client id; logical channels a client id opened close with it, when the
 * host releases it and when Sync releases every id. */
TEST_F(QmuxDevice, ClientIdRoutesFramesAndClosesItsChannels)
{
    uint8_t a = 0, b = 0;
    ASSERT_EQ(port.allocate(k_pdc, &a), 0);
    ASSERT_EQ(port.allocate(k_pdc, &b), 0);
    bytes tlvs = {0x10, 4, 0, 0x2a, 0, 0, 0, 0x11, 4, 0, 1, 0, 0, 0}; /* token, software */
    port.send(k_pdc, b, service_request(0x1234, 0x0024, tlvs));
    /* The answer, then the indication, both for the asking client only. */
    qmux_frame f;
    for (uint8_t type : {QMI_TYPE_RESPONSE, QMI_TYPE_INDICATION}) {
        qmi_header h = {};
        ASSERT_TRUE(port.read_frame(&f));
        EXPECT_TRUE(qmi_header_read(f.qmi.data(), f.qmi.size(), &h));
        EXPECT_EQ(std::make_tuple(f.service, f.client, h.type, h.msg_id),
                  std::make_tuple(k_pdc, b, type, uint16_t(0x0024)));
        EXPECT_TRUE(type == QMI_TYPE_INDICATION || h.txn == 0x1234);
    }
    EXPECT_FALSE(port.read_frame(&f, k_silence_ms)) << "nothing for client " << int(a);

    tlvs = {0x01, 1, 0, UIM_SLOT_2_V01, 0x10, 1 + k_es10_isdr_aid_len, 0, k_es10_isdr_aid_len}; /* slot, AID */
    tlvs.insert(tlvs.end(), k_es10_isdr_aid, k_es10_isdr_aid + k_es10_isdr_aid_len);
    for (bool sync : {false, true}) {
        uint8_t cid = 0;
        ASSERT_EQ(port.allocate(k_uim, &cid), 0);
        port.send(k_uim, cid, service_request(1, QMI_UIM_OPEN_LOGICAL_CHANNEL_REQ_V01, tlvs));
        ASSERT_TRUE(port.read_frame(&f));
        EXPECT_NE(sim_.ctl_ok("uim state").find("channels 1"), std::string::npos);
        EXPECT_EQ(sync ? port.ctl(QMI_CTL_MSG_SYNC) : port.release(k_uim, cid), 0);
        EXPECT_NE(sim_.ctl_ok("uim state").find("channels 0"), std::string::npos) << "sync " << sync;
    }
}

TEST_F(QmuxDevice, MalformedFramesAreDroppedAndCountedWhileServingGoesOn)
{
    uint8_t cid = 0;
    ASSERT_EQ(port.allocate(k_dms, &cid), 0);
    /* Noise that starts no frame; a length too short for any header. */
    port.write_bytes({0x00, 0x7e, 0xff, 0x42});
    port.write_bytes({0x01, 0x03, 0x00, 0x00, 0x02, 0x05});
    bytes bad_len = service_request(7, 0x0023);
    bad_len[5] = 9; /* a QMI length that disagrees with the frame */
    port.send(k_dms, cid, bad_len);
    port.send(k_dms, uint8_t(cid + 100), service_request(8, 0x0023)); /* never allocated */
    port.send(0x77, cid, service_request(8, 0x0023));                 /* a service the modem lacks */
    bytes not_request = service_request(9, 0x0023);
    not_request[0] = QMI_TYPE_RESPONSE;
    port.send(k_dms, cid, not_request);
    bytes bad_ctl = qmi_ctl_message(QMI_CTL_FLAG_REQUEST, 5, QMI_CTL_MSG_SYNC, {});
    bad_ctl[4] = 3; /* a control message with a wrong length */
    port.send(QMUX_SERVICE_CTL, 0, bad_ctl);
    /* A frame claiming the modem's direction. */
    port.send(QMUX_SERVICE_CTL, 0, qmi_ctl_message(QMI_CTL_FLAG_REQUEST, 6, QMI_CTL_MSG_SYNC, {}),
              QMUX_FLAG_FROM_SERVICE);
    qmux_frame f;
    EXPECT_FALSE(port.read_frame(&f, k_silence_ms)) << "no answer to any of them";

    /* The client still gets answers, and nothing was released. */
    port.send(k_dms, cid, service_request(10, 0x0023));
    ASSERT_TRUE(port.read_frame(&f));
    qmi_header h = {};
    EXPECT_TRUE(qmi_header_read(f.qmi.data(), f.qmi.size(), &h));
    EXPECT_EQ(std::make_tuple(h.type, h.txn, f.client), std::make_tuple(uint8_t(QMI_TYPE_RESPONSE), uint16_t(10), cid));
    EXPECT_EQ(sim_.ctl("qmux counters"), "ok frames-in 8\nframes-out 2\nskipped-bytes 10\ndropped-malformed 4\n"
                                         "dropped-no-client 2\ndropped-partial 0\ndropped-out 0");
}

/* A writer flooding the device with requests (its answers read by another
 * thread) holds no socket client up: the device is served a bounded piece
 * at a time.  The figures measured are printed. */
TEST_F(QmuxDevice, AFloodingWriterDelaysNoSocketClient)
{
    /* Bounds for a loaded machine; unbounded, one event served all the
     * device held (tens of milliseconds of CPU, pings delayed 0.2-1 s). */
    constexpr long long k_max_delay_ms = 250, k_max_event_cpu_us = 5000, k_flood_bytes = 128 << 10;
    const int fd = port.fd;
    uint8_t cid = 0;
    ASSERT_EQ(port.allocate(k_dms, &cid), 0);
    bytes burst;
    for (uint16_t txn = 1; txn <= 2000; txn++) {
        bytes req = service_request(txn, 0x0023), frame;
        ASSERT_TRUE(qmux_encode(0, k_dms, cid, req.data(), req.size(), &frame));
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
    long long cpu_us = atoll(busy.substr(busy.find("cpu-us ") + 7).c_str());
    EXPECT_LT(cpu_us, k_max_event_cpu_us) << "no event of the device kept the daemon busy for long";
    EXPECT_GE(flooded - before, k_flood_bytes) << "the flood went on, the device read all along";
    EXPECT_EQ(sim_.ctl("ping"), "ok");
}

}  // namespace
