#include "golden.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <fstream>
#include <sstream>

std::string golden_path(const char *source, const std::string &name)
{
    std::string dir = source;
    /* A relative __FILE__ (a compiler cache rewrites the paths) names the
     * file from the source tree's "tests/" on. */
    size_t tests = dir.find("tests/");
    if (dir[0] != '/' && tests != std::string::npos) dir = RLK_SOURCE_DIR "/" + dir.substr(tests);
    return dir.substr(0, dir.rfind('/') + 1) + name;
}

/* The content of `path` into `text`; false when it cannot be read. */
static bool file_text(const std::string &path, std::string *text)
{
    std::ifstream in(path, std::ios::binary);
    std::ostringstream s;
    if (in) s << in.rdbuf();
    *text = s.str();
    return bool(in);
}

std::string read_golden(const char *source, const std::string &name)
{
    std::string text;
    if (!file_text(golden_path(source, name), &text)) ADD_FAILURE() << "cannot read " << golden_path(source, name);
    return text;
}

/* The first line where two texts differ, numbered from 1. */
static size_t first_difference(const std::string &a, const std::string &b, std::string *la, std::string *lb)
{
    std::istringstream sa(a), sb(b);
    for (size_t n = 1;; n++) {
        bool ea = !std::getline(sa, *la), eb = !std::getline(sb, *lb);
        if (ea) *la = "<end>";
        if (eb) *lb = "<end>";
        if (*la != *lb || (ea && eb)) return n;
    }
}

void expect_golden(const std::string &actual, const char *source, const std::string &name)
{
    const char *update = getenv("RLK_GOLDEN_UPDATE");
    std::string path = golden_path(source, name);
    std::string expected;
    file_text(path, &expected);
    if (actual == expected) return;
    if (update && *update == '1') {
        std::ofstream(path, std::ios::binary | std::ios::trunc) << actual;
        return;
    }
    std::string want, got;
    size_t line = first_difference(expected, actual, &want, &got);
    ADD_FAILURE() << path << ":" << line << ": differs\n  expected: " << want << "\n  actual:   " << got;
}
