/* Requests of the vendor statistics service through the modem API. */
#include <stdio.h>
#include <string.h>

#include "modem_api_internal.h"
#include "orvex_log.h"
#include "orvex_mem.h"
#include "vs_client.h"

namespace {

constexpr int32_t k_sub_count = ORVEX_VS_SUB_MAX;

}  // namespace

int modem_api_set_orvex_feature_status(int32_t client_id, uint8_t feature_status)
{
    qmi_client_type handle = modem_api_handle_of(client_id);
    if (!handle) return MODEM_API_FAILURE;
    orvex_vs_set_feature_status_req_msg_v01 req;
    memset(&req, 0, sizeof(req));
    req.feature_status = feature_status;
    orvex_vs_set_feature_status_resp_msg_v01 resp;
    memset(&resp, 0, sizeof(resp));
    int rc = qmi_client_send_msg_sync(handle, ORVEX_VS_SET_FEATURE_STATUS_MSG_ID_V01, &req, sizeof(req), &resp,
                                      sizeof(resp), MODEM_API_FEATURE_STATUS_TIMEOUT_MS);
    return modem_api_map_qmi_error_to_modem_api(rc, &resp);
}

int modem_api_get_stats_parameter(int32_t client_id, int32_t sub, uint32_t number, uint16_t data_id,
                                  orvex_vs_get_stats_resp_msg_v01 *resp)
{
    if (sub < 0 || sub >= k_sub_count) {
        printf("modem_api_get_stats_parameter, sub(%d) is invalid\n", sub);
        return MODEM_API_INVALID_ARG;
    }
    if (!resp || number == 0 || number > ORVEX_VS_GET_STATS_LIST_MAX) return MODEM_API_INVALID_ARG;
    qmi_client_type handle = modem_api_handle_of(client_id);
    if (!handle) return MODEM_API_FAILURE;
    orvex_vs_get_stats_req_msg_v01 req;
    memset(&req, 0, sizeof(req));
    req.sub = uint8_t(sub);
    req.data_id_list_len = uint8_t(number);
    for (uint32_t i = 0; i < number; i++) req.data_id_list[i] = data_id;
    memset(resp, 0, sizeof(*resp));
    int rc = qmi_client_send_msg_sync(handle, ORVEX_VS_GET_STATS_MSG_ID_V01, &req, sizeof(req), resp,
                                      ORVEX_VS_GET_STATS_RESP_BUF_LEN, MODEM_API_GET_STATS_TIMEOUT_MS);
    return modem_api_map_qmi_error_to_modem_api(rc, resp);
}

int modem_api_send_command(int32_t client_id, uint32_t cmd, const void *data, uint32_t data_len,
                           modem_api_resp_fn resp_fn, void *user_data)
{
    if (data_len > ORVEX_VS_COMMAND_DATA_MAX || (data_len && !data) || !resp_fn) return MODEM_API_INVALID_ARG;
    qmi_client_type handle = modem_api_handle_of(client_id);
    if (!handle) return MODEM_API_FAILURE;
    orvex_vs_command_req_msg_v01 req;
    memset(&req, 0, sizeof(req));
    req.cmd = cmd;
    req.data_valid = data_len ? 1 : 0;
    req.data_len = data_len;
    if (data_len) memcpy(req.data, data, data_len);
    auto *cbs = static_cast<modem_api_cb_struct_type *>(
        orvex_malloc_adv(sizeof(modem_api_cb_struct_type), "modem_api_send_command"));
    void *resp = orvex_malloc_adv(sizeof(orvex_vs_command_resp_msg_v01), "modem_api_send_command");
    if (!cbs || !resp) {
        orvex_free_adv(cbs);
        orvex_free_adv(resp);
        return MODEM_API_FAILURE;
    }
    cbs->resp_fn = resp_fn;
    cbs->user_data = user_data;
    qmi_txn_handle txn = nullptr;
    int rc = qmi_client_send_msg_async(handle, ORVEX_VS_COMMAND_MSG_ID_V01, &req, sizeof(req), resp,
                                       sizeof(orvex_vs_command_resp_msg_v01), vs_client_command_cb, cbs, &txn);
    if (rc != QMI_NO_ERR) {
        orvex_free_adv(cbs);
        orvex_free_adv(resp);
        return modem_api_map_qmi_error_to_modem_api(rc, nullptr);
    }
    return MODEM_API_SUCCESS;
}
