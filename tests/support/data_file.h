/* Test cases kept as text files next to the tests that run them (found like
 * golden files, see golden.h): one case a line; blank lines and lines that
 * start with '#' are left out.
 *
 * Rows of words: data_rows() splits a line at blanks (a word in double
 * quotes may hold blanks or be empty) or at a separator character.
 *
 * Input and expected output: expect_cases() runs the lines
 * "<input words> => <expected output>" (lines without "=>" are comments)
 * and compares the file rebuilt from the actual outputs with the file, so
 * RLK_GOLDEN_UPDATE=1 rewrites the expected outputs like a golden file. */
#ifndef RLK_TEST_DATA_FILE_H
#define RLK_TEST_DATA_FILE_H

#include <stdint.h>

#include <functional>
#include <sstream>
#include <string>
#include <vector>

#include "golden.h"

using words = std::vector<std::string>;

/* The case lines of the file `name` next to `source` (pass __FILE__). */
std::vector<std::string> data_lines(const char *source, const std::string &name);

/* The case lines split into words (sep 0: at blanks, quotes kept together)
 * or into the fields between `sep` characters, without surrounding blanks. */
std::vector<words> data_rows(const char *source, const std::string &name, char sep = 0);

/* `text` split at blanks, a word in double quotes taken whole. */
words words_of(const std::string &text);

/* `text` split at `sep`, each field without its surrounding blanks. */
words fields(const std::string &text, char sep);

/* The words from `from` on, joined by single spaces. */
std::string joined(const words &w, size_t from = 0);

/* Runs every case of the file `name` next to `source` through `run`, input
 * words in, actual output out, and compares the results with the file. */
void expect_cases(const char *source, const std::string &name, const std::function<std::string(const words &)> &run);

/* The bytes of hex text, blanks between them skipped. */
std::vector<uint8_t> unhex(std::string text);

/* `len` bytes as lower-case hexadecimal digits. */
std::string hex(const uint8_t *bytes, size_t len);
std::string hex(const std::vector<uint8_t> &bytes);

/* `s` with its line ends written as \r and \n. */
std::string escaped(const std::string &s);

/* `text` with ":123]" as ":N]", so that it does not depend on source line
 * numbers. */
std::string without_line_numbers(std::string text);

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
