/* The PDC service's configuration store and its file. */
#include "pdc_state.h"

#include <stdio.h>
#include <stdlib.h>
#include <unistd.h>

#include <map>
#include <memory>
#include <sstream>

#include "daemon.h"
#include "state_store.h"

namespace modemd {
namespace {

const char k_state_file[] = "/pdc/configs";
const char k_content_dir[] = "/pdc/mbn/";
const char k_none[] = "-";

struct seed_config {
    uint32_t type;
    const char *id;
    uint32_t size;
    uint32_t version;
    const char *desc;
};

/* What a dual-SIM handset ships with: two hardware configurations and a
 * handful of carrier configurations. */
const seed_config k_seed[] = {
    {0, "mcfg_hw_ssss", 24576, 0x05000001, "Single SIM single standby"},
    {0, "mcfg_hw_dsds", 26624, 0x05000002, "Dual SIM dual standby"},
    {1, "ROW_Generic_3GPP", 118784, 0x05010823, "ROW generic 3GPP"},
    {1, "Commercial_VZW_VoLTE", 204800, 0x05010911, "Verizon commercial VoLTE"},
    {1, "Commercial_TMO_VoLTE", 176128, 0x05010A05, "T-Mobile US commercial VoLTE"},
    {1, "Commercial_ATT_VoLTE", 188416, 0x05010B0C, "AT&T commercial VoLTE"},
    {1, "Commercial_CMCC_VoLTE", 143360, 0x05011C02, "China Mobile commercial VoLTE"},
};
const char k_seed_hw_active[] = "mcfg_hw_dsds";
const char k_seed_sw_active[] = "ROW_Generic_3GPP";

std::string content_path(const std::string &dir, uint32_t type, const std::string &id)
{
    return dir + k_content_dir + std::to_string(type) + "-" + pdc_hex(id) + ".mbn";
}

std::string id_or_none(const std::string &id) { return id.empty() ? k_none : pdc_hex(id); }

bool parse_id(const std::string &word, std::string *out)
{
    if (word == k_none) {
        out->clear();
        return true;
    }
    return pdc_unhex(word, out);
}

bool parse_line(const std::string &line, pdc_state *st)
{
    std::istringstream in(line);
    std::string kind;
    in >> kind;
    if (kind == "config") {
        uint32_t type = 0;
        pdc_config c;
        std::string id, desc;
        if (!(in >> type >> id >> c.size >> c.version >> desc) || type >= k_pdc_types) return false;
        if (!pdc_unhex(id, &c.id) || !parse_id(desc, &c.desc)) return false;
        st->configs[type].push_back(c);
        return true;
    }
    if (kind == "selected") {
        uint32_t type = 0, sub = 0;
        std::string active, pending;
        if (!(in >> type >> sub >> active >> pending) || type >= k_pdc_types || sub >= k_pdc_subs) return false;
        return parse_id(active, &st->selected[type][sub].active) && parse_id(pending, &st->selected[type][sub].pending);
    }
    if (kind == "feature") {
        uint32_t slot = 0, mode = 0;
        if (!(in >> slot >> mode) || slot >= k_pdc_slots) return false;
        st->selection_mode[slot] = mode;
        return true;
    }
    if (kind == "capacity") return bool(in >> st->capacity);
    return kind.empty();
}

/* Reads the state file: false with `why` empty when there is none, with
 * `why` set when it is refused whole (a line that does not parse, or cut
 * short: the capacity line, written last, missing, or no final newline). */
bool load_state(const std::string &dir, pdc_state *st, std::string *why)
{
    std::vector<uint8_t> bytes;
    if (!read_whole_file(dir + k_state_file, &bytes)) return false;
    std::istringstream in(std::string(bytes.begin(), bytes.end()));
    std::string line;
    pdc_state loaded;
    bool capacity_last = false;
    for (int n = 1; std::getline(in, line); n++) {
        if (!parse_line(line, &loaded)) {
            *why = "line " + std::to_string(n) + " does not parse";
            return false;
        }
        capacity_last = line.compare(0, 9, "capacity ") == 0;
    }
    if (!capacity_last || bytes.back() != '\n') {
        *why = "it is cut short";
        return false;
    }
    *st = loaded;
    return true;
}

}  // namespace

pdc_config *pdc_state::find(uint32_t type, const std::string &id)
{
    if (type >= k_pdc_types) return nullptr;
    for (pdc_config &c : configs[type]) {
        if (c.id == id) return &c;
    }
    return nullptr;
}

uint64_t pdc_state::used_bytes() const
{
    uint64_t n = 0;
    for (const auto &list : configs) {
        for (const pdc_config &c : list) n += c.size;
    }
    return n;
}

bool pdc_state::is_active(uint32_t type, const std::string &id) const
{
    for (const pdc_selection &s : selected[type]) {
        if (s.active == id) return true;
    }
    return false;
}

std::string pdc_hex(const std::string &bytes)
{
    return to_hex(reinterpret_cast<const uint8_t *>(bytes.data()), bytes.size());
}

bool pdc_unhex(const std::string &hex, std::string *out)
{
    std::vector<uint8_t> v;
    if (!parse_hex(hex, &v)) return false;
    out->assign(v.begin(), v.end());
    return true;
}

void pdc_state_seed(pdc_state *st)
{
    *st = pdc_state();
    for (const seed_config &s : k_seed) st->configs[s.type].push_back({s.id, s.size, s.version, s.desc});
    for (uint32_t sub = 0; sub < k_pdc_subs; sub++) {
        st->selected[0][sub].active = k_seed_hw_active;
        st->selected[1][sub].active = k_seed_sw_active;
    }
}

pdc_state &pdc_state_for(const std::string &dir, std::string *refused)
{
    /* One simulator per process in practice; unit tests may run several
     * state directories one after the other. */
    static std::map<std::string, std::unique_ptr<pdc_state>> states;
    auto it = states.find(dir);
    if (it != states.end()) return *it->second;
    auto st = std::make_unique<pdc_state>();
    std::string why;
    if (!load_state(dir, st.get(), &why)) {
        if (!why.empty()) {
            /* Kept beside for whoever wants to see what went wrong. */
            std::string path = dir + k_state_file, aside = path + ".bad";
            bool kept = rename(path.c_str(), aside.c_str()) == 0;
            if (refused) *refused = path + " refused (" + why + ")" + (kept ? ", kept as " + aside : "");
        }
        pdc_state_seed(st.get());
        pdc_state_save(dir, *st);
    }
    return *(states[dir] = std::move(st));
}

bool pdc_state_save(const std::string &dir, const pdc_state &st)
{
    std::string out;
    for (uint32_t t = 0; t < k_pdc_types; t++) {
        for (const pdc_config &c : st.configs[t]) {
            out += "config " + std::to_string(t) + " " + pdc_hex(c.id) + " " + std::to_string(c.size) + " " +
                   std::to_string(c.version) + " " + id_or_none(c.desc) + "\n";
        }
        for (uint32_t s = 0; s < k_pdc_subs; s++) {
            out += "selected " + std::to_string(t) + " " + std::to_string(s) + " " +
                   id_or_none(st.selected[t][s].active) + " " + id_or_none(st.selected[t][s].pending) + "\n";
        }
    }
    for (uint32_t slot = 0; slot < k_pdc_slots; slot++) {
        out += "feature " + std::to_string(slot) + " " + std::to_string(st.selection_mode[slot]) + "\n";
    }
    out += "capacity " + std::to_string(st.capacity) + "\n";
    return atomic_write_file(dir + k_state_file, out.data(), out.size());
}

bool pdc_content_save(const std::string &dir, uint32_t type, const std::string &id, const std::vector<uint8_t> &data)
{
    return atomic_write_file(content_path(dir, type, id), data.data(), data.size());
}

void pdc_content_remove(const std::string &dir, uint32_t type, const std::string &id)
{
    unlink(content_path(dir, type, id).c_str());
}

}  // namespace modemd
