/* Tables of cases kept as text next to the tests that run them: one case a
 * line, "<input words> => <expected output>"; lines starting with '#' (or
 * without "=>") are comments.  The file rebuilt from the actual outputs must
 * equal the file, so RLK_GOLDEN_UPDATE=1 rewrites the expected outputs like
 * a golden file. */
#ifndef RLK_TEST_CASE_FILE_H
#define RLK_TEST_CASE_FILE_H

#include <stdint.h>

#include <algorithm>
#include <functional>
#include <sstream>
#include <string>
#include <vector>

#include "golden.h"

using words = std::vector<std::string>;

inline words words_of(const std::string &s)
{
    std::istringstream in(s);
    words w;
    for (std::string x; in >> x;) w.push_back(x);
    return w;
}

/* The words from `from` on, joined by single spaces. */
inline std::string joined(const words &w, size_t from = 0)
{
    std::string s;
    for (size_t i = from; i < w.size(); i++) s += (i > from ? " " : "") + w[i];
    return s;
}

/* Runs every case of the file `name` next to `source` (pass __FILE__)
 * through `run`, input words in, actual output out. */
inline void expect_cases(const char *source, const std::string &name,
                         const std::function<std::string(const words &)> &run)
{
    std::istringstream in(read_golden(source, name));
    std::string rebuilt;
    for (std::string line; std::getline(in, line); rebuilt += line + "\n") {
        size_t arrow = line.find("=>");
        if (arrow == std::string::npos || line[0] == '#') continue;
        std::string out = run(words_of(line.substr(0, arrow)));
        line = line.substr(0, arrow + 2) + (out.empty() ? "" : " " + out);
    }
    expect_golden(rebuilt, source, name);
}

/* The bytes of hex text, blanks between them skipped. */
inline std::vector<uint8_t> unhex(std::string h)
{
    h.erase(std::remove(h.begin(), h.end(), ' '), h.end());
    std::vector<uint8_t> b;
    for (size_t i = 0; i + 1 < h.size(); i += 2) b.push_back(uint8_t(std::stoul(h.substr(i, 2), nullptr, 16)));
    return b;
}

inline std::string hex(const uint8_t *b, size_t n)
{
    static const char d[] = "0123456789abcdef";
    std::string s;
    for (size_t i = 0; i < n; i++) s += {d[b[i] >> 4], d[b[i] & 15]};
    return s;
}

inline std::string hex(const std::vector<uint8_t> &b)
{
    return hex(b.data(), b.size());
}

/* `s` with its line ends written as \r and \n. */
inline std::string escaped(const std::string &s)
{
    std::string out;
    for (char c : s) out += c == '\r' ? "\\r" : c == '\n' ? "\\n" : std::string(1, c);
    return out;
}

#endif
