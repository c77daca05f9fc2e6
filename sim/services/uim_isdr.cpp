/* The ISD-R of the simulated eUICC: STORE DATA commands carrying the ES10
 * requests ProfileInfoList, DisableProfile and DeleteProfile, answered
 * with the card's status words. */
#include "ber_tlv.h"
#include "euicc_es10.h"
#include "uim_card.h"

namespace modemd {
namespace {

constexpr size_t k_apdu_min = 4; /* CLA INS P1 P2 */

std::vector<uint8_t> with_sw(std::vector<uint8_t> data, uint16_t sw)
{
    data.push_back(uint8_t(sw >> 8));
    data.push_back(uint8_t(sw));
    return data;
}

std::vector<uint8_t> sw_only(uint16_t sw) { return with_sw({}, sw); }

std::vector<uint8_t> profile_info_list(const uim_model &m)
{
    std::vector<uint8_t> list;
    for (const uim_profile &p : m.profiles) {
        std::vector<uint8_t> info;
        ber_tlv_append(&info, k_es10_tag_iccid, p.iccid.data(), p.iccid.size());
        uint8_t state = p.enabled ? k_es10_profile_enabled : k_es10_profile_disabled;
        ber_tlv_append(&info, k_es10_tag_profile_state, &state, 1);
        if (!p.nickname.empty()) {
            ber_tlv_append(&info, k_es10_tag_profile_nickname, reinterpret_cast<const uint8_t *>(p.nickname.data()),
                           p.nickname.size());
        }
        ber_tlv_append(&list, k_es10_tag_profile_info, info);
    }
    std::vector<uint8_t> ok, out;
    ber_tlv_append(&ok, k_es10_tag_ctx0, list);
    ber_tlv_append(&out, k_es10_tag_profile_info_list, ok);
    return out;
}

std::vector<uint8_t> result_response(uint32_t tag, uint8_t result)
{
    std::vector<uint8_t> body, out;
    ber_tlv_append(&body, k_es10_tag_result, &result, 1);
    ber_tlv_append(&out, tag, body);
    return out;
}

/* The ICCID a Disable (inside A0) or Delete request names; null if none. */
const uint8_t *requested_iccid(const ber_tlv &request)
{
    ber_tlv id = request, iccid;
    if (request.tag == k_es10_tag_disable_profile &&
        !ber_tlv_find(request.value, request.len, k_es10_tag_ctx0, &id)) {
        return nullptr;
    }
    if (!ber_tlv_find(id.value, id.len, k_es10_tag_iccid, &iccid) || iccid.len != k_uim_iccid_len) return nullptr;
    return iccid.value;
}

/* One ES10 request; false when it is malformed. */
bool es10_request(uim_model &m, const ber_tlv &request, std::vector<uint8_t> *out)
{
    if (request.tag == k_es10_tag_profile_info_list) {
        *out = profile_info_list(m);
        return true;
    }
    const uint8_t *iccid = requested_iccid(request);
    if (!iccid) return false;
    uim_profile *p = m.find_profile(iccid);
    uint8_t result = k_es10_result_ok;
    if (!p) {
        result = k_es10_result_not_found;
    } else if (request.tag == k_es10_tag_disable_profile) {
        if (!p->enabled) {
            result = k_es10_result_wrong_state;
        } else {
            p->enabled = false;
        }
    } else if (p->enabled) {
        result = k_es10_result_wrong_state; /* an enabled profile is never deleted */
    } else {
        m.profiles.erase(m.profiles.begin() + (p - m.profiles.data()));
    }
    if (result == k_es10_result_ok && !m.save()) result = k_es10_result_undefined;
    *out = result_response(request.tag, result);
    return true;
}

}  // namespace

std::vector<uint8_t> uim_isdr_apdu(uim_model &m, uint8_t channel, const uint8_t *apdu, size_t len)
{
    if (len < k_apdu_min) return sw_only(k_sw_wrong_length);
    if (apdu[0] != es10_store_data_cla(channel)) return sw_only(k_sw_cla_not_supported);
    if (apdu[1] != k_es10_ins_store_data) return sw_only(k_sw_ins_not_supported);
    if (apdu[2] != k_es10_p1_last_block || apdu[3] != k_es10_p2_first_block) return sw_only(k_sw_wrong_p1p2);
    if (len < k_es10_apdu_header_len) return sw_only(k_sw_wrong_length);
    size_t lc = apdu[4];
    /* Lc bytes, then at most the Le byte. */
    if (len != k_es10_apdu_header_len + lc && len != k_es10_apdu_header_len + lc + 1) {
        return sw_only(k_sw_wrong_length);
    }
    ber_tlv request;
    if (ber_tlv_parse(apdu + k_es10_apdu_header_len, lc, &request) != lc) return sw_only(k_sw_wrong_data);
    if (request.tag != k_es10_tag_profile_info_list && request.tag != k_es10_tag_disable_profile &&
        request.tag != k_es10_tag_delete_profile) {
        return sw_only(k_sw_data_not_found);
    }
    std::vector<uint8_t> out;
    if (!es10_request(m, request, &out)) return sw_only(k_sw_wrong_data);
    return with_sw(out, k_sw_ok);
}

}  // namespace modemd
