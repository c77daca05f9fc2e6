/* Unpacker, pack buffer and record allocation: the checks, their messages
 * and the state they leave. */
#include <gtest/gtest.h>

#include "../modem_stats_logs/log_test_util.h"
#include "golden.h"
#include "modem_stats_record.h"
#include "modem_stats_unpack.h"

using log_test::fmt;
using stats_test::captured_stdout;

namespace {

constexpr uint32_t kId = 0xB16D;

/* The cursor: bytes read from the base, bytes left, base and bit position. */
std::string cursor()
{
    return fmt("cnt %u left %d base %d bit %u", g_pk_data_cnt, g_pk_data_left, g_pk_data_base, g_pk_bit_pos);
}

class UnpackTest : public testing::Test {
protected:
    void start(std::vector<uint8_t> head)
    {
        buf_ = stats_test::payload(head);
        ASSERT_TRUE(modem_stats_data_unpk_start(kId, buf_.data()));
    }
    /* Runs `fn`, which must return `ok`, and returns what it printed. */
    template <typename F>
    std::string fails(F fn, bool ok = false)
    {
        return captured_stdout([&] { EXPECT_EQ(fn(), ok); });
    }
    std::vector<uint8_t> buf_;
};

TEST_F(UnpackTest, WholeByteReadsAndTheirLimits)
{
    start({0x01, 0x34, 0x12, 0x78, 0x56, 0x34, 0x12, 0xef, 0xcd, 0xab, 0x89, 0x67, 0x45, 0x23, 0x01});
    uint8_t a = 0;
    uint16_t b = 0;
    uint32_t c = 0;
    uint64_t d = 0;
    /* Little-endian and unaligned. */
    ASSERT_TRUE(modem_stats_data_unpk("a", &a) && modem_stats_data_unpk("b", &b));
    ASSERT_TRUE(modem_stats_data_unpk("c", &c) && modem_stats_data_unpk("d", &d));
    EXPECT_EQ(fmt("%x %x %x %lx", a, b, c, static_cast<unsigned long>(d)), "1 1234 12345678 123456789abcdef");
    EXPECT_EQ(cursor(), "cnt 15 left 1985 base 0 bit 0");

    /* A null payload names the previous id and keeps the state. */
    EXPECT_EQ(fails([] { return modem_stats_data_unpk_start(0x1234, nullptr); }),
              "MODEM_STATS_DATA_UNPK_START, payload is NULL, id(0xb16d)\n");
    EXPECT_EQ(g_pk_data_id, kId);
    EXPECT_EQ(cursor(), "cnt 15 left 1985 base 0 bit 0");

    /* A start allows 2000 bytes whatever the real length: the last 8 are
     * readable (zeros), the next byte is not. */
    ASSERT_TRUE(modem_stats_unpk_set_pos(MODEM_STATS_UNPK_MAX_LEN - 8));
    d = 1;
    EXPECT_TRUE(modem_stats_data_unpk("tail", &d));
    EXPECT_EQ(d, 0u);
    EXPECT_EQ(fails([&] { return modem_stats_data_unpk("past", &a); }),
              "g_pk_data_left(0) is not enough for past, id(0xb16d)\n");

    /* A skip lowers the bytes left without a check. */
    start({});
    g_pk_data_left = 10;
    modem_stats_data_skip(32);
    EXPECT_EQ(cursor(), "cnt 32 left -22 base 0 bit 0");
}

TEST_F(UnpackTest, ReadsBeyondTheWindowGiveZeros)
{
    /* The bit position may move the base past the payload; every byte
     * outside the backing window reads as zero, even where the caller's
     * memory goes on. */
    std::vector<uint8_t> wide(MODEM_STATS_UNPK_MAX_LEN + 200, 0xff);
    ASSERT_TRUE(modem_stats_data_unpk_start(kId, wide.data()));
    modem_stats_bit_advance((MODEM_STATS_UNPK_MAX_LEN + 100) * 8);
    uint64_t v = 1;
    ASSERT_TRUE(modem_stats_unpk_at("far", 0, 64, &v));
    EXPECT_EQ(v, 0u);
    modem_stats_bit_advance(0);
    g_pk_data_base = -4;
    uint32_t w = 1;
    ASSERT_TRUE(modem_stats_data_unpk("before", &w));
    EXPECT_EQ(w, 0u);
}

TEST_F(UnpackTest, SetPosLimitDependsOnStart)
{
    /* 2000 is refused in the bit-field cases. */
    start({});
    ASSERT_TRUE(modem_stats_unpk_set_pos(1999));
    EXPECT_EQ(cursor(), "cnt 1999 left 1 base 0 bit 0");
    g_pk_data_valid = 0;
    EXPECT_EQ(fails([] { return modem_stats_unpk_set_pos(0); }), "UNPK_SET_POS, pos(0) should be[0, 0), id(0xb16d)\n");
}

TEST_F(UnpackTest, BitPositionsFieldsAndRows)
{
    start({0x01, 0x02, 0x03, 0xa5});
    uint8_t a = 0;
    uint16_t b = 0;
    ASSERT_TRUE(modem_stats_data_unpk("a", &a) && modem_stats_data_unpk("b", &b));
    ASSERT_TRUE(modem_stats_base_with_bit());
    EXPECT_EQ(cursor(), "cnt 0 left 1997 base 3 bit 24");
    ASSERT_TRUE(modem_stats_unpk_mid("nib", 4, 4, &a));
    EXPECT_EQ(a, 0xa);
    /* Whole bytes again at the base after bit fields. */
    ASSERT_TRUE(modem_stats_data_unpk("next", &a));
    EXPECT_EQ(a, 0x00);
    EXPECT_EQ(g_pk_data_base, 4);

    /* Negative bit positions are refused. */
    EXPECT_EQ(fails([] { return modem_stats_bit_pos_set(-8); }), "BASE_WITH_BIT, bit(-8) should >= 0, id(0xb16d)\n");
    g_pk_bit_pos = 0x7ffffff8u;
    g_pk_data_cnt = 1;
    EXPECT_EQ(fails([] { return modem_stats_base_with_bit(); }),
              "BASE_WITH_BIT, bit(-2147483648) should >= 0, id(0xb16d)\n");

    /* byte0 = 0b0110_1011: fields of 3, 2 and 3 bits from the low end
     * advance; fixed record fields do not. */
    start({0x6b, 0xff, 0x00, 0x81});
    uint8_t c = 0, y = 0;
    ASSERT_TRUE(modem_stats_unpk_mid("a", 0, 3, &a) && modem_stats_unpk_mid("b", 0, 2, &y));
    ASSERT_TRUE(modem_stats_unpk_mid("c", 0, 3, &c));
    EXPECT_EQ(fmt("%x %x %x", a, y, c), "3 1 3");
    EXPECT_EQ(cursor(), "cnt 0 left 1992 base 1 bit 8");
    uint16_t x = 0;
    ASSERT_TRUE(modem_stats_unpk_at("x", 4, 12, &x) && modem_stats_unpk_at("y", 16, 8, &y));
    EXPECT_EQ(fmt("%x %x", x, y), "f 81");
    EXPECT_EQ(g_pk_bit_pos, 8u);
    modem_stats_bit_advance(24);
    EXPECT_EQ(cursor(), "cnt 0 left 1990 base 4 bit 32");

    /* Rows read in order and stop at the first refusal. */
    static constexpr modem_stats_bit_field_row rows[] = {
        {"lo", 0, 4, 8}, {"hi", 4, 4, 8}, {"too_wide", 0, 9, 8}, {"never", 0, 1, 8}};
    static_assert(modem_stats_bit_row_fits(rows[0]) && !modem_stats_bit_row_fits(rows[2]), "row check");
    start({0x5a});
    uint64_t values[4] = {0, 0, 0, 77};
    EXPECT_EQ(fails([&] { return modem_stats_unpk_bit_rows(rows, 4, values); }),
              "UNPK_LOW, bit_num(9) should be in [1, 8] for too_wide, id(0xb16d)\n");
    EXPECT_EQ(fmt("%lx %lx %lu", static_cast<unsigned long>(values[0]), static_cast<unsigned long>(values[1]),
                  static_cast<unsigned long>(values[3])),
              "a 5 77");
}

/* unpack_bits.golden: per case skip, width and destination bits, then the
 * result, the value read and the message. */
TEST_F(UnpackTest, BitFieldChecksAndValues)
{
    const uint32_t cases[][3] = {{3, 8, 8},  {3, 9, 16}, {3, 9, 8},         {7, 58, 64},   {0, 0, 8},
                                 {3, 0, 8},  {0, 64, 64}, {8 * 1993, 1, 8}, {8 * 1992 + 7, 1, 8}, {8 * 2000, 1, 8}};
    std::string text;
    for (const auto &c : cases) {
        start({0xad, 0x0d});
        uint64_t v = 0;
        bool ok = false;
        std::string out = captured_stdout([&] { ok = modem_stats_unpk_bits("f", c[0], c[1], c[2], false, &v); });
        text += fmt("%u %u %u: %d 0x%lx", c[0], c[1], c[2], ok, static_cast<unsigned long>(v));
        text += out.empty() ? "\n" : " " + out;
    }
    expect_golden(text, __FILE__, "unpack_bits.golden");
}

TEST_F(UnpackTest, PackBufferAndItsLimits)
{
    /* The log parser tests check the records packed; here the limits. */
    start({});
    modem_stats_data_pk_begin();
    modem_stats_data_id_e_type id = MODEM_STATS_DATA_ID_NONE;
    modem_stats_single_data_common_type *rec = nullptr;
    g_pk_data_cnt = MODEM_STATS_PK_BUF_LEN;
    EXPECT_EQ(fails([] { return modem_stats_data_pk("old_config", 1, 1); }),
              "Cur(700) reached max(700), for old_config, id(0xb16d)\n");
    /* A wide value at the last cursor makes an overlong record. */
    g_pk_data_cnt = MODEM_STATS_PK_BUF_LEN - 1;
    ASSERT_TRUE(modem_stats_data_pk("wide", ~0ull, 8));
    EXPECT_EQ(g_pk_data_cnt, MODEM_STATS_PK_BUF_LEN + 7);
    EXPECT_EQ(fails([&] { return modem_stats_data_pk_finish(MODEM_STATS_DATA_ID_LTE_TX_POWER, &id, &rec); }),
              "data_len(707) should be in (0, 700]");
    EXPECT_EQ(rec, nullptr);
    EXPECT_EQ(id, MODEM_STATS_DATA_ID_NONE);

    g_pk_data_ptr = nullptr;
    EXPECT_EQ(fails([] { return modem_stats_data_pk("ho_time", 0, 8); }),
              "MODEM_STATS_DATA_PK, g_pk_data_ptr is NULL, name: ho_time, id(0xb16d)\n");
    uint8_t v = 0;
    EXPECT_EQ(fails([&] { return modem_stats_data_unpk("cause", &v); }),
              "MODEM_STATS_DATA_UNPK, g_pk_data_ptr is NULL, name: cause, id(0xb16d)\n");
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
