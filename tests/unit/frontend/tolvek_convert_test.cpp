#include "tolvek_convert.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "frontend_test_util.h"
#include "process_runner.h"

namespace {

/* The functions take writable text, as command-line words are. */
int string_to_int(std::string text)
{
    return tolvek_string_to_int(&text[0]);
}

int hex_string_to_int(std::string text)
{
    return tolvek_hex_string_to_int(&text[0]);
}

struct conversion_case {
    std::string text;
    int expected;
};

TEST(TolvekStringToInt, ChoosesBaseByPrefix)
{
    const conversion_case cases[] = {
        {"0x1A", 26}, {"0X1a", 26}, {"1A", 1},      {"0x", 0},   {"26", 26}, {"-5", -5}, {"  42", 42},
        {"3abc", 3},  {"x1A", 0},   {"00x1A", 0},   {"0x-1", 1}, {"", 0},    {"0x7FFFFFFF", 2147483647},
    };
    for (const conversion_case &c : cases) EXPECT_EQ(string_to_int(c.text), c.expected) << '"' << c.text << '"';
}

TEST(TolvekHexStringToInt, ReadsEveryCharacterAsADigitUpToFiftyOfThem)
{
    const conversion_case cases[] = {
        {"", 0},
        {"0", 0},
        {"1a", 26},
        {"Ff", 255},
        {"1g", 16},   /* g is a zero digit */
        {"x1", 1},    /* so is x */
        {"-1", 1},    /* and a minus sign */
        {"1 1", 257}, /* and a blank */
        {"7FFFFFFF", 2147483647},
        {"80000000", 2147483647},  /* the term 8 * 16^7 saturates */
        {"100000000", 2147483647}, /* so does 16^8, and nothing is added */
        {std::string(TOLVEK_HEX_MAX_DIGITS - 2, '0') + "1a", 26},
    };
    for (const conversion_case &c : cases) EXPECT_EQ(hex_string_to_int(c.text), c.expected) << '"' << c.text << '"';
}

TEST(TolvekHexStringToInt, LongTextAndValuesBeyondInt32Abort)
{
    for (std::string text : {std::string(TOLVEK_HEX_MAX_DIGITS, '0') + "f", std::string("80000001"),
                             std::string("FFFFFFFF"), std::string("0FFFFFFFF"), std::string("11000000000")}) {
        EXPECT_EXIT(hex_string_to_int(text), ended_abnormally, "") << text;
    }
    EXPECT_EXIT(string_to_int("0x" + std::string(TOLVEK_HEX_MAX_DIGITS + 1, '0')), ended_abnormally, "");
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
