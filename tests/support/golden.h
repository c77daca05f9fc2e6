/* Expected texts kept as files next to the tests that compare with them.
 *
 * A golden file holds one test's whole expected output, byte for byte, so
 * that the test reads as "this run prints that file" and a change of output
 * shows as a diff of the file.  RLK_GOLDEN_UPDATE=1 in the environment makes
 * a mismatching comparison rewrite the file with what the run printed
 * (review the diff before committing it). */
#ifndef RLK_TEST_GOLDEN_H
#define RLK_TEST_GOLDEN_H

#include <string>

/* The path of `name` in the folder of the source file `source` (pass
 * __FILE__). */
std::string golden_path(const char *source, const std::string &name);

/* The content of the golden file `name` next to `source`; fails the test
 * (and returns "") when it cannot be read. */
std::string read_golden(const char *source, const std::string &name);

/* Checks that `actual` equals the golden file `name` next to `source`,
 * naming the first differing line on a mismatch. */
void expect_golden(const std::string &actual, const char *source, const std::string &name);

#endif
