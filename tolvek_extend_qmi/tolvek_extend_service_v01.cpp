#include "tolvek_extend_service_v01.h"

struct qmi_elem_info tolvek_extend_msg_ei[] = {
    {QMI_UNSIGNED_4_BYTE, 1, sizeof(uint32_t), NO_ARRAY, TOLVEK_EXTEND_TLV_MSG_CODE,
     offsetof(tolvek_extend_msg, msg_code), nullptr},
    {QMI_UNSIGNED_4_BYTE, 1, sizeof(uint32_t), NO_ARRAY, TOLVEK_EXTEND_TLV_DATA_LEN,
     offsetof(tolvek_extend_msg, data_len), nullptr},
    {QMI_OPT_FLAG, 1, sizeof(uint8_t), NO_ARRAY, TOLVEK_EXTEND_TLV_DATA, offsetof(tolvek_extend_msg, data_valid),
     nullptr},
    /* Always the full 512 bytes: the true length travels in TLV 0x02. */
    {QMI_UNSIGNED_1_BYTE, TOLVEK_EXTEND_DATA_MAX, sizeof(uint8_t), STATIC_ARRAY, TOLVEK_EXTEND_TLV_DATA,
     offsetof(tolvek_extend_msg, data), nullptr},
    {QMI_EOTI, 0, 0, NO_ARRAY, 0, 0, nullptr},
};

namespace {

/* Largest TLV area of the message: 3 + 4, 3 + 4 and 3 + 512 bytes. */
constexpr uint16_t k_msg_tlv_len = TOLVEK_EXTEND_MAX_MSG_LEN;

const qmi_idl_service_message_table_entry k_requests[] = {
    {0x0002, sizeof(tolvek_extend_msg), k_msg_tlv_len, tolvek_extend_msg_ei},
    {0x0003, sizeof(tolvek_extend_msg), k_msg_tlv_len, tolvek_extend_msg_ei},
};
const qmi_idl_service_message_table_entry k_responses[] = {
    {0x0002, sizeof(tolvek_extend_msg), k_msg_tlv_len, tolvek_extend_msg_ei},
    {0x0003, sizeof(tolvek_extend_msg), k_msg_tlv_len, tolvek_extend_msg_ei},
};
const qmi_idl_service_message_table_entry k_indications[] = {
    {0x0003, sizeof(tolvek_extend_msg), k_msg_tlv_len, tolvek_extend_msg_ei},
};

qmi_idl_service_object g_tolvek_extend_service_object = {
    TOLVEK_EXTEND_V01_IDL_TOOL_VERS,
    TOLVEK_EXTEND_V01_IDL_MAJOR_VERS,
    TOLVEK_EXTEND_SERVICE_ID,
    TOLVEK_EXTEND_MAX_MSG_LEN,
    {2, 2, 1},
    {k_requests, k_responses, k_indications},
    nullptr,
    TOLVEK_EXTEND_V01_IDL_MINOR_VERS,
    nullptr,
};

}  // namespace

extern "C" qmi_idl_service_object_type tolvek_extend_get_service_object_internal_v01(int32_t idl_maj_version,
                                                                                     int32_t idl_min_version,
                                                                                     int32_t library_version)
{
    if (idl_maj_version != TOLVEK_EXTEND_V01_IDL_MAJOR_VERS || idl_min_version > TOLVEK_EXTEND_V01_IDL_MINOR_VERS ||
        library_version != TOLVEK_EXTEND_V01_IDL_TOOL_VERS) {
        return nullptr;
    }
    return &g_tolvek_extend_service_object;
}
