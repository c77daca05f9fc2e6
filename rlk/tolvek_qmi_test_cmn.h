/* The sub-commands of option 5, the common group, and the console helpers
 * they share.  Each takes the whole argument vector; 0 is success. */
#ifndef TOLVEK_QMI_TEST_CMN_H
#define TOLVEK_QMI_TEST_CMN_H

#include <stdarg.h>
#include <stdint.h>
#include <stdio.h>

#include "tolvek_log.h"

/* Error code of a wrong argument count (printed as 268431370). */
#define TOLVEK_CMN_ERR_ARG_COUNT 0xFFFF00A

/* Words before a sub-command's own arguments: program, option, number. */
#define TOLVEK_CMN_HEAD_WORDS 3

/* A console text of the group, as given (no newline added); nothing while
 * the console is quiet. */
__attribute__((format(printf, 1, 2))) static inline void tolvek_cmn_console(const char *format, ...)
{
    if (g_tolvek_console_quiet) {
        return;
    }
    va_list ap;
    va_start(ap, format);
    vprintf(format, ap);
    va_end(ap);
}

/* A console line: the text and a newline; nothing while the console is
 * quiet. */
static inline void tolvek_cmn_console_line(const char *text)
{
    if (!g_tolvek_console_quiet) {
        puts(text);
    }
}

/* Sends a typed common request (type `t`, `l` bytes of `value`) and dumps
 * the answer's type, length and value.  Returns the send result. */
int tolvek_cmn_cmd_send(uint32_t t, uint32_t l, void *value);

int tolvek_cmn_diag_cmd_send(int argc, char **argv);
int tolvek_cmn_card_status_query(int argc, char **argv);
int tolvek_cmn_card_status_get(int argc, char **argv);
int tolvek_cmn_card_status_set(int argc, char **argv);
int tolvek_cmn_card_type_query(int argc, char **argv);
int tolvek_cmn_card_hotswap_test(int argc, char **argv);
/* The SAR state query; runs only while the console is on.  Returns the
 * state, or -1 when the query failed. */
int tolvek_cmn_test_get_sar_dsi(int argc, char **argv);

#endif
