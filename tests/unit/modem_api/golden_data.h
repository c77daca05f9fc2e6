/* Data and transcripts next to the tests of the modem API, PDC, UIM and
 * neighbouring families. */
#ifndef RLK_TEST_GOLDEN_DATA_H
#define RLK_TEST_GOLDEN_DATA_H

#include <stdint.h>
#include <stdio.h>

#include <sstream>
#include <string>
#include <vector>

#include "golden.h"

/* Cases kept as data: one case a line, columns separated by tabs, blank
 * lines and lines starting with '#' skipped. */
inline std::vector<std::vector<std::string>> data_rows(const char *source, const std::string &name)
{
    std::vector<std::vector<std::string>> rows;
    std::istringstream in(read_golden(source, name));
    for (std::string line; std::getline(in, line);) {
        if (line.empty() || line[0] == '#') continue;
        std::vector<std::string> cols;
        std::istringstream cells(line);
        for (std::string cell; std::getline(cells, cell, '\t');) cols.push_back(cell);
        rows.push_back(cols);
    }
    return rows;
}

/* `len` bytes as hexadecimal digits. */
inline std::string hex(const uint8_t *bytes, size_t len)
{
    std::string out;
    char two[3];
    for (size_t i = 0; i < len; i++) {
        snprintf(two, sizeof(two), "%02x", bytes[i]);
        out += two;
    }
    return out;
}

/* `text` with ":123]" as ":N]", so that it does not depend on source line
 * numbers. */
inline std::string without_line_numbers(std::string text)
{
    for (size_t p = text.find(':'); p != std::string::npos; p = text.find(':', p + 1)) {
        size_t end = text.find_first_not_of("0123456789", p + 1);
        if (end != std::string::npos && end > p + 1 && text[end] == ']') text.replace(p + 1, end - p - 1, "N");
    }
    return text;
}

/* The values as one line of a transcript, separated by spaces. */
template <typename... Args>
std::string facts(const Args &...values)
{
    std::ostringstream line;
    ((line << values << ' '), ...);
    std::string text = line.str();
    text.back() = '\n';
    return text;
}

#endif
