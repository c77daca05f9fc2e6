/* The extension client and the chunked EFS calls through the library
 * driver (one process per call, like rlk) against a private simulator:
 * send limits and response capacities, chunk boundaries and instance ids
 * on the wire, the largest file, failed chunks and an interrupted
 * transfer. */
#include <gtest/gtest.h>

#include "ext_test_util.h"

namespace {

class ExtLibraryTest : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(sim.start()); }

    probe_run probe(const std::vector<std::string> &args) { return run_probe(sim, args); }

    /* Requests of `fn`, counted by the simulator. */
    template <typename F>
    long long requests_of(F fn)
    {
        long long before = ext_request_count(sim);
        fn();
        return ext_request_count(sim) - before;
    }

    sim_instance sim;
};

TEST_F(ExtLibraryTest, RequestAndCapacityLimits)
{
    struct {
        const char *req_len, *capacity;
        int result;
        size_t len;
        const char *line;
    } cases[] = {
        {"512", "512", 0, 512, "tolvek_extend_qmi_send_sync resp_len:512\n"},
        {"513", "0", -1, 0, "put data_len 513 > max 512\n"},
        {"10", "513", -1, 0, "put data_len 10 > max 512\n"},
        {"300", "100", 0, 100, "tolvek_extend_qmi_send_sync resp_len:100\n"}, /* cut to the capacity */
        {"300", "512", 0, 300, "tolvek_extend_qmi_send_sync resp_len:300\n"},
    };
    for (const auto &c : cases) {
        probe_run p;
        long long sent = requests_of([&] { p = probe({"send", "0", c.req_len, c.capacity}); });
        EXPECT_EQ(p.result, c.result) << c.req_len << "/" << c.capacity;
        EXPECT_EQ(p.len, c.len) << c.req_len << "/" << c.capacity;
        EXPECT_TRUE(has_text(p.run.out, c.line)) << p.run.out;
        /* A refused call returns before connecting. */
        EXPECT_EQ(sent, c.result == 0 ? 1 : 0);
        EXPECT_EQ(has_text(p.run.out, "TOLVEK_QMI_NV"), c.result == 0);
    }
    /* The echo came back unchanged, up to the capacity. */
    EXPECT_EQ(probe({"send", "0", "300", "100"}).head, "000102030405060708090a0b0c0d0e0f101112131415161718191a1b1c1d1e1f");
}

TEST_F(ExtLibraryTest, AnswersWithoutPayloadOrWithAFrameworkError)
{
    sim.ctl_ok("respond ext 2 0104000000000002040000000000 1");
    probe_run bare = probe({"send", "2", "16", "444"});
    EXPECT_EQ(bare.result, 0);
    EXPECT_EQ(bare.len, 0u);

    probe_run unknown = probe({"send", "9", "4", "16"});
    EXPECT_EQ(unknown.result, -3);
    EXPECT_TRUE(has_text(unknown.run.out, "94 QMI service framework error. Check client\n"
                                          "tolvek_extend_qmi_handle_req_cb result:-3\n"));

    /* An unknown typed common request is answered with its own result. */
    probe_run typed = probe({"common", "99", "4"});
    EXPECT_TRUE(has_text(typed.run.out, "PROBE word=2 result=-95 type=99 len=0")) << typed.run.out;
    EXPECT_EQ(ext_last_requests(sim, 1).at(0).u32(12), 4u);
    /* A value beyond the 496-byte area is a fault of the caller. */
    EXPECT_TRUE(ended_abnormally(probe({"common", "99", "497"}).run.status));
}

/* An abandoned transfer (its writer killed between chunks) leaves the old
 * file as it was and does not get in the way of later transfers, whose
 * later chunks quote the instance id the modem gave. */
TEST_F(ExtLibraryTest, ChunksQuoteTheirInstanceAndAKilledWriterChangesNothing)
{
    sim.ctl_ok("efs put /lib/victim aabbcc");
    sim.ctl_ok("delay ext 2 5000");
    probe_run killed = run_probe(sim, {"efs_write", "0", "/lib/victim", "1000", "7"}, 300);
    EXPECT_TRUE(ended_abnormally(killed.run.status));
    sim.ctl_ok("clear-faults");
    EXPECT_EQ(sim.ctl_ok("efs get /lib/victim"), "aabbcc");
    EXPECT_EQ(sim.ctl_ok("ext transfers"), "0") << "the killed writer's transfer went with its connection";

    EXPECT_EQ(requests_of([&] { EXPECT_EQ(probe({"efs_write", "0", "/lib/a", "414", "1"}).result, 0); }), 1);
    ext_wire_request one = ext_last_requests(sim, 1).at(0);
    EXPECT_EQ(one.data[2], 255);
    EXPECT_EQ(one.u32(76), 414u);
    EXPECT_EQ(one.u32(80), 414u);
    EXPECT_EQ(one.u32(84), 0u);

    EXPECT_EQ(requests_of([&] { EXPECT_EQ(probe({"efs_write", "0", "/lib/b", "415", "1"}).result, 0); }), 2);
    std::vector<ext_wire_request> two = ext_last_requests(sim, 2);
    EXPECT_EQ(two[0].data[2], 255);
    EXPECT_EQ(two[0].u32(80), 414u);
    EXPECT_EQ(two[1].data[2], 0) << "instance 0, the id the first chunk was given";
    EXPECT_EQ(two[1].u32(76), 415u);
    EXPECT_EQ(two[1].u32(80), 1u);
    EXPECT_EQ(two[1].u32(84), 414u);
    EXPECT_EQ(two[1].data[88], uint8_t(1 + 7 * 414));
    EXPECT_EQ(two[1].data[89], 0) << "nothing of the previous chunk is left behind";
    EXPECT_EQ(sim.ctl_ok("efs get /lib/b").size(), 2u * 415);
    EXPECT_EQ(sim.ctl_ok("ext transfers"), "0");
}

TEST_F(ExtLibraryTest, PathAndFileLimits)
{
    const std::string path70 = "/" + std::string(69, 'd');
    EXPECT_EQ(probe({"efs_write", "0", path70, "3", "1"}).result, 0);
    probe_run too_long;
    EXPECT_EQ(requests_of([&] { too_long = probe({"efs_write", "0", path70 + "x", "3", "1"}); }), 0);
    EXPECT_EQ(too_long.result, -106);
    /* A read takes 71 bytes; the 71st travels as a zero, so the file of the
     * first 70 is read. */
    probe_run read71 = probe({"efs_read", "0", path70 + "x", "16"});
    EXPECT_EQ(read71.result, 0);
    EXPECT_EQ(read71.head, "01080f");
    EXPECT_EQ(ext_last_requests(sim, 1).at(0).data[4], 71);
    EXPECT_EQ(ext_last_requests(sim, 1).at(0).data[5 + 70], 0);

    probe_run wrote, back, over;
    EXPECT_EQ(requests_of([&] { wrote = probe({"efs_write", "0", "/lib/max", "102410", "5"}); }), 248);
    EXPECT_EQ(wrote.result, 0);
    EXPECT_EQ(requests_of([&] { back = probe({"efs_read", "0", "/lib/max", "102410"}); }), 242);
    EXPECT_EQ(back.result, 0);
    EXPECT_EQ(back.len, 102410u);
    EXPECT_EQ(back.fnv, wrote.fnv);
    EXPECT_EQ(requests_of([&] { over = probe({"efs_write", "0", "/lib/max", "102411", "5"}); }), 0);
    EXPECT_EQ(over.result, -108);
    EXPECT_TRUE(has_text(over.run.out, "RIL[tolvek_efs_write:") && has_text(over.run.out, "]: buf_len is invalid\n"));
}

/* A chunk the modem answers with a negative result ends a write or a read
 * with that result; a chunk whose exchange fails ends a read at once, while
 * a write carries on and the modem then refuses the gap. */
TEST_F(ExtLibraryTest, FailedChunks)
{
    sim.ctl_ok("efs put /lib/file " + std::string(2 * 1000, '6'));
    struct {
        const char *control;
        std::vector<std::string> call;
        int result;
        long long requests;
    } cases[] = {
        {"ext fail-efs 1 result -28", {"efs_write", "0", "/lib/file", "1000", "2"}, -28, 2},
        {"ext fail-efs 1 msg_code 9", {"efs_write", "0", "/lib/file", "1000", "2"}, -22, 3},
        {"ext fail-efs 1 result -5", {"efs_read", "0", "/lib/file", "1000"}, -5, 2},
        {"ext fail-efs 1 msg_code 9", {"efs_read", "0", "/lib/file", "1000"}, -103, 2},
        {"ext fail-efs 0 result -2", {"efs_delete", "0", "/lib/file"}, -2, 1},
        /* A directory cannot be replaced: the final chunk's commit fails. */
        {"clear-faults", {"efs_write", "0", "/nv/item_files/modem", "415", "2"}, -21, 2},
    };
    for (const auto &c : cases) {
        sim.ctl_ok(c.control);
        probe_run p;
        EXPECT_EQ(requests_of([&] { p = probe(c.call); }), c.requests) << c.control << " " << c.call[0];
        EXPECT_EQ(p.result, c.result) << c.control << " " << c.call[0] << "\n" << p.run.out;
        EXPECT_EQ(sim.ctl_ok("efs get /lib/file"), std::string(2 * 1000, '6')) << "the file is untouched";
    }
    probe_run later = probe({"efs_write", "0", "/lib/file", "10", "2"});
    EXPECT_EQ(later.result, 0) << "later transfers are not affected";
}

}  // namespace
