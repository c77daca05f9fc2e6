#include "log_test_util.h"

#include <gtest/gtest.h>
#include <stdarg.h>
#include <stdio.h>

#include <utility>


namespace log_test {

std::vector<uint8_t> payload(std::vector<uint8_t> head)
{
    head.resize(MODEM_STATS_UNPK_MAX_LEN, 0);
    return head;
}

static record seen(const modem_stats_single_data_common_type *r)
{
    return {r->data_id, std::vector<uint8_t>(r->data, r->data + r->data_len)};
}

static std::vector<record> g_released;

record_log::record_log()
{
    g_released.clear();
    modem_stats_set_record_observer(
        [](modem_stats_sub_id_e_type, modem_stats_data_id_e_type id, const modem_stats_single_data_common_type *r) {
            g_released.push_back({id, seen(r).bytes});
        });
}

record_log::~record_log()
{
    modem_stats_set_record_observer(nullptr);
}

std::vector<record> record_log::take()
{
    return std::exchange(g_released, {});
}

run_result run_log(uint16_t code, const std::vector<uint8_t> &bytes, int32_t cut, modem_stats_parser_table table)
{
    run_result result;
    const modem_stats_parser_row *row = modem_stats_parser_find(table, code);
    EXPECT_NE(row, nullptr) << "no parser for 0x" << std::hex << code;
    if (!row) return result;
    std::vector<uint8_t> data = payload(bytes);
    record_log released;
    g_pk_version_not_support_num = 0;
    result.out = captured_stdout([&] {
        if (!modem_stats_data_unpk_start(code, data.data())) return;
        if (cut != NO_CUT) g_pk_data_left = cut;
        modem_stats_data_id_e_type id = MODEM_STATS_DATA_ID_NONE;
        modem_stats_single_data_common_type *made = nullptr;
        switch (row->kind) {
            case MODEM_STATS_PARSER_PLAIN: row->parse(&id, &made); break;
            case MODEM_STATS_PARSER_SUB: row->parse_sub(MODEM_STATS_SUB_ID_0, &id, &made); break;
            case MODEM_STATS_PARSER_SUB_ONLY: row->parse_sub_only(MODEM_STATS_SUB_ID_0); break;
            default: break;
        }
        /* The reported id is the record's, or none without one. */
        EXPECT_EQ(id, made ? made->data_id : MODEM_STATS_DATA_ID_NONE);
        /* A parser that keeps its record is only looked at. */
        if (made && !row->release)
            result.records.push_back(seen(made));
        else
            modem_stats_data_check_and_update_for_diag(MODEM_STATS_SUB_ID_0, id, made);
    });
    std::vector<record> freed = released.take();
    result.records.insert(result.records.end(), freed.begin(), freed.end());
    return result;
}

std::string fmt(const char *format, ...)
{
    char buf[1024];
    va_list ap;
    va_start(ap, format);
    vsnprintf(buf, sizeof(buf), format, ap);
    va_end(ap);
    return buf;
}

std::string describe(const run_result &r)
{
    std::string text = r.out;
    if (!text.empty() && text.back() != '\n') text += "<no newline>\n";
    for (const record &rec : r.records) {
        text += fmt("record %u:", static_cast<unsigned>(rec.id));
        for (uint8_t b : rec.bytes) text += fmt(" %02x", b);
        text += "\n";
    }
    return text;
}

std::string describe(const std::vector<log_case> &cases)
{
    std::string text;
    for (size_t i = 0; i < cases.size(); i++) {
        const log_case &c = cases[i];
        text += fmt("== 0x%x\n", c.code) + describe(run_log(c.code, c.bytes));
        if (c.cut != NO_CUT) text += fmt("-- cut at %d\n", c.cut) + describe(run_log(c.code, c.bytes, c.cut));
    }
    return text;
}

}  // namespace log_test
