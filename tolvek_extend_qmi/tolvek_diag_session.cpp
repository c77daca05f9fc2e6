/* The diag session of the process, the command-response callback over the
 * local and the remote processors, and the DCI client registration
 * sequence the DCI modes run before each command. */
#include <errno.h>
#include <signal.h>
#include <stdlib.h>
#include <string.h>

#include "diag_lsm.h"
#include "diag_lsm_dci.h"
#include "tolvek_diag_internal.h"
#include "tolvek_log.h"

int32_t g_diag_init_status = 0;
int32_t g_diag_channel = TOLVEK_DIAG_CHANNEL_MSM;
sem_t g_diag_rsp_sem;

namespace {

/* Remote-processor mask names, by bit. */
const char *const k_mask_names[] = {" APSS", " MPSS", " LPASS", " WCNSS", " SENSORS", " WDSP"};
constexpr unsigned k_mask_name_bits = sizeof(k_mask_names) / sizeof(k_mask_names[0]);
constexpr size_t k_mask_name_buf_len = 101;
char g_mask_name[k_mask_name_buf_len];

/* Processor names, by id. */
const char *const k_channel_names[] = {"MSM", "MDM", "MDM_2"};
constexpr int32_t k_channel_name_count = sizeof(k_channel_names) / sizeof(k_channel_names[0]);
constexpr size_t k_channel_name_buf_len = 16;

/* DCI: the peripherals to hear about (MPSS), and its bit in the support
 * list. */
constexpr diag_dci_peripherals k_dci_processor_list = DIAG_CON_MPSS;
constexpr diag_dci_peripherals k_dci_mpss_bit = DIAG_CON_MPSS;

/* Context values handed to the library with the callbacks: they must
 * outlive the registration, as responses may come at any time.  The
 * local processor's is 0, a remote processor's its number. */
int32_t g_data_primary = 0;
int32_t g_data_remote[NUM_PROC];

}  // namespace

extern "C" {

const char *tolvek_diag_channel_name(int32_t channel)
{
    /* Rebuilt before each print, as the lines may come from any thread. */
    static thread_local char name[k_channel_name_buf_len];
    const char *text = channel >= 0 && channel < k_channel_name_count ? k_channel_names[channel] : "Unknown";
    strncpy(name, text, sizeof(name) - 1);
    name[sizeof(name) - 1] = '\0';
    return name;
}

char *tolvek_print_diag_mask_name(uint16_t mask)
{
    memset(g_mask_name, 0, sizeof(g_mask_name));
    for (unsigned bit = 0; bit < k_mask_name_bits; ++bit) {
        if (mask & (1u << bit)) {
            /* Only the lowest set bit is named. */
            strncat(g_mask_name, k_mask_names[bit], sizeof(g_mask_name) - 1);
            break;
        }
    }
    return g_mask_name;
}

void tolvek_diag_init_with_result(void)
{
    TOLVEK_FUNC_ENTRY();
    if (g_diag_init_status != 0) {
        TOLVEK_LOGD("diag init done, g_diag_init_status = %d", g_diag_init_status);
        g_diag_init_status++; /* an overflow traps */
    } else if (Diag_LSM_Init(NULL)) {
        sem_init(&g_diag_rsp_sem, 0, 0);
        g_diag_init_status = 1;
    } else {
        TOLVEK_LOGD("LSM init failed");
    }
    TOLVEK_FUNC_EXIT();
}

void tolvek_diag_deinit_with_result(void)
{
    TOLVEK_FUNC_ENTRY();
    Diag_LSM_DeInit();
    g_diag_init_status = 0;
    sem_destroy(&g_diag_rsp_sem);
    TOLVEK_FUNC_EXIT();
}

void tolvek_diag_register_callback(int (*callback)(unsigned char *ptr, int len, void *context_data))
{
    g_data_primary = 0;
    diag_register_callback(callback, &g_data_primary);
    uint16 remote_mask = 0;
    diag_has_remote_device(&remote_mask);
    TOLVEK_LOGD("register call back, g_diag_channel = [%d]%s, data_primary = %d, remote_mask = [%d]%s",
                g_diag_channel, tolvek_diag_channel_name(g_diag_channel), g_data_primary, int(remote_mask),
                tolvek_print_diag_mask_name(remote_mask));
    unsigned remaining = remote_mask;
    for (int bit = 0; remaining != 0; ++bit) {
        if (remaining & 1u) {
            int data_remote = bit + 1;
            TOLVEK_LOGD("register remote call back, data_remote = %d", data_remote);
            int32_t *context = data_remote < NUM_PROC ? &g_data_remote[data_remote] : NULL;
            if (context != NULL) {
                *context = data_remote;
            }
            diag_register_remote_callback(callback, data_remote, context);
        }
        remaining >>= 1;
    }
}

}  // extern "C"

/* Steps 2 to 5 of the registration: client, data signal, support list,
 * streams.  TOLVEK_DIAG_DCI_OK when the client is ready. */
static int dci_register_client(const tolvek_diag_dci_callbacks *cbs, tolvek_diag_dci_session *s)
{
    const int ch = g_diag_channel;
    diag_dci_peripherals processor_list = k_dci_processor_list;
    int channel_signal = TOLVEK_DIAG_DCI_CHANNEL_SIGNAL;
    int client_id = 0;
    int err = diag_register_dci_client(&client_id, &processor_list, ch, &channel_signal);
    if (err != TOLVEK_DIAG_DCI_OK) {
        TOLVEK_LOGD_AS(s->func, "Could not register with DCI, err: %d, errno: %d ch:%d", err, errno, ch);
        return err;
    }
    s->client_id = client_id;
    TOLVEK_LOGD_AS(s->func, "Successfully registered with DCI for ch:%d, client ID = %d", ch, client_id);

    err = diag_register_dci_signal_data(client_id, SIGRTMIN + TOLVEK_DIAG_DCI_DATA_SIGNAL_OFFSET);
    if (err != TOLVEK_DIAG_DCI_OK) {
        TOLVEK_LOGD_AS(s->func, "Could not register signal for DCI Data for ch:%d, err: %d, errno: %d", ch, err, errno);
        return err;
    }

    TOLVEK_LOGD_AS(s->func, "DCI Status on Processors for ch%d:", ch);
    err = diag_get_dci_support_list_proc(ch, &processor_list);
    if (err != TOLVEK_DIAG_DCI_OK) {
        TOLVEK_LOGD_AS(s->func, "Could not get support list for ch %d, err: %d, errno: %d", ch, err, errno);
    } else if (processor_list & k_dci_mpss_bit) {
        TOLVEK_LOGD_AS(s->func, "MPSS on ch:%d: UP", ch);
    } else {
        TOLVEK_LOGD_AS(s->func, "MPSS on ch:%d: DOWN", ch);
    }

    TOLVEK_LOGD_AS(s->func, "Opening Data Stream, registering listeners for ch:%d", ch);
    err = diag_register_dci_stream_proc(client_id, cbs->log_stream, cbs->event_stream);
    if (err != TOLVEK_DIAG_DCI_OK) {
        TOLVEK_LOGD_AS(s->func, "Unable to register DCI stream for ch:%d, err: %d, errno: %d", ch, err, errno);
    }
    return err;
}

int tolvek_diag_dci_register_and_send(unsigned char *data, int data_len, const tolvek_diag_dci_callbacks *cbs,
                                      tolvek_diag_dci_session *s)
{
    s->client_id = 0;
    s->rsp = static_cast<unsigned char *>(malloc(TOLVEK_DIAG_DCI_RSP_BUF_LEN));
    if (s->rsp == NULL) {
        TOLVEK_LOGE_AS(s->func, "Unable to allocate memory for DCI rsp pkt, errno: %d", errno);
        return DIAG_DCI_NO_MEM;
    }
    int err = dci_register_client(cbs, s);
    if (err != TOLVEK_DIAG_DCI_OK) {
        return err;
    }
    const int ch = g_diag_channel;
    TOLVEK_LOGD_AS(s->func, "Sending Asynchronous Command for ch:%d", ch);
    err = diag_send_dci_async_req(s->client_id, data, data_len, s->rsp, TOLVEK_DIAG_DCI_RSP_BUF_LEN, cbs->response,
                                  NULL);
    if (err != TOLVEK_DIAG_DCI_OK) {
        /* The peripheral number printed is the library's code: the request
         * never reached a peripheral. */
        TOLVEK_LOGD_AS(s->func, "Error sending SEND_REQUEST_ASYNC to peripheral %d for ch:%d", err, ch);
    }
    return err;
}

void tolvek_diag_dci_release(tolvek_diag_dci_session *s, int counted_session)
{
    if (counted_session) {
        tolvek_diag_deinit_with_result();
    } else {
        Diag_LSM_DeInit();
    }
    if (s->client_id != 0) {
        int err = diag_release_dci_client(&s->client_id);
        if (err != TOLVEK_DIAG_DCI_OK) {
            TOLVEK_LOGD_AS(s->func, "Releasing DCI connection, err: %d, errno: %d", err, errno);
        }
        s->client_id = 0;
    }
    free(s->rsp);
    s->rsp = NULL;
}

namespace {

struct detached_start {
    void *(*proc)(void *);
    void *arg;
};

/* Names the new thread before it runs its procedure: naming it from the
 * creator could touch a detached thread that has already ended. */
void *named_thread_trampoline(void *p)
{
    detached_start start = *static_cast<detached_start *>(p);
    free(p);
    pthread_setname_np(pthread_self(), TOLVEK_DIAG_THREAD_NAME);
    return start.proc(start.arg);
}

}  // namespace

int tolvek_diag_start_detached(void *(*proc)(void *), void *arg)
{
    detached_start *start = static_cast<detached_start *>(malloc(sizeof(detached_start)));
    if (start == NULL) {
        return ENOMEM;
    }
    start->proc = proc;
    start->arg = arg;
    pthread_attr_t attr;
    pthread_attr_init(&attr);
    pthread_attr_setdetachstate(&attr, PTHREAD_CREATE_DETACHED);
    pthread_t thread;
    int conf = pthread_create(&thread, &attr, named_thread_trampoline, start);
    pthread_attr_destroy(&attr);
    if (conf != 0) {
        free(start);
    }
    return conf;
}
