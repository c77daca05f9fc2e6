/* Element tables and service object of the QMI UIM service. */
#include "user_identity_module_v01.h"

namespace {

/* TLV ids. */
constexpr uint8_t k_tlv_slot = 0x01;
constexpr uint8_t k_tlv_apdu = 0x02;
constexpr uint8_t k_tlv_resp = QMI_RESULT_TLV_TYPE;
constexpr uint8_t k_tlv_opt_0 = 0x10;
constexpr uint8_t k_tlv_opt_1 = 0x11;
constexpr uint8_t k_tlv_opt_2 = 0x12;
constexpr uint8_t k_tlv_opt_3 = 0x13;

/* Wire widths. */
constexpr uint32_t k_u8 = 1;
constexpr uint32_t k_u16 = 2;
constexpr uint32_t k_u32 = 4;

}  // namespace

#define UIM_ROW(type, len, size, array, tlv, st, field, nested) \
    {type, len, size, array, tlv, offsetof(st, field), nested}
#define UIM_END {QMI_EOTI, 0, 0, NO_ARRAY, 0, 0, nullptr}
/* The result TLV, first of every response. */
#define UIM_RESP_ROW(st) UIM_ROW(QMI_STRUCT, 1, sizeof(uim_response_type_v01), NO_ARRAY, k_tlv_resp, st, resp, \
                                 uim_response_type_v01_ei)
/* A mandatory one-byte slot. */
#define UIM_SLOT_ROW(st) UIM_ROW(QMI_UNSIGNED_1_BYTE, 1, k_u8, NO_ARRAY, k_tlv_slot, st, slot, nullptr)

extern "C" {

struct qmi_elem_info uim_response_type_v01_ei[] = {
    UIM_ROW(QMI_UNSIGNED_2_BYTE, 1, k_u16, NO_ARRAY, 0, uim_response_type_v01, result, nullptr),
    UIM_ROW(QMI_UNSIGNED_2_BYTE, 1, k_u16, NO_ARRAY, 0, uim_response_type_v01, error, nullptr),
    UIM_END,
};

struct qmi_elem_info uim_power_down_req_msg_v01_ei[] = {
    UIM_SLOT_ROW(uim_power_down_req_msg_v01),
    UIM_END,
};
struct qmi_elem_info uim_power_down_resp_msg_v01_ei[] = {
    UIM_RESP_ROW(uim_power_down_resp_msg_v01),
    UIM_END,
};

struct qmi_elem_info uim_power_up_req_msg_v01_ei[] = {
    UIM_SLOT_ROW(uim_power_up_req_msg_v01),
    UIM_ROW(QMI_OPT_FLAG, 1, k_u8, NO_ARRAY, k_tlv_opt_0, uim_power_up_req_msg_v01, ignore_hotswap_switch_valid,
            nullptr),
    UIM_ROW(QMI_UNSIGNED_1_BYTE, 1, k_u8, NO_ARRAY, k_tlv_opt_0, uim_power_up_req_msg_v01, ignore_hotswap_switch,
            nullptr),
    UIM_ROW(QMI_OPT_FLAG, 1, k_u8, NO_ARRAY, k_tlv_opt_1, uim_power_up_req_msg_v01, mode_valid, nullptr),
    UIM_ROW(QMI_UNSIGNED_1_BYTE, 1, k_u8, NO_ARRAY, k_tlv_opt_1, uim_power_up_req_msg_v01, mode, nullptr),
    UIM_END,
};
struct qmi_elem_info uim_power_up_resp_msg_v01_ei[] = {
    UIM_RESP_ROW(uim_power_up_resp_msg_v01),
    UIM_END,
};

struct qmi_elem_info uim_get_eid_req_msg_v01_ei[] = {
    UIM_SLOT_ROW(uim_get_eid_req_msg_v01),
    UIM_END,
};
struct qmi_elem_info uim_get_eid_resp_msg_v01_ei[] = {
    UIM_RESP_ROW(uim_get_eid_resp_msg_v01),
    UIM_ROW(QMI_OPT_FLAG, 1, k_u8, NO_ARRAY, k_tlv_opt_0, uim_get_eid_resp_msg_v01, eid_value_valid, nullptr),
    UIM_ROW(QMI_DATA_LEN, 1, k_u8, NO_ARRAY, k_tlv_opt_0, uim_get_eid_resp_msg_v01, eid_value_len, nullptr),
    UIM_ROW(QMI_UNSIGNED_1_BYTE, QMI_UIM_EID_LEN_V01, k_u8, VAR_LEN_ARRAY, k_tlv_opt_0, uim_get_eid_resp_msg_v01,
            eid_value, nullptr),
    UIM_END,
};

struct qmi_elem_info uim_card_result_type_v01_ei[] = {
    UIM_ROW(QMI_UNSIGNED_1_BYTE, 1, k_u8, NO_ARRAY, 0, uim_card_result_type_v01, sw1, nullptr),
    UIM_ROW(QMI_UNSIGNED_1_BYTE, 1, k_u8, NO_ARRAY, 0, uim_card_result_type_v01, sw2, nullptr),
    UIM_END,
};

struct qmi_elem_info uim_open_logical_channel_req_msg_v01_ei[] = {
    UIM_SLOT_ROW(uim_open_logical_channel_req_msg_v01),
    UIM_ROW(QMI_OPT_FLAG, 1, k_u8, NO_ARRAY, k_tlv_opt_0, uim_open_logical_channel_req_msg_v01, aid_valid, nullptr),
    UIM_ROW(QMI_DATA_LEN, 1, k_u8, NO_ARRAY, k_tlv_opt_0, uim_open_logical_channel_req_msg_v01, aid_len, nullptr),
    UIM_ROW(QMI_UNSIGNED_1_BYTE, QMI_UIM_AID_MAX_V01, k_u8, VAR_LEN_ARRAY, k_tlv_opt_0,
            uim_open_logical_channel_req_msg_v01, aid, nullptr),
    UIM_END,
};
struct qmi_elem_info uim_open_logical_channel_resp_msg_v01_ei[] = {
    UIM_RESP_ROW(uim_open_logical_channel_resp_msg_v01),
    UIM_ROW(QMI_OPT_FLAG, 1, k_u8, NO_ARRAY, k_tlv_opt_0, uim_open_logical_channel_resp_msg_v01, channel_id_valid,
            nullptr),
    UIM_ROW(QMI_UNSIGNED_1_BYTE, 1, k_u8, NO_ARRAY, k_tlv_opt_0, uim_open_logical_channel_resp_msg_v01, channel_id,
            nullptr),
    UIM_ROW(QMI_OPT_FLAG, 1, k_u8, NO_ARRAY, k_tlv_opt_1, uim_open_logical_channel_resp_msg_v01, card_result_valid,
            nullptr),
    UIM_ROW(QMI_STRUCT, 1, sizeof(uim_card_result_type_v01), NO_ARRAY, k_tlv_opt_1,
            uim_open_logical_channel_resp_msg_v01, card_result, uim_card_result_type_v01_ei),
    UIM_ROW(QMI_OPT_FLAG, 1, k_u8, NO_ARRAY, k_tlv_opt_2, uim_open_logical_channel_resp_msg_v01,
            select_response_valid, nullptr),
    UIM_ROW(QMI_DATA_LEN, 1, k_u8, NO_ARRAY, k_tlv_opt_2, uim_open_logical_channel_resp_msg_v01,
            select_response_len, nullptr),
    UIM_ROW(QMI_UNSIGNED_1_BYTE, QMI_UIM_SELECT_RESPONSE_MAX_V01, k_u8, VAR_LEN_ARRAY, k_tlv_opt_2,
            uim_open_logical_channel_resp_msg_v01, select_response, nullptr),
    UIM_END,
};

struct qmi_elem_info uim_logical_channel_req_msg_v01_ei[] = {
    UIM_SLOT_ROW(uim_logical_channel_req_msg_v01),
    UIM_ROW(QMI_OPT_FLAG, 1, k_u8, NO_ARRAY, k_tlv_opt_1, uim_logical_channel_req_msg_v01, channel_id_valid, nullptr),
    UIM_ROW(QMI_UNSIGNED_1_BYTE, 1, k_u8, NO_ARRAY, k_tlv_opt_1, uim_logical_channel_req_msg_v01, channel_id, nullptr),
    UIM_ROW(QMI_OPT_FLAG, 1, k_u8, NO_ARRAY, k_tlv_opt_3, uim_logical_channel_req_msg_v01,
            terminate_application_valid, nullptr),
    UIM_ROW(QMI_UNSIGNED_1_BYTE, 1, k_u8, NO_ARRAY, k_tlv_opt_3, uim_logical_channel_req_msg_v01,
            terminate_application, nullptr),
    UIM_END,
};
struct qmi_elem_info uim_logical_channel_resp_msg_v01_ei[] = {
    UIM_RESP_ROW(uim_logical_channel_resp_msg_v01),
    UIM_ROW(QMI_OPT_FLAG, 1, k_u8, NO_ARRAY, k_tlv_opt_1, uim_logical_channel_resp_msg_v01, card_result_valid,
            nullptr),
    UIM_ROW(QMI_STRUCT, 1, sizeof(uim_card_result_type_v01), NO_ARRAY, k_tlv_opt_1, uim_logical_channel_resp_msg_v01,
            card_result, uim_card_result_type_v01_ei),
    UIM_END,
};

struct qmi_elem_info uim_send_apdu_req_msg_v01_ei[] = {
    UIM_SLOT_ROW(uim_send_apdu_req_msg_v01),
    UIM_ROW(QMI_DATA_LEN, 1, k_u16, NO_ARRAY, k_tlv_apdu, uim_send_apdu_req_msg_v01, apdu_len, nullptr),
    UIM_ROW(QMI_UNSIGNED_1_BYTE, QMI_UIM_APDU_DATA_MAX_V01, k_u8, VAR_LEN_ARRAY, k_tlv_apdu,
            uim_send_apdu_req_msg_v01, apdu, nullptr),
    UIM_ROW(QMI_OPT_FLAG, 1, k_u8, NO_ARRAY, k_tlv_opt_0, uim_send_apdu_req_msg_v01, channel_id_valid, nullptr),
    UIM_ROW(QMI_UNSIGNED_1_BYTE, 1, k_u8, NO_ARRAY, k_tlv_opt_0, uim_send_apdu_req_msg_v01, channel_id, nullptr),
    UIM_END,
};
struct qmi_elem_info uim_send_apdu_resp_msg_v01_ei[] = {
    UIM_RESP_ROW(uim_send_apdu_resp_msg_v01),
    UIM_ROW(QMI_OPT_FLAG, 1, k_u8, NO_ARRAY, k_tlv_opt_0, uim_send_apdu_resp_msg_v01, apdu_valid, nullptr),
    UIM_ROW(QMI_DATA_LEN, 1, k_u16, NO_ARRAY, k_tlv_opt_0, uim_send_apdu_resp_msg_v01, apdu_len, nullptr),
    UIM_ROW(QMI_UNSIGNED_1_BYTE, QMI_UIM_APDU_DATA_MAX_V01, k_u8, VAR_LEN_ARRAY, k_tlv_opt_0,
            uim_send_apdu_resp_msg_v01, apdu, nullptr),
    UIM_END,
};

struct qmi_elem_info uim_physical_slot_status_type_v01_ei[] = {
    UIM_ROW(QMI_UNSIGNED_4_BYTE, 1, k_u32, NO_ARRAY, 0, uim_physical_slot_status_type_v01, physical_card_status,
            nullptr),
    UIM_ROW(QMI_UNSIGNED_4_BYTE, 1, k_u32, NO_ARRAY, 0, uim_physical_slot_status_type_v01, physical_slot_state,
            nullptr),
    UIM_ROW(QMI_UNSIGNED_1_BYTE, 1, k_u8, NO_ARRAY, 0, uim_physical_slot_status_type_v01, logical_slot, nullptr),
    UIM_ROW(QMI_DATA_LEN, 1, k_u8, NO_ARRAY, 0, uim_physical_slot_status_type_v01, iccid_len, nullptr),
    UIM_ROW(QMI_UNSIGNED_1_BYTE, QMI_UIM_ICCID_LEN_MAX_V01, k_u8, VAR_LEN_ARRAY, 0,
            uim_physical_slot_status_type_v01, iccid, nullptr),
    UIM_END,
};
struct qmi_elem_info uim_physical_slot_info_type_v01_ei[] = {
    UIM_ROW(QMI_UNSIGNED_4_BYTE, 1, k_u32, NO_ARRAY, 0, uim_physical_slot_info_type_v01, card_protocol, nullptr),
    UIM_ROW(QMI_UNSIGNED_1_BYTE, 1, k_u8, NO_ARRAY, 0, uim_physical_slot_info_type_v01, num_app, nullptr),
    UIM_ROW(QMI_DATA_LEN, 1, k_u8, NO_ARRAY, 0, uim_physical_slot_info_type_v01, atr_value_len, nullptr),
    UIM_ROW(QMI_UNSIGNED_1_BYTE, QMI_UIM_ATR_MAX_V01, k_u8, VAR_LEN_ARRAY, 0, uim_physical_slot_info_type_v01,
            atr_value, nullptr),
    UIM_ROW(QMI_UNSIGNED_1_BYTE, 1, k_u8, NO_ARRAY, 0, uim_physical_slot_info_type_v01, is_euicc, nullptr),
    UIM_END,
};
struct qmi_elem_info uim_eid_info_type_v01_ei[] = {
    UIM_ROW(QMI_DATA_LEN, 1, k_u8, NO_ARRAY, 0, uim_eid_info_type_v01, eid_len, nullptr),
    UIM_ROW(QMI_UNSIGNED_1_BYTE, QMI_UIM_EID_LEN_V01, k_u8, VAR_LEN_ARRAY, 0, uim_eid_info_type_v01, eid, nullptr),
    UIM_END,
};

/* The three optional slot-status TLVs, at `base` inside the message. */
#define UIM_SLOTS_STATUS_ROWS(st, base)                                                                           \
    UIM_ROW(QMI_OPT_FLAG, 1, k_u8, NO_ARRAY, k_tlv_opt_0, st, base.physical_slot_status_valid, nullptr),          \
        UIM_ROW(QMI_DATA_LEN, 1, k_u8, NO_ARRAY, k_tlv_opt_0, st, base.physical_slot_status_len, nullptr),        \
        UIM_ROW(QMI_STRUCT, QMI_UIM_PHYSICAL_SLOTS_MAX_V01, sizeof(uim_physical_slot_status_type_v01),            \
                VAR_LEN_ARRAY, k_tlv_opt_0, st, base.physical_slot_status, uim_physical_slot_status_type_v01_ei), \
        UIM_ROW(QMI_OPT_FLAG, 1, k_u8, NO_ARRAY, k_tlv_opt_1, st, base.physical_slot_info_valid, nullptr),        \
        UIM_ROW(QMI_DATA_LEN, 1, k_u8, NO_ARRAY, k_tlv_opt_1, st, base.physical_slot_info_len, nullptr),          \
        UIM_ROW(QMI_STRUCT, QMI_UIM_PHYSICAL_SLOTS_MAX_V01, sizeof(uim_physical_slot_info_type_v01),              \
                VAR_LEN_ARRAY, k_tlv_opt_1, st, base.physical_slot_info, uim_physical_slot_info_type_v01_ei),     \
        UIM_ROW(QMI_OPT_FLAG, 1, k_u8, NO_ARRAY, k_tlv_opt_2, st, base.eid_info_valid, nullptr),                  \
        UIM_ROW(QMI_DATA_LEN, 1, k_u8, NO_ARRAY, k_tlv_opt_2, st, base.eid_info_len, nullptr),                    \
        UIM_ROW(QMI_STRUCT, QMI_UIM_PHYSICAL_SLOTS_MAX_V01, sizeof(uim_eid_info_type_v01), VAR_LEN_ARRAY,         \
                k_tlv_opt_2, st, base.eid_info, uim_eid_info_type_v01_ei)

struct qmi_elem_info uim_get_slots_status_resp_msg_v01_ei[] = {
    UIM_RESP_ROW(uim_get_slots_status_resp_msg_v01),
    UIM_SLOTS_STATUS_ROWS(uim_get_slots_status_resp_msg_v01, status),
    UIM_END,
};
struct qmi_elem_info uim_slot_status_change_ind_msg_v01_ei[] = {
    UIM_SLOTS_STATUS_ROWS(uim_slot_status_change_ind_msg_v01, status),
    UIM_END,
};

struct qmi_elem_info uim_purge_guti_ind_msg_v01_ei[] = {
    UIM_RESP_ROW(uim_purge_guti_ind_msg_v01),
    UIM_ROW(QMI_OPT_FLAG, 1, k_u8, NO_ARRAY, k_tlv_opt_0, uim_purge_guti_ind_msg_v01, slot_valid, nullptr),
    UIM_ROW(QMI_UNSIGNED_1_BYTE, 1, k_u8, NO_ARRAY, k_tlv_opt_0, uim_purge_guti_ind_msg_v01, slot, nullptr),
    UIM_END,
};

#define UIM_U8_ROW(st, field) UIM_ROW(QMI_UNSIGNED_1_BYTE, 1, k_u8, NO_ARRAY, 0, st, field, nullptr)
#define UIM_U16_ROW(st, field) UIM_ROW(QMI_UNSIGNED_2_BYTE, 1, k_u16, NO_ARRAY, 0, st, field, nullptr)

struct qmi_elem_info uim_app_info_type_v01_ei[] = {
    UIM_U8_ROW(uim_app_info_type_v01, app_type),
    UIM_U8_ROW(uim_app_info_type_v01, app_state),
    UIM_U8_ROW(uim_app_info_type_v01, perso_state),
    UIM_U8_ROW(uim_app_info_type_v01, perso_feature),
    UIM_U8_ROW(uim_app_info_type_v01, perso_retries),
    UIM_U8_ROW(uim_app_info_type_v01, perso_unblock_retries),
    UIM_ROW(QMI_DATA_LEN, 1, k_u8, NO_ARRAY, 0, uim_app_info_type_v01, aid_value_len, nullptr),
    UIM_ROW(QMI_UNSIGNED_1_BYTE, QMI_UIM_AID_MAX_V01, k_u8, VAR_LEN_ARRAY, 0, uim_app_info_type_v01, aid_value,
            nullptr),
    UIM_U8_ROW(uim_app_info_type_v01, univ_pin),
    UIM_U8_ROW(uim_app_info_type_v01, pin1_state),
    UIM_U8_ROW(uim_app_info_type_v01, pin1_retries),
    UIM_U8_ROW(uim_app_info_type_v01, puk1_retries),
    UIM_U8_ROW(uim_app_info_type_v01, pin2_state),
    UIM_U8_ROW(uim_app_info_type_v01, pin2_retries),
    UIM_U8_ROW(uim_app_info_type_v01, puk2_retries),
    UIM_END,
};
struct qmi_elem_info uim_card_info_type_v01_ei[] = {
    UIM_U8_ROW(uim_card_info_type_v01, card_state),
    UIM_U8_ROW(uim_card_info_type_v01, upin_state),
    UIM_U8_ROW(uim_card_info_type_v01, upin_retries),
    UIM_U8_ROW(uim_card_info_type_v01, upuk_retries),
    UIM_U8_ROW(uim_card_info_type_v01, error_code),
    UIM_ROW(QMI_DATA_LEN, 1, k_u8, NO_ARRAY, 0, uim_card_info_type_v01, app_info_len, nullptr),
    UIM_ROW(QMI_STRUCT, QMI_UIM_APPS_MAX_V01, sizeof(uim_app_info_type_v01), VAR_LEN_ARRAY, 0,
            uim_card_info_type_v01, app_info, uim_app_info_type_v01_ei),
    UIM_END,
};
struct qmi_elem_info uim_card_status_type_v01_ei[] = {
    UIM_U16_ROW(uim_card_status_type_v01, index_gw_pri),
    UIM_U16_ROW(uim_card_status_type_v01, index_1x_pri),
    UIM_U16_ROW(uim_card_status_type_v01, index_gw_sec),
    UIM_U16_ROW(uim_card_status_type_v01, index_1x_sec),
    UIM_ROW(QMI_DATA_LEN, 1, k_u8, NO_ARRAY, 0, uim_card_status_type_v01, card_info_len, nullptr),
    UIM_ROW(QMI_STRUCT, QMI_UIM_CARDS_MAX_V01, sizeof(uim_card_info_type_v01), VAR_LEN_ARRAY, 0,
            uim_card_status_type_v01, card_info, uim_card_info_type_v01_ei),
    UIM_END,
};
struct qmi_elem_info uim_get_card_status_resp_msg_v01_ei[] = {
    UIM_RESP_ROW(uim_get_card_status_resp_msg_v01),
    UIM_ROW(QMI_OPT_FLAG, 1, k_u8, NO_ARRAY, k_tlv_opt_0, uim_get_card_status_resp_msg_v01, card_status_valid,
            nullptr),
    UIM_ROW(QMI_STRUCT, 1, sizeof(uim_card_status_type_v01), NO_ARRAY, k_tlv_opt_0, uim_get_card_status_resp_msg_v01,
            card_status, uim_card_status_type_v01_ei),
    UIM_END,
};

/* Requests without TLVs. */
struct qmi_elem_info uim_empty_msg_v01_ei[] = {
    UIM_END,
};

}  // extern "C"

namespace {

/* Largest TLV areas (result TLV 7 bytes; an APDU TLV 3 + 2 + 1024). */
constexpr uint16_t k_resp_only_len = 7;
constexpr uint16_t k_slot_only_len = 4;
constexpr uint16_t k_apdu_msg_len = 7 + 3 + 2 + QMI_UIM_APDU_DATA_MAX_V01 + 4;
constexpr uint16_t k_slots_status_len = 7 + 3 * (3 + 1) +
                                        QMI_UIM_PHYSICAL_SLOTS_MAX_V01 * (10 + 1 + QMI_UIM_ICCID_LEN_MAX_V01) +
                                        QMI_UIM_PHYSICAL_SLOTS_MAX_V01 * (6 + 1 + QMI_UIM_ATR_MAX_V01) +
                                        QMI_UIM_PHYSICAL_SLOTS_MAX_V01 * (1 + QMI_UIM_EID_LEN_V01);
constexpr uint16_t k_card_status_len =
    7 + 3 + 8 + 1 + QMI_UIM_CARDS_MAX_V01 * (6 + QMI_UIM_APPS_MAX_V01 * (14 + QMI_UIM_AID_MAX_V01));
constexpr uint32_t k_max_msg_len = k_apdu_msg_len + 64;
static_assert(k_card_status_len < k_max_msg_len, "the card status fits the largest message");

const qmi_idl_service_message_table_entry k_requests[] = {
    {QMI_UIM_GET_CARD_STATUS_REQ_V01, 0, 0, uim_empty_msg_v01_ei},
    {QMI_UIM_POWER_DOWN_REQ_V01, sizeof(uim_power_down_req_msg_v01), k_slot_only_len, uim_power_down_req_msg_v01_ei},
    {QMI_UIM_POWER_UP_REQ_V01, sizeof(uim_power_up_req_msg_v01), 3 * k_slot_only_len, uim_power_up_req_msg_v01_ei},
    {QMI_UIM_SEND_APDU_REQ_V01, sizeof(uim_send_apdu_req_msg_v01), k_apdu_msg_len, uim_send_apdu_req_msg_v01_ei},
    {QMI_UIM_LOGICAL_CHANNEL_REQ_V01, sizeof(uim_logical_channel_req_msg_v01), 3 * k_slot_only_len,
     uim_logical_channel_req_msg_v01_ei},
    {QMI_UIM_OPEN_LOGICAL_CHANNEL_REQ_V01, sizeof(uim_open_logical_channel_req_msg_v01),
     k_slot_only_len + 4 + QMI_UIM_AID_MAX_V01, uim_open_logical_channel_req_msg_v01_ei},
    {QMI_UIM_GET_SLOTS_STATUS_REQ_V01, 0, 0, uim_empty_msg_v01_ei},
    {QMI_UIM_GET_EID_REQ_V01, sizeof(uim_get_eid_req_msg_v01), k_slot_only_len, uim_get_eid_req_msg_v01_ei},
};
const qmi_idl_service_message_table_entry k_responses[] = {
    {QMI_UIM_GET_CARD_STATUS_REQ_V01, sizeof(uim_get_card_status_resp_msg_v01), k_card_status_len,
     uim_get_card_status_resp_msg_v01_ei},
    {QMI_UIM_POWER_DOWN_REQ_V01, sizeof(uim_power_down_resp_msg_v01), k_resp_only_len,
     uim_power_down_resp_msg_v01_ei},
    {QMI_UIM_POWER_UP_REQ_V01, sizeof(uim_power_up_resp_msg_v01), k_resp_only_len, uim_power_up_resp_msg_v01_ei},
    {QMI_UIM_SEND_APDU_REQ_V01, sizeof(uim_send_apdu_resp_msg_v01), k_apdu_msg_len, uim_send_apdu_resp_msg_v01_ei},
    {QMI_UIM_LOGICAL_CHANNEL_REQ_V01, sizeof(uim_logical_channel_resp_msg_v01), k_resp_only_len + 5,
     uim_logical_channel_resp_msg_v01_ei},
    {QMI_UIM_OPEN_LOGICAL_CHANNEL_REQ_V01, sizeof(uim_open_logical_channel_resp_msg_v01),
     k_resp_only_len + 4 + 5 + 4 + QMI_UIM_SELECT_RESPONSE_MAX_V01, uim_open_logical_channel_resp_msg_v01_ei},
    {QMI_UIM_GET_SLOTS_STATUS_REQ_V01, sizeof(uim_get_slots_status_resp_msg_v01), k_slots_status_len,
     uim_get_slots_status_resp_msg_v01_ei},
    {QMI_UIM_GET_EID_REQ_V01, sizeof(uim_get_eid_resp_msg_v01), k_resp_only_len + 4 + QMI_UIM_EID_LEN_V01,
     uim_get_eid_resp_msg_v01_ei},
};
const qmi_idl_service_message_table_entry k_indications[] = {
    {QMI_UIM_SLOT_STATUS_CHANGE_IND_V01, sizeof(uim_slot_status_change_ind_msg_v01), k_slots_status_len,
     uim_slot_status_change_ind_msg_v01_ei},
    {QMI_UIM_PURGE_GUTI_IND_V01, sizeof(uim_purge_guti_ind_msg_v01), k_resp_only_len + k_slot_only_len,
     uim_purge_guti_ind_msg_v01_ei},
};

constexpr uint16_t k_count(size_t n) { return uint16_t(n); }

qmi_idl_service_object g_uim_service_object = {
    UIM_V01_IDL_TOOL_VERS,
    UIM_V01_IDL_MAJOR_VERS,
    UIM_V01_SERVICE_ID,
    k_max_msg_len,
    {k_count(sizeof(k_requests) / sizeof(k_requests[0])), k_count(sizeof(k_responses) / sizeof(k_responses[0])),
     k_count(sizeof(k_indications) / sizeof(k_indications[0]))},
    {k_requests, k_responses, k_indications},
    nullptr,
    UIM_V01_IDL_MINOR_VERS,
    nullptr,
};

}  // namespace

extern "C" qmi_idl_service_object_type uim_get_service_object_internal_v01(int32_t idl_maj_version,
                                                                           int32_t idl_min_version,
                                                                           int32_t library_version)
{
    if (idl_maj_version != UIM_V01_IDL_MAJOR_VERS || idl_min_version > UIM_V01_IDL_MINOR_VERS ||
        library_version != UIM_V01_IDL_TOOL_VERS) {
        return nullptr;
    }
    return &g_uim_service_object;
}
