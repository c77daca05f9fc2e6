/* Kinds of statistics records and the subscription index.
 *
 * The numeric values are fixed: the QMI statistics side asks the modem for
 * records by the same numbers, so a value never changes once assigned. */
#ifndef MODEM_STATS_DATA_ID_H
#define MODEM_STATS_DATA_ID_H

#include <stdint.h>

/* Subscription (SIM slot) a packet belongs to: 0 or 1.  The diag path
 * always uses 0. */
typedef enum : uint8_t {
    MODEM_STATS_SUB_ID_0 = 0,
    MODEM_STATS_SUB_ID_1 = 1,
} modem_stats_sub_id_e_type;

/* Numeric kind of a statistics record.  The comment names the diag log code
 * or event id whose parser produces it. */
typedef enum : uint32_t {
    MODEM_STATS_DATA_ID_LTE_RRC_STATE = 5,                  /* event 1606, kept state */
    MODEM_STATS_DATA_ID_NR5G_MEAS_SCC1 = 6,                 /* log 0xB97F, carrier 1 */
    MODEM_STATS_DATA_ID_NR5G_MEAS_SCC2 = 7,                 /* log 0xB97F, carrier 2 */
    MODEM_STATS_DATA_ID_LTE_SRV_MEAS = 82,                  /* log 0xB193 */
    MODEM_STATS_DATA_ID_LTE_TX_POWER = 83,                  /* log 0xB16D */
    MODEM_STATS_DATA_ID_LTE_PUSCH_CSF = 84,                 /* log 0xB14E */
    MODEM_STATS_DATA_ID_NR5G_MAC_DCI_INFO = 85,             /* log 0xB885 */
    MODEM_STATS_DATA_ID_NR5G_MAC_RACH_ATTEMPT = 86,         /* log 0xB88A */
    MODEM_STATS_DATA_ID_NR5G_MAC_PDSCH_STATUS = 87,         /* log 0xB887 */
    MODEM_STATS_DATA_ID_NR5G_MAC_PDSCH_STATS = 88,          /* log 0xB888 */
    MODEM_STATS_DATA_ID_NR5G_MAC_CSF_REPORT = 89,           /* log 0xB8A7 */
    MODEM_STATS_DATA_ID_NR5G_MAC_UL_PHY_CH_POWER_CTRL = 90, /* log 0xB884 */
    MODEM_STATS_DATA_ID_NR5G_ML1_SRV_BEAM = 91,             /* log 0xB975 */
    MODEM_STATS_DATA_ID_NR5G_RRC_NEW_CELL_IND_SSB = 92,     /* event 3184 */
    MODEM_STATS_DATA_ID_LTE_PDSCH_STAT_IND = 93,            /* log 0xB173 */
    MODEM_STATS_DATA_ID_NR5G_LL1_RX_AGC = 94,               /* log 0xB8C9 */
    MODEM_STATS_DATA_ID_LTE_EMM_TIMER_EXPIRY = 95,          /* event 1632 */
    MODEM_STATS_DATA_ID_LTE_LL1_RX_AGC = 96,                /* log 0xB111 */
    MODEM_STATS_DATA_ID_NR5G_RRC_CONFIG_INFO = 97,          /* log 0xB825 */
    MODEM_STATS_DATA_ID_LTE_PUSCH_POWER_CTRL = 98,          /* log 0xB16E */
    MODEM_STATS_DATA_ID_NR5G_LL1_MAC_TX_POWER = 99,         /* log 0xB8D2 */
    MODEM_STATS_DATA_ID_TRM_ASDIV = 100,                    /* event 2622 */
    MODEM_STATS_DATA_ID_NR5G_EMM_TIMER_EXPIRY = 102,        /* event 3215 */
    MODEM_STATS_DATA_ID_LTE_SRV_MEAS_ALT = 108,             /* log 0xB193, other outcome */
    MODEM_STATS_DATA_ID_LTE_RRC_NEW_CELL_IND_EARFCN = 109,  /* event 2568 */
    MODEM_STATS_DATA_ID_WCDMA_PN_SEARCH = 110,              /* log 0x4179 */
    MODEM_STATS_DATA_ID_GSM_L1_RX_DIVERSITY = 111,          /* log 0x5096 */
    MODEM_STATS_DATA_ID_NR5G_LL1_SRV_FTL = 112,             /* log 0xB8DD */
    MODEM_STATS_DATA_ID_NR5G_ML1_ASDIV = 113,               /* log 0xB98F */
    MODEM_STATS_DATA_ID_LTE_MAC_UL_TB = 114,                /* log 0xB064 */
    MODEM_STATS_DATA_ID_NR5G_L2_UL_TB = 115,                /* log 0xB872 */
    MODEM_STATS_DATA_ID_IMS_SIP_MESSAGE = 116,              /* log 0x156E */
    MODEM_STATS_DATA_ID_CALL_ORIG = 117,                    /* event 629 */
    MODEM_STATS_DATA_ID_CALL_END = 118,                     /* event 631 */
    MODEM_STATS_DATA_ID_IMS_SIP_SESSION_START = 119,        /* event 1428 */
    MODEM_STATS_DATA_ID_IMS_SIP_SESSION_RINGING = 120,      /* event 1429 */
    MODEM_STATS_DATA_ID_IMS_SIP_SESSION_ESTABLISHED = 121,  /* event 1430 */
    MODEM_STATS_DATA_ID_IMS_SIP_SESSION_TERMINATED = 122,   /* event 1431 */
    MODEM_STATS_DATA_ID_IMS_SIP_SESSION_CANCEL = 123,       /* event 1432 */
    MODEM_STATS_DATA_ID_IMS_SIP_SESSION_FAILURE = 124,      /* event 1433 */
    MODEM_STATS_DATA_ID_IMS_VOLTE_SESSION_SETUP = 125,      /* log 0x1830 */
    MODEM_STATS_DATA_ID_IMS_VOLTE_SESSION_END = 126,        /* log 0x1831 */
    MODEM_STATS_DATA_ID_LTE_RRC_STATE_STATS = 127,          /* event 1606, new connection */
    MODEM_STATS_DATA_ID_LTE_PUCCH_POWER_CTRL = 128,         /* log 0xB16F */
    MODEM_STATS_DATA_ID_LTE_RRC_SERVING_CELL_INFO = 129,    /* log 0xB0C2 */
    MODEM_STATS_DATA_ID_NR5G_RRC_SERVING_CELL_INFO = 130,   /* log 0xB823 */
    MODEM_STATS_DATA_ID_LTE_RRC_RLF_STATS = 131,            /* event 1995 */
    MODEM_STATS_DATA_ID_LTE_MAC_RACH_ATTEMPT = 132,         /* log 0xB062 */
    MODEM_STATS_DATA_ID_NR5G_MEAS_PCC = 135,                /* log 0xB97F, carrier 0 */
    MODEM_STATS_DATA_ID_IMS_RTP_SN_AND_PAYLOAD = 136,       /* log 0x1568 */
    MODEM_STATS_DATA_ID_NR5G_LL1_SRV_SNR = 137,             /* log 0xB8D8 */
    MODEM_STATS_DATA_ID_NR5G_RRC_SCG_FAILURE = 138,         /* event 3243 */
    MODEM_STATS_DATA_ID_NR5G_ML1_FC_INFO = 145,             /* log 0xB981 */
    MODEM_STATS_DATA_ID_NR5G_MAC_UL_PHY_CH_SCHED_REPORT = 146, /* log 0xB883 */
    MODEM_STATS_DATA_ID_NONE = 149,                         /* no record (a dispatcher's initial value) */
} modem_stats_data_id_e_type;

static_assert(sizeof(modem_stats_data_id_e_type) == 4, "data ids are 32-bit");

#endif
