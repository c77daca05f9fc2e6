/* rlk-modemd's diag channel at the packet level: frames in one packet,
 * the test controls (reply, delay, drop, last), remote processors, DCI
 * pieces and their tags, session ops, stream records and the NV and EFS
 * views. */
#include <gtest/gtest.h>

#include "../../unit/diag/diag_test_util.h"
#include "diag_channel.h"
#include "raw_modemd.h"
#include "sim_fixture.h"

namespace {

using diag_test::bytes;

const uint32_t k_raw = USER_SPACE_RAW_DATA_TYPE, k_dci = DCI_PKT_TYPE, k_data = DCI_DATA_TYPE;

/* A packet as "<type> <proc> <tag> <payload hex>". */
std::string packet(uint32_t type, int32_t proc, uint32_t tag, const bytes &payload)
{
    return std::to_string(type) + " " + std::to_string(proc) + " " + std::to_string(tag) + " " + hex(payload);
}

/* A DIAG connection spoken by hand. */
struct raw_diag : raw_conn {
    using raw_conn::send;
    bool send(uint32_t type, int32_t proc, uint32_t tag, const bytes &payload) const
    {
        bytes pkt;
        diag_packet_build(type, proc, tag, payload.data(), payload.size(), &pkt);
        return send(pkt);
    }
    bool command(const bytes &cmd, int32_t proc = 0) const { return send(k_raw, proc, 0, cmd); }
    /* The next packet, "" unless it came and carries one good frame. */
    std::string next() const
    {
        bytes buf = recv(3000);
        diag_packet p;
        bool one_good = !buf.empty() && diag_packet_parse(buf.data(), buf.size(), &p) && p.frames.size() == 1 &&
                        p.frames[0].status == HDLC_OK;
        return one_good ? packet(p.env.data_type, p.env.proc, p.env.tag, p.frames[0].payload) : "";
    }
};

class DiagChannelTest : public testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(sim.start());
        ASSERT_TRUE(diag.open(MODEMD_CONN_DIAG));
    }
    sim_instance sim;
    raw_diag diag;
};

TEST_F(DiagChannelTest, FramesCannedRepliesDelaysDropsAndRemoteProcessors)
{
    for (const char *bad : {"diag delay 0x1c", "diag delay 0x1c -5", "diag reply 300 00", "diag reply 0x1c zz",
                            "diag dci-piece 0", "diag dci-piece 16385", "diag dci-support 0x10000",
                            "diag dci-support 3 99", "diag last 0", "diag log", "diag frobnicate"}) {
        EXPECT_EQ(sim.ctl(bad).compare(0, 6, "error "), 0) << bad;
    }
    EXPECT_EQ(sim.ctl_ok("diag status"), "remote_mask=0x0 dci_piece=4096 connections=1 dci_clients=0");

    /* Several frames in one packet, after a leading flag, one corrupt. */
    bytes pkt;
    diag_packet_build(k_raw, 0, 0, nullptr, 0, &pkt);
    pkt.resize(DIAG_ENVELOPE_LEN);
    pkt.push_back(HDLC_FLAG);
    for (const bytes &payload : {bytes{0x1c}, bytes{0x01}, bytes{0x7d, 0x7e}}) {
        bytes f = diag_test::frame(payload);
        if (payload[0] == 0x01) f[1] ^= 0x01; /* CRC no longer matches */
        pkt.insert(pkt.end(), f.begin(), f.end());
    }
    ASSERT_TRUE(diag.send(pkt));
    EXPECT_EQ(diag.next(), packet(k_raw, 0, 0, {0x1c, 0x08, 0x00}));
    /* 0x7D (extended message configuration) has no sub-command 0x7E. */
    EXPECT_EQ(diag.next(), packet(k_raw, 0, 0, {0x14, 0x7d, 0x7e}));
    EXPECT_EQ(sim.ctl_ok("diag last"), "cmd 0 1c\ncmd 0 7d7e") << "the corrupt frame was dropped";

    const std::string esn = packet(k_raw, 0, 0, {0x01, 0xc3, 0xb2, 0xa1, 0x80});
    sim.ctl_ok("diag reply 0x0c 0c 7e 7d");
    ASSERT_TRUE(diag.command({0x0c}));
    EXPECT_EQ(diag.next(), packet(k_raw, 0, 0, {0x0c, 0x7e, 0x7d}));
    sim.ctl_ok("diag reply-clear");
    ASSERT_TRUE(diag.command({0x0c}));
    EXPECT_EQ(diag.next().size(), packet(k_raw, 0, 0, bytes(48)).size());

    /* A delayed answer comes after the answer to a later command. */
    sim.ctl_ok("diag delay 0x1c 300");
    long long start = monotonic_ms();
    ASSERT_TRUE(diag.command({0x1c}));
    ASSERT_TRUE(diag.command({0x01}));
    EXPECT_EQ(diag.next(), esn);
    EXPECT_EQ(diag.next(), packet(k_raw, 0, 0, {0x1c, 0x08, 0x00}));
    EXPECT_GE(monotonic_ms() - start, 300);

    /* Commands are answered in order, so the ESN answer coming first shows
     * that the dropped one will never come. */
    sim.ctl_ok("diag clear");
    sim.ctl_ok("diag drop 0x1c");
    ASSERT_TRUE(diag.command({0x1c}));
    ASSERT_TRUE(diag.command({0x01}));
    EXPECT_EQ(diag.next(), esn);
    sim.ctl_ok("diag undrop 0x1c");
    ASSERT_TRUE(diag.command({0x1c}));
    EXPECT_EQ(diag.next(), packet(k_raw, 0, 0, {0x1c, 0x08, 0x00}));

    /* Remote processors answer with their id; absent ones never. */
    EXPECT_EQ(sim.ctl("diag remote-mask 0x3"), "error bad remote mask") << "bit 0 is the local processor";
    sim.ctl_ok("diag remote-mask 0x2");
    ASSERT_TRUE(diag.command({0x1c}, 1));
    EXPECT_EQ(diag.next(), packet(k_raw, 1, 0, {0x1c, 0x08, 0x00}));
    ASSERT_TRUE(diag.command({0x1c}, 3));
    ASSERT_TRUE(diag.command({0x01}, 0));
    EXPECT_EQ(diag.next(), esn);
    EXPECT_EQ(sim.ctl_ok("diag last 7"), "cmd 0 01\ncmd 0 1c\ncmd 0 01\ncmd 0 1c\ncmd 1 1c\ncmd 3 1c\ncmd 0 01");
}

TEST_F(DiagChannelTest, DciPiecesWithTheRequestTagSessionOpsAndStreamRecords)
{
    EXPECT_EQ(sim.ctl("diag log 0102"), "error no DCI client");
    bytes reply(5000, 0x7e);
    reply[0] = 0x4b;
    const struct {
        uint32_t type;
        int32_t proc;
        uint32_t tag;
        bytes req;
        std::vector<std::string> answers;
    } cases[] = {
        {k_data, 0, DIAG_SESSION_REMOTE_MASK, {}, {packet(k_data, 0, DIAG_SESSION_REMOTE_MASK, bytes(6, 0))}},
        {k_data, 1, DIAG_SESSION_DCI_SUPPORT, {}, /* MDM absent */
         {packet(k_data, 1, DIAG_SESSION_DCI_SUPPORT, {DIAG_SESSION_BAD_PROC, 0, 0, 0})}},
        {k_data, 0, 99, {}, {packet(k_data, 0, 99, {DIAG_SESSION_BAD_OP, 0, 0, 0})}},
        {k_data, 0, DIAG_SESSION_DCI_REGISTER, {}, {packet(k_data, 0, DIAG_SESSION_DCI_REGISTER, bytes(4, 0))}},
        /* 4b 7e 7e ...: 5000 bytes, most of them escaped on the wire. */
        {k_dci, 0, 42, {0x4b, 0x12, 0x00, 0x00},
         {packet(k_dci, 0, 42, bytes(reply.begin(), reply.begin() + 4096)),
          packet(k_dci, 0, 42u | DIAG_TAG_FINAL, bytes(904, 0x7e))}},
        {k_dci, 0, 43, {0x1c}, {packet(k_dci, 0, 43u | DIAG_TAG_FINAL, {0x1c, 0x08, 0x00})}},
    };
    sim.ctl_ok("diag reply 0x4b " + hex(reply));
    for (const auto &c : cases) {
        if (c.tag == 43) sim.ctl_ok("diag reply-clear 0x4b");
        ASSERT_TRUE(diag.send(c.type, c.proc, c.tag, c.req));
        for (const std::string &a : c.answers) EXPECT_EQ(diag.next(), a) << c.tag;
    }
    EXPECT_EQ(sim.ctl_ok("diag last 2"), "dci 0 4b120000\ndci 0 1c");

    EXPECT_EQ(sim.ctl("diag event 01 00 7e"), "ok 1");
    EXPECT_EQ(diag.next(), packet(k_data, 0, DIAG_STREAM_EVENT_TAG, {0x01, 0x00, 0x7e}));
    ASSERT_TRUE(diag.send(k_data, 0, DIAG_SESSION_DCI_RELEASE, {}));
    EXPECT_EQ(diag.next(), packet(k_data, 0, DIAG_SESSION_DCI_RELEASE, bytes(4, 0)));
    EXPECT_EQ(sim.ctl("diag log 0102"), "error no DCI client");
}

TEST_F(DiagChannelTest, NvAndEfsViewsAgreeThroughTheControlInterface)
{
    bytes write = {0x27, 10, 0, 0xab}, read = {0x26, 11};
    write.resize(133);
    read.resize(133);
    ASSERT_TRUE(diag.command(write));
    EXPECT_EQ(diag.next(), packet(k_raw, 0, 0, write)) << "NV_DONE";
    EXPECT_EQ(sim.ctl_ok("efs get /nvm/num/10"), "ab" + std::string(2 * 127, '0'));

    sim.ctl_ok("efs put /nvm/num/11 aabb");
    ASSERT_TRUE(diag.command(read));
    read[3] = 0xaa;
    read[4] = 0xbb;
    EXPECT_EQ(diag.next(), packet(k_raw, 0, 0, read));
}

}  // namespace
