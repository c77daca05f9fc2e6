/* Helpers of the diag tests: byte strings and HDLC frames, transcript files
 * of requests and answers, console output captured from the tool's code,
 * and callbacks collected from library threads. */
#ifndef RLK_TEST_DIAG_TEST_UTIL_H
#define RLK_TEST_DIAG_TEST_UTIL_H

#include <stdio.h>

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "data_file.h"
#include "hdlc.h"

namespace diag_test {

using bytes = std::vector<uint8_t>;

inline bytes frame(const bytes &payload)
{
    bytes f;
    hdlc_encode(payload.data(), payload.size(), &f);
    return f;
}

/* Bytes written as text: "4b 13" byte by byte, "00*130" for 130 zero
 * bytes, "00..ff" for the values from 00 to ff, 'text' for the characters
 * of a word, "-" for nothing. */
inline bytes parse_bytes(const std::string &text)
{
    bytes out;
    std::istringstream words(text);
    for (std::string w; words >> w;) {
        if (w[0] == '\'') {
            out.insert(out.end(), w.begin() + 1, w.end() - 1);
        } else if (w.size() == 6 && w.compare(2, 2, "..") == 0) {
            unsigned first = unsigned(std::stoul(w.substr(0, 2), nullptr, 16));
            unsigned last = unsigned(std::stoul(w.substr(4), nullptr, 16));
            for (unsigned v = first; v <= last; v++) out.push_back(uint8_t(v));
        } else if (w != "-") {
            size_t count = w.size() > 3 ? std::stoul(w.substr(3)) : 1;
            out.insert(out.end(), count, uint8_t(std::stoul(w.substr(0, 2), nullptr, 16)));
        }
    }
    return out;
}

/* The text form of parse_bytes: runs of four or more alike bytes as "xx*n". */
inline std::string bytes_text(const bytes &b)
{
    std::string s = b.empty() ? "-" : "";
    for (size_t i = 0, n = 0; i < b.size(); i += n) {
        for (n = 1; i + n < b.size() && b[i + n] == b[i];) n++;
        if (n < 4) n = 1;
        s += (i ? " " : "") + hex(&b[i], 1) + (n > 1 ? "*" + std::to_string(n) : "");
    }
    return s;
}

/* Compares the transcript file `name` next to `source`, lines "request =>
 * answer", with the answers `answer` gives to its requests in order. */
inline void expect_transcript(const char *source, const std::string &name,
                              const std::function<std::string(const bytes &)> &answer)
{
    expect_cases(source, name, [&](const words &request) { return answer(parse_bytes(joined(request))); });
}

inline bool has(const std::string &out, const std::string &text) { return out.find(text) != std::string::npos; }

/* Fails the test once for each of `texts` that `out` lacks. */
inline void expect_all(const std::string &out, const std::vector<std::string> &texts)
{
    for (const std::string &t : texts) EXPECT_TRUE(has(out, t)) << "missing: " << t << "\nin:\n" << out;
}

/* What the console got since testing::internal::CaptureStdout(), each
 * "RIL[function:line]" without its source line number. */
inline std::string captured()
{
    fflush(stdout);
    std::string out = testing::internal::GetCapturedStdout();
    for (size_t at = 0; (at = out.find("RIL[", at)) != std::string::npos;) {
        size_t colon = out.find(':', at), close = out.find(']', at);
        if (colon < close) out.erase(colon, close - colon);
        at += 4;
    }
    return out;
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

/* The answers the library's response callbacks got, with their context. */
inline call_box g_answers;
inline int on_answer(unsigned char *p, int len, void *ctx) { return g_answers.add(p, len, ctx), 0; }
inline void on_dci_answer(unsigned char *p, int len, void *ctx) { g_answers.add(p, len, ctx); }

}  // namespace diag_test

#endif
