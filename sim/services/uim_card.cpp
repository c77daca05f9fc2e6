#include "uim_card.h"

#include <stdio.h>

#include <sstream>

#include "state_store.h"

namespace modemd {
namespace {

constexpr char k_state_file[] = "/uim_state";
/* A fresh modem: a valid EID, one enabled and one disabled profile. */
constexpr char k_seed_eid[] = "89049032000001000000000000000074";
constexpr char k_seed_enabled_iccid[] = "89445000000000000017";
constexpr char k_seed_disabled_iccid[] = "89445000000000000025";
constexpr uint8_t k_bcd_filler = 0x0F;

uim_model g_model;
bool g_loaded = false;

int hex_value(char c)
{
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

void seed(uim_model &m)
{
    uim_parse_eid(k_seed_eid, &m.eid);
    uim_profile p;
    uim_parse_iccid(k_seed_enabled_iccid, &p.iccid);
    p.enabled = true;
    p.nickname = "operator-test";
    m.profiles.push_back(p);
    uim_parse_iccid(k_seed_disabled_iccid, &p.iccid);
    p.enabled = false;
    p.nickname = "spare";
    m.profiles.push_back(p);
}

bool read_flag(std::istringstream &words, bool *out)
{
    int v = -1;
    if (!(words >> v) || (v != 0 && v != 1)) return false;
    *out = v != 0;
    return true;
}

/* One line of the state file: "eid <digits>", "power <slot1> <slot2>",
 * "active <0|1>", "profile <iccid> <0|1> [nickname]"; false when it does
 * not parse. */
bool parse_line(const std::string &line, uim_model &m, int *seen)
{
    std::istringstream words(line);
    std::string key, rest;
    words >> key;
    if (key == "eid") {
        std::string text;
        *seen |= 1;
        return words >> text && uim_parse_eid(text, &m.eid) && !(words >> rest);
    }
    if (key == "power") {
        *seen |= 2;
        return read_flag(words, &m.powered[0]) && read_flag(words, &m.powered[1]) && !(words >> rest);
    }
    if (key == "active") {
        *seen |= 4;
        return read_flag(words, &m.euicc_active) && !(words >> rest);
    }
    if (key != "profile") return false;
    uim_profile p;
    std::string iccid;
    if (!(words >> iccid) || !uim_parse_iccid(iccid, &p.iccid) || !read_flag(words, &p.enabled)) return false;
    std::getline(words >> std::ws, p.nickname);
    m.profiles.push_back(p);
    return true;
}

enum class load_result { loaded, missing, refused };

/* Reads the state file; a file cut short or damaged (a line that does not
 * parse, a line the writer always writes missing, no final newline) is
 * refused whole, never half read. */
load_result load(uim_model &m, std::string *why)
{
    std::vector<uint8_t> raw;
    if (!read_whole_file(m.state_path, &raw)) return load_result::missing;
    if (raw.empty() || raw.back() != '\n') {
        *why = "it does not end with a complete line";
        return load_result::refused;
    }
    std::istringstream in(std::string(raw.begin(), raw.end()));
    std::string line;
    int seen = 0;
    for (int n = 1; std::getline(in, line); n++) {
        if (!parse_line(line, m, &seen)) {
            *why = "line " + std::to_string(n) + " does not parse";
            return load_result::refused;
        }
    }
    if (seen != 7) *why = "its eid, power or active line is missing";
    return seen == 7 ? load_result::loaded : load_result::refused;
}

/* Slot 2 presents the eUICC when EFS names its EID and it has an enabled
 * profile. */
void select_card(daemon &d, uim_model &m)
{
    std::vector<uint8_t> stored;
    bool eid_named = d.store().efs_read(k_uim_eid_efs_path, &stored) == k_efs_ok && stored.size() == k_uim_eid_len &&
                     std::equal(stored.begin(), stored.end(), m.eid.begin());
    m.euicc_active = eid_named && m.has_enabled_profile();
}

}  // namespace

bool uim_model::save() const
{
    std::ostringstream out;
    out << "eid " << uim_eid_text(eid) << "\n";
    out << "power " << int(powered[0]) << " " << int(powered[1]) << "\n";
    out << "active " << int(euicc_active) << "\n";
    for (const uim_profile &p : profiles) {
        out << "profile " << uim_iccid_text(p.iccid) << " " << int(p.enabled);
        if (!p.nickname.empty()) out << " " << p.nickname;
        out << "\n";
    }
    std::string text = out.str();
    return atomic_write_file(state_path, text.data(), text.size());
}

uim_profile *uim_model::find_profile(const uint8_t *iccid)
{
    for (uim_profile &p : profiles) {
        if (std::equal(p.iccid.begin(), p.iccid.end(), iccid)) return &p;
    }
    return nullptr;
}

bool uim_model::has_enabled_profile() const
{
    for (const uim_profile &p : profiles) {
        if (p.enabled) return true;
    }
    return false;
}

uim_model &uim_model_of(daemon &d, const sim_service *svc)
{
    if (!g_loaded || g_model.state_path != d.store().dir() + k_state_file) {
        g_model = uim_model();
        g_model.state_path = d.store().dir() + k_state_file;
        std::string why;
        load_result r = load(g_model, &why);
        if (r == load_result::refused) {
            /* Kept beside for whoever wants to see what went wrong. */
            std::string aside = g_model.state_path + ".bad";
            bool kept = rename(g_model.state_path.c_str(), aside.c_str()) == 0;
            d.log("uim: state file %s refused (%s)%s%s: the seed is used", g_model.state_path.c_str(), why.c_str(),
                  kept ? ", kept as " : "", kept ? aside.c_str() : "");
        }
        if (r != load_result::loaded) {
            std::string path = g_model.state_path;
            g_model = uim_model();
            g_model.state_path = path;
            seed(g_model);
            if (!g_model.save()) d.log("uim: cannot save %s", path.c_str());
        }
        g_loaded = true;
    }
    if (svc && svc->port != g_model.seen_port) {
        bool restarted = g_model.seen_port != 0;
        g_model.seen_port = svc->port;
        if (restarted) {
            /* The modem came back: cards are reset and powered again. */
            d.log("uim: service restarted, channels closed, slots powered up");
            g_model.channels.clear();
            for (bool &powered : g_model.powered) powered = true;
            select_card(d, g_model);
            if (!g_model.save()) d.log("uim: cannot save %s", g_model.state_path.c_str());
        }
    }
    return g_model;
}

void uim_connection_closed(daemon &d, uint64_t conn_id)
{
    if (!g_loaded) return;
    for (auto it = g_model.channels.begin(); it != g_model.channels.end();) {
        if (it->second != conn_id) {
            ++it;
            continue;
        }
        d.log("uim: connection %llu closed: logical channel %u closed", (unsigned long long)conn_id, it->first);
        it = g_model.channels.erase(it);
    }
}

void uim_set_power(daemon &d, uim_model &m, uint8_t slot, bool up)
{
    m.powered[slot - 1] = up;
    if (slot == k_uim_euicc_slot) {
        m.channels.clear();
        if (up) select_card(d, m);
    }
    std::string name = "uim.slot" + std::to_string(slot) + (up ? ".power_up" : ".power_down");
    d.counters()[name]++;
    if (!m.save()) d.log("uim: cannot save %s", m.state_path.c_str());
}

std::string uim_eid_text(const std::array<uint8_t, k_uim_eid_len> &eid)
{
    static const char digits[] = "0123456789ABCDEF";
    std::string out;
    for (uint8_t b : eid) {
        out += digits[b >> 4];
        out += digits[b & 0x0F];
    }
    return out;
}

bool uim_parse_eid(const std::string &text, std::array<uint8_t, k_uim_eid_len> *out)
{
    if (text.size() != 2 * k_uim_eid_len) return false;
    for (size_t i = 0; i < k_uim_eid_len; i++) {
        int hi = hex_value(text[2 * i]), lo = hex_value(text[2 * i + 1]);
        if (hi < 0 || lo < 0) return false;
        (*out)[i] = uint8_t(hi << 4 | lo);
    }
    return true;
}

std::string uim_iccid_text(const std::array<uint8_t, k_uim_iccid_len> &iccid)
{
    static const char digits[] = "0123456789ABCDEF";
    std::string out;
    for (uint8_t b : iccid) {
        out += digits[b & 0x0F];
        if ((b >> 4) != k_bcd_filler) out += digits[b >> 4];
    }
    return out;
}

bool uim_parse_iccid(const std::string &text, std::array<uint8_t, k_uim_iccid_len> *out)
{
    if (text.size() < 2 * k_uim_iccid_len - 1 || text.size() > 2 * k_uim_iccid_len) return false;
    for (size_t i = 0; i < k_uim_iccid_len; i++) {
        int lo = hex_value(text[2 * i]);
        int hi = 2 * i + 1 < text.size() ? hex_value(text[2 * i + 1]) : k_bcd_filler;
        if (lo < 0 || lo > 9 || hi < 0 || (hi > 9 && hi != k_bcd_filler)) return false;
        (*out)[i] = uint8_t(hi << 4 | lo);
    }
    return true;
}

}  // namespace modemd
