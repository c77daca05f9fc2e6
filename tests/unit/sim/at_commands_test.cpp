/* The simulated AT port's answers and the IMEI it reads from NV 550. */
#include <stdlib.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "at_channel.h"
#include "at_commands.h"
#include "state_store.h"

namespace {

TEST(AtCommandsTest, ImeiFromNvItem)
{
    struct {
        std::vector<uint8_t> nv;
        std::string imei;
    } cases[] = {
        {{0x08, 0x3A, 0x55, 0x43, 0x13, 0x10, 0x32, 0x54, 0x06}, "355343101234560"},
        {{0x08, 0x3A, 0x55, 0x43, 0x13, 0x10, 0x32, 0x54, 0x87, 0xFF}, "355343101234578"},
        {{0x08, 0x3A, 0x55, 0x43, 0x13, 0x10, 0x32, 0x54, 0xF6}, "35534310123456"}, /* padded short */
        {{0x08, 0x3B, 0x55, 0x43, 0x13, 0x10, 0x32, 0x54, 0x06}, ""},              /* not an IMEI type */
        {{0x07, 0x3A, 0x55, 0x43, 0x13, 0x10, 0x32, 0x54}, ""},                    /* wrong length byte */
        {{0x08, 0x3A, 0x55, 0x43}, ""},                                            /* cut short */
        {{0x08, 0x3A, 0x5C, 0x43, 0x13, 0x10, 0x32, 0x54, 0x06}, ""},              /* not a digit */
        {{}, ""},
    };
    for (const auto &c : cases) EXPECT_EQ(modemd::at_imei_from_nv(c.nv), c.imei) << c.imei;
}

class AtAnswerTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        char tmpl[] = "/tmp/rlk-at-answer-XXXXXX";
        ASSERT_NE(mkdtemp(tmpl), nullptr);
        dir = tmpl;
        ASSERT_TRUE(store.open(dir));
    }
    void TearDown() override
    {
        std::string cmd = "rm -rf '" + dir + "'";
        EXPECT_EQ(system(cmd.c_str()), 0);
    }
    std::string answer(const std::string &line) { return modemd::at_answer(line, &state, store); }

    std::string dir;
    modemd::state_store store;
    modemd::at_modem_state state;
};

TEST_F(AtAnswerTest, AnswersInOrder)
{
    struct {
        const char *line;
        const char *answer;
    } cases[] = {
        {"", ""},
        {"  ", ""},
        {"AT", "\r\nOK\r\n"},
        {" at ", "\r\nOK\r\n"},
        {"ATI", "\r\nManufacturer: RLK\r\n\r\nModel: rlk-modemd\r\n\r\nRevision: RLK.MPSS.1.0\r\n\r\n"
                "IMEI: 355343101234560\r\n\r\nOK\r\n"},
        {"AT+GSN", "\r\n355343101234560\r\n\r\nOK\r\n"},
        {"AT+CGMM", "\r\nrlk-modemd\r\n\r\nOK\r\n"},
        {"AT+CGMR", "\r\nRLK.MPSS.1.0\r\n\r\nOK\r\n"},
        {"AT+CSQ=?", "\r\n+CSQ: (0-31,99),(0-7,99)\r\n\r\nOK\r\n"},
        {"AT+CFUN?", "\r\n+CFUN: 1\r\n\r\nOK\r\n"},
        {"AT+CFUN=0,1", "\r\nOK\r\n"},
        {"at+cfun?", "\r\n+CFUN: 0\r\n\r\nOK\r\n"},
        {"AT+CFUN=1,2", "\r\nERROR\r\n"},
        {"AT+CFUN=", "\r\nERROR\r\n"},
        {"AT+CFUN=?", "\r\n+CFUN: (0,1,4),(0-1)\r\n\r\nOK\r\n"},
        {"ATE1", "\r\nOK\r\n"},
        {"ATZ", "\r\nOK\r\n"},
        {"AT+CFUN?", "\r\n+CFUN: 0\r\n\r\nOK\r\n"}, /* the reset keeps the level */
        {"hello", "\r\nERROR\r\n"},
        {"ATX", "\r\nERROR\r\n"},
    };
    for (const auto &c : cases) EXPECT_EQ(answer(c.line), c.answer) << c.line;
    EXPECT_FALSE(state.echo);
}

TEST_F(AtAnswerTest, MissingImeiIsAnError)
{
    ASSERT_EQ(store.efs_delete(modemd::k_at_imei_item), modemd::k_efs_ok);
    EXPECT_EQ(answer("AT+CGSN"), "\r\nERROR\r\n");
}

}  // namespace
