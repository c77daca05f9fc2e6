/* Options 3 (GPIO and RF transmit tests) and 6 (raw QMI send) through the
 * real rlk against a private simulator. */
#include <gtest/gtest.h>

#include "ext_test_util.h"

namespace {

using RfQmiSendTest = ext_sim_test;

/* The first `n` 32-bit words of the last request's data. */
std::vector<uint32_t> last_words(const sim_instance &sim, size_t n)
{
    ext_wire_request req = ext_last_requests(sim, 1).at(0);
    std::vector<uint32_t> out;
    for (size_t i = 0; i < n; i++) out.push_back(req.u32(4 * i));
    return out;
}

/* Each cycle starts from the state file a fresh modem holds. */
TEST_F(RfQmiSendTest, GpioSetGetCloseCycle)
{
    expect_out("3 1", "\ndata len(20)\ndata:  04 00 00 00 01 00 00 00 00 00 00 00 01 00 00 00 01 00 00 00\n");
    EXPECT_EQ(ext_last_requests(sim, 1).at(0).data[4], 47);
    rlk_run set = rlk("3 0 1 0 1");
    EXPECT_EQ(set.out, "tolvek_gpio_test_set\ntolvek_gpio_test_set, gpio_v[0]: 1\ntolvek_gpio_test_set, gpio_v[1]: 0\n"
                       "tolvek_gpio_test_set, gpio_v[2]: 1\n" + set.out.substr(set.out.find("TOLVEK_QMI_NV")));
    EXPECT_EQ(ext_last_requests(sim, 1).at(0).msg_code, uint32_t(REQUEST_ID_COMMON));
    EXPECT_EQ(last_words(sim, 6), (std::vector<uint32_t>{0, 0, 3, 1, 0, 1}));
    expect_out("3 1", "\ndata len(16)\ndata:  03 00 00 00 01 00 00 00 00 00 00 00 01 00 00 00\n");
    expect_out("3 2", "note:", false);
    expect_out("3 1", "tolvek_extend_qmi_send_sync fail, REQUEST_ID_EFS\n" + error_note(-2));

    /* 60 values: the count says 60, only the first 50 travel. */
    std::string args = "3 0";
    for (int i = 1; i <= 60; i++) args.append(" ").append(std::to_string(i));
    rlk_run many = expect_out(args, "gpio_v[49]: 50\n");
    EXPECT_FALSE(has_text(many.out, "gpio_v[50]"));
    std::vector<uint32_t> words = last_words(sim, 3 + 51);
    EXPECT_EQ(words[2], 60u);
    EXPECT_EQ(words[3 + 49], 50u);
    EXPECT_EQ(words[3 + 50], 0u);
    EXPECT_EQ(sim.ctl_ok("efs get " TOLVEK_GPIO_STATE_FILE).size(), 2u * (4 + 4 * 50));

    /* No value at all still sends a request, with count 0. */
    expect_out("3 0", "note:", false);
    EXPECT_EQ(last_words(sim, 3)[2], 0u);
}

TEST_F(RfQmiSendTest, RfTransmitSetGetCloseCycle)
{
    rlk_run tx = expect_out("3 4", "\ndata len(16)\ndata:  01 00 00 00 04 00 00 00 45 00 00 00 00 01 00 00\n");
    EXPECT_EQ(tx.out.substr(0, 22), "tolvek_rf_tx_test_get\n");
    /* The state files are read at subscription 0 with the terminating zero
     * counted in the path length. */
    ext_wire_request req = ext_last_requests(sim, 1).at(0);
    EXPECT_EQ(req.data[0], 4);
    EXPECT_EQ(req.data[4], 43);
    EXPECT_EQ(req.data[5 + 42], 0);
    rlk_run set = rlk("3 3 1 4 0x1000000000");
    EXPECT_EQ(set.out.substr(0, set.out.find("TOLVEK_QMI_NV")),
              "tolvek_rf_tx_test_set, argc(6)\n v_ant(1)\n v_sys(4)\n v_band_list(68719476736)\n");
    EXPECT_EQ(last_words(sim, 6), (std::vector<uint32_t>{1, 0, 1, 4, 0, 0x10})); /* bit 36 */
    expect_out("3 4", "data:  01 00 00 00 04 00 00 00 00 00 00 00 10 00 00 00\n");
    expect_out("3 5", "note:", false);
    expect_out("3 4", error_note(-2));
    expect_out("3 5", error_note(-2));
}

TEST_F(RfQmiSendTest, RawSendPrintsWhatItSent)
{
    EXPECT_EQ(rlk("6 5 0x01").out, "tk_qmi req data(qmi_id: 5, len: 1[max: 500]):\n0x01 "
                                   "TOLVEK_QMI_NV: qmi_client_get_service_list() returned 0 num_services = 1\n"
                                   "TOLVEK_QMI_NV: qmi_client_get_service_list() returned 0 num_entries = 1 "
                                   "num_services = 1\nQMI client inited\n"
                                   "tolvek_extend_qmi_send_sync resp_len:0\n"
                                   "tolvek_extend_qmi_handle_req_cb result:0\n"
                                   "qmi_id = 5, result = 0\n"
                                   "tk_qmi rsp data(qmi_id: 5, len: 0[max: 500]):\n\n");
    ext_wire_request req = ext_last_requests(sim, 1).at(0);
    EXPECT_EQ(req.msg_code, 5u);
    EXPECT_EQ(req.data_len, 1u);
    EXPECT_EQ(req.data[0], 1);

    /* 501 words: the line reports 501, 500 bytes travel; 0x1FF is 0xFF. */
    std::string args = "6 0 0x1FF";
    for (int i = 0; i < 500; i++) args.append(" ").append(std::to_string(i % 7));
    rlk_run many = expect_out(args, "tk_qmi req data(qmi_id: 0, len: 501[max: 500]):\n0xFF 0x00 0x01 ");
    EXPECT_TRUE(has_text(many.out, "qmi_id = 0, result = 0\ntk_qmi rsp data(qmi_id: 0, len: 0[max: 500]):\n\n"));
    req = ext_last_requests(sim, 1).at(0);
    EXPECT_EQ(req.data_len, 500u);
    EXPECT_EQ(req.data[0], 0xFF);
    EXPECT_EQ(req.data[499], uint8_t(498 % 7));
    EXPECT_EQ(req.data[500], 0);
}

}  // namespace
