/* Load Config: a configuration arrives frame by frame.  The modem keeps
 * one transfer at a time; frames of another id (or another total size)
 * start a new one.  The last frame stores the configuration. */
#include <string.h>

#include "pdc_service.h"

namespace modemd {
namespace {

struct transfer {
    bool active = false;
    uint32_t type = 0;
    std::string id;
    uint32_t total = 0;
    std::vector<uint8_t> data;
};

transfer g_transfer;

void send_load_ind(qmi_call &call, uint16_t error, const pdc_load_config_req_msg_v01 &req, bool with_sizes,
                   bool reset)
{
    pdc_load_config_ind_msg_v01 ind;
    memset(&ind, 0, sizeof(ind));
    ind.error = error;
    ind.ind_token_valid = req.ind_token_valid;
    ind.ind_token = req.ind_token;
    if (with_sizes) {
        ind.received_config_size_valid = 1;
        ind.received_config_size = uint32_t(g_transfer.data.size());
        ind.remaining_config_size_valid = 1;
        ind.remaining_config_size = g_transfer.total - uint32_t(g_transfer.data.size());
    }
    if (reset) {
        ind.frame_data_reset_valid = 1;
        ind.frame_data_reset = 1;
    }
    pdc_send_ind_later(call, call.msg_id, &ind, sizeof(ind));
}

/* A description for a loaded file: its id when printable. */
std::string describe(const std::string &id)
{
    for (char c : id) {
        if (c < 0x20 || c > 0x7E) return "Loaded configuration";
    }
    return id;
}

/* Checks the first frame of a new configuration; 0 or the QMI error. */
uint16_t check_new(pdc_state &st, uint32_t type, const std::string &id, uint32_t total)
{
    if (st.find(type, id)) return PDC_QMI_ERR_INVALID_ID;
    if (st.configs[type].size() >= k_pdc_max_configs_per_type) return PDC_QMI_ERR_NO_MEMORY;
    if (st.used_bytes() + total > st.capacity) return PDC_QMI_ERR_NO_MEMORY;
    return PDC_QMI_ERR_NONE;
}

void store_config(daemon &d, pdc_state &st)
{
    pdc_config c;
    c.id = g_transfer.id;
    c.size = g_transfer.total;
    c.desc = describe(c.id);
    if (!pdc_content_save(d.store().dir(), g_transfer.type, c.id, g_transfer.data)) {
        d.log("pdc: cannot store the content of a loaded configuration");
    }
    st.configs[g_transfer.type].push_back(c);
    pdc_save(d);
    d.counters()["pdc.loads"]++;
}

}  // namespace

void pdc_handle_load(qmi_call &call, const void *req_v, void *resp_v)
{
    const auto &req = *static_cast<const pdc_load_config_req_msg_v01 *>(req_v);
    const pdc_load_config_info_type_v01 &info = req.load_config_info;
    auto &resp = *static_cast<pdc_load_config_resp_msg_v01 *>(resp_v);
    if (info.config_type >= pdc_config_type_enum_v01(k_pdc_types) || info.config_id_len == 0 ||
        info.total_config_size == 0) {
        resp.resp.result = 1;
        resp.resp.error = PDC_QMI_ERR_INVALID_ARG;
        return;
    }
    call.d.counters()["pdc.load_frames"]++;
    uint32_t type = uint32_t(info.config_type);
    std::string id(reinterpret_cast<const char *>(info.config_id), info.config_id_len);
    const pdc_fault *f = pdc_take_fault(call.msg_id);
    if (f && f->kind == PDC_FAULT_NO_IND) return;
    if (f && f->kind == PDC_FAULT_RESET) {
        g_transfer = transfer();
        send_load_ind(call, PDC_QMI_ERR_NONE, req, false, true);
        return;
    }
    if (f) return send_load_ind(call, f->code, req, false, false);
    pdc_state &st = pdc_state_of(call.d);
    if (!g_transfer.active || g_transfer.type != type || g_transfer.id != id || g_transfer.total != info.total_config_size) {
        uint16_t error = check_new(st, type, id, info.total_config_size);
        if (error) return send_load_ind(call, error, req, false, false);
        g_transfer = transfer();
        g_transfer.active = true;
        g_transfer.type = type;
        g_transfer.id = id;
        g_transfer.total = info.total_config_size;
    }
    if (info.config_frame_len > g_transfer.total - g_transfer.data.size()) {
        g_transfer = transfer();
        return send_load_ind(call, PDC_QMI_ERR_INVALID_ARG, req, false, false);
    }
    g_transfer.data.insert(g_transfer.data.end(), info.config_frame, info.config_frame + info.config_frame_len);
    send_load_ind(call, PDC_QMI_ERR_NONE, req, true, false);
    if (g_transfer.data.size() == g_transfer.total) {
        store_config(call.d, st);
        g_transfer = transfer();
    }
}

}  // namespace modemd
