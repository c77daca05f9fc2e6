/* Helpers of the PDC client tests: a private radio log per test, a clean
 * g_pdc_info, and the stored outcome of an operation. */
#ifndef RLK_PDC_TEST_UTIL_H
#define RLK_PDC_TEST_UTIL_H

#include <string.h>

#include "../modem_api/modem_api_test_util.h"
#include "pdc_requests.h"
#include "pdc_utils.h"

/* A private Android log (see temp_logcat) and a reset PDC client record. */
class pdc_log_scope : public temp_logcat {
public:
    pdc_log_scope()
    {
        qmi_pdc_init_pdc_info();
        pdc_reset_cancel();
        start_ = read_log_file(path, true).size(); /* after the record's own "init done" line */
    }
    /* "<priority> <message>" of every PDC_UTIL line since the scope began,
     * each ended by a newline. */
    std::string text() const
    {
        std::string out;
        size_t n = 0;
        for (const log_line &l : read_log_file(path, true)) {
            EXPECT_EQ(l.buffer, 1);
            EXPECT_EQ(l.tag, "PDC_UTIL");
            if (n++ >= start_) out += std::to_string(l.priority) + " " + l.text + "\n";
        }
        return out;
    }

private:
    size_t start_ = 0;
};

/* The stored outcome of `op` as one line, read under the PDC mutex. */
inline std::string outcome_of(pdc_op op)
{
    std::lock_guard<qtimutex::QtiSharedMutex> lock(g_pdc_info.pdc_mutex);
    pdc_slot_view v = pdc_slot_of(op);
    return "done " + std::to_string(*v.done) + " result " + std::to_string(*v.result) + " error " +
           std::to_string(*v.qmi_error) + "\n";
}

#endif
