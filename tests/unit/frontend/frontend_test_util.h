/* Capture of what front-end code writes to the console and the system log
 * within one test, and command lines as main gets them. */
#ifndef RLK_FRONTEND_TEST_UTIL_H
#define RLK_FRONTEND_TEST_UTIL_H

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tolvek_log.h"

/* Standard output written while `fn` runs. */
template <typename Fn>
std::string capture_stdout(Fn fn)
{
    testing::internal::CaptureStdout();
    fn();
    return testing::internal::GetCapturedStdout();
}

/* The system-log file of this test process.  If the environment names none
 * when the process starts, a private temporary file is used, so that tests
 * never write to the simulator's default log. */
class syslog_capture {
public:
    /* Remembers the current end of the log. */
    syslog_capture();
    /* Lines appended since construction, each without its newline. */
    std::vector<std::string> lines() const;

private:
    long long start_;
};

/* Sets the console quiet flag for one scope and restores it afterwards. */
class console_quiet_scope {
public:
    explicit console_quiet_scope(bool quiet) : saved_(g_tolvek_console_quiet) { g_tolvek_console_quiet = quiet; }
    ~console_quiet_scope() { g_tolvek_console_quiet = saved_; }

private:
    bool saved_;
};

/* Writable argument vector terminated by a null pointer, as main gets it. */
class arg_vector {
public:
    explicit arg_vector(std::vector<std::string> words) : words_(std::move(words))
    {
        for (std::string &w : words_) ptrs_.push_back(&w[0]);
        ptrs_.push_back(nullptr);
    }
    int argc() const { return static_cast<int>(words_.size()); }
    char **argv() { return ptrs_.data(); }

private:
    std::vector<std::string> words_;
    std::vector<char *> ptrs_;
};

#endif
