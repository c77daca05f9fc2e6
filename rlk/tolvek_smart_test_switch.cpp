/* Option 11, sub-commands 3 to 6: the application-side statistics print
 * (a system property read at boot) and the modem's print switches (flag
 * files in its EFS, read when the modem starts, hence the NV sync and the
 * restart after a change). */
#include <string.h>

#include "cutils/properties.h"
#include "tolvek_extend_nvefs.h"
#include "tolvek_log.h"
#include "tolvek_smart_test.h"

/* The opt that switches a print on; anything else switches it off. */
static const int k_switch_on = 1;

/* One modem print switch: its report format (with the opt), its flag file
 * and the value written when it is switched on. */
struct bp_print_switch {
    const char *report_format;
    const char *path;
    uint32_t on_value;
    uint32_t on_len; /* bytes of on_value written, little-endian */
};

static const bp_print_switch k_bp_orvex_print = {"bp_orvex_print, opt = %d\n", TOLVEK_BP_ORVEX_PRINT_FILE,
                                                 TOLVEK_BP_ORVEX_PRINT_ON, sizeof(uint32_t)};
static const bp_print_switch k_bp_qmi_print = {"bp_qmi_print, opt = %d\n", TOLVEK_BP_QMI_PRINT_FILE,
                                               TOLVEK_BP_QMI_PRINT_ON, sizeof(uint8_t)};
static const bp_print_switch k_bp_rf_print = {"bp_rf_print, opt = %d\n", TOLVEK_BP_RF_PRINT_FILE,
                                              TOLVEK_BP_RF_PRINT_ON, sizeof(uint32_t)};

/* Paired line written on behalf of the switch function `func`, so that
 * each switch reports under its own name. */
#define SWITCH_LOGD(func, ...) tolvek_log_line(TOLVEK_LOG_PRIO_DEBUG, TOLVEK_LOG_SRC_TAG, __LINE__, func, __VA_ARGS__)

int tolvek_smart_test_ap_orvex_switch(int opt)
{
    TOLVEK_LOGD("ap_orvex_print, opt = %d\n", opt);
    const char *value = opt == k_switch_on ? TOLVEK_PRINT_STATS_ON : TOLVEK_PRINT_STATS_OFF;
    int ret = property_set(TOLVEK_PROP_PRINT_STATS, value);
    if (ret != 0) {
        TOLVEK_LOGD("property_set %s to %s failed: %d", TOLVEK_PROP_PRINT_STATS, value, ret);
        return ret;
    }
    TOLVEK_LOGD("success, need to reboot");
    return 0;
}

/* Writes or deletes the flag file, then makes the modem take the change:
 * NV sync, then the SSR sequence. */
static int bp_print_switch_run(const char *func, const bp_print_switch &sw, int opt)
{
    tolvek_log_line(TOLVEK_LOG_PRIO_DEBUG, TOLVEK_LOG_SRC_TAG, __LINE__, func, sw.report_format, opt);
    uint32_t path_len = static_cast<uint32_t>(strlen(sw.path));
    if (opt == k_switch_on) {
        uint8_t value[sizeof(uint32_t)];
        memcpy(value, &sw.on_value, sizeof(value)); /* little-endian host */
        int ret = tolvek_efs_write(TOLVEK_EFS_SUB_SMART_TEST, sw.path, path_len, value, sw.on_len);
        if (ret != 0) {
            SWITCH_LOGD(func, "tolvek_efs_write failed");
            return ret;
        }
    } else {
        int ret = tolvek_efs_delete(TOLVEK_EFS_SUB_SMART_TEST, sw.path, path_len);
        if (ret != 0) {
            SWITCH_LOGD(func, "tolvek_efs_delete failed");
            return ret;
        }
    }
    tolvek_smart_test_nv_sync();
    int result = tolvek_smart_test_modem_ssr();
    SWITCH_LOGD(func, "success, pls wait 10 seconds ");
    return result;
}

int tolvek_smart_test_bp_orvex_print_switch(int opt)
{
    return bp_print_switch_run(__func__, k_bp_orvex_print, opt);
}

int tolvek_smart_test_bp_qmi_print_switch(int opt)
{
    return bp_print_switch_run(__func__, k_bp_qmi_print, opt);
}

int tolvek_smart_test_bp_rf_print_switch(int opt)
{
    return bp_print_switch_run(__func__, k_bp_rf_print, opt);
}
