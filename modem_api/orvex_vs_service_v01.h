/* The vendor statistics QMI service ("vs" service): the modem-side
 * statistics framework that option 9 reads.  Shared by the tool and the
 * modem simulator.  Messages, TLVs and record layouts:
 * docs/vendor-stats-service.md.
 *
 * Every response starts with a 32-bit result and a 32-bit error code (the
 * width QMI result enums have in C); on the wire they travel as the
 * standard result TLV 0x02 (u16 result, u16 error). */
#ifndef ORVEX_VS_SERVICE_V01_H
#define ORVEX_VS_SERVICE_V01_H

#include <stddef.h>
#include <stdint.h>

#include "qmi_idl_lib.h"

#define ORVEX_VS_SERVICE_ID 0xFFE5
#define ORVEX_VS_V01_IDL_MAJOR_VERS 0x01
#define ORVEX_VS_V01_IDL_MINOR_VERS 0x01
#define ORVEX_VS_V01_IDL_TOOL_VERS 0x06

/* Message ids. */
#define ORVEX_VS_COMMAND_MSG_ID_V01 0x0000            /* request/response: generic command */
#define ORVEX_VS_FEATURE_STATUS_IND_V01 0x0004        /* indication */
#define ORVEX_VS_SET_FEATURE_STATUS_MSG_ID_V01 0x0201 /* request/response */
#define ORVEX_VS_STATS_REPORT_IND_V01 0x0203          /* indication */
#define ORVEX_VS_ANT_STATE_IND_V01 0x0204             /* indication */
#define ORVEX_VS_CELL_CHANGE_IND_V01 0x0205           /* indication, not consumed by the tool */
#define ORVEX_VS_GET_STATS_MSG_ID_V01 0x0207          /* request/response */
#define ORVEX_VS_MODEM_EVENT_IND_V01 0x0601           /* indication */

/* Limits. */
#define ORVEX_VS_DATA_MAX 700          /* data bytes of one statistics item */
#define ORVEX_VS_GET_STATS_LIST_MAX 10 /* ids asked for / items answered in 0x0207 */
#define ORVEX_VS_REPORT_PRIMARY_MAX 16 /* items of the first list of 0x0203 */
#define ORVEX_VS_REPORT_SECONDARY_MAX 8
#define ORVEX_VS_ANT_STATE_MAX 255     /* antenna state bytes of 0x0204 */
#define ORVEX_VS_COMMAND_DATA_MAX 512
#define ORVEX_VS_SUB_MAX 2             /* subscriptions 0 and 1 */

/* Feature status values of 0x0201. */
#define ORVEX_VS_FEATURE_STOP 0
#define ORVEX_VS_FEATURE_START 1

/* One statistics item: 712 bytes in memory and on the wire.  `data` always
 * travels whole; `data_len` says how much of it is meaningful. */
typedef struct {
    uint16_t data_id;      /* statistics data id */
    uint16_t sub;          /* subscription the item belongs to */
    uint32_t update_count; /* how often the modem refreshed the item */
    uint32_t data_len;
    uint8_t data[ORVEX_VS_DATA_MAX];
} orvex_vs_stats_data_type_v01;

static_assert(sizeof(orvex_vs_stats_data_type_v01) == 712, "a statistics item is 712 bytes");

/* 0x0000 generic command: a command word and a payload, answered with a
 * payload (command 0 echoes, command 1 reports the service version). */
typedef struct {
    uint32_t cmd;
    uint8_t data_valid;
    uint32_t data_len;
    uint8_t data[ORVEX_VS_COMMAND_DATA_MAX];
} orvex_vs_command_req_msg_v01;

typedef struct {
    uint32_t result;
    uint32_t error;
    uint32_t data_len;
    uint8_t data[ORVEX_VS_COMMAND_DATA_MAX];
} orvex_vs_command_resp_msg_v01;

/* 0x0201: start (1) or stop (0) statistics collection. */
typedef struct {
    uint8_t feature_status;
} orvex_vs_set_feature_status_req_msg_v01;

typedef struct {
    uint32_t result;
    uint32_t error;
} orvex_vs_set_feature_status_resp_msg_v01;

/* 0x0207: the items of the listed data ids of one subscription. */
typedef struct {
    uint8_t sub;
    uint8_t data_id_list_len;
    uint16_t data_id_list[ORVEX_VS_GET_STATS_LIST_MAX];
} orvex_vs_get_stats_req_msg_v01;

typedef struct {
    uint32_t result;
    uint32_t error;
    uint8_t data_list_valid;
    uint32_t data_list_len;
    orvex_vs_stats_data_type_v01 data_list[ORVEX_VS_GET_STATS_LIST_MAX];
} orvex_vs_get_stats_resp_msg_v01;

/* The response of 0x0207 fills the tool's 7136-byte response buffer. */
#define ORVEX_VS_GET_STATS_RESP_BUF_LEN 7136
static_assert(sizeof(orvex_vs_get_stats_resp_msg_v01) == ORVEX_VS_GET_STATS_RESP_BUF_LEN,
              "the 0x0207 response is 7136 bytes");

/* 0x0004: the framework's feature status changed. */
typedef struct {
    uint32_t feature_mask;
    uint8_t enabled;    /* collection enabled (any non-zero value) */
    uint8_t collecting; /* items being refreshed right now */
} orvex_vs_feature_status_ind_msg_v01;

/* 0x0203: a periodic report of items. */
typedef struct {
    uint32_t report_id;
    uint32_t primary_list_len;
    orvex_vs_stats_data_type_v01 primary_list[ORVEX_VS_REPORT_PRIMARY_MAX];
    uint32_t secondary_list_len;
    orvex_vs_stats_data_type_v01 secondary_list[ORVEX_VS_REPORT_SECONDARY_MAX];
    uint8_t interval_ms_valid;
    uint32_t interval_ms;
} orvex_vs_stats_report_ind_msg_v01;

/* 0x0204: antenna switch state, one byte per antenna path. */
typedef struct {
    uint32_t sub;
    uint32_t ant_state_len;
    uint8_t ant_state[ORVEX_VS_ANT_STATE_MAX];
    uint16_t rx_path_mask;
    uint16_t tx_path_mask;
} orvex_vs_ant_state_ind_msg_v01;

/* 0x0205: the serving cell changed (informational). */
typedef struct {
    uint32_t sub;
    uint32_t earfcn;
} orvex_vs_cell_change_ind_msg_v01;

/* 0x0601: a modem event code. */
typedef struct {
    uint8_t event;
} orvex_vs_modem_event_ind_msg_v01;

#ifdef __cplusplus
extern "C" {
#endif

extern struct qmi_elem_info orvex_vs_stats_data_type_v01_ei[];
extern struct qmi_elem_info orvex_vs_command_req_msg_v01_ei[];
extern struct qmi_elem_info orvex_vs_command_resp_msg_v01_ei[];
extern struct qmi_elem_info orvex_vs_set_feature_status_req_msg_v01_ei[];
extern struct qmi_elem_info orvex_vs_set_feature_status_resp_msg_v01_ei[];
extern struct qmi_elem_info orvex_vs_get_stats_req_msg_v01_ei[];
extern struct qmi_elem_info orvex_vs_get_stats_resp_msg_v01_ei[];
extern struct qmi_elem_info orvex_vs_feature_status_ind_msg_v01_ei[];
extern struct qmi_elem_info orvex_vs_stats_report_ind_msg_v01_ei[];
extern struct qmi_elem_info orvex_vs_ant_state_ind_msg_v01_ei[];
extern struct qmi_elem_info orvex_vs_cell_change_ind_msg_v01_ei[];
extern struct qmi_elem_info orvex_vs_modem_event_ind_msg_v01_ei[];

/* The service object, or null when the versions asked for do not match. */
qmi_idl_service_object_type orvex_vs_get_service_object_internal_v01(int32_t idl_maj_version,
                                                                     int32_t idl_min_version,
                                                                     int32_t library_version);

#define orvex_vs_get_service_object_v01()                                                                   \
    orvex_vs_get_service_object_internal_v01(ORVEX_VS_V01_IDL_MAJOR_VERS, ORVEX_VS_V01_IDL_MINOR_VERS,    \
                                             ORVEX_VS_V01_IDL_TOOL_VERS)

#ifdef __cplusplus
}
#endif
#endif
