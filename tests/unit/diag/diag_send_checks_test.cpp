/* The tool's diag channel below the library: mask and channel names, the
 * command, reply-buffer and response checks, the DCI append rule with its
 * semaphore posts, and the wait thread's three endings.  No simulator. */
#include <errno.h>
#include <pthread.h>
#include <semaphore.h>
#include <string.h>
#include <time.h>

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tolvek_diag_internal.h"

namespace {

using bytes = std::vector<uint8_t>;

std::string captured()
{
    fflush(stdout);
    return testing::internal::GetCapturedStdout();
}

int sem_value()
{
    int v = -1;
    sem_getvalue(&g_diag_rsp_sem, &v);
    return v;
}

/* Waits at most `ms` for one post of the response semaphore. */
bool sem_wait_ms(int ms)
{
    struct timespec ts;
    clock_gettime(CLOCK_REALTIME, &ts);
    ts.tv_nsec += long(ms % 1000) * 1000000L;
    ts.tv_sec += ms / 1000 + ts.tv_nsec / 1000000000L;
    ts.tv_nsec %= 1000000000L;
    return sem_timedwait(&g_diag_rsp_sem, &ts) == 0;
}

bytes piece(size_t n, uint8_t first)
{
    bytes b(n);
    for (size_t i = 0; i < n; i++) b[i] = uint8_t(i * 13 + 1);
    b[0] = first;
    return b;
}

/* A fresh semaphore and an empty response per test, restored after. */
class DiagSendStateTest : public testing::Test {
protected:
    void SetUp() override
    {
        tolvek_diag_rsp_buf_clear();
        sem_init(&g_diag_rsp_sem, 0, 0);
        saved_tick_ = g_diag_wait_tick_us;
        g_diag_wait_tick_us = k_fast_tick_us;
    }
    void TearDown() override
    {
        pthread_mutex_lock(&g_diag_rsp_mutex);
        g_diag_wait.timed_out = 0;
        tolvek_diag_wait_end_locked();
        EXPECT_EQ(tolvek_diag_wait_threads_gone_locked(1000), 0) << "a wait thread ends with its wait";
        pthread_mutex_unlock(&g_diag_rsp_mutex);
        g_diag_wait_tick_us = saved_tick_;
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
    uint8_t timed_out()
    {
        pthread_mutex_lock(&g_diag_rsp_mutex);
        uint8_t v = g_diag_wait.timed_out;
        pthread_mutex_unlock(&g_diag_rsp_mutex);
        return v;
    }
    bytes stored()
    {
        pthread_mutex_lock(&g_diag_rsp_mutex);
        bytes b(g_qcril_diag_rsp_buf.data, g_qcril_diag_rsp_buf.data + g_qcril_diag_rsp_buf.length);
        pthread_mutex_unlock(&g_diag_rsp_mutex);
        return b;
    }
    static constexpr uint32_t k_fast_tick_us = 2000;
    uint32_t saved_tick_ = 0;
};

TEST(DiagNames, OnlyTheLowestMaskBitIsNamedAndChannelsBeyondTwoAreUnknown)
{
    const struct {
        uint16_t mask;
        const char *name;
    } masks[] = {
        {0, ""}, {1, " APSS"}, {6, " MPSS"}, {0x22, " MPSS"}, {0x20, " WDSP"}, {0x10, " SENSORS"}, {0x40, ""},
        {0xFFC0, ""},
    };
    for (const auto &m : masks) EXPECT_STREQ(tolvek_print_diag_mask_name(m.mask), m.name) << m.mask;
    EXPECT_STREQ(tolvek_diag_channel_name(0), "MSM");
    EXPECT_STREQ(tolvek_diag_channel_name(2), "MDM_2");
    EXPECT_STREQ(tolvek_diag_channel_name(3), "Unknown");
    EXPECT_STREQ(tolvek_diag_channel_name(-1), "Unknown");
}

TEST(DiagChecks, CommandLengthsFromOneTo4096PassAndOthersAreRefusedWithTheirLength)
{
    bytes cmd(TOLVEK_DIAG_CMD_MAX_LEN + 1, 0x1C);
    const struct {
        int len;
        int result;
        const char *line;
    } cases[] = {
        {4096, 0, "diag_comand, data_len = 4096"},
        {1, 0, "data hex show, len(1), data: 1C"},
        {4097, 1, "Invalid input parameter, data_len = 4097"},
        {0, 1, "Invalid input parameter, data_len = 0"},
        {-1, 1, "Invalid input parameter, data_len = -1"},
    };
    for (const auto &c : cases) {
        testing::internal::CaptureStdout();
        EXPECT_EQ(tolvek_diag_comand_input_check(cmd.data(), c.len), c.result) << c.len;
        EXPECT_NE(captured().find(c.line), std::string::npos) << c.line;
    }
    testing::internal::CaptureStdout();
    EXPECT_EQ(tolvek_diag_comand_input_check(nullptr, 1), 1);
    EXPECT_NE(captured().find("data is null"), std::string::npos);
}

TEST(DiagChecks, ReplyBufferAndResponseChecks)
{
    unsigned char buf[4] = {0x4B, 1, 2, 3};
    int len = 0;
    testing::internal::CaptureStdout();
    EXPECT_EQ(tolvek_diag_comand_output_check(nullptr, &len), 1);
    EXPECT_EQ(tolvek_diag_comand_output_check(buf, nullptr), 1);
    EXPECT_EQ(tolvek_diag_comand_output_check(buf, &len), 1);
    len = 1;
    EXPECT_EQ(tolvek_diag_comand_output_check(buf, &len), 0);
    std::string out = captured();
    for (const char *line : {"reply_buf is null", "p_reply_len is null", "Invalid output parameter, reply_len = 0",
                             "reply_len = 1"}) {
        EXPECT_NE(out.find(line), std::string::npos) << line;
    }

    bytes big(TOLVEK_DIAG_RSP_MAX_LEN + 1, 0x4B);
    int32_t remote = 1;
    testing::internal::CaptureStdout();
    EXPECT_EQ(tolvek_diag_cmd_response_check(big.data(), TOLVEK_DIAG_RSP_MAX_LEN, &remote), 0);
    EXPECT_EQ(tolvek_diag_cmd_response_check(big.data(), TOLVEK_DIAG_RSP_MAX_LEN + 1, nullptr), 1);
    EXPECT_EQ(tolvek_diag_cmd_response_check(big.data(), 0, &remote), 1);
    EXPECT_EQ(tolvek_diag_cmd_response_check(nullptr, 3, &remote), 1);
    out = captured();
    for (const char *line : {"response from 1[MDM], len = 10240", "context_data is null",
                             "response from -1[Unknown], len = 10241", "Invalid parameter, len = 10241",
                             "Invalid parameter, len = 0", "ptr is null"}) {
        EXPECT_NE(out.find(line), std::string::npos) << line;
    }
}

TEST_F(DiagSendStateTest, DciPiecesOf4096And100AreJoinedAndOnlyTheShortOneWakesTheCaller)
{
    bytes first = piece(TOLVEK_DIAG_DCI_PIECE_LEN, 0x4B), second = piece(100, 0x77);
    testing::internal::CaptureStdout();
    tolvek_diag_cmd_response_by_dci(first.data(), int(first.size()), nullptr);
    EXPECT_EQ(sem_value(), 0) << "a 4096-byte piece means more follow";
    tolvek_diag_cmd_response_by_dci(second.data(), int(second.size()), nullptr);
    EXPECT_EQ(sem_value(), 1);
    std::string out = captured();
    EXPECT_NE(out.find("response, cmd_code = 0x4b, data_size = 4096"), std::string::npos);
    EXPECT_NE(out.find("response, cmd_code = 0x77, data_size = 100"), std::string::npos);

    bytes joined = first;
    joined.insert(joined.end(), second.begin(), second.end());
    EXPECT_EQ(stored(), joined);
    EXPECT_EQ(stored().size(), 4196u);
}

TEST_F(DiagSendStateTest, RefusedResponsesLeaveTheStoredOneAndTheSemaphoreAlone)
{
    bytes ok = piece(10, 0x1C), too_long = piece(TOLVEK_DIAG_RSP_MAX_LEN + 1, 0x1D);
    int32_t local = 0;
    testing::internal::CaptureStdout();
    EXPECT_EQ(tolvek_diag_cmd_response_by_callback(ok.data(), int(ok.size()), &local), 0);
    EXPECT_EQ(tolvek_diag_cmd_response_by_callback(too_long.data(), int(too_long.size()), &local), 1);
    tolvek_diag_cmd_response_by_dci(too_long.data(), int(too_long.size()), nullptr);
    std::string out = captured();
    EXPECT_NE(out.find("callback, cmd_code = 0x1c, data_size = 10"), std::string::npos);
    EXPECT_NE(out.find("tolvek_diag_cmd_response_check fail"), std::string::npos);
    EXPECT_EQ(stored(), ok);
    EXPECT_EQ(sem_value(), 1);

    /* Callback mode replaces what was stored. */
    bytes other = piece(4, 0x00);
    testing::internal::CaptureStdout();
    tolvek_diag_cmd_response_by_callback(other.data(), int(other.size()), &local);
    captured();
    EXPECT_EQ(stored(), other);

    /* The DCI callback checks a piece only once it holds the response
     * mutex: while the mutex is taken, even a refused piece waits. */
    pthread_mutex_lock(&g_diag_rsp_mutex);
    pthread_t t;
    unsigned char *refused = too_long.data();
    testing::internal::CaptureStdout();
    pthread_create(&t, nullptr, [](void *p) -> void * {
        tolvek_diag_cmd_response_by_dci(static_cast<unsigned char *>(p), TOLVEK_DIAG_RSP_MAX_LEN + 1, nullptr);
        return nullptr;
    }, refused);
    struct timespec soon;
    clock_gettime(CLOCK_REALTIME, &soon);
    soon.tv_nsec += 50 * 1000000L;
    soon.tv_sec += soon.tv_nsec / 1000000000L;
    soon.tv_nsec %= 1000000000L;
    EXPECT_EQ(pthread_timedjoin_np(t, nullptr, &soon), ETIMEDOUT) << "the check ran outside the mutex";
    pthread_mutex_unlock(&g_diag_rsp_mutex);
    pthread_join(t, nullptr);
    EXPECT_NE(captured().find("tolvek_diag_cmd_response_check fail"), std::string::npos);
    EXPECT_EQ(stored(), other);
}

TEST_F(DiagSendStateTest, WaitThreadEndsAWaitOnlyAtItsLimit)
{
    /* Nothing arrived: the limit times the command out. */
    arm_wait(3);
    testing::internal::CaptureStdout();
    ASSERT_EQ(tolvek_diag_cmd_send_with_result_wait_create_thread(), 0);
    ASSERT_TRUE(sem_wait_ms(2000));
    std::string out = captured();
    EXPECT_EQ(timed_out(), 1);
    EXPECT_NE(out.find("cnt_of_100ms = 3"), std::string::npos);
    EXPECT_EQ(out.find("cnt_of_100ms = 4"), std::string::npos);
    EXPECT_NE(out.find("stop waiting"), std::string::npos);

    /* Exactly 8192 bytes in two full pieces: no callback posted, the wait
     * thread ends the wait as a success. */
    pthread_mutex_lock(&g_diag_rsp_mutex);
    tolvek_diag_wait_end_locked();
    pthread_mutex_unlock(&g_diag_rsp_mutex);
    bytes full = piece(TOLVEK_DIAG_DCI_PIECE_LEN, 0x4B);
    arm_wait(3);
    testing::internal::CaptureStdout();
    tolvek_diag_cmd_response_by_dci(full.data(), int(full.size()), nullptr);
    tolvek_diag_cmd_response_by_dci(full.data(), int(full.size()), nullptr);
    EXPECT_EQ(sem_value(), 0);
    ASSERT_EQ(tolvek_diag_cmd_send_with_result_wait_create_thread(), 0);
    ASSERT_TRUE(sem_wait_ms(2000));
    out = captured();
    EXPECT_NE(out.find("stop waiting, receive success, length is times of 4096"), std::string::npos);
    EXPECT_EQ(timed_out(), 0);
    EXPECT_EQ(stored().size(), 8192u);
}

TEST_F(DiagSendStateTest, WaitThreadOfAFinishedWaitNeverWakesTheNextOne)
{
    /* A full tick, so that the wait surely ends before the first one. */
    g_diag_wait_tick_us = TOLVEK_DIAG_WAIT_TICK_US;
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
    EXPECT_FALSE(sem_wait_ms(50));
    std::string out = captured();
    EXPECT_EQ(left, 0);
    EXPECT_EQ(timed_out(), 0);
    EXPECT_EQ(out.find("cnt_of_100ms"), std::string::npos);
}

}  // namespace
