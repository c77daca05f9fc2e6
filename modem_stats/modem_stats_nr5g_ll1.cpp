/* NR5G LL1 logs: receive AGC (0xB8C9), MAC transmit power (0xB8D2),
 * serving SNR (0xB8D8) and serving FTL (0xB8DD).  Each starts with a 32-bit
 * version (major in the high half, minor in the low half).  Layouts:
 * docs/diag-log-layouts.md. */
#include <stdio.h>

#include "modem_stats_convert.h"
#include "modem_stats_log_format.h"
#include "modem_stats_log_parsers.h"
#include "modem_stats_log_util.h"

namespace {

constexpr uint32_t RX_CHAINS = 4;

/* ---- 0xB8C9 receive AGC --------------------------------------------------- */

constexpr uint32_t B8C9_VERSIONS[] = {0x20000};
constexpr uint32_t B8C9_AGC_SUB_VERSIONS[] = {1};
constexpr const char *B8C9_AGC_SUB_NAME = "ControlAgcSubPacket";
constexpr uint8_t B8C9_CODE_RSSI = 4;
/* Sub-packet size, carrier id, number of chains and two reserved bytes
 * before the RSSI words. */
constexpr int32_t B8C9_BEFORE_RSSI = 6;
constexpr modem_stats_bit_field_row B8C9_ROWS[] = {
    {"rssi0_i", 0, 13, 32}, {"rssi1_i", 16, 13, 32}, {"rssi2_i", 32, 13, 32}, {"rssi3_i", 48, 13, 32}};
static_assert(modem_stats_log_rows_fit(B8C9_ROWS), "0xB8C9 rows fit their destinations");

/* ---- 0xB8D2 MAC transmit power ------------------------------------------- */

constexpr uint32_t B8D2_VERSIONS[] = {0x10000, 0x10001};
constexpr uint16_t B8D2_CODE_POWER_INFO = 1;
constexpr const char *B8D2_VERSION_POWER_NAME = "POWER INFO version_power";
constexpr uint32_t B8D2_CHANNELS = 4; /* PUSCH, PUCCH, SRS, PRACH */
constexpr uint32_t B8D2_TX_BITS = 8;

typedef struct {
    uint32_t entry_bits;
    modem_stats_bit_field_row channel_type;
    uint32_t tx_at, path_loss_at, mtpl_at; /* 8-bit fields */
} b8d2_layout;

constexpr b8d2_layout B8D2_LAYOUTS[] = {
    {32, {"channel_type", 0, 2, 8}, 8, 16, 24},
    {64, {"channel_type", 0, 3, 8}, 32, 40, 48},
};

/* Names of the three fields of each channel kind, by channel type. */
const char *const B8D2_NAMES[B8D2_CHANNELS][3] = {
    {"pusch_tx", "pusch_path_loss", "pusch_mtpl"},
    {"pucch_tx", "pucch_path_loss", "pucch_mtpl"},
    {"srs_tx", "srs_path_loss", "srs_mtpl"},
    {"prach_tx", "prach_path_loss", "prach_mtpl"},
};

/* ---- 0xB8D8 / 0xB8DD SNR ------------------------------------------------- */

constexpr uint32_t B8D8_VERSIONS[] = {0x20001};
/* Carrier index, number of chains and two reserved bytes. */
constexpr int32_t B8D8_BEFORE_SNR = 4;
constexpr uint32_t B8DD_VERSIONS[] = {7};
/* Cell id, SSB/TRS flag, carrier index, HST mode and 64 reserved bytes. */
constexpr int32_t B8DD_BEFORE_SNR = 72;

const char *const SNR_NAMES[RX_CHAINS] = {"snr0", "snr1", "snr2", "snr3"};

/* Reads the four 32-bit raw SNR values at the byte cursor. */
bool read_snr(uint32_t raw[RX_CHAINS])
{
    for (uint32_t i = 0; i < RX_CHAINS; i++) {
        if (!modem_stats_data_unpk(SNR_NAMES[i], &raw[i])) return false;
    }
    return true;
}

/* Packs a version and four floats: the layout of records 94, 112, 137. */
void pack_four_floats(uint32_t version, const char *const names[RX_CHAINS], const float values[RX_CHAINS],
                      modem_stats_data_id_e_type id, modem_stats_data_id_e_type *data_id,
                      modem_stats_single_data_common_type **record)
{
    modem_stats_data_pk_begin();
    if (!modem_stats_data_pk("version", version, sizeof(uint32_t))) return;
    for (uint32_t i = 0; i < RX_CHAINS; i++) {
        if (!modem_stats_data_pk(names[i], modem_stats_log_float_bits(values[i]), sizeof(float))) return;
    }
    modem_stats_data_pk_finish(id, data_id, record);
}

}  // namespace

void modem_stats_parse_b8c9_diag_log_nr5g_ll1_fw_rx_control_agc(modem_stats_data_id_e_type *data_id,
                                                                modem_stats_single_data_common_type **record)
{
    uint32_t version = 0;
    if (!modem_stats_data_unpk("version", &version)) return;
    if (!modem_stats_log_version_check(version, B8C9_VERSIONS, __func__)) return;
    uint8_t version_agc_sub = 0, code = 0;
    if (!modem_stats_data_unpk("version_agc_sub", &version_agc_sub)) return;
    if (!modem_stats_log_version_check(version_agc_sub, B8C9_AGC_SUB_VERSIONS, B8C9_AGC_SUB_NAME)) return;
    if (!modem_stats_data_unpk("code", &code)) return;
    if (code != B8C9_CODE_RSSI) {
        modem_stats_log_printf("version = %d, version_agc_sub = %d, code = %d, only support code - 4\n",
                               static_cast<int>(version), version_agc_sub, code);
        return;
    }
    modem_stats_data_skip(B8C9_BEFORE_RSSI);
    if (!modem_stats_base_with_bit()) return;
    uint64_t raw[RX_CHAINS];
    if (!modem_stats_log_read_rows(B8C9_ROWS, raw)) return;
    modem_stats_log_printf(
        "version = %d, version_agc_sub = %d, rssi0_i = %d, rssi1_i = %d, rssi2_i = %d, rssi3_i = %d\n",
        static_cast<int>(version), version_agc_sub, static_cast<int>(raw[0]), static_cast<int>(raw[1]),
        static_cast<int>(raw[2]), static_cast<int>(raw[3]));
    if (raw[0] == 0 && raw[1] == 0 && raw[2] == 0 && raw[3] == 0) {
        puts("rssi is invalid, do nothing");
        return;
    }
    float rssi[RX_CHAINS];
    for (uint32_t i = 0; i < RX_CHAINS; i++) rssi[i] = modem_stats_nr5g_rssi(static_cast<int32_t>(raw[i]));
    modem_stats_log_print_buf("rssi0 = %.2f, rssi1 = %.2f, rssi2 = %.2f, rssi3 = %.2f", rssi[0], rssi[1], rssi[2],
                              rssi[3]);
    static const char *const names[RX_CHAINS] = {"rssi0", "rssi1", "rssi2", "rssi3"};
    pack_four_floats(version, names, rssi, MODEM_STATS_DATA_ID_NR5G_LL1_RX_AGC, data_id, record);
}

void modem_stats_parse_b8d2_diag_log_nr5g_ll1_fw_mac_tx_iu_power(modem_stats_data_id_e_type *data_id,
                                                                 modem_stats_single_data_common_type **record)
{
    uint32_t version = 0;
    if (!modem_stats_data_unpk("version", &version)) return;
    if (!modem_stats_log_version_check(version, B8D2_VERSIONS, __func__)) return;
    const b8d2_layout &layout = B8D2_LAYOUTS[modem_stats_log_version_index(version, B8D2_VERSIONS, 2)];
    uint16_t code = 0;
    if (!modem_stats_data_unpk("code", &code)) return;
    if (code != B8D2_CODE_POWER_INFO) {
        modem_stats_log_printf("version = %d, tx info not required, do nothing\n", static_cast<int>(version));
        return;
    }
    uint8_t version_power = 0, loop_num = 0;
    if (!modem_stats_data_unpk(B8D2_VERSION_POWER_NAME, &version_power)) return;
    if (!modem_stats_data_unpk("loop_num", &loop_num)) return;
    if (!modem_stats_base_with_bit()) return;

    /* Per channel kind: transmit power, path loss, maximum power; the last
     * entry of a kind wins. */
    int32_t v[B8D2_CHANNELS][3];
    for (auto &ch : v) ch[0] = ch[1] = ch[2] = MODEM_STATS_ABSENT_U8;
    for (uint32_t e = 0; e < loop_num; e++) {
        uint8_t channel_type = 0;
        if (!modem_stats_unpk_at(layout.channel_type.name, layout.channel_type.offset, layout.channel_type.width,
                                 &channel_type))
            return;
        if (channel_type < B8D2_CHANNELS) {
            const uint32_t at[3] = {layout.tx_at, layout.path_loss_at, layout.mtpl_at};
            for (uint32_t f = 0; f < 3; f++) {
                uint8_t raw = 0;
                if (!modem_stats_unpk_at(B8D2_NAMES[channel_type][f], at[f], B8D2_TX_BITS, &raw)) return;
                /* Powers are signed dBm, the path loss unsigned dB. */
                v[channel_type][f] = f == 1 ? raw : modem_stats_log_sign_extend(raw, B8D2_TX_BITS);
            }
        }
        modem_stats_bit_advance(layout.entry_bits);
    }
    modem_stats_log_printf(
        "version = %d, version_power = %d, loop_num = %d, pusch_tx = %d, pusch_path_loss = %d, pusch_mtpl = %d\n",
        static_cast<int>(version), version_power, loop_num, v[0][0], v[0][1], v[0][2]);
    modem_stats_log_printf(
        "pucch_tx = %d, pucch_path_loss = %d, pucch_mtpl = %d, srs_tx = %d, srs_path_loss = %d, srs_mtpl = %d\n",
        v[1][0], v[1][1], v[1][2], v[2][0], v[2][1], v[2][2]);
    modem_stats_log_printf("prach_tx = %d, prach_path_loss = %d, prach_mtpl = %d\n", v[3][0], v[3][1], v[3][2]);

    modem_stats_data_pk_begin();
    if (!modem_stats_data_pk("version", version, sizeof(uint32_t))) return;
    if (!modem_stats_data_pk("version_power", version_power, sizeof(uint8_t))) return;
    if (!modem_stats_data_pk("loop_num", loop_num, sizeof(uint8_t))) return;
    for (uint32_t ch = 0; ch < B8D2_CHANNELS; ch++) {
        for (uint32_t f = 0; f < 3; f++) {
            if (!modem_stats_data_pk(B8D2_NAMES[ch][f], static_cast<uint16_t>(v[ch][f]), sizeof(uint16_t))) return;
        }
    }
    modem_stats_data_pk_finish(MODEM_STATS_DATA_ID_NR5G_LL1_MAC_TX_POWER, data_id, record);
}

void modem_stats_parse_b8d8_diag_log_nr5g_ll1_log_serving_snr(modem_stats_data_id_e_type *data_id,
                                                              modem_stats_single_data_common_type **record)
{
    uint32_t version = 0;
    if (!modem_stats_data_unpk("version", &version)) return;
    if (!modem_stats_log_version_check(version, B8D8_VERSIONS, __func__)) return;
    modem_stats_data_skip(B8D8_BEFORE_SNR);
    uint32_t raw[RX_CHAINS];
    if (!read_snr(raw)) return;
    float snr[RX_CHAINS];
    for (uint32_t i = 0; i < RX_CHAINS; i++) snr[i] = modem_stats_nr5g_snr(raw[i]);
    modem_stats_log_printf("version = %d, snr0 = %d, snr1 = %d, snr2 = %d, snr3 = %d\n", static_cast<int>(version),
                           static_cast<int>(raw[0]), static_cast<int>(raw[1]), static_cast<int>(raw[2]),
                           static_cast<int>(raw[3]));
    modem_stats_log_print_buf("snr0_f = %.2f, snr1_f = %.2f, snr2_f = %.2f, snr3_f = %.2f", snr[0], snr[1], snr[2],
                              snr[3]);
    pack_four_floats(version, SNR_NAMES, snr, MODEM_STATS_DATA_ID_NR5G_LL1_SRV_SNR, data_id, record);
}

void modem_stats_parse_b8dd_diag_log_nr5g_ll1_fw_serving_ftl(modem_stats_data_id_e_type *data_id,
                                                             modem_stats_single_data_common_type **record)
{
    uint32_t version = 0;
    if (!modem_stats_data_unpk("version", &version)) return;
    if (!modem_stats_log_version_check(version, B8DD_VERSIONS, __func__)) return;
    modem_stats_data_skip(B8DD_BEFORE_SNR);
    uint32_t raw[RX_CHAINS];
    if (!read_snr(raw)) return;
    float snr[RX_CHAINS];
    for (uint32_t i = 0; i < RX_CHAINS; i++) snr[i] = modem_stats_nr5g_snr(raw[i]);
    modem_stats_log_print_buf("version = %d, snr0 = %.2f, snr1 = %.2f, snr2 = %.2f, snr3 = %.2f",
                              static_cast<int>(version), snr[0], snr[1], snr[2], snr[3]);
    pack_four_floats(version, SNR_NAMES, snr, MODEM_STATS_DATA_ID_NR5G_LL1_SRV_FTL, data_id, record);
}
