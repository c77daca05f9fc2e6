/* Cases kept as data next to a test: one case a line, columns separated by
 * tabs, blank lines and lines starting with '#' skipped. */
#ifndef RLK_TEST_DATA_ROWS_H
#define RLK_TEST_DATA_ROWS_H

#include <sstream>
#include <string>
#include <vector>

#include "golden.h"

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

#endif
