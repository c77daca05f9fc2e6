/* The UIM service (0x0B) of the simulated modem: power down and up per
 * slot, the eUICC's EID, logical channels to the ISD-R and APDUs on them,
 * the slot status (get and indication).  Layouts, state and control
 * requests: docs/uim-service.md. */
#include <string.h>

#include "euicc_es10.h"
#include "uim_card.h"
#include "uim_service.h"
#include "user_identity_module_v01.h"

namespace modemd {
namespace {

/* QMI error numbers of the service's refusals. */
constexpr int32_t k_err_invalid_arg = 0x30;
constexpr int32_t k_err_incompatible_state = 0x5A;
constexpr int32_t k_err_insufficient_resources = 0x08;
constexpr int32_t k_result_failure = 1;
constexpr uint8_t k_first_channel = 1;
/* Card status values. */
constexpr uint8_t k_card_state_present = 1;
constexpr uint8_t k_card_state_error = 2;
constexpr uint8_t k_card_error_power_down = 1;
constexpr uint8_t k_app_type_usim = 2;
constexpr uint8_t k_app_state_ready = 7;
constexpr uint8_t k_perso_state_ready = 2;
constexpr uint8_t k_pin_state_enabled_not_verified = 1;
constexpr uint8_t k_pin_state_disabled = 3;
constexpr uint8_t k_pin_retries = 3;
constexpr uint8_t k_puk_retries = 10;
constexpr uint8_t k_usim_aid[] = {0xA0, 0x00, 0x00, 0x00, 0x87, 0x10, 0x02, 0xFF,
                                  0xFF, 0xFF, 0xFF, 0x89, 0x06, 0x19, 0x00, 0x00};
/* The first application of card `card`. */
constexpr uint16_t k_app_index(uint8_t card) { return uint16_t(card << 8); }

void fail(uim_response_type_v01 &r, int32_t error)
{
    r.result = k_result_failure;
    r.error = error;
}

bool slot_ok(uint32_t slot) { return slot >= 1 && slot <= k_uim_slot_count; }

void set_card_result(uint8_t &valid, uim_card_result_type_v01 &r, uint16_t sw)
{
    valid = 1;
    r.sw1 = uint8_t(sw >> 8);
    r.sw2 = uint8_t(sw);
}

void handle_power(qmi_call &call, uint32_t slot, bool up, uim_response_type_v01 &r)
{
    uim_model &m = uim_model_of(call.d, &call.svc);
    if (!slot_ok(slot)) return fail(r, k_err_invalid_arg);
    if (uim_take_crash(call, 0)) return;
    uim_set_power(call.d, m, uint8_t(slot), up);
    call.d.log("uim: slot %u powered %s%s", slot, up ? "up" : "down",
               up && slot == k_uim_euicc_slot ? (m.euicc_active ? " (eUICC)" : " (physical SIM)") : "");
    uim_slot_status_change_ind_msg_v01 ind;
    memset(&ind, 0, sizeof(ind));
    uim_fill_slots_status(m, &ind.status);
    call.d.loop().add_timer(0, [&d = call.d, &svc = call.svc, ind] {
        d.send_indication(svc, QMI_UIM_SLOT_STATUS_CHANGE_IND_V01, &ind);
    });
}

void handle_power_down(qmi_call &call, const void *req, void *resp)
{
    auto &q = *static_cast<const uim_power_down_req_msg_v01 *>(req);
    handle_power(call, uint32_t(q.slot), false, static_cast<uim_power_down_resp_msg_v01 *>(resp)->resp);
}

void handle_power_up(qmi_call &call, const void *req, void *resp)
{
    auto &q = *static_cast<const uim_power_up_req_msg_v01 *>(req);
    handle_power(call, uint32_t(q.slot), true, static_cast<uim_power_up_resp_msg_v01 *>(resp)->resp);
}

void handle_get_eid(qmi_call &call, const void *req, void *resp_v)
{
    auto &q = *static_cast<const uim_get_eid_req_msg_v01 *>(req);
    auto &resp = *static_cast<uim_get_eid_resp_msg_v01 *>(resp_v);
    uim_model &m = uim_model_of(call.d, &call.svc);
    uint32_t slot = uint32_t(q.slot);
    if (!slot_ok(slot)) return fail(resp.resp, k_err_invalid_arg);
    if (uim_take_crash(call, 0)) return;
    if (!m.powered[slot - 1]) return fail(resp.resp, k_err_incompatible_state);
    if (slot != k_uim_euicc_slot) return; /* no eUICC there: success without an EID */
    resp.eid_value_valid = 1;
    resp.eid_value_len = k_uim_eid_len;
    memcpy(resp.eid_value, m.eid.data(), k_uim_eid_len);
}

void handle_open_channel(qmi_call &call, const void *req, void *resp_v)
{
    auto &q = *static_cast<const uim_open_logical_channel_req_msg_v01 *>(req);
    auto &resp = *static_cast<uim_open_logical_channel_resp_msg_v01 *>(resp_v);
    uim_model &m = uim_model_of(call.d, &call.svc);
    uint32_t slot = uint32_t(q.slot);
    if (!slot_ok(slot)) return fail(resp.resp, k_err_invalid_arg);
    if (uim_take_crash(call, 0)) return;
    if (!m.powered[slot - 1]) return fail(resp.resp, k_err_incompatible_state);
    bool isdr = slot == k_uim_euicc_slot && q.aid_valid && q.aid_len == k_es10_isdr_aid_len &&
                memcmp(q.aid, k_es10_isdr_aid, k_es10_isdr_aid_len) == 0;
    if (!isdr) {
        set_card_result(resp.card_result_valid, resp.card_result, k_sw_not_found);
        return fail(resp.resp, k_err_invalid_arg);
    }
    uint8_t channel = k_first_channel;
    while (m.channels.count(channel)) channel++;
    if (m.channels.size() >= k_uim_max_channels) {
        set_card_result(resp.card_result_valid, resp.card_result, k_sw_channel_not_supported);
        return fail(resp.resp, k_err_insufficient_resources);
    }
    m.channels[channel] = call.client.id;
    /* The channel is the connection's: closed when it closes. */
    call.d.on_connection_closed("uim", [&d = call.d](uint64_t conn_id) { uim_connection_closed(d, conn_id); });
    resp.channel_id_valid = 1;
    resp.channel_id = channel;
    set_card_result(resp.card_result_valid, resp.card_result, k_sw_ok);
    call.d.counters()["uim.channels_opened"]++;
}

void handle_close_channel(qmi_call &call, const void *req, void *resp_v)
{
    auto &q = *static_cast<const uim_logical_channel_req_msg_v01 *>(req);
    auto &resp = *static_cast<uim_logical_channel_resp_msg_v01 *>(resp_v);
    uim_model &m = uim_model_of(call.d, &call.svc);
    if (!slot_ok(uint32_t(q.slot)) || !q.channel_id_valid) return fail(resp.resp, k_err_invalid_arg);
    if (uim_take_crash(call, 0)) return;
    if (uint32_t(q.slot) != k_uim_euicc_slot || m.channels.erase(q.channel_id) == 0) {
        return fail(resp.resp, k_err_invalid_arg);
    }
    set_card_result(resp.card_result_valid, resp.card_result, k_sw_ok);
    call.d.counters()["uim.channels_closed"]++;
}

/* The ES10 tag an APDU carries, for the restart fault (0 if none). */
uint32_t apdu_es10_tag(const uim_send_apdu_req_msg_v01 &q)
{
    if (q.apdu_len <= k_es10_apdu_header_len + 1) return 0;
    const uint8_t *data = q.apdu + k_es10_apdu_header_len;
    return data[0] == 0xBF ? uint32_t(data[0]) << 8 | data[1] : data[0];
}

void handle_send_apdu(qmi_call &call, const void *req, void *resp_v)
{
    auto &q = *static_cast<const uim_send_apdu_req_msg_v01 *>(req);
    auto &resp = *static_cast<uim_send_apdu_resp_msg_v01 *>(resp_v);
    uim_model &m = uim_model_of(call.d, &call.svc);
    uint32_t slot = uint32_t(q.slot);
    if (!slot_ok(slot) || q.apdu_len == 0) return fail(resp.resp, k_err_invalid_arg);
    if (uim_take_crash(call, apdu_es10_tag(q))) return;
    if (!m.powered[slot - 1]) return fail(resp.resp, k_err_incompatible_state);
    uint8_t channel = q.channel_id_valid ? q.channel_id : 0;
    std::vector<uint8_t> out;
    if (slot != k_uim_euicc_slot || !m.channels.count(channel)) {
        out = {uint8_t(k_sw_channel_not_supported >> 8), uint8_t(k_sw_channel_not_supported)};
    } else {
        out = uim_isdr_apdu(m, channel, q.apdu, q.apdu_len);
    }
    if (out.size() > sizeof(resp.apdu)) out.resize(sizeof(resp.apdu));
    resp.apdu_valid = 1;
    resp.apdu_len = uint32_t(out.size());
    memcpy(resp.apdu, out.data(), out.size());
    call.d.counters()["uim.apdus"]++;
}

void handle_get_slots_status(qmi_call &call, const void *, void *resp_v)
{
    auto &resp = *static_cast<uim_get_slots_status_resp_msg_v01 *>(resp_v);
    uim_fill_slots_status(uim_model_of(call.d, &call.svc), &resp.status);
}

/* Card status: each slot's card with one USIM application (the eUICC's
 * when slot 2 presents it); a powered-down card is in error "powered
 * down". */
void handle_get_card_status(qmi_call &call, const void *, void *resp_v)
{
    auto &resp = *static_cast<uim_get_card_status_resp_msg_v01 *>(resp_v);
    const uim_model &m = uim_model_of(call.d, &call.svc);
    uim_card_status_type_v01 &cs = resp.card_status;
    resp.card_status_valid = 1;
    cs.index_gw_pri = m.powered[0] ? k_app_index(0) : QMI_UIM_NO_APP_INDEX_V01;
    cs.index_gw_sec = m.powered[1] ? k_app_index(1) : QMI_UIM_NO_APP_INDEX_V01;
    cs.index_1x_pri = QMI_UIM_NO_APP_INDEX_V01;
    cs.index_1x_sec = QMI_UIM_NO_APP_INDEX_V01;
    cs.card_info_len = k_uim_slot_count;
    for (uint8_t i = 0; i < k_uim_slot_count; i++) {
        uim_card_info_type_v01 &card = cs.card_info[i];
        if (!m.powered[i]) {
            card.card_state = k_card_state_error;
            card.error_code = k_card_error_power_down;
            continue;
        }
        card.card_state = k_card_state_present;
        card.app_info_len = 1;
        uim_app_info_type_v01 &app = card.app_info[0];
        app.app_type = k_app_type_usim;
        app.app_state = k_app_state_ready;
        app.perso_state = k_perso_state_ready;
        app.aid_value_len = sizeof(k_usim_aid);
        memcpy(app.aid_value, k_usim_aid, sizeof(k_usim_aid));
        app.pin1_state = k_pin_state_disabled;
        app.pin1_retries = k_pin_retries;
        app.puk1_retries = k_puk_retries;
        app.pin2_state = k_pin_state_enabled_not_verified;
        app.pin2_retries = k_pin_retries;
        app.puk2_retries = k_puk_retries;
    }
}

void uim_fill_error(void *resp, int code)
{
    fail(*static_cast<uim_response_type_v01 *>(resp), code);
}

qmi_idl_service_object_type uim_object() { return uim_get_service_object_v01(); }

const qmi_handler_entry k_handlers[] = {
    {QMI_UIM_GET_CARD_STATUS_REQ_V01, handle_get_card_status},
    {QMI_UIM_POWER_DOWN_REQ_V01, handle_power_down},
    {QMI_UIM_POWER_UP_REQ_V01, handle_power_up},
    {QMI_UIM_SEND_APDU_REQ_V01, handle_send_apdu},
    {QMI_UIM_LOGICAL_CHANNEL_REQ_V01, handle_close_channel},
    {QMI_UIM_OPEN_LOGICAL_CHANNEL_REQ_V01, handle_open_channel},
    {QMI_UIM_GET_SLOTS_STATUS_REQ_V01, handle_get_slots_status},
    {QMI_UIM_GET_EID_REQ_V01, handle_get_eid},
};

}  // namespace

void uim_fill_slots_status(const uim_model &m, uim_slots_status_type_v01 *s)
{
    s->physical_slot_status_valid = 1;
    s->physical_slot_info_valid = 1;
    s->eid_info_valid = 1;
    s->physical_slot_status_len = k_uim_slot_count;
    s->physical_slot_info_len = k_uim_slot_count;
    s->eid_info_len = k_uim_slot_count;
    for (uint8_t i = 0; i < k_uim_slot_count; i++) {
        uim_physical_slot_status_type_v01 &st = s->physical_slot_status[i];
        st.physical_card_status = UIM_PHYSICAL_CARD_STATE_PRESENT_V01;
        st.physical_slot_state = m.powered[i] ? UIM_SLOT_STATE_ACTIVE_V01 : UIM_SLOT_STATE_INACTIVE_V01;
        st.logical_slot = uint8_t(i + 1);
        uim_physical_slot_info_type_v01 &info = s->physical_slot_info[i];
        info.card_protocol = UIM_CARD_PROTOCOL_UICC_V01;
        info.num_app = 1;
        bool euicc = i + 1 == k_uim_euicc_slot && m.euicc_active;
        info.is_euicc = euicc ? 1 : 0;
        if (i + 1 == k_uim_euicc_slot) {
            s->eid_info[i].eid_len = k_uim_eid_len;
            memcpy(s->eid_info[i].eid, m.eid.data(), k_uim_eid_len);
        }
        if (euicc) {
            for (const uim_profile &p : m.profiles) {
                if (!p.enabled) continue;
                st.iccid_len = k_uim_iccid_len;
                memcpy(st.iccid, p.iccid.data(), k_uim_iccid_len);
            }
        }
    }
}

const sim_service_def g_uim_service_def = {
    "uim", uim_object, 0, k_handlers, sizeof(k_handlers) / sizeof(k_handlers[0]), uim_fill_error, uim_control,
    "  uim state | uim eid <32 digits> | uim profile-add <iccid> 0|1 [nickname]\n"
    "  uim ind97 [result error] | uim slot-ind | uim crash-on <msg>|apdu:<es10 tag> [down_ms]\n",
};

}  // namespace modemd
