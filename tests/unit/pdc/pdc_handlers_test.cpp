/* The PDC indication handlers: what each stores for every outcome, the
 * lines it writes, and the list handler's pages. */
#include <memory>
#include <thread>

#include "pdc_test_util.h"

namespace {

typedef void (*handler_fn)(void *, uint32_t);

struct simple_case {
    const char *name;
    pdc_op op;
    handler_fn fn;
};

const simple_case k_simple[] = {
    {"select", PDC_OP_SELECT, qmi_pdc_select_config_ind_hdlr},
    {"delete", PDC_OP_DELETE, qmi_pdc_delete_config_ind_hdlr},
    {"activate", PDC_OP_ACTIVATE, qmi_pdc_activate_config_ind_hdlr},
    {"deactivate", PDC_OP_DEACTIVATE, qmi_pdc_deactivate_config_ind_hdlr},
    {"set feature", PDC_OP_SET_FEATURE, qmi_pdc_set_feature_ind_hdlr},
};

TEST(PdcSimpleHandlers, NullErrorAndSuccessForEveryOperation)
{
    for (const simple_case &c : k_simple) {
        SCOPED_TRACE(c.name);
        pdc_log_scope log;
        c.fn(nullptr, 0);
        EXPECT_EQ(outcome_of(c.op).result, PDC_RESULT_GENERAL_ERROR);
        EXPECT_EQ(outcome_of(c.op).done, 1u);

        pdc_begin(c.op);
        pdc_generic_ind_msg_v01 bad = generic_ind(3);
        c.fn(&bad, sizeof(bad));
        EXPECT_EQ(outcome_of(c.op).result, PDC_RESULT_GENERAL_ERROR);
        EXPECT_EQ(outcome_of(c.op).qmi_error, 3);

        pdc_begin(c.op);
        pdc_generic_ind_msg_v01 ok = generic_ind(0);
        c.fn(&ok, sizeof(ok));
        EXPECT_EQ(outcome_of(c.op).result, PDC_RESULT_SUCCESS);
        EXPECT_EQ(outcome_of(c.op).done, 1u);
        EXPECT_EQ(log.lines(), (std::vector<std::string>{"6 NULL pointer for ind_data_ptr",
                                                         "6 QMI error, error code: 3"}));
    }
}

TEST(PdcSimpleHandlers, WaiterIsWokenAndALateWaiterSeesTheOutcome)
{
    pdc_log_scope log;
    pdc_begin(PDC_OP_SELECT);
    pdc_wait_status status = PDC_WAIT_TIMEOUT;
    std::thread waiter([&status] { status = pdc_wait_outcome(PDC_OP_SELECT, 5000); });
    /* Until the waiter is registered, the handler would only set done. */
    for (int i = 0; i < 500; i++) {
        {
            std::lock_guard<qtimutex::QtiSharedMutex> lock(g_pdc_info.pdc_mutex);
            if (g_pdc_info.slots.select.waiting) break;
        }
        usleep(1000);
    }
    long long start = monotonic_ms();
    pdc_generic_ind_msg_v01 ok = generic_ind(0);
    qmi_pdc_select_config_ind_hdlr(&ok, sizeof(ok));
    waiter.join();
    EXPECT_EQ(status, PDC_WAIT_DONE);
    EXPECT_LT(monotonic_ms() - start, 1000);

    /* The indication came before anyone waited. */
    pdc_begin(PDC_OP_DELETE);
    qmi_pdc_delete_config_ind_hdlr(&ok, sizeof(ok));
    EXPECT_EQ(pdc_wait_outcome(PDC_OP_DELETE, 1), PDC_WAIT_DONE);
}

TEST(PdcWaiter, AnOutcomeWithAnotherTokenDoesNotEndTheWait)
{
    pdc_log_scope log;
    pdc_begin(PDC_OP_SELECT);
    pdc_wait_status status = PDC_WAIT_TIMEOUT;
    std::thread waiter([&status] { status = pdc_wait_outcome(PDC_OP_SELECT, 5000, 5); });
    pdc_generic_ind_msg_v01 other = generic_ind(3);
    other.ind_token_valid = 1;
    other.ind_token = 9;
    qmi_pdc_select_config_ind_hdlr(&other, sizeof(other));
    usleep(20000);
    pdc_generic_ind_msg_v01 ours = generic_ind(0);
    ours.ind_token_valid = 1;
    ours.ind_token = 5;
    qmi_pdc_select_config_ind_hdlr(&ours, sizeof(ours));
    waiter.join();
    EXPECT_EQ(status, PDC_WAIT_DONE);
    EXPECT_EQ(outcome_of(PDC_OP_SELECT).result, PDC_RESULT_SUCCESS) << "the outcome is our request's";
}

TEST(PdcWaiter, TimeOutAndCancel)
{
    pdc_log_scope log;
    pdc_begin(PDC_OP_ACTIVATE);
    long long start = monotonic_ms();
    EXPECT_EQ(pdc_wait_outcome(PDC_OP_ACTIVATE, 50), PDC_WAIT_TIMEOUT);
    EXPECT_GE(monotonic_ms() - start, 50);
    EXPECT_EQ(*pdc_slot_of(PDC_OP_ACTIVATE).in_progress, 0u);

    pdc_begin(PDC_OP_ACTIVATE);
    pdc_wait_status status = PDC_WAIT_DONE;
    std::thread waiter([&status] { status = pdc_wait_outcome(PDC_OP_ACTIVATE, 10000); });
    usleep(20000);
    pdc_cancel_waits();
    waiter.join();
    EXPECT_EQ(status, PDC_WAIT_CANCELLED);
    pdc_reset_cancel();
}

struct load_case {
    const char *name;
    int32_t error;
    bool reset;
    int8_t result;
    const char *line;
};

const load_case k_load[] = {
    {"no memory", 2, false, PDC_RESULT_NO_MEMORY, "6 no memory in modem EFS"},
    {"config exists", 41, false, PDC_RESULT_CONFIG_EXISTS, "6 Invalid config id, maybe already exists"},
    {"other error", 7, false, PDC_RESULT_GENERAL_ERROR, "6 load configuration error, code = 7"},
    {"frame reset", 0, true, PDC_RESULT_FRAME_RESET, "6 PDC frame data is reset"},
    /* An error wins over a reset flag. */
    {"error with reset", 41, true, PDC_RESULT_CONFIG_EXISTS, "6 Invalid config id, maybe already exists"},
};

TEST(PdcLoadHandler, FailuresStoreTheirCodes)
{
    for (const load_case &c : k_load) {
        SCOPED_TRACE(c.name);
        pdc_log_scope log;
        pdc_load_config_ind_msg_v01 ind;
        memset(&ind, 0, sizeof(ind));
        ind.error = c.error;
        ind.frame_data_reset_valid = c.reset;
        ind.received_config_size_valid = 1;
        ind.received_config_size = 99;
        qmi_pdc_load_config_ind_hdlr(&ind, sizeof(ind));
        EXPECT_EQ(outcome_of(PDC_OP_LOAD).result, c.result);
        EXPECT_EQ(outcome_of(PDC_OP_LOAD).done, 1u);
        EXPECT_EQ(log.lines(), std::vector<std::string>{c.line});
        EXPECT_EQ(g_pdc_info.slots.load.received_config_size, 0u) << "progress kept only on success";
        if (c.reset && c.error == 0) {
            EXPECT_EQ(ind.frame_data_reset, 1);
        }
    }
    pdc_log_scope log;
    qmi_pdc_load_config_ind_hdlr(nullptr, 0);
    EXPECT_EQ(outcome_of(PDC_OP_LOAD).result, PDC_RESULT_GENERAL_ERROR);
    EXPECT_EQ(log.lines(), std::vector<std::string>{"6 NULL pointer for ind_dat_ptr"});
}

TEST(PdcLoadHandler, ProgressOnlyWhereItsFlagIsSet)
{
    pdc_log_scope log;
    pdc_load_config_ind_msg_v01 ind;
    memset(&ind, 0, sizeof(ind));
    ind.received_config_size_valid = 1;
    ind.received_config_size = 1024;
    ind.remaining_config_size = 777; /* no flag: ignored */
    g_pdc_info.slots.load.remaining_config_size = 5;
    qmi_pdc_load_config_ind_hdlr(&ind, sizeof(ind));
    EXPECT_EQ(outcome_of(PDC_OP_LOAD).result, PDC_RESULT_SUCCESS);
    EXPECT_EQ(g_pdc_info.slots.load.received_config_size, 1024u);
    EXPECT_EQ(g_pdc_info.slots.load.remaining_config_size, 5u);
    EXPECT_TRUE(log.lines().empty());
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

/* One list page of `n` ids named <prefix><i>. */
std::unique_ptr<pdc_list_configs_ind_msg_v01> page(uint32_t n, bool more, const std::string &prefix, uint32_t token = 7)
{
    auto ind = std::make_unique<pdc_list_configs_ind_msg_v01>();
    memset(ind.get(), 0, sizeof(*ind));
    ind->ind_token_valid = 1;
    ind->ind_token = token;
    ind->config_list_valid = 1;
    ind->config_list_len = n;
    for (uint32_t i = 0; i < n && i < PDC_CONFIG_LIST_SIZE_MAX_V01; i++) {
        std::string id = prefix + std::to_string(i);
        ind->config_list[i].config_id_len = uint32_t(id.size());
        memcpy(ind->config_list[i].config_id, id.data(), id.size());
    }
    ind->more_available_valid = 1;
    ind->more_available = more;
    return ind;
}

class PdcListHandler : public ::testing::Test {
protected:
    void SetUp() override
    {
        std::lock_guard<qtimutex::QtiSharedMutex> lock(g_pdc_info.pdc_mutex);
        g_pdc_info.slots.list.is_pdc_list_handling = 1;
        g_pdc_info.slots.list.num_of_configs = &count;
        g_pdc_info.slots.list.config_list_holder = &head;
    }
    void TearDown() override
    {
        pdc_end(PDC_OP_LIST);
        pdc_free_config_list(head);
    }
    std::vector<std::string> ids() const
    {
        std::vector<std::string> out;
        for (pdc_config_list_element *e = head; e; e = e->next) {
            out.emplace_back(reinterpret_cast<const char *>(e->config_id), e->config_id_len);
        }
        return out;
    }

    pdc_log_scope log;
    uint32_t count = 0;
    pdc_config_list_element *head = nullptr;
};

TEST_F(PdcListHandler, TwentySixEntriesAreRefusedWithoutAnElement)
{
    auto ind = page(26, false, "x");
    qmi_pdc_list_configs_ind_hdlr(ind.get(), sizeof(*ind));
    EXPECT_EQ(outcome_of(PDC_OP_LIST).result, PDC_RESULT_GENERAL_ERROR);
    EXPECT_EQ(outcome_of(PDC_OP_LIST).done, 1u);
    EXPECT_EQ(head, nullptr);
    EXPECT_EQ(count, 0u);
    std::vector<std::string> l = log.lines();
    ASSERT_EQ(l.size(), 2u);
    EXPECT_EQ(l[1], "6 PDC_ERROR, more_available_valid 1, ind_token_valid 1, more_available 0, config_list_len 26");
}

TEST_F(PdcListHandler, EmptyListIsAnErrorAndNoListIsNoMbn)
{
    auto empty = page(0, false, "x");
    qmi_pdc_list_configs_ind_hdlr(empty.get(), sizeof(*empty));
    EXPECT_EQ(outcome_of(PDC_OP_LIST).result, PDC_RESULT_GENERAL_ERROR);
    empty->config_list_valid = 0;
    qmi_pdc_list_configs_ind_hdlr(empty.get(), sizeof(*empty));
    EXPECT_EQ(outcome_of(PDC_OP_LIST).result, PDC_RESULT_NO_MBN);
    std::vector<std::string> l = log.lines();
    ASSERT_EQ(l.size(), 4u);
    EXPECT_EQ(l[1], "6 PDC_ERROR, more_available_valid 1, ind_token_valid 1, more_available 0, config_list_len 0");
    EXPECT_EQ(l[3], "6 None MBN available in modem EFS");
}

TEST_F(PdcListHandler, PagesAccumulateAndOnlyTheLastWakesTheWaiter)
{
    auto first = page(25, true, "a", 41);
    qmi_pdc_list_configs_ind_hdlr(first.get(), sizeof(*first));
    EXPECT_EQ(outcome_of(PDC_OP_LIST).done, 0u) << "more to come: the waiter keeps waiting";
    EXPECT_EQ(count, 25u);
    EXPECT_EQ(g_pdc_info.slots.list.ind_token, 41u) << "the next page is asked for with this token";
    auto last = page(3, false, "b", 41);
    qmi_pdc_list_configs_ind_hdlr(last.get(), sizeof(*last));
    EXPECT_EQ(outcome_of(PDC_OP_LIST).done, 1u);
    EXPECT_EQ(outcome_of(PDC_OP_LIST).result, PDC_RESULT_SUCCESS);
    EXPECT_EQ(count, 28u);
    std::vector<std::string> got = ids();
    ASSERT_EQ(got.size(), 28u);
    EXPECT_EQ(got.front(), "b2") << "new elements go to the head";
    EXPECT_EQ(got.back(), "a0");
    std::vector<std::string> l = log.lines();
    EXPECT_EQ(l[1], "4 succeed to get config_list 1 ");
    EXPECT_EQ(l[2], "4 config_list_len 25, old num_of_configs 0");
    EXPECT_EQ(l[3], "4 new num_of_configs 25");
    EXPECT_EQ(l[4], "4 PDC_SUCCESS, more_available_valid 1, ind_token_valid 1, more_available 1, get_list_complete 0");
    EXPECT_EQ(l.back(), "4 PDC_SUCCESS, more_available_valid 1, ind_token_valid 1, more_available 0, get_list_complete 1");
}

TEST_F(PdcListHandler, MoreWithoutATokenEndsTheList)
{
    auto p = page(2, true, "a");
    p->ind_token_valid = 0;
    qmi_pdc_list_configs_ind_hdlr(p.get(), sizeof(*p));
    EXPECT_EQ(outcome_of(PDC_OP_LIST).done, 1u);
    EXPECT_EQ(count, 2u);
}

TEST_F(PdcListHandler, NotRunningOrNoCountDoesNothing)
{
    pdc_end(PDC_OP_LIST);
    auto p = page(2, false, "a");
    qmi_pdc_list_configs_ind_hdlr(p.get(), sizeof(*p));
    {
        std::lock_guard<qtimutex::QtiSharedMutex> lock(g_pdc_info.pdc_mutex);
        g_pdc_info.slots.list.num_of_configs = &count;
    }
    qmi_pdc_list_configs_ind_hdlr(p.get(), sizeof(*p));
    {
        std::lock_guard<qtimutex::QtiSharedMutex> lock(g_pdc_info.pdc_mutex);
        g_pdc_info.slots.list.is_pdc_list_handling = 1;
        g_pdc_info.slots.list.config_list_holder = nullptr;
    }
    qmi_pdc_list_configs_ind_hdlr(p.get(), sizeof(*p));
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
