/* rlk-modemd's QMUX device under frames written by hand: the control
 * service's answers on their public layouts, the client id pool, frames
 * routed by client id, logical channels that close with their client id,
 * malformed frames that leave the device serving, and a flooding writer
 * that holds no socket client up. */
#include <fcntl.h>
#include <poll.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "euicc_es10.h"
#include "qmi_codec.h"
#include "qmux.h"
#include "sim_fixture.h"
#include "user_identity_module_v01.h"

namespace {

constexpr int k_answer_timeout_ms = 3000;
/* How long to watch for a frame that must not come. */
constexpr int k_silence_ms = 200;
constexpr uint8_t k_uim = 0x0B;
constexpr uint8_t k_pdc = 0x24;
constexpr uint8_t k_dms = 0x02;
constexpr size_t k_pool_size = 32;

/* A host side of the device: writes frames, reads them back whole. */
class qmux_port {
public:
    explicit qmux_port(const std::string &path) { fd_ = open(path.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC); }
    ~qmux_port()
    {
        if (fd_ >= 0) close(fd_);
    }
    bool ok() const { return fd_ >= 0; }
    int fd() const { return fd_; }

    void write_bytes(const std::vector<uint8_t> &b) { ASSERT_EQ(write(fd_, b.data(), b.size()), ssize_t(b.size())); }
    void write_frame(uint8_t service, uint8_t cid, const std::vector<uint8_t> &qmi)
    {
        std::vector<uint8_t> f;
        ASSERT_TRUE(qmux_encode(0, service, cid, qmi.data(), qmi.size(), &f));
        write_bytes(f);
    }
    /* The next frame, or false when none came within `timeout_ms`. */
    bool read_frame(qmux_frame *f, int timeout_ms = k_answer_timeout_ms)
    {
        for (;;) {
            if (reader_.next(f)) return true;
            struct pollfd p = {fd_, POLLIN, 0};
            if (poll(&p, 1, timeout_ms) <= 0) return false;
            uint8_t buf[4096];
            ssize_t n = read(fd_, buf, sizeof(buf));
            if (n <= 0) return false;
            reader_.feed(buf, size_t(n));
        }
    }

    /* One control request and its response's TLV area. */
    std::vector<uint8_t> ctl(uint16_t msg_id, const std::vector<uint8_t> &tlvs)
    {
        uint8_t txn = ++ctl_txn_;
        write_frame(QMUX_SERVICE_CTL, 0, qmi_ctl_message(QMI_CTL_FLAG_REQUEST, txn, msg_id, tlvs));
        qmux_frame f;
        qmi_ctl_header h = {};
        while (read_frame(&f)) {
            if (f.service != QMUX_SERVICE_CTL || !qmi_ctl_header_read(f.qmi.data(), f.qmi.size(), &h)) continue;
            if (h.flags == QMI_CTL_FLAG_RESPONSE && h.txn == txn && h.msg_id == msg_id) {
                EXPECT_EQ(f.flags, QMUX_FLAG_FROM_SERVICE);
                return std::vector<uint8_t>(f.qmi.begin() + QMI_CTL_HEADER_LEN, f.qmi.end());
            }
        }
        ADD_FAILURE() << "no answer to control message " << msg_id;
        return {};
    }

    /* Allocates a client id of `service`; the QMI error on failure. */
    uint16_t allocate(uint8_t service, uint8_t *cid)
    {
        std::vector<uint8_t> tlvs, v;
        qmi_tlv_append(&tlvs, QMI_CTL_TLV_INFO, {service});
        std::vector<uint8_t> r = ctl(QMI_CTL_MSG_ALLOCATE_CID, tlvs);
        uint16_t err = 0xFFFF;
        if (!qmi_result_read(r.data(), r.size(), &err) || err) return err;
        EXPECT_TRUE(qmi_tlv_find(r.data(), r.size(), QMI_CTL_TLV_INFO, &v));
        EXPECT_EQ(v.size(), 2u);
        if (v.size() != 2) return 0xFFFF;
        EXPECT_EQ(v[0], service);
        *cid = v[1];
        return 0;
    }
    uint16_t release(uint8_t service, uint8_t cid)
    {
        std::vector<uint8_t> tlvs;
        qmi_tlv_append(&tlvs, QMI_CTL_TLV_INFO, {service, cid});
        std::vector<uint8_t> r = ctl(QMI_CTL_MSG_RELEASE_CID, tlvs);
        uint16_t err = 0xFFFF;
        qmi_result_read(r.data(), r.size(), &err);
        return err;
    }

private:
    int fd_ = -1;
    qmux_reader reader_;
    uint8_t ctl_txn_ = 0;
};

std::vector<uint8_t> service_request(uint16_t txn, uint16_t msg_id, const std::vector<uint8_t> &tlvs)
{
    std::vector<uint8_t> m(QMI_HEADER_LEN);
    qmi_header_write(m.data(), {QMI_TYPE_REQUEST, txn, msg_id, uint16_t(tlvs.size())});
    m.insert(m.end(), tlvs.begin(), tlvs.end());
    return m;
}

class QmuxDevice : public ::testing::Test {
protected:
    void SetUp() override
    {
        sim_.enable_qmux();
        ASSERT_TRUE(sim_.start());
    }
    sim_instance sim_;
};

TEST_F(QmuxDevice, VersionInfoListsTheServicesThatFitTheServiceByte)
{
    qmux_port port(sim_.qmux_path());
    ASSERT_TRUE(port.ok());
    std::vector<uint8_t> r = port.ctl(QMI_CTL_MSG_GET_VERSION_INFO, {});
    uint16_t err = 1;
    ASSERT_TRUE(qmi_result_read(r.data(), r.size(), &err));
    EXPECT_EQ(err, 0);
    std::vector<uint8_t> list;
    ASSERT_TRUE(qmi_tlv_find(r.data(), r.size(), QMI_CTL_TLV_INFO, &list));
    ASSERT_FALSE(list.empty());
    ASSERT_EQ(list.size(), 1 + size_t(list[0]) * 5) << "u8 count, then 5 bytes per service";
    std::vector<uint8_t> ids;
    for (size_t i = 1; i < list.size(); i += 5) ids.push_back(list[i]);
    EXPECT_EQ(ids, (std::vector<uint8_t>{QMUX_SERVICE_CTL, k_uim, 0x11, k_pdc, k_dms}))
        << "the 16-bit vendor services are left out";
}

TEST_F(QmuxDevice, ClientIdPoolIsFiniteAndSyncEmptiesIt)
{
    qmux_port port(sim_.qmux_path());
    ASSERT_TRUE(port.ok());
    std::vector<uint8_t> cids;
    for (size_t i = 0; i < k_pool_size; i++) {
        uint8_t cid = 0;
        ASSERT_EQ(port.allocate(k_uim, &cid), 0) << i;
        cids.push_back(cid);
    }
    uint8_t extra = 0;
    EXPECT_EQ(port.allocate(k_uim, &extra), QMI_PROTOCOL_ERR_CLIENT_IDS_EXHAUSTED);
    EXPECT_EQ(port.allocate(k_dms, &extra), 0) << "the pool is per service";
    std::string uim_ids = "0x0b";
    for (size_t i = 1; i <= k_pool_size; i++) uim_ids += " " + std::to_string(i);
    EXPECT_EQ(sim_.ctl_ok("qmux clients"), "0x02 1\n" + uim_ids);

    /* A released id is not handed out again at once. */
    EXPECT_EQ(port.release(k_uim, cids[0]), 0);
    EXPECT_EQ(port.release(k_uim, cids[0]), QMI_PROTOCOL_ERR_INVALID_CLIENT_ID) << "released twice";
    uint8_t again = 0;
    ASSERT_EQ(port.allocate(k_uim, &again), 0);
    EXPECT_NE(again, cids[0]);

    std::vector<uint8_t> r = port.ctl(QMI_CTL_MSG_SYNC, {});
    uint16_t err = 1;
    ASSERT_TRUE(qmi_result_read(r.data(), r.size(), &err));
    EXPECT_EQ(err, 0);
    EXPECT_EQ(sim_.ctl("qmux clients"), "ok");
}

TEST_F(QmuxDevice, ControlErrorsForUnknownServicesAndMessages)
{
    qmux_port port(sim_.qmux_path());
    ASSERT_TRUE(port.ok());
    uint8_t cid = 0;
    EXPECT_EQ(port.allocate(0x77, &cid), QMI_PROTOCOL_ERR_INVALID_SERVICE_TYPE);
    EXPECT_EQ(port.allocate(QMUX_SERVICE_CTL, &cid), QMI_PROTOCOL_ERR_INVALID_SERVICE_TYPE);
    EXPECT_EQ(port.release(k_uim, 200), QMI_PROTOCOL_ERR_INVALID_CLIENT_ID);
    std::vector<uint8_t> r = port.ctl(0x0099, {});
    uint16_t err = 0;
    ASSERT_TRUE(qmi_result_read(r.data(), r.size(), &err));
    EXPECT_EQ(err, QMI_PROTOCOL_ERR_INVALID_QMI_COMMAND);
    r = port.ctl(QMI_CTL_MSG_ALLOCATE_CID, {});
    ASSERT_TRUE(qmi_result_read(r.data(), r.size(), &err));
    EXPECT_EQ(err, QMI_PROTOCOL_ERR_MALFORMED) << "allocate without its service TLV";
    sim_.ctl_ok("down dms");
    EXPECT_EQ(port.allocate(k_dms, &cid), QMI_PROTOCOL_ERR_INVALID_SERVICE_TYPE) << "a service that is down";
}

/* A PDC list request's indication goes to the client that asked, under its
 * client id, and to no other client of the service. */
TEST_F(QmuxDevice, ResponsesAndIndicationsCarryTheClientId)
{
    qmux_port port(sim_.qmux_path());
    ASSERT_TRUE(port.ok());
    uint8_t a = 0, b = 0;
    ASSERT_EQ(port.allocate(k_pdc, &a), 0);
    ASSERT_EQ(port.allocate(k_pdc, &b), 0);
    std::vector<uint8_t> tlvs;
    qmi_tlv_append(&tlvs, 0x10, {0x2a, 0, 0, 0}); /* token */
    qmi_tlv_append(&tlvs, 0x11, {1, 0, 0, 0});    /* software */
    port.write_frame(k_pdc, b, service_request(0x1234, 0x0024, tlvs));
    bool response = false, indication = false;
    qmux_frame f;
    while (!(response && indication) && port.read_frame(&f)) {
        qmi_header h;
        ASSERT_TRUE(qmi_header_read(f.qmi.data(), f.qmi.size(), &h));
        EXPECT_EQ(f.service, k_pdc);
        EXPECT_EQ(f.client, b) << "only the asking client hears about its request";
        EXPECT_EQ(h.msg_id, 0x0024);
        if (h.type == QMI_TYPE_RESPONSE) {
            EXPECT_EQ(h.txn, 0x1234);
            response = true;
        }
        if (h.type == QMI_TYPE_INDICATION) indication = true;
    }
    EXPECT_TRUE(response && indication);
    EXPECT_FALSE(port.read_frame(&f, k_silence_ms)) << "nothing for client " << int(a);
}

TEST_F(QmuxDevice, ServiceGoingDownRevokesItsClientIds)
{
    qmux_port port(sim_.qmux_path());
    ASSERT_TRUE(port.ok());
    uint8_t cid = 0;
    ASSERT_EQ(port.allocate(k_uim, &cid), 0);
    sim_.ctl_ok("down uim");
    qmux_frame f;
    ASSERT_TRUE(port.read_frame(&f));
    qmi_ctl_header h = {};
    ASSERT_TRUE(qmi_ctl_header_read(f.qmi.data(), f.qmi.size(), &h));
    EXPECT_EQ(f.service, QMUX_SERVICE_CTL);
    EXPECT_EQ(h.flags, QMI_CTL_FLAG_INDICATION);
    EXPECT_EQ(h.msg_id, QMI_CTL_MSG_REVOKE_CID_IND);
    std::vector<uint8_t> v;
    ASSERT_TRUE(qmi_tlv_find(f.qmi.data() + QMI_CTL_HEADER_LEN, h.len, QMI_CTL_TLV_INFO, &v));
    EXPECT_EQ(v, (std::vector<uint8_t>{k_uim, cid}));
    EXPECT_EQ(sim_.ctl("qmux clients"), "ok");
}

/* Logical channels a client id opened close with it: when the host
 * releases it, and when Sync releases every id. */
TEST_F(QmuxDevice, ReleasedClientIdClosesItsLogicalChannels)
{
    qmux_port port(sim_.qmux_path());
    ASSERT_TRUE(port.ok());
    uim_open_logical_channel_req_msg_v01 req = {};
    req.slot = UIM_SLOT_2_V01;
    req.aid_valid = 1;
    req.aid_len = k_es10_isdr_aid_len;
    memcpy(req.aid, k_es10_isdr_aid, k_es10_isdr_aid_len);
    std::vector<uint8_t> tlvs(256);
    size_t len = 0;
    ASSERT_EQ(qmi_codec_encode(uim_open_logical_channel_req_msg_v01_ei, &req, tlvs.data(), tlvs.size(), &len), 0);
    tlvs.resize(len);
    for (bool sync : {false, true}) {
        uint8_t cid = 0;
        ASSERT_EQ(port.allocate(k_uim, &cid), 0);
        port.write_frame(k_uim, cid, service_request(1, QMI_UIM_OPEN_LOGICAL_CHANNEL_REQ_V01, tlvs));
        qmux_frame f;
        ASSERT_TRUE(port.read_frame(&f));
        EXPECT_NE(sim_.ctl_ok("uim state").find("channels 1"), std::string::npos);
        if (sync) {
            port.ctl(QMI_CTL_MSG_SYNC, {});
        } else {
            EXPECT_EQ(port.release(k_uim, cid), 0);
        }
        EXPECT_NE(sim_.ctl_ok("uim state").find("channels 0"), std::string::npos) << "sync " << sync;
    }
}

TEST_F(QmuxDevice, MalformedFramesAreDroppedAndCountedWhileServingGoesOn)
{
    qmux_port port(sim_.qmux_path());
    ASSERT_TRUE(port.ok());
    uint8_t cid = 0;
    ASSERT_EQ(port.allocate(k_dms, &cid), 0);
    /* Noise that starts no frame; a length too short for any header; a
     * QMI length that disagrees with the frame; a client id never
     * allocated; a service the modem lacks; a response where a request belongs; a control message
     * with a wrong length; a frame claiming the modem's direction. */
    port.write_bytes({0x00, 0x7e, 0xff, 0x42});
    port.write_bytes({0x01, 0x03, 0x00, 0x00, 0x02, 0x05});
    std::vector<uint8_t> bad_len = service_request(7, 0x0023, {});
    bad_len[5] = 9;
    port.write_frame(k_dms, cid, bad_len);
    port.write_frame(k_dms, uint8_t(cid + 100), service_request(8, 0x0023, {}));
    port.write_frame(0x77, cid, service_request(8, 0x0023, {})); /* a service the modem lacks */
    std::vector<uint8_t> not_request = service_request(9, 0x0023, {});
    not_request[0] = QMI_TYPE_RESPONSE;
    port.write_frame(k_dms, cid, not_request);
    std::vector<uint8_t> bad_ctl = qmi_ctl_message(QMI_CTL_FLAG_REQUEST, 5, QMI_CTL_MSG_SYNC, {});
    bad_ctl[4] = 3;
    port.write_frame(QMUX_SERVICE_CTL, 0, bad_ctl);
    std::vector<uint8_t> echoed;
    std::vector<uint8_t> sync = qmi_ctl_message(QMI_CTL_FLAG_REQUEST, 6, QMI_CTL_MSG_SYNC, {});
    ASSERT_TRUE(qmux_encode(QMUX_FLAG_FROM_SERVICE, QMUX_SERVICE_CTL, 0, sync.data(), sync.size(), &echoed));
    port.write_bytes(echoed);
    qmux_frame f;
    EXPECT_FALSE(port.read_frame(&f, k_silence_ms)) << "no answer to any of them";

    /* The client still gets answers, and nothing was released. */
    port.write_frame(k_dms, cid, service_request(10, 0x0023, {}));
    ASSERT_TRUE(port.read_frame(&f));
    qmi_header h;
    ASSERT_TRUE(qmi_header_read(f.qmi.data(), f.qmi.size(), &h));
    EXPECT_EQ(h.type, QMI_TYPE_RESPONSE);
    EXPECT_EQ(h.txn, 10);
    EXPECT_EQ(f.client, cid);
    std::string counters = sim_.ctl_ok("qmux counters");
    EXPECT_NE(counters.find("skipped-bytes 10\n"), std::string::npos) << counters;
    EXPECT_NE(counters.find("dropped-malformed 4\n"), std::string::npos) << counters;
    EXPECT_NE(counters.find("dropped-no-client 2\n"), std::string::npos) << counters;
    EXPECT_EQ(sim_.ctl("ping"), "ok");
}

/* A writer flooding the device with requests (its answers read by another
 * thread) holds no socket client up: the device is served a bounded piece
 * at a time.  The figures measured are printed. */
TEST_F(QmuxDevice, AFloodingWriterDelaysNoSocketClient)
{
    /* Bounds for a loaded machine; unbounded, one event served all the
     * device held (tens of milliseconds of CPU, pings delayed 0.2-1 s). */
    constexpr long long k_max_delay_ms = 250;
    constexpr long long k_max_event_cpu_us = 5000;
    constexpr size_t k_rounds = 60;
    constexpr long long k_flood_bytes = 128 << 10;
    qmux_port port(sim_.qmux_path());
    ASSERT_TRUE(port.ok());
    uint8_t cid = 0;
    ASSERT_EQ(port.allocate(k_dms, &cid), 0);
    std::vector<uint8_t> burst;
    for (uint16_t txn = 1; txn <= 2000; txn++) {
        std::vector<uint8_t> req = service_request(txn, 0x0023, {}), frame;
        ASSERT_TRUE(qmux_encode(0, k_dms, cid, req.data(), req.size(), &frame));
        burst.insert(burst.end(), frame.begin(), frame.end());
    }
    fcntl(port.fd(), F_SETFL, O_NONBLOCK); /* the threads below stop when told, whatever the device does */
    std::atomic<bool> done(false);
    std::atomic<long long> written(0);
    std::thread writer([&] {
        for (size_t off = 0; !done; off = off % burst.size()) {
            struct pollfd p = {port.fd(), POLLOUT, 0};
            if (poll(&p, 1, 50) != 1) continue;
            ssize_t n = write(port.fd(), burst.data() + off, burst.size() - off);
            if (n > 0) off += size_t(n);
            if (n > 0) written += n;
        }
    });
    std::thread drain([&] {
        uint8_t buf[65536];
        while (!done) {
            struct pollfd p = {port.fd(), POLLIN, 0};
            if (poll(&p, 1, 50) == 1 && read(port.fd(), buf, sizeof(buf)) == 0) return;
        }
    });
    for (long long end = monotonic_ms() + k_answer_timeout_ms; written < 200000 && monotonic_ms() < end;) {
        usleep(1000); /* until the flood is on */
    }
    sim_.ctl_ok("loop reset");
    long long before = written;
    std::vector<long long> pings;
    /* Pings until the writer has written a good deal beside them. */
    for (long long end = monotonic_ms() + 10000;
         (pings.size() < k_rounds || written - before < k_flood_bytes) && monotonic_ms() < end;) {
        long long t0 = monotonic_ms();
        EXPECT_EQ(sim_.ctl("ping"), "ok");
        pings.push_back(monotonic_ms() - t0);
    }
    std::string busy = sim_.ctl_ok("loop");
    long long flooded = written;
    done = true;
    writer.join();
    drain.join();
    std::sort(pings.begin(), pings.end());
    printf("[ figure ] control ping beside a QMUX writer that wrote %lld bytes (%lld frames): median %lld ms, "
           "worst %lld ms; longest event %s\n",
           flooded, flooded / 13, pings[pings.size() / 2], pings.back(), busy.c_str());
    EXPECT_LT(pings.back(), k_max_delay_ms);
    long long cpu_us = atoll(busy.substr(busy.find("cpu-us ") + 7).c_str());
    EXPECT_LT(cpu_us, k_max_event_cpu_us) << "no event of the device kept the daemon busy for long";
    EXPECT_GE(flooded - before, k_flood_bytes) << "the flood went on, the device read all along";
    EXPECT_EQ(sim_.ctl("ping"), "ok");
}

TEST_F(QmuxDevice, LinkIsRemovedOnExit)
{
    EXPECT_EQ(access(sim_.qmux_path().c_str(), F_OK), 0);
    sim_.stop();
    EXPECT_NE(access(sim_.qmux_path().c_str(), F_OK), 0);
}

}  // namespace
