/* Log packets of the simulator's diag stream (layouts: diag_log_stream.h,
 * docs/diag-port.md). */
#include "diag_log_stream.h"

#include <math.h>
#include <string.h>

namespace modemd {
namespace {

constexpr int64_t k_gps_epoch_unix_ms = 315964800000LL;
constexpr int k_ts_unit_shift = 16;

constexpr uint8_t k_cmd_log = 0x10;
constexpr uint8_t k_cmd_event = 0x60;
constexpr size_t k_log_header_len = 12; /* length, code, timestamp */

/* The statistics item of the LTE primary carrier and of the NR primary
 * carrier: the same bytes option 9 reports, drift included. */
constexpr uint32_t k_item_lte_pcc = 82;
constexpr uint32_t k_item_nr_pcc = 135;
constexpr size_t k_lte_item_len = 75;
constexpr size_t k_nr_item_len = 24;

/* 0xB193: packet version 1, one sub-packet 25 of version 36 (128-byte
 * cells after an 8-byte header). */
constexpr uint8_t k_b193_version = 1;
constexpr uint8_t k_b193_subpacket_id = 25;
constexpr uint8_t k_b193_subpacket_version = 36;
constexpr size_t k_b193_cell_len = 128;
constexpr size_t k_b193_subpacket_len = 4 + 8 + k_b193_cell_len;
/* The combined RSRP is carried on a scale 40 dB above the per-chain one
 * (raw/16 - 140 dBm). */
constexpr double k_combined_rsrp_offset_db = 140.0;

/* 0xB97F version 2.7: minor, major. */
constexpr uint16_t k_b97f_minor = 7;
constexpr uint16_t k_b97f_major = 2;
constexpr size_t k_b97f_head_len = 16;
constexpr size_t k_b97f_carrier_len = 32;
constexpr size_t k_b97f_cell_len = 16;
constexpr size_t k_b97f_beam_len = 44;
constexpr uint8_t k_ssb_periodicity_code = 2; /* 20 ms */

constexpr uint8_t k_b17f_version = 5;

/* 0xB0C0 version 15: BCCH-BCH is PDU number 1. */
constexpr uint8_t k_b0c0_version = 15;
constexpr uint8_t k_rrc_release_major = 15;
constexpr uint8_t k_pdu_bcch_bch = 1;
constexpr size_t k_mib_len = 3;
/* MIB fields: dl-Bandwidth n100 (20 MHz), normal PHICH duration, PHICH
 * resource "one". */
constexpr uint8_t k_mib_bw_n100 = 5;
constexpr uint8_t k_mib_phich_one = 2;

/* Event 1606 carries one byte: the RRC state (4 connected, 2 idle). */
constexpr uint8_t k_rrc_connected = 4;
constexpr uint8_t k_rrc_idle_camped = 2;
constexpr uint16_t k_event_len_one_byte = 1 << 13;

void put_le(std::vector<uint8_t> *out, size_t at, uint64_t v, int width)
{
    for (int i = 0; i < width; i++) (*out)[at + size_t(i)] = uint8_t(v >> (8 * i));
}

/* Writes `width` bits of `v` at bit `bit` (bit 0 = least significant bit
 * of byte 0, little-endian across bytes). */
void put_bits(std::vector<uint8_t> *out, size_t bit, uint32_t v, int width)
{
    for (int i = 0; i < width; i++) {
        size_t b = bit + size_t(i);
        if ((v >> i) & 1) (*out)[b / 8] |= uint8_t(1u << (b % 8));
    }
}

/* round((value + offset) * scale), held within `width` bits. */
uint32_t raw_of(float value, double offset, double scale, int width)
{
    double raw = floor((double(value) + offset) * scale + 0.5);
    double max = double((1u << width) - 1);
    return uint32_t(raw < 0 ? 0 : raw > max ? max : raw);
}

int32_t q7_of(float value) { return int32_t(lrint(double(value) * 128.0)); }

float f32_at(const std::vector<uint8_t> &b, size_t at)
{
    uint32_t bits = uint32_t(b[at]) | uint32_t(b[at + 1]) << 8 | uint32_t(b[at + 2]) << 16 | uint32_t(b[at + 3]) << 24;
    float v;
    memcpy(&v, &bits, sizeof(v));
    return v;
}

/* Levels of the LTE primary carrier as option 9 reports them now. */
struct lte_levels {
    uint32_t earfcn;
    uint16_t pci;
    uint8_t rx_valid;
    float rsrp[k_vs_rx_count], rsrq[k_vs_rx_count], rssi[k_vs_rx_count], snr[k_vs_rx_count];
};

bool lte_levels_of(const vs_scene &scene, uint64_t now_ms, lte_levels *l)
{
    std::vector<uint8_t> item;
    if (!vs_scene_item(scene, k_item_lte_pcc, now_ms, &item) || item.size() < k_lte_item_len) return false;
    l->earfcn = uint32_t(item[4]) | uint32_t(item[5]) << 8 | uint32_t(item[6]) << 16 | uint32_t(item[7]) << 24;
    l->pci = uint16_t(item[8] | item[9] << 8);
    l->rx_valid = item[10];
    for (int rx = 0; rx < k_vs_rx_count; rx++) {
        size_t at = 11 + size_t(rx) * 16;
        l->rsrp[rx] = f32_at(item, at);
        l->rsrq[rx] = f32_at(item, at + 4);
        l->rssi[rx] = f32_at(item, at + 8);
        l->snr[rx] = f32_at(item, at + 12);
    }
    return true;
}

/* SFN (10 ms frames, 0..1023) and subframe (0..9) at `now_ms`. */
uint32_t sfn_of(uint64_t now_ms) { return uint32_t((now_ms / 10) % 1024); }
uint32_t subframe_of(uint64_t now_ms) { return uint32_t(now_ms % 10); }

bool body_b193(const vs_scene &scene, uint64_t now_ms, std::vector<uint8_t> *body)
{
    lte_levels l;
    if (!lte_levels_of(scene, now_ms, &l)) return false;
    body->assign(4 + k_b193_subpacket_len, 0);
    (*body)[0] = k_b193_version;
    (*body)[1] = 1;
    (*body)[4] = k_b193_subpacket_id;
    (*body)[5] = k_b193_subpacket_version;
    put_le(body, 6, k_b193_subpacket_len, 2);
    const size_t p = 8; /* sub-packet payload */
    put_le(body, p, l.earfcn, 4);
    put_le(body, p + 4, 1, 2); /* cells */
    put_le(body, p + 6, l.rx_valid, 2);

    std::vector<uint8_t> cell(k_b193_cell_len, 0);
    put_bits(&cell, 0, l.pci, 9);
    put_bits(&cell, 9, 0, 3); /* serving cell index: the primary */
    put_bits(&cell, 12, 1, 1);  /* is the serving cell */
    put_bits(&cell, 32, sfn_of(now_ms), 10);
    put_bits(&cell, 42, subframe_of(now_ms), 4);
    /* Combined values: those of Rx0, the cell's level as one number. */
    float best_rsrp = l.rsrp[0], best_rsrq = l.rsrq[0], best_rssi = l.rssi[0];
    static const size_t rsrp_bit[k_vs_rx_count] = {138, 172, 204, 224};
    static const size_t rsrq_bit[k_vs_rx_count] = {288, 308, 330, 340};
    static const size_t rssi_bit[k_vs_rx_count] = {384, 395, 416, 427};
    static const size_t snr_bit[k_vs_rx_count] = {640, 649, 672, 681};
    for (int rx = 0; rx < k_vs_rx_count; rx++) {
        put_bits(&cell, rsrp_bit[rx], raw_of(l.rsrp[rx], 180.0, 16.0, 12), 12);
        put_bits(&cell, rsrq_bit[rx], raw_of(l.rsrq[rx], 30.0, 16.0, 10), 10);
        put_bits(&cell, rssi_bit[rx], raw_of(l.rssi[rx], 110.0, 16.0, 11), 11);
        put_bits(&cell, snr_bit[rx], raw_of(l.snr[rx], 20.0, 10.0, 9), 9);
    }
    uint32_t rsrp_raw = raw_of(best_rsrp, 180.0, 16.0, 12);
    put_bits(&cell, 236, raw_of(best_rsrp, k_combined_rsrp_offset_db, 16.0, 12), 12);
    put_bits(&cell, 268, rsrp_raw, 12); /* filtered RSRP */
    uint32_t rsrq_raw = raw_of(best_rsrq, 30.0, 16.0, 10);
    put_bits(&cell, 352, rsrq_raw, 10);
    put_bits(&cell, 372, rsrq_raw, 10); /* filtered RSRQ */
    put_bits(&cell, 448, raw_of(best_rssi, 110.0, 16.0, 11), 11);
    put_le(&cell, 70, 0x7FFF, 2); /* residual frequency error: not measured */
    put_le(&cell, 104, uint32_t(int32_t(lrint(double(l.snr[0]) * 16.0))), 4); /* projected SIR, /16 dB */
    put_le(&cell, 108, rsrq_raw, 4);                                            /* post-IC RSRQ */
    memcpy(body->data() + p + 8, cell.data(), cell.size());
    return true;
}

bool body_b97f(const vs_scene &scene, uint64_t now_ms, std::vector<uint8_t> *body)
{
    std::vector<uint8_t> item;
    if (!vs_scene_item(scene, k_item_nr_pcc, now_ms, &item) || item.size() < k_nr_item_len) return false;
    float rsrp[k_vs_rx_count];
    for (int rx = 0; rx < k_vs_rx_count; rx++) rsrp[rx] = f32_at(item, 4 + size_t(rx) * 4);
    float rsrq = f32_at(item, 20);

    body->assign(k_b97f_head_len + k_b97f_carrier_len + k_b97f_cell_len + k_b97f_beam_len, 0);
    put_le(body, 0, k_b97f_minor, 2);
    put_le(body, 2, k_b97f_major, 2);
    (*body)[4] = 1; /* layers */
    (*body)[5] = k_ssb_periodicity_code;
    size_t c = k_b97f_head_len;
    put_le(body, c, k_stream_nr_arfcn, 4);
    (*body)[c + 4] = 1; /* cells */
    (*body)[c + 5] = 0; /* serving cell index */
    put_le(body, c + 6, k_stream_nr_pci, 2);
    /* Serving RSRP of the two further receive paths (Rx 2 and 3). */
    put_le(body, c + 12, uint32_t(q7_of(rsrp[2])), 4);
    put_le(body, c + 16, uint32_t(q7_of(rsrp[3])), 4);
    put_le(body, c + 20, 0xFFFFFFFFu, 4); /* Rx beams: none */
    size_t cell = c + k_b97f_carrier_len;
    put_le(body, cell, k_stream_nr_pci, 2);
    put_le(body, cell + 2, sfn_of(now_ms), 2);
    (*body)[cell + 4] = 1; /* beams */
    put_le(body, cell + 8, uint32_t(q7_of(rsrp[0])), 4);
    put_le(body, cell + 12, uint32_t(q7_of(rsrq)), 4);
    size_t beam = cell + k_b97f_cell_len;
    put_le(body, beam + 4, 0xFFFFFFFFu, 4);  /* Rx beams: none */
    put_le(body, beam + 12, diag_timestamp_of(now_ms), 8);
    put_le(body, beam + 20, uint32_t(q7_of(rsrp[0])), 4);
    put_le(body, beam + 24, uint32_t(q7_of(rsrp[1])), 4);
    put_le(body, beam + 28, uint32_t(q7_of(rsrp[0])), 4); /* filtered RSRP */
    put_le(body, beam + 32, uint32_t(q7_of(rsrq)), 4);    /* filtered RSRQ */
    return true;
}

/* 0xB17F version 5: u8 version, u8 RRC release, 2 reserved, u32 EARFCN,
 * u16 PCI (bits 0-8), 2 reserved, u32 measured RSRP (bits 0-11), u32
 * average RSRP (bits 0-11), u32 RSRQ measured (bits 0-9) and average
 * (20-29), u32 RSSI (bits 10-20), u32 cell selection levels, u32 search
 * thresholds: 36 bytes. */
bool body_b17f(const vs_scene &scene, uint64_t now_ms, std::vector<uint8_t> *body)
{
    lte_levels l;
    if (!lte_levels_of(scene, now_ms, &l)) return false;
    body->assign(36, 0);
    (*body)[0] = k_b17f_version;
    (*body)[1] = 1; /* release 9 */
    put_le(body, 4, l.earfcn, 4);
    put_le(body, 8, l.pci & 0x1FF, 2);
    uint32_t rsrp = raw_of(l.rsrp[0], 180.0, 16.0, 12);
    put_le(body, 12, rsrp, 4);
    put_le(body, 16, rsrp, 4);
    uint32_t rsrq = raw_of(l.rsrq[0], 30.0, 16.0, 10);
    put_le(body, 20, rsrq | rsrq << 20, 4);
    put_le(body, 24, raw_of(l.rssi[0], 110.0, 16.0, 11) << 10, 4);
    return true;
}

bool body_b0c0(const vs_scene &scene, uint64_t now_ms, std::vector<uint8_t> *body)
{
    lte_levels l;
    if (!lte_levels_of(scene, now_ms, &l)) return false;
    uint32_t sfn = sfn_of(now_ms);
    body->assign(19 + k_mib_len, 0);
    (*body)[0] = k_b0c0_version;
    (*body)[1] = k_rrc_release_major;
    (*body)[2] = 0; /* release minor */
    (*body)[3] = 0; /* radio bearer: none on BCCH */
    put_le(body, 4, l.pci, 2);
    put_le(body, 6, l.earfcn, 4);
    put_le(body, 10, sfn << 4 | subframe_of(now_ms), 2);
    (*body)[12] = k_pdu_bcch_bch;
    put_le(body, 13, 0, 4); /* SIB mask */
    put_le(body, 17, k_mib_len, 2);
    /* MIB, unaligned PER, most significant bit first: dl-Bandwidth (3),
     * phich-Duration (1), phich-Resource (2), systemFrameNumber (the 8
     * upper bits of the SFN), spare (10). */
    uint32_t mib = uint32_t(k_mib_bw_n100) << 21 | 0u << 20 | uint32_t(k_mib_phich_one) << 18 | (sfn >> 2) << 10;
    (*body)[19] = uint8_t(mib >> 16);
    (*body)[20] = uint8_t(mib >> 8);
    (*body)[21] = uint8_t(mib);
    return true;
}

}  // namespace

const uint16_t k_stream_log_codes[] = {k_log_lte_srv_meas, k_log_lte_srv_eval, k_log_nr_ml1_search,
                                       k_log_lte_rrc_ota};
const size_t k_stream_log_code_count = sizeof(k_stream_log_codes) / sizeof(k_stream_log_codes[0]);

uint64_t diag_timestamp_of(uint64_t unix_ms)
{
    int64_t ms = int64_t(unix_ms) - k_gps_epoch_unix_ms;
    if (ms < 0) ms = 0;
    return (uint64_t(ms) * 4 / 5) << k_ts_unit_shift;
}

void diag_log_packet(uint16_t code, uint64_t ts, const std::vector<uint8_t> &body, std::vector<uint8_t> *out)
{
    size_t log_len = k_log_header_len + body.size();
    out->assign(4 + log_len, 0);
    (*out)[0] = k_cmd_log;
    put_le(out, 2, log_len, 2);
    put_le(out, 4, log_len, 2);
    put_le(out, 6, code, 2);
    put_le(out, 8, ts, 8);
    if (!body.empty()) memcpy(out->data() + 16, body.data(), body.size());
}

bool diag_stream_log_body(uint16_t code, const vs_scene &scene, uint64_t now_ms, std::vector<uint8_t> *body)
{
    if (!scene.served) return false;
    switch (code) {
    case k_log_lte_srv_meas:
        return body_b193(scene, now_ms, body);
    case k_log_nr_ml1_search:
        return body_b97f(scene, now_ms, body);
    case k_log_lte_rrc_ota:
        return body_b0c0(scene, now_ms, body);
    case k_log_lte_srv_eval:
        return body_b17f(scene, now_ms, body);
    default:
        return false;
    }
}

void diag_stream_event_packet(const vs_scene &scene, uint64_t ts, std::vector<uint8_t> *out)
{
    out->assign(3 + 2 + 8 + 1, 0);
    (*out)[0] = k_cmd_event;
    put_le(out, 1, out->size() - 3, 2);
    put_le(out, 3, k_event_lte_rrc_state | k_event_len_one_byte, 2);
    put_le(out, 5, ts, 8);
    (*out)[13] = scene.served && scene.lte[0].present ? k_rrc_connected : k_rrc_idle_camped;
}

}  // namespace modemd
