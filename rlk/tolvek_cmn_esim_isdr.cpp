#include "tolvek_cmn_esim_isdr.h"

#include <string.h>

#include <vector>

#include "ber_tlv.h"
#include "euicc_es10.h"
#include "tolvek_log.h"
#include "tolvek_uim_client.h"
#include "user_identity_module_v01.h"

namespace {

constexpr size_t k_sw_len = 2;
constexpr uint8_t k_refresh_flag_false = 0x00;
constexpr uint8_t k_le_any = 0x00;
constexpr char k_hex_digits[] = "0123456789ABCDEF";
constexpr uint8_t k_nibble_filler = 0x0F;

/* Sends one ES10 request and returns the response data (without status
 * words) in `out`.  Non-zero: the UIM client's result or the card's status
 * words when they are not 9000. */
int es10_exchange(uint8_t slot, uint8_t channel, const std::vector<uint8_t> &request, std::vector<uint8_t> *out)
{
    if (request.size() > k_es10_store_data_max) {
        TOLVEK_LOGD("ES10 request of %d bytes is too long", int(request.size()));
        return TOLVEK_ISDR_ERR_MALFORMED;
    }
    std::vector<uint8_t> apdu = {es10_store_data_cla(channel), k_es10_ins_store_data, k_es10_p1_last_block,
                                 k_es10_p2_first_block, uint8_t(request.size())};
    apdu.insert(apdu.end(), request.begin(), request.end());
    apdu.push_back(k_le_any);
    std::vector<uint8_t> rsp(QMI_UIM_APDU_DATA_MAX_V01);
    uint32_t rsp_len = uint32_t(rsp.size());
    int rc = tolvek_uim_send_apdu(slot, channel, apdu.data(), uint32_t(apdu.size()), rsp.data(), &rsp_len);
    if (rc != 0) {
        TOLVEK_LOGD("send apdu failed, code %d", rc);
        return rc;
    }
    uint16_t sw = uint16_t(rsp[rsp_len - 2] << 8 | rsp[rsp_len - 1]);
    TOLVEK_LOGD("apdu answered %d bytes, sw 0x%04X", int(rsp_len - k_sw_len), unsigned(sw));
    if (sw != k_sw_ok) return sw;
    out->assign(rsp.begin(), rsp.begin() + (rsp_len - k_sw_len));
    return 0;
}

/* The INTEGER result inside a Disable/Delete response `tag`. */
int es10_result(const std::vector<uint8_t> &rsp, uint32_t tag)
{
    ber_tlv outer, result;
    if (!ber_tlv_find(rsp.data(), rsp.size(), tag, &outer) ||
        !ber_tlv_find(outer.value, outer.len, k_es10_tag_result, &result) || result.len != 1) {
        TOLVEK_LOGD("response to 0x%X is malformed", unsigned(tag));
        return TOLVEK_ISDR_ERR_MALFORMED;
    }
    TOLVEK_LOGD("response to 0x%X: result %d", unsigned(tag), int(result.value[0]));
    return result.value[0];
}

/* One ProfileInfo (E3) into `p`; false when it has no ICCID. */
bool read_profile_info(const ber_tlv &info, tolvek_isdr_profile *p)
{
    ber_tlv iccid, state;
    if (!ber_tlv_find(info.value, info.len, k_es10_tag_iccid, &iccid) || iccid.len != TOLVEK_ISDR_ICCID_LEN) {
        return false;
    }
    memcpy(p->iccid, iccid.value, TOLVEK_ISDR_ICCID_LEN);
    p->state = ber_tlv_find(info.value, info.len, k_es10_tag_profile_state, &state) && state.len == 1
                   ? state.value[0]
                   : k_es10_profile_disabled;
    return true;
}

int profile_command(uint8_t slot, uint8_t channel, uint32_t tag, const std::vector<uint8_t> &body)
{
    std::vector<uint8_t> request, rsp;
    ber_tlv_append(&request, tag, body);
    int rc = es10_exchange(slot, channel, request, &rsp);
    return rc != 0 ? rc : es10_result(rsp, tag);
}

std::vector<uint8_t> iccid_tlv(const uint8_t *iccid)
{
    std::vector<uint8_t> out;
    ber_tlv_append(&out, k_es10_tag_iccid, iccid, TOLVEK_ISDR_ICCID_LEN);
    return out;
}

}  // namespace

void tolvek_isdr_iccid_text(const uint8_t *iccid, char *out)
{
    size_t n = 0;
    for (size_t i = 0; i < TOLVEK_ISDR_ICCID_LEN; i++) {
        uint8_t lo = iccid[i] & 0x0F, hi = uint8_t(iccid[i] >> 4);
        if (lo != k_nibble_filler) out[n++] = k_hex_digits[lo];
        if (hi != k_nibble_filler) out[n++] = k_hex_digits[hi];
    }
    out[n] = '\0';
}

int tolvek_isdr_open(uint8_t slot, uint8_t *channel)
{
    uint16_t sw = 0;
    int rc = tolvek_uim_open_logical_channel(slot, k_es10_isdr_aid, k_es10_isdr_aid_len, channel, &sw);
    if (rc != 0) {
        TOLVEK_LOGD("open logical channel failed, code %d, sw 0x%04X", rc, unsigned(sw));
        return sw != 0 && sw != k_sw_ok ? int(sw) : rc;
    }
    if (*channel == 0 || *channel > k_es10_last_channel) {
        TOLVEK_LOGD("channel %d cannot carry ES10 commands", int(*channel));
        tolvek_uim_close_logical_channel(slot, *channel);
        return TOLVEK_ISDR_ERR_MALFORMED;
    }
    return 0;
}

int tolvek_isdr_close(uint8_t slot, uint8_t channel)
{
    return tolvek_uim_close_logical_channel(slot, channel);
}

int tolvek_isdr_list_profiles(uint8_t slot, uint8_t channel, tolvek_isdr_profile_list *list)
{
    list->count = 0;
    std::vector<uint8_t> request, rsp;
    ber_tlv_append(&request, k_es10_tag_profile_info_list, nullptr, 0);
    int rc = es10_exchange(slot, channel, request, &rsp);
    if (rc != 0) return rc;
    ber_tlv outer, ok, err;
    if (!ber_tlv_find(rsp.data(), rsp.size(), k_es10_tag_profile_info_list, &outer)) {
        TOLVEK_LOGD("profile list answer is malformed");
        return TOLVEK_ISDR_ERR_MALFORMED;
    }
    if (ber_tlv_find(outer.value, outer.len, k_es10_tag_list_error, &err) && err.len == 1) {
        TOLVEK_LOGD("profile list refused, error %d", int(err.value[0]));
        return err.value[0] != 0 ? int(err.value[0]) : TOLVEK_ISDR_ERR_MALFORMED;
    }
    if (!ber_tlv_find(outer.value, outer.len, k_es10_tag_ctx0, &ok)) {
        TOLVEK_LOGD("profile list answer is malformed");
        return TOLVEK_ISDR_ERR_MALFORMED;
    }
    size_t pos = 0;
    while (pos < ok.len) {
        ber_tlv info;
        size_t n = ber_tlv_parse(ok.value + pos, ok.len - pos, &info);
        if (n == 0) return TOLVEK_ISDR_ERR_MALFORMED;
        pos += n;
        if (info.tag != k_es10_tag_profile_info || list->count >= TOLVEK_ISDR_MAX_PROFILES) continue;
        if (read_profile_info(info, &list->profiles[list->count])) list->count++;
    }
    return 0;
}

int tolvek_isdr_disable_profile(uint8_t slot, uint8_t channel, const uint8_t *iccid)
{
    std::vector<uint8_t> body;
    ber_tlv_append(&body, k_es10_tag_ctx0, iccid_tlv(iccid));
    ber_tlv_append(&body, k_es10_tag_refresh_flag, &k_refresh_flag_false, 1);
    return profile_command(slot, channel, k_es10_tag_disable_profile, body);
}

int tolvek_isdr_delete_profile(uint8_t slot, uint8_t channel, const uint8_t *iccid)
{
    return profile_command(slot, channel, k_es10_tag_delete_profile, iccid_tlv(iccid));
}
