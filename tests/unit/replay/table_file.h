/* Test cases kept as data next to a test: one case a line, words separated
 * by blanks (a word in double quotes may hold blanks or be empty), lines
 * that start with '#' and blank lines skipped. */
#ifndef RLK_TABLE_FILE_H
#define RLK_TABLE_FILE_H

#include <gtest/gtest.h>
#include <stdint.h>

#include <iomanip>
#include <sstream>
#include <string>
#include <vector>

#include "golden.h"

using table_row = std::vector<std::string>;

/* The rows of the file `name` next to the source file `source`. */
inline std::vector<table_row> read_table(const char *source, const std::string &name)
{
    std::istringstream in(read_golden(source, name));
    std::vector<table_row> rows;
    for (std::string line; std::getline(in, line);) {
        std::istringstream words(line);
        table_row row;
        for (std::string w; words >> std::quoted(w);) row.push_back(w);
        if (!row.empty() && line[0] != '#') rows.push_back(row);
    }
    EXPECT_FALSE(rows.empty()) << name;
    return rows;
}

/* The bytes the words of `row` from `from` on give: "value:n" is the value
 * in n little-endian bytes, any other word hex bytes ("0a7e"). */
inline std::vector<uint8_t> row_bytes(const table_row &row, size_t from)
{
    std::vector<uint8_t> out;
    for (size_t i = from; i < row.size(); i++) {
        size_t colon = row[i].find(':');
        if (colon == std::string::npos) {
            for (size_t at = 0; at + 1 < row[i].size(); at += 2)
                out.push_back(uint8_t(stoul(row[i].substr(at, 2), nullptr, 16)));
            continue;
        }
        uint64_t value = stoull(row[i].substr(0, colon), nullptr, 0);
        for (int k = 0; k < stoi(row[i].substr(colon + 1)); k++) out.push_back(uint8_t(value >> (8 * k)));
    }
    return out;
}

#endif
