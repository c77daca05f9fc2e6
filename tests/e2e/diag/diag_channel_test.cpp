/* rlk-modemd's diag channel at the packet level: frames in one packet,
 * the test controls (reply, delay, drop, last), remote processors, DCI
 * pieces and their tags, session ops and stream records. */
#include <unistd.h>

#include <gtest/gtest.h>

#include "diag_channel.h"
#include "endpoint.h"
#include "sim_fixture.h"

namespace {

using bytes = std::vector<uint8_t>;

constexpr int k_wait_ms = 3000;

/* A DIAG connection spoken by hand. */
struct raw_diag {
    int fd = -1;
    ~raw_diag()
    {
        if (fd >= 0) close(fd);
    }
    bool open()
    {
        fd = rlk_host::modemd_connect(MODEMD_CONN_DIAG, 0, 0);
        return fd >= 0;
    }
    bool send(uint32_t type, int32_t proc, uint32_t tag, const bytes &payload) const
    {
        bytes pkt;
        diag_packet_build(type, proc, tag, payload.data(), payload.size(), &pkt);
        return rlk_host::modemd_send(fd, pkt.data(), pkt.size());
    }
    bool command(const bytes &cmd, int32_t proc = 0) const { return send(USER_SPACE_RAW_DATA_TYPE, proc, 0, cmd); }
    /* The next packet, which must carry one good frame. */
    bool recv(diag_packet *p, int timeout_ms = k_wait_ms) const
    {
        bytes buf(MODEMD_MAX_PACKET);
        long n = rlk_host::modemd_recv(fd, buf.data(), buf.size(), timeout_ms);
        return n > 0 && diag_packet_parse(buf.data(), size_t(n), p) && p->frames.size() == 1 &&
               p->frames[0].status == HDLC_OK;
    }
    bytes answer(int timeout_ms = k_wait_ms) const
    {
        diag_packet p;
        return recv(&p, timeout_ms) ? p.frames[0].payload : bytes();
    }
};

class DiagChannelTest : public testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(sim.start());
        ASSERT_TRUE(diag.open());
    }
    sim_instance sim;
    raw_diag diag;
};

TEST_F(DiagChannelTest, SeveralFramesInOnePacketWithALeadingFlagAndACorruptFrame)
{
    bytes pkt;
    diag_packet_build(USER_SPACE_RAW_DATA_TYPE, 0, 0, nullptr, 0, &pkt);
    pkt.resize(DIAG_ENVELOPE_LEN);
    pkt.push_back(HDLC_FLAG);
    hdlc_encode(bytes{0x1c}.data(), 1, &pkt);
    size_t corrupt_at = pkt.size();
    hdlc_encode(bytes{0x01}.data(), 1, &pkt);
    pkt[corrupt_at + 1] ^= 0x01; /* CRC no longer matches */
    hdlc_encode(bytes{0x7d, 0x7e}.data(), 2, &pkt);
    ASSERT_TRUE(rlk_host::modemd_send(diag.fd, pkt.data(), pkt.size()));

    EXPECT_EQ(diag.answer(), (bytes{0x1c, 0x08, 0x00}));
    /* 0x7D (extended message configuration) has no sub-command 0x7E. */
    EXPECT_EQ(diag.answer(), (bytes{0x14, 0x7d, 0x7e}));
    EXPECT_EQ(sim.ctl_ok("diag last"), "cmd 0 1c\ncmd 0 7d7e") << "the corrupt frame was dropped";
}

TEST_F(DiagChannelTest, CannedRepliesDelaysAndDrops)
{
    sim.ctl_ok("diag reply 0x0c 0c 7e 7d");
    ASSERT_TRUE(diag.command({0x0c}));
    EXPECT_EQ(diag.answer(), (bytes{0x0c, 0x7e, 0x7d}));
    sim.ctl_ok("diag reply-clear");
    ASSERT_TRUE(diag.command({0x0c}));
    EXPECT_EQ(diag.answer().size(), 48u);

    /* A delayed answer comes after the answer to a later command. */
    sim.ctl_ok("diag delay 0x1c 300");
    long long start = monotonic_ms();
    ASSERT_TRUE(diag.command({0x1c}));
    ASSERT_TRUE(diag.command({0x01}));
    EXPECT_EQ(diag.answer().at(0), 0x01);
    EXPECT_EQ(diag.answer(), (bytes{0x1c, 0x08, 0x00}));
    EXPECT_GE(monotonic_ms() - start, 300);

    /* Commands are answered in order, so the ESN answer coming first shows
     * that the dropped one will never come. */
    sim.ctl_ok("diag clear");
    sim.ctl_ok("diag drop 0x1c");
    ASSERT_TRUE(diag.command({0x1c}));
    ASSERT_TRUE(diag.command({0x01}));
    EXPECT_EQ(diag.answer().at(0), 0x01);
    sim.ctl_ok("diag undrop 0x1c");
    ASSERT_TRUE(diag.command({0x1c}));
    EXPECT_EQ(diag.answer().at(0), 0x1c);
    EXPECT_EQ(sim.ctl_ok("diag last 3"), "cmd 0 1c\ncmd 0 01\ncmd 0 1c");
}

TEST_F(DiagChannelTest, RemoteProcessorsAnswerWithTheirIdAndAbsentOnesNever)
{
    EXPECT_EQ(sim.ctl("diag remote-mask 0x3"), "error bad remote mask") << "bit 0 is the local processor";
    sim.ctl_ok("diag remote-mask 0x2");
    ASSERT_TRUE(diag.command({0x1c}, 1));
    diag_packet p;
    ASSERT_TRUE(diag.recv(&p));
    EXPECT_EQ(p.env.data_type, uint32_t(USER_SPACE_RAW_DATA_TYPE));
    EXPECT_EQ(p.env.proc, 1);
    ASSERT_TRUE(diag.command({0x1c}, 3));
    ASSERT_TRUE(diag.command({0x01}, 0));
    ASSERT_TRUE(diag.recv(&p));
    EXPECT_EQ(p.env.proc, 0);
    EXPECT_EQ(p.frames[0].payload.at(0), 0x01);
    EXPECT_EQ(sim.ctl_ok("diag last 2"), "cmd 3 1c\ncmd 0 01");
}

TEST_F(DiagChannelTest, DciResponsesComeInPiecesWithTheRequestTag)
{
    /* 4b 7e 7e ...: 5000 bytes, half of them escaped on the wire. */
    std::string hex = "4b";
    for (int i = 1; i < 5000; i++) hex += "7e";
    sim.ctl_ok("diag reply 0x4b " + hex);
    ASSERT_TRUE(diag.send(DCI_PKT_TYPE, 0, 42, {0x4b, 0x12, 0x00, 0x00}));
    diag_packet p;
    ASSERT_TRUE(diag.recv(&p));
    EXPECT_EQ(p.env.data_type, uint32_t(DCI_PKT_TYPE));
    EXPECT_EQ(p.env.tag, 42u);
    EXPECT_EQ(p.frames[0].payload.size(), 4096u);
    EXPECT_EQ(p.frames[0].payload.at(0), 0x4b);
    ASSERT_TRUE(diag.recv(&p));
    EXPECT_EQ(p.env.tag, 42u | DIAG_TAG_FINAL);
    EXPECT_EQ(p.frames[0].payload, bytes(904, 0x7e));

    sim.ctl_ok("diag reply-clear 0x4b");
    ASSERT_TRUE(diag.send(DCI_PKT_TYPE, 0, 43, {0x1c}));
    ASSERT_TRUE(diag.recv(&p));
    EXPECT_EQ(p.env.tag, 43u | DIAG_TAG_FINAL);
    EXPECT_EQ(sim.ctl_ok("diag last 2"), "dci 0 4b120000\ndci 0 1c");
}

TEST_F(DiagChannelTest, SessionOpsAndStreamRecords)
{
    diag_packet p;
    ASSERT_TRUE(diag.send(DCI_DATA_TYPE, 0, DIAG_SESSION_REMOTE_MASK, {}));
    ASSERT_TRUE(diag.recv(&p));
    EXPECT_EQ(p.env.tag, uint32_t(DIAG_SESSION_REMOTE_MASK));
    EXPECT_EQ(p.frames[0].payload, (bytes{0, 0, 0, 0, 0, 0}));

    ASSERT_TRUE(diag.send(DCI_DATA_TYPE, 1, DIAG_SESSION_DCI_SUPPORT, {}));
    ASSERT_TRUE(diag.recv(&p));
    EXPECT_EQ(p.frames[0].payload, (bytes{DIAG_SESSION_BAD_PROC, 0, 0, 0})) << "MDM absent";
    ASSERT_TRUE(diag.send(DCI_DATA_TYPE, 0, 99, {}));
    ASSERT_TRUE(diag.recv(&p));
    EXPECT_EQ(p.frames[0].payload, (bytes{DIAG_SESSION_BAD_OP, 0, 0, 0}));

    EXPECT_EQ(sim.ctl("diag log 0102"), "error no DCI client");
    ASSERT_TRUE(diag.send(DCI_DATA_TYPE, 0, DIAG_SESSION_DCI_REGISTER, {}));
    ASSERT_TRUE(diag.recv(&p));
    EXPECT_EQ(p.frames[0].payload, (bytes{0, 0, 0, 0}));
    EXPECT_EQ(sim.ctl("diag event 01 00 7e"), "ok 1");
    ASSERT_TRUE(diag.recv(&p));
    EXPECT_EQ(p.env.data_type, uint32_t(DCI_DATA_TYPE));
    EXPECT_EQ(p.env.tag, DIAG_STREAM_EVENT_TAG);
    EXPECT_EQ(p.frames[0].payload, (bytes{0x01, 0x00, 0x7e}));

    ASSERT_TRUE(diag.send(DCI_DATA_TYPE, 0, DIAG_SESSION_DCI_RELEASE, {}));
    ASSERT_TRUE(diag.recv(&p));
    EXPECT_EQ(sim.ctl("diag log 0102"), "error no DCI client");
}

TEST_F(DiagChannelTest, NvAndEfsViewsAgreeThroughTheControlInterface)
{
    bytes write(133, 0);
    write[0] = 0x27;
    write[1] = 10;
    write[3] = 0xab;
    ASSERT_TRUE(diag.command(write));
    bytes rsp = diag.answer();
    ASSERT_EQ(rsp.size(), 133u);
    EXPECT_EQ(rsp[131], 0) << "NV_DONE";
    EXPECT_EQ(sim.ctl_ok("efs get /nvm/num/10"), "ab" + std::string(2 * 127, '0'));

    sim.ctl_ok("efs put /nvm/num/11 aabb");
    bytes read(133, 0);
    read[0] = 0x26;
    read[1] = 11;
    ASSERT_TRUE(diag.command(read));
    rsp = diag.answer();
    ASSERT_EQ(rsp.size(), 133u);
    EXPECT_EQ(rsp[3], 0xaa);
    EXPECT_EQ(rsp[4], 0xbb);
    EXPECT_EQ(rsp[131], 0);
}

TEST_F(DiagChannelTest, ControlRequestsRefuseBadArguments)
{
    const char *bad[] = {
        "diag delay 0x1c", "diag delay 0x1c -5", "diag reply 300 00", "diag reply 0x1c zz",
        "diag dci-piece 0", "diag dci-piece 16385", "diag dci-support 0x10000", "diag dci-support 3 99",
        "diag last 0",      "diag log",           "diag frobnicate",
    };
    for (const char *req : bad) EXPECT_EQ(sim.ctl(req).compare(0, 6, "error "), 0) << req;
    EXPECT_EQ(sim.ctl_ok("diag status"), "remote_mask=0x0 dci_piece=4096 connections=1 dci_clients=0");
}

}  // namespace
