/* Entry functions of the command groups, one per option of the command
 * line.  Each takes the argument count and vector exactly as main got them
 * (argv[1] is the option number) and prints its own notes and help. */
#ifndef TOLVEK_TEST_GROUPS_H
#define TOLVEK_TEST_GROUPS_H

#include <stdint.h>

/* Option numbers, the first argument of the command line. */
enum tolvek_option {
    TOLVEK_OPTION_NV = 1,
    TOLVEK_OPTION_IMEI = 2,
    TOLVEK_OPTION_RF = 3,
    TOLVEK_OPTION_NVEFS = 4,
    TOLVEK_OPTION_CMN = 5,
    TOLVEK_OPTION_QMI_SEND = 6,
    TOLVEK_OPTION_MODEM_STATS = 7,
    TOLVEK_OPTION_AT_CMD = 8,
    TOLVEK_OPTION_QMI_MODEM_STATS = 9,
    TOLVEK_OPTION_MBN = 10,
    TOLVEK_OPTION_SMART_TEST = 11,
};

int tolvek_test_rf_do(int argc, char **argv);
int tolvek_test_nvefs_do(int argc, char **argv);
int tolvek_test_cmn_do(int argc, char **argv);
int tolvek_test_qmi_send_data_do(int argc, char **argv);
int64_t tolvek_test_modem_stats_do(int argc, char **argv);
int tolvek_test_at_cmd_do(int argc, char **argv);
int tolvek_test_qmi_modem_stats_do(int argc, char **argv);
int tolvek_test_mbn_do(int argc, char **argv);
int tolvek_smart_test_do(int argc, char **argv);

#endif
