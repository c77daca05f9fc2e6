/* Option 4 through the real rlk against a private simulator: EFS and NV
 * round trips, what travels on the wire, limits, and argument failures
 * (with those of options 3 and 6). */
#include <gtest/gtest.h>

#include "ext_test_util.h"

namespace {

using NvEfsGroupTest = ext_sim_test;

/* `text` followed by `count` times " <byte>". */
std::string with_bytes(std::string text, int count, const std::string &byte)
{
    for (int i = 0; i < count; i++) text.append(" ").append(byte);
    return text;
}

TEST_F(NvEfsGroupTest, EfsWriteReadDeleteRead)
{
    rlk_run w = expect_out("4 5 0 /test/round_trip 1 2 255 256", "note:", false);
    EXPECT_TRUE(has_syslog(w, "] tolvek_efs_write: data_len_all = 4, data_len_send = 4, data_len_recv = 4, "
                              "send_count = 1, data_len_cur = 0"));
    EXPECT_EQ(sim.ctl_ok("efs get /test/round_trip"), "0102ff00");
    expect_out("4 4 0 /test/round_trip", "\ndata len(4)\ndata:  01 02 FF 00\n");
    expect_out("4 6 0 /test/round_trip", "note:", false);
    const std::string failed = "tolvek_extend_qmi_send_sync fail, REQUEST_ID_EFS\n";
    rlk_run gone = expect_out("4 4 0 /test/round_trip", failed + error_note(-2));
    EXPECT_TRUE(has_syslog(gone, "] tolvek_efs_read: qmi response fail"));
    expect_out("4 6 0 /test/round_trip", error_note(-2));
}

TEST_F(NvEfsGroupTest, NvWriteReadDeleteAcrossSubscriptions)
{
    rlk_run seeded = expect_out("4 1 0 550", "\ndata len(9)\ndata:  08 3A 55 43 13 10 32 54 06\n");
    EXPECT_TRUE(has_syslog(seeded, "] tolvek_nv_read: rsp.data_len_all = 9"));
    expect_out("4 2 0 10 1 2 300", "note:", false);
    ext_wire_request req = ext_last_requests(sim, 1).at(0);
    EXPECT_EQ(req.msg_code, uint32_t(REQUEST_ID_EFS));
    EXPECT_EQ(req.data_len, 512u);
    EXPECT_EQ(std::vector<uint8_t>(req.data.begin(), req.data.begin() + 4), (std::vector<uint8_t>{2, 0, 10, 0}));
    EXPECT_EQ(req.u32(76), 3u);
    EXPECT_EQ(std::vector<uint8_t>(req.data.begin() + 88, req.data.begin() + 92), (std::vector<uint8_t>{1, 2, 44, 0}));
    /* NV and EFS views of the item agree. */
    EXPECT_EQ(sim.ctl_ok("efs get /nvm/num/10"), "01022c");
    expect_out("4 1 0 10", "\ndata len(3)\ndata:  01 02 2C\n");

    /* Any non-zero subscription is 1, whose items live apart. */
    expect_out("4 1 5 550", "data:  08 3A 55 43 13 10 32 54 87\n");
    EXPECT_EQ(ext_last_requests(sim, 1).at(0).data[1], 1);
    expect_out("4 1 1 10", error_note(5)); /* item 10 is unset on subscription 1 */

    expect_out("4 3 0 10", "note:", false);
    rlk_run gone = expect_out("4 1 0 10", "tolvek_extend_qmi_send_sync fail, REQUEST_ID_EFS\n" + error_note(5));
    EXPECT_TRUE(has_syslog(gone, "] tolvek_nv_read: qmi response fail"));
}

/* Failures of options 3, 4 and 6 found before any request reaches the
 * modem; the group help follows each. */
TEST_F(NvEfsGroupTest, ArgumentFailuresSendNothing)
{
    const std::string help = "\n=========== blew:";
    std::string path71(71, 'p');
    path71[0] = '/';
    const std::string usage_note = error_note(268431370);
    const std::string range = "] tolvek_nv_read: nv_id is out range(7232)";
    struct {
        std::string args;
        std::string out; /* note or error line on standard output */
        std::string log; /* system-log line, "" for none */
    } cases[] = {
        {"4 1 0 7233", error_note(-109), range},
        {"4 1 0 -1", error_note(-109), range},
        {"4 3 0 9000", error_note(-109), "] tolvek_nv_delete: nv_id is out range(7232)"},
        {"4 2 0 7233 1", error_note(-109), "] tolvek_nv_write_ex: nv_id is out range(7232)"},
        {with_bytes("4 2 0 10", 425, "1"), error_note(-108), "] tolvek_nv_write_ex: buf_len is invalid"},
        {"4 5 0 " + path71 + " 1", error_note(-106), "] tolvek_efs_write: len invalid"},
        {"4 6 0 " + path71, error_note(-106), "] tolvek_efs_delete: len invalid"},
        {"4 2 0 10", "\nnote: Too few inputs, Pls refer to the following cmd:\n" + usage_note, ""},
        {"4 1 0", "\nnote: need 5 inputs, Pls refer to the following cmd:\n" + usage_note, ""},
        {"4 4 0 /a b", "\nnote: need 5 inputs", ""},
        {"4 7", "\nnote: the second parameters is invalid, Pls refer to the following cmd:\n", ""},
        {"3 3 1 4", "\nnote: need 5 inputs, Pls refer to the following cmd:\n" + usage_note + help, ""},
        {"3 1 extra", "\nnote: Cmd error, should be: rlk 3 1 , Pls refer to the following cmd:\n" + usage_note + help,
         ""},
        {"3 5 x", "\nnote: Cmd error, should be: rlk 3 5 , Pls refer to the following cmd:\n" + usage_note + help, ""},
        {"3 6", "\nnote: the second parameters is invalid, Pls refer to the following cmd:\n" + help, ""},
        {"6 5", "\nnote: Too few parameters, Pls refer to the following cmd:\n" + help, ""},
        {"6 6 1", "\nnote: the second parameters(qmi_id) should be >= 0 && < 6\n" + help, ""},
        {"6 -1 1", "\nnote: the second parameters(qmi_id) should be >= 0 && < 6\n" + help, ""},
    };
    long long before = ext_request_count(sim);
    for (const auto &c : cases) {
        rlk_run r = expect_out(c.args, c.out);
        EXPECT_TRUE(has_text(r.out, "cmd help"));
        EXPECT_TRUE(c.log.empty() || has_syslog(r, c.log)) << c.log;
    }
    EXPECT_EQ(ext_request_count(sim), before);
}

TEST_F(NvEfsGroupTest, ReadAndWriteLimits)
{
    /* The highest id is asked for (and is not active on a fresh modem). */
    expect_out("4 1 0 7232", error_note(5));
    EXPECT_EQ(ext_last_requests(sim, 1).at(0).u32(0) >> 16, 0x1C40u);
    /* A read shows at most 365 bytes; an empty item is refused. */
    sim.ctl_ok("efs put /nvm/num/77 " + std::string(2 * 400, '5'));
    expect_out("4 1 0 77", with_bytes("\ndata len(365)\ndata: ", 365, "55") + "\n");
    sim.ctl_ok("efs put /nvm/num/78");
    rlk_run empty = expect_out("4 1 0 78", error_note(-108));
    EXPECT_TRUE(has_syslog(empty, "] tolvek_nv_read: rsp.data_len_all is invalid"));

    /* 400 bytes travel for an NV item, 365 of them from the arguments. */
    expect_out(with_bytes("4 2 0 20", 400, "7"), "note:", false);
    ext_wire_request req = ext_last_requests(sim, 1).at(0);
    EXPECT_EQ(req.u32(76), 400u);
    std::vector<uint8_t> expected(424, 0);
    std::fill(expected.begin(), expected.begin() + 365, 7);
    EXPECT_EQ(std::vector<uint8_t>(req.data.begin() + 88, req.data.end()), expected);
    EXPECT_EQ(sim.ctl_ok("efs get /nvm/num/20").size(), 800u);

    /* An EFS write takes 365 arguments; a read shows at most 365 bytes. */
    expect_out(with_bytes("4 5 0 /test/long", 366, "9"), "note:", false);
    std::string nines;
    for (int i = 0; i < 365; i++) nines += "09";
    EXPECT_EQ(sim.ctl_ok("efs get /test/long"), nines);
    sim.ctl_ok("efs put /test/long " + std::string(2 * 400, 'a'));
    expect_out("4 4 0 /test/long", "\ndata len(365)\ndata:  AA AA");
}

}  // namespace
