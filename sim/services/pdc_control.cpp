/* Test controls of the PDC service ("pdc ..." control requests):
 *   pdc show                         the configurations and selections
 *   pdc reset                        back to the seed, faults cleared
 *   pdc clear [hw|sw]                removes every configuration (of a type)
 *   pdc add hw|sw <id> [size]        adds a configuration
 *   pdc fill hw|sw <count>           adds generated ones up to <count>
 *   pdc fail <msg> <kind> [count]    the next indications of <msg> fail:
 *                                    nomem (error 2), exists (error 41),
 *                                    reset (load: frame data reset),
 *                                    nombn (list: no list), noind (none
 *                                    sent), error <code>
 *   pdc clear-faults
 *   pdc timing <activation_ms> <restart_ms>
 *   pdc load-delay <ms>              each load frame's indication that late
 *   pdc capacity <bytes>             room for configurations */
#include <stdio.h>

#include "pdc_service.h"

namespace modemd {
namespace {

constexpr int64_t k_max_ms = 3600000;
constexpr uint32_t k_fill_size = 65536;
constexpr uint32_t k_fill_version = 0x05020000;

bool parse_type(const std::string &word, uint32_t *type)
{
    if (word == "hw") {
        *type = PDC_CONFIG_TYPE_MODEM_PLATFORM_V01;
    } else if (word == "sw") {
        *type = PDC_CONFIG_TYPE_MODEM_SW_V01;
    } else {
        return false;
    }
    return true;
}

std::string show(const pdc_state &st)
{
    std::string out = "ok";
    for (uint32_t t = 0; t < k_pdc_types; t++) {
        for (const pdc_config &c : st.configs[t]) {
            out += "\nconfig " + std::string(t ? "sw " : "hw ") + c.id + " size " + std::to_string(c.size);
        }
        for (uint32_t s = 0; s < k_pdc_subs; s++) {
            const pdc_selection &sel = st.selected[t][s];
            out += "\nselected " + std::string(t ? "sw " : "hw ") + std::to_string(s) + " active " +
                   (sel.active.empty() ? "-" : sel.active) + " pending " + (sel.pending.empty() ? "-" : sel.pending);
        }
    }
    return out;
}

std::string arm_fault(const std::vector<std::string> &a)
{
    int64_t msg = 0, code = 0, count = -1;
    if (a.size() < 4 || !parse_number(a[2], &msg) || msg < 0 || msg > 0xFFFF) return "error usage: pdc fail <msg> <kind>";
    pdc_fault f = {PDC_FAULT_ERROR, 0, -1};
    size_t count_at = 4;
    if (a[3] == "nomem") {
        f.code = PDC_QMI_ERR_NO_MEMORY;
    } else if (a[3] == "exists") {
        f.code = PDC_QMI_ERR_INVALID_ID;
    } else if (a[3] == "reset") {
        f.kind = PDC_FAULT_RESET;
    } else if (a[3] == "nombn") {
        f.kind = PDC_FAULT_NO_MBN;
    } else if (a[3] == "noind") {
        f.kind = PDC_FAULT_NO_IND;
    } else if (a[3] == "error" && a.size() >= 5 && parse_number(a[4], &code) && code > 0 && code <= 0xFFFF) {
        f.code = uint16_t(code);
        count_at = 5;
    } else {
        return "error unknown fault " + a[3];
    }
    if (a.size() > count_at && (!parse_number(a[count_at], &count) || count < 1)) return "error bad count";
    f.remaining = int(count);
    pdc_rt().faults[uint16_t(msg)] = f;
    return "ok";
}

std::string add_configs(daemon &d, const std::vector<std::string> &a)
{
    uint32_t type = 0;
    if (a.size() < 4 || !parse_type(a[2], &type)) return "error usage: pdc " + a[1] + " hw|sw ...";
    pdc_state &st = pdc_state_of(d);
    if (a[1] == "add") {
        int64_t size = k_fill_size;
        if (a.size() > 4 && (!parse_number(a[4], &size) || size < 1 || size > UINT32_MAX)) return "error bad size";
        if (a[3].size() > PDC_CONFIG_ID_SIZE_MAX_V01 || st.find(type, a[3])) return "error bad or existing id";
        st.configs[type].push_back({a[3], uint32_t(size), k_fill_version, a[3]});
    } else {
        int64_t count = 0;
        if (!parse_number(a[3], &count) || count < 0 || size_t(count) > k_pdc_max_configs_per_type) return "error bad count";
        for (int n = 0; st.configs[type].size() < size_t(count); n++) {
            char id[32];
            snprintf(id, sizeof(id), "%s_cfg_%03d", type ? "sw" : "hw", n);
            if (!st.find(type, id)) st.configs[type].push_back({id, k_fill_size, k_fill_version, id});
        }
    }
    pdc_save(d);
    return "ok";
}

}  // namespace

std::string pdc_control(daemon &d, const std::vector<std::string> &a)
{
    const std::string sub = a.size() > 1 ? a[1] : "";
    pdc_state &st = pdc_state_of(d);
    int64_t x = 0, y = 0;
    if (sub == "show") return show(st);
    if (sub == "reset") {
        pdc_state_seed(&st);
        pdc_rt().faults.clear();
        pdc_save(d);
        return "ok";
    }
    if (sub == "clear") {
        uint32_t type = 0;
        if (a.size() > 2 && !parse_type(a[2], &type)) return "error usage: pdc clear [hw|sw]";
        for (uint32_t t = 0; t < k_pdc_types; t++) {
            if (a.size() > 2 && t != type) continue;
            st.configs[t].clear();
            for (pdc_selection &sel : st.selected[t]) sel = pdc_selection();
        }
        pdc_save(d);
        return "ok";
    }
    if (sub == "add" || sub == "fill") return add_configs(d, a);
    if (sub == "fail") return arm_fault(a);
    if (sub == "clear-faults") {
        pdc_rt().faults.clear();
        return "ok";
    }
    if (sub == "timing" && a.size() == 4 && parse_number(a[2], &x) && parse_number(a[3], &y) && x >= 0 &&
        x <= k_max_ms && y >= 0 && y <= k_max_ms) {
        pdc_rt().activation_ms = uint32_t(x);
        pdc_rt().restart_ms = uint32_t(y);
        return "ok";
    }
    if (sub == "load-delay" && a.size() == 3 && parse_number(a[2], &x) && x >= 0 && x <= k_max_ms) {
        pdc_rt().load_ind_ms = uint32_t(x);
        return "ok";
    }
    if (sub == "capacity" && a.size() == 3 && parse_number(a[2], &x) && x >= 0) {
        st.capacity = uint64_t(x);
        pdc_save(d);
        return "ok";
    }
    return "error usage: pdc show|reset|clear|add|fill|fail|clear-faults|timing|load-delay|capacity";
}

}  // namespace modemd
