/* ORVEX formatting helpers and the tracked allocator.  The trace decision is
 * taken once per process, so each property case runs in a freshly executed
 * child (the "threadsafe" death-test style re-executes the test binary). */
#include <gtest/gtest.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include <string>

#include "orvex_log.h"
#include "orvex_mem.h"

namespace {

TEST(OrvexLogTest, BoundsOfTheFormatters)
{
    /* The record text keeps 101 characters. */
    char buf[ORVEX_LOG_MSG_LEN + 16];
    memset(buf, 'x', sizeof(buf));
    EXPECT_EQ(orvex_log_buf(buf, "%s", std::string(200, 'a').c_str()), 200);
    EXPECT_EQ(strlen(buf), ORVEX_LOG_BUF_LEN - 1);
    EXPECT_EQ(buf[ORVEX_LOG_BUF_LEN], 'x');
    /* A log message keeps 511, whatever the length passed. */
    memset(buf, 'x', sizeof(buf));
    EXPECT_EQ(orvex_log_format_log_msg(buf, 10, "%s", std::string(600, 'b').c_str()), 600);
    EXPECT_EQ(strlen(buf), ORVEX_LOG_MSG_LEN - 1);
    EXPECT_EQ(orvex_log_format_log_msg(nullptr, 512, "%s", "x"), 0);
    /* A line is "label: message". */
    orvex_log_build_format(buf, "rssi = %d");
    EXPECT_STREQ(buf, "%s: rssi = %d");
    orvex_log_build_format(buf, std::string(ORVEX_LOG_MSG_LEN, 'c').c_str());
    EXPECT_EQ(strlen(buf), ORVEX_LOG_MSG_LEN - 1);
    EXPECT_EQ(std::string(buf, 4), "%s: ");
}

/* ---- Allocator -------------------------------------------------------- */

const char *g_fake_value = nullptr; /* null: the property is absent */
int g_fake_reads = 0;

int fake_property_get(const char *key, char *value, const char *)
{
    g_fake_reads++;
    bool set = strcmp(key, ORVEX_MEM_TRACE_PROP) == 0 && g_fake_value;
    snprintf(value, 92, "%s", set ? g_fake_value : "");
    return set ? static_cast<int>(strlen(value)) : 0;
}

/* Collects failed expectations of a child; the child exits 0 when none. */
struct child_checks {
    std::string failures;
    void expect(bool ok, const char *what)
    {
        if (!ok) failures += std::string(what) + "\n";
    }
    [[noreturn]] void finish()
    {
        fputs(failures.c_str(), stderr);
        fflush(stderr);
        _exit(failures.empty() ? 0 : 1);
    }
};

/* Two allocations with the property reading `value`: tracing stays off. */
void untraced_child(const char *value)
{
    child_checks c;
    g_fake_value = value;
    orvex_mem_set_property_reader(fake_property_get);
    auto *a = static_cast<uint8_t *>(orvex_malloc_adv(16, "untraced_child"));
    void *b = orvex_malloc_adv(8, "untraced_child");
    c.expect(a && b, "allocations succeed");
    c.expect(a && a[0] == 0 && a[15] == 0, "block is zero-filled");
    c.expect(!orvex_mem_trace_enabled(), "tracing off");
    c.expect(orvex_mem_trace_count() == 0 && !orvex_mem_trace_head(), "no node");
    c.expect(g_fake_reads == 1, "property read once");
    orvex_free_adv(a);
    orvex_free_adv(b);
    orvex_free_adv(nullptr);
    c.finish();
}

void traced_child()
{
    child_checks c;
    g_fake_value = "true";
    orvex_mem_set_property_reader(fake_property_get);
    void *a = orvex_malloc_adv(10, "caller_a");
    void *b = orvex_malloc_adv(20, "caller_b");
    void *d = orvex_malloc_adv(30, "caller_c");
    g_fake_value = "false"; /* later changes have no effect */
    c.expect(orvex_mem_trace_enabled(), "tracing on");
    c.expect(orvex_mem_trace_count() == 3, "three nodes");
    const orvex_mem_trace_node *head = orvex_mem_trace_head();
    c.expect(head && head->ptr == a && head->size == 10 && strcmp(head->caller, "caller_a") == 0,
             "head is A with its size and caller");
    c.expect(head && head->pid == getpid() && head->year >= 2000 && head->month >= 1 && head->month <= 12,
             "head carries pid and local time");

    orvex_free_adv(b);
    head = orvex_mem_trace_head();
    const orvex_mem_trace_node *tail = orvex_mem_trace_tail();
    c.expect(orvex_mem_trace_count() == 2, "count 2 after freeing B");
    c.expect(head && head->ptr == a && head->next && head->next->ptr == d, "A then C");
    c.expect(tail && tail->ptr == d && tail->prev == head && !tail->next && !head->prev, "links both ways");

    /* B a second time.  Its block is gone, so B's address is released
     * again through a live block of the system allocator: glibc hands the
     * same address back at once; where it does not (a sanitizer's
     * quarantine), any untraced block stands in.  Either way the list must
     * not change. */
    void *again = malloc(20);
    orvex_free_adv(again);
    c.expect(orvex_mem_trace_count() == 2 && orvex_mem_trace_head() == head && orvex_mem_trace_tail() == tail,
             "releasing B again changes nothing");

    orvex_free_adv(a);
    orvex_free_adv(d);
    c.expect(orvex_mem_trace_count() == 0 && !orvex_mem_trace_head() && !orvex_mem_trace_tail(), "list empty");
    c.expect(g_fake_reads == 1, "property read once");
    c.finish();
}

/* Only exactly "true" turns tracing on; the list then follows allocations
 * and releases.  (The log line of an absent property is checked against
 * the simulator's property service; here it goes nowhere.) */
TEST(OrvexMemTest, TraceDecisionAndList)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    setenv("RLK_LOGCAT_FILE", "/dev/null", 1);
    for (const char *value : {static_cast<const char *>(nullptr), "false", "1", "TRUE", "truex", "tru"}) {
        SCOPED_TRACE(value ? value : "absent");
        EXPECT_EXIT(untraced_child(value), testing::ExitedWithCode(0), "");
    }
    EXPECT_EXIT(traced_child(), testing::ExitedWithCode(0), "");
    unsetenv("RLK_LOGCAT_FILE");
}

TEST(OrvexMemDeathTest, CountOverflowAborts)
{
    EXPECT_EQ(orvex_mem_count_inc(UINT32_MAX - 1), UINT32_MAX);
    EXPECT_EQ(orvex_mem_count_dec(1), 0u);
    EXPECT_DEATH(orvex_mem_count_inc(UINT32_MAX), "");
    EXPECT_DEATH(orvex_mem_count_dec(0), "");
}

}  // namespace
