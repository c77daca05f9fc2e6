#include "sar_service_v01.h"

struct qmi_elem_info sar_rf_set_sar_state_req_msg_v01_ei[] = {
    {QMI_UNSIGNED_4_BYTE, 1, sizeof(uint32_t), NO_ARRAY, SAR_RF_STATE_REQ_TLV,
     offsetof(sar_rf_set_sar_state_req_msg_v01, sar_rf_state), nullptr},
    {QMI_EOTI, 0, 0, NO_ARRAY, 0, 0, nullptr},
};

struct qmi_elem_info sar_rf_set_sar_state_resp_msg_v01_ei[] = {
    {QMI_STRUCT, 1, sizeof(qmi_response_type_v01), NO_ARRAY, QMI_RESULT_TLV_TYPE,
     offsetof(sar_rf_set_sar_state_resp_msg_v01, resp), qmi_response_type_v01_ei},
    {QMI_EOTI, 0, 0, NO_ARRAY, 0, 0, nullptr},
};

struct qmi_elem_info sar_rf_get_sar_state_req_msg_v01_ei[] = {
    {QMI_EOTI, 0, 0, NO_ARRAY, 0, 0, nullptr},
};

struct qmi_elem_info sar_rf_get_sar_state_resp_msg_v01_ei[] = {
    {QMI_STRUCT, 1, sizeof(qmi_response_type_v01), NO_ARRAY, QMI_RESULT_TLV_TYPE,
     offsetof(sar_rf_get_sar_state_resp_msg_v01, resp), qmi_response_type_v01_ei},
    {QMI_OPT_FLAG, 1, sizeof(uint8_t), NO_ARRAY, SAR_RF_STATE_RESP_TLV,
     offsetof(sar_rf_get_sar_state_resp_msg_v01, sar_rf_state_valid), nullptr},
    {QMI_UNSIGNED_4_BYTE, 1, sizeof(uint32_t), NO_ARRAY, SAR_RF_STATE_RESP_TLV,
     offsetof(sar_rf_get_sar_state_resp_msg_v01, sar_rf_state), nullptr},
    {QMI_EOTI, 0, 0, NO_ARRAY, 0, 0, nullptr},
};

namespace {

const qmi_idl_service_message_table_entry k_requests[] = {
    {QMI_SAR_RF_SET_STATE_REQ_MSG_V01, sizeof(sar_rf_set_sar_state_req_msg_v01), SAR_SET_REQ_MAX_LEN,
     sar_rf_set_sar_state_req_msg_v01_ei},
    /* No TLV travels, so the request structure may be left out (size 0). */
    {QMI_SAR_RF_GET_STATE_REQ_MSG_V01, 0, 0, sar_rf_get_sar_state_req_msg_v01_ei},
};
const qmi_idl_service_message_table_entry k_responses[] = {
    {QMI_SAR_RF_SET_STATE_RESP_MSG_V01, sizeof(sar_rf_set_sar_state_resp_msg_v01), SAR_RESULT_ONLY_MAX_LEN,
     sar_rf_set_sar_state_resp_msg_v01_ei},
    {QMI_SAR_RF_GET_STATE_RESP_MSG_V01, sizeof(sar_rf_get_sar_state_resp_msg_v01), SAR_GET_RESP_MAX_LEN,
     sar_rf_get_sar_state_resp_msg_v01_ei},
};

qmi_idl_service_object g_sar_service_object = {
    SAR_V01_IDL_TOOL_VERS,
    SAR_V01_IDL_MAJOR_VERS,
    SAR_SERVICE_ID_V01,
    SAR_GET_RESP_MAX_LEN,
    {2, 2, 0},
    {k_requests, k_responses, nullptr},
    nullptr,
    SAR_V01_IDL_MINOR_VERS,
    nullptr,
};

}  // namespace

extern "C" qmi_idl_service_object_type sar_get_service_object_internal_v01(int32_t idl_maj_version,
                                                                           int32_t idl_min_version,
                                                                           int32_t library_version)
{
    if (idl_maj_version != SAR_V01_IDL_MAJOR_VERS || idl_min_version > SAR_V01_IDL_MINOR_VERS ||
        library_version != SAR_V01_IDL_TOOL_VERS) {
        return nullptr;
    }
    return &g_sar_service_object;
}
