/* NR5G MAC uplink logs: RACH attempt (0xB88A) and UL physical channel
 * schedule report (0xB883).  Layouts: docs/diag-log-layouts.md. */
#include <stdio.h>

#include "modem_stats_log_format.h"
#include "modem_stats_log_parsers.h"
#include "modem_stats_log_util.h"

namespace {

/* ---- 0xB88A RACH attempt ------------------------------------------------- */

constexpr uint32_t B88A_VERSIONS[] = {0x20007, 0x30005};
constexpr uint8_t B88A_MSG1 = 0x1;
constexpr uint8_t B88A_MSG2 = 0x2;
/* Message 2: stamp (4), maximum backoff (2), TC-RNTI (2), timing advance. */
constexpr uint32_t B88A_MSG2_T_RNTI_AT = 6;
constexpr uint32_t B88A_MSG2_TA_AT = 8;

typedef struct {
    uint32_t rach_result_at;
    uint32_t bitmask_at;
    uint32_t messages_at;
    uint32_t msg1_bytes;
} b88a_layout;

constexpr b88a_layout B88A_LAYOUTS[] = {{21, 23, 28, 28}, {14, 16, 24, 36}};

/* Reads a whole-byte field at absolute byte `at`. */
template <typename T>
bool read_at(uint32_t at, const char *name, T *out)
{
    return modem_stats_log_seek(at) && modem_stats_data_unpk(name, out);
}

/* ---- 0xB883 UL physical channel schedule report ---------------------------- */

constexpr uint32_t B883_VERSIONS[] = {0x2000B, 0x3000F};
constexpr uint32_t B883_NUM_RECORDS_AT = 15;
constexpr uint32_t B883_RECORDS_AT = 16;
constexpr uint32_t B883_RECORD_HEADER_BYTES = 8;
constexpr uint32_t B883_NUM_CARRIER_AT = 4;
constexpr uint32_t B883_CARRIER_HEADER_BYTES = 4;
constexpr modem_stats_bit_field_row B883_BIT_MASK = {"phychan_bit_mask", 6, 6, 8};
constexpr modem_stats_bit_field_row B883_TX_MODE = {"tx_mode", 64, 2, 8};
/* Channel bits of the mask and the bytes each adds. */
constexpr uint8_t B883_PUSCH = 0x02;
constexpr uint8_t B883_PUCCH = 0x04;
constexpr uint8_t B883_SRS = 0x08;
constexpr uint8_t B883_PRACH = 0x10;
constexpr uint8_t B883_KNOWN_CHANNELS = B883_PUSCH | B883_PUCCH | B883_SRS | B883_PRACH;
constexpr uint32_t B883_PUCCH_HEADER_BYTES = 4;
constexpr uint32_t B883_PUCCH_BYTES = 16;
constexpr uint32_t B883_SRS_BYTES = 20;
constexpr uint32_t B883_PRACH_BYTES = 8;
/* PUSCH data: 40 bytes in version 2.11, 44 in version 3.15. */
constexpr uint32_t B883_PUSCH_BYTES[] = {40, 44};

/* Reads one carrier at byte `*at` and leaves `*at` after it; false stops
 * the parser. */
bool b883_read_carrier(uint32_t pusch_bytes, uint32_t *at, uint32_t *phychan_bit_mask, uint32_t *tx_mode,
                       const char *parser)
{
    if (!modem_stats_log_seek(*at)) return false;
    uint8_t mask = 0;
    if (!modem_stats_unpk_at(B883_BIT_MASK.name, B883_BIT_MASK.offset, B883_BIT_MASK.width, &mask)) return false;
    if (mask & ~B883_KNOWN_CHANNELS) {
        /* A channel whose data size is unknown: the rest cannot be found. */
        modem_stats_data_not_valid(mask, parser);
        return false;
    }
    *phychan_bit_mask = mask;
    *at += B883_CARRIER_HEADER_BYTES;
    if (mask & B883_PUSCH) {
        if (!modem_stats_log_seek(*at)) return false;
        uint8_t mode = 0;
        if (!modem_stats_unpk_at(B883_TX_MODE.name, B883_TX_MODE.offset, B883_TX_MODE.width, &mode)) return false;
        *tx_mode = mode;
        *at += pusch_bytes;
    }
    if (mask & B883_PUCCH) {
        uint8_t num_pucch = 0;
        if (!read_at(*at, "num_pucch", &num_pucch)) return false;
        *at += B883_PUCCH_HEADER_BYTES + num_pucch * B883_PUCCH_BYTES;
    }
    if (mask & B883_SRS) *at += B883_SRS_BYTES;
    if (mask & B883_PRACH) *at += B883_PRACH_BYTES;
    return true;
}

}  // namespace

void modem_stats_parse_b88a_diag_log_nr5g_mac_rach_attempt(modem_stats_sub_id_e_type sub,
                                                           modem_stats_data_id_e_type *data_id,
                                                           modem_stats_single_data_common_type **record)
{
    uint32_t version = 0;
    if (!modem_stats_data_unpk("version", &version)) return;
    if (!modem_stats_log_version_check(version, B88A_VERSIONS, __func__)) return;
    const b88a_layout &layout = B88A_LAYOUTS[modem_stats_log_version_index(version, B88A_VERSIONS, 2)];
    uint8_t rach_msg_bitmask = 0, rach_result = 0;
    uint16_t t_rnti = MODEM_STATS_ABSENT_U16, ta = MODEM_STATS_ABSENT_U16;
    if (!read_at(layout.bitmask_at, "rach_msg_bitmask", &rach_msg_bitmask)) return;
    if (rach_msg_bitmask & B88A_MSG2) {
        uint32_t msg2_at = layout.messages_at + ((rach_msg_bitmask & B88A_MSG1) ? layout.msg1_bytes : 0);
        if (!read_at(msg2_at + B88A_MSG2_T_RNTI_AT, "t_rnti", &t_rnti)) return;
        if (!read_at(msg2_at + B88A_MSG2_TA_AT, "ta", &ta)) return;
    }
    if (!read_at(layout.rach_result_at, "rach_result", &rach_result)) return;
    modem_stats_log_printf("sub_id = %d, version = %d, rach_msg_bitmask = %d, t_rnti = %d, ta = %d, rach_result = %d\n",
                           sub, static_cast<int>(version), rach_msg_bitmask, t_rnti, ta, rach_result);

    modem_stats_data_pk_begin();
    const modem_stats_log_pk_field fields[] = {{"version", version, 4},
                                               {"rach_msg_bitmask", rach_msg_bitmask, 1},
                                               {"t_rnti", t_rnti, 2},
                                               {"ta", ta, 2},
                                               {"rach_result", rach_result, 1}};
    if (!modem_stats_log_pk_fields(fields)) return;
    modem_stats_data_pk_finish(MODEM_STATS_DATA_ID_NR5G_MAC_RACH_ATTEMPT, data_id, record);
}

void modem_stats_parse_b883_diag_log_nr5g_mac_ul_physical_channel_schedule_report(
    modem_stats_sub_id_e_type sub, modem_stats_data_id_e_type *data_id, modem_stats_single_data_common_type **record)
{
    (void)sub;
    uint32_t version = 0;
    if (!modem_stats_data_unpk("version", &version)) return;
    if (!modem_stats_log_version_check(version, B883_VERSIONS, __func__)) return;
    uint32_t pusch_bytes = B883_PUSCH_BYTES[modem_stats_log_version_index(version, B883_VERSIONS, 2)];
    uint8_t num_records = 0;
    if (!read_at(B883_NUM_RECORDS_AT, "num_records", &num_records)) return;
    if (num_records == 0) {
        modem_stats_data_not_valid(0, __func__);
        return;
    }
    uint32_t num_carrier = 0, phychan_bit_mask = MODEM_STATS_ABSENT_U8, tx_mode = MODEM_STATS_ABSENT_U8;
    uint32_t at = B883_RECORDS_AT;
    for (uint32_t r = 0; r < num_records; r++) {
        uint8_t carriers = 0;
        if (!read_at(at + B883_NUM_CARRIER_AT, "num_carrier", &carriers)) return;
        num_carrier = carriers;
        at += B883_RECORD_HEADER_BYTES;
        for (uint32_t c = 0; c < carriers; c++) {
            if (!b883_read_carrier(pusch_bytes, &at, &phychan_bit_mask, &tx_mode, __func__)) return;
        }
    }
    modem_stats_log_printf("version = %d, num_records = %d, num_carrier = %d, phychan_bit_mask = %d, tx_mode = %d\n",
                           static_cast<int>(version), num_records, static_cast<int>(num_carrier),
                           static_cast<int>(phychan_bit_mask), static_cast<int>(tx_mode));

    modem_stats_data_pk_begin();
    const modem_stats_log_pk_field fields[] = {{"version", version, 4},
                                               {"num_records", num_records, 1},
                                               {"num_carrier", num_carrier, 1},
                                               {"phychan_bit_mask", phychan_bit_mask, 1},
                                               {"tx_mode", tx_mode, 1}};
    if (!modem_stats_log_pk_fields(fields)) return;
    modem_stats_data_pk_finish(MODEM_STATS_DATA_ID_NR5G_MAC_UL_PHY_CH_SCHED_REPORT, data_id, record);
}
