/* The PDC indication handlers: what each stores for every outcome, the
 * lines it writes, the waits on their outcomes, and the list handler's
 * pages. */
#include <memory>
#include <thread>

#include "pdc_test_util.h"

namespace {

typedef void (*handler_fn)(void *, uint32_t);

pdc_generic_ind_msg_v01 generic_ind(int32_t error, uint32_t token = 0)
{
    pdc_generic_ind_msg_v01 ind;
    memset(&ind, 0, sizeof(ind));
    ind.error = error;
    ind.ind_token_valid = token != 0;
    ind.ind_token = token;
    return ind;
}

TEST(PdcSimpleHandlers, NullErrorAndSuccessForEveryOperation)
{
    const std::pair<pdc_op, handler_fn> handlers[] = {
        {PDC_OP_SELECT, qmi_pdc_select_config_ind_hdlr},     {PDC_OP_DELETE, qmi_pdc_delete_config_ind_hdlr},
        {PDC_OP_ACTIVATE, qmi_pdc_activate_config_ind_hdlr}, {PDC_OP_DEACTIVATE, qmi_pdc_deactivate_config_ind_hdlr},
        {PDC_OP_SET_FEATURE, qmi_pdc_set_feature_ind_hdlr},
    };
    for (const auto &h : handlers) {
        SCOPED_TRACE(h.first);
        pdc_log_scope log;
        h.second(nullptr, 0);
        EXPECT_EQ(outcome_of(h.first).result, PDC_RESULT_GENERAL_ERROR);
        EXPECT_EQ(outcome_of(h.first).done, 1u);
        for (int32_t error : {3, 0}) {
            pdc_begin(h.first);
            pdc_generic_ind_msg_v01 ind = generic_ind(error);
            h.second(&ind, sizeof(ind));
            EXPECT_EQ(outcome_of(h.first).result, error ? PDC_RESULT_GENERAL_ERROR : PDC_RESULT_SUCCESS);
            EXPECT_EQ(outcome_of(h.first).qmi_error, error);
            EXPECT_EQ(outcome_of(h.first).done, 1u);
        }
        EXPECT_EQ(log.lines(),
                  (std::vector<std::string>{"6 NULL pointer for ind_data_ptr", "6 QMI error, error code: 3"}));
    }
}

/* A waiter is woken by its own outcome only (not by one with another
 * token), a late waiter finds an outcome that came first, and a wait
 * without an outcome ends at its time-out or when cancelled. */
TEST(PdcWaiter, OwnOutcomeTimeOutAndCancel)
{
    pdc_log_scope log;
    pdc_begin(PDC_OP_SELECT);
    pdc_wait_status status = PDC_WAIT_TIMEOUT;
    std::thread waiter([&status] { status = pdc_wait_outcome(PDC_OP_SELECT, 5000, 5); });
    auto waiting = [] {
        std::lock_guard<qtimutex::QtiSharedMutex> lock(g_pdc_info.pdc_mutex);
        return g_pdc_info.slots.select.waiting != 0;
    };
    for (int i = 0; i < 500 && !waiting(); i++) usleep(1000);
    pdc_generic_ind_msg_v01 other = generic_ind(3, 9), ours = generic_ind(0, 5);
    qmi_pdc_select_config_ind_hdlr(&other, sizeof(other));
    usleep(20000);
    EXPECT_TRUE(waiting()) << "another request's outcome does not end the wait";
    long long start = monotonic_ms();
    qmi_pdc_select_config_ind_hdlr(&ours, sizeof(ours));
    waiter.join();
    EXPECT_EQ(status, PDC_WAIT_DONE);
    EXPECT_LT(monotonic_ms() - start, 1000);
    EXPECT_EQ(outcome_of(PDC_OP_SELECT).result, PDC_RESULT_SUCCESS) << "the outcome is our request's";

    pdc_begin(PDC_OP_DELETE);
    qmi_pdc_delete_config_ind_hdlr(&ours, sizeof(ours));
    EXPECT_EQ(pdc_wait_outcome(PDC_OP_DELETE, 1), PDC_WAIT_DONE);

    /* Without an outcome: the time-out, or a cancel at once. */
    pdc_begin(PDC_OP_ACTIVATE);
    start = monotonic_ms();
    EXPECT_EQ(pdc_wait_outcome(PDC_OP_ACTIVATE, 50), PDC_WAIT_TIMEOUT);
    EXPECT_GE(monotonic_ms() - start, 50);
    EXPECT_EQ(*pdc_slot_of(PDC_OP_ACTIVATE).in_progress, 0u);

    pdc_begin(PDC_OP_ACTIVATE);
    status = PDC_WAIT_DONE;
    std::thread canceled([&status] { status = pdc_wait_outcome(PDC_OP_ACTIVATE, 10000); });
    usleep(20000);
    pdc_cancel_waits();
    canceled.join();
    EXPECT_EQ(status, PDC_WAIT_CANCELLED);
    pdc_reset_cancel();
}

/* Every outcome of a load frame, and its progress: kept only on success,
 * and only where its flag is set. */
TEST(PdcLoadHandler, OutcomesStoreTheirCodesAndProgress)
{
    const struct {
        int32_t error;
        bool reset;
        int8_t result;
        std::vector<std::string> lines;
    } cases[] = {
        {0, false, PDC_RESULT_SUCCESS, {}},
        {2, false, PDC_RESULT_NO_MEMORY, {"6 no memory in modem EFS"}},
        {41, false, PDC_RESULT_CONFIG_EXISTS, {"6 Invalid config id, maybe already exists"}},
        {7, false, PDC_RESULT_GENERAL_ERROR, {"6 load configuration error, code = 7"}},
        {0, true, PDC_RESULT_FRAME_RESET, {"6 PDC frame data is reset"}},
        /* An error wins over a reset flag. */
        {41, true, PDC_RESULT_CONFIG_EXISTS, {"6 Invalid config id, maybe already exists"}},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.error + 100 * c.reset);
        pdc_log_scope log;
        pdc_load_config_ind_msg_v01 ind;
        memset(&ind, 0, sizeof(ind));
        ind.error = c.error;
        ind.frame_data_reset_valid = c.reset;
        ind.received_config_size_valid = 1;
        ind.received_config_size = 1024;
        ind.remaining_config_size = 777; /* no flag: ignored */
        g_pdc_info.slots.load.remaining_config_size = 5;
        qmi_pdc_load_config_ind_hdlr(&ind, sizeof(ind));
        EXPECT_EQ(outcome_of(PDC_OP_LOAD).result, c.result);
        EXPECT_EQ(outcome_of(PDC_OP_LOAD).done, 1u);
        EXPECT_EQ(log.lines(), c.lines);
        EXPECT_EQ(g_pdc_info.slots.load.received_config_size, c.result == PDC_RESULT_SUCCESS ? 1024u : 0u);
        EXPECT_EQ(g_pdc_info.slots.load.remaining_config_size, 5u);
        EXPECT_EQ(ind.frame_data_reset, c.result == PDC_RESULT_FRAME_RESET);
    }
    pdc_log_scope log;
    qmi_pdc_load_config_ind_hdlr(nullptr, 0);
    EXPECT_EQ(outcome_of(PDC_OP_LOAD).result, PDC_RESULT_GENERAL_ERROR);
    EXPECT_EQ(log.lines(), std::vector<std::string>{"6 NULL pointer for ind_dat_ptr"});
}

TEST(PdcQueryHandlers, SelectedAndInfoKeepWhatTheModemSaid)
{
    pdc_log_scope log;
    auto sel = std::make_unique<pdc_get_selected_config_ind_msg_v01>();
    memset(sel.get(), 0, sizeof(*sel));
    sel->active_config_id_valid = 1;
    sel->active_config_id_len = 3;
    memcpy(sel->active_config_id, "abc", 3);
    qmi_pdc_get_selected_config_ind_hdlr(sel.get(), sizeof(*sel));
    EXPECT_EQ(outcome_of(PDC_OP_GET_SELECTED).result, PDC_RESULT_SUCCESS);
    EXPECT_EQ(g_pdc_info.slots.get_selected.active_config_id_len, 3u);
    EXPECT_EQ(g_pdc_info.slots.get_selected.pending_config_id_len, 0u);

    sel->error = 16;
    qmi_pdc_get_selected_config_ind_hdlr(sel.get(), sizeof(*sel));
    EXPECT_EQ(outcome_of(PDC_OP_GET_SELECTED).result, PDC_RESULT_GENERAL_ERROR);
    EXPECT_EQ(g_pdc_info.slots.get_selected.active_config_id_len, 0u) << "nothing kept from a failed query";

    auto info = std::make_unique<pdc_get_config_info_ind_msg_v01>();
    memset(info.get(), 0, sizeof(*info));
    info->config_desc_valid = 1;
    info->config_desc_len = 4;
    memcpy(info->config_desc, "desc", 4);
    info->config_version_valid = 1;
    info->config_version = 0x05010823;
    qmi_pdc_get_config_info_ind_hdlr(info.get(), sizeof(*info));
    const pdc_config_info_slot &s = g_pdc_info.slots.get_config_info;
    EXPECT_EQ(std::string(reinterpret_cast<const char *>(s.config_desc), s.config_desc_len), "desc");
    EXPECT_EQ(s.config_version, 0x05010823u);
    EXPECT_EQ(s.config_size_valid, 0);
    EXPECT_EQ(log.lines(), std::vector<std::string>{"6 QMI error, error code: 16"});
}

class PdcListHandler : public ::testing::Test {
protected:
    void SetUp() override { set_list(1, &count, &head); }
    void TearDown() override
    {
        pdc_end(PDC_OP_LIST);
        pdc_free_config_list(head);
    }
    static void set_list(uint8_t running, uint32_t *num, pdc_config_list_element **holder)
    {
        std::lock_guard<qtimutex::QtiSharedMutex> lock(g_pdc_info.pdc_mutex);
        g_pdc_info.slots.list.is_pdc_list_handling = running;
        g_pdc_info.slots.list.num_of_configs = num;
        g_pdc_info.slots.list.config_list_holder = holder;
    }
    /* Hands the handler one page of `n` ids named <prefix><i>. */
    void page(uint32_t n, bool more, const std::string &prefix, uint32_t token = 7, uint8_t list_valid = 1)
    {
        auto ind = std::make_unique<pdc_list_configs_ind_msg_v01>();
        memset(ind.get(), 0, sizeof(*ind));
        ind->ind_token_valid = token != 0;
        ind->ind_token = token;
        ind->config_list_valid = list_valid;
        ind->config_list_len = n;
        for (uint32_t i = 0; i < n && i < PDC_CONFIG_LIST_SIZE_MAX_V01; i++) {
            std::string id = prefix + std::to_string(i);
            ind->config_list[i].config_id_len = uint32_t(id.size());
            memcpy(ind->config_list[i].config_id, id.data(), id.size());
        }
        ind->more_available_valid = 1;
        ind->more_available = more;
        qmi_pdc_list_configs_ind_hdlr(ind.get(), sizeof(*ind));
    }

    pdc_log_scope log;
    uint32_t count = 0;
    pdc_config_list_element *head = nullptr;
};

/* 26 entries, an empty list and no list at all: each ends the list with
 * its error and no element. */
TEST_F(PdcListHandler, BadPagesAreRefusedWithoutAnElement)
{
    page(26, false, "x");
    EXPECT_EQ(outcome_of(PDC_OP_LIST).result, PDC_RESULT_GENERAL_ERROR);
    EXPECT_EQ(outcome_of(PDC_OP_LIST).done, 1u);
    page(0, false, "x");
    EXPECT_EQ(outcome_of(PDC_OP_LIST).result, PDC_RESULT_GENERAL_ERROR);
    page(0, false, "x", 7, 0);
    EXPECT_EQ(outcome_of(PDC_OP_LIST).result, PDC_RESULT_NO_MBN);
    EXPECT_EQ(head, nullptr);
    EXPECT_EQ(count, 0u);
    std::vector<std::string> l = log.lines();
    ASSERT_EQ(l.size(), 6u);
    EXPECT_EQ(l[1], "6 PDC_ERROR, more_available_valid 1, ind_token_valid 1, more_available 0, config_list_len 26");
    EXPECT_EQ(l[3], "6 PDC_ERROR, more_available_valid 1, ind_token_valid 1, more_available 0, config_list_len 0");
    EXPECT_EQ(l[5], "6 None MBN available in modem EFS");
}

TEST_F(PdcListHandler, PagesAccumulateAndOnlyTheLastWakesTheWaiter)
{
    page(25, true, "a", 41);
    EXPECT_EQ(outcome_of(PDC_OP_LIST).done, 0u) << "more to come: the waiter keeps waiting";
    EXPECT_EQ(count, 25u);
    EXPECT_EQ(g_pdc_info.slots.list.ind_token, 41u) << "the next page is asked for with this token";
    page(3, false, "b", 41);
    EXPECT_EQ(outcome_of(PDC_OP_LIST).done, 1u);
    EXPECT_EQ(outcome_of(PDC_OP_LIST).result, PDC_RESULT_SUCCESS);
    EXPECT_EQ(count, 28u);
    std::vector<std::string> got;
    for (pdc_config_list_element *e = head; e; e = e->next) {
        got.emplace_back(reinterpret_cast<const char *>(e->config_id), e->config_id_len);
    }
    ASSERT_EQ(got.size(), 28u);
    EXPECT_EQ(got.front(), "b2") << "new elements go to the head";
    EXPECT_EQ(got.back(), "a0");
    std::vector<std::string> l = log.lines();
    EXPECT_EQ(std::vector<std::string>(l.begin() + 1, l.begin() + 5),
              (std::vector<std::string>{
                  "4 succeed to get config_list 1 ", "4 config_list_len 25, old num_of_configs 0",
                  "4 new num_of_configs 25",
                  "4 PDC_SUCCESS, more_available_valid 1, ind_token_valid 1, more_available 1, get_list_complete 0"}));
    EXPECT_EQ(l.back(), "4 PDC_SUCCESS, more_available_valid 1, ind_token_valid 1, more_available 0, get_list_complete 1");
}

TEST_F(PdcListHandler, MoreWithoutATokenEndsTheList)
{
    page(2, true, "a", 0);
    EXPECT_EQ(outcome_of(PDC_OP_LIST).done, 1u);
    EXPECT_EQ(count, 2u);
}

TEST_F(PdcListHandler, NotRunningOrNoCountDoesNothing)
{
    set_list(0, nullptr, nullptr);
    page(2, false, "a");
    set_list(0, &count, nullptr);
    page(2, false, "a");
    set_list(1, &count, nullptr);
    page(2, false, "a");
    EXPECT_EQ(count, 2u) << "counted, then no list head to add to";
    EXPECT_EQ(head, nullptr);
    EXPECT_EQ(outcome_of(PDC_OP_LIST).result, PDC_RESULT_GENERAL_ERROR);
    std::vector<std::string> l = log.lines();
    ASSERT_EQ(l.size(), 9u);
    EXPECT_EQ(l[1], "6 g_pdc_info.num_of_configs is null");
    EXPECT_EQ(l[3], "6 g_pdc_info.is_pdc_list_handling is not running, do nothing");
    EXPECT_EQ(l[8], "6 g_pdc_info.config_list_holder is null, quit");
}

}  // namespace
