#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>

#include "tolvek_convert.h"
#include "tolvek_extend_cmn.h"
#include "tolvek_help.h"
#include "tolvek_log.h"
#include "tolvek_test_groups.h"

/* Option 6: a raw request to the extension QMI service,
 * `rlk 6 <qmi_id> <byte> [<byte> ...]`.  No sub-command number: the request
 * code and the bytes follow the option.  Every print of this option,
 * argument notes included, is skipped while the console is quiet; the help
 * is printed on every failure all the same. */

/* Words needed: program, option, qmi_id and at least one byte. */
static const int k_qmi_send_min_words = 4;
static const int k_arg_qmi_id = 2;
static const int k_arg_first_byte = 3;
/* Request codes the option sends: 0 up to (not including) 6. */
static const int k_qmi_id_min = 0;
static const int k_qmi_id_limit = 6;
/* Most bytes sent, and the maximum the request and answer lines state. */
static const int k_qmi_send_data_max = 500;

/* printf unless the console is quiet; returns what printf returned (0 when
 * quiet). */
__attribute__((format(printf, 1, 2))) static int qmi_send_print(const char *format, ...)
{
    if (g_tolvek_console_quiet) {
        return 0;
    }
    va_list ap;
    va_start(ap, format);
    int n = vprintf(format, ap);
    va_end(ap);
    return n;
}

/* The text and a newline, unless the console is quiet. */
static int qmi_send_line(const char *text)
{
    return qmi_send_print("%s\n", text);
}

/* Returns what the last print returned, as the option's result. */
int tolvek_test_qmi_send_data_do(int argc, char **argv)
{
    int printed;
    if (argc < k_qmi_send_min_words) {
        printed = qmi_send_line("\nnote: Too few parameters, Pls refer to the following cmd:");
        show_help(TOLVEK_OPTION_QMI_SEND);
        return printed;
    }
    if (atoi(argv[1]) != TOLVEK_OPTION_QMI_SEND) {
        printed = qmi_send_print("\nnote: the first parameters should be %d, Pls refer to the following cmd:\n",
                                 TOLVEK_OPTION_QMI_SEND);
        show_help(TOLVEK_OPTION_QMI_SEND);
        return printed;
    }
    int qmi_id = atoi(argv[k_arg_qmi_id]);
    if (qmi_id < k_qmi_id_min || qmi_id >= k_qmi_id_limit) {
        printed = qmi_send_print("\nnote: the second parameters(qmi_id) should be >= %d && < %d\n", k_qmi_id_min,
                                 k_qmi_id_limit);
        show_help(TOLVEK_OPTION_QMI_SEND);
        return printed;
    }

    int words = argc - k_arg_first_byte;
    qmi_send_print("tk_qmi req data(qmi_id: %d, len: %d[max: %d]):\n", qmi_id, words, k_qmi_send_data_max);
    uint8_t data[k_qmi_send_data_max];
    int len = 0;
    for (int i = 0; i < words && len < k_qmi_send_data_max; ++i) {
        data[len] = uint8_t(tolvek_string_to_int(argv[k_arg_first_byte + i]));
        qmi_send_print("0x%02X ", data[len]);
        ++len;
    }

    /* A response capacity of 0: no answer bytes are ever copied. */
    uint8_t rsp[k_qmi_send_data_max];
    uint32_t rsp_len = 0;
    int result = tolvek_extend_qmi_send_sync(uint32_t(qmi_id), data, len, rsp, &rsp_len);
    printed = qmi_send_print("qmi_id = %d, result = %d\n", qmi_id, result);
    if (result != 0) {
        printed = qmi_send_line("tolvek_extend_qmi_send_sync fail");
        show_help(TOLVEK_OPTION_QMI_SEND);
        return printed;
    }
    qmi_send_print("tk_qmi rsp data(qmi_id: %d, len: %d[max: %d]):\n", qmi_id, int(rsp_len), k_qmi_send_data_max);
    for (uint32_t i = 0; i < rsp_len; ++i) {
        qmi_send_print(" %02X", rsp[i]);
    }
    printed = qmi_send_print("\n");
    return printed;
}
