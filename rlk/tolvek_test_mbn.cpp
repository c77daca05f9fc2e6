/* Option 10: checks its arguments (mbn_i, sub_mask) and brings the PDC
 * client up.  No MBN operation index is implemented yet: 0 returns at
 * once, any other index is reported invalid (1 without the help, the
 * others with it). */
#include "tolvek_test_mbn.h"

#include <stdio.h>
#include <stdlib.h>

#include <mutex>

#include "pdc_utils.h"
#include "tolvek_help.h"
#include "tolvek_log.h"
#include "tolvek_test_groups.h"

int32_t g_pdc_init_status = -1;
tovlek_pdc_mbn_info g_tovlek_pdc_mbn_info;

namespace {

/* Arguments through mbn_i; sub_mask follows. */
constexpr int k_min_argc = 4;
/* sub_mask: bit 0 subscription 0, bit 1 subscription 1. */
constexpr int k_sub_mask_min = 1;
constexpr int k_sub_mask_max = 3;
/* The index that is reported invalid without the help text. */
constexpr int k_mbn_i_quiet = 1;
/* Lines these two messages report, as the factory logs know them. */
constexpr int k_line_init_failed = 199;
constexpr int k_line_timed_callback = 67;

const char k_note_too_few[] = "\nnote: Too few parameters, Pls refer to the following cmd:";
const char k_note_first_param[] = "\nnote: the first parameters should be %d, Pls refer to the following cmd:\n";
const char k_note_sub_mask[] = "\nnote: sub_mask(%d) is invalid:\n";
const char k_note_invalid_mbn_i[] = "invalid mbn_i = %d\n";

}  // namespace

int32_t tolvek_test_mbn_pdc_init(int force_init)
{
    TOLVEK_FUNC_ENTRY();
    if (g_pdc_init_status != 0 || force_init) {
        pdc_clean();
        TOLVEK_LOGD("start tolvek pdc init, g_pdc_init_status = %d, force_init = %d", g_pdc_init_status,
                    force_init);
        g_pdc_init_status = pdc_init();
        if (g_pdc_init_status != 0) {
            TOLVEK_LOGE("pdc init failed");
        } else {
            std::lock_guard<qtimutex::QtiSharedMutex> lock(g_tovlek_pdc_mbn_info.mutex);
            g_tovlek_pdc_mbn_info.progress = 0;
            g_tovlek_pdc_mbn_info.progress_received = 0;
            g_tovlek_pdc_mbn_info.progress_total = 0;
        }
    }
    TOLVEK_FUNC_EXIT();
    return g_pdc_init_status;
}

void tolvek_qcril_setup_timed_callback(int, int, tolvek_qcril_timed_callback, const struct timeval *)
{
    tolvek_log_line(TOLVEK_LOG_PRIO_DEBUG, TOLVEK_LOG_SRC_TAG, k_line_timed_callback,
                    "tolvek_qcril_setup_timed_callback", "setup_timed_callback test");
}

int tolvek_test_mbn_do(int argc, char **argv)
{
    if (argc < k_min_argc) {
        puts(k_note_too_few);
        show_help(TOLVEK_OPTION_MBN);
        return -1;
    }
    if (atoi(argv[1]) != TOLVEK_OPTION_MBN) {
        printf(k_note_first_param, TOLVEK_OPTION_MBN);
        show_help(TOLVEK_OPTION_MBN);
        return -1;
    }
    int sub_mask = atoi(argv[3]);
    if (sub_mask < k_sub_mask_min || sub_mask > k_sub_mask_max) {
        printf(k_note_sub_mask, sub_mask);
        show_help(TOLVEK_OPTION_MBN);
        return -1;
    }
    if (tolvek_test_mbn_pdc_init(0) != 0) {
        tolvek_log_line(TOLVEK_LOG_PRIO_ERR, TOLVEK_LOG_SRC_TAG, k_line_init_failed, "tolvek_test_mbn_do",
                        "pdc init failed, do nothing");
        show_help(TOLVEK_OPTION_MBN);
        return -1;
    }
    int mbn_i = atoi(argv[2]);
    if (mbn_i == 0) return 0;
    printf(k_note_invalid_mbn_i, mbn_i);
    /* Index 1 is reported without the help; every other index with it. */
    if (mbn_i != k_mbn_i_quiet) show_help(TOLVEK_OPTION_MBN);
    return -1;
}
