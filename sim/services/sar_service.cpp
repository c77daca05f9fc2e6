/* The SAR service: the RF state lives in the EFS tree of the modem state
 * (written atomically by the state store), so it survives a restart of the
 * simulator as it survives a reboot of a modem that stores it in NV. */
#include "sar_service.h"

#include <string>

#include "sar_service_v01.h"

namespace modemd {
namespace {

constexpr uint16_t k_qmi_result_success = 0;
constexpr uint16_t k_qmi_result_failure = 1;
constexpr uint16_t k_qmi_err_internal = 3;
constexpr uint16_t k_qmi_err_invalid_argument = 0x30;
constexpr size_t k_state_bytes = 4;

/* The stored state; 0 when never set. */
uint32_t load_state(const state_store &store)
{
    std::vector<uint8_t> data;
    if (store.efs_read(k_sar_state_file, &data) != k_efs_ok || data.size() != k_state_bytes) return 0;
    return uint32_t(data[0]) | uint32_t(data[1]) << 8 | uint32_t(data[2]) << 16 | uint32_t(data[3]) << 24;
}

bool save_state(state_store &store, uint32_t state)
{
    std::vector<uint8_t> data;
    for (size_t i = 0; i < k_state_bytes; i++) data.push_back(uint8_t(state >> (8 * i)));
    return store.efs_write(k_sar_state_file, data) == k_efs_ok;
}

void fail(qmi_response_type_v01 *resp, uint16_t error)
{
    resp->result = k_qmi_result_failure;
    resp->error = error;
}

void rf_set_state(qmi_call &call, const void *req_v, void *resp_v)
{
    const auto *req = static_cast<const sar_rf_set_sar_state_req_msg_v01 *>(req_v);
    auto *resp = static_cast<sar_rf_set_sar_state_resp_msg_v01 *>(resp_v);
    if (req->sar_rf_state > SAR_RF_STATE_MAX_V01) {
        fail(&resp->resp, k_qmi_err_invalid_argument);
    } else if (!save_state(call.d.store(), req->sar_rf_state)) {
        fail(&resp->resp, k_qmi_err_internal);
    } else {
        resp->resp.result = k_qmi_result_success;
    }
}

void rf_get_state(qmi_call &call, const void *, void *resp_v)
{
    auto *resp = static_cast<sar_rf_get_sar_state_resp_msg_v01 *>(resp_v);
    resp->resp.result = k_qmi_result_success;
    resp->sar_rf_state_valid = 1;
    resp->sar_rf_state = load_state(call.d.store());
}

std::string sar_control(daemon &d, const std::vector<std::string> &a)
{
    if (a.size() == 2 && a[1] == "state") return "ok " + std::to_string(load_state(d.store()));
    int64_t v = 0;
    if (a.size() == 3 && a[1] == "state" && parse_number(a[2], &v)) {
        if (v < 0 || v > SAR_RF_STATE_MAX_V01) return "error state must be 0.." + std::to_string(SAR_RF_STATE_MAX_V01);
        return save_state(d.store(), uint32_t(v)) ? "ok" : "error the state could not be stored";
    }
    return "error usage: sar state [<0..20>]";
}

qmi_idl_service_object_type sar_object() { return sar_get_service_object_v01(); }

const qmi_handler_entry k_handlers[] = {
    {QMI_SAR_RF_SET_STATE_REQ_MSG_V01, rf_set_state},
    {QMI_SAR_RF_GET_STATE_REQ_MSG_V01, rf_get_state},
};

}  // namespace

const sim_service_def g_sar_service_def = {
    "sar", sar_object, 0, k_handlers, sizeof(k_handlers) / sizeof(k_handlers[0]), nullptr, sar_control,
    "  sar state [<0..20>]\n",
};

}  // namespace modemd
