/* Test controls of the extension service ("ext ..." control requests):
 *   ext fail-efs <skip> result <r>     the EFS/NV request after <skip> more
 *                                      is answered with result <r> (in the
 *                                      record at offset 16) and not performed
 *   ext fail-efs <skip> msg_code <c>   the same, failed with framework
 *                                      result <c> instead
 *   ext transfers                      number of open EFS write transfers
 * A failure is armed once; a new one replaces it. */
#include "ext_card_slot.h"
#include "ext_efs.h"

namespace modemd {
namespace {

struct armed_failure {
    bool armed = false;
    int64_t skip = 0;
    bool framework = false; /* msg_code instead of the record's result */
    int32_t code = 0;
};

armed_failure g_efs_failure;

}  // namespace

bool ext_efs_take_failure(tolvek_extend_msg &resp)
{
    if (!g_efs_failure.armed) return false;
    if (g_efs_failure.skip > 0) {
        g_efs_failure.skip--;
        return false;
    }
    g_efs_failure.armed = false;
    if (g_efs_failure.framework) {
        resp.msg_code = uint32_t(g_efs_failure.code);
    } else {
        ext_efs_reply_result(resp, g_efs_failure.code);
    }
    return true;
}

std::string ext_control(daemon &d, const std::vector<std::string> &a)
{
    if (a.size() >= 2 && a[1] == "card") return card_control(d, a);
    if (a.size() == 2 && a[1] == "transfers") return "ok " + std::to_string(ext_efs_open_transfers());
    int64_t skip = 0, code = 0;
    if (a.size() == 5 && a[1] == "fail-efs" && parse_number(a[2], &skip) && skip >= 0 &&
        (a[3] == "result" || a[3] == "msg_code") && parse_number(a[4], &code) && code >= INT32_MIN &&
        code <= INT32_MAX) {
        g_efs_failure = {true, skip, a[3] == "msg_code", int32_t(code)};
        return "ok";
    }
    return "error usage: ext fail-efs <skip> result|msg_code <code> | ext transfers";
}

}  // namespace modemd
