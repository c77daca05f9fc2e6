/* Unpacker, pack buffer and record allocation: the checks, their messages
 * and the state they leave.  unpack.golden holds, per step, what it
 * returned, the id and cursor after it and what it printed. */
#include <gtest/gtest.h>

#include "../modem_stats_logs/log_test_util.h"
#include "golden.h"

using log_test::fmt;
using log_test::captured_stdout;

namespace {

constexpr uint32_t kId = 0xB16D;

class UnpackTest : public testing::Test {
protected:
    /* Runs `fn` and notes `what`, its result, the state after it and what
     * it printed. */
    template <typename F>
    void step(const char *what, F fn)
    {
        bool ok = false;
        log_test::run_result r;
        r.out = captured_stdout([&] { ok = fn(); });
        trace_ += fmt("%s: %d, id 0x%x cnt %u left %d base %d bit %u\n", what, ok, g_pk_data_id, g_pk_data_cnt,
                      g_pk_data_left, g_pk_data_base, g_pk_bit_pos) +
                  log_test::describe(r);
    }
    /* Notes the state after the statements before it. */
    void note(const char *what)
    {
        step(what, [] { return true; });
    }
    /* Starts on a payload of the readable size beginning with `head`. */
    void start(std::vector<uint8_t> head)
    {
        buf_ = log_test::payload(head);
        step("start", [&] { return modem_stats_data_unpk_start(kId, buf_.data()); });
    }
    std::vector<uint8_t> buf_;
    std::string trace_;
};

TEST_F(UnpackTest, ReadsBitFieldsPositionsAndPacking)
{
    start({0x01, 0x34, 0x12, 0x78, 0x56, 0x34, 0x12, 0xef, 0xcd, 0xab, 0x89, 0x67, 0x45, 0x23, 0x01});
    uint8_t a = 0, m = 0, n = 0, y = 0;
    uint16_t b = 0, x = 0;
    uint32_t c = 0;
    uint64_t d = 0;
    /* Little-endian and unaligned. */
    step("a", [&] { return modem_stats_data_unpk("a", &a); });
    step("b", [&] { return modem_stats_data_unpk("b", &b); });
    step("c", [&] { return modem_stats_data_unpk("c", &c); });
    step("d", [&] { return modem_stats_data_unpk("d", &d); });
    trace_ += fmt("%x %x %x %lx\n", a, b, c, static_cast<unsigned long>(d));
    /* A null payload names the previous id and keeps the state. */
    step("start null", [] { return modem_stats_data_unpk_start(0x1234, nullptr); });
    /* A start allows 2000 bytes whatever the real length: the last 8 are
     * readable (zeros), the next byte is not. */
    d = 1;
    step("set_pos 1992", [] { return modem_stats_unpk_set_pos(MODEM_STATS_UNPK_MAX_LEN - 8); });
    step("tail", [&] { return modem_stats_data_unpk("tail", &d) && d == 0; });
    step("past", [&] { return modem_stats_data_unpk("past", &a); });
    /* A skip lowers the bytes left without a check. */
    start({});
    g_pk_data_left = 10;
    modem_stats_data_skip(32);
    note("left 10, skip 32");
    step("set_pos 1999", [] { return modem_stats_unpk_set_pos(1999); });
    g_pk_data_valid = 0;
    step("not valid, set_pos 0", [] { return modem_stats_unpk_set_pos(0); });

    /* Bit positions from the bytes read; whole bytes again at the base
     * after bit fields. */
    start({0x01, 0x02, 0x03, 0xa5});
    step("a b", [&] { return modem_stats_data_unpk("a", &a) && modem_stats_data_unpk("b", &b); });
    step("base_with_bit", [] { return modem_stats_base_with_bit(); });
    step("nib 4..7", [&] { return modem_stats_unpk_mid("nib", 4, 4, &a) && a == 0xa; });
    step("next", [&] { return modem_stats_data_unpk("next", &a) && a == 0; });
    /* Negative bit positions are refused. */
    step("bit -8", [] { return modem_stats_bit_pos_set(-8); });
    g_pk_bit_pos = 0x7ffffff8u;
    g_pk_data_cnt = 1;
    step("bit 0x7ffffff8, cnt 1", [] { return modem_stats_base_with_bit(); });
    /* byte0 = 0b0110_1011: fields of 3, 2 and 3 bits from the low end
     * advance; fixed record fields do not. */
    start({0x6b, 0xff, 0x00, 0x81});
    step("mid 3 2 3", [&] {
        return modem_stats_unpk_mid("a", 0, 3, &a) && modem_stats_unpk_mid("b", 0, 2, &m) &&
               modem_stats_unpk_mid("c", 0, 3, &n);
    });
    step("at 4..15, 16..23",
         [&] { return modem_stats_unpk_at("x", 4, 12, &x) && modem_stats_unpk_at("y", 16, 8, &y); });
    trace_ += fmt("%x %x %x %x %x\n", a, m, n, x, y);
    modem_stats_bit_advance(24);
    note("advance 24");
    /* Rows read in order and stop at the first refusal. */
    static constexpr modem_stats_bit_field_row rows[] = {
        {"lo", 0, 4, 8}, {"hi", 4, 4, 8}, {"too_wide", 0, 9, 8}, {"never", 0, 1, 8}};
    static_assert(modem_stats_bit_row_fits(rows[0]) && !modem_stats_bit_row_fits(rows[2]), "row check");
    start({0x5a});
    uint64_t values[4] = {0, 0, 0, 77};
    step("rows", [&] { return modem_stats_unpk_bit_rows(rows, 4, values); });
    trace_ += fmt("%lx %lx %lu\n", static_cast<unsigned long>(values[0]), static_cast<unsigned long>(values[1]),
                  static_cast<unsigned long>(values[3]));

    /* Bit fields: skip, width and destination bits, and the value read. */
    const uint32_t fields[][3] = {{3, 8, 8},  {3, 9, 16}, {3, 9, 8},        {7, 58, 64},          {0, 0, 8},
                                  {3, 0, 8},  {0, 64, 64}, {8 * 1993, 1, 8}, {8 * 1992 + 7, 1, 8}, {8 * 2000, 1, 8}};
    for (const auto &f : fields) {
        start({0xad, 0x0d});
        d = 0;
        step(fmt("bits %u %u %u", f[0], f[1], f[2]).c_str(),
             [&] { return modem_stats_unpk_bits("f", f[0], f[1], f[2], false, &d); });
        trace_ += fmt("0x%lx\n", static_cast<unsigned long>(d));
    }

    /* The bit position may move the base past the payload; every byte
     * outside the backing window reads as zero, even where the caller's
     * memory goes on. */
    std::vector<uint8_t> wide(MODEM_STATS_UNPK_MAX_LEN + 200, 0xff);
    step("start wide", [&] { return modem_stats_data_unpk_start(kId, wide.data()); });
    modem_stats_bit_advance((MODEM_STATS_UNPK_MAX_LEN + 100) * 8);
    d = 1;
    step("far", [&] { return modem_stats_unpk_at("far", 0, 64, &d) && d == 0; });
    modem_stats_bit_advance(0);
    g_pk_data_base = -4;
    c = 1;
    step("base -4", [&] { return modem_stats_data_unpk("before", &c) && c == 0; });

    /* Packing: the log parser tests check the records packed; here the
     * limits.  A wide value at the last cursor makes an overlong record. */
    start({});
    modem_stats_data_pk_begin();
    modem_stats_data_id_e_type id = MODEM_STATS_DATA_ID_NONE;
    modem_stats_single_data_common_type *made = nullptr;
    g_pk_data_cnt = MODEM_STATS_PK_BUF_LEN;
    step("pk at 700", [] { return modem_stats_data_pk("old_config", 1, 1); });
    g_pk_data_cnt = MODEM_STATS_PK_BUF_LEN - 1;
    step("pk 8 at 699", [] { return modem_stats_data_pk("wide", ~0ull, 8); });
    step("finish", [&] { return modem_stats_data_pk_finish(MODEM_STATS_DATA_ID_LTE_TX_POWER, &id, &made); });
    EXPECT_EQ(made, nullptr);
    EXPECT_EQ(id, MODEM_STATS_DATA_ID_NONE);
    g_pk_data_ptr = nullptr;
    step("pk null", [] { return modem_stats_data_pk("ho_time", 0, 8); });
    step("unpk null", [&] { return modem_stats_data_unpk("cause", &a); });
    expect_golden(trace_, __FILE__, "unpack.golden");
}

TEST(RecordTest, SizeMustBeOneTo700)
{
    for (uint32_t size : {0u, 701u, 1u, 700u}) {
        SCOPED_TRACE(size);
        auto *sentinel = reinterpret_cast<modem_stats_single_data_common_type *>(0x1);
        modem_stats_single_data_common_type *rec = sentinel;
        bool ok = size >= 1 && size <= 700;
        int made = -1;
        std::string out =
            captured_stdout([&] { made = modem_stats_new_single_ex(MODEM_STATS_DATA_ID_CALL_END, size, 0, &rec); });
        EXPECT_EQ(made, ok ? 1 : 0);
        EXPECT_EQ(out, ok ? "" : "data_len(" + std::to_string(size) + ") should be in (0, 700]");
        if (!ok) {
            EXPECT_EQ(rec, sentinel);
            continue;
        }
        ASSERT_NE(rec, sentinel);
        EXPECT_EQ(rec->data_len, size);
        EXPECT_EQ(rec->data_id, MODEM_STATS_DATA_ID_CALL_END);
        modem_stats_data_check_and_update_for_diag(MODEM_STATS_SUB_ID_0, rec->data_id, rec);
    }
    modem_stats_data_check_and_update_for_diag(MODEM_STATS_SUB_ID_0, MODEM_STATS_DATA_ID_NONE, nullptr);
}

}  // namespace
