/* The SAR state query of the common group, over the platform's QMI SAR
 * service (RF Get State).  The client is opened for the query and kept for
 * the rest of the process. */
#include <string.h>

#include "qmi_client.h"
#include "sar_service_v01.h"
#include "tolvek_extend_cmn.h"
#include "tolvek_qmi_test_cmn.h"

namespace {

/* Time-out of the service lookup and of the query, in milliseconds. */
constexpr uint32_t k_sar_init_timeout = 4;
constexpr unsigned k_sar_send_timeout_ms = 30000;
/* Room given for the response structure. */
constexpr unsigned k_sar_rsp_room = 40;
constexpr int k_sar_failed = -1;

union sar_rsp_room {
    sar_rf_get_sar_state_resp_msg_v01 msg;
    uint8_t room[k_sar_rsp_room];
};
static_assert(sizeof(sar_rsp_room) == k_sar_rsp_room, "the response structure fits its room");

qmi_client_os_params g_sar_os_params;

int tolvek_get_sar_dsi(void)
{
    TOLVEK_FUNC_ENTRY();
    qmi_client_type handle = nullptr;
    sar_rsp_room rsp;
    memset(&rsp, 0, sizeof(rsp));
    int state = k_sar_failed;
    int err = qmi_client_init_instance(sar_get_service_object_v01(), QMI_CLIENT_INSTANCE_ANY,
                                       tolvek_qcril_qmi_client_common_empty_unsol_ind_cb, nullptr, &g_sar_os_params,
                                       k_sar_init_timeout, &handle);
    if (err != QMI_NO_ERR) {
        TOLVEK_LOGD("qmi_client_init_instance failed, qmi_client_error = %d", err);
    } else {
        err = qmi_client_send_msg_sync(handle, QMI_SAR_RF_GET_STATE_REQ_MSG_V01, nullptr, 0, &rsp, sizeof(rsp),
                                       k_sar_send_timeout_ms);
        if (err != QMI_NO_ERR) {
            TOLVEK_LOGD("qmi_client_send_msg_sync failed, qmi_client_error = %d", err);
        } else {
            state = int(rsp.msg.sar_rf_state);
        }
    }
    TOLVEK_LOGD("dsi vailid = %d , dsi value = %d", rsp.msg.sar_rf_state_valid, int(rsp.msg.sar_rf_state));
    tolvek_cmn_console("SAR DSI: %d\n", state);
    TOLVEK_FUNC_EXIT();
    return state;
}

}  // namespace

int tolvek_cmn_test_get_sar_dsi(int, char **)
{
    if (g_tolvek_console_quiet) {
        return k_sar_failed;
    }
    return tolvek_get_sar_dsi();
}
