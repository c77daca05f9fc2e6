#include "tolvek_convert.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "../replay/table_file.h"
#include "frontend_test_util.h"
#include "process_runner.h"

namespace {

/* The cases of conversions.txt; the functions take writable text, as
 * command-line words are. */
TEST(TolvekStringToInt, ChoosesBaseByPrefixOrReadsUpToFiftyHexDigits)
{
    for (words c : data_rows(__FILE__, "conversions.txt")) {
        auto convert = c[0] == "hex" ? tolvek_hex_string_to_int : tolvek_string_to_int;
        if (c[2] == "abort") {
            EXPECT_EXIT(convert(&c[1][0]), ended_abnormally, "") << c[1];
        } else {
            EXPECT_EQ(convert(&c[1][0]), stoi(c[2])) << c[0] << " \"" << c[1] << '"';
        }
    }
}

TEST(TolvekByteToHex, WritesLowerCaseWithoutTerminator)
{
    unsigned char bytes[] = {0x00, 0x0f, 0xa5, 0xff};
    char dst[] = "################";
    tolvek_byte_to_hex(bytes, 4, dst);
    EXPECT_STREQ(dst, "000fa5ff########");
    char untouched[] = "####";
    tolvek_byte_to_hex(bytes, 0, untouched);
    tolvek_byte_to_hex(bytes, -1, untouched);
    tolvek_byte_to_hex(nullptr, 2, untouched);
    EXPECT_STREQ(untouched, "####");
}

/* What `fn` writes to the console (quiet or not) and the debug system
 * log, the line number of the log statement written as @LINE: console and
 * system log must name the same line. */
std::string logged(bool quiet, const std::function<void()> &fn)
{
    console_quiet_scope scope(quiet);
    syslog_capture log;
    std::string text = std::string(quiet ? "quiet: " : "console: ") + capture_stdout(fn);
    for (const std::string &l : log.lines()) text += "syslog: " + l + "\n";
    size_t at = text.find("tolvek_convert.cpp:");
    if (at == std::string::npos) return text;
    const std::string number = text.substr(at + 18, text.find(']', at) - at - 17);
    while ((at = text.find(number)) != std::string::npos) text.replace(at, number.size(), ":@LINE]");
    return text;
}

/* A null input notes it unless the console is quiet; hex dumps go to the
 * console and the system log up to their limit and refuse bad input. */
TEST(TolvekConvert, NullInputAndHexDumpsOnConsoleAndSystemLog)
{
    std::vector<unsigned char> data(TOLVEK_HEX_DUMP_MAX_LEN + 1);
    for (size_t i = 0; i < data.size(); ++i) data[i] = static_cast<unsigned char>(0xAB + i);
    std::string out;
    for (bool quiet : {false, true}) {
        int results[2] = {-1, -1};
        out += logged(quiet, [&] { results[0] = tolvek_string_to_int(nullptr); });
        out += logged(quiet, [&] { results[1] = tolvek_hex_string_to_int(nullptr); });
        EXPECT_EQ(results[0] + results[1], 0);
        out += logged(quiet, [&] { tolvek_print_data_with_hex(data.data(), 1); });
    }
    for (unsigned len : {0u, unsigned(TOLVEK_HEX_DUMP_MAX_LEN), unsigned(TOLVEK_HEX_DUMP_MAX_LEN + 1)}) {
        out += logged(false, [&] { tolvek_print_data_with_hex(data.data(), len); });
    }
    out += logged(false, [&] { tolvek_print_data_with_hex(nullptr, 4); });
    expect_golden(out, __FILE__, "convert_logs.golden");
}

}  // namespace
