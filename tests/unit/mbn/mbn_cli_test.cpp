/* rlk-mbn's command line, ids as users write them, JSON output of texts
 * the modem chose (descriptions), and the texts of failures. */
#include <gtest/gtest.h>

#include <algorithm>

#include "../frontend/frontend_test_util.h"
#include "data_file.h"
#include "mbn_options.h"
#include "mbn_print.h"

namespace {

bool parse(std::vector<std::string> words, mbn_options *o, std::string *error)
{
    words.insert(words.begin(), "rlk-mbn");
    arg_vector args(words);
    return mbn_parse_options(args.argc(), args.argv(), o, error);
}

std::string text_of(const uint8_t *bytes, uint32_t len)
{
    return std::string(reinterpret_cast<const char *>(bytes), len);
}

/* Options may come anywhere; wrong words are refused with a reason. */
TEST(MbnOptions, OptionsAnywhereAndWrongWordsRefused)
{
    mbn_options o;
    std::string error;
    ASSERT_TRUE(parse({"--sub=1", "select", "abc", "--type", "hw", "--timeout=5", "--json"}, &o, &error));
    EXPECT_EQ(facts(o.command, o.sub, o.config_type, o.timeout_s, o.json, text_of(o.id.bytes, o.id.len)),
              facts(MBN_CMD_SELECT, 1, PDC_CONFIG_TYPE_MODEM_PLATFORM_V01, 5, true, "abc"));

    for (const auto &c : data_rows(__FILE__, "mbn_refused.data", '\t')) {
        words args = words_of(c[0]);
        std::replace(args.begin(), args.end(), std::string("<empty>"), std::string());
        mbn_options bad;
        EXPECT_FALSE(parse(args, &bad, &error)) << c[0];
        EXPECT_EQ(error, c[1]) << c[0];
    }
}

TEST(MbnIds, HexFormRoundTripsTheLimitIsKeptAndJsonIsEscaped)
{
    pdc_config_id id;
    ASSERT_TRUE(mbn_parse_id("hex:00FFa0", &id));
    EXPECT_EQ(id.len, 3u);
    EXPECT_EQ(mbn_format_id(id.bytes, id.len), "hex:00ffa0");
    /* An odd digit count and an empty hex form are refused; 124 bytes are
     * the most. */
    const bool odd = mbn_parse_id("hex:0", &id), empty = mbn_parse_id("hex:", &id);
    const bool longest = mbn_parse_id(std::string(124, 'a'), &id), too_long = mbn_parse_id(std::string(125, 'a'), &id);
    EXPECT_EQ(facts(odd, empty, longest, too_long), "0 0 1 0\n");
    /* Printable text that would read back as hex, or with blanks or quotes,
     * is shown in the hex form. */
    for (const std::string t : {"hex:ab", "a b", "a\"b"}) {
        std::string shown = mbn_format_id(reinterpret_cast<const uint8_t *>(t.data()), uint32_t(t.size()));
        ASSERT_TRUE(mbn_parse_id(shown, &id)) << shown;
        EXPECT_EQ(text_of(id.bytes, id.len), t);
    }
    EXPECT_EQ(mbn_json_string("a\"b\\c\n\x01\xc3"), "\"a\\\"b\\\\c\\u000a\\u0001\\u00c3\"");
}

/* The modem's errors by name are checked by rlk-mbn's runs; here a request
 * that never went, and a failure beside a list of one, in JSON (escaped)
 * and as text. */
TEST(MbnFailures, UndeliveredRequestAndAFailedListOfOne)
{
    const mbn_result undelivered = mbn_send_failure(QMI_CLIENT_PARAM_ERR, "select");
    mbn_options o;
    o.command = MBN_CMD_LIST;
    o.json = true;
    mbn_report r;
    r.listed = true;
    r.ids = {"a"};
    const mbn_result res = {k_mbn_exit_timeout, "list: \"late\""};
    std::string t = facts(undelivered.exit_code, undelivered.error) + mbn_format_failure(o, r, res);
    o.json = false;
    expect_golden(t + mbn_format_failure(o, r, res), __FILE__, "mbn_failures.golden");
}

}  // namespace
