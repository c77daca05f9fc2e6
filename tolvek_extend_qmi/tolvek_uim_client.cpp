#include "tolvek_uim_client.h"

#include <stdlib.h>
#include <string.h>

#include <mutex>

#include "qcril_memory_management.h"
#include "tolvek_log.h"
#include "user_identity_module_v01.h"

std::atomic<qmi_client_type> uim_qmi_client{nullptr};
std::atomic<uint8_t> SSR_Detected{0};
std::atomic<uint32_t> failed_cnt{0};
unsigned int g_tolvek_uim_sync_timeout_ms = TOLVEK_UIM_SYNC_TIMEOUT_MS;

namespace {

/* The client library's wait object of the connection. */
qmi_client_os_params g_uim_os_params;

constexpr uint8_t k_ssr_detected = 1;
constexpr uint8_t k_card_mode_telecom = UIM_CARD_MODE_TELECOM_CARD_V01;

/* A paired debug line written on behalf of `func`. */
#define UIM_LOGD_AS TOLVEK_LOGD_AS

/* At exit the handle is released without a trace line, so that no
 * callback of the client library runs while the process tears down the
 * objects it would log through. */
void release_at_exit()
{
    qmi_client_type handle = uim_qmi_client.exchange(nullptr);
    if (handle != nullptr) qmi_client_release(handle);
}

std::once_flag g_exit_hook;

void *handle_ptr() { return static_cast<void *>(uim_qmi_client.load()); }

int send_sync(unsigned int msg_id, void *req, unsigned int req_len, void *resp, unsigned int resp_len)
{
    return qmi_client_send_msg_sync(uim_qmi_client.load(), msg_id, req, req_len, resp, resp_len,
                                    g_tolvek_uim_sync_timeout_ms);
}

/* Counts a failed request and reports it. */
void count_failure(const char *func, int rc)
{
    uint32_t n = failed_cnt.load() + 1;
    failed_cnt.store(n);
    UIM_LOGD_AS(func, "send msg sync client error = %d, failed_cnt = %d", rc, int(n));
}

/* Recovery after a request: at once when the service is gone, else after
 * too many failures. */
void recover_if_needed(const char *func, int rc)
{
    if (rc == QMI_SERVICE_ERR || failed_cnt.load() >= TOLVEK_UIM_MAX_FAILED) {
        UIM_LOGD_AS(func, "QMI error, try recovery");
        uim_qmi_client_recovery();
    }
}

/* The preamble of the channel and APDU requests: recovery after a
 * subsystem restart, then a connection.  False when no client. */
bool ensure_client(const char *func)
{
    if (SSR_Detected.load() == k_ssr_detected) {
        UIM_LOGD_AS(func, "SSR_Detected, try recovery");
        uim_qmi_client_recovery();
    }
    if (uim_qmi_client.load() == nullptr) {
        if (!init_uim_qmi_client()) {
            UIM_LOGD_AS(func, "init_uim_qmi_client failed");
            return false;
        }
        UIM_LOGD_AS(func, "%s try init_uim_qmi_client %p", func, handle_ptr());
    }
    UIM_LOGD_AS(func, "%s uim_qmi_client %p", func, handle_ptr());
    return true;
}

/* One request of the channel/APDU family with buffers of the qcril
 * allocator: connect, send, count a failure, recover when due.  Returns
 * the send result, -1 without client or memory, or the modem's QMI error
 * number when it answered with a failure. */
int exchange(const char *func, unsigned int msg_id, const void *req_src, unsigned int req_len, void *resp_dst,
             unsigned int resp_len)
{
    if (!ensure_client(func)) return TOLVEK_UIM_ERR_NO_CLIENT;
    void *req = qcril_malloc_adv(req_len, func, __LINE__);
    void *resp = qcril_malloc_adv(resp_len, func, __LINE__);
    if (req == nullptr || resp == nullptr) {
        UIM_LOGD_AS(func, "%s malloc failed", func);
        qcril_free_adv(req, func, __LINE__);
        qcril_free_adv(resp, func, __LINE__);
        return TOLVEK_UIM_ERR_NO_CLIENT;
    }
    memcpy(req, req_src, req_len);
    int rc = send_sync(msg_id, req, req_len, resp, resp_len);
    if (rc != QMI_NO_ERR) {
        count_failure(func, rc);
    } else {
        memcpy(resp_dst, resp, resp_len);
    }
    qcril_free_adv(req, func, __LINE__);
    qcril_free_adv(resp, func, __LINE__);
    UIM_LOGD_AS(func, "msg 0x%02x res = %d, failed_cnt = %d", msg_id, rc, int(failed_cnt.load()));
    recover_if_needed(func, rc);
    if (rc != QMI_NO_ERR) return rc;
    const uim_response_type_v01 *r = static_cast<const uim_response_type_v01 *>(resp_dst);
    if (r->result != 0) {
        UIM_LOGD_AS(func, "modem result = %d, error = %d", int(r->result), int(r->error));
        return r->error != 0 ? int(r->error) : 1;
    }
    return 0;
}

}  // namespace

bool init_uim_qmi_client()
{
    TOLVEK_FUNC_ENTRY();
    qmi_client_type handle = nullptr;
    int rc = qmi_client_init_instance(uim_get_service_object_v01(), QMI_CLIENT_INSTANCE_ANY,
                                      tolvek_uim_qmi_client_unsol_ind_cb, nullptr, &g_uim_os_params,
                                      TOLVEK_UIM_CONNECT_TIMEOUT_MS, &handle);
    if (rc != QMI_NO_ERR) {
        TOLVEK_LOGD("qmi_client_init UIM instance failed, qmi_client_error = %d", rc);
        uim_qmi_client.store(nullptr);
        TOLVEK_FUNC_EXIT();
        return false;
    }
    uim_qmi_client.store(handle);
    std::call_once(g_exit_hook, [] { atexit(release_at_exit); });
    TOLVEK_LOGD("init_uim_qmi_client %p", static_cast<void *>(handle));
    if (qmi_client_register_error_cb(handle, error_cb, nullptr) != QMI_NO_ERR) {
        TOLVEK_LOGD("qmi_client_register_error_cb failed");
    }
    SSR_Detected.store(0);
    failed_cnt.store(0);
    TOLVEK_FUNC_EXIT();
    return true;
}

void uim_qmi_client_recovery()
{
    TOLVEK_FUNC_ENTRY();
    qmi_client_type handle = uim_qmi_client.exchange(nullptr);
    TOLVEK_LOGD("uim_qmi_client_recovery qmi_client_release %p", static_cast<void *>(handle));
    if (handle != nullptr && qmi_client_release(handle) != QMI_NO_ERR) {
        TOLVEK_LOGD("qmi_client_release failed");
    }
    TOLVEK_FUNC_EXIT();
}

void error_cb(qmi_client_type, qmi_client_error_type error, void *)
{
    TOLVEK_LOGD("QMI error callback %d", error);
    if (error == QMI_SERVICE_ERR) {
        TOLVEK_LOGD("SSR Detected, set SSR_Detected 1");
        SSR_Detected.store(k_ssr_detected);
    }
}

void tolvek_uim_qmi_client_unsol_ind_cb(qmi_client_type, unsigned int msg_id, void *ind_buf, unsigned int ind_len,
                                        void *)
{
    TOLVEK_LOGD("msg_id %d", int(msg_id));
    if (msg_id != TOLVEK_UIM_HANDLED_IND_ID) return;
    qmi_client_type handle = uim_qmi_client.load();
    if (ind_buf == nullptr || handle == nullptr) {
        TOLVEK_LOGD("qmi_client_uim or ind_buf is NULL");
        return;
    }
    int32_t *out = static_cast<int32_t *>(qcril_malloc_adv(sizeof(uim_purge_guti_ind_msg_v01), __func__, __LINE__));
    if (out == nullptr) return;
    int rc = qmi_client_message_decode(handle, QMI_IDL_INDICATION, msg_id, ind_buf, ind_len, out,
                                       sizeof(uim_purge_guti_ind_msg_v01));
    TOLVEK_LOGD("qmi_client_message_decode result = %d", rc);
    if (rc != QMI_NO_ERR) {
        TOLVEK_LOGD("purge guti failed. resp.result = %d ,resp.result = %d", int(out[0]), int(out[1]));
    }
    qcril_free_adv(out, __func__, __LINE__);
}

/* Builds and sends one power request; returns the send result.  `*sent`
 * says whether the request went out at all: a buffer that could not be
 * allocated is not a send result, and the library's own -1 is. */
static int send_power_request(const char *func, const tolvek_uim_power_params *params, bool *sent)
{
    *sent = false;
    int rc;
    if (params->power_up == 0) {
        auto *req = static_cast<uim_power_down_req_msg_v01 *>(
            qcril_malloc_adv(sizeof(uim_power_down_req_msg_v01), __func__, __LINE__));
        auto *resp = static_cast<uim_power_down_resp_msg_v01 *>(
            qcril_malloc_adv(sizeof(uim_power_down_resp_msg_v01), __func__, __LINE__));
        if (req == nullptr || resp == nullptr) {
            UIM_LOGD_AS(func, "uim_power_down malloc failed");
            qcril_free_adv(req, __func__, __LINE__);
            qcril_free_adv(resp, __func__, __LINE__);
            return TOLVEK_UIM_ERR_NO_CLIENT;
        }
        req->slot = uim_slot_enum_v01(params->slot);
        UIM_LOGD_AS(func, "tolvek_uim_request_uicc_power_ex power down sim");
        *sent = true;
        rc = send_sync(QMI_UIM_POWER_DOWN_REQ_V01, req, sizeof(*req), resp, sizeof(*resp));
        qcril_free_adv(req, __func__, __LINE__);
        qcril_free_adv(resp, __func__, __LINE__);
        return rc;
    }
    auto *req = static_cast<uim_power_up_req_msg_v01 *>(
        qcril_malloc_adv(sizeof(uim_power_up_req_msg_v01), __func__, __LINE__));
    auto *resp = static_cast<uim_power_up_resp_msg_v01 *>(
        qcril_malloc_adv(sizeof(uim_power_up_resp_msg_v01), __func__, __LINE__));
    if (req == nullptr || resp == nullptr) {
        UIM_LOGD_AS(func, "uim_power_up malloc failed");
        qcril_free_adv(req, __func__, __LINE__);
        qcril_free_adv(resp, __func__, __LINE__);
        return TOLVEK_UIM_ERR_NO_CLIENT;
    }
    req->slot = uim_slot_enum_v01(params->slot);
    req->ignore_hotswap_switch_valid = 1;
    req->ignore_hotswap_switch = params->ignore_hotswap != 0 ? 1 : 0;
    req->mode_valid = 1;
    req->mode = uim_card_mode_enum_v01(k_card_mode_telecom);
    UIM_LOGD_AS(func, "tolvek_uim_request_uicc_power_ex power up sim, ignore hotswap = %d ",
                int(req->ignore_hotswap_switch));
    *sent = true;
    rc = send_sync(QMI_UIM_POWER_UP_REQ_V01, req, sizeof(*req), resp, sizeof(*resp));
    qcril_free_adv(req, __func__, __LINE__);
    qcril_free_adv(resp, __func__, __LINE__);
    return rc;
}

int tolvek_uim_request_uicc_power_ex(const tolvek_uim_power_params *params)
{
    TOLVEK_FUNC_ENTRY();
    if (SSR_Detected.load() == k_ssr_detected) {
        TOLVEK_LOGD("SSR_Detected, try recovery");
        uim_qmi_client_recovery();
    }
    if (uim_qmi_client.load() == nullptr) {
        if (!init_uim_qmi_client()) {
            TOLVEK_LOGD("init_uim_qmi_client failed");
            TOLVEK_FUNC_EXIT();
            return TOLVEK_UIM_ERR_NO_CLIENT;
        }
        TOLVEK_LOGD("tolvek_uim_request_uicc_power_ex try init_uim_qmi_client %p", handle_ptr());
    }
    TOLVEK_LOGD("tolvek_uim_request_uicc_power_ex uim_qmi_client %p", handle_ptr());

    bool sent = false;
    int rc = send_power_request(__func__, params, &sent);
    if (!sent) {
        TOLVEK_FUNC_EXIT();
        return rc;
    }
    if (rc != QMI_NO_ERR) count_failure(__func__, rc);
    TOLVEK_LOGD("uicc_power_ex res = %d, failed_cnt = %d", rc, int(failed_cnt.load()));
    recover_if_needed(__func__, rc);
    TOLVEK_FUNC_EXIT();
    return rc;
}

int tolvek_uim_request_eid(const uint8_t *slot, uint8_t *output)
{
    TOLVEK_FUNC_ENTRY();
    if (SSR_Detected.load() == k_ssr_detected) {
        TOLVEK_LOGD("SSR_Detected, try recovery");
        uim_qmi_client_recovery();
    }
    if (uim_qmi_client.load() == nullptr) {
        if (!init_uim_qmi_client()) {
            TOLVEK_LOGD("init_uim_qmi_client failed");
            TOLVEK_FUNC_EXIT();
            return TOLVEK_UIM_ERR_NO_CLIENT;
        }
        TOLVEK_LOGD("tolvek_uim_request_eid try init_uim_qmi_client %p", handle_ptr());
    }
    TOLVEK_LOGD("tolvek_uim_request_eid uim_qmi_client %p", handle_ptr());

    auto *req = static_cast<uim_get_eid_req_msg_v01 *>(
        qcril_malloc_adv(sizeof(uim_get_eid_req_msg_v01), __func__, __LINE__));
    auto *resp = static_cast<uim_get_eid_resp_msg_v01 *>(
        qcril_malloc_adv(sizeof(uim_get_eid_resp_msg_v01), __func__, __LINE__));
    if (req == nullptr || resp == nullptr) {
        TOLVEK_LOGD("tolvek_uim_request_eid malloc failed");
        qcril_free_adv(req, __func__, __LINE__);
        qcril_free_adv(resp, __func__, __LINE__);
        TOLVEK_FUNC_EXIT();
        return TOLVEK_UIM_ERR_NO_CLIENT;
    }
    req->slot = uim_slot_enum_v01(*slot);
    int rc = send_sync(QMI_UIM_GET_EID_REQ_V01, req, sizeof(*req), resp, sizeof(*resp));
    if (rc != QMI_NO_ERR) {
        TOLVEK_LOGD("send msg sync client error = %d", rc);
        failed_cnt.store(failed_cnt.load() + 1);
    } else if (resp->resp.result == 0 && resp->eid_value_valid) {
        memcpy(output, resp->eid_value, TOLVEK_UIM_EID_LEN);
    }
    qcril_free_adv(req, __func__, __LINE__);
    qcril_free_adv(resp, __func__, __LINE__);
    if (rc == QMI_SERVICE_ERR) {
        uim_qmi_client_recovery();
    } else if (failed_cnt.load() >= TOLVEK_UIM_MAX_FAILED) {
        TOLVEK_LOGD("QMI error, try recovery");
        uim_qmi_client_recovery();
    }
    TOLVEK_FUNC_EXIT();
    return rc;
}

int tolvek_uim_open_logical_channel(uint8_t slot, const uint8_t *aid, uint32_t aid_len, uint8_t *channel,
                                    uint16_t *sw)
{
    TOLVEK_FUNC_ENTRY();
    *sw = 0;
    if (aid == nullptr || aid_len > QMI_UIM_AID_MAX_V01) {
        TOLVEK_LOGD("invalid aid, len %d", int(aid_len));
        TOLVEK_FUNC_EXIT();
        return TOLVEK_UIM_ERR_NO_CLIENT;
    }
    uim_open_logical_channel_req_msg_v01 req;
    uim_open_logical_channel_resp_msg_v01 resp;
    memset(&req, 0, sizeof(req));
    memset(&resp, 0, sizeof(resp));
    req.slot = uim_slot_enum_v01(slot);
    req.aid_valid = 1;
    req.aid_len = aid_len;
    memcpy(req.aid, aid, aid_len);
    int rc = exchange(__func__, QMI_UIM_OPEN_LOGICAL_CHANNEL_REQ_V01, &req, sizeof(req), &resp, sizeof(resp));
    if (resp.card_result_valid) *sw = uint16_t(resp.card_result.sw1 << 8 | resp.card_result.sw2);
    if (rc == 0 && !resp.channel_id_valid) {
        TOLVEK_LOGD("no channel id in the answer");
        rc = TOLVEK_UIM_ERR_NO_CLIENT;
    }
    if (rc == 0) {
        *channel = resp.channel_id;
        TOLVEK_LOGD("channel %d, sw 0x%04X", int(*channel), unsigned(*sw));
    }
    TOLVEK_FUNC_EXIT();
    return rc;
}

int tolvek_uim_send_apdu(uint8_t slot, uint8_t channel, const uint8_t *apdu, uint32_t apdu_len, uint8_t *rsp,
                         uint32_t *rsp_len)
{
    TOLVEK_FUNC_ENTRY();
    if (apdu == nullptr || apdu_len == 0 || apdu_len > QMI_UIM_APDU_DATA_MAX_V01 || rsp == nullptr ||
        rsp_len == nullptr) {
        TOLVEK_LOGD("invalid apdu, len %d", int(apdu_len));
        TOLVEK_FUNC_EXIT();
        return TOLVEK_UIM_ERR_NO_CLIENT;
    }
    /* The structures are large: heap buffers of the qcril allocator. */
    auto *req = static_cast<uim_send_apdu_req_msg_v01 *>(qcril_malloc_adv(sizeof(uim_send_apdu_req_msg_v01),
                                                                          __func__, __LINE__));
    auto *resp = static_cast<uim_send_apdu_resp_msg_v01 *>(qcril_malloc_adv(sizeof(uim_send_apdu_resp_msg_v01),
                                                                            __func__, __LINE__));
    int rc = TOLVEK_UIM_ERR_NO_CLIENT;
    if (req != nullptr && resp != nullptr) {
        req->slot = uim_slot_enum_v01(slot);
        req->apdu_len = apdu_len;
        memcpy(req->apdu, apdu, apdu_len);
        req->channel_id_valid = 1;
        req->channel_id = channel;
        rc = exchange(__func__, QMI_UIM_SEND_APDU_REQ_V01, req, sizeof(*req), resp, sizeof(*resp));
    }
    if (rc == 0 && (!resp->apdu_valid || resp->apdu_len > *rsp_len || resp->apdu_len < 2)) {
        TOLVEK_LOGD("apdu response of %d bytes does not fit %d", int(resp->apdu_len), int(*rsp_len));
        rc = TOLVEK_UIM_ERR_NO_CLIENT;
    }
    if (rc == 0) {
        memcpy(rsp, resp->apdu, resp->apdu_len);
        *rsp_len = resp->apdu_len;
    }
    qcril_free_adv(req, __func__, __LINE__);
    qcril_free_adv(resp, __func__, __LINE__);
    TOLVEK_FUNC_EXIT();
    return rc;
}

int tolvek_uim_close_logical_channel(uint8_t slot, uint8_t channel)
{
    TOLVEK_FUNC_ENTRY();
    uim_logical_channel_req_msg_v01 req;
    uim_logical_channel_resp_msg_v01 resp;
    memset(&req, 0, sizeof(req));
    memset(&resp, 0, sizeof(resp));
    req.slot = uim_slot_enum_v01(slot);
    req.channel_id_valid = 1;
    req.channel_id = channel;
    int rc = exchange(__func__, QMI_UIM_LOGICAL_CHANNEL_REQ_V01, &req, sizeof(req), &resp, sizeof(resp));
    TOLVEK_FUNC_EXIT();
    return rc;
}
