#include "tolvek_convert.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "frontend_test_util.h"
#include "process_runner.h"
#include "tolvek_log.h"

namespace {

struct conversion_case {
    const char *text;
    int expected;
};

/* The functions take writable text, as command-line words are. */
int string_to_int(const char *text)
{
    std::string copy = text;
    return tolvek_string_to_int(&copy[0]);
}

int hex_string_to_int(const std::string &text)
{
    std::string copy = text;
    return tolvek_hex_string_to_int(&copy[0]);
}

TEST(TolvekStringToInt, ChoosesBaseByPrefix)
{
    const conversion_case cases[] = {
        {"0x1A", 26},  {"0X1a", 26},        {"1A", 1},   {"0x", 0},         {"26", 26},
        {"-5", -5},    {"  42", 42},        {"3abc", 3}, {"x1A", 0},        {"00x1A", 0},
        {"0x-1", 1},   {"0x7FFFFFFF", 2147483647},       {"", 0},
    };
    for (const conversion_case &c : cases) {
        EXPECT_EQ(string_to_int(c.text), c.expected) << "text: \"" << c.text << "\"";
    }
}

TEST(TolvekHexStringToInt, ReadsEveryCharacterAsADigit)
{
    const conversion_case cases[] = {
        {"", 0},
        {"0", 0},
        {"1a", 26},
        {"Ff", 255},
        {"1g", 16},       /* g is a zero digit */
        {"x1", 1},        /* so is x */
        {"-1", 1},        /* and a minus sign */
        {"1 1", 257},     /* and a blank */
        {"7FFFFFFF", 2147483647},
        {"80000000", 2147483647},  /* the term 8 * 16^7 saturates */
        {"100000000", 2147483647}, /* so does 16^8, and nothing is added */
    };
    for (const conversion_case &c : cases) {
        EXPECT_EQ(hex_string_to_int(c.text), c.expected) << "text: \"" << c.text << "\"";
    }
}

TEST(TolvekHexStringToInt, FiftyCharactersAreTheLimit)
{
    EXPECT_EQ(hex_string_to_int(std::string(TOLVEK_HEX_MAX_DIGITS - 2, '0') + "1a"), 26);
    EXPECT_EXIT(hex_string_to_int(std::string(TOLVEK_HEX_MAX_DIGITS, '0') + "f"), ended_abnormally, "");
    EXPECT_EXIT(string_to_int(("0x" + std::string(TOLVEK_HEX_MAX_DIGITS + 1, '0')).c_str()),
                ended_abnormally, "");
}

TEST(TolvekHexStringToInt, ValuesBeyondInt32Abort)
{
    for (const char *text : {"80000001", "FFFFFFFF", "0FFFFFFFF", "11000000000"}) {
        EXPECT_EXIT(hex_string_to_int(text), ended_abnormally, "") << "text: " << text;
    }
}

TEST(TolvekConvert, NullInputNotesUnlessQuiet)
{
    const std::string note = "\ninput is null\n";
    int result = -1;
    EXPECT_EQ(capture_stdout([&] { result = tolvek_string_to_int(nullptr); }), note);
    EXPECT_EQ(result, 0);
    EXPECT_EQ(capture_stdout([&] { result = tolvek_hex_string_to_int(nullptr); }), note);
    EXPECT_EQ(result, 0);

    console_quiet_scope quiet(true);
    EXPECT_EQ(capture_stdout([&] { result = tolvek_string_to_int(nullptr); }), "");
    EXPECT_EQ(capture_stdout([&] { result = tolvek_hex_string_to_int(nullptr); }), "");
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

/* Checks one paired line of tolvek_print_data_with_hex: the console line
 * and the debug system-log line carry the same line number. */
void expect_dump_line(const std::string &console, const std::vector<std::string> &syslog,
                      const std::string &message)
{
    const std::string console_head = "RIL[tolvek_print_data_with_hex:";
    ASSERT_EQ(console.compare(0, console_head.size(), console_head), 0) << console;
    size_t close = console.find("]: ");
    ASSERT_NE(close, std::string::npos) << console;
    std::string line = console.substr(console_head.size(), close - console_head.size());
    EXPECT_EQ(console.substr(close), "]: " + message + "\n");

    ASSERT_EQ(syslog.size(), 1u);
    EXPECT_EQ(syslog[0], "7\tSUB[shell][tolvek_convert.cpp:" + line +
                             "] tolvek_print_data_with_hex: " + message);
}

std::string upper_hex_dump(const std::vector<unsigned char> &data)
{
    static const char digits[] = "0123456789ABCDEF";
    std::string out;
    for (unsigned char b : data) {
        if (!out.empty()) out += ' ';
        out += digits[b >> 4];
        out += digits[b & 0xF];
    }
    return out;
}

TEST(TolvekPrintDataWithHex, DumpsUpToTheLimit)
{
    for (size_t len : {size_t{1}, size_t{TOLVEK_HEX_DUMP_MAX_LEN}}) {
        std::vector<unsigned char> data(len);
        for (size_t i = 0; i < len; ++i) data[i] = static_cast<unsigned char>(0xAB + i);
        syslog_capture log;
        std::string console = capture_stdout(
            [&] { tolvek_print_data_with_hex(data.data(), static_cast<unsigned int>(len)); });
        std::string text = upper_hex_dump(data);
        ASSERT_EQ(text.size(), 3 * len - 1);
        expect_dump_line(console, log.lines(),
                         "data hex show, len(" + std::to_string(len) + "), data: " + text);
    }
}

TEST(TolvekPrintDataWithHex, RefusesBadInput)
{
    std::vector<unsigned char> data(TOLVEK_HEX_DUMP_MAX_LEN + 1);
    const struct {
        unsigned char *data;
        unsigned int len;
        const char *message;
    } cases[] = {
        {data.data(), 0, "print_data_with_hex, invalid data len(0)"},
        {data.data(), TOLVEK_HEX_DUMP_MAX_LEN + 1, "print_data_with_hex, invalid data len(4097)"},
        {nullptr, 4, "print_data_with_hex, data is null"},
    };
    for (const auto &c : cases) {
        syslog_capture log;
        std::string console = capture_stdout([&] { tolvek_print_data_with_hex(c.data, c.len); });
        expect_dump_line(console, log.lines(), c.message);
    }
}

TEST(TolvekPrintDataWithHex, QuietConsoleStillLogs)
{
    unsigned char byte = 0x5A;
    console_quiet_scope quiet(true);
    syslog_capture log;
    EXPECT_EQ(capture_stdout([&] { tolvek_print_data_with_hex(&byte, 1); }), "");
    std::vector<std::string> lines = log.lines();
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_NE(lines[0].find("data hex show, len(1), data: 5A"), std::string::npos) << lines[0];
}

}  // namespace
