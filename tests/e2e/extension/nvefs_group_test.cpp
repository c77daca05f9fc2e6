/* Option 4 through the real rlk against a private simulator: EFS and NV
 * round trips, what travels on the wire, limits and argument failures. */
#include <gtest/gtest.h>

#include "ext_test_util.h"

namespace {

class NvEfsGroupTest : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(sim.start()); }

    rlk_run rlk(std::vector<std::string> args) { return sim.run_rlk(args); }

    sim_instance sim;
};

std::vector<std::string> with_bytes(std::vector<std::string> args, int count, const std::string &byte)
{
    args.insert(args.end(), size_t(count), byte);
    return args;
}

TEST_F(NvEfsGroupTest, EfsWriteReadDeleteRead)
{
    rlk_run w = rlk({"4", "5", "0", "/test/round_trip", "1", "2", "255", "256"});
    EXPECT_FALSE(has_text(w.out, "note:")) << w.out;
    EXPECT_TRUE(has_syslog(w, "] tolvek_efs_write: data_len_all = 4, data_len_send = 4, data_len_recv = 4, "
                              "send_count = 1, data_len_cur = 0"));
    EXPECT_EQ(sim.ctl_ok("efs get /test/round_trip"), "0102ff00");

    rlk_run r = rlk({"4", "4", "0", "/test/round_trip"});
    EXPECT_TRUE(has_text(r.out, "\ndata len(4)\ndata:  01 02 FF 00\n")) << r.out;

    EXPECT_FALSE(has_text(rlk({"4", "6", "0", "/test/round_trip"}).out, "note:"));
    rlk_run gone = rlk({"4", "4", "0", "/test/round_trip"});
    EXPECT_TRUE(has_text(gone.out, "tolvek_extend_qmi_send_sync fail, REQUEST_ID_EFS\n" + error_note(-2)))
        << gone.out;
    EXPECT_TRUE(has_syslog(gone, "] tolvek_efs_read: qmi response fail"));
    EXPECT_TRUE(has_text(rlk({"4", "6", "0", "/test/round_trip"}).out, error_note(-2)));
}

TEST_F(NvEfsGroupTest, NvWriteReadDeleteAcrossSubscriptions)
{
    rlk_run w = rlk({"4", "2", "0", "10", "1", "2", "300"});
    EXPECT_FALSE(has_text(w.out, "note:")) << w.out;
    ext_wire_request req = ext_last_requests(sim, 1).at(0);
    EXPECT_EQ(req.msg_code, uint32_t(REQUEST_ID_EFS));
    EXPECT_EQ(req.data_len, 512u);
    EXPECT_EQ(std::vector<uint8_t>(req.data.begin(), req.data.begin() + 4), (std::vector<uint8_t>{2, 0, 10, 0}));
    EXPECT_EQ(req.u32(76), 3u);
    EXPECT_EQ(std::vector<uint8_t>(req.data.begin() + 88, req.data.begin() + 92), (std::vector<uint8_t>{1, 2, 44, 0}));
    /* NV and EFS views of the item agree. */
    EXPECT_EQ(sim.ctl_ok("efs get /nvm/num/10"), "01022c");
    EXPECT_TRUE(has_text(rlk({"4", "1", "0", "10"}).out, "\ndata len(3)\ndata:  01 02 2C\n"));

    /* Any non-zero subscription is 1, whose items live apart. */
    rlk_run sub1 = rlk({"4", "1", "5", "550"});
    EXPECT_EQ(ext_last_requests(sim, 1).at(0).data[1], 1);
    EXPECT_TRUE(has_text(sub1.out, "data:  08 3A 55 43 13 10 32 54 87\n")) << sub1.out;
    EXPECT_TRUE(has_text(rlk({"4", "1", "1", "10"}).out, error_note(5))) << "item 10 is unset on subscription 1";

    EXPECT_FALSE(has_text(rlk({"4", "3", "0", "10"}).out, "note:"));
    rlk_run gone = rlk({"4", "1", "0", "10"});
    EXPECT_TRUE(has_text(gone.out, "tolvek_extend_qmi_send_sync fail, REQUEST_ID_EFS\n" + error_note(5)));
    EXPECT_TRUE(has_syslog(gone, "] tolvek_nv_read: qmi response fail"));
}

TEST_F(NvEfsGroupTest, SeededItemPrintsOnAFreshSimulator)
{
    rlk_run r = rlk({"4", "1", "0", "550"});
    EXPECT_TRUE(has_text(r.out, "\ndata len(9)\ndata:  08 3A 55 43 13 10 32 54 06\n")) << r.out;
    EXPECT_TRUE(has_syslog(r, "] tolvek_nv_read: rsp.data_len_all = 9"));
}

/* Failures found before any request reaches the modem. */
TEST_F(NvEfsGroupTest, ArgumentFailuresSendNothing)
{
    /* Built by appending: GCC 12's -Wrestrict misjudges "text" + temporary
     * (an insert at the front) once optimised. */
    std::string path71(71, 'p');
    path71[0] = '/';
    const std::string usage_note = error_note(268431370);
    struct {
        std::vector<std::string> args;
        std::string expected_out;   /* note or error line on standard output */
        std::string expected_log;   /* system-log line, "" for none */
    } cases[] = {
        {{"4", "1", "0", "7233"}, error_note(-109), "] tolvek_nv_read: nv_id is out range(7232)"},
        {{"4", "1", "0", "-1"}, error_note(-109), "] tolvek_nv_read: nv_id is out range(7232)"},
        {{"4", "3", "0", "9000"}, error_note(-109), "] tolvek_nv_delete: nv_id is out range(7232)"},
        {{"4", "2", "0", "7233", "1"}, error_note(-109), "] tolvek_nv_write_ex: nv_id is out range(7232)"},
        {with_bytes({"4", "2", "0", "10"}, 425, "1"), error_note(-108), "] tolvek_nv_write_ex: buf_len is invalid"},
        {{"4", "5", "0", path71, "1"}, error_note(-106), "] tolvek_efs_write: len invalid"},
        {{"4", "6", "0", path71}, error_note(-106), "] tolvek_efs_delete: len invalid"},
        {{"4", "2", "0", "10"}, "\nnote: Too few inputs, Pls refer to the following cmd:\n" + usage_note, ""},
        {{"4", "1", "0"}, "\nnote: need 5 inputs, Pls refer to the following cmd:\n" + usage_note, ""},
        {{"4", "4", "0", "/a", "b"}, "\nnote: need 5 inputs", ""},
        {{"4", "7"}, "\nnote: the second parameters is invalid, Pls refer to the following cmd:\n", ""},
    };
    long long before = ext_request_count(sim);
    for (const auto &c : cases) {
        rlk_run r = rlk(c.args);
        EXPECT_TRUE(has_text(r.out, c.expected_out)) << c.args[1] << " " << c.args.size() << "\n" << r.out;
        EXPECT_TRUE(has_text(r.out, "cmd help")) << "the group help follows";
        if (!c.expected_log.empty()) {
            EXPECT_TRUE(has_syslog(r, c.expected_log)) << c.expected_log;
        }
    }
    EXPECT_EQ(ext_request_count(sim), before);
}

TEST_F(NvEfsGroupTest, NvReadLimits)
{
    /* The highest id is asked for (and is not active on a fresh modem). */
    EXPECT_TRUE(has_text(rlk({"4", "1", "0", "7232"}).out, error_note(5)));
    EXPECT_EQ(ext_last_requests(sim, 1).at(0).data[2], 0x40);
    EXPECT_EQ(ext_last_requests(sim, 1).at(0).data[3], 0x1C);

    sim.ctl_ok("efs put /nvm/num/77 " + std::string(2 * 400, '5'));
    rlk_run big = rlk({"4", "1", "0", "77"});
    std::string bytes;
    for (int i = 0; i < 365; i++) bytes += " 55";
    EXPECT_TRUE(has_text(big.out, "\ndata len(365)\ndata: " + bytes + "\n")) << big.out;

    sim.ctl_ok("efs put /nvm/num/78");
    rlk_run empty = rlk({"4", "1", "0", "78"});
    EXPECT_TRUE(has_text(empty.out, error_note(-108)));
    EXPECT_TRUE(has_syslog(empty, "] tolvek_nv_read: rsp.data_len_all is invalid"));
}

TEST_F(NvEfsGroupTest, LongWritesKeepTheirLimits)
{
    /* 400 bytes travel for an NV item, 365 of them from the arguments. */
    rlk_run nv = rlk(with_bytes({"4", "2", "0", "20"}, 400, "7"));
    EXPECT_FALSE(has_text(nv.out, "note:")) << nv.out;
    ext_wire_request req = ext_last_requests(sim, 1).at(0);
    EXPECT_EQ(req.u32(76), 400u);
    std::vector<uint8_t> expected(424, 0);
    std::fill(expected.begin(), expected.begin() + 365, 7);
    EXPECT_EQ(std::vector<uint8_t>(req.data.begin() + 88, req.data.end()), expected);
    EXPECT_EQ(sim.ctl_ok("efs get /nvm/num/20").size(), 800u);

    /* An EFS write takes 365 arguments; a read shows at most 365 bytes. */
    EXPECT_FALSE(has_text(rlk(with_bytes({"4", "5", "0", "/test/long"}, 366, "9")).out, "note:"));
    std::string nines;
    for (int i = 0; i < 365; i++) nines += "09";
    EXPECT_EQ(sim.ctl_ok("efs get /test/long"), nines);
    sim.ctl_ok("efs put /test/long " + std::string(2 * 400, 'a'));
    EXPECT_TRUE(has_text(rlk({"4", "4", "0", "/test/long"}).out, "\ndata len(365)\ndata:  AA AA"));
}

}  // namespace
