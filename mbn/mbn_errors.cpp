/* The texts of rlk-mbn's failures that come from the modem: the PDC
 * results by what they mean, other QMI errors by their public name beside
 * the number. */
#include <stdio.h>

#include "mbn_ops.h"

namespace {

struct qmi_error_name {
    unsigned int code;
    const char *name;
};

/* The common QMI error codes and their public names. */
const qmi_error_name k_qmi_errors[] = {
    {1, "malformed message"},
    {2, "no memory"},
    {3, "internal"},
    {4, "aborted"},
    {5, "client ids exhausted"},
    {6, "unabortable transaction"},
    {7, "invalid client id"},
    {9, "invalid handle"},
    {16, "not provisioned"},
    {17, "missing argument"},
    {19, "argument too long"},
    {22, "invalid transaction id"},
    {23, "device in use"},
    {25, "device unsupported"},
    {26, "no effect"},
    {41, "invalid id"},
    {46, "general"},
    {47, "unknown"},
    {48, "invalid argument"},
    {49, "invalid index"},
    {50, "no entry"},
    {51, "device storage full"},
    {52, "device not ready"},
    {57, "invalid message id"},
    {58, "encoding"},
    {90, "incompatible state"},
    {94, "not supported"},
};

mbn_result fail(int code, const std::string &text) { return {code, text}; }

/* "invalid id (QMI error 41)"; `unnamed` stands in for an unknown name. */
std::string qmi_error_text(unsigned int code, const char *unnamed)
{
    const char *name = mbn_qmi_error_name(code);
    return std::string(name ? name : unnamed) + " (QMI error " + std::to_string(code) + ")";
}

}  // namespace

const char *mbn_qmi_error_name(unsigned int code)
{
    for (const qmi_error_name &e : k_qmi_errors) {
        if (e.code == code) return e.name;
    }
    return nullptr;
}

mbn_result mbn_send_failure(int rc, const char *what)
{
    if (rc > 0) {
        return fail(k_mbn_exit_failure,
                    std::string(what) + ": refused by the modem: " + qmi_error_text(unsigned(rc), "error"));
    }
    char text[128];
    snprintf(text, sizeof(text), "%s: request not delivered (QMI client error %d)", what, rc);
    return fail(k_mbn_exit_failure, text);
}

mbn_result mbn_result_of(int8_t result, uint16_t qmi_error, const char *what)
{
    std::string w = what;
    switch (result) {
    case PDC_RESULT_SUCCESS:
        return {};
    case PDC_RESULT_NO_MEMORY:
        return fail(k_mbn_exit_no_memory, w + ": no memory (the modem has no room for the configuration)");
    case PDC_RESULT_CONFIG_EXISTS:
        return fail(k_mbn_exit_config_exists, w + ": config exists (a configuration with this id is stored)");
    case PDC_RESULT_FRAME_RESET:
        return fail(k_mbn_exit_frame_reset, w + ": frame reset (the modem dropped the partial transfer)");
    case PDC_RESULT_NO_MBN:
        return fail(k_mbn_exit_no_mbn, w + ": no MBN (no configuration of this type is stored)");
    default:
        if (qmi_error) return fail(k_mbn_exit_failure, w + ": " + qmi_error_text(qmi_error, "failed"));
        return fail(k_mbn_exit_failure, w + ": failed (result " + std::to_string(result) + ")");
    }
}
