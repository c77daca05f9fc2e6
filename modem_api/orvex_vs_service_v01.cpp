/* Element tables and service object of the vendor statistics service. */
#include "orvex_vs_service_v01.h"

namespace {

/* TLV ids. */
constexpr uint8_t k_tlv_1 = 0x01;
constexpr uint8_t k_tlv_2 = 0x02;
constexpr uint8_t k_tlv_3 = 0x03;
constexpr uint8_t k_tlv_4 = 0x04;
constexpr uint8_t k_tlv_opt = 0x10;

/* Largest TLV areas (header of 3 bytes per TLV included). */
constexpr uint16_t k_result_tlv_len = 3 + 4;
constexpr uint16_t k_item_len = 712;
constexpr uint16_t k_command_req_len = (3 + 4) + (3 + 2 + ORVEX_VS_COMMAND_DATA_MAX);
constexpr uint16_t k_command_resp_len = k_result_tlv_len + (3 + 2 + ORVEX_VS_COMMAND_DATA_MAX);
constexpr uint16_t k_set_feature_req_len = 3 + 1;
constexpr uint16_t k_get_stats_req_len = (3 + 1) + (3 + 1 + 2 * ORVEX_VS_GET_STATS_LIST_MAX);
constexpr uint16_t k_get_stats_resp_len = k_result_tlv_len + (3 + 2 + k_item_len * ORVEX_VS_GET_STATS_LIST_MAX);
constexpr uint16_t k_feature_ind_len = (3 + 4) + (3 + 1) + (3 + 1);
constexpr uint16_t k_report_ind_len = (3 + 4) + (3 + 2 + k_item_len * ORVEX_VS_REPORT_PRIMARY_MAX) +
                                      (3 + 2 + k_item_len * ORVEX_VS_REPORT_SECONDARY_MAX) + (3 + 4);
constexpr uint16_t k_ant_ind_len = (3 + 4) + (3 + 1 + ORVEX_VS_ANT_STATE_MAX) + (3 + 2) + (3 + 2);
constexpr uint16_t k_cell_ind_len = (3 + 4) + (3 + 4);
constexpr uint16_t k_event_ind_len = 3 + 1;
constexpr uint32_t k_service_max_len = k_report_ind_len;

}  // namespace

#define VS_EOTI {QMI_EOTI, 0, 0, NO_ARRAY, 0, 0, nullptr}
/* The result and error words travel as the standard result TLV (u16, u16);
 * the C fields are 32-bit, the low halves carry the values. */
#define VS_RESULT_ROWS(type)                                                                        \
    {QMI_UNSIGNED_2_BYTE, 1, sizeof(uint16_t), NO_ARRAY, QMI_RESULT_TLV_TYPE, offsetof(type, result), \
     nullptr},                                                                                      \
    {QMI_UNSIGNED_2_BYTE, 1, sizeof(uint16_t), NO_ARRAY, QMI_RESULT_TLV_TYPE, offsetof(type, error), nullptr}

struct qmi_elem_info orvex_vs_stats_data_type_v01_ei[] = {
    {QMI_UNSIGNED_2_BYTE, 1, sizeof(uint16_t), NO_ARRAY, 0, offsetof(orvex_vs_stats_data_type_v01, data_id), nullptr},
    {QMI_UNSIGNED_2_BYTE, 1, sizeof(uint16_t), NO_ARRAY, 0, offsetof(orvex_vs_stats_data_type_v01, sub), nullptr},
    {QMI_UNSIGNED_4_BYTE, 1, sizeof(uint32_t), NO_ARRAY, 0, offsetof(orvex_vs_stats_data_type_v01, update_count),
     nullptr},
    {QMI_UNSIGNED_4_BYTE, 1, sizeof(uint32_t), NO_ARRAY, 0, offsetof(orvex_vs_stats_data_type_v01, data_len),
     nullptr},
    {QMI_UNSIGNED_1_BYTE, ORVEX_VS_DATA_MAX, sizeof(uint8_t), STATIC_ARRAY, 0,
     offsetof(orvex_vs_stats_data_type_v01, data), nullptr},
    VS_EOTI,
};

struct qmi_elem_info orvex_vs_command_req_msg_v01_ei[] = {
    {QMI_UNSIGNED_4_BYTE, 1, sizeof(uint32_t), NO_ARRAY, k_tlv_1, offsetof(orvex_vs_command_req_msg_v01, cmd), nullptr},
    {QMI_OPT_FLAG, 1, sizeof(uint8_t), NO_ARRAY, k_tlv_opt, offsetof(orvex_vs_command_req_msg_v01, data_valid),
     nullptr},
    {QMI_DATA_LEN, 1, sizeof(uint32_t), NO_ARRAY, k_tlv_opt, offsetof(orvex_vs_command_req_msg_v01, data_len),
     nullptr},
    {QMI_UNSIGNED_1_BYTE, ORVEX_VS_COMMAND_DATA_MAX, sizeof(uint8_t), VAR_LEN_ARRAY, k_tlv_opt,
     offsetof(orvex_vs_command_req_msg_v01, data), nullptr},
    VS_EOTI,
};

struct qmi_elem_info orvex_vs_command_resp_msg_v01_ei[] = {
    VS_RESULT_ROWS(orvex_vs_command_resp_msg_v01),
    {QMI_DATA_LEN, 1, sizeof(uint32_t), NO_ARRAY, k_tlv_3, offsetof(orvex_vs_command_resp_msg_v01, data_len),
     nullptr},
    {QMI_UNSIGNED_1_BYTE, ORVEX_VS_COMMAND_DATA_MAX, sizeof(uint8_t), VAR_LEN_ARRAY, k_tlv_3,
     offsetof(orvex_vs_command_resp_msg_v01, data), nullptr},
    VS_EOTI,
};

struct qmi_elem_info orvex_vs_set_feature_status_req_msg_v01_ei[] = {
    {QMI_UNSIGNED_1_BYTE, 1, sizeof(uint8_t), NO_ARRAY, k_tlv_1,
     offsetof(orvex_vs_set_feature_status_req_msg_v01, feature_status), nullptr},
    VS_EOTI,
};

struct qmi_elem_info orvex_vs_set_feature_status_resp_msg_v01_ei[] = {
    VS_RESULT_ROWS(orvex_vs_set_feature_status_resp_msg_v01),
    VS_EOTI,
};

struct qmi_elem_info orvex_vs_get_stats_req_msg_v01_ei[] = {
    {QMI_UNSIGNED_1_BYTE, 1, sizeof(uint8_t), NO_ARRAY, k_tlv_1, offsetof(orvex_vs_get_stats_req_msg_v01, sub),
     nullptr},
    {QMI_DATA_LEN, 1, sizeof(uint8_t), NO_ARRAY, k_tlv_2, offsetof(orvex_vs_get_stats_req_msg_v01, data_id_list_len),
     nullptr},
    {QMI_UNSIGNED_2_BYTE, ORVEX_VS_GET_STATS_LIST_MAX, sizeof(uint16_t), VAR_LEN_ARRAY, k_tlv_2,
     offsetof(orvex_vs_get_stats_req_msg_v01, data_id_list), nullptr},
    VS_EOTI,
};

struct qmi_elem_info orvex_vs_get_stats_resp_msg_v01_ei[] = {
    VS_RESULT_ROWS(orvex_vs_get_stats_resp_msg_v01),
    {QMI_OPT_FLAG, 1, sizeof(uint8_t), NO_ARRAY, k_tlv_opt, offsetof(orvex_vs_get_stats_resp_msg_v01, data_list_valid),
     nullptr},
    {QMI_DATA_LEN, 1, sizeof(uint32_t), NO_ARRAY, k_tlv_opt, offsetof(orvex_vs_get_stats_resp_msg_v01, data_list_len),
     nullptr},
    {QMI_STRUCT, ORVEX_VS_GET_STATS_LIST_MAX, sizeof(orvex_vs_stats_data_type_v01), VAR_LEN_ARRAY, k_tlv_opt,
     offsetof(orvex_vs_get_stats_resp_msg_v01, data_list), orvex_vs_stats_data_type_v01_ei},
    VS_EOTI,
};

struct qmi_elem_info orvex_vs_feature_status_ind_msg_v01_ei[] = {
    {QMI_UNSIGNED_4_BYTE, 1, sizeof(uint32_t), NO_ARRAY, k_tlv_1,
     offsetof(orvex_vs_feature_status_ind_msg_v01, feature_mask), nullptr},
    {QMI_UNSIGNED_1_BYTE, 1, sizeof(uint8_t), NO_ARRAY, k_tlv_2, offsetof(orvex_vs_feature_status_ind_msg_v01, enabled),
     nullptr},
    {QMI_UNSIGNED_1_BYTE, 1, sizeof(uint8_t), NO_ARRAY, k_tlv_3,
     offsetof(orvex_vs_feature_status_ind_msg_v01, collecting), nullptr},
    VS_EOTI,
};

struct qmi_elem_info orvex_vs_stats_report_ind_msg_v01_ei[] = {
    {QMI_UNSIGNED_4_BYTE, 1, sizeof(uint32_t), NO_ARRAY, k_tlv_1, offsetof(orvex_vs_stats_report_ind_msg_v01, report_id),
     nullptr},
    {QMI_DATA_LEN, 1, sizeof(uint32_t), NO_ARRAY, k_tlv_2,
     offsetof(orvex_vs_stats_report_ind_msg_v01, primary_list_len), nullptr},
    {QMI_STRUCT, ORVEX_VS_REPORT_PRIMARY_MAX, sizeof(orvex_vs_stats_data_type_v01), VAR_LEN_ARRAY, k_tlv_2,
     offsetof(orvex_vs_stats_report_ind_msg_v01, primary_list), orvex_vs_stats_data_type_v01_ei},
    {QMI_DATA_LEN, 1, sizeof(uint32_t), NO_ARRAY, k_tlv_3,
     offsetof(orvex_vs_stats_report_ind_msg_v01, secondary_list_len), nullptr},
    {QMI_STRUCT, ORVEX_VS_REPORT_SECONDARY_MAX, sizeof(orvex_vs_stats_data_type_v01), VAR_LEN_ARRAY, k_tlv_3,
     offsetof(orvex_vs_stats_report_ind_msg_v01, secondary_list), orvex_vs_stats_data_type_v01_ei},
    {QMI_OPT_FLAG, 1, sizeof(uint8_t), NO_ARRAY, k_tlv_opt,
     offsetof(orvex_vs_stats_report_ind_msg_v01, interval_ms_valid), nullptr},
    {QMI_UNSIGNED_4_BYTE, 1, sizeof(uint32_t), NO_ARRAY, k_tlv_opt,
     offsetof(orvex_vs_stats_report_ind_msg_v01, interval_ms), nullptr},
    VS_EOTI,
};

struct qmi_elem_info orvex_vs_ant_state_ind_msg_v01_ei[] = {
    {QMI_UNSIGNED_4_BYTE, 1, sizeof(uint32_t), NO_ARRAY, k_tlv_1, offsetof(orvex_vs_ant_state_ind_msg_v01, sub),
     nullptr},
    {QMI_DATA_LEN, 1, sizeof(uint8_t), NO_ARRAY, k_tlv_2, offsetof(orvex_vs_ant_state_ind_msg_v01, ant_state_len),
     nullptr},
    {QMI_UNSIGNED_1_BYTE, ORVEX_VS_ANT_STATE_MAX, sizeof(uint8_t), VAR_LEN_ARRAY, k_tlv_2,
     offsetof(orvex_vs_ant_state_ind_msg_v01, ant_state), nullptr},
    {QMI_UNSIGNED_2_BYTE, 1, sizeof(uint16_t), NO_ARRAY, k_tlv_3, offsetof(orvex_vs_ant_state_ind_msg_v01, rx_path_mask),
     nullptr},
    {QMI_UNSIGNED_2_BYTE, 1, sizeof(uint16_t), NO_ARRAY, k_tlv_4, offsetof(orvex_vs_ant_state_ind_msg_v01, tx_path_mask),
     nullptr},
    VS_EOTI,
};

struct qmi_elem_info orvex_vs_cell_change_ind_msg_v01_ei[] = {
    {QMI_UNSIGNED_4_BYTE, 1, sizeof(uint32_t), NO_ARRAY, k_tlv_1, offsetof(orvex_vs_cell_change_ind_msg_v01, sub),
     nullptr},
    {QMI_UNSIGNED_4_BYTE, 1, sizeof(uint32_t), NO_ARRAY, k_tlv_2, offsetof(orvex_vs_cell_change_ind_msg_v01, earfcn),
     nullptr},
    VS_EOTI,
};

struct qmi_elem_info orvex_vs_modem_event_ind_msg_v01_ei[] = {
    {QMI_UNSIGNED_1_BYTE, 1, sizeof(uint8_t), NO_ARRAY, k_tlv_1, offsetof(orvex_vs_modem_event_ind_msg_v01, event),
     nullptr},
    VS_EOTI,
};

namespace {

/* Per kind, sorted by message id. */
const qmi_idl_service_message_table_entry k_requests[] = {
    {ORVEX_VS_COMMAND_MSG_ID_V01, sizeof(orvex_vs_command_req_msg_v01), k_command_req_len,
     orvex_vs_command_req_msg_v01_ei},
    {ORVEX_VS_SET_FEATURE_STATUS_MSG_ID_V01, sizeof(orvex_vs_set_feature_status_req_msg_v01), k_set_feature_req_len,
     orvex_vs_set_feature_status_req_msg_v01_ei},
    {ORVEX_VS_GET_STATS_MSG_ID_V01, sizeof(orvex_vs_get_stats_req_msg_v01), k_get_stats_req_len,
     orvex_vs_get_stats_req_msg_v01_ei},
};
const qmi_idl_service_message_table_entry k_responses[] = {
    {ORVEX_VS_COMMAND_MSG_ID_V01, sizeof(orvex_vs_command_resp_msg_v01), k_command_resp_len,
     orvex_vs_command_resp_msg_v01_ei},
    {ORVEX_VS_SET_FEATURE_STATUS_MSG_ID_V01, sizeof(orvex_vs_set_feature_status_resp_msg_v01), k_result_tlv_len,
     orvex_vs_set_feature_status_resp_msg_v01_ei},
    {ORVEX_VS_GET_STATS_MSG_ID_V01, sizeof(orvex_vs_get_stats_resp_msg_v01), k_get_stats_resp_len,
     orvex_vs_get_stats_resp_msg_v01_ei},
};
const qmi_idl_service_message_table_entry k_indications[] = {
    {ORVEX_VS_FEATURE_STATUS_IND_V01, sizeof(orvex_vs_feature_status_ind_msg_v01), k_feature_ind_len,
     orvex_vs_feature_status_ind_msg_v01_ei},
    {ORVEX_VS_STATS_REPORT_IND_V01, sizeof(orvex_vs_stats_report_ind_msg_v01), k_report_ind_len,
     orvex_vs_stats_report_ind_msg_v01_ei},
    {ORVEX_VS_ANT_STATE_IND_V01, sizeof(orvex_vs_ant_state_ind_msg_v01), k_ant_ind_len,
     orvex_vs_ant_state_ind_msg_v01_ei},
    {ORVEX_VS_CELL_CHANGE_IND_V01, sizeof(orvex_vs_cell_change_ind_msg_v01), k_cell_ind_len,
     orvex_vs_cell_change_ind_msg_v01_ei},
    {ORVEX_VS_MODEM_EVENT_IND_V01, sizeof(orvex_vs_modem_event_ind_msg_v01), k_event_ind_len,
     orvex_vs_modem_event_ind_msg_v01_ei},
};

template <typename T, size_t N>
constexpr uint16_t count_of(const T (&)[N])
{
    return uint16_t(N);
}

qmi_idl_service_object g_orvex_vs_service_object = {
    ORVEX_VS_V01_IDL_TOOL_VERS,
    ORVEX_VS_V01_IDL_MAJOR_VERS,
    ORVEX_VS_SERVICE_ID,
    k_service_max_len,
    {count_of(k_requests), count_of(k_responses), count_of(k_indications)},
    {k_requests, k_responses, k_indications},
    nullptr,
    ORVEX_VS_V01_IDL_MINOR_VERS,
    nullptr,
};

}  // namespace

extern "C" qmi_idl_service_object_type orvex_vs_get_service_object_internal_v01(int32_t idl_maj_version,
                                                                                int32_t idl_min_version,
                                                                                int32_t library_version)
{
    if (idl_maj_version != ORVEX_VS_V01_IDL_MAJOR_VERS || idl_min_version > ORVEX_VS_V01_IDL_MINOR_VERS ||
        library_version != ORVEX_VS_V01_IDL_TOOL_VERS) {
        return nullptr;
    }
    return &g_orvex_vs_service_object;
}
