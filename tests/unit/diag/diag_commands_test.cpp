/* The simulator's diag command table driven directly: response layouts,
 * exact answers and error echoes, NV items kept in the EFS tree and
 * LOG_CONFIG masks. */
#include <stdlib.h>
#include <string.h>

#include <gtest/gtest.h>

#include "diag_commands.h"
#include "diag_test_util.h"

namespace {

using diag_test::bytes;
using namespace modemd;

class DiagCommandsTest : public testing::Test {
protected:
    void SetUp() override
    {
        char templ[] = "/tmp/rlk-test-diagcmd-XXXXXX";
        ASSERT_NE(mkdtemp(templ), nullptr);
        dir_ = templ;
        ASSERT_TRUE(store_.open(dir_ + "/state"));
        modem_.store = &store_;
    }
    void TearDown() override { EXPECT_EQ(system(("rm -rf '" + dir_ + "'").c_str()), 0); }

    bytes ask(const bytes &req)
    {
        bytes rsp;
        diag_answer_command(modem_, req.data(), req.size(), &rsp);
        return rsp;
    }
    static bytes nv_packet(uint8_t code, uint16_t item, const bytes &data)
    {
        bytes p(k_nv_packet_len, 0);
        p[0] = code;
        p[1] = uint8_t(item);
        p[2] = uint8_t(item >> 8);
        std::copy(data.begin(), data.end(), p.begin() + 3);
        return p;
    }
    static uint16_t nv_status(const bytes &rsp) { return uint16_t(rsp[131] | rsp[132] << 8); }

    std::string dir_;
    state_store store_;
    diag_modem_state modem_;
};

TEST_F(DiagCommandsTest, FixedLayoutResponses)
{
    const struct {
        bytes req;
        size_t len;
    } cases[] = {
        {{k_diag_cmd_version_info}, 55}, {{k_diag_cmd_esn}, 5}, {{k_diag_cmd_status}, 48},
        {{k_diag_cmd_diag_ver}, 3},      {{k_diag_cmd_timestamp}, 9}, {{0x4b, 0x0f, 0x00, 0x00}, 44},
    };
    for (const auto &c : cases) {
        bytes rsp = ask(c.req);
        ASSERT_EQ(rsp.size(), c.len) << int(c.req[0]);
        EXPECT_EQ(bytes(rsp.begin(), rsp.begin() + long(c.req.size())), c.req);
    }
    EXPECT_EQ(ask({0x4b, 0x0f, 0x00, 0x00})[8], 5) << "CM operating mode online";
    bytes ts = ask({k_diag_cmd_timestamp});
    uint64_t t = 0;
    memcpy(&t, ts.data() + 1, 8);
    EXPECT_GT(t >> 16, 0u) << "1.25 ms units since 1980";

    bytes build = ask({k_diag_cmd_ext_build_id});
    ASSERT_GT(build.size(), 12u);
    EXPECT_EQ(build.back(), 0);
    EXPECT_EQ(std::string(build.begin() + 12, build.end()).find("MPSS."), 0u);
}

/* Asked in order: later rows see what earlier ones wrote.  Errors echo the
 * request behind their code. */
TEST_F(DiagCommandsTest, ExactAnswersAndErrorEchoes)
{
    const char path[] = "/nv/item_files/modem/test/item";
    auto item = [&](bytes head) {
        head.insert(head.end(), path, path + sizeof(path));
        return head;
    };
    const bytes short_put = {0x4b, 0x13, 38, 0, 9, 0, 0, 0, 0, 0, 0, 0, 0x05, 0x00, 0xaa}; /* data past the end */
    const bytes short_mask = {0x73, 0, 0, 0, 3, 0, 0, 0, 11, 0, 0, 0, 16, 0, 0, 0, 0x01};  /* 16 items, 1 byte */
    auto echo = [](uint8_t code, bytes req) {
        req.insert(req.begin(), code);
        return req;
    };
    const struct {
        bytes req, rsp;
    } cases[] = {
        {{k_diag_cmd_diag_ver}, {0x1c, 0x08, 0x00}},
        {{0xf5, 0x01, 0x02}, {k_diag_cmd_bad_cmd, 0xf5, 0x01, 0x02}},
        {{k_diag_cmd_esn, 0x00}, {k_diag_cmd_bad_len, k_diag_cmd_esn, 0x00}},
        {{k_diag_cmd_nv_read, 0x0a, 0x00}, {k_diag_cmd_bad_len, k_diag_cmd_nv_read, 0x0a, 0x00}},
        {{k_diag_cmd_subsys, 0x13}, {k_diag_cmd_bad_len, k_diag_cmd_subsys, 0x13}},
        {{k_diag_cmd_subsys, 0x63, 0x01, 0x00}, {k_diag_cmd_bad_cmd, 0x4b, 0x63, 0x01, 0x00}},
        {{}, {k_diag_cmd_bad_len}},
        /* Extended message configuration: one range 0..0x65, levels of
         * 3..4, a short request still answered, a bad sub-command, last
         * before first, a truncated range. */
        {{0x7D, 1}, {0x7D, 1, 1, 0, 1, 0, 0, 0, 0, 0, 0x65, 0}},
        {{0x7D, 2, 3, 0, 4, 0}, {0x7D, 2, 3, 0, 4, 0, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0}},
        {{0x7D, 4, 0, 0, 0, 0, 0, 0, 9, 0, 0, 0}, {0x7D, 4, 0, 0, 0, 0, 1, 0, 9, 0, 0, 0}},
        {{0x7D, 5}, {0x7D, 5, 1, 0}},
        {{0x7D, 5, 0, 0, 7, 0, 0, 0}, {0x7D, 5, 1, 0, 7, 0, 0, 0}},
        {{0x7D, 9}, {0x14, 0x7D, 9}},
        {{0x7D, 2, 5, 0, 1, 0}, {0x14, 0x7D, 2, 5, 0, 1, 0}},
        {{0x7D, 2, 5}, {0x15, 0x7D, 2, 5}},
        /* EFS2 item files: put, get of at most data_length bytes, a missing
         * file (-1 bytes, ENOENT), a put whose data runs past the end. */
        {item({0x4b, 0x13, 38, 0, 3, 0, 0, 0, 0, 0, 0, 0, 0x05, 0x00, 0xaa, 0xbb, 0xcc}),
         {0x4b, 0x13, 38, 0, 0x05, 0x00, 0, 0, 0, 0}},
        {item({0x4b, 0x13, 39, 0, 2, 0, 0, 0, 0, 0, 0, 0, 0x06, 0x00}),
         {0x4b, 0x13, 39, 0, 2, 0, 0, 0, 0, 0, 0, 0, 0x06, 0x00, 0xaa, 0xbb}},
        {{0x4b, 0x13, 39, 0, 8, 0, 0, 0, 0, 0, 0, 0, 0x07, 0x00, '/', 'n', 'o', 0},
         {0x4b, 0x13, 39, 0, 0xff, 0xff, 0xff, 0xff, 2, 0, 0, 0, 0x07, 0x00}},
        {short_put, echo(k_diag_cmd_bad_len, short_put)},
        {short_mask, echo(k_diag_cmd_bad_len, short_mask)},
        {{0x73, 0, 0, 0, 9, 0, 0, 0}, echo(k_diag_cmd_bad_parm, {0x73, 0, 0, 0, 9, 0, 0, 0})},
        {{0x60, 0x01}, {0x60, 0x00, 0x00}},
    };
    for (const auto &c : cases) EXPECT_EQ(ask(c.req), c.rsp) << diag_test::hex_of(c.req);
    EXPECT_TRUE(modem_.event_report_on);
    EXPECT_EQ(ask({0x60, 0x00}), (bytes{0x60, 0x00, 0x00}));
    EXPECT_FALSE(modem_.event_report_on);
}

TEST_F(DiagCommandsTest, NvItemsLiveInTheEfsTree)
{
    bytes rsp = ask(nv_packet(k_diag_cmd_nv_read, 4964, {}));
    ASSERT_EQ(rsp.size(), k_nv_packet_len);
    EXPECT_EQ(nv_status(rsp), k_nv_status_inactive) << "never written";
    EXPECT_EQ(rsp[1] | rsp[2] << 8, 4964) << "item echoed";

    bytes data = {0x7e, 0x01, 0x02, 0x03};
    EXPECT_EQ(nv_status(ask(nv_packet(k_diag_cmd_nv_write, 4964, data))), k_nv_status_done);
    EXPECT_EQ(diag_nv_item_path(4964), "/nvm/num/4964");
    bytes stored;
    ASSERT_EQ(store_.efs_read("/nvm/num/4964", &stored), k_efs_ok);
    data.resize(k_nv_data_len);
    EXPECT_EQ(stored, data);

    ASSERT_EQ(store_.efs_write("/nvm/num/4964", {0x11, 0x22}), k_efs_ok);
    rsp = ask(nv_packet(k_diag_cmd_nv_read, 4964, {}));
    EXPECT_EQ(nv_status(rsp), k_nv_status_done);
    EXPECT_EQ(bytes(rsp.begin() + 3, rsp.begin() + 6), (bytes{0x11, 0x22, 0x00})) << "EFS write seen by NV read";

    /* The ESN is NV item 0. */
    ask(nv_packet(k_diag_cmd_nv_write, k_nv_item_esn, {0x78, 0x56, 0x34, 0x12}));
    EXPECT_EQ(ask({k_diag_cmd_esn}), (bytes{0x01, 0x78, 0x56, 0x34, 0x12}));
}

TEST_F(DiagCommandsTest, LogConfigSetAndGetMask)
{
    /* Set equipment 11 (LTE), 16 items: bits 0 and 9. */
    bytes rsp = ask({0x73, 0, 0, 0, 3, 0, 0, 0, 11, 0, 0, 0, 16, 0, 0, 0, 0x01, 0x02});
    ASSERT_EQ(rsp.size(), 22u);
    EXPECT_EQ(bytes(rsp.begin(), rsp.begin() + 12), (bytes{0x73, 0, 0, 0, 3, 0, 0, 0, 0, 0, 0, 0}));
    EXPECT_EQ(bytes(rsp.end() - 2, rsp.end()), (bytes{0x01, 0x02}));

    rsp = ask({0x73, 0, 0, 0, 4, 0, 0, 0, 11, 0, 0, 0});
    ASSERT_EQ(rsp.size(), 20u + (k_log_last_item + 1) / 8);
    EXPECT_EQ(bytes(rsp.begin() + 20, rsp.begin() + 23), (bytes{0x01, 0x02, 0x00}));
    EXPECT_TRUE(diag_log_enabled(modem_, 0xB009));
    EXPECT_FALSE(diag_log_enabled(modem_, 0xB008) || diag_log_enabled(modem_, 0x1009));

    rsp = ask({0x73, 0, 0, 0, 1, 0, 0, 0});
    ASSERT_EQ(rsp.size(), 12u + 4 * k_log_equip_count);
    EXPECT_EQ(rsp[12 + 4 * 11], 0xff);

    /* Disable (op 0) clears every mask. */
    EXPECT_EQ(ask({0x73, 0, 0, 0, 0, 0, 0, 0}), (bytes{0x73, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}));
    EXPECT_FALSE(diag_log_enabled(modem_, 0xB000));
    EXPECT_EQ(ask({0x73, 0, 0, 0, 4, 0, 0, 0, 16, 0, 0, 0})[8], 1) << "equipment out of range fails in the result";
}

}  // namespace
