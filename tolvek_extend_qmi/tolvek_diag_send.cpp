/* One raw diag command in each of the four modes: with result (the caller
 * blocks on the response semaphore until a response callback or the wait
 * thread posts it) and without result (a detached sender thread sends,
 * waits a fixed time and prints what arrives), in callback and DCI modes. */
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include <chrono>
#include <condition_variable>
#include <mutex>

#include "diag_lsm.h"
#include "tolvek_diag_internal.h"
#include "tolvek_log.h"

namespace {

/* Held by a with-result mode from the input check to the end. */
pthread_mutex_t g_diag_cmd_mutex = PTHREAD_MUTEX_INITIALIZER;
/* Held by a without-result thread for its whole run. */
pthread_mutex_t g_diag_sender_mutex = PTHREAD_MUTEX_INITIALIZER;

/* How long a without-result thread waits for what arrives. */
constexpr useconds_t k_callback_sender_wait_us = 200000;
constexpr unsigned k_dci_sender_wait_s = 1;

/* Sender threads still running, so that a process can let them finish. */
std::mutex g_senders_mu;
std::condition_variable g_senders_cv;
int g_senders_running = 0;

/* Parameter block of a sender thread: the length, then the command. */
struct sender_param {
    uint32_t data_len;
    unsigned char data[1];
};
constexpr size_t k_sender_param_head = offsetof(sender_param, data);
/* Length + 5 bytes: the 32-bit length, the command and one spare byte. */
constexpr size_t k_sender_param_extra = 5;
static_assert(k_sender_param_head == 4, "the length heads the parameter block");

/* A paired line on behalf of the mode function `func` that the helper
 * serves. */
#define TOLVEK_LOGD_AS(func, fmt, ...) \
    tolvek_log_line(TOLVEK_LOG_PRIO_DEBUG, TOLVEK_LOG_SRC_TAG, __LINE__, (func), fmt, ##__VA_ARGS__)

struct mutex_hold {
    explicit mutex_hold(pthread_mutex_t *m) : m_(m) { pthread_mutex_lock(m_); }
    ~mutex_hold() { pthread_mutex_unlock(m_); }
    mutex_hold(const mutex_hold &) = delete;
    mutex_hold &operator=(const mutex_hold &) = delete;
    pthread_mutex_t *m_;
};

bool params_ok(const char *func, unsigned char *data, int data_len, unsigned char *reply_buf, int *p_reply_len)
{
    if (tolvek_diag_comand_input_check(data, data_len) != 0) {
        TOLVEK_LOGD_AS(func, "tolvek_diag_comand_param_check fail");
        return false;
    }
    if (tolvek_diag_comand_output_check(reply_buf, p_reply_len) != 0) {
        TOLVEK_LOGD_AS(func, "tolvek_diag_comand_output_check fail");
        return false;
    }
    return true;
}

/* Drops the stored response of an earlier command, before the command
 * goes, so that every command gets its own reply and an early answer is
 * kept. */
void reset_response(void)
{
    pthread_mutex_lock(&g_diag_rsp_mutex);
    free(g_qcril_diag_rsp_buf.data);
    g_qcril_diag_rsp_buf.data = NULL;
    g_qcril_diag_rsp_buf.length = 0;
    g_diag_wait.timed_out = 0;
    pthread_mutex_unlock(&g_diag_rsp_mutex);
}

/* Arms the wait state for `time_count` steps of 100 ms. */
void begin_wait(int32_t time_count)
{
    pthread_mutex_lock(&g_diag_rsp_mutex);
    g_diag_wait.waiting = 1;
    g_diag_wait.time_count = time_count;
    pthread_mutex_unlock(&g_diag_rsp_mutex);
}

/* Disarms it without a wait (the request never went). */
void cancel_wait(void)
{
    pthread_mutex_lock(&g_diag_rsp_mutex);
    tolvek_diag_wait_end_locked();
    pthread_mutex_unlock(&g_diag_rsp_mutex);
}

/* Starts the wait thread and blocks on the semaphore.  Without a wait
 * thread nothing would bound the wait, so the command then counts as
 * timed out at once. */
void wait_for_response(void)
{
    /* Without a session there is no semaphore to wait on. */
    if (g_diag_init_status != 0 && tolvek_diag_cmd_send_with_result_wait_create_thread() == 0) {
        while (sem_wait(&g_diag_rsp_sem) != 0) {
            /* interrupted by a signal: wait on */
        }
    } else {
        pthread_mutex_lock(&g_diag_rsp_mutex);
        g_diag_wait.timed_out = 1;
        pthread_mutex_unlock(&g_diag_rsp_mutex);
    }
}

/* Ends the wait and copies the reply out; 0 on a reply, 1 on a time-out. */
int finish_wait(const char *func, unsigned char *reply_buf, int *p_reply_len)
{
    pthread_mutex_lock(&g_diag_rsp_mutex);
    tolvek_diag_wait_end_locked();
    /* The wait thread stops at once; none outlives its command. */
    tolvek_diag_wait_threads_gone_locked(TOLVEK_DIAG_WAIT_THREAD_END_MS);
    TOLVEK_LOGD_AS(func, "req end, data_size = %d, g_qcril_diag_rsp_buf.length = %d, reply_len = %d",
                g_qcril_diag_rsp_buf.length, g_qcril_diag_rsp_buf.length, *p_reply_len);
    int copy = g_qcril_diag_rsp_buf.length < *p_reply_len ? g_qcril_diag_rsp_buf.length : *p_reply_len;
    if (copy >= 1) {
        memcpy(reply_buf, g_qcril_diag_rsp_buf.data, size_t(copy));
        *p_reply_len = copy;
    }
    int result = 0;
    if (g_diag_wait.timed_out) {
        g_diag_wait.timed_out = 0;
        result = 1;
    }
    pthread_mutex_unlock(&g_diag_rsp_mutex);
    return result;
}

void sender_started(void)
{
    std::lock_guard<std::mutex> lk(g_senders_mu);
    g_senders_running++;
}

void sender_finished(void)
{
    std::lock_guard<std::mutex> lk(g_senders_mu);
    g_senders_running--;
    g_senders_cv.notify_all();
}

/* The common head of both sender threads: the sender mutex is held by the
 * caller; false for a missing parameter block. */
bool sender_open(const char *func, sender_param *param)
{
    if (param == NULL) {
        TOLVEK_LOGD_AS(func, "param is null");
        return false;
    }
    TOLVEK_LOGD_AS(func, "data_len = %d", int(param->data_len));
    if (!Diag_LSM_Init(NULL)) {
        TOLVEK_LOGD_AS(func, "LSM init failed");
    }
    return true;
}

}  // namespace

extern "C" {

int tolvek_diag_cmd_send_with_result_by_callback_mode(unsigned char *data, int data_len, unsigned char *reply_buf,
                                                      int *p_reply_len, int time_out)
{
    mutex_hold cmd(&g_diag_cmd_mutex);
    if (!params_ok(__func__, data, data_len, reply_buf, p_reply_len)) {
        return 1;
    }
    reset_response();
    tolvek_diag_init_with_result();
    tolvek_diag_register_callback(tolvek_diag_cmd_response_by_callback);
    diag_switch_logging(CALLBACK_MODE, NULL);
    int ret_send = diag_callback_send_data(g_diag_channel, data, data_len);
    TOLVEK_LOGD("ret_send = %d, will wait callback", ret_send);
    int result = 1;
    if (ret_send != 0) {
        TOLVEK_LOGD("Fail to send diag cmd");
    } else {
        if (time_out < 1 || time_out > TOLVEK_DIAG_MAX_TIMEOUT_MS) {
            TOLVEK_LOGD("Time out is invalid, set default");
            time_out = TOLVEK_DIAG_DEFAULT_TIMEOUT_MS;
        }
        int32_t time_count = (time_out & 0xFFFF) / TOLVEK_DIAG_WAIT_TICK_MS;
        begin_wait(time_count);
        TOLVEK_LOGD("Command time = %d * 100ms", time_count);
        wait_for_response();
        result = finish_wait(__func__, reply_buf, p_reply_len);
    }
    diag_switch_logging(USB_MODE, NULL);
    tolvek_diag_deinit_with_result();
    return result;
}

int tolvek_diag_cmd_send_with_result_by_dci_mode(unsigned char *data, int data_len, unsigned char *reply_buf,
                                                 int *p_reply_len, int time_out)
{
    mutex_hold cmd(&g_diag_cmd_mutex);
    if (!params_ok(__func__, data, data_len, reply_buf, p_reply_len)) {
        return 1;
    }
    reset_response();
    /* The session owns the response semaphore the wait needs. */
    tolvek_diag_init_with_result();
    static const tolvek_diag_dci_callbacks k_callbacks = {
        tolvek_diag_cmd_response_by_dci_log_stream,
        tolvek_diag_cmd_response_by_dci_event_stream,
        tolvek_diag_cmd_response_by_dci,
    };
    /* Armed before the request goes, so that an early answer is kept. */
    begin_wait(time_out / TOLVEK_DIAG_WAIT_TICK_MS);
    tolvek_diag_dci_session session = {0, NULL, __func__};
    int result = 1;
    if (tolvek_diag_dci_register_and_send(data, data_len, &k_callbacks, &session) == TOLVEK_DIAG_DCI_OK) {
        TOLVEK_LOGD("Dci Command time = %d", time_out / TOLVEK_DIAG_WAIT_TICK_MS);
        wait_for_response();
        result = finish_wait(__func__, reply_buf, p_reply_len);
    } else {
        cancel_wait();
    }
    tolvek_diag_dci_release(&session, 1);
    return result;
}

void *tolvek_diag_cmd_send_without_result_by_callback_mode_thread_proc(void *param_v)
{
    sender_param *param = static_cast<sender_param *>(param_v);
    {
        mutex_hold sender(&g_diag_sender_mutex);
        if (sender_open(__func__, param)) {
            tolvek_diag_register_callback(tolvek_diag_cmd_response_by_callback_no_handle);
            diag_switch_logging(CALLBACK_MODE, NULL);
            int ret_send = diag_callback_send_data(g_diag_channel, param->data, int(param->data_len));
            TOLVEK_LOGD("ret_send = %d, will wait callback", ret_send);
            usleep(k_callback_sender_wait_us);
            diag_switch_logging(USB_MODE, NULL);
            Diag_LSM_DeInit();
        }
        free(param);
    }
    sender_finished();
    return NULL;
}

void *tolvek_diag_cmd_send_without_result_by_dci_mode_thread_proc(void *param_v)
{
    sender_param *param = static_cast<sender_param *>(param_v);
    {
        mutex_hold sender(&g_diag_sender_mutex);
        if (sender_open(__func__, param)) {
            static const tolvek_diag_dci_callbacks k_callbacks = {
                tolvek_diag_cmd_response_by_dci_log_stream_no_handle,
                tolvek_diag_cmd_response_by_dci_event_stream_no_handle,
                tolvek_diag_cmd_response_by_dci_no_handle,
            };
            tolvek_diag_dci_session session = {0, NULL, __func__};
            if (tolvek_diag_dci_register_and_send(param->data, int(param->data_len), &k_callbacks, &session) ==
                TOLVEK_DIAG_DCI_OK) {
                sleep(k_dci_sender_wait_s);
            }
            tolvek_diag_dci_release(&session, 0);
        }
        free(param);
    }
    sender_finished();
    return NULL;
}

int tolvek_diag_cmd_send_without_result_start_thread(unsigned char *data, int data_len, int diag_work_mode)
{
    if (tolvek_diag_comand_input_check(data, data_len) != 0) {
        TOLVEK_LOGD("tolvek_diag_comand_input_check fail");
        return 1;
    }
    sender_param *param = static_cast<sender_param *>(malloc(size_t(data_len) + k_sender_param_extra));
    if (param == NULL) {
        TOLVEK_LOGE("Failed to allocate memory for ptr_out");
        return 1;
    }
    param->data_len = uint32_t(data_len);
    memcpy(param->data, data, size_t(data_len));
    void *(*proc)(void *) = diag_work_mode == TOLVEK_DIAG_MODE_CALLBACK
                                ? tolvek_diag_cmd_send_without_result_by_callback_mode_thread_proc
                                : tolvek_diag_cmd_send_without_result_by_dci_mode_thread_proc;
    sender_started();
    int conf = tolvek_diag_start_detached(proc, param);
    TOLVEK_LOGD("tolvek daig is created, conf = %d, diag_work_mode = %d", conf, diag_work_mode);
    if (conf != 0) {
        free(param);
        sender_finished();
        return 1;
    }
    return 0;
}

int tolvek_diag_cmd_send_without_result_wait_done(int timeout_ms)
{
    std::unique_lock<std::mutex> lk(g_senders_mu);
    bool done = g_senders_cv.wait_for(lk, std::chrono::milliseconds(timeout_ms < 0 ? 0 : timeout_ms),
                                      [] { return g_senders_running == 0; });
    return done ? 0 : 1;
}

}  // extern "C"
