/* The Persistent Device Configuration (PDC) QMI service, 0x24: modem
 * configuration files (MBN) listed, loaded frame by frame, selected,
 * activated, deactivated and deleted.  Each request is answered at once
 * with the standard result TLV; its real outcome arrives later in an
 * indication with the same message id, whose mandatory TLV 0x01 is a
 * 16-bit QMI error code.  Structures follow the public IDL (1.8) with the
 * later additions the tool uses (list paging, deactivate, set feature);
 * the element tables beside them describe the wire, and the same tables
 * serve the tool and the modem simulator. */
#ifndef PERSISTENT_DEVICE_CONFIGURATION_V01_H
#define PERSISTENT_DEVICE_CONFIGURATION_V01_H

#include <stddef.h>
#include <stdint.h>

#include "qmi_idl_lib.h"

#define PDC_SERVICE_ID_V01 0x24
#define PDC_V01_IDL_MAJOR_VERS 0x01
#define PDC_V01_IDL_MINOR_VERS 0x08
#define PDC_V01_IDL_TOOL_VERS 0x06

#define PDC_CONFIG_ID_SIZE_MAX_V01 124
#define PDC_CONFIG_DESC_SIZE_MAX_V01 255
#define PDC_CONFIG_LIST_SIZE_MAX_V01 25
#define PDC_CONFIG_FRAME_SIZE_MAX_V01 32768

#define QMI_PDC_INDICATION_REGISTER_REQ_V01 0x0020
#define QMI_PDC_CONFIG_CHANGE_IND_V01 0x0021
#define QMI_PDC_GET_SELECTED_CONFIG_REQ_V01 0x0022
#define QMI_PDC_SET_SELECTED_CONFIG_REQ_V01 0x0023
#define QMI_PDC_LIST_CONFIGS_REQ_V01 0x0024
#define QMI_PDC_DELETE_CONFIG_REQ_V01 0x0025
#define QMI_PDC_LOAD_CONFIG_REQ_V01 0x0026
#define QMI_PDC_ACTIVATE_CONFIG_REQ_V01 0x0027
#define QMI_PDC_GET_CONFIG_INFO_REQ_V01 0x0028
#define QMI_PDC_DEACTIVATE_CONFIG_REQ_V01 0x002B
#define QMI_PDC_SET_FEATURE_REQ_V01 0x002E

/* QMI error codes the PDC indications carry. */
#define PDC_QMI_ERR_NONE 0
#define PDC_QMI_ERR_NO_MEMORY 2
#define PDC_QMI_ERR_INTERNAL 3
#define PDC_QMI_ERR_NOT_PROVISIONED 16
#define PDC_QMI_ERR_INVALID_ID 41
#define PDC_QMI_ERR_INVALID_ARG 48
#define PDC_QMI_ERR_INCOMPATIBLE_STATE 90
#define PDC_QMI_ERR_NOT_SUPPORTED 94

typedef enum {
    PDC_CONFIG_TYPE_ENUM_MIN_ENUM_VAL_V01 = -2147483647,
    PDC_CONFIG_TYPE_MODEM_PLATFORM_V01 = 0x00, /* hardware */
    PDC_CONFIG_TYPE_MODEM_SW_V01 = 0x01,       /* software (carrier) */
    PDC_CONFIG_TYPE_ENUM_MAX_ENUM_VAL_V01 = 2147483647
} pdc_config_type_enum_v01;

/* Type and id of one configuration (u32 type, u8 id length, id bytes). */
typedef struct {
    pdc_config_type_enum_v01 config_type;
    uint32_t config_id_len;
    uint8_t config_id[PDC_CONFIG_ID_SIZE_MAX_V01];
} pdc_config_info_req_type_v01;
typedef pdc_config_info_req_type_v01 pdc_config_info_resp_type_v01;

/* One frame of a configuration being loaded. */
typedef struct {
    pdc_config_type_enum_v01 config_type;
    uint32_t config_id_len;
    uint8_t config_id[PDC_CONFIG_ID_SIZE_MAX_V01];
    uint32_t total_config_size;
    uint32_t config_frame_len; /* u16 on the wire */
    uint8_t config_frame[PDC_CONFIG_FRAME_SIZE_MAX_V01];
} pdc_load_config_info_type_v01;

/* Every PDC response is the standard result TLV alone, except the load
 * response, which may add the frame reset flag. */
typedef struct {
    struct qmi_response_type_v01 resp;
} pdc_generic_resp_msg_v01;

typedef struct {
    struct qmi_response_type_v01 resp;
    uint8_t frame_data_reset_valid;
    uint8_t frame_data_reset;
} pdc_load_config_resp_msg_v01;

/* Indications that only report an outcome (select, delete, activate,
 * deactivate, set feature). */
typedef struct {
    int32_t error; /* u16 on the wire */
    uint8_t ind_token_valid;
    uint32_t ind_token;
} pdc_generic_ind_msg_v01;
typedef pdc_generic_ind_msg_v01 pdc_set_selected_config_ind_msg_v01;
typedef pdc_generic_ind_msg_v01 pdc_delete_config_ind_msg_v01;
typedef pdc_generic_ind_msg_v01 pdc_activate_config_ind_msg_v01;
typedef pdc_generic_ind_msg_v01 pdc_deactivate_config_ind_msg_v01;
typedef pdc_generic_ind_msg_v01 pdc_set_feature_ind_msg_v01;

typedef struct {
    uint8_t reg_config_change_valid;
    uint8_t reg_config_change;
} pdc_indication_register_req_msg_v01;

typedef struct {
    pdc_config_info_resp_type_v01 new_config_info;
} pdc_config_change_ind_msg_v01;

typedef struct {
    pdc_config_type_enum_v01 config_type;
    uint8_t ind_token_valid;
    uint32_t ind_token;
    uint8_t subscription_id_valid;
    uint32_t subscription_id;
} pdc_get_selected_config_req_msg_v01;

typedef struct {
    int32_t error;
    uint8_t ind_token_valid;
    uint32_t ind_token;
    uint8_t active_config_id_valid;
    uint32_t active_config_id_len;
    uint8_t active_config_id[PDC_CONFIG_ID_SIZE_MAX_V01];
    uint8_t pending_config_id_valid;
    uint32_t pending_config_id_len;
    uint8_t pending_config_id[PDC_CONFIG_ID_SIZE_MAX_V01];
} pdc_get_selected_config_ind_msg_v01;

typedef struct {
    pdc_config_info_req_type_v01 new_config_info;
    uint8_t ind_token_valid;
    uint32_t ind_token;
    uint8_t subscription_id_valid;
    uint32_t subscription_id;
} pdc_set_selected_config_req_msg_v01;

typedef struct {
    uint8_t ind_token_valid;
    uint32_t ind_token;
    uint8_t config_type_valid;
    pdc_config_type_enum_v01 config_type;
} pdc_list_configs_req_msg_v01;

/* A list of more than PDC_CONFIG_LIST_SIZE_MAX_V01 ids comes in pages:
 * more_available is set on every page but the last, and the next page is
 * asked for with a list request carrying the indication's token. */
typedef struct {
    int32_t error;
    uint8_t ind_token_valid;
    uint32_t ind_token;
    uint8_t config_list_valid;
    uint32_t config_list_len; /* u8 on the wire */
    pdc_config_info_resp_type_v01 config_list[PDC_CONFIG_LIST_SIZE_MAX_V01];
    uint8_t more_available_valid;
    uint8_t more_available;
} pdc_list_configs_ind_msg_v01;

typedef struct {
    pdc_config_type_enum_v01 config_type;
    uint8_t ind_token_valid;
    uint32_t ind_token;
    uint8_t config_id_valid;
    uint32_t config_id_len;
    uint8_t config_id[PDC_CONFIG_ID_SIZE_MAX_V01];
} pdc_delete_config_req_msg_v01;

typedef struct {
    pdc_load_config_info_type_v01 load_config_info;
    uint8_t ind_token_valid;
    uint32_t ind_token;
} pdc_load_config_req_msg_v01;

typedef struct {
    int32_t error;
    uint8_t ind_token_valid;
    uint32_t ind_token;
    uint8_t received_config_size_valid;
    uint32_t received_config_size;
    uint8_t remaining_config_size_valid;
    uint32_t remaining_config_size;
    uint8_t frame_data_reset_valid;
    uint8_t frame_data_reset;
} pdc_load_config_ind_msg_v01;

typedef struct {
    pdc_config_type_enum_v01 config_type;
    uint8_t ind_token_valid;
    uint32_t ind_token;
    uint8_t activation_type_valid;
    uint32_t activation_type;
    uint8_t subscription_id_valid;
    uint32_t subscription_id;
} pdc_activate_config_req_msg_v01;

typedef struct {
    pdc_config_info_req_type_v01 new_config_info;
    uint8_t ind_token_valid;
    uint32_t ind_token;
} pdc_get_config_info_req_msg_v01;

typedef struct {
    int32_t error;
    uint8_t ind_token_valid;
    uint32_t ind_token;
    uint8_t config_size_valid;
    uint32_t config_size;
    uint8_t config_desc_valid;
    uint32_t config_desc_len; /* u8 on the wire */
    uint8_t config_desc[PDC_CONFIG_DESC_SIZE_MAX_V01];
    uint8_t config_version_valid;
    uint32_t config_version;
} pdc_get_config_info_ind_msg_v01;

typedef struct {
    pdc_config_type_enum_v01 config_type;
    uint8_t ind_token_valid;
    uint32_t ind_token;
    uint8_t subscription_id_valid;
    uint32_t subscription_id;
} pdc_deactivate_config_req_msg_v01;

/* Carrier selection of one SIM slot: 0 manual, 1 automatic. */
typedef struct {
    uint32_t slot_id;
    uint8_t ind_token_valid;
    uint32_t ind_token;
    uint8_t selection_mode_valid;
    uint32_t selection_mode;
} pdc_set_feature_req_msg_v01;

#ifdef __cplusplus
extern "C" {
#endif

/* Element tables of the messages above. */
extern struct qmi_elem_info pdc_generic_resp_msg_v01_ei[];
extern struct qmi_elem_info pdc_load_config_resp_msg_v01_ei[];
extern struct qmi_elem_info pdc_generic_ind_msg_v01_ei[];
extern struct qmi_elem_info pdc_indication_register_req_msg_v01_ei[];
extern struct qmi_elem_info pdc_config_change_ind_msg_v01_ei[];
extern struct qmi_elem_info pdc_get_selected_config_req_msg_v01_ei[];
extern struct qmi_elem_info pdc_get_selected_config_ind_msg_v01_ei[];
extern struct qmi_elem_info pdc_set_selected_config_req_msg_v01_ei[];
extern struct qmi_elem_info pdc_list_configs_req_msg_v01_ei[];
extern struct qmi_elem_info pdc_list_configs_ind_msg_v01_ei[];
extern struct qmi_elem_info pdc_delete_config_req_msg_v01_ei[];
extern struct qmi_elem_info pdc_load_config_req_msg_v01_ei[];
extern struct qmi_elem_info pdc_load_config_ind_msg_v01_ei[];
extern struct qmi_elem_info pdc_activate_config_req_msg_v01_ei[];
extern struct qmi_elem_info pdc_get_config_info_req_msg_v01_ei[];
extern struct qmi_elem_info pdc_get_config_info_ind_msg_v01_ei[];
extern struct qmi_elem_info pdc_deactivate_config_req_msg_v01_ei[];
extern struct qmi_elem_info pdc_set_feature_req_msg_v01_ei[];

/* The service object, or null when the versions asked for do not match
 * this definition. */
qmi_idl_service_object_type pdc_get_service_object_internal_v01(int32_t idl_maj_version, int32_t idl_min_version,
                                                                int32_t library_version);

#define pdc_get_service_object_v01()                                                                          \
    pdc_get_service_object_internal_v01(PDC_V01_IDL_MAJOR_VERS, PDC_V01_IDL_MINOR_VERS, PDC_V01_IDL_TOOL_VERS)

#ifdef __cplusplus
}
#endif
#endif
