/* The SAR (specific absorption rate) QMI service, 0x11, as far as the tool
 * and the simulated modem use it: RF Set State (0x0001) and RF Get State
 * (0x0002), laid out as the public SAR messages are.  Shared by the tool
 * and the modem simulator. */
#ifndef SAR_SERVICE_V01_H
#define SAR_SERVICE_V01_H

#include <stddef.h>
#include <stdint.h>

#include "qmi_idl_lib.h"

#define SAR_SERVICE_ID_V01 0x11
#define SAR_V01_IDL_MAJOR_VERS 0x01
#define SAR_V01_IDL_MINOR_VERS 0x01
#define SAR_V01_IDL_TOOL_VERS 0x06

#define QMI_SAR_RF_SET_STATE_REQ_MSG_V01 0x0001
#define QMI_SAR_RF_SET_STATE_RESP_MSG_V01 0x0001
#define QMI_SAR_RF_GET_STATE_REQ_MSG_V01 0x0002
#define QMI_SAR_RF_GET_STATE_RESP_MSG_V01 0x0002

/* TLV ids: the state of a set request (mandatory) and of a get response
 * (optional, present on success). */
#define SAR_RF_STATE_REQ_TLV 0x01
#define SAR_RF_STATE_RESP_TLV 0x10

/* States the modem accepts. */
#define SAR_RF_STATE_MAX_V01 20

/* Largest TLV areas: the set request (3 + 4), the get response (7 + 3 + 4). */
#define SAR_SET_REQ_MAX_LEN 7
#define SAR_RESULT_ONLY_MAX_LEN 7
#define SAR_GET_RESP_MAX_LEN 14

typedef struct {
    uint32_t sar_rf_state;
} sar_rf_set_sar_state_req_msg_v01;

typedef struct {
    struct qmi_response_type_v01 resp;
} sar_rf_set_sar_state_resp_msg_v01;

/* The get request carries no TLV. */
typedef struct {
    char __placeholder;
} sar_rf_get_sar_state_req_msg_v01;

typedef struct {
    struct qmi_response_type_v01 resp;
    uint8_t sar_rf_state_valid;
    uint32_t sar_rf_state;
} sar_rf_get_sar_state_resp_msg_v01;

#ifdef __cplusplus
extern "C" {
#endif

extern struct qmi_elem_info sar_rf_set_sar_state_req_msg_v01_ei[];
extern struct qmi_elem_info sar_rf_set_sar_state_resp_msg_v01_ei[];
extern struct qmi_elem_info sar_rf_get_sar_state_req_msg_v01_ei[];
extern struct qmi_elem_info sar_rf_get_sar_state_resp_msg_v01_ei[];

/* The service object, or null when the versions asked for do not match. */
qmi_idl_service_object_type sar_get_service_object_internal_v01(int32_t idl_maj_version, int32_t idl_min_version,
                                                                int32_t library_version);

#define sar_get_service_object_v01()                                                                 \
    sar_get_service_object_internal_v01(SAR_V01_IDL_MAJOR_VERS, SAR_V01_IDL_MINOR_VERS,              \
                                        SAR_V01_IDL_TOOL_VERS)

#ifdef __cplusplus
}
#endif
#endif
