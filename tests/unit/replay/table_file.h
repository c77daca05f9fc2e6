/* Packet bytes written as words of a data file (see data_file.h). */
#ifndef RLK_TABLE_FILE_H
#define RLK_TABLE_FILE_H

#include <stdint.h>

#include <string>
#include <vector>

#include "data_file.h"

/* The bytes the words of `row` from `from` on give: "value:n" is the value
 * in n little-endian bytes, any other word hex bytes ("0a7e"). */
inline std::vector<uint8_t> row_bytes(const words &row, size_t from)
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
