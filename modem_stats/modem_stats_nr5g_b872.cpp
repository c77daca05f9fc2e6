/* NR5G L2 UL transport block (log 0xB872).
 *
 * Per TTI and per transport block the log holds the grant, the bytes built
 * and the MAC control elements the UE put into the block, each as a type
 * byte (the 38.321 UL-SCH LCID) followed by the element's body.  The walk
 * counts the bits of each block's element area (bit_num_tb) and of the TTI
 * (bit_sum_tb), traces every element, accumulates the buffer size indexes
 * of the BSRs and reports how full each grant was.  Layouts:
 * docs/diag-log-layouts.md. */
#include <stdio.h>

#include "modem_stats_convert.h"
#include "modem_stats_log_format.h"
#include "modem_stats_log_parsers.h"
#include "modem_stats_log_util.h"

namespace {

typedef struct {
    uint32_t tti_bytes;
    uint32_t tb_bytes;
} b872_layout;

constexpr uint32_t B872_VERSIONS[] = {4, 0x20001, 0x30003};
constexpr b872_layout B872_LAYOUTS[] = {{8, 20}, {8, 20}, {12, 24}};
constexpr uint32_t B872_TTIS_AT = 8;
constexpr modem_stats_bit_field_row B872_META[] = {
    {"num_tti", 0, 4, 8}, {"is_type2_scell", 4, 1, 8}, {"is_type2_ohter_cell", 5, 1, 8}};
constexpr modem_stats_bit_field_row B872_NUM_TB = {"num_tb", 32, 4, 8};
constexpr uint32_t B872_GRANT_AT = 4;
constexpr uint32_t B872_BUILT_AT = 8;
constexpr modem_stats_bit_field_row B872_MCE_LEN = {"mce_len", 128, 6, 8};

/* UL-SCH LCIDs of the MAC control elements (38.321 Table 6.2.1-2). */
constexpr uint8_t LCID_RECOMMENDED_BIT_RATE = 53;
constexpr uint8_t LCID_MC4_PHR = 54;
constexpr uint8_t LCID_MC1_PHR = 56;
constexpr uint8_t LCID_SINGLE_PHR = 57;
constexpr uint8_t LCID_C_RNTI = 58;
constexpr uint8_t LCID_SHORT_TRUNC_BSR = 59;
constexpr uint8_t LCID_LONG_TRUNC_BSR = 60;
constexpr uint8_t LCID_SHORT_BSR = 61;
constexpr uint8_t LCID_LONG_BSR = 62;

constexpr uint32_t OCTET = 8;
constexpr uint32_t MCE_TYPE_BITS = 6;
constexpr uint32_t SHORT_BSR_IDX_BITS = 5;
constexpr uint32_t PHR_V_BIT = 6;

typedef struct {
    uint8_t is_type2_scell;
    uint8_t is_type2_ohter_cell;
    uint32_t bsr_idx_num;
    uint32_t bsr_idx_sum;
    uint32_t grant_sum;
    uint32_t built_sum;
    uint32_t tbs;
    uint32_t full_tbs;
} b872_stats;

/* Position in the element area of one transport block. */
typedef struct {
    uint32_t tti, tb, mce;
    uint32_t bit_num_tb; /* bits walked in this block's elements */
    uint32_t mce_bits;   /* bits of this block's elements */
} b872_walk;

/* Reads `width` bits at the bit position and moves on, unless the block's
 * element area would be overrun (then false with `*overrun` set). */
bool take(b872_walk *w, const char *name, uint32_t width, uint32_t *value, bool *overrun)
{
    if (w->bit_num_tb + width > w->mce_bits) {
        modem_stats_log_printf("------ TB-Overrun[%d][%d][%d], bit_num_tb = %d, mce_bits = %d\n",
                               static_cast<int>(w->tti), static_cast<int>(w->tb), static_cast<int>(w->mce),
                               static_cast<int>(w->bit_num_tb + width), static_cast<int>(w->mce_bits));
        *overrun = true;
        return false;
    }
    if (!modem_stats_unpk_mid(name, 0, width, value)) return false;
    w->bit_num_tb += width;
    return true;
}

/* Multiple-entry PHR: the cell bitmap, then one PH octet per reported
 * cell (type 2 of the other MAC entity and of the PUCCH SCell when
 * configured, type 1 of the PCell, type 1 of each SCell whose C bit is
 * set), each followed by a PCMAX octet when its V bit is 0. */
bool mc_phr(b872_walk *w, const char *label, uint32_t ci_bits, const b872_stats &st, bool *overrun)
{
    uint32_t cxr = 0;
    if (!take(w, "cxr", ci_bits, &cxr, overrun)) return false;
    modem_stats_log_printf("------ %s[%d][%d][%d], cxr = %d, bit_num_tb = %d\n", label, static_cast<int>(w->tti),
                           static_cast<int>(w->tb), static_cast<int>(w->mce), static_cast<int>(cxr),
                           static_cast<int>(w->bit_num_tb));
    uint32_t scells = static_cast<uint32_t>(__builtin_popcount(cxr & ~1u));
    const char *kinds[3 + 32];
    uint32_t n = 0;
    if (st.is_type2_ohter_cell) kinds[n++] = "Type2OtherCell";
    if (st.is_type2_scell) kinds[n++] = "Type2SCell";
    kinds[n++] = "Type1PCell";
    for (uint32_t i = 0; i < scells; i++) kinds[n++] = "Type1SCell";
    for (uint32_t e = 0; e < n; e++) {
        uint32_t octet = 0;
        if (!take(w, "v_val", OCTET, &octet, overrun)) return false;
        uint32_t v_val = (octet >> PHR_V_BIT) & 1;
        if (!v_val) {
            uint32_t pcmax = 0;
            if (!take(w, "pcmax", OCTET, &pcmax, overrun)) return false;
        }
        modem_stats_log_printf("------ %s-%s[%d][%d][%d], v_val = %d, bit_num_tb = %d\n", label, kinds[e],
                               static_cast<int>(w->tti), static_cast<int>(w->tb), static_cast<int>(w->mce),
                               static_cast<int>(v_val), static_cast<int>(w->bit_num_tb));
    }
    return true;
}

/* Long BSR (and its truncated form): a length octet, the LCG bitmap, then
 * one 8-bit buffer size index per octet left. */
bool long_bsr(b872_walk *w, const char *label, b872_stats *st, bool *overrun)
{
    uint32_t bsr_length = 0;
    if (!take(w, "bsr_length", OCTET, &bsr_length, overrun)) return false;
    for (uint32_t i = 0; i < bsr_length; i++) {
        uint32_t value = 0;
        if (!take(w, i == 0 ? "lcg_bitmap" : "bsr_idx", OCTET, &value, overrun)) return false;
        if (i == 0) continue;
        st->bsr_idx_num++;
        st->bsr_idx_sum += value;
    }
    modem_stats_log_printf(
        "------ %s[%d][%d][%d], bsr_length = %d, bsr_idx_num = %d, bsr_idx_sum = %d, bit_num_tb = %d\n", label,
        static_cast<int>(w->tti), static_cast<int>(w->tb), static_cast<int>(w->mce), static_cast<int>(bsr_length),
        static_cast<int>(st->bsr_idx_num), static_cast<int>(st->bsr_idx_sum), static_cast<int>(w->bit_num_tb));
    return true;
}

bool short_bsr(b872_walk *w, const char *label, b872_stats *st, bool *overrun)
{
    uint32_t bsr_idx_tmp = 0, lcg = 0;
    if (!take(w, "bsr_idx", SHORT_BSR_IDX_BITS, &bsr_idx_tmp, overrun)) return false;
    if (!take(w, "lcg_id", OCTET - SHORT_BSR_IDX_BITS, &lcg, overrun)) return false;
    st->bsr_idx_num++;
    st->bsr_idx_sum += bsr_idx_tmp;
    modem_stats_log_printf(
        "------ %s[%d][%d][%d], bsr_idx_tmp = %d, bsr_idx_num = %d, bsr_idx_sum = %d, bit_num_tb = %d\n", label,
        static_cast<int>(w->tti), static_cast<int>(w->tb), static_cast<int>(w->mce), static_cast<int>(bsr_idx_tmp),
        static_cast<int>(st->bsr_idx_num), static_cast<int>(st->bsr_idx_sum), static_cast<int>(w->bit_num_tb));
    return true;
}

/* A fixed-size element that is traced and skipped. */
bool skipped(b872_walk *w, const char *label, uint32_t bits, bool *overrun)
{
    uint32_t body = 0;
    for (uint32_t i = 0; i < bits / OCTET; i++) {
        if (!take(w, label, OCTET, &body, overrun)) return false;
    }
    modem_stats_log_printf("------ %s[%d][%d][%d], bit_num_tb = %d\n", label, static_cast<int>(w->tti),
                           static_cast<int>(w->tb), static_cast<int>(w->mce), static_cast<int>(w->bit_num_tb));
    return true;
}

/* Walks the control elements of one block at the bit position.  False
 * stops the parser; an overrun or an unknown element ends the block only. */
bool walk_elements(b872_walk *w, uint32_t mce_len, uint32_t *bit_sum_tb, b872_stats *st)
{
    uint32_t mce_type = 0;
    bool overrun = false;
    while (w->bit_num_tb < w->mce_bits) {
        bool ok = false;
        if (!take(w, "mce_type", OCTET, &mce_type, &overrun)) {
            if (overrun) break;
            return false;
        }
        mce_type &= (1u << MCE_TYPE_BITS) - 1;
        bool unknown = false;
        switch (mce_type) {
            case LCID_LONG_TRUNC_BSR: ok = long_bsr(w, "LongTruncBsr", st, &overrun); break;
            case LCID_LONG_BSR: ok = long_bsr(w, "LongBsr", st, &overrun); break;
            case LCID_SHORT_TRUNC_BSR: ok = short_bsr(w, "ShortTruncBsr", st, &overrun); break;
            case LCID_SHORT_BSR: ok = short_bsr(w, "ShortBsr", st, &overrun); break;
            case LCID_SINGLE_PHR: ok = skipped(w, "SinglePhr", 2 * OCTET, &overrun); break;
            case LCID_MC1_PHR: ok = mc_phr(w, "Mc1Phr", OCTET, *st, &overrun); break;
            case LCID_MC4_PHR: ok = mc_phr(w, "Mc4Phr", 4 * OCTET, *st, &overrun); break;
            case LCID_C_RNTI: ok = skipped(w, "CRnti", 2 * OCTET, &overrun); break;
            case LCID_RECOMMENDED_BIT_RATE: ok = skipped(w, "RecommendedBitRate", 2 * OCTET, &overrun); break;
            default:
                /* The size of an unknown element is unknown: the block ends here. */
                modem_stats_log_printf("------ Unknown[%d][%d][%d], mce_type = %d, bit_num_tb = %d\n",
                                       static_cast<int>(w->tti), static_cast<int>(w->tb), static_cast<int>(w->mce),
                                       static_cast<int>(mce_type), static_cast<int>(w->bit_num_tb));
                unknown = true;
                break;
        }
        if (unknown || overrun) break;
        if (!ok) return false; /* the unpacker refused a read */
        w->mce++;
    }
    *bit_sum_tb += w->bit_num_tb;
    modem_stats_log_printf("------ TB-End[%d][%d][%d], mce_len = %d, mce_type = %d, bit_num_tb = %d, bit_sum_tb = %d\n",
                           static_cast<int>(w->tti), static_cast<int>(w->tb), static_cast<int>(w->mce),
                           static_cast<int>(mce_len), static_cast<int>(mce_type), static_cast<int>(w->bit_num_tb),
                           static_cast<int>(*bit_sum_tb));
    return true;
}

}  // namespace

void modem_stats_parse_b872_diag_log_nr5g_l2_ul_tb(modem_stats_data_id_e_type *data_id,
                                                   modem_stats_single_data_common_type **record)
{
    uint32_t version = 0;
    if (!modem_stats_data_unpk("version", &version)) return;
    if (!modem_stats_log_version_check(version, B872_VERSIONS, __func__)) return;
    const b872_layout &layout = B872_LAYOUTS[modem_stats_log_version_index(version, B872_VERSIONS, 3)];
    if (!modem_stats_base_with_bit()) return;
    uint64_t meta[3];
    if (!modem_stats_log_read_rows(B872_META, meta)) return;
    b872_stats st = {static_cast<uint8_t>(meta[1]), static_cast<uint8_t>(meta[2]), 0, 0, 0, 0, 0, 0};

    uint32_t at = B872_TTIS_AT;
    for (uint32_t t = 0; t < meta[0]; t++) {
        uint32_t num_tb = 0;
        if (!modem_stats_log_seek(at)) return;
        if (!modem_stats_unpk_at(B872_NUM_TB.name, B872_NUM_TB.offset, B872_NUM_TB.width, &num_tb)) return;
        at += layout.tti_bytes;
        uint32_t bit_sum_tb = 0;
        for (uint32_t b = 0; b < num_tb; b++) {
            uint32_t grant_size = 0, bytes_built = 0, mce_len = 0;
            if (!modem_stats_log_seek(at + B872_GRANT_AT) || !modem_stats_data_unpk("grant_size", &grant_size)) return;
            if (!modem_stats_log_seek(at + B872_BUILT_AT) || !modem_stats_data_unpk("bytes_built", &bytes_built))
                return;
            if (!modem_stats_log_seek(at)) return;
            if (!modem_stats_unpk_at(B872_MCE_LEN.name, B872_MCE_LEN.offset, B872_MCE_LEN.width, &mce_len)) return;
            at += layout.tb_bytes;
            b872_walk w = {t, b, 0, 0, mce_len * OCTET};
            if (!modem_stats_log_seek(at)) return;
            if (!walk_elements(&w, mce_len, &bit_sum_tb, &st)) return;
            at += mce_len;

            st.grant_sum += grant_size;
            st.built_sum += bytes_built;
            st.tbs++;
            if (bytes_built >= grant_size) st.full_tbs++;
            float sfn_grant = grant_size ? modem_stats_round_2_decimals(100.0f * bytes_built / grant_size) : 0.0f;
            float sfn_full = modem_stats_round_2_decimals(100.0f * st.full_tbs / st.tbs);
            modem_stats_log_print_buf("NR5G FSSR: [%d][%d], grant = %d, build = %d, sfn_grant = %.2f, sfn_full = %.2f",
                                      static_cast<int>(t), static_cast<int>(b), static_cast<int>(grant_size),
                                      static_cast<int>(bytes_built), sfn_grant, sfn_full);
        }
    }
    if (st.tbs == 0) {
        modem_stats_data_not_valid(0, __func__);
        return;
    }
    uint32_t bsr_idx = st.bsr_idx_num ? st.bsr_idx_sum / st.bsr_idx_num : 0;
    modem_stats_log_printf("version = %d, bsr_idx = %d, bsr_idx_num = %d, bsr_idx_sum = %d\n",
                           static_cast<int>(version), static_cast<int>(bsr_idx), static_cast<int>(st.bsr_idx_num),
                           static_cast<int>(st.bsr_idx_sum));

    modem_stats_data_pk_begin();
    const modem_stats_log_pk_field fields[] = {{"version", version, 4},
                                               {"bsr_idx", bsr_idx, 1},
                                               {"bsr_idx_num", st.bsr_idx_num, 2},
                                               {"bsr_idx_sum", st.bsr_idx_sum, 4},
                                               {"grant_size", st.grant_sum, 4},
                                               {"bytes_built", st.built_sum, 4}};
    if (!modem_stats_log_pk_fields(fields)) return;
    modem_stats_data_pk_finish(MODEM_STATS_DATA_ID_NR5G_L2_UL_TB, data_id, record);
}
