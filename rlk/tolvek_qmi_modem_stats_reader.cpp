/* Readers of the statistics items of option 9.  Items are packed
 * little-endian fields without gaps; every item starts with a 32-bit
 * version. */
#include "tolvek_qmi_modem_stats_reader.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

uint8_t g_orvex_data[TOLVEK_QMI_STATS_DATA_MAX];
uint32_t g_orvex_data_id;
int32_t g_pK_DATA_CNT;
int32_t g_orvex_data_left;

namespace {

/* Widths of the fields whose width is not their C type's. */
constexpr uint32_t k_u8 = 1;
constexpr uint32_t k_u16 = 2;
constexpr uint32_t k_u32 = 4;
constexpr int k_rx_count = 4;
constexpr int k_asdiv_fields = 12;

bool read_version(void)
{
    uint32_t version = 0;
    return tolvek_qmi_stats_data_unpk("version", k_u32, &version);
}

/* Reads `count` floats named by `names`. */
bool read_floats(const char *const *names, int count, float *out)
{
    for (int i = 0; i < count; i++) {
        if (!tolvek_qmi_stats_data_unpk_float(names[i], &out[i])) return false;
    }
    return true;
}

}  // namespace

void tolvek_qmi_stats_data_set(uint32_t id, const uint8_t *data, int32_t len)
{
    if (len < 0) len = 0;
    if (len > TOLVEK_QMI_STATS_DATA_MAX) len = TOLVEK_QMI_STATS_DATA_MAX;
    memset(g_orvex_data, 0, sizeof(g_orvex_data));
    if (len) memcpy(g_orvex_data, data, size_t(len));
    g_orvex_data_id = id;
    g_pK_DATA_CNT = 0;
    g_orvex_data_left = len;
}

bool tolvek_qmi_stats_data_unpk(const char *name, uint32_t width, uint32_t *value)
{
    if (g_orvex_data_left < int32_t(width)) {
        printf("g_orvex_data_left(%d) is not enough for %s, id(0x%x)\n", g_orvex_data_left, name, g_orvex_data_id);
        return false;
    }
    if (g_pK_DATA_CNT < 0) {
        printf("g_pK_DATA_CNT(%d) is can not < 0 for %s, id(0x%x)\n", g_pK_DATA_CNT, name, g_orvex_data_id);
        return false;
    }
    /* The cursor and bytes left are kept together; a read past the buffer
     * means they went out of step, and the process must not go on. */
    if (int64_t(g_pK_DATA_CNT) + width > TOLVEK_QMI_STATS_DATA_MAX) abort();
    uint32_t v = 0;
    for (uint32_t i = 0; i < width; i++) v |= uint32_t(g_orvex_data[g_pK_DATA_CNT + int32_t(i)]) << (8 * i);
    g_pK_DATA_CNT += int32_t(width);
    g_orvex_data_left -= int32_t(width);
    *value = v;
    return true;
}

bool tolvek_qmi_stats_data_unpk_float(const char *name, float *value)
{
    uint32_t bits = 0;
    if (!tolvek_qmi_stats_data_unpk(name, k_u32, &bits)) return false;
    memcpy(value, &bits, sizeof(*value));
    return true;
}

void tolvek_qmi_stats_read_4g_rssi(void)
{
    static const char *const names[k_rx_count][4] = {
        {"rsrp_rx0", "rsrq_rx0", "rssi_rx0", "snr_rx0"},
        {"rsrp_rx1", "rsrq_rx1", "rssi_rx1", "snr_rx1"},
        {"rsrp_rx2", "rsrq_rx2", "rssi_rx2", "snr_rx2"},
        {"rsrp_rx3", "rsrq_rx3", "rssi_rx3", "snr_rx3"},
    };
    uint32_t earfcn = 0, pci = 0, rx_valid = 0;
    float v[k_rx_count][4];
    if (!read_version() || !tolvek_qmi_stats_data_unpk("earfcn", k_u32, &earfcn) ||
        !tolvek_qmi_stats_data_unpk("pci", k_u16, &pci) || !tolvek_qmi_stats_data_unpk("rx_valid", k_u8, &rx_valid)) {
        return;
    }
    for (int rx = 0; rx < k_rx_count; rx++) {
        if (!read_floats(names[rx], 4, v[rx])) return;
    }
    printf("ASDIV DATA: earfcn: %d, pci: %d, rx_valid: %d, rsrp_rx0: %.2f, rsrq_rx0: %.2f, rssi_rx0: %.2f, "
           "snr_rx0: %.2f, rsrp_rx1: %.2f, rsrq_rx1: %.2f, rssi_rx1: %.2f, snr_rx1: %.2f, rsrp_rx2: %.2f, "
           "rsrq_rx2: %.2f, rssi_rx2: %.2f, snr_rx2: %.2f, rsrp_rx3: %.2f, rsrq_rx3: %.2f, rssi_rx3: %.2f, "
           "snr_rx3: %.2f\n",
           int(earfcn), int(pci), int(rx_valid), v[0][0], v[0][1], v[0][2], v[0][3], v[1][0], v[1][1], v[1][2],
           v[1][3], v[2][0], v[2][1], v[2][2], v[2][3], v[3][0], v[3][1], v[3][2], v[3][3]);
}

void tolvek_qmi_stats_read_5g_rssi(void)
{
    static const char *const names[] = {"rssi0", "rssi1", "rssi2", "rssi3"};
    float v[4];
    if (!read_version() || !read_floats(names, 4, v)) return;
    printf("ASDIV DATA: rssi_rx0: %.2f, rssi_rx1: %.2f, rssi_rx2: %.2f, rssi_rx3: %.2f\n", v[0], v[1], v[2], v[3]);
}

void tolvek_qmi_stats_read_5g_snr(void)
{
    static const char *const names[] = {"snr0", "snr1", "snr2", "snr3"};
    float v[4];
    if (!read_version() || !read_floats(names, 4, v)) return;
    printf("ASDIV DATA: snr_rx0: %.2f, snr_rx1: %.2f, snr_rx2: %.2f, snr_rx3: %.2f\n", v[0], v[1], v[2], v[3]);
}

void tolvek_qmi_stats_read_5g_rsrp(void)
{
    static const char *const names[] = {"rsrp_rx0", "rsrp_rx1", "rsrp_rx2", "rsrp_rx3", "rsrq"};
    float v[5];
    if (!read_version() || !read_floats(names, 5, v)) return;
    printf("ASDIV DATA: rsrp_rx0: %.2f, rsrp_rx1: %.2f, rsrp_rx2: %.2f, rsrp_rx3: %.2f, rsrq: %.2f\n", v[0], v[1],
           v[2], v[3], v[4]);
}

void tolvek_qmi_stats_read_5g_asdiv(void)
{
    static const char *const names[k_asdiv_fields] = {
        "ant_rx_0_old", "ant_rx_0_new", "ant_rx_1_old", "ant_rx_1_new", "ant_rx_2_old", "ant_rx_2_new",
        "ant_rx_3_old", "ant_rx_3_new", "ant_tx_0_old", "ant_tx_0_new", "ant_tx_1_old", "ant_tx_1_new",
    };
    uint32_t v[k_asdiv_fields];
    if (!read_version()) return;
    for (int i = 0; i < k_asdiv_fields; i++) {
        if (!tolvek_qmi_stats_data_unpk(names[i], k_u8, &v[i])) return;
    }
    printf("ASDIV DATA: ant_rx_0_old = %d, ant_rx_0_new = %d, ant_rx_1_old = %d, ant_rx_1_new = %d, "
           "ant_rx_2_old = %d, ant_rx_2_new = %d, ant_rx_3_old = %d, ant_rx_3_new = %d, ant_tx_0_old = %d, "
           "ant_tx_0_new = %d, ant_tx_1_old = %d, ant_tx_1_new = %d\n",
           int(v[0]), int(v[1]), int(v[2]), int(v[3]), int(v[4]), int(v[5]), int(v[6]), int(v[7]), int(v[8]),
           int(v[9]), int(v[10]), int(v[11]));
}

void tolvek_qmi_stats_read_wcdma_rssi(void)
{
    static const char *const names[] = {"rx_agc_0", "rx_agc_1"};
    float v[2];
    if (!read_version() || !read_floats(names, 2, v)) return;
    printf("ASDIV DATA: rx_agc_0: %.2f, rx_agc_1: %.2f\n", v[0], v[1]);
}

void tolvek_qmi_stats_read_gsm_rssi(void)
{
    static const char *const names[] = {"rx_prx", "rx_drx"};
    float v[2];
    if (!read_version() || !read_floats(names, 2, v)) return;
    printf("ASDIV DATA: rx_prx: %.2f, rx_drx: %.2f\n", v[0], v[1]);
}

void tolvek_qmi_stats_read_ant_info(void)
{
    uint32_t ant_number = 0, ant_switch_path = 0, sig_path = 0, old_config = 0, new_config = 0;
    if (!read_version() || !tolvek_qmi_stats_data_unpk("ant_number", k_u8, &ant_number) ||
        !tolvek_qmi_stats_data_unpk("ant_switch_path", k_u16, &ant_switch_path) ||
        !tolvek_qmi_stats_data_unpk("sig_path", k_u16, &sig_path) ||
        !tolvek_qmi_stats_data_unpk("old_config", k_u8, &old_config) ||
        !tolvek_qmi_stats_data_unpk("new_config", k_u8, &new_config)) {
        return;
    }
    printf("ANT INFO: ant_num: %d, ant_path: %d, sig_path: %d, old_config: %d, new_config: %d\n", int(ant_number),
           int(ant_switch_path), int(sig_path), int(old_config), int(new_config));
}
