/* Test controls of the extension service ("ext ..." control requests):
 *   ext fail-efs <skip> result <r>     the EFS/NV request after <skip> more
 *                                      is answered with result <r> (in the
 *                                      record at offset 16) and not performed
 *   ext fail-efs <skip> msg_code <c>   the same, failed with framework
 *                                      result <c> instead
 *   ext transfers                      number of open EFS write transfers
 *   ext transfer-idle <ms>             drop EFS write transfers idle this long
 *   ext restart-delay [ms]             sim/services/ext_restart.h
 * A failure is armed once; a new one replaces it. */
#include "ext_card_slot.h"
#include "ext_efs.h"
#include "ext_restart.h"

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
    std::string answer;
    if (ext_restart_control(d, a, &answer)) return answer;
    if (a.size() >= 2 && a[1] == "card") return card_control(d, a);
    if (a.size() == 2 && a[1] == "transfers") return "ok " + std::to_string(ext_efs_open_transfers());
    int64_t skip = 0, code = 0, ms = 0;
    if (a.size() == 3 && a[1] == "transfer-idle" && parse_number(a[2], &ms) && ms > 0 &&
        ms <= k_transfer_idle_max_ms) {
        ext_efs_set_transfer_idle(uint64_t(ms));
        return "ok";
    }
    if (a.size() == 5 && a[1] == "fail-efs" && parse_number(a[2], &skip) && skip >= 0 &&
        (a[3] == "result" || a[3] == "msg_code") && parse_number(a[4], &code) && code >= INT32_MIN &&
        code <= INT32_MAX) {
        g_efs_failure = {true, skip, a[3] == "msg_code", int32_t(code)};
        return "ok";
    }
    return "error usage: ext fail-efs <skip> result|msg_code <code> | ext transfers | ext transfer-idle <ms>";
}

}  // namespace modemd
