/* QMI IDL service objects.
 *
 * A service object names a QMI service (id, IDL versions, largest message)
 * and lists its messages by kind.  Each message entry carries the size of
 * its C structure and the element table that describes how that structure
 * travels as TLVs (libqrtr's `struct qmi_elem_info` model: one row per C
 * field, rows with the same TLV id form one TLV).  The same tables encode a
 * request in the tool and decode it in the modem simulator. */
#ifndef RLK_PLATFORM_QMI_IDL_LIB_H
#define RLK_PLATFORM_QMI_IDL_LIB_H

#include <stdint.h>
#include <libqrtr.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef enum {
    QMI_IDL_REQUEST = 0,
    QMI_IDL_RESPONSE = 1,
    QMI_IDL_INDICATION = 2,
    QMI_IDL_NUM_MSG_TYPES = 3
} qmi_idl_type_of_message_type;

#define QMI_IDL_LIB_NO_ERR 0
#define QMI_IDL_LIB_EXTENDED_ERR (-40)
#define QMI_IDL_LIB_BUFFER_TOO_SMALL (-41)
#define QMI_IDL_LIB_ARRAY_TOO_BIG (-42)
#define QMI_IDL_LIB_MESSAGE_ID_NOT_FOUND (-43)
#define QMI_IDL_LIB_TLV_DUPLICATED (-44)
#define QMI_IDL_LIB_LENGTH_INCONSISTENCY (-45)
#define QMI_IDL_LIB_MISSING_TLV (-46)
#define QMI_IDL_LIB_PARAMETER_ERROR (-47)
#define QMI_IDL_LIB_UNRECOGNIZED_SERVICE_VERSION (-48)
#define QMI_IDL_LIB_UNKNOWN_MANDATORY_TLV (-49)
#define QMI_IDL_LIB_INCOMPATIBLE_SERVICE_VERSION (-50)
#define QMI_IDL_LIB_RANGE_FAILURE (-51)

/* Encoder/decoder format version of the service objects. */
#define QMI_IDL_LIB_ENCDEC_VERSION 6

/* One message of a service: its id, the size of its C structure, the
 * largest encoded size of its TLV area and its element table. */
typedef struct qmi_idl_service_message_table_entry {
    uint16_t qmi_message_id;
    uint32_t c_struct_sz;
    uint16_t max_msg_len;
    struct qmi_elem_info *ei;
} qmi_idl_service_message_table_entry;

struct qmi_idl_service_object {
    uint32_t library_version;
    uint32_t idl_version;
    uint32_t service_id;
    uint32_t max_msg_len;
    uint16_t n_msgs[QMI_IDL_NUM_MSG_TYPES];
    /* Per kind, sorted by message id. */
    const qmi_idl_service_message_table_entry *msgid_to_msg[QMI_IDL_NUM_MSG_TYPES];
    const void *p_type_table;
    uint32_t idl_minor_version;
    struct qmi_idl_service_object *parent_service_obj;
};

typedef struct qmi_idl_service_object *qmi_idl_service_object_type;

int32_t qmi_idl_get_service_id(const qmi_idl_service_object_type p_service, uint32_t *service_id);
int32_t qmi_idl_get_idl_version(const qmi_idl_service_object_type p_service, uint32_t *idl_version);
int32_t qmi_idl_get_idl_minor_version(const qmi_idl_service_object_type p_service, uint32_t *idl_version);
int32_t qmi_idl_get_max_service_len(const qmi_idl_service_object_type p_service, uint32_t *service_len);
int32_t qmi_idl_get_max_message_len(const qmi_idl_service_object_type p_service,
                                    qmi_idl_type_of_message_type message_type, uint16_t message_id,
                                    uint32_t *message_len);
int32_t qmi_idl_get_message_c_struct_len(const qmi_idl_service_object_type p_service,
                                         qmi_idl_type_of_message_type message_type, uint16_t message_id,
                                         uint32_t *c_struct_len);

/* Looks up one message entry; null when the service has no such message. */
const qmi_idl_service_message_table_entry *qmi_idl_find_message(const qmi_idl_service_object_type p_service,
                                                                qmi_idl_type_of_message_type message_type,
                                                                uint16_t message_id);

/* Encodes a C structure into the TLV area of a message (no QMI header). */
int32_t qmi_idl_message_encode(const qmi_idl_service_object_type p_service,
                               qmi_idl_type_of_message_type message_type, uint16_t message_id,
                               const void *p_src, uint32_t src_len, void *p_dst, uint32_t dst_len,
                               uint32_t *dst_encoded_len);

/* Decodes the TLV area of a message into a zeroed C structure. */
int32_t qmi_idl_message_decode(const qmi_idl_service_object_type p_service,
                               qmi_idl_type_of_message_type message_type, uint16_t message_id,
                               const void *p_src, uint32_t src_len, void *p_dst, uint32_t dst_len);

/* The standard result TLV (0x02: u16 result, u16 error) is
 * `struct qmi_response_type_v01`, described by `qmi_response_type_v01_ei`
 * (both from libqrtr.h); every response that carries it nests that table. */
#define QMI_RESULT_TLV_TYPE 0x02

/* The referenced common IDL (it holds qmi_response_type_v01). */
extern const void *common_qmi_idl_type_table_object_v01;

#ifdef __cplusplus
}
#endif
#endif
