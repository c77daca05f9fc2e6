/* IDL service-object accessors and message encode/decode over the element
 * tables of each message. */
#include <string.h>

#include "qmi_codec.h"
#include "qmi_idl_lib.h"

namespace {

constexpr uint32_t k_min_library_version = 1;
constexpr uint32_t k_max_library_version = 6;

bool service_ok(const qmi_idl_service_object_type svc)
{
    return svc && svc->library_version >= k_min_library_version && svc->library_version <= k_max_library_version;
}

int32_t check(const qmi_idl_service_object_type svc, const void *out)
{
    if (!svc || !out) return QMI_IDL_LIB_PARAMETER_ERROR;
    if (!service_ok(svc)) return QMI_IDL_LIB_UNRECOGNIZED_SERVICE_VERSION;
    return QMI_IDL_LIB_NO_ERR;
}

const char k_common_type_table[] = "common_v01";

}  // namespace

/* Checks the service and finds one message entry. */
static int32_t check_message(const qmi_idl_service_object_type svc, qmi_idl_type_of_message_type type,
                             uint16_t msg_id, const void *out, const qmi_idl_service_message_table_entry **m)
{
    int32_t r = check(svc, out);
    if (r) return r;
    *m = qmi_idl_find_message(svc, type, msg_id);
    return *m ? 0 : QMI_IDL_LIB_MESSAGE_ID_NOT_FOUND;
}

extern "C" {

const void *common_qmi_idl_type_table_object_v01 = k_common_type_table;

const qmi_idl_service_message_table_entry *qmi_idl_find_message(const qmi_idl_service_object_type svc,
                                                                qmi_idl_type_of_message_type type,
                                                                uint16_t msg_id)
{
    if (!service_ok(svc) || type < QMI_IDL_REQUEST || type >= QMI_IDL_NUM_MSG_TYPES) return nullptr;
    const qmi_idl_service_message_table_entry *table = svc->msgid_to_msg[type];
    /* Tables are sorted by message id. */
    size_t lo = 0, hi = svc->n_msgs[type];
    while (lo < hi) {
        size_t mid = lo + (hi - lo) / 2;
        if (table[mid].qmi_message_id == msg_id) return &table[mid];
        if (table[mid].qmi_message_id < msg_id) {
            lo = mid + 1;
        } else {
            hi = mid;
        }
    }
    return nullptr;
}

int32_t qmi_idl_get_service_id(const qmi_idl_service_object_type svc, uint32_t *service_id)
{
    int32_t r = check(svc, service_id);
    if (r == 0) *service_id = svc->service_id;
    return r;
}

int32_t qmi_idl_get_idl_version(const qmi_idl_service_object_type svc, uint32_t *idl_version)
{
    int32_t r = check(svc, idl_version);
    if (r == 0) *idl_version = svc->idl_version;
    return r;
}

int32_t qmi_idl_get_idl_minor_version(const qmi_idl_service_object_type svc, uint32_t *idl_version)
{
    int32_t r = check(svc, idl_version);
    if (r == 0 && svc->library_version < 5) r = QMI_IDL_LIB_UNRECOGNIZED_SERVICE_VERSION;
    if (r == 0) *idl_version = svc->idl_minor_version;
    return r;
}

int32_t qmi_idl_get_max_service_len(const qmi_idl_service_object_type svc, uint32_t *service_len)
{
    int32_t r = check(svc, service_len);
    if (r == 0) *service_len = svc->max_msg_len;
    return r;
}

int32_t qmi_idl_get_max_message_len(const qmi_idl_service_object_type svc, qmi_idl_type_of_message_type type,
                                    uint16_t msg_id, uint32_t *len)
{
    const qmi_idl_service_message_table_entry *m = nullptr;
    int32_t r = check_message(svc, type, msg_id, len, &m);
    if (r == 0) *len = m->max_msg_len;
    return r;
}

int32_t qmi_idl_get_message_c_struct_len(const qmi_idl_service_object_type svc, qmi_idl_type_of_message_type type,
                                         uint16_t msg_id, uint32_t *c_struct_len)
{
    const qmi_idl_service_message_table_entry *m = nullptr;
    int32_t r = check_message(svc, type, msg_id, c_struct_len, &m);
    if (r == 0) *c_struct_len = m->c_struct_sz;
    return r;
}

int32_t qmi_idl_message_encode(const qmi_idl_service_object_type svc, qmi_idl_type_of_message_type type,
                               uint16_t msg_id, const void *p_src, uint32_t src_len, void *p_dst, uint32_t dst_len,
                               uint32_t *dst_encoded_len)
{
    int32_t r = check(svc, dst_encoded_len);
    if (r) return r;
    const qmi_idl_service_message_table_entry *m = qmi_idl_find_message(svc, type, msg_id);
    if (!m) return QMI_IDL_LIB_MESSAGE_ID_NOT_FOUND;
    if (m->c_struct_sz && (!p_src || src_len < m->c_struct_sz)) return QMI_IDL_LIB_PARAMETER_ERROR;
    size_t out = 0;
    static const char k_empty = 0;
    r = qmi_codec_encode(m->ei, p_src ? p_src : &k_empty, static_cast<uint8_t *>(p_dst), dst_len, &out);
    if (r == 0) *dst_encoded_len = uint32_t(out);
    return r;
}

int32_t qmi_idl_message_decode(const qmi_idl_service_object_type svc, qmi_idl_type_of_message_type type,
                               uint16_t msg_id, const void *p_src, uint32_t src_len, void *p_dst, uint32_t dst_len)
{
    int32_t r = check(svc, p_dst);
    if (r) return r;
    const qmi_idl_service_message_table_entry *m = qmi_idl_find_message(svc, type, msg_id);
    if (!m) return QMI_IDL_LIB_MESSAGE_ID_NOT_FOUND;
    if (dst_len < m->c_struct_sz) return QMI_IDL_LIB_BUFFER_TOO_SMALL;
    return qmi_codec_decode(m->ei, static_cast<const uint8_t *>(p_src), src_len, p_dst, m->c_struct_sz);
}

}  // extern "C"
