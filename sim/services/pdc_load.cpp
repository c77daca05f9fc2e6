/* Load Config: a configuration arrives frame by frame.  Each client has
 * one transfer of its own (a client of the QMUX device is one client id),
 * so frames of two clients never mix; frames of another id (or another
 * total size) start a new one.  Nothing is stored until the last byte has
 * arrived, in order, on the same connection: a transfer is dropped when
 * its connection closes, so a killed or interrupted load leaves nothing
 * behind and the next load of the same file starts afresh. */
#include <string.h>

#include "pdc_service.h"

namespace modemd {
namespace {

struct transfer {
    uint32_t type = 0;
    std::string id;
    uint32_t total = 0;
    std::vector<uint8_t> data;
};

/* Transfers in progress, by connection. */
std::map<uint64_t, transfer> g_transfers;

void drop_transfer(daemon &d, uint64_t conn_id)
{
    auto it = g_transfers.find(conn_id);
    if (it == g_transfers.end()) return;
    d.log("pdc: connection %llu closed: load of %s dropped after %zu of %u bytes", (unsigned long long)conn_id,
          pdc_hex(it->second.id).c_str(), it->second.data.size(), it->second.total);
    g_transfers.erase(it);
}

void send_load_ind(qmi_call &call, uint16_t error, const pdc_load_config_req_msg_v01 &req, const transfer *sizes,
                   bool reset)
{
    pdc_load_config_ind_msg_v01 ind;
    memset(&ind, 0, sizeof(ind));
    ind.error = error;
    ind.ind_token_valid = req.ind_token_valid;
    ind.ind_token = req.ind_token;
    if (sizes) {
        ind.received_config_size_valid = 1;
        ind.received_config_size = uint32_t(sizes->data.size());
        ind.remaining_config_size_valid = 1;
        ind.remaining_config_size = sizes->total - uint32_t(sizes->data.size());
    }
    if (reset) {
        ind.frame_data_reset_valid = 1;
        ind.frame_data_reset = 1;
    }
    pdc_send_ind_later(call, call.msg_id, &ind, sizeof(ind), pdc_rt().load_ind_ms);
}

/* A description for a loaded file: its id when printable. */
std::string describe(const std::string &id)
{
    for (char c : id) {
        if (c < 0x20 || c > 0x7E) return "Loaded configuration";
    }
    return id;
}

/* Checks a new configuration (at its first frame, and again at its last);
 * 0 or the QMI error.  The transfers of other clients hold room for their
 * whole size, so that loads in parallel cannot promise more than the store
 * takes, nor hold more memory than it. */
uint16_t check_new(pdc_state &st, uint32_t type, const std::string &id, uint32_t total, uint64_t conn)
{
    if (st.find(type, id)) return PDC_QMI_ERR_INVALID_ID;
    if (st.configs[type].size() >= k_pdc_max_configs_per_type) return PDC_QMI_ERR_NO_MEMORY;
    uint64_t reserved = 0;
    for (const auto &kv : g_transfers) reserved += kv.first == conn ? 0 : kv.second.total;
    if (st.used_bytes() + reserved + total > st.capacity) return PDC_QMI_ERR_NO_MEMORY;
    return PDC_QMI_ERR_NONE;
}

void store_config(daemon &d, pdc_state &st, const transfer &t)
{
    pdc_config c;
    c.id = t.id;
    c.size = t.total;
    c.desc = describe(c.id);
    if (!pdc_content_save(d.store().dir(), t.type, c.id, t.data)) {
        d.log("pdc: cannot store the content of a loaded configuration");
    }
    st.configs[t.type].push_back(c);
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
    call.d.on_connection_closed("pdc", [&d = call.d](uint64_t conn_id) { drop_transfer(d, conn_id); });
    uint32_t type = uint32_t(info.config_type);
    std::string id(reinterpret_cast<const char *>(info.config_id), info.config_id_len);
    uint64_t conn = call.client.id;
    const pdc_fault *f = pdc_take_fault(call.msg_id);
    if (f && f->kind == PDC_FAULT_NO_IND) return;
    if (f && f->kind == PDC_FAULT_RESET) {
        g_transfers.erase(conn);
        send_load_ind(call, PDC_QMI_ERR_NONE, req, nullptr, true);
        return;
    }
    if (f) return send_load_ind(call, f->code, req, nullptr, false);
    pdc_state &st = pdc_state_of(call.d);
    auto it = g_transfers.find(conn);
    if (it == g_transfers.end() || it->second.type != type || it->second.id != id ||
        it->second.total != info.total_config_size) {
        g_transfers.erase(conn);
        uint16_t error = check_new(st, type, id, info.total_config_size, conn);
        if (error) return send_load_ind(call, error, req, nullptr, false);
        it = g_transfers.emplace(conn, transfer()).first;
        it->second.type = type;
        it->second.id = id;
        it->second.total = info.total_config_size;
    }
    transfer &t = it->second;
    if (info.config_frame_len > t.total - t.data.size()) {
        g_transfers.erase(it);
        return send_load_ind(call, PDC_QMI_ERR_INVALID_ARG, req, nullptr, false);
    }
    t.data.insert(t.data.end(), info.config_frame, info.config_frame + info.config_frame_len);
    if (t.data.size() < t.total) return send_load_ind(call, PDC_QMI_ERR_NONE, req, &t, false);
    /* The last byte: another client may have stored the id, or filled the
     * store, since this transfer began. */
    uint16_t error = check_new(st, type, id, t.total, conn);
    if (error) {
        g_transfers.erase(it);
        return send_load_ind(call, error, req, nullptr, false);
    }
    send_load_ind(call, PDC_QMI_ERR_NONE, req, &t, false);
    store_config(call.d, st, t);
    g_transfers.erase(it);
}

}  // namespace modemd
