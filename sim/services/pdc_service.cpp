/* The PDC service: handler table, selection, activation, deletion and
 * configuration info. */
#include "pdc_service.h"

#include <string.h>

#include <memory>

namespace modemd {
namespace {

constexpr uint16_t k_resp_failure = 1;

void refuse(void *resp_v, uint16_t error)
{
    pdc_generic_resp_msg_v01 &resp = *static_cast<pdc_generic_resp_msg_v01 *>(resp_v);
    resp.resp.result = k_resp_failure;
    resp.resp.error = error;
}

std::string id_of(uint32_t len, const uint8_t *bytes)
{
    return std::string(reinterpret_cast<const char *>(bytes), len);
}

bool type_ok(uint32_t type) { return type < k_pdc_types; }

uint32_t sub_of(uint8_t valid, uint32_t sub) { return valid ? sub : 0; }

void handle_indication_register(qmi_call &, const void *, void *) {}

void handle_get_selected(qmi_call &call, const void *req_v, void *resp)
{
    const auto &req = *static_cast<const pdc_get_selected_config_req_msg_v01 *>(req_v);
    uint32_t sub = sub_of(req.subscription_id_valid, req.subscription_id);
    if (!type_ok(req.config_type) || sub >= k_pdc_subs) return refuse(resp, PDC_QMI_ERR_NOT_SUPPORTED);
    const pdc_selection &sel = pdc_state_of(call.d).selected[req.config_type][sub];
    pdc_get_selected_config_ind_msg_v01 ind;
    memset(&ind, 0, sizeof(ind));
    ind.ind_token_valid = req.ind_token_valid;
    ind.ind_token = req.ind_token;
    if (!sel.active.empty()) {
        ind.active_config_id_valid = 1;
        ind.active_config_id_len = uint32_t(sel.active.size());
        memcpy(ind.active_config_id, sel.active.data(), sel.active.size());
    }
    if (!sel.pending.empty()) {
        ind.pending_config_id_valid = 1;
        ind.pending_config_id_len = uint32_t(sel.pending.size());
        memcpy(ind.pending_config_id, sel.pending.data(), sel.pending.size());
    }
    const pdc_fault *f = pdc_take_fault(call.msg_id);
    if (f && f->kind == PDC_FAULT_NO_IND) return;
    if (f) {
        pdc_reply_generic(call, f->code, req.ind_token_valid, req.ind_token);
        return;
    }
    pdc_send_ind_later(call, call.msg_id, &ind, sizeof(ind));
}

void handle_select(qmi_call &call, const void *req_v, void *resp)
{
    const auto &req = *static_cast<const pdc_set_selected_config_req_msg_v01 *>(req_v);
    const pdc_config_info_req_type_v01 &info = req.new_config_info;
    uint32_t sub = sub_of(req.subscription_id_valid, req.subscription_id);
    if (!type_ok(info.config_type) || sub >= k_pdc_subs) return refuse(resp, PDC_QMI_ERR_NOT_SUPPORTED);
    pdc_state &st = pdc_state_of(call.d);
    std::string id = id_of(info.config_id_len, info.config_id);
    uint16_t error = PDC_QMI_ERR_NONE;
    if (!st.find(info.config_type, id)) {
        error = PDC_QMI_ERR_INVALID_ID;
    } else {
        st.selected[info.config_type][sub].pending = id;
        pdc_save(call.d);
    }
    pdc_reply_generic(call, error, req.ind_token_valid, req.ind_token);
}

void handle_delete(qmi_call &call, const void *req_v, void *resp)
{
    const auto &req = *static_cast<const pdc_delete_config_req_msg_v01 *>(req_v);
    if (!type_ok(req.config_type) || !req.config_id_valid) return refuse(resp, PDC_QMI_ERR_NOT_SUPPORTED);
    pdc_state &st = pdc_state_of(call.d);
    std::string id = id_of(req.config_id_len, req.config_id);
    uint16_t error = PDC_QMI_ERR_NONE;
    if (!st.find(req.config_type, id)) {
        error = PDC_QMI_ERR_INVALID_ID;
    } else if (st.is_active(req.config_type, id)) {
        error = PDC_QMI_ERR_INCOMPATIBLE_STATE; /* in use */
    } else {
        auto &list = st.configs[req.config_type];
        for (auto it = list.begin(); it != list.end(); ++it) {
            if (it->id == id) {
                list.erase(it);
                break;
            }
        }
        for (pdc_selection &sel : st.selected[req.config_type]) {
            if (sel.pending == id) sel.pending.clear();
        }
        pdc_save(call.d);
        pdc_content_remove(call.d.store().dir(), req.config_type, id);
    }
    pdc_reply_generic(call, error, req.ind_token_valid, req.ind_token);
}

void finish_activation(daemon &d, uint32_t type, uint32_t sub, uint32_t token_valid, uint32_t token,
                       uint64_t conn_id, connection *conn)
{
    pdc_state &st = pdc_state_of(d);
    pdc_selection &sel = st.selected[type][sub];
    if (!sel.pending.empty()) {
        sel.active = sel.pending;
        sel.pending.clear();
        pdc_save(d);
    }
    d.counters()["pdc.activations"]++;
    d.log("pdc: configuration of type %u activated on subscription %u (client %llu)", type, sub,
          (unsigned long long)conn_id);
    pdc_generic_ind_msg_v01 ind = {PDC_QMI_ERR_NONE, uint8_t(token_valid), token};
    sim_service *svc = d.find_service(g_pdc_service_def.name);
    if (svc) d.send_indication(*svc, QMI_PDC_ACTIVATE_CONFIG_REQ_V01, &ind, conn);
    d.loop().add_timer(k_pdc_restart_gap_ms, [&d] { pdc_subsystem_restart(d); });
}

void handle_activate(qmi_call &call, const void *req_v, void *resp)
{
    const auto &req = *static_cast<const pdc_activate_config_req_msg_v01 *>(req_v);
    uint32_t sub = sub_of(req.subscription_id_valid, req.subscription_id);
    if (!type_ok(req.config_type) || sub >= k_pdc_subs) return refuse(resp, PDC_QMI_ERR_NOT_SUPPORTED);
    const pdc_selection &sel = pdc_state_of(call.d).selected[req.config_type][sub];
    const pdc_fault *f = pdc_take_fault(call.msg_id);
    if (f && f->kind == PDC_FAULT_NO_IND) return;
    if (f || sel.pending.empty()) {
        pdc_generic_ind_msg_v01 ind = {f ? f->code : PDC_QMI_ERR_NOT_PROVISIONED, req.ind_token_valid,
                                       req.ind_token};
        pdc_send_ind_later(call, call.msg_id, &ind, sizeof(ind));
        return;
    }
    daemon &d = call.d;
    uint32_t type = req.config_type, token_valid = req.ind_token_valid, token = req.ind_token;
    uint64_t conn_id = call.client.id;
    connection *conn = &call.client;
    d.loop().add_timer(pdc_rt().activation_ms, [&d, type, sub, token_valid, token, conn_id, conn] {
        finish_activation(d, type, sub, token_valid, token, conn_id, conn);
    });
}

void handle_deactivate(qmi_call &call, const void *req_v, void *resp)
{
    const auto &req = *static_cast<const pdc_deactivate_config_req_msg_v01 *>(req_v);
    uint32_t sub = sub_of(req.subscription_id_valid, req.subscription_id);
    if (!type_ok(req.config_type) || sub >= k_pdc_subs) return refuse(resp, PDC_QMI_ERR_NOT_SUPPORTED);
    pdc_selection &sel = pdc_state_of(call.d).selected[req.config_type][sub];
    uint16_t error = PDC_QMI_ERR_NONE;
    if (sel.active.empty() && sel.pending.empty()) {
        error = PDC_QMI_ERR_NOT_PROVISIONED;
    } else {
        sel.active.clear();
        sel.pending.clear();
        pdc_save(call.d);
    }
    pdc_reply_generic(call, error, req.ind_token_valid, req.ind_token);
}

void handle_config_info(qmi_call &call, const void *req_v, void *resp)
{
    const auto &req = *static_cast<const pdc_get_config_info_req_msg_v01 *>(req_v);
    const pdc_config_info_req_type_v01 &info = req.new_config_info;
    if (!type_ok(info.config_type)) return refuse(resp, PDC_QMI_ERR_NOT_SUPPORTED);
    const pdc_config *c = pdc_state_of(call.d).find(info.config_type, id_of(info.config_id_len, info.config_id));
    const pdc_fault *f = pdc_take_fault(call.msg_id);
    if (f && f->kind == PDC_FAULT_NO_IND) return;
    if (f || !c) {
        pdc_reply_generic(call, f ? f->code : PDC_QMI_ERR_INVALID_ID, req.ind_token_valid, req.ind_token);
        return;
    }
    auto ind = std::make_unique<pdc_get_config_info_ind_msg_v01>();
    memset(ind.get(), 0, sizeof(*ind));
    ind->ind_token_valid = req.ind_token_valid;
    ind->ind_token = req.ind_token;
    ind->config_size_valid = 1;
    ind->config_size = c->size;
    ind->config_desc_valid = 1;
    ind->config_desc_len = uint32_t(c->desc.size() < PDC_CONFIG_DESC_SIZE_MAX_V01 ? c->desc.size()
                                                                                 : PDC_CONFIG_DESC_SIZE_MAX_V01);
    memcpy(ind->config_desc, c->desc.data(), ind->config_desc_len);
    ind->config_version_valid = 1;
    ind->config_version = c->version;
    pdc_send_ind_later(call, call.msg_id, ind.get(), sizeof(*ind));
}

void handle_set_feature(qmi_call &call, const void *req_v, void *resp)
{
    const auto &req = *static_cast<const pdc_set_feature_req_msg_v01 *>(req_v);
    if (req.slot_id >= k_pdc_slots) return refuse(resp, PDC_QMI_ERR_NOT_SUPPORTED);
    if (req.selection_mode_valid) {
        pdc_state_of(call.d).selection_mode[req.slot_id] = req.selection_mode;
        pdc_save(call.d);
    }
    pdc_reply_generic(call, PDC_QMI_ERR_NONE, req.ind_token_valid, req.ind_token);
}

void pdc_fill_error(void *resp, int code) { refuse(resp, uint16_t(code)); }

qmi_idl_service_object_type pdc_object() { return pdc_get_service_object_v01(); }

const qmi_handler_entry k_handlers[] = {
    {QMI_PDC_INDICATION_REGISTER_REQ_V01, handle_indication_register},
    {QMI_PDC_GET_SELECTED_CONFIG_REQ_V01, handle_get_selected},
    {QMI_PDC_SET_SELECTED_CONFIG_REQ_V01, handle_select},
    {QMI_PDC_LIST_CONFIGS_REQ_V01, pdc_handle_list},
    {QMI_PDC_DELETE_CONFIG_REQ_V01, handle_delete},
    {QMI_PDC_LOAD_CONFIG_REQ_V01, pdc_handle_load},
    {QMI_PDC_ACTIVATE_CONFIG_REQ_V01, handle_activate},
    {QMI_PDC_GET_CONFIG_INFO_REQ_V01, handle_config_info},
    {QMI_PDC_DEACTIVATE_CONFIG_REQ_V01, handle_deactivate},
    {QMI_PDC_SET_FEATURE_REQ_V01, handle_set_feature},
};

}  // namespace

const sim_service_def g_pdc_service_def = {
    "pdc", pdc_object, 0, k_handlers, sizeof(k_handlers) / sizeof(k_handlers[0]), pdc_fill_error, pdc_control,
    "  pdc show | pdc reset | pdc clear [hw|sw] | pdc add hw|sw <id> [size] | pdc fill hw|sw <count>\n"
    "  pdc fail <msg> nomem|exists|reset|nombn|noind|error <code> [count] | pdc clear-faults\n"
    "  pdc timing <activation_ms> <restart_ms> | pdc load-delay <ms> | pdc capacity <bytes>\n",
};

}  // namespace modemd
