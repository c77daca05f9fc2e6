/* Options 3 (GPIO and RF transmit tests) and 6 (raw QMI send) through the
 * real rlk against a private simulator. */
#include <gtest/gtest.h>

#include "ext_test_util.h"

namespace {

class RfQmiSendTest : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(sim.start()); }

    rlk_run rlk(std::vector<std::string> args) { return sim.run_rlk(args); }

    sim_instance sim;
};

TEST_F(RfQmiSendTest, FreshStateFilesPrint)
{
    rlk_run tx = rlk({"3", "4"});
    EXPECT_EQ(tx.out.substr(0, 22), "tolvek_rf_tx_test_get\n");
    EXPECT_TRUE(has_text(tx.out, "\ndata len(16)\ndata:  01 00 00 00 04 00 00 00 45 00 00 00 00 01 00 00\n")) << tx.out;
    /* The state files are read at subscription 0 with the terminating zero
     * counted in the path length. */
    ext_wire_request req = ext_last_requests(sim, 1).at(0);
    EXPECT_EQ(req.data[0], 4);
    EXPECT_EQ(req.data[4], 43);
    EXPECT_EQ(req.data[5 + 42], 0);

    rlk_run gpio = rlk({"3", "1"});
    EXPECT_TRUE(has_text(gpio.out, "\ndata len(20)\ndata:  04 00 00 00 01 00 00 00 00 00 00 00 01 00 00 00 01 00 00 00\n"))
        << gpio.out;
    EXPECT_EQ(ext_last_requests(sim, 1).at(0).data[4], 47);
}

TEST_F(RfQmiSendTest, GpioSetGetCloseCycle)
{
    rlk_run set = rlk({"3", "0", "1", "0", "1"});
    EXPECT_EQ(set.out, "tolvek_gpio_test_set\ntolvek_gpio_test_set, gpio_v[0]: 1\ntolvek_gpio_test_set, gpio_v[1]: 0\n"
                       "tolvek_gpio_test_set, gpio_v[2]: 1\n" + set.out.substr(set.out.find("TOLVEK_QMI_NV")));
    ext_wire_request req = ext_last_requests(sim, 1).at(0);
    EXPECT_EQ(req.msg_code, uint32_t(REQUEST_ID_COMMON));
    EXPECT_EQ(req.u32(0), 0u);
    EXPECT_EQ(req.u32(8), 3u);
    EXPECT_EQ(req.u32(12), 1u);
    EXPECT_EQ(req.u32(20), 1u);
    EXPECT_TRUE(has_text(rlk({"3", "1"}).out, "\ndata len(16)\ndata:  03 00 00 00 01 00 00 00 00 00 00 00 01 00 00 00\n"));
    EXPECT_FALSE(has_text(rlk({"3", "2"}).out, "note:"));
    EXPECT_TRUE(has_text(rlk({"3", "1"}).out, "tolvek_extend_qmi_send_sync fail, REQUEST_ID_EFS\n" + error_note(-2)));

    /* 60 values: the count says 60, only the first 50 travel. */
    std::vector<std::string> args = {"3", "0"};
    for (int i = 1; i <= 60; i++) args.push_back(std::to_string(i));
    rlk_run many = rlk(args);
    EXPECT_TRUE(has_text(many.out, "gpio_v[49]: 50\n"));
    EXPECT_FALSE(has_text(many.out, "gpio_v[50]"));
    req = ext_last_requests(sim, 1).at(0);
    EXPECT_EQ(req.u32(8), 60u);
    EXPECT_EQ(req.u32(12 + 4 * 49), 50u);
    EXPECT_EQ(req.u32(12 + 4 * 50), 0u);
    EXPECT_EQ(sim.ctl_ok("efs get " TOLVEK_GPIO_STATE_FILE).size(), 2u * (4 + 4 * 50));

    /* No value at all still sends a request, with count 0. */
    EXPECT_FALSE(has_text(rlk({"3", "0"}).out, "note:"));
    EXPECT_EQ(ext_last_requests(sim, 1).at(0).u32(8), 0u);
}

TEST_F(RfQmiSendTest, RfTransmitSetGetCloseCycle)
{
    rlk_run set = rlk({"3", "3", "1", "4", "0x1000000000"});
    EXPECT_EQ(set.out.substr(0, set.out.find("TOLVEK_QMI_NV")),
              "tolvek_rf_tx_test_set, argc(6)\n v_ant(1)\n v_sys(4)\n v_band_list(68719476736)\n");
    ext_wire_request req = ext_last_requests(sim, 1).at(0);
    EXPECT_EQ(req.u32(0), 1u);
    EXPECT_EQ(req.u32(8), 1u);
    EXPECT_EQ(req.u32(12), 4u);
    EXPECT_EQ(req.u32(16), 0u);
    EXPECT_EQ(req.u32(20), 0x10u) << "bit 36";
    EXPECT_TRUE(has_text(rlk({"3", "4"}).out, "data:  01 00 00 00 04 00 00 00 00 00 00 00 10 00 00 00\n"));
    EXPECT_FALSE(has_text(rlk({"3", "5"}).out, "note:"));
    EXPECT_TRUE(has_text(rlk({"3", "4"}).out, error_note(-2)));
    EXPECT_TRUE(has_text(rlk({"3", "5"}).out, error_note(-2)));
}

TEST_F(RfQmiSendTest, ArgumentNotes)
{
    struct {
        std::vector<std::string> args;
        std::string expected;
    } cases[] = {
        {{"3", "3", "1", "4"}, "\nnote: need 5 inputs, Pls refer to the following cmd:\n" + error_note(268431370)},
        {{"3", "1", "extra"},
         "\nnote: Cmd error, should be: rlk 3 1 , Pls refer to the following cmd:\n" + error_note(268431370)},
        {{"3", "5", "x"},
         "\nnote: Cmd error, should be: rlk 3 5 , Pls refer to the following cmd:\n" + error_note(268431370)},
        {{"3", "6"}, "\nnote: the second parameters is invalid, Pls refer to the following cmd:\n"},
        {{"6", "5"}, "\nnote: Too few parameters, Pls refer to the following cmd:\n"},
        {{"6", "6", "1"}, "\nnote: the second parameters(qmi_id) should be >= 0 && < 6\n"},
        {{"6", "-1", "1"}, "\nnote: the second parameters(qmi_id) should be >= 0 && < 6\n"},
    };
    long long before = ext_request_count(sim);
    for (const auto &c : cases) {
        rlk_run r = rlk(c.args);
        EXPECT_TRUE(has_text(r.out, c.expected + "\n=========== blew:")) << r.out;
    }
    EXPECT_EQ(ext_request_count(sim), before);
}

TEST_F(RfQmiSendTest, RawSendPrintsWhatItSent)
{
    rlk_run r = rlk({"6", "5", "0x01"});
    EXPECT_EQ(r.out, "tk_qmi req data(qmi_id: 5, len: 1[max: 500]):\n0x01 "
                     "TOLVEK_QMI_NV: qmi_client_get_service_list() returned 0 num_services = 1\n"
                     "TOLVEK_QMI_NV: qmi_client_get_service_list() returned 0 num_entries = 1 num_services = 1\n"
                     "QMI client inited\n"
                     "tolvek_extend_qmi_send_sync resp_len:0\n"
                     "tolvek_extend_qmi_handle_req_cb result:0\n"
                     "qmi_id = 5, result = 0\n"
                     "tk_qmi rsp data(qmi_id: 5, len: 0[max: 500]):\n\n");
    ext_wire_request req = ext_last_requests(sim, 1).at(0);
    EXPECT_EQ(req.msg_code, 5u);
    EXPECT_EQ(req.data_len, 1u);
    EXPECT_EQ(req.data[0], 1);

    /* 501 words: the line reports 501, 500 bytes travel; 0x1FF is 0xFF. */
    std::vector<std::string> args = {"6", "0", "0x1FF"};
    for (int i = 0; i < 500; i++) args.push_back(std::to_string(i % 7));
    rlk_run many = rlk(args);
    EXPECT_TRUE(has_text(many.out, "tk_qmi req data(qmi_id: 0, len: 501[max: 500]):\n0xFF 0x00 0x01 ")) << many.out;
    req = ext_last_requests(sim, 1).at(0);
    EXPECT_EQ(req.data_len, 500u);
    EXPECT_EQ(req.data[0], 0xFF);
    EXPECT_EQ(req.data[499], uint8_t(498 % 7));
    EXPECT_EQ(req.data[500], 0);
    EXPECT_TRUE(has_text(many.out, "qmi_id = 0, result = 0\ntk_qmi rsp data(qmi_id: 0, len: 0[max: 500]):\n\n"));
}

}  // namespace
