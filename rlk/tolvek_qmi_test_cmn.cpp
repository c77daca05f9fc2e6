#include <stdlib.h>

#include "tolvek_cmn_esim.h"
#include "tolvek_convert.h"
#include "tolvek_diag_send.h"
#include "tolvek_group_entry.h"
#include "tolvek_qmi_test_cmn.h"
#include "tolvek_test_groups.h"

/* Option 5: the common group (raw diag commands, card status, hot-swap, SAR,
 * eSIM). */

enum cmn_subcmd {
    CMN_SUBCMD_DIAG_CMD = 0,
    CMN_SUBCMD_CARD_STATUS_QUERY = 1,
    CMN_SUBCMD_CARD_STATUS_GET = 2,
    CMN_SUBCMD_CARD_STATUS_SET = 3,
    CMN_SUBCMD_CARD_TYPE_QUERY = 4,
    CMN_SUBCMD_SAR_DSI = 5,
    CMN_SUBCMD_CARD_HOTSWAP = 6,
    CMN_SUBCMD_ESIM = 10,
};

/* `rlk 5 0 mode type time_out b1 b2 ...`: argv indexes and the fewest
 * words that carry one command byte. */
static const int k_arg_mode = 3;
static const int k_arg_type = 4;
static const int k_arg_time_out = 5;
static const int k_arg_first_byte = 6;
/* A sender thread ends within about a second and a half (registration, its
 * one-second wait, release); the process waits for it at most this long
 * before it ends. */
static const int k_sender_finish_wait_ms = 5000;

static int run_diag_cmd(int mode, int type, unsigned char *cmd, int length, unsigned char *reply,
                        int *reply_len, int time_out)
{
    if (mode == TOLVEK_DIAG_MODE_CALLBACK && type == TOLVEK_DIAG_TYPE_WITH_RESULT) {
        tolvek_cmn_console_line("callback mode with result");
        return tolvek_diag_cmd_send_with_result_by_callback_mode(cmd, length, reply, reply_len, time_out);
    }
    if (mode == TOLVEK_DIAG_MODE_CALLBACK) {
        tolvek_cmn_console_line("callback mode without result");
        return tolvek_diag_cmd_send_without_result_start_thread(cmd, length, TOLVEK_DIAG_MODE_CALLBACK);
    }
    if (type == TOLVEK_DIAG_TYPE_WITH_RESULT) {
        tolvek_cmn_console_line("dci mode with result");
        return tolvek_diag_cmd_send_with_result_by_dci_mode(cmd, length, reply, reply_len, time_out);
    }
    tolvek_cmn_console_line("dci mode without result");
    return tolvek_diag_cmd_send_without_result_start_thread(cmd, length, TOLVEK_DIAG_MODE_DCI);
}

int tolvek_cmn_diag_cmd_send(int argc, char **argv)
{
    if (argc <= k_arg_first_byte) {
        tolvek_cmn_console_line("\nnote: Too few inputs, Pls refer to the following cmd:");
        return 0;
    }
    int mode = atoi(argv[k_arg_mode]);
    int type = atoi(argv[k_arg_type]);
    int time_out = atoi(argv[k_arg_time_out]);
    static unsigned char cmd[TOLVEK_DIAG_CMD_MAX_LEN];
    static unsigned char reply[TOLVEK_DIAG_RSP_MAX_LEN];
    int reply_len = TOLVEK_DIAG_RSP_MAX_LEN;

    tolvek_cmn_console("diag cmd:");
    for (int i = k_arg_first_byte; i < argc && i - k_arg_first_byte < TOLVEK_DIAG_CMD_MAX_LEN; ++i) {
        cmd[i - k_arg_first_byte] = static_cast<unsigned char>(tolvek_string_to_int(argv[i]));
        tolvek_cmn_console("0x%02X ", cmd[i - k_arg_first_byte]);
    }
    tolvek_cmn_console("\n");
    /* Not capped: a longer command is refused by the input check. */
    int length = argc - k_arg_first_byte;

    int result = run_diag_cmd(mode, type, cmd, length, reply, &reply_len, time_out);
    if (result != 0) {
        tolvek_cmn_console_line("tolvek_diag_cmd_send fail");
        return result;
    }
    if (type == TOLVEK_DIAG_TYPE_WITH_RESULT) {
        tolvek_cmn_console("\nrsp data len(%d)\nrsp data:", reply_len);
        for (int i = 0; i < reply_len; ++i) {
            tolvek_cmn_console(" 0x%02X", reply[i]); /* the index stays below 10240 */
        }
        tolvek_cmn_console("\n");
    } else {
        tolvek_cmn_console_line("\ndone without rsp data");
        /* Let the sender finish its send and wait rather than end the
         * process under it. */
        tolvek_diag_cmd_send_without_result_wait_done(k_sender_finish_wait_ms);
    }
    return 0;
}

/* The SAR query answers on the console itself and never makes the group
 * print the error note. */
static int cmn_sar_dsi(int argc, char **argv)
{
    tolvek_cmn_test_get_sar_dsi(argc, argv);
    return 0;
}

/* Sub-command handlers, by sub-command number. */
static const tolvek_subcmd_entry k_cmn_subcmds[] = {
    {CMN_SUBCMD_DIAG_CMD, tolvek_cmn_diag_cmd_send},
    {CMN_SUBCMD_CARD_STATUS_QUERY, tolvek_cmn_card_status_query},
    {CMN_SUBCMD_CARD_STATUS_GET, tolvek_cmn_card_status_get},
    {CMN_SUBCMD_CARD_STATUS_SET, tolvek_cmn_card_status_set},
    {CMN_SUBCMD_CARD_TYPE_QUERY, tolvek_cmn_card_type_query},
    {CMN_SUBCMD_SAR_DSI, cmn_sar_dsi},
    {CMN_SUBCMD_CARD_HOTSWAP, tolvek_cmn_card_hotswap_test},
    {CMN_SUBCMD_ESIM, tolvek_cmn_esim_test},
};

int tolvek_test_cmn_do(int argc, char **argv)
{
    return tolvek_group_entry_run(TOLVEK_OPTION_CMN, argc, argv, k_cmn_subcmds,
                                  sizeof(k_cmn_subcmds) / sizeof(k_cmn_subcmds[0]));
}
