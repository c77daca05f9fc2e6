/* The PDC indication handlers: what each stores for every outcome, the
 * lines it writes, the waits on their outcomes, and the list handler's
 * pages.  Stored outcomes and log lines are compared whole with golden
 * transcripts. */
#include <thread>

#include "data_file.h"
#include "pdc_test_util.h"

namespace {

/* Each handler without data, with error 3 and with success. */
TEST(PdcSimpleHandlers, NullErrorAndSuccessForEveryOperation)
{
    const std::pair<pdc_op, void (*)(void *, uint32_t)> handlers[] = {
        {PDC_OP_SELECT, qmi_pdc_select_config_ind_hdlr},     {PDC_OP_DELETE, qmi_pdc_delete_config_ind_hdlr},
        {PDC_OP_ACTIVATE, qmi_pdc_activate_config_ind_hdlr}, {PDC_OP_DEACTIVATE, qmi_pdc_deactivate_config_ind_hdlr},
        {PDC_OP_SET_FEATURE, qmi_pdc_set_feature_ind_hdlr},
    };
    std::string t;
    for (const auto &h : handlers) {
        pdc_log_scope log;
        t += "op " + std::to_string(h.first) + "\n";
        h.second(nullptr, 0);
        t += outcome_of(h.first);
        for (int32_t error : {3, 0}) {
            pdc_begin(h.first);
            pdc_generic_ind_msg_v01 ind = {error, 0, 0};
            h.second(&ind, sizeof(ind));
            t += outcome_of(h.first);
        }
        t += log.text();
    }
    expect_golden(t, __FILE__, "pdc_simple_handlers.golden");
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
    EXPECT_TRUE(poll_until(waiting, 3000));
    pdc_generic_ind_msg_v01 other = {3, 1, 9}, ours = {0, 1, 5};
    qmi_pdc_select_config_ind_hdlr(&other, sizeof(other));
    usleep(20000);
    EXPECT_TRUE(waiting()) << "another request's outcome does not end the wait";
    long long start = monotonic_ms();
    qmi_pdc_select_config_ind_hdlr(&ours, sizeof(ours));
    waiter.join();
    /* Done at once, and the outcome is our request's. */
    EXPECT_EQ(facts(status, monotonic_ms() - start < 1000) + outcome_of(PDC_OP_SELECT),
              facts(PDC_WAIT_DONE, 1) + "done 1 result 0 error 0\n");

    pdc_begin(PDC_OP_DELETE);
    qmi_pdc_delete_config_ind_hdlr(&ours, sizeof(ours));
    EXPECT_EQ(pdc_wait_outcome(PDC_OP_DELETE, 1), PDC_WAIT_DONE);

    /* Without an outcome: the time-out, or a cancel at once. */
    pdc_begin(PDC_OP_ACTIVATE);
    start = monotonic_ms();
    const pdc_wait_status timed_out = pdc_wait_outcome(PDC_OP_ACTIVATE, 50);
    EXPECT_EQ(facts(timed_out, monotonic_ms() - start >= 50, *pdc_slot_of(PDC_OP_ACTIVATE).in_progress),
              facts(PDC_WAIT_TIMEOUT, 1, 0));

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
 * and only where its flag is set (the remaining size has none: 5 stays).
 * An error wins over a reset flag. */
TEST(PdcLoadHandler, OutcomesStoreTheirCodesAndProgress)
{
    const std::pair<int32_t, bool> cases[] = {{0, false}, {2, false}, {41, false}, {7, false}, {0, true}, {41, true}};
    std::string t;
    for (const auto &c : cases) {
        pdc_log_scope log;
        /* 1024 bytes received; 777 remaining, without its flag. */
        pdc_load_config_ind_msg_v01 ind = {c.first, 0, 0, 1, 1024, 0, 777, c.second, 0};
        g_pdc_info.slots.load.remaining_config_size = 5;
        qmi_pdc_load_config_ind_hdlr(&ind, sizeof(ind));
        const auto &slot = g_pdc_info.slots.load;
        t += "error " + std::to_string(c.first) + " reset " + std::to_string(c.second) + ": " + outcome_of(PDC_OP_LOAD);
        t += "received " + std::to_string(slot.received_config_size) + " remaining " +
             std::to_string(slot.remaining_config_size) + " frame reset " + std::to_string(ind.frame_data_reset) + "\n";
        t += log.text();
    }
    pdc_log_scope log;
    qmi_pdc_load_config_ind_hdlr(nullptr, 0);
    t += "null: " + outcome_of(PDC_OP_LOAD) + log.text();
    expect_golden(t, __FILE__, "pdc_load_handler.golden");
}

/* Nothing is kept from a failed query. */
TEST(PdcQueryHandlers, SelectedAndInfoKeepWhatTheModemSaid)
{
    pdc_log_scope log;
    auto sel = std::make_unique<pdc_get_selected_config_ind_msg_v01>();
    sel->active_config_id_valid = 1;
    sel->active_config_id_len = 3;
    memcpy(sel->active_config_id, "abc", 3);
    const auto &kept = g_pdc_info.slots.get_selected;
    std::string t;
    for (int32_t error : {0, 16}) {
        sel->error = error;
        qmi_pdc_get_selected_config_ind_hdlr(sel.get(), sizeof(*sel));
        t += outcome_of(PDC_OP_GET_SELECTED) + "active " + std::to_string(kept.active_config_id_len) + " pending " +
             std::to_string(kept.pending_config_id_len) + "\n";
    }
    auto info = std::make_unique<pdc_get_config_info_ind_msg_v01>();
    info->config_desc_valid = 1;
    info->config_desc_len = 4;
    memcpy(info->config_desc, "desc", 4);
    info->config_version_valid = 1;
    info->config_version = 0x05010823;
    qmi_pdc_get_config_info_ind_hdlr(info.get(), sizeof(*info));
    const pdc_config_info_slot &s = g_pdc_info.slots.get_config_info;
    t += std::string(reinterpret_cast<const char *>(s.config_desc), s.config_desc_len) + " version " +
         std::to_string(s.config_version) + " size valid " + std::to_string(s.config_size_valid) + "\n";
    expect_golden(t + log.text(), __FILE__, "pdc_query_handlers.golden");
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
    /* Hands the handler one page of `n` ids named <prefix><i>, and notes
     * the outcome, the count and the token for the next page. */
    void page(uint32_t n, bool more, const std::string &prefix, uint32_t token = 7, uint8_t list_valid = 1)
    {
        auto ind = std::make_unique<pdc_list_configs_ind_msg_v01>();
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
        t += "page " + prefix + std::to_string(n) + ": " + outcome_of(PDC_OP_LIST) + "count " + std::to_string(count) +
             " token " + std::to_string(g_pdc_info.slots.list.ind_token) + "\n";
    }
    /* The list, newest first, then the log with the indication's address
     * replaced by "PTR". */
    void expect_transcript(const std::string &name)
    {
        for (pdc_config_list_element *e = head; e; e = e->next) {
            t += std::string(reinterpret_cast<const char *>(e->config_id), e->config_id_len) + " ";
        }
        std::string l = log.text();
        const std::string at = "ind_data_ptr = ";
        for (size_t p = l.find(at); p != std::string::npos; p = l.find(at, p + 1)) {
            l.replace(p + at.size(), l.find(',', p) - p - at.size(), "PTR");
        }
        expect_golden(t + "\n" + l, __FILE__, name);
    }

    pdc_log_scope log;
    uint32_t count = 0;
    pdc_config_list_element *head = nullptr;
    std::string t;
};

/* 26 entries, an empty list and no list at all: each ends the list with
 * its error and no element. */
TEST_F(PdcListHandler, BadPagesAreRefusedWithoutAnElement)
{
    page(26, false, "x");
    page(0, false, "x");
    page(0, false, "x", 7, 0);
    expect_transcript("pdc_list_bad_pages.golden");
}

/* Only the last page wakes the waiter; the next page is asked for with the
 * token of the one before; new elements go to the head. */
TEST_F(PdcListHandler, PagesAccumulateAndOnlyTheLastWakesTheWaiter)
{
    page(25, true, "a", 41);
    page(3, false, "b", 41);
    expect_transcript("pdc_list_pages.golden");
}

TEST_F(PdcListHandler, MoreWithoutATokenEndsTheList)
{
    page(2, true, "a", 0);
    EXPECT_EQ(t, "page a2: done 1 result 0 error 0\ncount 2 token 0\n");
}

/* Not running, or no count: nothing; no list head: counted, no element. */
TEST_F(PdcListHandler, NotRunningOrNoCountDoesNothing)
{
    set_list(0, nullptr, nullptr);
    page(2, false, "a");
    set_list(0, &count, nullptr);
    page(2, false, "a");
    set_list(1, &count, nullptr);
    page(2, false, "a");
    expect_transcript("pdc_list_not_running.golden");
}

}  // namespace
