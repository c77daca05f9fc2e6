/* Control requests and indications of the vendor statistics service. */
#include <string.h>

#include "vs_stats_service.h"

namespace modemd {
namespace {

/* Demo scene: indication period and its bounds. */
constexpr uint32_t k_demo_default_period_ms = 2000;
constexpr uint32_t k_demo_min_period_ms = 100;
constexpr uint32_t k_demo_max_period_ms = 3600000;
/* Demo indications: antenna paths and the report's lists. */
constexpr uint32_t k_demo_ant_paths = 4;
constexpr uint32_t k_demo_report_primary = 3;
constexpr uint32_t k_demo_report_secondary = 1;
/* Modem event codes rotated through by the demo. */
constexpr uint8_t k_demo_event_codes = 4;
/* Ticks between two feature status indications of the demo. */
constexpr uint32_t k_demo_feature_every = 5;

sim_service *vs_service(daemon &d) { return d.find_service(g_vs_stats_service_def.name); }

bool parse_u32(const std::string &text, uint32_t max, uint32_t *out)
{
    int64_t v = 0;
    if (!parse_number(text, &v) || v < 0 || v > int64_t(max)) return false;
    *out = uint32_t(v);
    return true;
}

/* Items of the report: the served items of subscription 0, in turn. */
void fill_report_items(orvex_vs_stats_data_type_v01 *items, uint32_t n, uint32_t *next_id)
{
    vs_stats_state &st = vs_stats();
    std::vector<uint8_t> bytes;
    for (uint32_t i = 0; i < n; i++) {
        orvex_vs_stats_data_type_v01 &item = items[i];
        uint16_t id = k_vs_served_ids[(*next_id)++ % k_vs_served_id_count];
        item.data_id = id;
        item.sub = 0;
        item.update_count = ++st.update_count;
        if (vs_scene_item(st.scene[0], id, event_loop::now_ms(), &bytes)) {
            item.data_len = uint32_t(bytes.size());
            memcpy(item.data, bytes.data(), bytes.size());
        }
    }
}

void demo_tick(daemon &d)
{
    vs_stats_state &st = vs_stats();
    st.demo_timer = 0;
    if (!st.demo_period_ms) return;
    static uint32_t tick = 0;
    tick++;
    vs_send_report_ind(d, k_demo_report_primary, k_demo_report_secondary, true, st.demo_period_ms);
    vs_send_ant_ind(d, 0, k_demo_ant_paths);
    if (tick % 2 == 0) vs_send_event_ind(d, uint8_t(tick / 2 % k_demo_event_codes));
    if (tick % k_demo_feature_every == 0) vs_send_feature_ind(d, 1, st.feature_status, 1);
    st.demo_timer = d.loop().add_timer(st.demo_period_ms, [&d] { demo_tick(d); });
}

std::string control_demo(daemon &d, const std::vector<std::string> &a)
{
    vs_stats_state &st = vs_stats();
    if (st.demo_timer) d.loop().cancel_timer(st.demo_timer);
    st.demo_timer = 0;
    st.demo_period_ms = 0;
    if (a.size() >= 3 && a[2] == "off") {
        for (vs_scene &s : st.scene) s.drift = false;
        return "ok";
    }
    uint32_t period = k_demo_default_period_ms;
    if (a.size() < 3 || a[2] != "on" ||
        (a.size() >= 4 && (!parse_u32(a[3], k_demo_max_period_ms, &period) || period < k_demo_min_period_ms))) {
        return "error usage: vs demo on [period_ms] | vs demo off";
    }
    for (vs_scene &s : st.scene) s.drift = true;
    st.demo_period_ms = period;
    vs_send_feature_ind(d, 1, st.feature_status, 1);
    st.demo_timer = d.loop().add_timer(period, [&d] { demo_tick(d); });
    return "ok";
}

std::string control_ind(daemon &d, const std::vector<std::string> &a)
{
    uint32_t v[3] = {0, 0, 0};
    bool sent = false;
    const std::string kind = a.size() >= 3 ? a[2] : "";
    if (kind == "feature" && a.size() == 6 && parse_u32(a[3], 0xFFFFFFFFu, &v[0]) && parse_u32(a[4], 0xFF, &v[1]) &&
        parse_u32(a[5], 0xFF, &v[2])) {
        sent = vs_send_feature_ind(d, v[0], uint8_t(v[1]), uint8_t(v[2]));
    } else if (kind == "report" && (a.size() == 5 || a.size() == 6) &&
               parse_u32(a[3], ORVEX_VS_REPORT_PRIMARY_MAX, &v[0]) &&
               parse_u32(a[4], ORVEX_VS_REPORT_SECONDARY_MAX, &v[1])) {
        bool with_interval = a.size() == 6 && a[5] != "none";
        if (with_interval && !parse_u32(a[5], 0xFFFFFFFFu, &v[2])) return "error bad interval " + a[5];
        sent = vs_send_report_ind(d, v[0], v[1], with_interval, v[2]);
    } else if (kind == "ant" && (a.size() == 4 || a.size() == 5) && parse_u32(a[3], ORVEX_VS_ANT_STATE_MAX, &v[0]) &&
               (a.size() == 4 || parse_u32(a[4], 0xFFFFFFFFu, &v[1]))) {
        sent = vs_send_ant_ind(d, v[1], v[0]);
    } else if (kind == "event" && a.size() == 4 && parse_u32(a[3], 0xFF, &v[0])) {
        sent = vs_send_event_ind(d, uint8_t(v[0]));
    } else if (kind == "cell" && a.size() == 5 && parse_u32(a[3], 0xFFFFFFFFu, &v[0]) &&
               parse_u32(a[4], 0xFFFFFFFFu, &v[1])) {
        sent = vs_send_cell_ind(d, v[0], v[1]);
    } else {
        return "error usage: vs ind feature <mask> <enabled> <collecting> | vs ind report <n1> <n2> "
               "[interval_ms|none] | vs ind ant <count> [sub] | vs ind event <code> | vs ind cell <sub> <earfcn>";
    }
    return sent ? "ok" : "error no client";
}

std::string control_fault(const std::vector<std::string> &a)
{
    vs_item_fault f;
    size_t count_at = 3;
    const std::string kind = a.size() >= 3 ? a[2] : "";
    if (kind == "clear") {
        vs_stats().fault = f;
        return "ok";
    }
    if (kind == "wrong-id") {
        f.kind = vs_item_fault::WRONG_ID;
    } else if (kind == "wrong-sub") {
        f.kind = vs_item_fault::WRONG_SUB;
    } else if (kind == "empty") {
        f.kind = vs_item_fault::EMPTY;
    } else if (kind == "data-len" && a.size() >= 4 && parse_u32(a[3], 0xFFFFFFFFu, &f.value)) {
        f.kind = vs_item_fault::DATA_LEN;
        count_at = 4;
    } else {
        return "error usage: vs fault wrong-id|wrong-sub|empty|data-len <n>|clear [count]";
    }
    f.remaining = 1;
    uint32_t count = 0;
    if (a.size() > count_at) {
        if (!parse_u32(a[count_at], 0x7FFFFFFF, &count) || count == 0) return "error bad count " + a[count_at];
        f.remaining = int(count);
    }
    vs_stats().fault = f;
    return "ok";
}

/* "vs scene|set|item ..." */
std::string control_scene(const std::vector<std::string> &a)
{
    uint32_t sub = 0;
    if (a.size() < 3 || !parse_u32(a[2], k_vs_subs - 1, &sub)) return "error bad subscription";
    vs_scene &scene = vs_stats().scene[sub];
    if (a[1] == "scene" && a.size() == 4) {
        if (a[3] == "reset") {
            scene = vs_scene_default(int(sub));
        } else if (a[3] == "fixed" || a[3] == "drift") {
            scene.drift = a[3] == "drift";
        } else {
            return "error usage: vs scene <sub> reset|fixed|drift";
        }
        return "ok";
    }
    if (a[1] == "set" && a.size() == 5) {
        return vs_scene_set(&scene, a[3], a[4]) ? "ok" : "error unknown field or bad value (fields: " +
                                                             vs_scene_field_names() + ")";
    }
    uint32_t id = 0;
    if (a[1] == "item" && a.size() == 4 && parse_u32(a[3], 0xFFFF, &id)) {
        std::vector<uint8_t> bytes;
        if (!vs_scene_item(scene, id, event_loop::now_ms(), &bytes)) return "error no item";
        return "ok " + to_hex(bytes.data(), bytes.size());
    }
    return "error usage: vs scene <sub> reset|fixed|drift | vs set <sub> <field> <value> | vs item <sub> <id>";
}

}  // namespace

bool vs_send_feature_ind(daemon &d, uint32_t mask, uint8_t enabled, uint8_t collecting)
{
    sim_service *s = vs_service(d);
    orvex_vs_feature_status_ind_msg_v01 ind = {mask, enabled, collecting};
    return s && d.send_indication(*s, ORVEX_VS_FEATURE_STATUS_IND_V01, &ind);
}

bool vs_send_report_ind(daemon &d, uint32_t primary, uint32_t secondary, bool with_interval, uint32_t interval_ms)
{
    sim_service *s = vs_service(d);
    if (!s) return false;
    auto ind = std::make_unique<orvex_vs_stats_report_ind_msg_v01>();
    memset(ind.get(), 0, sizeof(*ind));
    vs_stats_state &st = vs_stats();
    ind->report_id = ++st.report_id;
    uint32_t next_id = 0;
    ind->primary_list_len = primary;
    fill_report_items(ind->primary_list, primary, &next_id);
    ind->secondary_list_len = secondary;
    fill_report_items(ind->secondary_list, secondary, &next_id);
    ind->interval_ms_valid = with_interval ? 1 : 0;
    ind->interval_ms = interval_ms;
    return d.send_indication(*s, ORVEX_VS_STATS_REPORT_IND_V01, ind.get());
}

bool vs_send_ant_ind(daemon &d, uint32_t sub, uint32_t count)
{
    sim_service *s = vs_service(d);
    if (!s) return false;
    orvex_vs_ant_state_ind_msg_v01 ind;
    memset(&ind, 0, sizeof(ind));
    ind.sub = sub;
    ind.ant_state_len = count;
    const vs_scene &scene = vs_stats().scene[sub < k_vs_subs ? sub : 0];
    /* Path i carries the configuration of its antenna switch, taken from
     * the scene's diversity state and numbered by position past it. */
    for (uint32_t i = 0; i < count; i++) {
        ind.ant_state[i] = i < k_vs_asdiv_fields ? scene.asdiv[i] : uint8_t(i);
    }
    ind.rx_path_mask = 0x000F;
    ind.tx_path_mask = 0x0003;
    return d.send_indication(*s, ORVEX_VS_ANT_STATE_IND_V01, &ind);
}

bool vs_send_event_ind(daemon &d, uint8_t event)
{
    sim_service *s = vs_service(d);
    orvex_vs_modem_event_ind_msg_v01 ind = {event};
    return s && d.send_indication(*s, ORVEX_VS_MODEM_EVENT_IND_V01, &ind);
}

bool vs_send_cell_ind(daemon &d, uint32_t sub, uint32_t earfcn)
{
    sim_service *s = vs_service(d);
    orvex_vs_cell_change_ind_msg_v01 ind = {sub, earfcn};
    return s && d.send_indication(*s, ORVEX_VS_CELL_CHANGE_IND_V01, &ind);
}

std::string vs_stats_control(daemon &d, const std::vector<std::string> &a)
{
    const std::string cmd = a.size() >= 2 ? a[1] : "";
    if (cmd == "feature") return "ok " + std::to_string(vs_stats().feature_status);
    if (cmd == "scene" || cmd == "set" || cmd == "item") return control_scene(a);
    if (cmd == "fault") return control_fault(a);
    if (cmd == "ind") return control_ind(d, a);
    if (cmd == "demo") return control_demo(d, a);
    return "error usage: vs feature|scene|set|item|fault|ind|demo ... (try help)";
}

}  // namespace modemd
