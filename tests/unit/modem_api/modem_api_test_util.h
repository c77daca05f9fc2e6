/* Helpers of the modem API and vs client tests: the ORVEX lines of this
 * process's Android log, and a recorder of callbacks from other threads. */
#ifndef RLK_TEST_MODEM_API_TEST_UTIL_H
#define RLK_TEST_MODEM_API_TEST_UTIL_H

#include <stdlib.h>
#include <unistd.h>

#include <algorithm>
#include <condition_variable>
#include <mutex>

#include <gtest/gtest.h>

#include "orvex_mem.h"
#include "sim_fixture.h"

/* Upper bound of every wait: success never waits for it. */
constexpr int k_modem_api_wait_ms = 5000;

/* Points this process's Android log at a fresh file; returns its path. */
inline std::string fresh_logcat(const std::string &dir, const std::string &name)
{
    std::string path = dir + "/" + name;
    unlink(path.c_str());
    setenv("RLK_LOGCAT_FILE", path.c_str(), 1);
    return path;
}

/* This process's Android log in a private directory, removed at the end,
 * for tests without a simulator: the memory layer's one property read
 * finds nothing instead of starting the default simulator (seconds). */
struct temp_logcat {
    temp_logcat()
    {
        orvex_mem_set_property_reader([](const char *, char *, const char *) { return 0; });
        char tmpl[] = "/tmp/rlk-modem-api-XXXXXX";
        dir = mkdtemp(tmpl) ? tmpl : "/tmp";
        path = fresh_logcat(dir, "logcat.log");
    }
    ~temp_logcat()
    {
        orvex_mem_set_property_reader(nullptr);
        unlink(path.c_str());
        rmdir(dir.c_str());
    }
    std::string dir, path;
};

/* "<priority> <text>" of every ORVEX line in `path`. */
inline std::vector<std::string> orvex_lines(const std::string &path)
{
    std::vector<std::string> out;
    for (const log_line &l : read_log_file(path, true)) {
        if (l.tag == "ORVEX") out.push_back(std::to_string(l.priority) + " " + l.text);
    }
    return out;
}

inline bool has_line(const std::vector<std::string> &lines, const std::string &line)
{
    return std::find(lines.begin(), lines.end(), line) != lines.end();
}

/* Values recorded from callback threads, with a bounded wait. */
template <typename T>
class recorder {
public:
    void add(const T &v)
    {
        std::lock_guard<std::mutex> g(mu_);
        values_.push_back(v);
        cv_.notify_all();
    }
    /* Waits until `n` values arrived (at most k_modem_api_wait_ms). */
    bool wait_count(size_t n)
    {
        std::unique_lock<std::mutex> lk(mu_);
        return cv_.wait_for(lk, std::chrono::milliseconds(k_modem_api_wait_ms), [&] { return values_.size() >= n; });
    }
    std::vector<T> values()
    {
        std::lock_guard<std::mutex> g(mu_);
        return values_;
    }

private:
    std::mutex mu_;
    std::condition_variable cv_;
    std::vector<T> values_;
};

#endif
