/* Helpers of the PDC client tests: a private radio log per test, a clean
 * g_pdc_info, and the stored outcome of an operation. */
#ifndef RLK_PDC_TEST_UTIL_H
#define RLK_PDC_TEST_UTIL_H

#include <string.h>
#include <unistd.h>

#include <mutex>

#include <gtest/gtest.h>

#include "golden.h"
#include "pdc_requests.h"
#include "pdc_utils.h"
#include "sim_fixture.h"

/* Points the Android log of this process at a fresh file for one test and
 * resets the PDC client's record. */
class pdc_log_scope {
public:
    pdc_log_scope()
    {
        char path[] = "/tmp/rlk_pdc_logcat_XXXXXX";
        close(mkstemp(path));
        path_ = path;
        const char *old = getenv("RLK_LOGCAT_FILE");
        saved_ = old ? old : "";
        setenv("RLK_LOGCAT_FILE", path_.c_str(), 1);
        qmi_pdc_init_pdc_info();
        pdc_reset_cancel();
        start_ = read_log_file(path_, true).size(); /* after the record's own "init done" line */
    }
    ~pdc_log_scope()
    {
        saved_.empty() ? unsetenv("RLK_LOGCAT_FILE") : setenv("RLK_LOGCAT_FILE", saved_.c_str(), 1);
        unlink(path_.c_str());
    }
    /* "<priority> <message>" of every PDC_UTIL line since the scope began,
     * each ended by a newline. */
    std::string text() const
    {
        std::string out;
        size_t n = 0;
        for (const log_line &l : read_log_file(path_, true)) {
            EXPECT_EQ(l.buffer, 1);
            EXPECT_EQ(l.tag, "PDC_UTIL");
            if (n++ >= start_) out += std::to_string(l.priority) + " " + l.text + "\n";
        }
        return out;
    }

private:
    std::string path_, saved_;
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
