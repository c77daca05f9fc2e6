/* The tool's diag channel below the library: mask and channel names, the
 * command, reply-buffer and response checks, the DCI append rule with its
 * semaphore posts, and a wait thread outliving its wait (its other endings
 * are in send_timeouts.data).  No simulator. */
#include <errno.h>
#include <pthread.h>
#include <semaphore.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "diag_test_util.h"
#include "golden.h"
#include "tolvek_diag_internal.h"

namespace {

using namespace diag_test;

int sem_value()
{
    int v = -1;
    sem_getvalue(&g_diag_rsp_sem, &v);
    return v;
}

/* The stored response (no other thread running). */
bytes stored() { return bytes(g_qcril_diag_rsp_buf.data, g_qcril_diag_rsp_buf.data + g_qcril_diag_rsp_buf.length); }

/* A fresh semaphore and an empty response per test; no wait thread left
 * after it. */
class DiagSendStateTest : public testing::Test {
protected:
    void SetUp() override
    {
        tolvek_diag_rsp_buf_clear();
        sem_init(&g_diag_rsp_sem, 0, 0);
    }
    void TearDown() override
    {
        pthread_mutex_lock(&g_diag_rsp_mutex);
        tolvek_diag_wait_end_locked();
        EXPECT_EQ(tolvek_diag_wait_threads_gone_locked(1000), 0) << "a wait thread ends with its wait";
        pthread_mutex_unlock(&g_diag_rsp_mutex);
        tolvek_diag_rsp_buf_clear();
        sem_destroy(&g_diag_rsp_sem);
    }
    void arm_wait(int32_t steps)
    {
        pthread_mutex_lock(&g_diag_rsp_mutex);
        g_diag_wait.waiting = 1;
        g_diag_wait.time_count = steps;
        g_diag_wait.timed_out = 0;
        pthread_mutex_unlock(&g_diag_rsp_mutex);
    }
};

/* Mask and channel names (only the lowest mask bit is named, channels
 * beyond two are unknown); commands of 1 to 4096 bytes pass and others are
 * refused with their length; the reply buffer and response checks.  DCI
 * pieces of 4096 and 100 bytes are joined and only the short one wakes the
 * caller; refused responses leave the stored one and the semaphore alone;
 * callback mode replaces what was stored. */
TEST_F(DiagSendStateTest, ChecksAndResponsesJoinedReplacedOrRefused)
{
    bytes first(TOLVEK_DIAG_DCI_PIECE_LEN, 0x4B), second(100, 0x77);
    bytes too_long(TOLVEK_DIAG_RSP_MAX_LEN + 1, 0x1D), other(4, 0x00);
    int32_t local = 0, remote = 1; /* processors, and reply lengths */
    testing::internal::CaptureStdout();
    for (uint16_t mask : {0, 1, 6, 0x22, 0x20, 0x10, 0x40, 0xFFC0})
        printf("mask %#x:%s\n", mask, tolvek_print_diag_mask_name(mask));
    for (int ch = -1; ch <= 3; ch++) printf("channel %d: %s\n", ch, tolvek_diag_channel_name(ch));
    for (int len : {TOLVEK_DIAG_CMD_MAX_LEN, 1, TOLVEK_DIAG_CMD_MAX_LEN + 1, 0, -1})
        printf("-> %d\n", tolvek_diag_comand_input_check(too_long.data(), len));
    printf("-> %d\n", tolvek_diag_comand_input_check(nullptr, 1));
    printf("-> %d\n", tolvek_diag_comand_output_check(nullptr, &remote));
    printf("-> %d\n", tolvek_diag_comand_output_check(too_long.data(), nullptr));
    printf("-> %d\n", tolvek_diag_comand_output_check(too_long.data(), &local));
    printf("-> %d\n", tolvek_diag_comand_output_check(too_long.data(), &remote));
    printf("-> %d\n", tolvek_diag_cmd_response_check(too_long.data(), TOLVEK_DIAG_RSP_MAX_LEN, &remote));
    printf("-> %d\n", tolvek_diag_cmd_response_check(too_long.data(), TOLVEK_DIAG_RSP_MAX_LEN + 1, nullptr));
    printf("-> %d\n", tolvek_diag_cmd_response_check(too_long.data(), 0, &remote));
    printf("-> %d\n", tolvek_diag_cmd_response_check(nullptr, 3, &remote));
    tolvek_diag_cmd_response_by_dci(first.data(), int(first.size()), nullptr);
    printf("posts %d\n", sem_value());
    tolvek_diag_cmd_response_by_dci(second.data(), int(second.size()), nullptr);
    printf("posts %d\n", sem_value());
    first.insert(first.end(), second.begin(), second.end());
    EXPECT_EQ(stored(), first);
    tolvek_diag_cmd_response_by_dci(too_long.data(), int(too_long.size()), nullptr);
    printf("-> %d\n", tolvek_diag_cmd_response_by_callback(too_long.data(), int(too_long.size()), &local));
    EXPECT_EQ(stored(), first);
    printf("-> %d\n", tolvek_diag_cmd_response_by_callback(other.data(), int(other.size()), &local));
    printf("posts %d\n", sem_value());
    EXPECT_EQ(stored(), other);

    /* The DCI callback checks a piece only once it holds the response
     * mutex: while the mutex is taken, even a refused piece waits. */
    pthread_mutex_lock(&g_diag_rsp_mutex);
    pthread_t t;
    auto refuse = [](void *p) -> void * {
        tolvek_diag_cmd_response_by_dci(static_cast<unsigned char *>(p), TOLVEK_DIAG_RSP_MAX_LEN + 1, nullptr);
        return nullptr;
    };
    pthread_create(&t, nullptr, refuse, too_long.data());
    usleep(50000);
    EXPECT_EQ(pthread_tryjoin_np(t, nullptr), EBUSY) << "the check ran outside the mutex";
    pthread_mutex_unlock(&g_diag_rsp_mutex);
    pthread_join(t, nullptr);
    EXPECT_EQ(stored(), other);
    expect_golden(captured(), __FILE__, "send_checks.golden");
}

TEST_F(DiagSendStateTest, WaitThreadOfAFinishedWaitNeverWakesTheNextOne)
{
    /* A full tick, so that the wait surely ends before the first one. */
    ASSERT_EQ(g_diag_wait_tick_us, TOLVEK_DIAG_WAIT_TICK_US);
    arm_wait(2);
    testing::internal::CaptureStdout();
    ASSERT_EQ(tolvek_diag_cmd_send_with_result_wait_create_thread(), 0);
    /* The caller got its answer and moved on before the limit: the thread
     * ends at once, without a tick. */
    pthread_mutex_lock(&g_diag_rsp_mutex);
    tolvek_diag_wait_end_locked();
    int left = tolvek_diag_wait_threads_gone_locked(1000);
    pthread_mutex_unlock(&g_diag_rsp_mutex);
    arm_wait(1000);
    usleep(50000);
    EXPECT_NE(sem_trywait(&g_diag_rsp_sem), 0) << "nothing woke the next wait";
    EXPECT_FALSE(has(captured(), "cnt_of_100ms"));
    EXPECT_EQ(left, 0);
    EXPECT_EQ(g_diag_wait.timed_out, 0);
}

}  // namespace
