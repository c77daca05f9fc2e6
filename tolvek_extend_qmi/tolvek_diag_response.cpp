/* Checks of commands, reply buffers and responses; the response callbacks
 * that collect a reply (callback mode: one piece replaces the stored
 * response; DCI: pieces are appended, a 4096-byte piece meaning more
 * follow); the printing-only callbacks of the without-result modes; and the
 * wait thread that ends a with-result wait at its limit. */
#include <errno.h>
#include <stdlib.h>
#include <string.h>
#include <time.h>

#include "tolvek_convert.h"
#include "tolvek_diag_internal.h"
#include "tolvek_log.h"

tolvek_diag_rsp_buf_type g_qcril_diag_rsp_buf = {NULL, 0};
pthread_mutex_t g_diag_rsp_mutex = PTHREAD_MUTEX_INITIALIZER;
tolvek_diag_wait_state g_diag_wait = {0, TOLVEK_DIAG_DEFAULT_WAIT_STEPS, 0, 0};
uint32_t g_diag_wait_tick_us = TOLVEK_DIAG_WAIT_TICK_US;

namespace {

/* Processor id printed for a response without context. */
constexpr int32_t k_unknown_processor = -1;

/* The old bytes of the last DCI append, kept until the next one. */
uint8_t *g_diag_rsp_scratch = NULL;

/* Signalled when a wait ends (a ticking wait thread then stops at once)
 * and when a wait thread ends; used with the response mutex.  Waits on
 * the monotonic clock. */
pthread_cond_t g_diag_wait_cond;
pthread_once_t g_diag_wait_cond_once = PTHREAD_ONCE_INIT;
/* Wait threads not yet ended (under the response mutex). */
int32_t g_diag_wait_threads = 0;

void init_wait_cond(void)
{
    pthread_condattr_t attr;
    pthread_condattr_init(&attr);
    pthread_condattr_setclock(&attr, CLOCK_MONOTONIC);
    pthread_cond_init(&g_diag_wait_cond, &attr);
    pthread_condattr_destroy(&attr);
}

pthread_cond_t *wait_cond(void)
{
    pthread_once(&g_diag_wait_cond_once, init_wait_cond);
    return &g_diag_wait_cond;
}

struct timespec deadline_after_us(uint64_t us)
{
    struct timespec ts;
    clock_gettime(CLOCK_MONOTONIC, &ts);
    uint64_t ns = uint64_t(ts.tv_nsec) + us * 1000u;
    ts.tv_sec += time_t(ns / 1000000000u);
    ts.tv_nsec = long(ns % 1000000000u);
    return ts;
}

/* Sleeps one tick on the condition (the response mutex held); false when
 * the wait `wait_id` ended meanwhile. */
bool tick_locked(uint64_t wait_id)
{
    struct timespec deadline = deadline_after_us(g_diag_wait_tick_us);
    while (g_diag_wait.wait_id == wait_id) {
        if (pthread_cond_timedwait(wait_cond(), &g_diag_rsp_mutex, &deadline) == ETIMEDOUT) {
            return g_diag_wait.wait_id == wait_id;
        }
    }
    return false;
}

struct rsp_lock {
    rsp_lock() { pthread_mutex_lock(&g_diag_rsp_mutex); }
    ~rsp_lock() { pthread_mutex_unlock(&g_diag_rsp_mutex); }
    rsp_lock(const rsp_lock &) = delete;
    rsp_lock &operator=(const rsp_lock &) = delete;
};

/* Stores a first piece (or, in callback mode, a whole response). */
int store_new(unsigned char *ptr, int len, const char *fail_text)
{
    uint8_t *copy = static_cast<uint8_t *>(malloc(size_t(len) + 1));
    if (copy == NULL) {
        TOLVEK_LOGE("%s", fail_text);
        return 1;
    }
    memcpy(copy, ptr, size_t(len));
    free(g_qcril_diag_rsp_buf.data);
    g_qcril_diag_rsp_buf.data = copy;
    g_qcril_diag_rsp_buf.length = len;
    return 0;
}

/* Appends a further DCI piece behind the stored bytes. */
int store_append(unsigned char *ptr, int len)
{
    size_t old_len = size_t(g_qcril_diag_rsp_buf.length);
    uint8_t *scratch = static_cast<uint8_t *>(malloc(old_len + 1));
    if (scratch == NULL) {
        TOLVEK_LOGE("Failed to allocate memory for ptr_out_2");
        return 1;
    }
    memcpy(scratch, g_qcril_diag_rsp_buf.data, old_len);
    free(g_diag_rsp_scratch);
    g_diag_rsp_scratch = scratch;
    uint8_t *joined = static_cast<uint8_t *>(malloc(old_len + size_t(len) + 1));
    if (joined == NULL) {
        TOLVEK_LOGE("Failed to allocate memory for ptr_out_3");
        return 1;
    }
    memcpy(joined, scratch, old_len);
    memcpy(joined + old_len, ptr, size_t(len));
    free(g_qcril_diag_rsp_buf.data);
    g_qcril_diag_rsp_buf.data = joined;
    g_qcril_diag_rsp_buf.length += len; /* at most 10240 + 16384 * pieces: an overflow traps */
    return 0;
}

}  // namespace

extern "C" {

int tolvek_diag_comand_input_check(unsigned char *data, int data_len)
{
    TOLVEK_LOGD("diag_comand, data_len = %d", data_len);
    if (data == NULL) {
        TOLVEK_LOGD("data is null");
        return 1;
    }
    if (unsigned(data_len) - 1u < unsigned(TOLVEK_DIAG_CMD_MAX_LEN)) {
        tolvek_print_data_with_hex(data, unsigned(data_len));
        return 0;
    }
    TOLVEK_LOGD("Invalid input parameter, data_len = %d", data_len);
    return 1;
}

int tolvek_diag_comand_output_check(unsigned char *reply_buf, int *p_reply_len)
{
    if (reply_buf == NULL) {
        TOLVEK_LOGD("reply_buf is null");
        return 1;
    }
    if (p_reply_len == NULL) {
        TOLVEK_LOGD("p_reply_len is null");
        return 1;
    }
    TOLVEK_LOGD("reply_len = %d", *p_reply_len);
    if (*p_reply_len > 0) {
        return 0;
    }
    TOLVEK_LOGD("Invalid output parameter, reply_len = %d", *p_reply_len);
    return 1;
}

int tolvek_diag_cmd_response_check(unsigned char *ptr, int len, void *context)
{
    int32_t processor = k_unknown_processor;
    if (context == NULL) {
        TOLVEK_LOGD("context_data is null");
    } else {
        memcpy(&processor, context, sizeof(processor));
    }
    TOLVEK_LOGD("================ response from %d[%s], len = %d ========================", processor,
                tolvek_diag_channel_name(processor), len);
    if (ptr == NULL) {
        TOLVEK_LOGD("ptr is null");
        return 1;
    }
    if (len >= 1 && len <= TOLVEK_DIAG_RSP_MAX_LEN) {
        tolvek_print_data_with_hex(ptr, unsigned(len));
        return 0;
    }
    TOLVEK_LOGD("Invalid parameter, len = %d", len);
    return 1;
}

int tolvek_diag_cmd_response_by_callback(unsigned char *ptr, int len, void *context_data)
{
    if (tolvek_diag_cmd_response_check(ptr, len, context_data) != 0) {
        TOLVEK_LOGD("tolvek_diag_cmd_response_check fail");
        return 1;
    }
    rsp_lock lock;
    if (store_new(ptr, len, "Failed to allocate memory for ptr_out") != 0) {
        return 1;
    }
    TOLVEK_LOGD("callback, cmd_code = 0x%02x, data_size = %d", ptr[0], len);
    sem_post(&g_diag_rsp_sem);
    return 0;
}

void tolvek_diag_cmd_response_by_dci(unsigned char *ptr, int len, void *context_data)
{
    /* The whole callback, check included, runs under the response mutex:
     * pieces of one reply arrive on the library's thread and must be
     * checked and joined in order against the wait thread's reading. */
    rsp_lock lock;
    if (tolvek_diag_cmd_response_check(ptr, len, context_data) != 0) {
        TOLVEK_LOGD("tolvek_diag_cmd_response_check fail");
        return;
    }
    int failed = g_qcril_diag_rsp_buf.data == NULL ? store_new(ptr, len, "Failed to allocate memory for ptr_out_1")
                                                   : store_append(ptr, len);
    if (failed) {
        return;
    }
    TOLVEK_LOGD("response, cmd_code = 0x%02x, data_size = %d", ptr[0], len);
    if (len != TOLVEK_DIAG_DCI_PIECE_LEN) {
        sem_post(&g_diag_rsp_sem);
    }
}

void tolvek_diag_cmd_response_by_dci_log_stream(unsigned char *ptr, int len)
{
    TOLVEK_FUNC_ENTRY();
    tolvek_print_data_with_hex(ptr, unsigned(len));
    TOLVEK_FUNC_EXIT();
}

void tolvek_diag_cmd_response_by_dci_event_stream(unsigned char *ptr, int len)
{
    TOLVEK_FUNC_ENTRY();
    tolvek_print_data_with_hex(ptr, unsigned(len));
    TOLVEK_FUNC_EXIT();
}

int tolvek_diag_cmd_response_by_callback_no_handle(unsigned char *, int len, void *)
{
    TOLVEK_LOGD("len = %d", len);
    return 0;
}

void tolvek_diag_cmd_response_by_dci_no_handle(unsigned char *, int len, void *)
{
    TOLVEK_LOGD("len = %d", len);
}

void tolvek_diag_cmd_response_by_dci_log_stream_no_handle(unsigned char *, int len)
{
    TOLVEK_LOGD("len = %d", len);
}

void tolvek_diag_cmd_response_by_dci_event_stream_no_handle(unsigned char *, int len)
{
    TOLVEK_LOGD("len = %d", len);
}

void *tolvek_diag_cmd_send_with_result_wait_thread_proc(void *arg)
{
    const uint64_t wait_id = uint64_t(uintptr_t(arg));
    int32_t cnt_of_100ms = 0;
    pthread_mutex_lock(&g_diag_rsp_mutex);
    bool current = true;
    for (;;) {
        current = tick_locked(wait_id);
        if (!current) {
            /* The caller has its answer and has moved on. */
            break;
        }
        cnt_of_100ms++;
        pthread_mutex_unlock(&g_diag_rsp_mutex);
        TOLVEK_LOGD("tolvek_diag_cmd_send_with_result_wait_thread_proc, cnt_of_100ms = %d", cnt_of_100ms);
        pthread_mutex_lock(&g_diag_rsp_mutex);
        current = g_diag_wait.wait_id == wait_id;
        if (!current || g_diag_wait.waiting != 1 || cnt_of_100ms >= g_diag_wait.time_count) {
            break;
        }
    }
    if (current && g_diag_wait.waiting == 1) {
        int32_t length = g_qcril_diag_rsp_buf.length;
        if (length != 0 && length % TOLVEK_DIAG_DCI_PIECE_LEN == 0) {
            /* The DCI callback does not post for a final 4096-byte piece. */
            TOLVEK_LOGD("stop waiting, receive success, length is times of 4096");
            sem_post(&g_diag_rsp_sem);
        } else {
            TOLVEK_LOGD("stop waiting");
            sem_post(&g_diag_rsp_sem);
            g_diag_wait.timed_out = 1;
        }
    }
    g_diag_wait_threads--;
    pthread_cond_broadcast(wait_cond());
    pthread_mutex_unlock(&g_diag_rsp_mutex);
    return NULL;
}

int tolvek_diag_cmd_send_with_result_wait_create_thread(void)
{
    uint64_t wait_id;
    {
        rsp_lock lock;
        wait_id = g_diag_wait.wait_id;
        g_diag_wait_threads++;
    }
    int conf = tolvek_diag_start_detached(tolvek_diag_cmd_send_with_result_wait_thread_proc,
                                          reinterpret_cast<void *>(uintptr_t(wait_id)));
    if (conf != 0) {
        rsp_lock lock;
        g_diag_wait_threads--;
    }
    TOLVEK_LOGD("tolvek daig is created, conf = %d", conf);
    return conf;
}

}  // extern "C"

void tolvek_diag_wait_end_locked(void)
{
    g_diag_wait.waiting = 0;
    g_diag_wait.time_count = TOLVEK_DIAG_DEFAULT_WAIT_STEPS;
    g_diag_wait.wait_id++;
    pthread_cond_broadcast(wait_cond());
}

int tolvek_diag_wait_threads_gone_locked(int timeout_ms)
{
    struct timespec deadline = deadline_after_us(uint64_t(timeout_ms < 0 ? 0 : timeout_ms) * 1000u);
    while (g_diag_wait_threads > 0) {
        if (pthread_cond_timedwait(wait_cond(), &g_diag_rsp_mutex, &deadline) == ETIMEDOUT) {
            break;
        }
    }
    return g_diag_wait_threads > 0 ? 1 : 0;
}

void tolvek_diag_rsp_buf_clear(void)
{
    rsp_lock lock;
    free(g_qcril_diag_rsp_buf.data);
    g_qcril_diag_rsp_buf.data = NULL;
    g_qcril_diag_rsp_buf.length = 0;
}
