/* Output of rlk-mbn: lines for people, or one JSON object for scripts. */
#ifndef RLK_MBN_PRINT_H
#define RLK_MBN_PRINT_H

#include <string>

#include "mbn_ops.h"

/* The report of a successful operation. */
std::string mbn_format_report(const mbn_options &o, const mbn_report &r);
/* What a failure prints on standard output: with --json one object with
 * the error and the exit status; a list whose selection query failed
 * still prints its ids (unmarked), in its object with --json. */
std::string mbn_format_failure(const mbn_options &o, const mbn_report &r, const mbn_result &res);
/* A string as a JSON string literal. */
std::string mbn_json_string(const std::string &s);

#endif
