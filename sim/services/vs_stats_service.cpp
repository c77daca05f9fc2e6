/* The vendor statistics service: request handlers. */
#include "vs_stats_service.h"

#include <string.h>

#include "ext_stats_debug.h"

namespace modemd {
namespace {

/* QMI errors of the service's answers. */
constexpr uint32_t k_result_failure = 1;
constexpr uint32_t k_err_invalid_arg = 48;
constexpr uint32_t k_err_device_not_ready = 52;
constexpr uint32_t k_err_not_supported = 94;

/* Generic commands. */
constexpr uint32_t k_cmd_echo = 0;
constexpr uint32_t k_cmd_version = 1;
const char k_version_text[] = "RLKSIM-VS 1.1";

/* Counters of the statistics framework that option 7's debug info reads. */
const char k_counter_cmd_fail[] = "stats.main.cmd_fail_count";
const char k_counter_feature[] = "stats.main.feature_enable_status";

void count_answer(qmi_call &call, bool ok)
{
    call.d.counters()[ok ? k_stats_counter_cmd_ok : k_counter_cmd_fail]++;
}

void fail(qmi_call &call, uint32_t *result, uint32_t *error, uint32_t code)
{
    *result = k_result_failure;
    *error = code;
    count_answer(call, false);
}

/* A restarted server forgets the status its predecessor was given, as the
 * modem's framework does after a subsystem restart. */
void follow_restart(qmi_call &call)
{
    vs_stats_state &st = vs_stats();
    if (st.served_port != call.svc.port) {
        st.served_port = call.svc.port;
        st.feature_status = ORVEX_VS_FEATURE_STOP;
        call.d.counters()[k_counter_feature] = 0;
    }
}

void handle_command(qmi_call &call, const void *req_v, void *resp_v)
{
    const auto &req = *static_cast<const orvex_vs_command_req_msg_v01 *>(req_v);
    auto &resp = *static_cast<orvex_vs_command_resp_msg_v01 *>(resp_v);
    call.d.counters()[k_vs_counter_requests]++;
    if (req.cmd == k_cmd_echo) {
        resp.data_len = req.data_valid ? req.data_len : 0;
        memcpy(resp.data, req.data, resp.data_len);
    } else if (req.cmd == k_cmd_version) {
        resp.data_len = sizeof(k_version_text);
        memcpy(resp.data, k_version_text, sizeof(k_version_text));
    } else {
        fail(call, &resp.result, &resp.error, k_err_not_supported);
        return;
    }
    count_answer(call, true);
}

void handle_set_feature_status(qmi_call &call, const void *req_v, void *resp_v)
{
    const auto &req = *static_cast<const orvex_vs_set_feature_status_req_msg_v01 *>(req_v);
    auto &resp = *static_cast<orvex_vs_set_feature_status_resp_msg_v01 *>(resp_v);
    call.d.counters()[k_vs_counter_requests]++;
    follow_restart(call);
    if (req.feature_status > ORVEX_VS_FEATURE_START) {
        fail(call, &resp.result, &resp.error, k_err_invalid_arg);
        return;
    }
    vs_stats().feature_status = req.feature_status;
    call.d.counters()[k_counter_feature] = req.feature_status;
    count_answer(call, true);
}

/* Applies an armed fault to the first item of an answer. */
void apply_fault(orvex_vs_get_stats_resp_msg_v01 &resp)
{
    vs_item_fault &f = vs_stats().fault;
    if (f.kind == vs_item_fault::NONE || f.remaining == 0) return;
    if (f.remaining > 0) f.remaining--;
    orvex_vs_stats_data_type_v01 &item = resp.data_list[0];
    switch (f.kind) {
    case vs_item_fault::WRONG_ID:
        item.data_id = uint16_t(item.data_id + 1);
        break;
    case vs_item_fault::WRONG_SUB:
        item.sub = uint16_t(item.sub ^ 1);
        break;
    case vs_item_fault::DATA_LEN:
        /* The bytes beyond a shortened item read as zero. */
        if (f.value < item.data_len) memset(item.data + f.value, 0, item.data_len - f.value);
        item.data_len = f.value;
        break;
    default:
        resp.data_list_len = 0;
        memset(&item, 0, sizeof(item));
        break;
    }
    if (f.remaining == 0) f.kind = vs_item_fault::NONE;
}

void handle_get_stats(qmi_call &call, const void *req_v, void *resp_v)
{
    const auto &req = *static_cast<const orvex_vs_get_stats_req_msg_v01 *>(req_v);
    auto &resp = *static_cast<orvex_vs_get_stats_resp_msg_v01 *>(resp_v);
    vs_stats_state &st = vs_stats();
    call.d.counters()[k_vs_counter_requests]++;
    follow_restart(call);
    if (req.sub >= k_vs_subs || req.data_id_list_len == 0 || !st.scene[req.sub].served) {
        fail(call, &resp.result, &resp.error, k_err_invalid_arg);
        return;
    }
    if (st.feature_status != ORVEX_VS_FEATURE_START) {
        fail(call, &resp.result, &resp.error, k_err_device_not_ready);
        return;
    }
    /* Ids the modem has nothing for are left out of the list. */
    resp.data_list_valid = 1;
    std::vector<uint8_t> bytes;
    for (uint32_t i = 0; i < req.data_id_list_len; i++) {
        if (!vs_scene_item(st.scene[req.sub], req.data_id_list[i], event_loop::now_ms(), &bytes)) continue;
        orvex_vs_stats_data_type_v01 &item = resp.data_list[resp.data_list_len++];
        item.data_id = req.data_id_list[i];
        item.sub = req.sub;
        item.update_count = ++st.update_count;
        item.data_len = uint32_t(bytes.size());
        memcpy(item.data, bytes.data(), bytes.size());
    }
    apply_fault(resp);
    count_answer(call, true);
}

void vs_fill_error(void *resp_v, int code)
{
    /* Every response of the service starts with the result and error words. */
    uint32_t words[2] = {k_result_failure, uint32_t(code)};
    memcpy(resp_v, words, sizeof(words));
}

qmi_idl_service_object_type vs_object() { return orvex_vs_get_service_object_v01(); }

const qmi_handler_entry k_handlers[] = {
    {ORVEX_VS_COMMAND_MSG_ID_V01, handle_command},
    {ORVEX_VS_SET_FEATURE_STATUS_MSG_ID_V01, handle_set_feature_status},
    {ORVEX_VS_GET_STATS_MSG_ID_V01, handle_get_stats},
};

}  // namespace

const char *const k_vs_counter_requests = "vs.requests";

vs_stats_state &vs_stats(void)
{
    static vs_stats_state state = [] {
        vs_stats_state s;
        for (int sub = 0; sub < k_vs_subs; sub++) s.scene[sub] = vs_scene_default(sub);
        return s;
    }();
    return state;
}

const sim_service_def g_vs_stats_service_def = {
    "vs", vs_object, 0, k_handlers, sizeof(k_handlers) / sizeof(k_handlers[0]), vs_fill_error, vs_stats_control,
    "  vs feature | vs scene <sub> reset|fixed|drift | vs set <sub> <field> <value> | vs item <sub> <id>\n"
    "  vs fault wrong-id|wrong-sub|empty|data-len <n>|clear [count]\n"
    "  vs ind feature <mask> <enabled> <collecting> | vs ind report <n1> <n2> [interval_ms|none]\n"
    "  vs ind ant <count> [sub] | vs ind event <code> | vs ind cell <sub> <earfcn> | vs demo on [ms]|off\n",
};

}  // namespace modemd
