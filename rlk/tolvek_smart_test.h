/* Option 11: modem subsystem restart (SSR), full dump and NV sync through
 * typed common requests of the extension service, and the switches of the
 * debug printing of the application side (a system property) and of the
 * modem (flag files in the modem's EFS).  The platform's SSR restart level
 * is read and changed through system properties around these actions. */
#ifndef TOLVEK_SMART_TEST_H
#define TOLVEK_SMART_TEST_H

#include <stdint.h>

/* System properties. */
#define TOLVEK_PROP_SSR_LEVEL "persist.vendor.ssr.restart_level"
#define TOLVEK_PROP_SSR_LEVEL_BAK "persist.vendor.ssr.restart_level_bak"
#define TOLVEK_PROP_SSR_WAIT_S "persist.radio.ssr_wait_s"
#define TOLVEK_PROP_PRINT_STATS "persist.vendor.radio.print_stats"

/* Values of the restart level. */
#define TOLVEK_SSR_LEVEL_ENABLE "ALL_ENABLE"
#define TOLVEK_SSR_LEVEL_DISABLE "ALL_DISABLE"
/* Seconds to wait for the modem when the wait property is unset. */
#define TOLVEK_SSR_WAIT_DEFAULT "3"

/* Values of the application-side statistics print property. */
#define TOLVEK_PRINT_STATS_ON "1"
#define TOLVEK_PRINT_STATS_OFF "2"

/* Typed common requests and their values. */
#define TOLVEK_COMMON_TYPE_SSR 31
#define TOLVEK_COMMON_TYPE_NV_SYNC 35
#define TOLVEK_SSR_VALUE_RESTART 4096
#define TOLVEK_SSR_VALUE_FULL_DUMP 8192

/* EFS files of the modem (subscription 0). */
#define TOLVEK_EFS_SUB_SMART_TEST 0
#define TOLVEK_SSR_UPDATE_COUNT_FILE "/nv/item_files/modem/tolvek/ssr_update_count"
#define TOLVEK_BP_ORVEX_PRINT_FILE "/orvex/orvex_print_mask"
#define TOLVEK_BP_QMI_PRINT_FILE "/nv/item_files/modem/tolvek/qmi_print_flag"
#define TOLVEK_BP_RF_PRINT_FILE "/nv/item_files/modem/tolvek/rf_print_mask"

/* Values the modem print switches write when switched on. */
#define TOLVEK_BP_ORVEX_PRINT_ON 31u
#define TOLVEK_BP_QMI_PRINT_ON 1u
#define TOLVEK_BP_RF_PRINT_ON 15u

/* Result of an SSR that was stopped by a negative wait, or whose restart
 * level could not be changed. */
#define TOLVEK_SMART_TEST_STOPPED (-1)

/* The sub-commands (the opt of sub-commands 0 to 2 is checked but not
 * used).  Each returns 0 or the result of its common request (the
 * modem's), or a negative failure of the step that ended it. */
int tolvek_smart_test_modem_ssr(void);
int tolvek_smart_test_full_dump(void);
int tolvek_smart_test_nv_sync(void);
int tolvek_smart_test_ap_orvex_switch(int opt);
int tolvek_smart_test_bp_orvex_print_switch(int opt);
int tolvek_smart_test_bp_qmi_print_switch(int opt);
int tolvek_smart_test_bp_rf_print_switch(int opt);

/* Reads the wait property, reports it and sleeps that many seconds (a
 * negative value is passed to the sleep as an unsigned count); returns the
 * value read. */
int tolvek_smart_test_ssr_wait_s(void);

/* The count of restart-level changes kept in the modem's EFS: read (0 when
 * the file cannot be read) and count one more.  The save returns the result
 * of the write. */
uint32_t tolvek_smart_test_read_ssr_update_flag(void);
int tolvek_smart_test_save_ssr_update_flag(void);

/* Sends typed common request `type` with `len` bytes of `value` and returns
 * the modem's result from the response record. */
int tolvek_smart_test_common_req(uint32_t type, uint32_t len, void *value);

/* The sleep of the SSR wait; tests replace it so that no test sleeps the
 * seconds a modem needs.  Null restores sleep(3). */
typedef unsigned int (*tolvek_smart_test_sleep_fn)(unsigned int seconds);
void tolvek_smart_test_set_sleep(tolvek_smart_test_sleep_fn fn);

#endif
