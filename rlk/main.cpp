/* rlk <option> [<sub-command> <arguments>...]: one test action per run.
 * The exit status is always 0; results and failures are on standard
 * output. */
#include <stddef.h>
#include <stdio.h>
#include <stdlib.h>

#include "tolvek_help.h"
#include "tolvek_test_groups.h"

/* Words up to and including the option number. */
static const int k_min_words = 2;

typedef int (*rlk_option_fn)(int argc, char **argv);

struct rlk_option_entry {
    int option;
    rlk_option_fn run;
};

/* Options that keep a help block but have no handler. */
static int rlk_option_not_supported(int, char **)
{
    puts("Not support");
    return 0;
}

static int rlk_option_modem_stats(int argc, char **argv)
{
    tolvek_test_modem_stats_do(argc, argv);
    return 0;
}

static const rlk_option_entry k_option_table[] = {
    {TOLVEK_OPTION_NV, rlk_option_not_supported},
    {TOLVEK_OPTION_IMEI, rlk_option_not_supported},
    {TOLVEK_OPTION_RF, tolvek_test_rf_do},
    {TOLVEK_OPTION_NVEFS, tolvek_test_nvefs_do},
    {TOLVEK_OPTION_CMN, tolvek_test_cmn_do},
    {TOLVEK_OPTION_QMI_SEND, tolvek_test_qmi_send_data_do},
    {TOLVEK_OPTION_MODEM_STATS, rlk_option_modem_stats},
    {TOLVEK_OPTION_AT_CMD, tolvek_test_at_cmd_do},
    {TOLVEK_OPTION_QMI_MODEM_STATS, tolvek_test_qmi_modem_stats_do},
    {TOLVEK_OPTION_MBN, tolvek_test_mbn_do},
    {TOLVEK_OPTION_SMART_TEST, tolvek_smart_test_do},
};

static rlk_option_fn find_option(int option)
{
    for (const rlk_option_entry &entry : k_option_table) {
        if (entry.option == option) {
            return entry.run;
        }
    }
    return NULL;
}

int main(int argc, char **argv)
{
    if (argc < k_min_words) {
        show_help(TOLVEK_HELP_ALL);
        return 0;
    }
    rlk_option_fn run = find_option(atoi(argv[1]));
    if (run == NULL) {
        show_help(TOLVEK_HELP_ALL);
        return 0;
    }
    /* The group reports its own result on standard output. */
    run(argc, argv);
    return 0;
}
