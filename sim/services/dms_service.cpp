#include "dms_service.h"

#include <stddef.h>
#include <string.h>

#include <string>

#include "at_commands.h"

namespace modemd {
namespace {

constexpr uint32_t k_idl_major = 1;
constexpr uint32_t k_idl_minor = 14;
constexpr uint32_t k_idl_tool = 6;
constexpr size_t k_id_max = 32;
constexpr size_t k_revision_max = 255;
constexpr uint8_t k_tlv_revision = 0x01;
constexpr uint8_t k_tlv_esn = 0x10;
constexpr uint8_t k_tlv_imei = 0x11;
constexpr uint8_t k_tlv_meid = 0x12;
constexpr uint16_t k_qmi_result_failure = 1;
constexpr uint16_t k_qmi_err_not_provisioned = 0x0010;
/* Largest TLV areas of the responses. */
constexpr uint32_t k_ids_resp_max = 7 + 3 * (3 + k_id_max);
constexpr uint32_t k_revision_resp_max = 7 + 3 + k_revision_max;
constexpr const char k_no_cdma_id[] = "0";

struct empty_req {
    char placeholder;
};

struct get_ids_resp {
    qmi_response_type_v01 resp;
    uint8_t esn_valid;
    char esn[k_id_max + 1];
    uint8_t imei_valid;
    char imei[k_id_max + 1];
    uint8_t meid_valid;
    char meid[k_id_max + 1];
};

struct get_revision_resp {
    qmi_response_type_v01 resp;
    char revision[k_revision_max + 1];
};

qmi_elem_info k_empty_ei[] = {
    {QMI_EOTI, 0, 0, NO_ARRAY, 0, 0, nullptr},
};

#define DMS_ID_ROWS(tlv, field)                                                                                    \
    {QMI_OPT_FLAG, 1, sizeof(uint8_t), NO_ARRAY, tlv, offsetof(get_ids_resp, field##_valid), nullptr},            \
        {QMI_STRING, k_id_max, sizeof(char), NO_ARRAY, tlv, offsetof(get_ids_resp, field), nullptr}

qmi_elem_info k_get_ids_resp_ei[] = {
    {QMI_STRUCT, 1, sizeof(qmi_response_type_v01), NO_ARRAY, QMI_RESULT_TLV_TYPE, offsetof(get_ids_resp, resp),
     qmi_response_type_v01_ei},
    DMS_ID_ROWS(k_tlv_esn, esn),
    DMS_ID_ROWS(k_tlv_imei, imei),
    DMS_ID_ROWS(k_tlv_meid, meid),
    {QMI_EOTI, 0, 0, NO_ARRAY, 0, 0, nullptr},
};

qmi_elem_info k_get_revision_resp_ei[] = {
    {QMI_STRUCT, 1, sizeof(qmi_response_type_v01), NO_ARRAY, QMI_RESULT_TLV_TYPE,
     offsetof(get_revision_resp, resp), qmi_response_type_v01_ei},
    {QMI_STRING, k_revision_max, sizeof(char), NO_ARRAY, k_tlv_revision, offsetof(get_revision_resp, revision),
     nullptr},
    {QMI_EOTI, 0, 0, NO_ARRAY, 0, 0, nullptr},
};

const qmi_idl_service_message_table_entry k_requests[] = {
    {k_dms_msg_get_revision, 0, 0, k_empty_ei},
    {k_dms_msg_get_ids, 0, 0, k_empty_ei},
};
const qmi_idl_service_message_table_entry k_responses[] = {
    {k_dms_msg_get_revision, sizeof(get_revision_resp), k_revision_resp_max, k_get_revision_resp_ei},
    {k_dms_msg_get_ids, sizeof(get_ids_resp), k_ids_resp_max, k_get_ids_resp_ei},
};

qmi_idl_service_object g_dms_object = {
    k_idl_tool, k_idl_major, k_dms_service_id, k_revision_resp_max, {2, 2, 0}, {k_requests, k_responses, nullptr},
    nullptr,    k_idl_minor, nullptr,
};

void copy_text(char *dst, size_t cap, const std::string &text)
{
    size_t n = text.size() < cap ? text.size() : cap;
    memcpy(dst, text.data(), n);
}

void get_ids(qmi_call &call, const void *, void *resp_v)
{
    auto *resp = static_cast<get_ids_resp *>(resp_v);
    std::vector<uint8_t> nv;
    std::string imei;
    if (call.d.store().efs_read(k_at_imei_item, &nv) == k_efs_ok) imei = at_imei_from_nv(nv);
    if (imei.empty()) {
        /* No IMEI stored: the modem is not provisioned. */
        resp->resp.result = k_qmi_result_failure;
        resp->resp.error = k_qmi_err_not_provisioned;
        return;
    }
    resp->esn_valid = 1;
    copy_text(resp->esn, k_id_max, k_no_cdma_id);
    resp->imei_valid = 1;
    copy_text(resp->imei, k_id_max, imei);
    resp->meid_valid = 1;
    copy_text(resp->meid, k_id_max, k_no_cdma_id);
}

void get_revision(qmi_call &, const void *, void *resp_v)
{
    copy_text(static_cast<get_revision_resp *>(resp_v)->revision, k_revision_max, k_at_revision);
}

qmi_idl_service_object_type dms_object() { return &g_dms_object; }

const qmi_handler_entry k_handlers[] = {
    {k_dms_msg_get_revision, get_revision},
    {k_dms_msg_get_ids, get_ids},
};

}  // namespace

const sim_service_def g_dms_service_def = {
    "dms", dms_object, 0, k_handlers, sizeof(k_handlers) / sizeof(k_handlers[0]), nullptr,
};

}  // namespace modemd
