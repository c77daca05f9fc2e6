/* NR5G RRC events (new cell on SSB, SCG failure) and the TRM antenna switch
 * diversity event. */
#include <stdio.h>

#include "modem_stats_event_parsers.h"
#include "modem_stats_unpack.h"

namespace {

/* Reserved bytes before the SCG failure cause. */
constexpr int32_t SCG_FAILURE_CAUSE_OFFSET = 32;

/* TRM ASDIV: reserved bytes before the configurations and before the
 * antenna fields; the record's version byte is always 0. */
constexpr int32_t ASDIV_LEADING_RESERVED = 1;
constexpr int32_t ASDIV_MIDDLE_RESERVED = 2;
constexpr uint8_t ASDIV_RECORD_VERSION = 0;

}  // namespace

void modem_stats_parse_3184_diag_event_nr5g_rrc_new_cell_ind_v2ssb(modem_stats_data_id_e_type *data_id,
                                                                   modem_stats_single_data_common_type **record)
{
    uint32_t ssb_freq = 0;
    uint16_t pci = 0;
    uint8_t bw = 0;
    if (!modem_stats_data_unpk("ssb_freq", &ssb_freq)) return;
    if (!modem_stats_data_unpk("pci", &pci)) return;
    if (!modem_stats_data_unpk("bw", &bw)) return;
    printf("ssb_freq = %d, pci = %d, bw = %d\n", static_cast<int>(ssb_freq), pci, bw);

    modem_stats_data_pk_begin();
    if (!modem_stats_data_pk("ssb_freq", ssb_freq, sizeof(ssb_freq))) return;
    if (!modem_stats_data_pk("pci", pci, sizeof(pci))) return;
    if (!modem_stats_data_pk("bw", bw, sizeof(bw))) return;
    modem_stats_data_pk_finish(MODEM_STATS_DATA_ID_NR5G_RRC_NEW_CELL_IND_SSB, data_id, record);
}

void modem_stats_parse_3243_diag_event_event_nr5g_rrc_scg_failure(modem_stats_sub_id_e_type sub,
                                                                  modem_stats_data_id_e_type *data_id,
                                                                  modem_stats_single_data_common_type **record)
{
    modem_stats_data_skip(SCG_FAILURE_CAUSE_OFFSET);
    uint16_t scg_failure_cause = 0;
    if (!modem_stats_data_unpk("scg_failure_cause", &scg_failure_cause)) return;
    printf("sub_id = %d, scg_failure_cause = %d\n", sub, scg_failure_cause);

    modem_stats_data_pk_begin();
    if (!modem_stats_data_pk("scg_failure_cause", scg_failure_cause, sizeof(scg_failure_cause))) return;
    modem_stats_data_pk_finish(MODEM_STATS_DATA_ID_NR5G_RRC_SCG_FAILURE, data_id, record);
}

void modem_stats_parse_2622_diag_event_mcs_trm_asdiv(modem_stats_data_id_e_type *data_id,
                                                     modem_stats_single_data_common_type **record)
{
    modem_stats_data_skip(ASDIV_LEADING_RESERVED);
    uint8_t old_config = 0;
    uint8_t new_config = 0;
    uint8_t ant_number = 0;
    uint16_t ant_switch_path = 0;
    uint16_t sig_path = 0;
    if (!modem_stats_data_unpk("old_config", &old_config)) return;
    if (!modem_stats_data_unpk("new_config", &new_config)) return;
    modem_stats_data_skip(ASDIV_MIDDLE_RESERVED);
    if (!modem_stats_data_unpk("ant_number", &ant_number)) return;
    if (!modem_stats_data_unpk("ant_switch_path", &ant_switch_path)) return;
    if (!modem_stats_data_unpk("sig_path", &sig_path)) return;
    printf("version = %d, ant_number = %d, ant_switch_path = %d, sig_path = %d, old_config = %d, new_config = %d\n",
           ASDIV_RECORD_VERSION, ant_number, ant_switch_path, sig_path, old_config, new_config);

    /* The leading six bytes have a fixed place; the configurations follow
     * through the checked path. */
    modem_stats_data_pk_begin();
    modem_stats_data_pk_direct(ASDIV_RECORD_VERSION, sizeof(uint8_t));
    modem_stats_data_pk_direct(ant_number, sizeof(ant_number));
    modem_stats_data_pk_direct(ant_switch_path, sizeof(ant_switch_path));
    modem_stats_data_pk_direct(sig_path, sizeof(sig_path));
    if (!modem_stats_data_pk("old_config", old_config, sizeof(old_config))) return;
    if (!modem_stats_data_pk("new_config", new_config, sizeof(new_config))) return;
    modem_stats_data_pk_finish(MODEM_STATS_DATA_ID_TRM_ASDIV, data_id, record);
}
