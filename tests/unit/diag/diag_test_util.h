/* Helpers of the diag tests: byte strings and HDLC frames, console output
 * captured from the tool's code, callbacks collected from library threads,
 * and an environment variable set for one test. */
#ifndef RLK_TEST_DIAG_TEST_UTIL_H
#define RLK_TEST_DIAG_TEST_UTIL_H

#include <stdio.h>
#include <stdlib.h>

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "hdlc.h"

namespace diag_test {

using bytes = std::vector<uint8_t>;

inline bytes frame(const bytes &payload)
{
    bytes f;
    hdlc_encode(payload.data(), payload.size(), &f);
    return f;
}

inline std::string hex_of(const bytes &b)
{
    static const char d[] = "0123456789abcdef";
    std::string s;
    for (uint8_t v : b) {
        s += d[v >> 4];
        s += d[v & 15];
    }
    return s;
}

/* What the console got since testing::internal::CaptureStdout(). */
inline std::string captured()
{
    fflush(stdout);
    return testing::internal::GetCapturedStdout();
}

inline bool has(const std::string &out, const std::string &text) { return out.find(text) != std::string::npos; }

/* Fails the test once for each of `texts` that `out` lacks. */
inline void expect_all(const std::string &out, const std::vector<std::string> &texts)
{
    for (const std::string &t : texts) EXPECT_TRUE(has(out, t)) << "missing: " << t << "\nin:\n" << out;
}

/* The calls a callback saw, in order, with the thread that made each. */
struct call_box {
    struct call {
        bytes data;
        void *ctx;
        std::thread::id thread;
    };
    std::mutex mu;
    std::condition_variable cv;
    std::vector<call> calls;

    void add(const unsigned char *p, int len, void *ctx)
    {
        std::lock_guard<std::mutex> lk(mu);
        calls.push_back({bytes(p, p + len), ctx, std::this_thread::get_id()});
        cv.notify_all();
    }
    /* The calls once there are `n` of them or `ms` passed. */
    std::vector<call> wait(size_t n, int ms = 3000)
    {
        std::unique_lock<std::mutex> lk(mu);
        cv.wait_for(lk, std::chrono::milliseconds(ms), [&] { return calls.size() >= n; });
        return calls;
    }
    /* The data of the calls once there are `n` or `ms` passed; forgets them. */
    std::vector<bytes> take(size_t n, int ms)
    {
        std::vector<bytes> out;
        for (const call &c : wait(n, ms)) out.push_back(c.data);
        std::lock_guard<std::mutex> lk(mu);
        calls.clear();
        return out;
    }
};

/* Sets an environment variable until the end of the scope. */
struct scoped_env {
    const char *name;
    bool had;
    std::string old;
    scoped_env(const char *n, const char *value) : name(n), had(getenv(n) != nullptr), old(had ? getenv(n) : "")
    {
        setenv(name, value, 1);
    }
    ~scoped_env()
    {
        if (had) {
            setenv(name, old.c_str(), 1);
        } else {
            unsetenv(name);
        }
    }
};

}  // namespace diag_test

#endif
