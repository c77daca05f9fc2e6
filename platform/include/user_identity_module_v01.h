/* The QMI UIM service (0x0B) as the tool and the modem simulator use it:
 * message ids, limits, C structures, their element tables and the service
 * object.
 *
 * Wire layouts are the public ones: slots travel as one byte (1-based),
 * variable arrays carry a one-byte count (the APDU a two-byte count) and
 * every response starts with the result TLV 0x02 (u16 result, u16 error).
 * The C structures follow the generated-header conventions instead: enums
 * and the result words are 32-bit, `_valid` precedes an optional field and
 * a 32-bit `_len` precedes a variable array.  The element tables bridge the
 * two the way the kernel's QMI tables do: a row whose element size is
 * narrower than its C field reads and writes the low bytes of that field,
 * which the decoder zeroes first.  That needs a little-endian host. */
#ifndef USER_IDENTITY_MODULE_V01_H
#define USER_IDENTITY_MODULE_V01_H

#include <stddef.h>
#include <stdint.h>

#include "qmi_idl_lib.h"

#if !defined(__BYTE_ORDER__) || __BYTE_ORDER__ != __ORDER_LITTLE_ENDIAN__
#error "the UIM element tables assume a little-endian host"
#endif

#define UIM_V01_SERVICE_ID 0x0B
#define UIM_V01_IDL_MAJOR_VERS 0x01
#define UIM_V01_IDL_MINOR_VERS 0x4C
#define UIM_V01_IDL_TOOL_VERS 0x06

/* Message ids. */
#define QMI_UIM_GET_CARD_STATUS_REQ_V01 0x002F
#define QMI_UIM_POWER_DOWN_REQ_V01 0x0030
#define QMI_UIM_POWER_UP_REQ_V01 0x0031
#define QMI_UIM_SEND_APDU_REQ_V01 0x003B
#define QMI_UIM_LOGICAL_CHANNEL_REQ_V01 0x003F
#define QMI_UIM_OPEN_LOGICAL_CHANNEL_REQ_V01 0x0042
#define QMI_UIM_GET_SLOTS_STATUS_REQ_V01 0x0047
#define QMI_UIM_SLOT_STATUS_CHANGE_IND_V01 0x0048
#define QMI_UIM_PURGE_GUTI_IND_V01 0x0061
#define QMI_UIM_GET_EID_REQ_V01 0x0065

/* Limits. */
#define QMI_UIM_EID_LEN_V01 16
#define QMI_UIM_AID_MAX_V01 32
#define QMI_UIM_APDU_DATA_MAX_V01 1024
#define QMI_UIM_SELECT_RESPONSE_MAX_V01 255
#define QMI_UIM_ICCID_LEN_MAX_V01 10
#define QMI_UIM_ATR_MAX_V01 33
#define QMI_UIM_PHYSICAL_SLOTS_MAX_V01 5
#define QMI_UIM_CARDS_MAX_V01 2
#define QMI_UIM_APPS_MAX_V01 8
/* Index of an application in the card status: card << 8 | application;
 * this value when there is none. */
#define QMI_UIM_NO_APP_INDEX_V01 0xFFFF

/* Slots are 1-based. */
typedef enum {
    UIM_SLOT_ENUM_MIN_ENUM_VAL_V01 = -2147483647,
    UIM_SLOT_1_V01 = 0x01,
    UIM_SLOT_2_V01 = 0x02,
    UIM_SLOT_3_V01 = 0x03,
    UIM_SLOT_ENUM_MAX_ENUM_VAL_V01 = 2147483647
} uim_slot_enum_v01;

typedef enum {
    UIM_CARD_MODE_ENUM_MIN_ENUM_VAL_V01 = -2147483647,
    UIM_CARD_MODE_TELECOM_CARD_V01 = 0x00,
    UIM_CARD_MODE_NON_TELECOM_CARD_V01 = 0x01,
    UIM_CARD_MODE_ENUM_MAX_ENUM_VAL_V01 = 2147483647
} uim_card_mode_enum_v01;

/* Physical card state and slot state of the slot-status messages. */
#define UIM_PHYSICAL_CARD_STATE_UNKNOWN_V01 0
#define UIM_PHYSICAL_CARD_STATE_ABSENT_V01 1
#define UIM_PHYSICAL_CARD_STATE_PRESENT_V01 2
#define UIM_SLOT_STATE_INACTIVE_V01 0
#define UIM_SLOT_STATE_ACTIVE_V01 1
#define UIM_CARD_PROTOCOL_UICC_V01 2

/* The result words of every response: 32-bit in C, 16-bit on the wire. */
typedef struct {
    int32_t result; /* 0 success, 1 failure */
    int32_t error;  /* QMI error number when result is 1 */
} uim_response_type_v01;

/* Power down (0x30): request 4 bytes, response 8 bytes. */
typedef struct {
    uim_slot_enum_v01 slot;
} uim_power_down_req_msg_v01;
typedef struct {
    uim_response_type_v01 resp;
} uim_power_down_resp_msg_v01;

/* Power up (0x31): request 12 bytes, response 8 bytes. */
typedef struct {
    uim_slot_enum_v01 slot;
    uint8_t ignore_hotswap_switch_valid;
    uint8_t ignore_hotswap_switch;
    uint8_t mode_valid;
    uim_card_mode_enum_v01 mode;
} uim_power_up_req_msg_v01;
typedef struct {
    uim_response_type_v01 resp;
} uim_power_up_resp_msg_v01;

/* Get EID (0x65): request 4 bytes, response 32 bytes. */
typedef struct {
    uim_slot_enum_v01 slot;
} uim_get_eid_req_msg_v01;
typedef struct {
    uim_response_type_v01 resp;
    uint8_t eid_value_valid;
    uint32_t eid_value_len;
    uint8_t eid_value[QMI_UIM_EID_LEN_V01];
} uim_get_eid_resp_msg_v01;

/* Status words of the card. */
typedef struct {
    uint8_t sw1;
    uint8_t sw2;
} uim_card_result_type_v01;

/* Open logical channel (0x42). */
typedef struct {
    uim_slot_enum_v01 slot;
    uint8_t aid_valid;
    uint32_t aid_len;
    uint8_t aid[QMI_UIM_AID_MAX_V01];
} uim_open_logical_channel_req_msg_v01;
typedef struct {
    uim_response_type_v01 resp;
    uint8_t channel_id_valid;
    uint8_t channel_id;
    uint8_t card_result_valid;
    uim_card_result_type_v01 card_result;
    uint8_t select_response_valid;
    uint32_t select_response_len;
    uint8_t select_response[QMI_UIM_SELECT_RESPONSE_MAX_V01];
} uim_open_logical_channel_resp_msg_v01;

/* Logical channel (0x3F), used here to close a channel. */
typedef struct {
    uim_slot_enum_v01 slot;
    uint8_t channel_id_valid;
    uint8_t channel_id;
    uint8_t terminate_application_valid;
    uint8_t terminate_application;
} uim_logical_channel_req_msg_v01;
typedef struct {
    uim_response_type_v01 resp;
    uint8_t card_result_valid;
    uim_card_result_type_v01 card_result;
} uim_logical_channel_resp_msg_v01;

/* Send APDU (0x3B): the command on a channel, the response data followed
 * by the two status words. */
typedef struct {
    uim_slot_enum_v01 slot;
    uint32_t apdu_len;
    uint8_t apdu[QMI_UIM_APDU_DATA_MAX_V01];
    uint8_t channel_id_valid;
    uint8_t channel_id;
} uim_send_apdu_req_msg_v01;
typedef struct {
    uim_response_type_v01 resp;
    uint8_t apdu_valid;
    uint32_t apdu_len;
    uint8_t apdu[QMI_UIM_APDU_DATA_MAX_V01];
} uim_send_apdu_resp_msg_v01;

/* Slot status (get 0x47, indication 0x48). */
typedef struct {
    uint32_t physical_card_status;
    uint32_t physical_slot_state;
    uint8_t logical_slot;
    uint32_t iccid_len;
    uint8_t iccid[QMI_UIM_ICCID_LEN_MAX_V01];
} uim_physical_slot_status_type_v01;
typedef struct {
    uint32_t card_protocol;
    uint8_t num_app;
    uint32_t atr_value_len;
    uint8_t atr_value[QMI_UIM_ATR_MAX_V01];
    uint8_t is_euicc;
} uim_physical_slot_info_type_v01;
typedef struct {
    uint32_t eid_len;
    uint8_t eid[QMI_UIM_EID_LEN_V01];
} uim_eid_info_type_v01;
typedef struct {
    uint8_t physical_slot_status_valid;
    uint32_t physical_slot_status_len;
    uim_physical_slot_status_type_v01 physical_slot_status[QMI_UIM_PHYSICAL_SLOTS_MAX_V01];
    uint8_t physical_slot_info_valid;
    uint32_t physical_slot_info_len;
    uim_physical_slot_info_type_v01 physical_slot_info[QMI_UIM_PHYSICAL_SLOTS_MAX_V01];
    uint8_t eid_info_valid;
    uint32_t eid_info_len;
    uim_eid_info_type_v01 eid_info[QMI_UIM_PHYSICAL_SLOTS_MAX_V01];
} uim_slots_status_type_v01;
typedef struct {
    uim_response_type_v01 resp;
    uim_slots_status_type_v01 status;
} uim_get_slots_status_resp_msg_v01;
typedef struct {
    uim_slots_status_type_v01 status;
} uim_slot_status_change_ind_msg_v01;

/* Card status (get 0x2F), TLV 0x10.  Every field is one byte on the wire
 * but the indexes (two) and the counts. */
typedef struct {
    uint8_t app_type;  /* 1 SIM, 2 USIM, 3 RUIM, 4 CSIM, 5 ISIM */
    uint8_t app_state; /* 7 ready */
    uint8_t perso_state;
    uint8_t perso_feature;
    uint8_t perso_retries;
    uint8_t perso_unblock_retries;
    uint32_t aid_value_len;
    uint8_t aid_value[QMI_UIM_AID_MAX_V01];
    uint8_t univ_pin;
    uint8_t pin1_state;
    uint8_t pin1_retries;
    uint8_t puk1_retries;
    uint8_t pin2_state;
    uint8_t pin2_retries;
    uint8_t puk2_retries;
} uim_app_info_type_v01;
typedef struct {
    uint8_t card_state; /* 0 absent, 1 present, 2 error */
    uint8_t upin_state;
    uint8_t upin_retries;
    uint8_t upuk_retries;
    uint8_t error_code; /* with card state 2: 1 powered down */
    uint32_t app_info_len;
    uim_app_info_type_v01 app_info[QMI_UIM_APPS_MAX_V01];
} uim_card_info_type_v01;
typedef struct {
    uint16_t index_gw_pri;
    uint16_t index_1x_pri;
    uint16_t index_gw_sec;
    uint16_t index_1x_sec;
    uint32_t card_info_len;
    uim_card_info_type_v01 card_info[QMI_UIM_CARDS_MAX_V01];
} uim_card_status_type_v01;
typedef struct {
    uim_response_type_v01 resp;
    uint8_t card_status_valid;
    uim_card_status_type_v01 card_status;
} uim_get_card_status_resp_msg_v01;

/* Indication 0x61 (16 bytes): the modem's outcome of a purge of the
 * temporary identity, and the slot it concerns. */
typedef struct {
    uim_response_type_v01 resp;
    uint8_t slot_valid;
    uim_slot_enum_v01 slot;
} uim_purge_guti_ind_msg_v01;

static_assert(sizeof(uim_power_down_req_msg_v01) == 4, "power down request is 4 bytes");
static_assert(sizeof(uim_power_down_resp_msg_v01) == 8, "power down response is 8 bytes");
static_assert(sizeof(uim_power_up_req_msg_v01) == 12, "power up request is 12 bytes");
static_assert(sizeof(uim_power_up_resp_msg_v01) == 8, "power up response is 8 bytes");
static_assert(sizeof(uim_get_eid_req_msg_v01) == 4, "get EID request is 4 bytes");
static_assert(sizeof(uim_get_eid_resp_msg_v01) == 32, "get EID response is 32 bytes");
static_assert(offsetof(uim_get_eid_resp_msg_v01, eid_value_valid) == 8, "EID validity at byte 8");
static_assert(offsetof(uim_get_eid_resp_msg_v01, eid_value) == 16, "EID at byte 16");
static_assert(sizeof(uim_purge_guti_ind_msg_v01) == 16, "indication 0x61 decodes into 16 bytes");

#ifdef __cplusplus
extern "C" {
#endif

extern struct qmi_elem_info uim_response_type_v01_ei[];
extern struct qmi_elem_info uim_power_down_req_msg_v01_ei[];
extern struct qmi_elem_info uim_power_down_resp_msg_v01_ei[];
extern struct qmi_elem_info uim_power_up_req_msg_v01_ei[];
extern struct qmi_elem_info uim_power_up_resp_msg_v01_ei[];
extern struct qmi_elem_info uim_get_eid_req_msg_v01_ei[];
extern struct qmi_elem_info uim_get_eid_resp_msg_v01_ei[];
extern struct qmi_elem_info uim_open_logical_channel_req_msg_v01_ei[];
extern struct qmi_elem_info uim_open_logical_channel_resp_msg_v01_ei[];
extern struct qmi_elem_info uim_logical_channel_req_msg_v01_ei[];
extern struct qmi_elem_info uim_logical_channel_resp_msg_v01_ei[];
extern struct qmi_elem_info uim_send_apdu_req_msg_v01_ei[];
extern struct qmi_elem_info uim_send_apdu_resp_msg_v01_ei[];
extern struct qmi_elem_info uim_get_slots_status_resp_msg_v01_ei[];
extern struct qmi_elem_info uim_get_card_status_resp_msg_v01_ei[];
extern struct qmi_elem_info uim_slot_status_change_ind_msg_v01_ei[];
extern struct qmi_elem_info uim_purge_guti_ind_msg_v01_ei[];

/* Returns the service object, or null when the versions asked for do not
 * match this definition. */
qmi_idl_service_object_type uim_get_service_object_internal_v01(int32_t idl_maj_version, int32_t idl_min_version,
                                                                int32_t library_version);

#define uim_get_service_object_v01()                                                                     \
    uim_get_service_object_internal_v01(UIM_V01_IDL_MAJOR_VERS, UIM_V01_IDL_MINOR_VERS, UIM_V01_IDL_TOOL_VERS)

#ifdef __cplusplus
}
#endif
#endif
