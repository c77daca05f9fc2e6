/* WCDMA PN search (0x4179), GSM L1 receive diversity metrics (0x5096) and
 * the IMS logs: RTP sequence number and payload (0x1568), SIP message
 * (0x156E), VoLTE session setup and end (0x1830, 0x1831).  Layouts:
 * docs/diag-log-layouts.md. */
#include <stdio.h>

#include "modem_stats_convert.h"
#include "modem_stats_log_format.h"
#include "modem_stats_log_parsers.h"
#include "modem_stats_log_util.h"

namespace {

constexpr uint32_t RX_LEVEL_BITS = 16;

/* 0x4179: rx_agc_old_0 at bit 24, rx_agc_old_1 at bit 40. */
constexpr uint8_t W4179_VERSION = 8;
constexpr uint32_t W4179_FIRST_SKIP_BITS = 16;
/* 0x5096: rx_prx_old at bit 56, rx_drx_old at bit 72. */
constexpr uint8_t G5096_VERSION = 6;
constexpr uint32_t G5096_FIRST_SKIP_BITS = 48;

constexpr uint8_t IMS_RTP_VERSION = 13;
constexpr int32_t IMS_RTP_BEFORE_CODEC = 11;
constexpr int32_t IMS_RTP_BEFORE_FRAME = 8;
constexpr uint8_t IMS_SIP_VERSION = 1;
constexpr uint8_t IMS_VOLTE_VERSION = 3;

/* The two receive levels of 0x4179 and 0x5096: signed 16-bit fields read
 * on from the version byte, the first after `first_skip` bits, the second
 * right after it. */
bool read_two_levels(uint32_t first_skip, const char *name0, const char *name1, int32_t *level0, int32_t *level1)
{
    if (!modem_stats_base_with_bit()) return false;
    uint16_t raw0 = 0, raw1 = 0;
    if (!modem_stats_unpk_mid(name0, first_skip, RX_LEVEL_BITS, &raw0)) return false;
    if (!modem_stats_unpk_mid(name1, 0, RX_LEVEL_BITS, &raw1)) return false;
    *level0 = modem_stats_log_sign_extend(raw0, RX_LEVEL_BITS);
    *level1 = modem_stats_log_sign_extend(raw1, RX_LEVEL_BITS);
    return true;
}

/* Records 110 and 111: version byte and two floats. */
void pack_two_levels(uint8_t version, const char *name0, float v0, const char *name1, float v1,
                     modem_stats_data_id_e_type id, modem_stats_data_id_e_type *data_id,
                     modem_stats_single_data_common_type **record)
{
    modem_stats_data_pk_begin();
    const modem_stats_log_pk_field fields[] = {{"version", version, 1},
                                               {name0, modem_stats_log_float_bits(v0), 4},
                                               {name1, modem_stats_log_float_bits(v1), 4}};
    if (!modem_stats_log_pk_fields(fields)) return;
    modem_stats_data_pk_finish(id, data_id, record);
}

/* Skips a length-prefixed string: the length byte is read under `name`,
 * the bytes are skipped, never past the bytes left. */
bool skip_string(const char *name, uint8_t *len)
{
    if (!modem_stats_data_unpk(name, len)) return false;
    modem_stats_log_skip_bounded(*len);
    return true;
}

/* Shared shape of 0x1830 and 0x1831; `outcome_name` is result or end_cause. */
void volte_session(const char *outcome_name, modem_stats_data_id_e_type id, const char *parser,
                   modem_stats_data_id_e_type *data_id, modem_stats_single_data_common_type **record)
{
    uint8_t version = 0;
    if (!modem_stats_data_unpk("version", &version)) return;
    if (version != IMS_VOLTE_VERSION) {
        modem_stats_version_not_support(version, parser);
        return;
    }
    uint8_t dialled_string_len = 0, direction = 0, call_id_len = 0, originating_url_len = 0, terminating_url_len = 0,
            rat = 0;
    uint16_t outcome = 0;
    uint32_t call_setup_delay = 0;
    if (!skip_string("dialled_string_len", &dialled_string_len)) return;
    if (!modem_stats_data_unpk("direction", &direction)) return;
    if (!skip_string("call_id_len", &call_id_len)) return;
    if (!skip_string("originating_url_len", &originating_url_len)) return;
    if (!skip_string("terminating_url_len", &terminating_url_len)) return;
    if (!modem_stats_data_unpk(outcome_name, &outcome)) return;
    if (!modem_stats_data_unpk("call_setup_delay", &call_setup_delay)) return;
    if (!modem_stats_data_unpk("rat", &rat)) return;
    modem_stats_log_printf(
        "version = %d, direction = %d, %s = %d, call_setup_delay = %d, rat = %d, originating_url_len = %d, "
        "terminating_url_len = %d\n",
        version, direction, outcome_name, outcome, static_cast<int>(call_setup_delay), rat, originating_url_len,
        terminating_url_len);

    /* Fixed layout of records 125 and 126: the version is always 3. */
    modem_stats_data_pk_begin();
    modem_stats_data_pk_direct(IMS_VOLTE_VERSION, sizeof(uint8_t));
    modem_stats_data_pk_direct(direction, sizeof(uint8_t));
    modem_stats_data_pk_direct(outcome, sizeof(uint16_t));
    modem_stats_data_pk_direct(call_setup_delay, sizeof(uint32_t));
    if (!modem_stats_data_pk("rat", rat, sizeof(uint8_t))) return;
    modem_stats_data_pk_finish(id, data_id, record);
}

}  // namespace

void modem_stats_parse_4179_diag_log_wcdma_pn_search_edition2(modem_stats_data_id_e_type *data_id,
                                                              modem_stats_single_data_common_type **record)
{
    uint8_t version = 0;
    if (!modem_stats_data_unpk("version", &version)) return;
    if (version != W4179_VERSION) {
        modem_stats_version_not_support(version, __func__);
        return;
    }
    int32_t rx_agc_old_0 = 0, rx_agc_old_1 = 0;
    if (!read_two_levels(W4179_FIRST_SKIP_BITS, "rx_agc_old_0", "rx_agc_old_1", &rx_agc_old_0, &rx_agc_old_1)) return;
    float rx_agc_0 = modem_stats_wcdma_rssi(rx_agc_old_0);
    float rx_agc_1 = modem_stats_wcdma_rssi(rx_agc_old_1);
    modem_stats_log_print_buf("version = %d, rx_agc_old_0 = %d, rx_agc_old_1 = %d, rx_agc_0 = %.2f, rx_agc_1 = %.2f",
                              version, rx_agc_old_0, rx_agc_old_1, rx_agc_0, rx_agc_1);
    pack_two_levels(version, "rx_agc_0", rx_agc_0, "rx_agc_1", rx_agc_1, MODEM_STATS_DATA_ID_WCDMA_PN_SEARCH, data_id,
                    record);
}

void modem_stats_parse_5096_diag_log_gsm_l1_rx_diversity_metrics(modem_stats_data_id_e_type *data_id,
                                                                 modem_stats_single_data_common_type **record)
{
    uint8_t version = 0;
    if (!modem_stats_data_unpk("version", &version)) return;
    if (version != G5096_VERSION) {
        modem_stats_version_not_support(version, __func__);
        return;
    }
    int32_t rx_prx_old = 0, rx_drx_old = 0;
    if (!read_two_levels(G5096_FIRST_SKIP_BITS, "rx_prx_old", "rx_drx_old", &rx_prx_old, &rx_drx_old)) return;
    float rx_prx = modem_stats_gsm_rssi(rx_prx_old);
    float rx_drx = modem_stats_gsm_rssi(rx_drx_old);
    modem_stats_log_print_buf("version = %d, rx_prx_old = %d, rx_drx_old = %d, rx_prx = %.2f, rx_drx = %.2f", version,
                              rx_prx_old, rx_drx_old, rx_prx, rx_drx);
    pack_two_levels(version, "rx_prx", rx_prx, "rx_drx", rx_drx, MODEM_STATS_DATA_ID_GSM_L1_RX_DIVERSITY, data_id,
                    record);
}

void modem_stats_parse_1830_diag_log_ims_volte_session_setup(modem_stats_data_id_e_type *data_id,
                                                             modem_stats_single_data_common_type **record)
{
    volte_session("result", MODEM_STATS_DATA_ID_IMS_VOLTE_SESSION_SETUP, __func__, data_id, record);
}

void modem_stats_parse_1831_diag_log_ims_volte_session_end(modem_stats_data_id_e_type *data_id,
                                                           modem_stats_single_data_common_type **record)
{
    volte_session("end_cause", MODEM_STATS_DATA_ID_IMS_VOLTE_SESSION_END, __func__, data_id, record);
}

void modem_stats_parse_156e_diag_log_ims_sip_message(modem_stats_data_id_e_type *data_id,
                                                     modem_stats_single_data_common_type **record)
{
    uint8_t version = 0;
    if (!modem_stats_data_unpk("version", &version)) return;
    if (version != IMS_SIP_VERSION) {
        modem_stats_version_not_support(version, __func__);
        return;
    }
    uint8_t direction = 0, sdp_presence = 0, sip_call_id_len = 0;
    uint16_t sip_msg_len = 0, sip_msg_logged_bytes = 0, msg_id = 0, response_code = 0;
    uint32_t cm_call_id = 0;
    if (!modem_stats_data_unpk("direction", &direction)) return;
    if (!modem_stats_data_unpk("sdp_presence", &sdp_presence)) return;
    if (!modem_stats_data_unpk("sip_call_id_len", &sip_call_id_len)) return;
    if (!modem_stats_data_unpk("sip_msg_len", &sip_msg_len)) return;
    if (!modem_stats_data_unpk("sip_msg_logged_bytes", &sip_msg_logged_bytes)) return;
    if (!modem_stats_data_unpk("msg_id", &msg_id)) return;
    if (!modem_stats_data_unpk("response_code", &response_code)) return;
    if (!modem_stats_data_unpk("cm_call_id", &cm_call_id)) return;
    modem_stats_log_printf(
        "version = %d, direction = %d, sdp_presence = %d, sip_call_id_len = %d, sip_msg_len = %d, "
        "sip_msg_logged_bytes = %d, msg_id = %d\n",
        version, direction, sdp_presence, sip_call_id_len, sip_msg_len, sip_msg_logged_bytes, msg_id);
    modem_stats_log_printf("response_code = %d, cm_call_id = %d\n", response_code, static_cast<int>(cm_call_id));

    modem_stats_data_pk_begin();
    const modem_stats_log_pk_field fields[] = {
        {"version", version, 1},
        {"direction", direction, 1},
        {"sdp_presence", sdp_presence, 1},
        {"sip_call_id_len", sip_call_id_len, 1},
        {"sip_msg_len", sip_msg_len, 2},
        {"sip_msg_logged_bytes", sip_msg_logged_bytes, 2},
        {"msg_id", msg_id, 2},
        {"response_code", response_code, 2},
        {"cm_call_id", cm_call_id, 4},
    };
    if (!modem_stats_log_pk_fields(fields)) return;
    modem_stats_data_pk_finish(MODEM_STATS_DATA_ID_IMS_SIP_MESSAGE, data_id, record);
}

void modem_stats_parse_1568_diag_log_ims_rtp_sn_and_payload(modem_stats_data_id_e_type *data_id,
                                                            modem_stats_single_data_common_type **record)
{
    uint8_t version = 0, codec_type = 0, frame_type = 0;
    if (!modem_stats_data_unpk("version", &version)) return;
    if (version != IMS_RTP_VERSION) {
        modem_stats_version_not_support(version, __func__);
        return;
    }
    modem_stats_data_skip(IMS_RTP_BEFORE_CODEC);
    if (!modem_stats_data_unpk("codec_type", &codec_type)) return;
    modem_stats_data_skip(IMS_RTP_BEFORE_FRAME);
    if (!modem_stats_data_unpk("frame_type", &frame_type)) return;
    modem_stats_log_printf("version = %d, codec_type = %d, frame_type = %d\n", version, codec_type, frame_type);

    modem_stats_data_pk_begin();
    const modem_stats_log_pk_field fields[] = {
        {"version", version, 1}, {"codec_type", codec_type, 1}, {"frame_type", frame_type, 1}};
    if (!modem_stats_log_pk_fields(fields)) return;
    modem_stats_data_pk_finish(MODEM_STATS_DATA_ID_IMS_RTP_SN_AND_PAYLOAD, data_id, record);
}
