/* Test controls of the UIM service ("uim ..." control requests):
 *   uim state                          slots, card choice, EID, profiles
 *   uim eid <32 digits>                replaces the eUICC's EID (any digits,
 *                                      so that tests can offer a bad one)
 *   uim profile-add <iccid> 0|1 [nick] adds a profile, disabled or enabled
 *   uim ind97 [result error]           sends indication 0x61 to the clients
 *   uim slot-ind                       sends the slot status indication
 *   uim crash-on <msg>|apdu:<tag> [ms] the next such request (for an APDU:
 *                                      carrying that ES10 tag, e.g. BF33)
 *                                      is lost: the service goes down before
 *                                      acting on it and comes back after ms
 *                                      (default 300) */
#include <string.h>
#include <sys/socket.h>

#include "uim_service.h"

namespace modemd {
namespace {

constexpr int64_t k_default_down_ms = 300;
constexpr int64_t k_max_down_ms = 60000;
constexpr char k_apdu_prefix[] = "apdu:";

struct armed_crash {
    bool armed = false;
    uint16_t msg_id = 0;
    uint32_t es10_tag = 0; /* APDUs only; 0 matches any */
    uint32_t down_ms = 0;
};

armed_crash g_crash;

std::string state_text(daemon &d)
{
    uim_model &m = uim_model_of(d, d.find_service("uim"));
    std::string out = "ok";
    for (uint8_t i = 0; i < k_uim_slot_count; i++) {
        out += "\nslot" + std::to_string(i + 1) + " " + (m.powered[i] ? "on" : "off");
        if (i + 1 == k_uim_euicc_slot) out += m.euicc_active ? " euicc" : " psim";
    }
    out += "\neid " + uim_eid_text(m.eid);
    out += "\nchannels " + std::to_string(m.channels.size());
    for (const uim_profile &p : m.profiles) {
        out += "\nprofile " + uim_iccid_text(p.iccid) + (p.enabled ? " enabled" : " disabled");
        if (!p.nickname.empty()) out += " " + p.nickname;
    }
    return out;
}

std::string arm_crash(const std::vector<std::string> &a)
{
    armed_crash c;
    int64_t v = 0;
    const std::string &what = a[2];
    if (what.compare(0, strlen(k_apdu_prefix), k_apdu_prefix) == 0) {
        c.msg_id = QMI_UIM_SEND_APDU_REQ_V01;
        std::vector<uint8_t> tag;
        if (!parse_hex(what.substr(strlen(k_apdu_prefix)), &tag) || tag.empty() || tag.size() > 2) {
            return "error bad ES10 tag " + what;
        }
        for (uint8_t b : tag) c.es10_tag = c.es10_tag << 8 | b;
    } else if (parse_number(what, &v) && v >= 0 && v <= 0xFFFF) {
        c.msg_id = uint16_t(v);
    } else {
        return "error bad message id " + what;
    }
    v = k_default_down_ms;
    if (a.size() > 3 && (!parse_number(a[3], &v) || v < 0 || v > k_max_down_ms)) return "error bad time " + a[3];
    c.down_ms = uint32_t(v);
    c.armed = true;
    g_crash = c;
    return "ok";
}

std::string send_ind97(daemon &d, const std::vector<std::string> &a)
{
    sim_service *s = d.find_service("uim");
    uim_purge_guti_ind_msg_v01 ind;
    memset(&ind, 0, sizeof(ind));
    int64_t result = 0, error = 0;
    if (a.size() == 4 && (!parse_number(a[2], &result) || !parse_number(a[3], &error) || result < 0 ||
                          result > 0xFFFF || error < 0 || error > 0xFFFF)) {
        return "error usage: uim ind97 [result error]";
    }
    ind.resp.result = int32_t(result);
    ind.resp.error = int32_t(error);
    ind.slot_valid = 1;
    ind.slot = UIM_SLOT_2_V01;
    return s && d.send_indication(*s, QMI_UIM_PURGE_GUTI_IND_V01, &ind) ? "ok" : "error no client";
}

}  // namespace

bool uim_take_crash(qmi_call &call, uint32_t es10_tag)
{
    if (!g_crash.armed || g_crash.msg_id != call.msg_id) return false;
    if (g_crash.es10_tag != 0 && g_crash.es10_tag != es10_tag) return false;
    g_crash.armed = false;
    daemon &d = call.d;
    sim_service &svc = call.svc;
    uint32_t down_ms = g_crash.down_ms;
    d.log("uim: message 0x%04x lost in a restart of the service (%u ms)", call.msg_id, down_ms);
    /* The request is never answered: the client's link drops at once and
     * the server goes away, as in a subsystem restart. */
    shutdown(call.client.fd, SHUT_RDWR);
    d.loop().add_timer(0, [&d, &svc, down_ms] {
        d.service_down(svc);
        d.loop().add_timer(down_ms, [&d, &svc] { d.service_up(svc); });
    });
    return true;
}

std::string uim_control(daemon &d, const std::vector<std::string> &a)
{
    if (a.size() == 2 && a[1] == "state") return state_text(d);
    if (a.size() >= 2 && a[1] == "ind97") return send_ind97(d, a);
    if (a.size() == 2 && a[1] == "slot-ind") {
        sim_service *s = d.find_service("uim");
        uim_slot_status_change_ind_msg_v01 ind;
        memset(&ind, 0, sizeof(ind));
        uim_fill_slots_status(uim_model_of(d, s), &ind.status);
        return s && d.send_indication(*s, QMI_UIM_SLOT_STATUS_CHANGE_IND_V01, &ind) ? "ok" : "error no client";
    }
    if (a.size() >= 3 && a[1] == "crash-on") return arm_crash(a);
    uim_model &m = uim_model_of(d, d.find_service("uim"));
    if (a.size() == 3 && a[1] == "eid") {
        if (!uim_parse_eid(a[2], &m.eid)) return "error usage: uim eid <32 hex digits>";
        return m.save() ? "ok" : "error cannot save";
    }
    if (a.size() >= 4 && a[1] == "profile-add") {
        uim_profile p;
        if (!uim_parse_iccid(a[2], &p.iccid) || (a[3] != "0" && a[3] != "1")) {
            return "error usage: uim profile-add <iccid> 0|1 [nickname]";
        }
        if (m.find_profile(p.iccid.data())) return "error profile exists";
        p.enabled = a[3] == "1";
        if (a.size() > 4) p.nickname = a[4];
        m.profiles.push_back(p);
        return m.save() ? "ok" : "error cannot save";
    }
    return "error usage: uim state|eid|profile-add|ind97|slot-ind|crash-on";
}

}  // namespace modemd
