/* The received statistics item of option 9 and the bounded cursor that
 * reads its fields, with one reader per kind of item. */
#ifndef TOLVEK_QMI_MODEM_STATS_READER_H
#define TOLVEK_QMI_MODEM_STATS_READER_H

#include <stdint.h>

/* Largest item. */
constexpr int32_t TOLVEK_QMI_STATS_DATA_MAX = 700;

/* The item in hand: its bytes, its id, the cursor and the bytes left. */
extern uint8_t g_orvex_data[TOLVEK_QMI_STATS_DATA_MAX];
extern uint32_t g_orvex_data_id;
extern int32_t g_pK_DATA_CNT;
extern int32_t g_orvex_data_left;

/* Takes an item (len at most 700): cursor 0, bytes left = len. */
void tolvek_qmi_stats_data_set(uint32_t id, const uint8_t *data, int32_t len);

/* Reads a little-endian field of `width` bytes (1, 2 or 4) at the cursor.
 * Too few bytes left or a negative cursor prints its line and returns
 * false; a read past the end of the 700-byte buffer aborts. */
bool tolvek_qmi_stats_data_unpk(const char *name, uint32_t width, uint32_t *value);
bool tolvek_qmi_stats_data_unpk_float(const char *name, float *value);

/* Readers: each reads its fields and prints its one line, or stops at the
 * first field that cannot be read. */
void tolvek_qmi_stats_read_4g_rssi(void);
void tolvek_qmi_stats_read_5g_rssi(void);
void tolvek_qmi_stats_read_5g_snr(void);
void tolvek_qmi_stats_read_5g_rsrp(void);
void tolvek_qmi_stats_read_5g_asdiv(void);
void tolvek_qmi_stats_read_wcdma_rssi(void);
void tolvek_qmi_stats_read_gsm_rssi(void);
void tolvek_qmi_stats_read_ant_info(void);

#endif
