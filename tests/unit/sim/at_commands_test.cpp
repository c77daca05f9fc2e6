/* The simulated AT port's answers and the IMEI it reads from NV 550. */
#include <gtest/gtest.h>

#include "at_commands.h"
#include "sim_test_util.h"
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
/* Answers in order (the state of one command reaches the next), and
 * without the IMEI item the serial number is an error. */
TEST(AtCommandsTest, AnswersInOrder)
{
    temp_dir dir;
    modemd::state_store store;
    ASSERT_TRUE(store.open(dir.path));
    modemd::at_modem_state state;
    struct {
        const char *line;
        const char *answer;
    } cases[] = {
        {"", ""}, {"  ", ""}, {"AT", "\r\nOK\r\n"}, {" at ", "\r\nOK\r\n"},
        {"ATI", "\r\nManufacturer: RLK\r\n\r\nModel: rlk-modemd\r\n\r\nRevision: RLK.MPSS.1.0\r\n\r\n"
                "IMEI: 355343101234560\r\n\r\nOK\r\n"},
        {"AT+GSN", "\r\n355343101234560\r\n\r\nOK\r\n"}, {"AT+CGMM", "\r\nrlk-modemd\r\n\r\nOK\r\n"},
        {"AT+CGMR", "\r\nRLK.MPSS.1.0\r\n\r\nOK\r\n"}, {"AT+CSQ=?", "\r\n+CSQ: (0-31,99),(0-7,99)\r\n\r\nOK\r\n"},
        {"AT+CFUN?", "\r\n+CFUN: 1\r\n\r\nOK\r\n"}, {"AT+CFUN=0,1", "\r\nOK\r\n"},
        {"at+cfun?", "\r\n+CFUN: 0\r\n\r\nOK\r\n"}, {"AT+CFUN=1,2", "\r\nERROR\r\n"}, {"AT+CFUN=", "\r\nERROR\r\n"},
        {"AT+CFUN=?", "\r\n+CFUN: (0,1,4),(0-1)\r\n\r\nOK\r\n"}, {"ATE1", "\r\nOK\r\n"}, {"ATZ", "\r\nOK\r\n"},
        {"AT+CFUN?", "\r\n+CFUN: 0\r\n\r\nOK\r\n"}, /* the reset keeps the level */
        {"hello", "\r\nERROR\r\n"}, {"ATX", "\r\nERROR\r\n"},
    };
    for (const auto &c : cases) EXPECT_EQ(modemd::at_answer(c.line, &state, store), c.answer) << c.line;
    EXPECT_FALSE(state.echo);
    ASSERT_EQ(store.efs_delete(modemd::k_at_imei_item), modemd::k_efs_ok);
    EXPECT_EQ(modemd::at_answer("AT+CGSN", &state, store), "\r\nERROR\r\n");
}

}  // namespace
