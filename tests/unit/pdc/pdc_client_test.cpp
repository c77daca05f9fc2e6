/* Opening and releasing the PDC client against a private simulator, the
 * indication decoder, and option 10's use of the client. */

#include "../frontend/frontend_test_util.h"
#include "tolvek_test_mbn.h"

#include "data_file.h"
#include "pdc_test_util.h"

namespace {

std::vector<unsigned int> g_sleeps;
sim_instance *g_current = nullptr;

/* Raw indication bytes through the decoder, as the QMI library hands them. */
void deliver(unsigned int msg_id, std::vector<uint8_t> tlvs)
{
    qmi_pdc_unsol_ind_cb(g_pdc_info.client_handle, msg_id, tlvs.data(), unsigned(tlvs.size()), nullptr);
}

class PdcClientTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(sim.start());
        g_sleeps.clear();
        g_current = &sim;
        pdc_set_retry_sleep([](unsigned int seconds) { g_sleeps.push_back(seconds); });
    }
    void TearDown() override
    {
        pdc_clean();
        pdc_set_retry_sleep(nullptr);
    }

    sim_instance sim;
};

/* Twenty failed attempts give -1, with a sleep after every one (the last
 * included); a service that comes back during the retries is opened, and
 * released once. */
TEST_F(PdcClientTest, OpeningRetriesTwentyTimes)
{
    pdc_log_scope log;
    sim.ctl_ok("down pdc");
    EXPECT_EQ(pdc_init(), -1);
    EXPECT_EQ(g_pdc_info.client_handle, nullptr);
    EXPECT_EQ(g_sleeps, std::vector<unsigned int>(PDC_INIT_ATTEMPTS, PDC_INIT_RETRY_SECONDS));
    g_sleeps.clear();
    pdc_set_retry_sleep([](unsigned int seconds) {
        g_sleeps.push_back(seconds);
        if (g_sleeps.size() == 3) g_current->ctl_ok("up pdc");
    });
    EXPECT_EQ(pdc_init(), 0);
    pdc_clean();
    pdc_clean();
    expect_golden(log.text(), __FILE__, "pdc_open.golden");
}

/* Unknown ids, short results, a page of 26 ids and a configuration change
 * (no handler) never reach a handler. */
TEST_F(PdcClientTest, DecoderDispatchesAndRefusesWhatItCannotDecode)
{
    pdc_log_scope log;
    ASSERT_EQ(pdc_init(), 0);
    pdc_begin(PDC_OP_SELECT);
    deliver(QMI_PDC_SET_SELECTED_CONFIG_REQ_V01, {0x01, 0x02, 0x00, 0x00, 0x00});
    EXPECT_EQ(outcome_of(PDC_OP_SELECT), "done 1 result 0 error 0\n");
    deliver(0x99, {});
    deliver(QMI_PDC_SET_SELECTED_CONFIG_REQ_V01, {0x01, 0x05, 0x00, 0x00});
    /* TLV 0x11 of 157 bytes: the count, then 26 ids of 6 bytes. */
    std::vector<uint8_t> list = {0x01, 0x02, 0x00, 0x00, 0x00, 0x11, 157, 0, 26};
    for (int i = 0; i < 26; i++) list.insert(list.end(), {1, 0, 0, 0, 1, uint8_t('a' + i)});
    deliver(QMI_PDC_LIST_CONFIGS_REQ_V01, list);
    deliver(QMI_PDC_CONFIG_CHANGE_IND_V01, {0x01, 0x06, 0x00, 1, 0, 0, 0, 1, 'z'});
    expect_golden(log.text(), __FILE__, "pdc_decoder.golden");
}

/* Option 10 opens the client once per process and reuses it (PDC
 * untouched, nothing printed); a forced initialisation releases it and
 * opens it again. */
TEST_F(PdcClientTest, GroupOpensTheClientOnceUnlessForced)
{
    pdc_log_scope log;
    g_pdc_init_status = -1;
    std::string t;
    for (int force : {0, 0, 1}) {
        t += without_line_numbers(capture_stdout([force] { EXPECT_EQ(tolvek_test_mbn_pdc_init(force), 0); }));
        t += "--- PDC log so far\n" + log.text();
    }
    expect_golden(t, __FILE__, "pdc_group_init.golden");
    g_pdc_init_status = -1;
}

}  // namespace
