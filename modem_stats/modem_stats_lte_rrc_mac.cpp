/* LTE RRC serving cell info (0xB0C2) and LTE MAC RACH attempt (0xB062):
 * whole-byte layouts.  Layouts: docs/diag-log-layouts.md. */
#include <stdio.h>

#include "modem_stats_log_format.h"
#include "modem_stats_log_parsers.h"
#include "modem_stats_log_util.h"

namespace {

constexpr uint8_t B0C2_VERSION = 3;

constexpr uint8_t B062_VERSION = 1;
constexpr uint8_t B062_SUBPACKET_RACH_ATTEMPT = 6;
constexpr uint8_t B062_SUBPACKET_VERSION = 49;
/* Sub-packet size, then sub id, cell id and retransmission counter before
 * the RACH result. */
constexpr int32_t B062_SUBPACKET_SIZE_BYTES = 2;
constexpr int32_t B062_BEFORE_RESULT = 3;
constexpr int8_t B062_RACH_SUCCESS = 0;

}  // namespace

void modem_stats_parse_b0c2_diag_log_lte_rrc_serving_cell_info(modem_stats_data_id_e_type *data_id,
                                                               modem_stats_single_data_common_type **record)
{
    uint8_t version = 0;
    if (!modem_stats_data_unpk("version", &version)) return;
    if (version != B0C2_VERSION) {
        modem_stats_version_not_support(version, __func__);
        return;
    }
    uint16_t pci = 0;
    uint32_t dl_earfcn = 0, ul_earfcn = 0, cgi = 0, freq_band_ind = 0;
    uint8_t dl_bw = 0, ul_bw = 0, mnc_num = 0, allow_access = 0;
    uint16_t tac = 0, mcc = 0, mnc = 0;
    if (!modem_stats_data_unpk("pci", &pci)) return;
    if (!modem_stats_data_unpk("dl_earfcn", &dl_earfcn)) return;
    if (!modem_stats_data_unpk("ul_earfcn", &ul_earfcn)) return;
    if (!modem_stats_data_unpk("dl_bw", &dl_bw)) return;
    if (!modem_stats_data_unpk("ul_bw", &ul_bw)) return;
    if (!modem_stats_data_unpk("cgi", &cgi)) return;
    if (!modem_stats_data_unpk("tac", &tac)) return;
    if (!modem_stats_data_unpk("freq_band_ind", &freq_band_ind)) return;
    if (!modem_stats_data_unpk("mcc", &mcc)) return;
    if (!modem_stats_data_unpk("mnc_num", &mnc_num)) return;
    if (!modem_stats_data_unpk("mnc", &mnc)) return;
    if (!modem_stats_data_unpk("allow_access", &allow_access)) return;
    modem_stats_log_printf("version = %d, mcc = %d, mnc_num %d, mnc %d, tac %d, cgi %d, pci %d\n", version, mcc,
                           mnc_num, mnc, tac, static_cast<int>(cgi), pci);
    modem_stats_log_printf("freq_band_ind = %d, dl_earfcn = %d, dl_bw %d, ul_earfcn %d, ul_bw %d, allow_access %d\n",
                           static_cast<int>(freq_band_ind), static_cast<int>(dl_earfcn), dl_bw,
                           static_cast<int>(ul_earfcn), ul_bw, allow_access);

    modem_stats_data_pk_begin();
    const modem_stats_log_pk_field fields[] = {
        {"version", version, 1},
        {"pci", pci, 2},
        {"dl_earfcn", dl_earfcn, 4},
        {"ul_earfcn", ul_earfcn, 4},
        {"dl_bw", dl_bw, 1},
        {"ul_bw", ul_bw, 1},
        {"cgi", cgi, 4},
        {"tac", tac, 2},
        {"freq_band_ind", freq_band_ind, 4},
        {"mcc", mcc, 2},
        {"mnc_num", mnc_num, 1},
        {"mnc", mnc, 2},
        {"allow_access", allow_access, 1},
    };
    if (!modem_stats_log_pk_fields(fields)) return;
    modem_stats_data_pk_finish(MODEM_STATS_DATA_ID_LTE_RRC_SERVING_CELL_INFO, data_id, record);
}

void modem_stats_parse_b062_diag_log_lte_mac_rach_attempt(modem_stats_sub_id_e_type sub,
                                                          modem_stats_data_id_e_type *data_id,
                                                          modem_stats_single_data_common_type **record)
{
    uint8_t version = 0;
    if (!modem_stats_data_unpk("version", &version)) return;
    if (version != B062_VERSION) {
        modem_stats_version_not_support(version, __func__);
        return;
    }
    uint8_t num_records = 0;
    if (!modem_stats_data_unpk("num_records", &num_records)) return;
    modem_stats_data_skip(2);
    uint8_t sub_packet_id = 0;
    if (!modem_stats_data_unpk("sub_packet_id", &sub_packet_id)) return;
    if (sub_packet_id != B062_SUBPACKET_RACH_ATTEMPT) {
        modem_stats_data_not_valid(sub_packet_id, "sub_packet_id");
        return;
    }
    uint8_t version_sub = 0;
    if (!modem_stats_data_unpk("version_sub", &version_sub)) return;
    if (version_sub != B062_SUBPACKET_VERSION) {
        modem_stats_version_not_support(version_sub, "lte_mac_rach_attempt");
        return;
    }
    modem_stats_data_skip(B062_SUBPACKET_SIZE_BYTES + B062_BEFORE_RESULT);
    int8_t rach_result = 0;
    if (!modem_stats_data_unpk("rach_result", &rach_result)) return;
    modem_stats_log_printf("sub_id = %d, version = %d, num_records = %d, version_sub = %d, rach_result = %d\n", sub,
                           version, num_records, version_sub, rach_result);
    if (rach_result == B062_RACH_SUCCESS) {
        puts("rach is success, do nothing");
        return;
    }

    modem_stats_data_pk_begin();
    const modem_stats_log_pk_field fields[] = {
        {"version", version, 1},
        {"version_sub", version_sub, 1},
        {"rach_result", static_cast<uint8_t>(rach_result), 1},
    };
    if (!modem_stats_log_pk_fields(fields)) return;
    modem_stats_data_pk_finish(MODEM_STATS_DATA_ID_LTE_MAC_RACH_ATTEMPT, data_id, record);
}
