/* Element tables and service object of the PDC service (0x24). */
#include "persistent_device_configuration_v01.h"

namespace {

/* TLV ids shared by most PDC messages. */
constexpr uint8_t k_tlv_mandatory = 0x01;
constexpr uint8_t k_tlv_token = 0x10;
constexpr uint8_t k_tlv_opt1 = 0x11;
constexpr uint8_t k_tlv_opt2 = 0x12;
constexpr uint8_t k_tlv_opt3 = 0x13;

/* Largest TLV areas: an indication of 25 ids, a load request with a full
 * frame. */
constexpr uint16_t k_max_list_ind_len = 7 + 7 + 4 + PDC_CONFIG_LIST_SIZE_MAX_V01 * (4 + 1 + PDC_CONFIG_ID_SIZE_MAX_V01) + 4;
constexpr uint16_t k_max_load_req_len = 3 + 4 + 1 + PDC_CONFIG_ID_SIZE_MAX_V01 + 4 + 2 + PDC_CONFIG_FRAME_SIZE_MAX_V01 + 7;
constexpr uint16_t k_max_small_len = 3 + 4 + 1 + PDC_CONFIG_ID_SIZE_MAX_V01 + 7 * 4;
constexpr uint16_t k_max_selected_ind_len = 5 + 7 + 2 * (3 + 1 + PDC_CONFIG_ID_SIZE_MAX_V01);
constexpr uint16_t k_max_info_ind_len = 5 + 7 + 7 + 3 + 1 + PDC_CONFIG_DESC_SIZE_MAX_V01 + 7;
constexpr uint16_t k_max_resp_len = 7 + 4;

}  // namespace

#define PDC_ROW(kind, size, tlv, type, field) {kind, 1, size, NO_ARRAY, tlv, offsetof(type, field), nullptr}
#define PDC_OPT(tlv, type, field) PDC_ROW(QMI_OPT_FLAG, sizeof(uint8_t), tlv, type, field##_valid)
#define PDC_U8(tlv, type, field) PDC_ROW(QMI_UNSIGNED_1_BYTE, sizeof(uint8_t), tlv, type, field)
#define PDC_U32(tlv, type, field) PDC_ROW(QMI_UNSIGNED_4_BYTE, sizeof(uint32_t), tlv, type, field)
#define PDC_ENUM32(tlv, type, field) PDC_ROW(QMI_SIGNED_4_BYTE_ENUM, sizeof(uint32_t), tlv, type, field)
/* The indication error code travels as 16 bits. */
#define PDC_ERROR_ROW(type) PDC_ROW(QMI_SIGNED_2_BYTE_ENUM, sizeof(uint16_t), k_tlv_mandatory, type, error)
#define PDC_TOKEN_ROWS(type) PDC_OPT(k_tlv_token, type, ind_token), PDC_U32(k_tlv_token, type, ind_token)
/* A byte array with a u8 count before it. */
#define PDC_BYTES(tlv, type, field, max)                                                   \
    PDC_ROW(QMI_DATA_LEN, sizeof(uint8_t), tlv, type, field##_len),                        \
        {QMI_UNSIGNED_1_BYTE, max, sizeof(uint8_t), VAR_LEN_ARRAY, tlv, offsetof(type, field), nullptr}
#define PDC_STRUCT(tlv, type, field, inner, ei) \
    {QMI_STRUCT, 1, sizeof(inner), NO_ARRAY, tlv, offsetof(type, field), ei}
#define PDC_END {QMI_EOTI, 0, 0, NO_ARRAY, 0, 0, nullptr}

/* Type and id, also the element of the configuration list. */
static struct qmi_elem_info pdc_config_info_type_v01_ei[] = {
    PDC_ENUM32(0, pdc_config_info_req_type_v01, config_type),
    PDC_BYTES(0, pdc_config_info_req_type_v01, config_id, PDC_CONFIG_ID_SIZE_MAX_V01),
    PDC_END,
};

static struct qmi_elem_info pdc_load_config_info_type_v01_ei[] = {
    PDC_ENUM32(0, pdc_load_config_info_type_v01, config_type),
    PDC_BYTES(0, pdc_load_config_info_type_v01, config_id, PDC_CONFIG_ID_SIZE_MAX_V01),
    PDC_U32(0, pdc_load_config_info_type_v01, total_config_size),
    /* The frame length is 16 bits on the wire. */
    PDC_ROW(QMI_DATA_LEN, sizeof(uint16_t), 0, pdc_load_config_info_type_v01, config_frame_len),
    {QMI_UNSIGNED_1_BYTE, PDC_CONFIG_FRAME_SIZE_MAX_V01, sizeof(uint8_t), VAR_LEN_ARRAY, 0,
     offsetof(pdc_load_config_info_type_v01, config_frame), nullptr},
    PDC_END,
};

struct qmi_elem_info pdc_generic_resp_msg_v01_ei[] = {
    PDC_STRUCT(QMI_RESULT_TLV_TYPE, pdc_generic_resp_msg_v01, resp, struct qmi_response_type_v01,
               qmi_response_type_v01_ei),
    PDC_END,
};

struct qmi_elem_info pdc_load_config_resp_msg_v01_ei[] = {
    PDC_STRUCT(QMI_RESULT_TLV_TYPE, pdc_load_config_resp_msg_v01, resp, struct qmi_response_type_v01,
               qmi_response_type_v01_ei),
    PDC_OPT(k_tlv_token, pdc_load_config_resp_msg_v01, frame_data_reset),
    PDC_U8(k_tlv_token, pdc_load_config_resp_msg_v01, frame_data_reset),
    PDC_END,
};

struct qmi_elem_info pdc_generic_ind_msg_v01_ei[] = {
    PDC_ERROR_ROW(pdc_generic_ind_msg_v01),
    PDC_TOKEN_ROWS(pdc_generic_ind_msg_v01),
    PDC_END,
};

struct qmi_elem_info pdc_indication_register_req_msg_v01_ei[] = {
    PDC_OPT(k_tlv_token, pdc_indication_register_req_msg_v01, reg_config_change),
    PDC_U8(k_tlv_token, pdc_indication_register_req_msg_v01, reg_config_change),
    PDC_END,
};

struct qmi_elem_info pdc_config_change_ind_msg_v01_ei[] = {
    PDC_STRUCT(k_tlv_mandatory, pdc_config_change_ind_msg_v01, new_config_info, pdc_config_info_resp_type_v01,
               pdc_config_info_type_v01_ei),
    PDC_END,
};

struct qmi_elem_info pdc_get_selected_config_req_msg_v01_ei[] = {
    PDC_ENUM32(k_tlv_mandatory, pdc_get_selected_config_req_msg_v01, config_type),
    PDC_TOKEN_ROWS(pdc_get_selected_config_req_msg_v01),
    PDC_OPT(k_tlv_opt1, pdc_get_selected_config_req_msg_v01, subscription_id),
    PDC_U32(k_tlv_opt1, pdc_get_selected_config_req_msg_v01, subscription_id),
    PDC_END,
};

struct qmi_elem_info pdc_get_selected_config_ind_msg_v01_ei[] = {
    PDC_ERROR_ROW(pdc_get_selected_config_ind_msg_v01),
    PDC_TOKEN_ROWS(pdc_get_selected_config_ind_msg_v01),
    PDC_OPT(k_tlv_opt1, pdc_get_selected_config_ind_msg_v01, active_config_id),
    PDC_BYTES(k_tlv_opt1, pdc_get_selected_config_ind_msg_v01, active_config_id, PDC_CONFIG_ID_SIZE_MAX_V01),
    PDC_OPT(k_tlv_opt2, pdc_get_selected_config_ind_msg_v01, pending_config_id),
    PDC_BYTES(k_tlv_opt2, pdc_get_selected_config_ind_msg_v01, pending_config_id, PDC_CONFIG_ID_SIZE_MAX_V01),
    PDC_END,
};

struct qmi_elem_info pdc_set_selected_config_req_msg_v01_ei[] = {
    PDC_STRUCT(k_tlv_mandatory, pdc_set_selected_config_req_msg_v01, new_config_info, pdc_config_info_req_type_v01,
               pdc_config_info_type_v01_ei),
    PDC_TOKEN_ROWS(pdc_set_selected_config_req_msg_v01),
    PDC_OPT(k_tlv_opt1, pdc_set_selected_config_req_msg_v01, subscription_id),
    PDC_U32(k_tlv_opt1, pdc_set_selected_config_req_msg_v01, subscription_id),
    PDC_END,
};

struct qmi_elem_info pdc_list_configs_req_msg_v01_ei[] = {
    PDC_TOKEN_ROWS(pdc_list_configs_req_msg_v01),
    PDC_OPT(k_tlv_opt1, pdc_list_configs_req_msg_v01, config_type),
    PDC_ENUM32(k_tlv_opt1, pdc_list_configs_req_msg_v01, config_type),
    PDC_END,
};

struct qmi_elem_info pdc_list_configs_ind_msg_v01_ei[] = {
    PDC_ERROR_ROW(pdc_list_configs_ind_msg_v01),
    PDC_TOKEN_ROWS(pdc_list_configs_ind_msg_v01),
    PDC_OPT(k_tlv_opt1, pdc_list_configs_ind_msg_v01, config_list),
    PDC_ROW(QMI_DATA_LEN, sizeof(uint8_t), k_tlv_opt1, pdc_list_configs_ind_msg_v01, config_list_len),
    {QMI_STRUCT, PDC_CONFIG_LIST_SIZE_MAX_V01, sizeof(pdc_config_info_resp_type_v01), VAR_LEN_ARRAY, k_tlv_opt1,
     offsetof(pdc_list_configs_ind_msg_v01, config_list), pdc_config_info_type_v01_ei},
    PDC_OPT(k_tlv_opt2, pdc_list_configs_ind_msg_v01, more_available),
    PDC_U8(k_tlv_opt2, pdc_list_configs_ind_msg_v01, more_available),
    PDC_END,
};

struct qmi_elem_info pdc_delete_config_req_msg_v01_ei[] = {
    PDC_ENUM32(k_tlv_mandatory, pdc_delete_config_req_msg_v01, config_type),
    PDC_TOKEN_ROWS(pdc_delete_config_req_msg_v01),
    PDC_OPT(k_tlv_opt1, pdc_delete_config_req_msg_v01, config_id),
    PDC_BYTES(k_tlv_opt1, pdc_delete_config_req_msg_v01, config_id, PDC_CONFIG_ID_SIZE_MAX_V01),
    PDC_END,
};

struct qmi_elem_info pdc_load_config_req_msg_v01_ei[] = {
    PDC_STRUCT(k_tlv_mandatory, pdc_load_config_req_msg_v01, load_config_info, pdc_load_config_info_type_v01,
               pdc_load_config_info_type_v01_ei),
    PDC_TOKEN_ROWS(pdc_load_config_req_msg_v01),
    PDC_END,
};

struct qmi_elem_info pdc_load_config_ind_msg_v01_ei[] = {
    PDC_ERROR_ROW(pdc_load_config_ind_msg_v01),
    PDC_TOKEN_ROWS(pdc_load_config_ind_msg_v01),
    PDC_OPT(k_tlv_opt1, pdc_load_config_ind_msg_v01, received_config_size),
    PDC_U32(k_tlv_opt1, pdc_load_config_ind_msg_v01, received_config_size),
    PDC_OPT(k_tlv_opt2, pdc_load_config_ind_msg_v01, remaining_config_size),
    PDC_U32(k_tlv_opt2, pdc_load_config_ind_msg_v01, remaining_config_size),
    PDC_OPT(k_tlv_opt3, pdc_load_config_ind_msg_v01, frame_data_reset),
    PDC_U8(k_tlv_opt3, pdc_load_config_ind_msg_v01, frame_data_reset),
    PDC_END,
};

struct qmi_elem_info pdc_activate_config_req_msg_v01_ei[] = {
    PDC_ENUM32(k_tlv_mandatory, pdc_activate_config_req_msg_v01, config_type),
    PDC_TOKEN_ROWS(pdc_activate_config_req_msg_v01),
    PDC_OPT(k_tlv_opt1, pdc_activate_config_req_msg_v01, activation_type),
    PDC_U32(k_tlv_opt1, pdc_activate_config_req_msg_v01, activation_type),
    PDC_OPT(k_tlv_opt2, pdc_activate_config_req_msg_v01, subscription_id),
    PDC_U32(k_tlv_opt2, pdc_activate_config_req_msg_v01, subscription_id),
    PDC_END,
};

struct qmi_elem_info pdc_get_config_info_req_msg_v01_ei[] = {
    PDC_STRUCT(k_tlv_mandatory, pdc_get_config_info_req_msg_v01, new_config_info, pdc_config_info_req_type_v01,
               pdc_config_info_type_v01_ei),
    PDC_TOKEN_ROWS(pdc_get_config_info_req_msg_v01),
    PDC_END,
};

struct qmi_elem_info pdc_get_config_info_ind_msg_v01_ei[] = {
    PDC_ERROR_ROW(pdc_get_config_info_ind_msg_v01),
    PDC_TOKEN_ROWS(pdc_get_config_info_ind_msg_v01),
    PDC_OPT(k_tlv_opt1, pdc_get_config_info_ind_msg_v01, config_size),
    PDC_U32(k_tlv_opt1, pdc_get_config_info_ind_msg_v01, config_size),
    PDC_OPT(k_tlv_opt2, pdc_get_config_info_ind_msg_v01, config_desc),
    PDC_BYTES(k_tlv_opt2, pdc_get_config_info_ind_msg_v01, config_desc, PDC_CONFIG_DESC_SIZE_MAX_V01),
    PDC_OPT(k_tlv_opt3, pdc_get_config_info_ind_msg_v01, config_version),
    PDC_U32(k_tlv_opt3, pdc_get_config_info_ind_msg_v01, config_version),
    PDC_END,
};

struct qmi_elem_info pdc_deactivate_config_req_msg_v01_ei[] = {
    PDC_ENUM32(k_tlv_mandatory, pdc_deactivate_config_req_msg_v01, config_type),
    PDC_TOKEN_ROWS(pdc_deactivate_config_req_msg_v01),
    PDC_OPT(k_tlv_opt1, pdc_deactivate_config_req_msg_v01, subscription_id),
    PDC_U32(k_tlv_opt1, pdc_deactivate_config_req_msg_v01, subscription_id),
    PDC_END,
};

struct qmi_elem_info pdc_set_feature_req_msg_v01_ei[] = {
    PDC_U32(k_tlv_mandatory, pdc_set_feature_req_msg_v01, slot_id),
    PDC_TOKEN_ROWS(pdc_set_feature_req_msg_v01),
    PDC_OPT(k_tlv_opt1, pdc_set_feature_req_msg_v01, selection_mode),
    PDC_U32(k_tlv_opt1, pdc_set_feature_req_msg_v01, selection_mode),
    PDC_END,
};

namespace {

#define PDC_MSG(id, type, len, ei) {id, sizeof(type), len, ei}

const qmi_idl_service_message_table_entry k_requests[] = {
    PDC_MSG(QMI_PDC_INDICATION_REGISTER_REQ_V01, pdc_indication_register_req_msg_v01, 4,
            pdc_indication_register_req_msg_v01_ei),
    PDC_MSG(QMI_PDC_GET_SELECTED_CONFIG_REQ_V01, pdc_get_selected_config_req_msg_v01, k_max_small_len,
            pdc_get_selected_config_req_msg_v01_ei),
    PDC_MSG(QMI_PDC_SET_SELECTED_CONFIG_REQ_V01, pdc_set_selected_config_req_msg_v01, k_max_small_len,
            pdc_set_selected_config_req_msg_v01_ei),
    PDC_MSG(QMI_PDC_LIST_CONFIGS_REQ_V01, pdc_list_configs_req_msg_v01, k_max_small_len,
            pdc_list_configs_req_msg_v01_ei),
    PDC_MSG(QMI_PDC_DELETE_CONFIG_REQ_V01, pdc_delete_config_req_msg_v01, k_max_small_len,
            pdc_delete_config_req_msg_v01_ei),
    PDC_MSG(QMI_PDC_LOAD_CONFIG_REQ_V01, pdc_load_config_req_msg_v01, k_max_load_req_len,
            pdc_load_config_req_msg_v01_ei),
    PDC_MSG(QMI_PDC_ACTIVATE_CONFIG_REQ_V01, pdc_activate_config_req_msg_v01, k_max_small_len,
            pdc_activate_config_req_msg_v01_ei),
    PDC_MSG(QMI_PDC_GET_CONFIG_INFO_REQ_V01, pdc_get_config_info_req_msg_v01, k_max_small_len,
            pdc_get_config_info_req_msg_v01_ei),
    PDC_MSG(QMI_PDC_DEACTIVATE_CONFIG_REQ_V01, pdc_deactivate_config_req_msg_v01, k_max_small_len,
            pdc_deactivate_config_req_msg_v01_ei),
    PDC_MSG(QMI_PDC_SET_FEATURE_REQ_V01, pdc_set_feature_req_msg_v01, k_max_small_len,
            pdc_set_feature_req_msg_v01_ei),
};

#define PDC_RESP(id) PDC_MSG(id, pdc_generic_resp_msg_v01, k_max_resp_len, pdc_generic_resp_msg_v01_ei)

const qmi_idl_service_message_table_entry k_responses[] = {
    PDC_RESP(QMI_PDC_INDICATION_REGISTER_REQ_V01),
    PDC_RESP(QMI_PDC_GET_SELECTED_CONFIG_REQ_V01),
    PDC_RESP(QMI_PDC_SET_SELECTED_CONFIG_REQ_V01),
    PDC_RESP(QMI_PDC_LIST_CONFIGS_REQ_V01),
    PDC_RESP(QMI_PDC_DELETE_CONFIG_REQ_V01),
    PDC_MSG(QMI_PDC_LOAD_CONFIG_REQ_V01, pdc_load_config_resp_msg_v01, k_max_resp_len + 4,
            pdc_load_config_resp_msg_v01_ei),
    PDC_RESP(QMI_PDC_ACTIVATE_CONFIG_REQ_V01),
    PDC_RESP(QMI_PDC_GET_CONFIG_INFO_REQ_V01),
    PDC_RESP(QMI_PDC_DEACTIVATE_CONFIG_REQ_V01),
    PDC_RESP(QMI_PDC_SET_FEATURE_REQ_V01),
};

#define PDC_GENERIC_IND(id) PDC_MSG(id, pdc_generic_ind_msg_v01, k_max_resp_len + 7, pdc_generic_ind_msg_v01_ei)

const qmi_idl_service_message_table_entry k_indications[] = {
    PDC_MSG(QMI_PDC_CONFIG_CHANGE_IND_V01, pdc_config_change_ind_msg_v01, k_max_small_len,
            pdc_config_change_ind_msg_v01_ei),
    PDC_MSG(QMI_PDC_GET_SELECTED_CONFIG_REQ_V01, pdc_get_selected_config_ind_msg_v01, k_max_selected_ind_len,
            pdc_get_selected_config_ind_msg_v01_ei),
    PDC_GENERIC_IND(QMI_PDC_SET_SELECTED_CONFIG_REQ_V01),
    PDC_MSG(QMI_PDC_LIST_CONFIGS_REQ_V01, pdc_list_configs_ind_msg_v01, k_max_list_ind_len,
            pdc_list_configs_ind_msg_v01_ei),
    PDC_GENERIC_IND(QMI_PDC_DELETE_CONFIG_REQ_V01),
    PDC_MSG(QMI_PDC_LOAD_CONFIG_REQ_V01, pdc_load_config_ind_msg_v01, k_max_small_len,
            pdc_load_config_ind_msg_v01_ei),
    PDC_GENERIC_IND(QMI_PDC_ACTIVATE_CONFIG_REQ_V01),
    PDC_MSG(QMI_PDC_GET_CONFIG_INFO_REQ_V01, pdc_get_config_info_ind_msg_v01, k_max_info_ind_len,
            pdc_get_config_info_ind_msg_v01_ei),
    PDC_GENERIC_IND(QMI_PDC_DEACTIVATE_CONFIG_REQ_V01),
    PDC_GENERIC_IND(QMI_PDC_SET_FEATURE_REQ_V01),
};

constexpr uint16_t k_count(size_t n) { return uint16_t(n); }

qmi_idl_service_object g_pdc_service_object = {
    PDC_V01_IDL_TOOL_VERS,
    PDC_V01_IDL_MAJOR_VERS,
    PDC_SERVICE_ID_V01,
    k_max_load_req_len,
    {k_count(sizeof(k_requests) / sizeof(k_requests[0])), k_count(sizeof(k_responses) / sizeof(k_responses[0])),
     k_count(sizeof(k_indications) / sizeof(k_indications[0]))},
    {k_requests, k_responses, k_indications},
    nullptr,
    PDC_V01_IDL_MINOR_VERS,
    nullptr,
};

}  // namespace

extern "C" qmi_idl_service_object_type pdc_get_service_object_internal_v01(int32_t idl_maj_version,
                                                                           int32_t idl_min_version,
                                                                           int32_t library_version)
{
    if (idl_maj_version != PDC_V01_IDL_MAJOR_VERS || idl_min_version > PDC_V01_IDL_MINOR_VERS ||
        library_version != PDC_V01_IDL_TOOL_VERS) {
        return nullptr;
    }
    return &g_pdc_service_object;
}
