/* The simulator's diag command table driven directly: response layouts,
 * length and code errors, NV items kept in the EFS tree, LOG_CONFIG masks
 * and the EFS2 item-file subsystem commands. */
#include <stdlib.h>
#include <string.h>

#include <gtest/gtest.h>

#include "diag_commands.h"

namespace {

using bytes = std::vector<uint8_t>;
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
    void TearDown() override
    {
        std::string cmd = "rm -rf '" + dir_ + "'";
        EXPECT_EQ(system(cmd.c_str()), 0);
    }

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
        if (!data.empty()) memcpy(p.data() + 3, data.data(), data.size());
        return p;
    }
    static uint16_t nv_status(const bytes &rsp) { return uint16_t(rsp[131] | rsp[132] << 8); }

    std::string dir_;
    state_store store_;
    diag_modem_state modem_;
};

TEST_F(DiagCommandsTest, FixedLayoutResponses)
{
    struct layout_case {
        uint8_t code;
        size_t len;
    };
    const layout_case cases[] = {
        {k_diag_cmd_version_info, 55}, {k_diag_cmd_esn, 5},       {k_diag_cmd_status, 48},
        {k_diag_cmd_diag_ver, 3},      {k_diag_cmd_timestamp, 9},
    };
    for (const layout_case &c : cases) {
        bytes rsp = ask({c.code});
        ASSERT_EQ(rsp.size(), c.len) << int(c.code);
        EXPECT_EQ(rsp[0], c.code);
    }
    EXPECT_EQ(ask({k_diag_cmd_diag_ver}), (bytes{0x1c, 0x08, 0x00}));
    bytes ts = ask({k_diag_cmd_timestamp});
    uint64_t t = 0;
    memcpy(&t, ts.data() + 1, 8);
    EXPECT_GT(t >> 16, 0u) << "1.25 ms units since 1980";

    bytes build = ask({k_diag_cmd_ext_build_id});
    ASSERT_GT(build.size(), 12u);
    EXPECT_EQ(build.back(), 0);
    std::string text(build.begin() + 12, build.end());
    EXPECT_EQ(text.find("MPSS."), 0u);
}

TEST_F(DiagCommandsTest, UnknownCodesAndBadLengthsEchoTheRequest)
{
    EXPECT_EQ(ask({0xf5, 0x01, 0x02}), (bytes{k_diag_cmd_bad_cmd, 0xf5, 0x01, 0x02}));
    EXPECT_EQ(ask({k_diag_cmd_esn, 0x00}), (bytes{k_diag_cmd_bad_len, k_diag_cmd_esn, 0x00}));
    EXPECT_EQ(ask({k_diag_cmd_nv_read, 0x0a, 0x00}), (bytes{k_diag_cmd_bad_len, k_diag_cmd_nv_read, 0x0a, 0x00}));
    EXPECT_EQ(ask({k_diag_cmd_subsys, 0x13}), (bytes{k_diag_cmd_bad_len, k_diag_cmd_subsys, 0x13}));
    EXPECT_EQ(ask({k_diag_cmd_subsys, 0x63, 0x01, 0x00}), (bytes{k_diag_cmd_bad_cmd, 0x4b, 0x63, 0x01, 0x00}));
    EXPECT_EQ(ask({}), (bytes{k_diag_cmd_bad_len}));
}

TEST_F(DiagCommandsTest, NvItemsLiveInTheEfsTree)
{
    bytes rsp = ask(nv_packet(k_diag_cmd_nv_read, 4964, {}));
    ASSERT_EQ(rsp.size(), k_nv_packet_len);
    EXPECT_EQ(nv_status(rsp), k_nv_status_inactive) << "never written";
    EXPECT_EQ(rsp[1] | rsp[2] << 8, 4964) << "item echoed";

    bytes data = {0x7e, 0x01, 0x02, 0x03};
    rsp = ask(nv_packet(k_diag_cmd_nv_write, 4964, data));
    EXPECT_EQ(nv_status(rsp), k_nv_status_done);
    bytes stored;
    ASSERT_EQ(store_.efs_read(diag_nv_item_path(4964), &stored), k_efs_ok);
    EXPECT_EQ(diag_nv_item_path(4964), "/nvm/num/4964");
    ASSERT_EQ(stored.size(), k_nv_data_len);
    EXPECT_EQ(bytes(stored.begin(), stored.begin() + 4), data);

    ASSERT_EQ(store_.efs_write(diag_nv_item_path(4964), {0x11, 0x22}), k_efs_ok);
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
    bytes set = {0x73, 0, 0, 0, 3, 0, 0, 0, 11, 0, 0, 0, 16, 0, 0, 0, 0x01, 0x02};
    bytes rsp = ask(set);
    ASSERT_EQ(rsp.size(), 22u);
    EXPECT_EQ(bytes(rsp.begin(), rsp.begin() + 12), (bytes{0x73, 0, 0, 0, 3, 0, 0, 0, 0, 0, 0, 0}));
    EXPECT_EQ(bytes(rsp.end() - 2, rsp.end()), (bytes{0x01, 0x02}));

    rsp = ask({0x73, 0, 0, 0, 4, 0, 0, 0, 11, 0, 0, 0});
    ASSERT_EQ(rsp.size(), 20u + (k_log_last_item + 1) / 8);
    EXPECT_EQ(rsp[20], 0x01);
    EXPECT_EQ(rsp[21], 0x02);
    EXPECT_EQ(rsp[22], 0x00);

    EXPECT_TRUE(diag_log_enabled(modem_, 0xB009));
    EXPECT_FALSE(diag_log_enabled(modem_, 0xB008) || diag_log_enabled(modem_, 0x1009));

    rsp = ask({0x73, 0, 0, 0, 1, 0, 0, 0});
    ASSERT_EQ(rsp.size(), 12u + 4 * k_log_equip_count);
    EXPECT_EQ(rsp[12 + 4 * 11], 0xff);

    /* Disable (op 0) clears every mask. */
    EXPECT_EQ(ask({0x73, 0, 0, 0, 0, 0, 0, 0}), (bytes{0x73, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}));
    EXPECT_FALSE(diag_log_enabled(modem_, 0xB000));

    EXPECT_EQ(ask({0x73, 0, 0, 0, 3, 0, 0, 0, 11, 0, 0, 0, 16, 0, 0, 0, 0x01})[0], k_diag_cmd_bad_len)
        << "mask shorter than its item count";
    EXPECT_EQ(ask({0x73, 0, 0, 0, 9, 0, 0, 0})[0], k_diag_cmd_bad_parm);
    rsp = ask({0x73, 0, 0, 0, 4, 0, 0, 0, 16, 0, 0, 0});
    EXPECT_EQ(rsp[8], 1) << "equipment id out of range fails in the result word";
}

TEST_F(DiagCommandsTest, ExtMessageConfigAnswersEverySubCommand)
{
    const struct {
        bytes req, rsp;
    } cases[] = {
        {{0x7D, 1}, {0x7D, 1, 1, 0, 1, 0, 0, 0, 0, 0, 0x65, 0}},               /* one range 0..0x65 */
        {{0x7D, 2, 3, 0, 4, 0}, {0x7D, 2, 3, 0, 4, 0, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0}}, /* levels of 3..4 */
        {{0x7D, 4, 0, 0, 0, 0, 0, 0, 9, 0, 0, 0}, {0x7D, 4, 0, 0, 0, 0, 1, 0, 9, 0, 0, 0}},
        {{0x7D, 5}, {0x7D, 5, 1, 0}}, /* short: still answered */
        {{0x7D, 5, 0, 0, 7, 0, 0, 0}, {0x7D, 5, 1, 0, 7, 0, 0, 0}},
        {{0x7D, 9}, {0x14, 0x7D, 9}},
        {{0x7D, 2, 5, 0, 1, 0}, {0x14, 0x7D, 2, 5, 0, 1, 0}}, /* last before first */
        {{0x7D, 2, 5}, {0x15, 0x7D, 2, 5}},
    };
    for (const auto &c : cases) EXPECT_EQ(ask(c.req), c.rsp) << int(c.req[1]);
}

TEST_F(DiagCommandsTest, EventReportSwitchesReporting)
{
    EXPECT_EQ(ask({0x60, 0x01}), (bytes{0x60, 0x00, 0x00}));
    EXPECT_TRUE(modem_.event_report_on);
    ask({0x60, 0x00});
    EXPECT_FALSE(modem_.event_report_on);
}

TEST_F(DiagCommandsTest, EfsItemFilePutAndGet)
{
    const char path[] = "/nv/item_files/modem/test/item";
    bytes put = {0x4b, 0x13, 38, 0, 3, 0, 0, 0, 0, 0, 0, 0, 0x05, 0x00, 0xaa, 0xbb, 0xcc};
    put.insert(put.end(), path, path + sizeof(path));
    EXPECT_EQ(ask(put), (bytes{0x4b, 0x13, 38, 0, 0x05, 0x00, 0, 0, 0, 0}));

    bytes get = {0x4b, 0x13, 39, 0, 2, 0, 0, 0, 0, 0, 0, 0, 0x06, 0x00};
    get.insert(get.end(), path, path + sizeof(path));
    EXPECT_EQ(ask(get), (bytes{0x4b, 0x13, 39, 0, 2, 0, 0, 0, 0, 0, 0, 0, 0x06, 0x00, 0xaa, 0xbb}))
        << "at most data_length bytes";

    bytes missing = {0x4b, 0x13, 39, 0, 8, 0, 0, 0, 0, 0, 0, 0, 0x07, 0x00, '/', 'n', 'o', 0};
    EXPECT_EQ(ask(missing), (bytes{0x4b, 0x13, 39, 0, 0xff, 0xff, 0xff, 0xff, 2, 0, 0, 0, 0x07, 0x00}))
        << "-1 bytes, ENOENT";

    bytes short_put = {0x4b, 0x13, 38, 0, 9, 0, 0, 0, 0, 0, 0, 0, 0x05, 0x00, 0xaa};
    EXPECT_EQ(ask(short_put)[0], k_diag_cmd_bad_len) << "data_length past the end";

    bytes cm = ask({0x4b, 0x0f, 0x00, 0x00});
    ASSERT_EQ(cm.size(), 44u);
    EXPECT_EQ(cm[8], 5) << "operating mode online";
}

}  // namespace
