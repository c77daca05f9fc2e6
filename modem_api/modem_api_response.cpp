/* Responses of the modem API layer: error translation, delivery of
 * asynchronous responses and the copy of a command's payload. */
#include <string.h>

#include "modem_api.h"
#include "orvex_log.h"
#include "orvex_mem.h"

namespace {

constexpr int k_prio_error = ANDROID_LOG_ERROR;

/* QMI error codes the translation names. */
enum : uint32_t {
    k_err_none = 0,
    k_err_aborted = 4,
    k_err_missing_arg = 17,
    k_err_arg_too_long = 19,
    k_err_op_network_unsupported = 24,
    k_err_no_effect = 26,
    k_err_invalid_service_type = 42,
    k_err_invalid_arg = 48,
    k_err_invalid_index = 49,
    k_err_device_not_ready = 52,
    k_err_op_unsupported = 77,
    k_err_not_supported = 94,
};

constexpr uint32_t k_result_success = 0;
constexpr uint32_t k_result_failure = 1;

/* Layout every command response starts with. */
struct command_resp_head {
    uint32_t result;
    uint32_t error;
    uint32_t data_len;
};

int map_response_error(uint32_t error)
{
    switch (error) {
    case k_err_none:
    case k_err_no_effect:
        return MODEM_API_SUCCESS;
    case k_err_aborted:
        return MODEM_API_ABORTED;
    case k_err_missing_arg:
    case k_err_arg_too_long:
    case k_err_invalid_arg:
    case k_err_invalid_index:
        return MODEM_API_INVALID_ARG;
    case k_err_op_network_unsupported:
    case k_err_invalid_service_type:
    case k_err_op_unsupported:
    case k_err_not_supported:
        return MODEM_API_NOT_SUPPORTED;
    case k_err_device_not_ready:
        return MODEM_API_DEVICE_NOT_READY;
    default:
        return MODEM_API_FAILURE;
    }
}

}  // namespace

int modem_api_map_qmi_error_to_modem_api(int transp_err, const void *resp)
{
    if (transp_err == QMI_PORT_NOT_OPEN_ERR || transp_err == QMI_INTERNAL_ERR) return MODEM_API_TRANSPORT_ERROR;
    if (transp_err == QMI_TIMEOUT_ERR) return MODEM_API_TIMEOUT;
    if (transp_err != QMI_NO_ERR && transp_err != QMI_SERVICE_ERR) return MODEM_API_FAILURE;
    if (!resp) return MODEM_API_FAILURE;
    uint32_t words[2];
    memcpy(words, resp, sizeof(words));
    if (words[0] == k_result_success) return MODEM_API_SUCCESS;
    if (words[0] != k_result_failure) return MODEM_API_FAILURE;
    return map_response_error(words[1]);
}

void modem_api_common_command_cb_handler(void *resp, unsigned int resp_len, void *cb_data)
{
    auto *cbs = static_cast<modem_api_cb_struct_type *>(cb_data);
    if (!resp || resp_len < sizeof(command_resp_head) || !cbs || !cbs->resp_fn) {
        ORVEX_LOG_LABEL(k_prio_error, __func__, "Unexpected NULL pointer!");
        return;
    }
    command_resp_head head;
    memcpy(&head, resp, sizeof(head));
    /* Never past the response the library decoded. */
    uint32_t room = uint32_t(resp_len - sizeof(head));
    uint32_t len = head.data_len < room ? head.data_len : room;
    void *copy = len ? orvex_malloc_adv(len, "modem_api_common_command_cb_handler") : nullptr;
    if (copy) memcpy(copy, static_cast<uint8_t *>(resp) + sizeof(head), len);
    cbs->resp_fn(MODEM_API_SUCCESS, copy, copy ? len : 0, cbs->user_data);
}

void modem_api_process_response(unsigned int msg_id, void *resp, unsigned int resp_len, void *cb_data,
                                int transp_err)
{
    auto *cbs = static_cast<modem_api_cb_struct_type *>(cb_data);
    if (cbs && cbs->resp_fn) {
        if (!resp || resp_len == 0) {
            cbs->resp_fn(MODEM_API_NO_RESPONSE, nullptr, 0, cbs->user_data);
        } else {
            int result = modem_api_map_qmi_error_to_modem_api(transp_err, resp);
            if (result != MODEM_API_SUCCESS) {
                cbs->resp_fn(result, nullptr, 0, cbs->user_data);
            } else {
                if (msg_id == ORVEX_VS_COMMAND_MSG_ID_V01) modem_api_common_command_cb_handler(resp, resp_len, cb_data);
                cbs->resp_fn(MODEM_API_RESPONSE_DONE, nullptr, 0, cbs->user_data);
            }
        }
    }
    orvex_free_adv(resp);
    orvex_free_adv(cb_data);
}
