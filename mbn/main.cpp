/* rlk-mbn: the MBN operations users need, on the PDC client. */
#include <stdio.h>

#include "mbn_ops.h"
#include "mbn_print.h"
#include "mbn_session.h"

int main(int argc, char **argv)
{
    mbn_options o;
    std::string error;
    if (!mbn_parse_options(argc, argv, &o, &error)) {
        fprintf(stderr, "rlk-mbn: %s\n%s", error.c_str(), k_mbn_usage);
        return k_mbn_exit_usage;
    }
    if (o.command == MBN_CMD_HELP) {
        fputs(k_mbn_usage, stdout);
        return k_mbn_exit_ok;
    }
    mbn_session_start();
    if (!mbn_open_pdc(o.timeout_s)) {
        mbn_close_pdc();
        mbn_session_end();
        int sig = mbn_session_signal();
        if (sig) {
            fprintf(stderr, "rlk-mbn: interrupted\n");
            return k_mbn_exit_signal_base + sig;
        }
        fprintf(stderr, "rlk-mbn: the PDC service is not available\n");
        return k_mbn_exit_unavailable;
    }
    mbn_report report;
    mbn_result res = mbn_run(o, &report);
    /* Released on every path: success, failure, time-out and signal. */
    mbn_close_pdc();
    mbn_session_end();
    if (res.exit_code != k_mbn_exit_ok) {
        fprintf(stderr, "rlk-mbn: %s\n", res.error.c_str());
        return res.exit_code;
    }
    fputs(mbn_format_report(o, report).c_str(), stdout);
    return k_mbn_exit_ok;
}
