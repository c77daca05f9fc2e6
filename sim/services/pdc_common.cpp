/* Shared pieces of the PDC service: faults armed by tests, the state of
 * this daemon, indications sent after the response, the list pages and
 * the subsystem restart that ends an activation. */
#include <string.h>

#include <memory>

#include "pdc_service.h"

namespace modemd {
namespace {

/* Paging cursors kept at most (one per client and type). */
constexpr size_t k_max_cursors = 64;

struct cursor_key {
    uint64_t conn;
    uint32_t type;
    bool operator<(const cursor_key &o) const { return conn != o.conn ? conn < o.conn : type < o.type; }
};
struct cursor {
    uint32_t token;
    size_t next;
};

std::map<cursor_key, cursor> g_cursors;

}  // namespace

pdc_runtime &pdc_rt()
{
    static pdc_runtime rt;
    return rt;
}

const pdc_fault *pdc_take_fault(uint16_t msg_id)
{
    static pdc_fault taken;
    auto it = pdc_rt().faults.find(msg_id);
    if (it == pdc_rt().faults.end()) return nullptr;
    taken = it->second;
    if (it->second.remaining > 0 && --it->second.remaining == 0) pdc_rt().faults.erase(it);
    return &taken;
}

pdc_state &pdc_state_of(daemon &d)
{
    std::string refused;
    pdc_state &st = pdc_state_for(d.store().dir(), &refused);
    if (!refused.empty()) d.log("pdc: state file %s: the seed is used", refused.c_str());
    return st;
}

void pdc_save(daemon &d)
{
    if (!pdc_state_save(d.store().dir(), pdc_state_of(d))) d.log("pdc: cannot write the configuration state");
}

void pdc_send_ind_later(qmi_call &call, uint16_t msg_id, const void *ind, size_t ind_size, uint32_t delay_ms)
{
    auto copy = std::make_shared<std::vector<uint8_t>>(static_cast<const uint8_t *>(ind),
                                                       static_cast<const uint8_t *>(ind) + ind_size);
    daemon &d = call.d;
    sim_service *svc = &call.svc;
    uint64_t conn_id = call.client.id;
    /* The response is sent when the handler returns; the timer runs after
     * it, so the client sees the response first, as from a modem.  The
     * connection is found again by its id, so one that closed in between
     * simply gets nothing (and no newer one in its place gets its
     * indication). */
    d.loop().add_timer(delay_ms, [&d, svc, conn_id, msg_id, copy] {
        if (connection *conn = d.find_connection(conn_id)) d.send_indication(*svc, msg_id, copy->data(), conn);
    });
}

void pdc_reply_generic(qmi_call &call, uint16_t error, uint8_t token_valid, uint32_t token)
{
    const pdc_fault *f = pdc_take_fault(call.msg_id);
    if (f && f->kind == PDC_FAULT_NO_IND) return;
    if (f) error = f->code;
    pdc_generic_ind_msg_v01 ind = {error, token_valid, token};
    pdc_send_ind_later(call, call.msg_id, &ind, sizeof(ind));
}

void pdc_handle_list(qmi_call &call, const void *req_v, void *resp_v)
{
    const auto &req = *static_cast<const pdc_list_configs_req_msg_v01 *>(req_v);
    uint32_t type = req.config_type_valid ? uint32_t(req.config_type) : uint32_t(PDC_CONFIG_TYPE_MODEM_SW_V01);
    if (type >= k_pdc_types) {
        auto &resp = *static_cast<pdc_generic_resp_msg_v01 *>(resp_v);
        resp.resp.result = 1;
        resp.resp.error = PDC_QMI_ERR_NOT_SUPPORTED;
        return;
    }
    const pdc_fault *f = pdc_take_fault(call.msg_id);
    if (f && f->kind == PDC_FAULT_NO_IND) return;
    auto ind = std::make_unique<pdc_list_configs_ind_msg_v01>();
    memset(ind.get(), 0, sizeof(*ind));
    ind->ind_token_valid = req.ind_token_valid;
    ind->ind_token = req.ind_token;
    const std::vector<pdc_config> &all = pdc_state_of(call.d).configs[type];
    cursor_key key = {call.client.id, type};
    auto it = g_cursors.find(key);
    size_t first = it != g_cursors.end() && req.ind_token_valid && it->second.token == req.ind_token ? it->second.next
                                                                                                    : 0;
    if (it != g_cursors.end()) g_cursors.erase(it);
    if (f && f->kind == PDC_FAULT_ERROR) {
        ind->error = f->code;
    } else if (!(f && f->kind == PDC_FAULT_NO_MBN) && first < all.size()) {
        size_t n = all.size() - first < k_pdc_page_size ? all.size() - first : k_pdc_page_size;
        ind->config_list_valid = 1;
        ind->config_list_len = uint32_t(n);
        for (size_t i = 0; i < n; i++) {
            const pdc_config &c = all[first + i];
            ind->config_list[i].config_type = pdc_config_type_enum_v01(type);
            ind->config_list[i].config_id_len = uint32_t(c.id.size());
            memcpy(ind->config_list[i].config_id, c.id.data(), c.id.size());
        }
        ind->more_available_valid = 1;
        ind->more_available = first + n < all.size();
        if (ind->more_available && req.ind_token_valid) {
            if (g_cursors.size() >= k_max_cursors) g_cursors.erase(g_cursors.begin());
            g_cursors[key] = {req.ind_token, first + n};
        }
    }
    call.d.counters()["pdc.list_pages"]++;
    pdc_send_ind_later(call, call.msg_id, ind.get(), sizeof(*ind));
}

void pdc_subsystem_restart(daemon &d)
{
    d.counters()["pdc.restarts"]++;
    d.log("pdc: subsystem restart after activation (%u ms)", pdc_rt().restart_ms);
    std::vector<sim_service *> all;
    for (size_t i = 0; i < g_sim_service_count; i++) {
        if (sim_service *s = d.find_service(g_sim_services[i]->name)) all.push_back(s);
    }
    for (sim_service *s : all) d.service_down(*s);
    d.loop().add_timer(pdc_rt().restart_ms, [&d, all] {
        for (sim_service *s : all) d.service_up(*s);
    });
}

}  // namespace modemd
