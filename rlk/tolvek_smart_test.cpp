#include "tolvek_smart_test.h"

#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include "cutils/properties.h"
#include "tolvek_extend_cmn.h"
#include "tolvek_extend_nvefs.h"
#include "tolvek_group_entry.h"
#include "tolvek_help.h"
#include "tolvek_log.h"
#include "tolvek_test_groups.h"

/* Option 11 dispatch, SSR, full dump, NV sync, the SSR wait and the count of
 * restart-level changes.  The print switches: tolvek_smart_test_switch.cpp. */

/* Words of the shortest valid command line: rlk 11 <par_i> <opt>. */
static const int k_smart_test_min_words = 4;

static const char k_note_too_few[] = "\nnote: Too few parameters, Pls refer to the following cmd:";
static const char k_note_first_param[] =
    "\nnote: the first parameters should be %d, Pls refer to the following cmd:\n";
static const char k_note_opt_invalid[] = "\nnote: opt(%d) is invalid:\n";
static const char k_note_par_invalid[] = "invalid par_i = %d\n";

static tolvek_smart_test_sleep_fn g_smart_test_sleep = sleep;

void tolvek_smart_test_set_sleep(tolvek_smart_test_sleep_fn fn)
{
    g_smart_test_sleep = fn ? fn : sleep;
}

/* Console-only lines of this group: written unless the console is quiet,
 * with no system-log copy. */
static void smart_test_console(const char *format, ...) __attribute__((format(printf, 1, 2)));
static void smart_test_console(const char *format, ...)
{
    if (g_tolvek_console_quiet) {
        return;
    }
    va_list ap;
    va_start(ap, format);
    vprintf(format, ap);
    va_end(ap);
}

int tolvek_smart_test_common_req(uint32_t type, uint32_t len, void *value)
{
    tolvek_common_rsp rsp;
    memset(&rsp, 0, sizeof(rsp));
    tolvek_send_common_qmi_msg(type, len, value, &rsp);
    return rsp.result;
}

/* Sends the SSR request with `value` (restart or full dump). */
static int smart_test_send_ssr(uint32_t value)
{
    return tolvek_smart_test_common_req(TOLVEK_COMMON_TYPE_SSR, sizeof(value), &value);
}

/* Sets the restart level; a failure is reported with the property's
 * result. */
static int smart_test_set_level(const char *key, const char *level)
{
    int ret = property_set(key, level);
    if (ret != 0) {
        TOLVEK_LOGD("property_set %s to %s failed: %d", key, level, ret);
    }
    return ret;
}

int tolvek_smart_test_ssr_wait_s(void)
{
    char value[PROPERTY_VALUE_MAX] = {0};
    property_get(TOLVEK_PROP_SSR_WAIT_S, value, TOLVEK_SSR_WAIT_DEFAULT);
    int wait_s = atoi(value);
    TOLVEK_LOGD("ssr wait_s = %d\n", wait_s);
    if (wait_s == 0) {
        TOLVEK_LOGD("modem ssr will not wait\n");
        return wait_s;
    }
    TOLVEK_LOGD("modem ssr start to wait %ds to init\n", wait_s);
    /* A negative value reaches the sleep as it stands, as an unsigned
     * count of seconds. */
    g_smart_test_sleep(static_cast<unsigned int>(wait_s));
    TOLVEK_LOGD("modem ssr end to wait %ds to init\n", wait_s);
    return wait_s;
}

int tolvek_smart_test_modem_ssr(void)
{
    char old_level[PROPERTY_VALUE_MAX] = {0};
    property_get(TOLVEK_PROP_SSR_LEVEL, old_level, TOLVEK_SSR_LEVEL_DISABLE);
    TOLVEK_LOGD("Will trigger SSR of modem, the current state: %s\n", old_level);
    bool was_enabled = strcmp(old_level, TOLVEK_SSR_LEVEL_ENABLE) == 0;
    if (!was_enabled) {
        TOLVEK_LOGD("need to open ssr\n");
        /* With restart disabled the modem's restart would take the whole
         * device down, so the request is not sent without the change. */
        if (smart_test_set_level(TOLVEK_PROP_SSR_LEVEL, TOLVEK_SSR_LEVEL_ENABLE) != 0) {
            return TOLVEK_SMART_TEST_STOPPED;
        }
        if (tolvek_smart_test_ssr_wait_s() < 0) {
            TOLVEK_LOGD("wait_s < 0, ssr is stoped\n");
            return TOLVEK_SMART_TEST_STOPPED;
        }
    }
    int result = smart_test_send_ssr(TOLVEK_SSR_VALUE_RESTART);
    if (was_enabled) {
        return result;
    }
    if (tolvek_smart_test_ssr_wait_s() >= 0) {
        TOLVEK_LOGD("back to old ssr state\n");
        int ret = smart_test_set_level(TOLVEK_PROP_SSR_LEVEL, old_level);
        return ret != 0 ? ret : result;
    }
    TOLVEK_LOGD("wait_s < 0, ssr is stoped\n");
    return result;
}

uint32_t tolvek_smart_test_read_ssr_update_flag(void)
{
    uint32_t update_cnt = 0;
    uint32_t len = sizeof(update_cnt);
    int ret = tolvek_efs_read(TOLVEK_EFS_SUB_SMART_TEST, TOLVEK_SSR_UPDATE_COUNT_FILE,
                              strlen(TOLVEK_SSR_UPDATE_COUNT_FILE), reinterpret_cast<uint8_t *>(&update_cnt),
                              &len);
    TOLVEK_LOGD("PROP_MODEM_SSR_UPDATE_COUNT read ret: %d, old update_cnt: %d, len: %d", ret, int(update_cnt),
                int(len));
    if (ret != 0) {
        TOLVEK_LOGE("tolvek_efs_read failed, maybe empty");
        update_cnt = 0;
    }
    return update_cnt;
}

int tolvek_smart_test_save_ssr_update_flag(void)
{
    /* The count wraps rather than traps: it is the modem's record, not an
     * index of the tool. */
    uint32_t update_cnt = tolvek_smart_test_read_ssr_update_flag() + 1u;
    int ret = tolvek_efs_write(TOLVEK_EFS_SUB_SMART_TEST, TOLVEK_SSR_UPDATE_COUNT_FILE,
                               strlen(TOLVEK_SSR_UPDATE_COUNT_FILE), reinterpret_cast<uint8_t *>(&update_cnt),
                               sizeof(update_cnt));
    TOLVEK_LOGD("PROP_MODEM_SSR_UPDATE_COUNT write ret: %d, new update_cnt: %d", ret, int(update_cnt));
    return ret;
}

int tolvek_smart_test_full_dump(void)
{
    char level[PROPERTY_VALUE_MAX] = {0};
    char saved[PROPERTY_VALUE_MAX] = {0};
    property_get(TOLVEK_PROP_SSR_LEVEL, level, TOLVEK_SSR_LEVEL_ENABLE);
    property_get(TOLVEK_PROP_SSR_LEVEL_BAK, saved, "");
    if (saved[0] == '\0') {
        TOLVEK_LOGD("need to save ssr state\n");
        smart_test_set_level(TOLVEK_PROP_SSR_LEVEL_BAK, level);
        memcpy(saved, level, sizeof(saved));
    }
    smart_test_console("Will trigger Full Dump, the current state: %s, the default state: %s\n", level, saved);
    if (strcmp(level, TOLVEK_SSR_LEVEL_DISABLE) != 0) {
        TOLVEK_LOGD("need to close ssr\n");
        /* With restart enabled the modem would restart instead of dumping,
         * so the request is not sent without the change. */
        if (smart_test_set_level(TOLVEK_PROP_SSR_LEVEL, TOLVEK_SSR_LEVEL_DISABLE) != 0) {
            return TOLVEK_SMART_TEST_STOPPED;
        }
        tolvek_smart_test_save_ssr_update_flag();
    }
    return smart_test_send_ssr(TOLVEK_SSR_VALUE_FULL_DUMP);
}

int tolvek_smart_test_nv_sync(void)
{
    smart_test_console("Will trigger NV SYNC\n");
    return tolvek_smart_test_common_req(TOLVEK_COMMON_TYPE_NV_SYNC, 0, NULL);
}

/* Sub-commands by par_i; 0 to 2 take no argument, the others the opt. */
struct smart_test_subcmd {
    int (*plain)(void);
    int (*with_opt)(int opt);
};

static const smart_test_subcmd k_smart_test_subcmds[] = {
    {tolvek_smart_test_modem_ssr, NULL},
    {tolvek_smart_test_full_dump, NULL},
    {tolvek_smart_test_nv_sync, NULL},
    {NULL, tolvek_smart_test_ap_orvex_switch},
    {NULL, tolvek_smart_test_bp_orvex_print_switch},
    {NULL, tolvek_smart_test_bp_qmi_print_switch},
    {NULL, tolvek_smart_test_bp_rf_print_switch},
};
static const int k_smart_test_subcmd_count =
    static_cast<int>(sizeof(k_smart_test_subcmds) / sizeof(k_smart_test_subcmds[0]));

/* The opt of every sub-command: 0 off, 1 on. */
static const unsigned int k_smart_test_opt_max = 1;

int tolvek_smart_test_do(int argc, char **argv)
{
    if (argc < k_smart_test_min_words) {
        puts(k_note_too_few);
    } else if (atoi(argv[1]) != TOLVEK_OPTION_SMART_TEST) {
        printf(k_note_first_param, TOLVEK_OPTION_SMART_TEST);
    } else {
        int par_i = atoi(argv[2]);
        int opt = atoi(argv[3]);
        if (static_cast<unsigned int>(opt) > k_smart_test_opt_max) {
            printf(k_note_opt_invalid, opt);
        } else if (par_i < 0 || par_i >= k_smart_test_subcmd_count) {
            printf(k_note_par_invalid, par_i);
        } else {
            const smart_test_subcmd &cmd = k_smart_test_subcmds[par_i];
            return cmd.plain ? cmd.plain() : cmd.with_opt(opt);
        }
    }
    show_help(TOLVEK_OPTION_SMART_TEST);
    return TOLVEK_GROUP_ENTRY_REJECTED;
}
