#include "data_file.h"

#include <algorithm>
#include <iomanip>

#include <gtest/gtest.h>

static const char k_blanks[] = " \t\r";

std::vector<std::string> data_lines(const char *source, const std::string &name)
{
    std::istringstream in(read_golden(source, name));
    std::vector<std::string> lines;
    for (std::string line; std::getline(in, line);) {
        size_t first = line.find_first_not_of(k_blanks);
        if (first != std::string::npos && line[first] != '#') lines.push_back(line);
    }
    if (lines.empty()) ADD_FAILURE() << name << " has no cases";
    return lines;
}

std::vector<words> data_rows(const char *source, const std::string &name, char sep)
{
    std::vector<words> rows;
    for (const std::string &line : data_lines(source, name)) rows.push_back(sep ? fields(line, sep) : words_of(line));
    return rows;
}

words words_of(const std::string &text)
{
    std::istringstream in(text);
    words w;
    for (std::string x; in >> std::quoted(x);) w.push_back(x);
    return w;
}

words fields(const std::string &text, char sep)
{
    words out;
    std::istringstream in(text + sep);
    for (std::string f; std::getline(in, f, sep);) {
        size_t first = f.find_first_not_of(k_blanks);
        out.push_back(first == std::string::npos ? "" : f.substr(first, f.find_last_not_of(k_blanks) - first + 1));
    }
    return out;
}

std::string joined(const words &w, size_t from)
{
    std::string s;
    for (size_t i = from; i < w.size(); i++) s += (i > from ? " " : "") + w[i];
    return s;
}

void expect_cases(const char *source, const std::string &name, const std::function<std::string(const words &)> &run)
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

std::vector<uint8_t> unhex(std::string text)
{
    text.erase(std::remove(text.begin(), text.end(), ' '), text.end());
    std::vector<uint8_t> b;
    for (size_t i = 0; i + 1 < text.size(); i += 2) b.push_back(uint8_t(std::stoul(text.substr(i, 2), nullptr, 16)));
    return b;
}

std::string hex(const uint8_t *bytes, size_t len)
{
    static const char d[] = "0123456789abcdef";
    std::string s;
    for (size_t i = 0; i < len; i++) s += {d[bytes[i] >> 4], d[bytes[i] & 15]};
    return s;
}

std::string hex(const std::vector<uint8_t> &bytes)
{
    return hex(bytes.data(), bytes.size());
}

std::string escaped(const std::string &s)
{
    std::string out;
    for (char c : s) out += c == '\r' ? "\\r" : c == '\n' ? "\\n" : std::string(1, c);
    return out;
}

std::string without_line_numbers(std::string text)
{
    for (size_t p = text.find(':'); p != std::string::npos; p = text.find(':', p + 1)) {
        size_t end = text.find_first_not_of("0123456789", p + 1);
        if (end != std::string::npos && end > p + 1 && text[end] == ']') text.replace(p + 1, end - p - 1, "N");
    }
    return text;
}
