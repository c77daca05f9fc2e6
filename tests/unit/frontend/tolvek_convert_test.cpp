#include "tolvek_convert.h"

#include <gtest/gtest.h>

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
    for (table_row c : read_table(__FILE__, "conversions.txt")) {
        auto convert = c[0] == "hex" ? tolvek_hex_string_to_int : tolvek_string_to_int;
        if (c[2] == "abort") {
            EXPECT_EXIT(convert(&c[1][0]), ended_abnormally, "") << c[1];
        } else {
            EXPECT_EQ(convert(&c[1][0]), stoi(c[2])) << c[0] << " \"" << c[1] << '"';
        }
    }
}

TEST(TolvekConvert, NullInputNotesUnlessQuiet)
{
    for (bool quiet : {false, true}) {
        console_quiet_scope scope(quiet);
        int result = -1;
        EXPECT_EQ(capture_stdout([&] { result = tolvek_string_to_int(nullptr); }), quiet ? "" : "\ninput is null\n");
        EXPECT_EQ(result, 0);
        result = -1;
        EXPECT_EQ(capture_stdout([&] { result = tolvek_hex_string_to_int(nullptr); }),
                  quiet ? "" : "\ninput is null\n");
        EXPECT_EQ(result, 0);
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

/* tolvek_print_data_with_hex writes `message` once to the debug system log
 * and, unless the console is quiet, to the console, both with the same
 * source line. */
void expect_dump(unsigned char *data, unsigned len, const std::string &message, bool quiet = false)
{
    console_quiet_scope scope(quiet);
    syslog_capture log;
    std::string console = capture_stdout([&] { tolvek_print_data_with_hex(data, len); });
    std::vector<std::string> lines = log.lines();
    ASSERT_EQ(lines.size(), 1u) << message;
    const std::string head = "7\tSUB[shell][tolvek_convert.cpp:";
    std::string line = lines[0].substr(head.size(), lines[0].find(']', head.size()) - head.size());
    EXPECT_EQ(lines[0], head + line + "] tolvek_print_data_with_hex: " + message);
    EXPECT_EQ(console, quiet ? "" : "RIL[tolvek_print_data_with_hex:" + line + "]: " + message + "\n");
}

TEST(TolvekPrintDataWithHex, DumpsUpToTheLimitAndRefusesBadInput)
{
    std::vector<unsigned char> data(TOLVEK_HEX_DUMP_MAX_LEN + 1);
    static const char digits[] = "0123456789ABCDEF";
    std::string text;
    for (size_t i = 0; i < data.size(); ++i) {
        data[i] = static_cast<unsigned char>(0xAB + i);
        text += i ? " " : "";
        text += digits[data[i] >> 4];
        text += digits[data[i] & 15];
    }
    expect_dump(data.data(), 1, "data hex show, len(1), data: AB");
    expect_dump(data.data(), 1, "data hex show, len(1), data: AB", true);
    expect_dump(data.data(), TOLVEK_HEX_DUMP_MAX_LEN,
                "data hex show, len(4096), data: " + text.substr(0, 3 * TOLVEK_HEX_DUMP_MAX_LEN - 1));
    expect_dump(data.data(), 0, "print_data_with_hex, invalid data len(0)");
    expect_dump(data.data(), TOLVEK_HEX_DUMP_MAX_LEN + 1, "print_data_with_hex, invalid data len(4097)");
    expect_dump(nullptr, 4, "print_data_with_hex, data is null");
}

}  // namespace
