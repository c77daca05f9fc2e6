/* rlk-mbn: the MBN operations users need, on the PDC client. */
#include <stdio.h>

#include "mbn_ops.h"
#include "mbn_print.h"
#include "mbn_session.h"

namespace {

/* A failure: its message on standard error, and with --json its JSON
 * object (with what was found, for a list) on standard output. */
int report_failure(const mbn_options &o, const mbn_report &r, const mbn_result &res)
{
    fputs(mbn_format_failure(o, r, res).c_str(), stdout);
    fprintf(stderr, "rlk-mbn: %s\n", res.error.c_str());
    return res.exit_code;
}

int run(const mbn_options &o)
{
    mbn_input in;
    mbn_report report;
    /* Everything that can be checked without the modem is, first. */
    mbn_result res = mbn_prepare(o, &in);
    std::string device_error;
    if (!res.exit_code && !mbn_check_device(&device_error)) res = {k_mbn_exit_no_device, device_error};
    if (res.exit_code) return report_failure(o, report, res);

    in.deadline = std::chrono::steady_clock::now() + std::chrono::seconds(o.timeout_s);
    switch (mbn_open_pdc(in.deadline)) {
    case MBN_OPEN_OK:
        res = mbn_run(o, in, &report);
        break;
    case MBN_OPEN_TIMEOUT:
        res = {k_mbn_exit_timeout, "the PDC service did not answer within " + std::to_string(o.timeout_s) + " s"};
        break;
    case MBN_OPEN_SIGNAL:
        res = {k_mbn_exit_signal_base + mbn_session_signal(), "interrupted"};
        break;
    }
    /* Released on every path: success, failure, time-out and signal. */
    mbn_close_pdc();
    if (res.exit_code != k_mbn_exit_ok) return report_failure(o, report, res);
    fputs(mbn_format_report(o, report).c_str(), stdout);
    return k_mbn_exit_ok;
}

}  // namespace

int main(int argc, char **argv)
{
    mbn_options o;
    std::string error;
    if (!mbn_parse_options(argc, argv, &o, &error)) {
        if (o.json) fputs(mbn_format_failure(o, mbn_report(), {k_mbn_exit_usage, error}).c_str(), stdout);
        fprintf(stderr, "rlk-mbn: %s\n%s", error.c_str(), k_mbn_usage);
        return k_mbn_exit_usage;
    }
    if (o.command == MBN_CMD_HELP) {
        fputs(k_mbn_usage, stdout);
        return k_mbn_exit_ok;
    }
    mbn_session_start();
    return mbn_session_end(run(o));
}
