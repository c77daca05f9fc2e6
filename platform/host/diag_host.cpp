/* The diag library's session and callback-mode calls over rlk-modemd.
 *
 * Responses to callback-mode commands reach the callback registered for
 * the processor that answered (diag_register_callback: the local one,
 * diag_register_remote_callback: a remote one), on the library's reader
 * thread, with the context pointer given at registration, and only while
 * the logging mode is CALLBACK_MODE.  The remote mask has one bit per
 * processor present: bit n is processor n (DIAG_MDM_MASK, bit 1, is MDM). */
#include <string.h>

#include "diag_channel.h"
#include "diag_host_internal.h"
#include "hdlc.h"

using namespace rlk_host::diag;

namespace {

constexpr int k_send_ok = 0;
constexpr int k_send_failed = -1;
constexpr int k_min_logging_mode = USB_MODE;
constexpr int k_max_logging_mode = PCIE_MODE;

/* True when `proc` is the local processor or a remote one that is present. */
bool proc_usable(int proc)
{
    if (proc == MSM) return true;
    if (proc < 0 || proc >= NUM_PROC) return false;
    std::lock_guard<std::mutex> lk(g().mu);
    return (g().remote_mask >> proc) & 1;
}

int send_raw(int proc, const unsigned char *buf, int len, bool need_callback_mode)
{
    if (!buf || len <= 0 || len > k_max_request || !proc_usable(proc)) return k_send_failed;
    if (need_callback_mode) {
        std::lock_guard<std::mutex> lk(g().mu);
        if (g().logging_mode != CALLBACK_MODE) return k_send_failed;
    }
    return link_send(USER_SPACE_RAW_DATA_TYPE, proc, 0, buf, size_t(len)) ? k_send_ok : k_send_failed;
}

}  // namespace

extern "C" {

boolean Diag_LSM_Init(byte *)
{
    return link_open() ? TRUE : FALSE;
}

boolean Diag_LSM_DeInit(void)
{
    return link_close() ? TRUE : FALSE;
}

void diag_register_callback(int (*client_cb_func_ptr)(unsigned char *ptr, int len, void *context_data),
                            void *context_data)
{
    std::lock_guard<std::mutex> lk(g().mu);
    g().callbacks[MSM] = {client_cb_func_ptr, context_data};
}

void diag_register_remote_callback(int (*client_rmt_cb_func_ptr)(unsigned char *ptr, int len, void *context_data),
                                   int proc, void *context_data)
{
    if (proc <= MSM || proc >= NUM_PROC) return;
    std::lock_guard<std::mutex> lk(g().mu);
    g().callbacks[proc] = {client_rmt_cb_func_ptr, context_data};
}

/* Fills the mask from the simulator; 1 on success, 0 (mask 0) when no
 * session is open or the simulator did not answer.  From a callback, which
 * cannot wait for the simulator, it gives the mask last learnt. */
int diag_has_remote_device(uint16 *remote_mask)
{
    if (!remote_mask) return 0;
    *remote_mask = 0;
    if (on_reader_thread()) {
        std::lock_guard<std::mutex> lk(g().mu);
        *remote_mask = g().remote_mask;
        return 1;
    }
    uint32_t status = 0;
    std::vector<uint8_t> data;
    if (!session_request(DIAG_SESSION_REMOTE_MASK, MSM, &status, &data) || status != DIAG_SESSION_OK ||
        data.size() < 2) {
        return 0;
    }
    uint16_t mask = uint16_t(data[0] | data[1] << 8);
    std::lock_guard<std::mutex> lk(g().mu);
    g().remote_mask = mask;
    *remote_mask = mask;
    return 1;
}

/* Records the mode; an unknown mode is ignored.  The log directory only
 * matters to memory-device logging, which the host does not do. */
void diag_switch_logging(int requested_mode, char *)
{
    if (requested_mode < k_min_logging_mode || requested_mode > k_max_logging_mode) return;
    std::lock_guard<std::mutex> lk(g().mu);
    g().logging_mode = requested_mode;
}

/* Sends a command to the local processor whatever the logging mode; its
 * response reaches the local callback only in callback mode. */
int diag_send_data(unsigned char *buf, int len)
{
    return send_raw(MSM, buf, len, false);
}

int diag_callback_send_data(int proc, unsigned char *buf, int len)
{
    return send_raw(proc, buf, len, true);
}

/* The same for a command that is already one HDLC frame. */
int diag_callback_send_data_hdlc(int proc, unsigned char *buf, int len)
{
    if (!buf || len <= 0 || len > int(hdlc_encoded_max(size_t(k_max_request)))) return k_send_failed;
    std::vector<uint8_t> payload;
    if (hdlc_decode_one(buf, size_t(len), &payload) != HDLC_OK || payload.empty()) return k_send_failed;
    return send_raw(proc, payload.data(), int(payload.size()), true);
}

}  // extern "C"
