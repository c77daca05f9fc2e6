/* LTE MAC UL transport block (log 0xB064).
 *
 * Each sample of sub-packet 8 is one transport block with the MAC header
 * the UE built for it: the sub-headers (R/F2/E/LCID, with F/L for SDUs and
 * variable-size control elements) followed by the control elements, as
 * 36.321 lays them out; SDU and padding bytes are not logged.  The walk
 * counts header bits against the logged header length, picks up the power
 * headroom and the buffer size levels, and reports how much of each grant
 * carried data.  Layouts: docs/diag-log-layouts.md. */
#include <stdio.h>

#include "modem_stats_convert.h"
#include "modem_stats_log_format.h"
#include "modem_stats_log_parsers.h"
#include "modem_stats_log_util.h"

namespace {

constexpr uint32_t B064_VERSIONS[] = {1};
constexpr uint8_t B064_SUBPACKET_UL_TB = 8;
constexpr uint32_t B064_SUBPACKET_VERSIONS[] = {1, 2, 3, 5, 8};
constexpr const char *B064_SUBPACKET_VERSION_NAME = "LTE MAC V1 UL TB SubPkt Version Union";
/* Sample fields before the grant: HARQ id, RNTI type, SFN (version 1);
 * sub id and cell id come first in the later versions. */
constexpr int32_t B064_V1_BEFORE_GRANT = 4;
constexpr int32_t B064_BEFORE_GRANT = 6;
constexpr int32_t B064_RLC_PDUS_BYTES = 1;
constexpr int32_t B064_BSR_EVENT_AND_TRIGGER_BYTES = 2;

/* Uplink LCIDs of 36.321 (Table 6.2.1-2). */
constexpr uint8_t LCID_LAST_SDU = 10; /* 0 CCCH, 1..10 logical channels */
constexpr uint8_t LCID_DC_PHR = 24;
constexpr uint8_t LCID_EXT_PHR = 25;
constexpr uint8_t LCID_PHR = 26;
constexpr uint8_t LCID_C_RNTI = 27;
constexpr uint8_t LCID_TRUNCATED_BSR = 28;
constexpr uint8_t LCID_SHORT_BSR = 29;
constexpr uint8_t LCID_LONG_BSR = 30;
constexpr uint8_t LCID_PADDING = 31;

constexpr uint32_t OCTET_BITS = 8;
constexpr uint32_t LONG_BSR_LEVELS = 4;
constexpr uint32_t BS_LEVEL_BITS = 6;
/* Sub-headers of one header: at most one per logged header byte. */
constexpr uint32_t MAX_SUBHEADERS = 256;
/* Length of a variable control element under the last sub-header: the
 * rest of the logged header. */
constexpr uint32_t LEN_REST = 0xFFFFFFFF;

/* Upper bound in bytes of each buffer size level (36.321 Table 6.1.3.1-1);
 * level 63 (more than 150000 bytes) has none and is out of range. */
constexpr uint32_t BS_LEVEL_BYTES[] = {
    0,     10,    12,    14,    17,    19,    22,    26,    31,    36,    42,    49,    57,     67,     78,     91,
    107,   125,   146,   171,   200,   234,   274,   321,   376,   440,   515,   603,   706,    826,    967,    1132,
    1326,  1552,  1817,  2127,  2490,  2915,  3413,  3995,  4677,  5476,  6411,  7505,  8787,   10287,  12043,  14099,
    16507, 19325, 22624, 26487, 31009, 36304, 42502, 49759, 58255, 68201, 79846, 93479, 109439, 128125, 150000,
};
constexpr uint32_t BS_LEVEL_COUNT = sizeof(BS_LEVEL_BYTES) / sizeof(BS_LEVEL_BYTES[0]);
static_assert(BS_LEVEL_COUNT == (1u << BS_LEVEL_BITS) - 1, "every bounded buffer size level has a byte bound");

typedef struct {
    uint32_t phr_ind;
    uint32_t bsr_num;
    uint32_t bsr_sum;
    uint32_t grant_bytes;
    uint32_t padding_bytes;
    uint32_t grants;
    uint32_t full_grants;
    bool tb_phr; /* the transport block in hand carries a power headroom */
    bool tb_bsr; /* ... and a buffer status report */
} b064_stats;

typedef struct {
    uint8_t lc_id;
    uint32_t len; /* length field of SDUs and variable elements, or LEN_REST */
} b064_subheader;

bool is_sdu(uint8_t lcid)
{
    return lcid <= LCID_LAST_SDU;
}

bool is_variable_element(uint8_t lcid)
{
    return lcid == LCID_DC_PHR || lcid == LCID_EXT_PHR;
}

bool is_supported(uint8_t lcid)
{
    return is_sdu(lcid) || (lcid >= LCID_DC_PHR && lcid <= LCID_PADDING);
}

/* Bits of the control element under `sh` in the logged header, given the
 * header bits not yet walked. */
uint32_t element_bits(const b064_subheader &sh, uint32_t bits_rest)
{
    switch (sh.lc_id) {
        case LCID_PHR:
        case LCID_TRUNCATED_BSR:
        case LCID_SHORT_BSR: return OCTET_BITS;
        case LCID_C_RNTI: return 2 * OCTET_BITS;
        case LCID_LONG_BSR: return LONG_BSR_LEVELS * BS_LEVEL_BITS;
        case LCID_DC_PHR:
        case LCID_EXT_PHR: return sh.len == LEN_REST ? bits_rest : sh.len * OCTET_BITS;
        default: return 0; /* SDUs and padding are not logged */
    }
}

void add_bs_level(uint32_t tb, uint32_t lcg, uint32_t level, b064_stats *st)
{
    st->tb_bsr = true;
    if (level >= BS_LEVEL_COUNT) {
        modem_stats_log_printf("error, bsr_lcg3[%d][%d] = %d, bsr_lcg3_num = %d, bsr_lcg3_sum = %d\n",
                               static_cast<int>(tb), static_cast<int>(lcg), static_cast<int>(level),
                               static_cast<int>(st->bsr_num), static_cast<int>(st->bsr_sum));
        return;
    }
    st->bsr_num++;
    st->bsr_sum += level;
}

/* Reads the sub-headers at the bit position; false stops the parser. */
bool walk_subheaders(uint32_t tb, uint32_t hdr_bits_sum, uint32_t *hdr_bits_cnt, b064_subheader *subheaders,
                     uint32_t *count)
{
    uint8_t e_bit = 1;
    while (e_bit) {
        if (*hdr_bits_cnt + OCTET_BITS > hdr_bits_sum || *count >= MAX_SUBHEADERS) {
            modem_stats_log_printf("count_tb[%d] error, hdr_bits_cnt(%d) > hdr_bits_sum(%d)\n", static_cast<int>(tb),
                                   static_cast<int>(*hdr_bits_cnt + OCTET_BITS), static_cast<int>(hdr_bits_sum));
            return false;
        }
        uint8_t lcid_data = 0, lc_id = 0;
        if (!modem_stats_unpk_at("lcid_data", 0, OCTET_BITS, &lcid_data)) return false;
        if (!modem_stats_unpk_at("e_bit", 5, 1, &e_bit)) return false;
        if (!modem_stats_unpk_at("lc_id", 0, 5, &lc_id)) return false;
        modem_stats_bit_advance(OCTET_BITS);
        *hdr_bits_cnt += OCTET_BITS;
        if (!is_supported(lc_id)) {
            modem_stats_log_printf("not support lcid_data_array[%d] = %d\n", static_cast<int>(*count), lc_id);
            return false;
        }
        b064_subheader sh = {lc_id, 0};
        if (is_variable_element(lc_id) && !e_bit) sh.len = LEN_REST;
        if (e_bit && (is_sdu(lc_id) || is_variable_element(lc_id))) {
            uint8_t f_bit = 0, l_high = 0, l_low = 0;
            if (!modem_stats_unpk_at("f_bit", 7, 1, &f_bit)) return false;
            uint32_t len_bits = f_bit ? 2 * OCTET_BITS : OCTET_BITS;
            if (*hdr_bits_cnt + len_bits > hdr_bits_sum) {
                modem_stats_log_printf("count_tb[%d] error, hdr_bits_cnt(%d) > hdr_bits_sum(%d)\n",
                                       static_cast<int>(tb), static_cast<int>(*hdr_bits_cnt + len_bits),
                                       static_cast<int>(hdr_bits_sum));
                return false;
            }
            /* The length is sent most significant octet first. */
            if (!modem_stats_unpk_at("l_len", 0, 7, &l_high)) return false;
            if (f_bit && !modem_stats_unpk_at("l_len", OCTET_BITS, OCTET_BITS, &l_low)) return false;
            sh.len = f_bit ? (static_cast<uint32_t>(l_high) << OCTET_BITS) | l_low : l_high;
            modem_stats_bit_advance(len_bits);
            *hdr_bits_cnt += len_bits;
        }
        subheaders[(*count)++] = sh;
    }
    return true;
}

/* Reads the control elements in sub-header order; false stops the parser. */
bool walk_elements(uint32_t tb, uint32_t hdr_bits_sum, uint32_t *hdr_bits_cnt, const b064_subheader *subheaders,
                   uint32_t count, b064_stats *st)
{
    for (uint32_t j = 0; j < count; j++) {
        uint32_t bits = element_bits(subheaders[j], hdr_bits_sum - *hdr_bits_cnt);
        if (!bits) continue;
        if (*hdr_bits_cnt + bits > hdr_bits_sum) {
            modem_stats_log_printf("count_tb_payloads[%d] error, hdr_bits_cnt(%d) > hdr_bits_sum(%d)\n",
                                   static_cast<int>(tb), static_cast<int>(*hdr_bits_cnt + bits),
                                   static_cast<int>(hdr_bits_sum));
            return false;
        }
        uint8_t lcid = subheaders[j].lc_id;
        if (lcid == LCID_PHR) {
            uint8_t phr_ind = 0;
            if (!modem_stats_unpk_at("phr_ind", 0, BS_LEVEL_BITS, &phr_ind)) return false;
            st->phr_ind = phr_ind;
            st->tb_phr = true;
        } else if (is_variable_element(lcid)) {
            /* Cell bitmap C7..C1 over an R bit, then P, V and PH of the first entry. */
            static const char *const ci_names[] = {"c1", "c2", "c3", "c4", "c5", "c6", "c7"};
            uint8_t ci = 0;
            for (uint32_t c = 0; c < 7; c++) {
                if (!modem_stats_unpk_at(ci_names[c], c + 1, 1, &ci)) return false;
            }
            if (bits >= 2 * OCTET_BITS) {
                uint8_t p = 0, v = 0, phr_ind = 0;
                if (!modem_stats_unpk_at("p", 15, 1, &p)) return false;
                if (!modem_stats_unpk_at("v", 14, 1, &v)) return false;
                if (!modem_stats_unpk_at("phr_ind", OCTET_BITS, BS_LEVEL_BITS, &phr_ind)) return false;
                st->phr_ind = phr_ind;
                st->tb_phr = true;
            }
        } else if (lcid == LCID_SHORT_BSR || lcid == LCID_TRUNCATED_BSR) {
            uint8_t level = 0, lcg = 0;
            if (!modem_stats_unpk_at("bsr_lcg3", 0, BS_LEVEL_BITS, &level)) return false;
            if (!modem_stats_unpk_at("lcg_id", BS_LEVEL_BITS, 2, &lcg)) return false;
            add_bs_level(tb, lcg, level, st);
        } else if (lcid == LCID_LONG_BSR) {
            uint32_t raw = 0;
            if (!modem_stats_unpk_at("bsr_lcg3", 0, LONG_BSR_LEVELS * BS_LEVEL_BITS, &raw)) return false;
            /* Levels of LCG 0..3 run from the most significant bit of the first octet. */
            uint32_t be = ((raw & 0xFF) << 16) | (raw & 0xFF00) | ((raw >> 16) & 0xFF);
            for (uint32_t g = 0; g < LONG_BSR_LEVELS; g++)
                add_bs_level(tb, g, (be >> ((LONG_BSR_LEVELS - 1 - g) * BS_LEVEL_BITS)) & 0x3F, st);
        }
        modem_stats_bit_advance(bits);
        *hdr_bits_cnt += bits;
    }
    return true;
}

/* Walks one transport block's logged header at the bit position. */
bool walk_header(uint32_t tb, uint8_t hdr_len, b064_stats *st)
{
    b064_subheader subheaders[MAX_SUBHEADERS];
    uint32_t count = 0;
    uint32_t hdr_bits_sum = hdr_len * OCTET_BITS;
    uint32_t hdr_bits_cnt = 0;
    st->tb_phr = st->tb_bsr = false;
    if (!walk_subheaders(tb, hdr_bits_sum, &hdr_bits_cnt, subheaders, &count)) return false;
    modem_stats_log_printf("------ count_tb[%d], subheaders = %d, hdr_bits_cnt = %d, hdr_bits_sum = %d\n",
                           static_cast<int>(tb), static_cast<int>(count), static_cast<int>(hdr_bits_cnt),
                           static_cast<int>(hdr_bits_sum));
    if (!walk_elements(tb, hdr_bits_sum, &hdr_bits_cnt, subheaders, count, st)) return false;
    modem_stats_log_printf("------ count_tb_payloads[%d], hdr_bits_cnt = %d, hdr_bits_sum = %d\n", static_cast<int>(tb),
                           static_cast<int>(hdr_bits_cnt), static_cast<int>(hdr_bits_sum));
    /* A block that reports both its power headroom and its buffers. */
    if (st->tb_phr && st->tb_bsr) {
        modem_stats_log_printf("------ PHR_IND and BSR_LCG[%d], phr_ind = %d, bsr_lcg3_num = %d, bsr_lcg3_sum = %d\n",
                               static_cast<int>(tb), static_cast<int>(st->phr_ind), static_cast<int>(st->bsr_num),
                               static_cast<int>(st->bsr_sum));
    }
    return true;
}

/* Reads one sample at the byte cursor, walks its header and leaves the
 * cursor after it. */
bool read_sample(uint8_t version_sub, uint32_t subpacket, uint32_t sample, uint32_t tb, b064_stats *st)
{
    modem_stats_data_skip(version_sub == 1 ? B064_V1_BEFORE_GRANT : B064_BEFORE_GRANT);
    uint16_t num_grant_bytes = 0, num_padding_bytes = 0;
    uint8_t hdr_len = 0;
    if (!modem_stats_data_unpk("num_grant_bytes", &num_grant_bytes)) return false;
    modem_stats_data_skip(B064_RLC_PDUS_BYTES);
    if (!modem_stats_data_unpk("num_padding_bytes", &num_padding_bytes)) return false;
    modem_stats_data_skip(B064_BSR_EVENT_AND_TRIGGER_BYTES);
    if (!modem_stats_data_unpk("hdr_len", &hdr_len)) return false;
    uint32_t hdr_at = modem_stats_log_cursor();
    if (hdr_len) {
        if (!modem_stats_log_seek(hdr_at)) return false;
        if (!walk_header(tb, hdr_len, st)) return false;
        if (!modem_stats_log_seek(hdr_at + hdr_len)) return false;
    }

    st->grant_bytes += num_grant_bytes;
    st->padding_bytes += num_padding_bytes;
    st->grants++;
    if (num_padding_bytes == 0) st->full_grants++;
    uint32_t used = num_grant_bytes > num_padding_bytes ? num_grant_bytes - num_padding_bytes : 0;
    float sfn_grant = num_grant_bytes ? modem_stats_round_2_decimals(100.0f * used / num_grant_bytes) : 0.0f;
    float sfn_full = modem_stats_round_2_decimals(100.0f * st->full_grants / st->grants);
    modem_stats_log_print_buf("LTE FSSR: [%d][%d], pad = %d, grant = %d, sfn_grant = %.2f, sfn_full = %.2f",
                              static_cast<int>(subpacket), static_cast<int>(sample), num_padding_bytes, num_grant_bytes,
                              sfn_grant, sfn_full);
    return true;
}

}  // namespace

void modem_stats_parse_b064_diag_log_lte_mac_ul_transport_block(modem_stats_data_id_e_type *data_id,
                                                                modem_stats_single_data_common_type **record)
{
    uint8_t version = 0;
    if (!modem_stats_data_unpk("version", &version)) return;
    if (!modem_stats_log_version_check(version, B064_VERSIONS, __func__)) return;
    uint8_t num_sub_packets = 0;
    if (!modem_stats_data_unpk("num_sub_packets", &num_sub_packets)) return;
    modem_stats_data_skip(2);

    b064_stats st = {MODEM_STATS_ABSENT_U8, 0, 0, 0, 0, 0, 0, false, false};
    uint8_t version_sub = 0;
    uint32_t tb = 0;
    uint32_t subpacket_at = modem_stats_log_cursor();
    for (uint32_t s = 0; s < num_sub_packets; s++) {
        uint8_t sub_pcaket_id = 0;
        if (!modem_stats_data_unpk("sub_pcaket_id", &sub_pcaket_id)) return;
        if (sub_pcaket_id != B064_SUBPACKET_UL_TB) {
            puts("sub_pcaket_id should be 8");
            return;
        }
        if (!modem_stats_data_unpk("version_ul_tb_sub_pkt", &version_sub)) return;
        if (!modem_stats_log_version_check(version_sub, B064_SUBPACKET_VERSIONS, B064_SUBPACKET_VERSION_NAME)) return;
        uint16_t sub_packet_size = 0;
        uint8_t num_samples = 0;
        if (!modem_stats_data_unpk("sub_packet_size", &sub_packet_size)) return;
        if (!modem_stats_data_unpk("num_samples", &num_samples)) return;
        for (uint32_t i = 0; i < num_samples; i++, tb++) {
            if (!read_sample(version_sub, s, i, tb, &st)) return;
        }
        subpacket_at += sub_packet_size;
        if (s + 1 < num_sub_packets && !modem_stats_log_seek(subpacket_at)) return;
    }
    if (st.grants == 0) {
        modem_stats_data_not_valid(0, __func__);
        return;
    }
    uint32_t bsr_lcg3_avg = st.bsr_num ? st.bsr_sum / st.bsr_num : 0;
    uint32_t bsr_lcg3_bytes = BS_LEVEL_BYTES[bsr_lcg3_avg < BS_LEVEL_COUNT ? bsr_lcg3_avg : BS_LEVEL_COUNT - 1];
    modem_stats_log_printf("version = %d, phr_ind = %d, bsr_lcg3_avg = %d, bsr_lcg3_num = %d, bsr_lcg3_bytes = %d\n",
                           version_sub, static_cast<int>(st.phr_ind), static_cast<int>(bsr_lcg3_avg),
                           static_cast<int>(st.bsr_num), static_cast<int>(bsr_lcg3_bytes));

    modem_stats_data_pk_begin();
    const modem_stats_log_pk_field fields[] = {
        {"version", version_sub, 1},
        {"phr_ind", st.phr_ind, 1},
        {"bsr_lcg3_avg", bsr_lcg3_avg, 1},
        {"bsr_lcg3_num", st.bsr_num, 2},
        {"bsr_lcg3_bytes", bsr_lcg3_bytes, 4},
        {"num_grant_bytes", st.grant_bytes, 4},
        {"num_padding_bytes", st.padding_bytes, 4},
    };
    if (!modem_stats_log_pk_fields(fields)) return;
    modem_stats_data_pk_finish(MODEM_STATS_DATA_ID_LTE_MAC_UL_TB, data_id, record);
}
