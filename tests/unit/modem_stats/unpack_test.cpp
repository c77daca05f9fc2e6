/* Unpacker, pack buffer and record allocation: the checks, their messages
 * and the state they leave. */
#include <gtest/gtest.h>

#include "modem_stats_record.h"
#include "modem_stats_unpack.h"
#include "stats_test_util.h"

using stats_test::captured_stdout;

namespace {

constexpr uint32_t kId = 0xB16D;

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
    EXPECT_EQ(a, 0x01);
    EXPECT_EQ(b, 0x1234);
    EXPECT_EQ(c, 0x12345678u);
    EXPECT_EQ(d, 0x0123456789abcdefull);
    EXPECT_EQ(g_pk_data_cnt, 15u);
    EXPECT_EQ(g_pk_data_left, MODEM_STATS_UNPK_MAX_LEN - 15);

    /* A null payload names the previous id and keeps the state. */
    EXPECT_EQ(fails([] { return modem_stats_data_unpk_start(0x1234, nullptr); }),
              "MODEM_STATS_DATA_UNPK_START, payload is NULL, id(0xb16d)\n");
    EXPECT_EQ(g_pk_data_id, kId);
    EXPECT_EQ(g_pk_data_cnt, 15u);

    /* A start allows 2000 bytes whatever the real length: the last 8 are
     * readable (zeros), the next byte is not. */
    ASSERT_TRUE(modem_stats_unpk_set_pos(MODEM_STATS_UNPK_MAX_LEN - 8));
    d = 1;
    EXPECT_TRUE(modem_stats_data_unpk("tail", &d));
    EXPECT_EQ(d, 0u);
    EXPECT_EQ(fails([&] { return modem_stats_data_unpk("past", &a); }),
              "g_pk_data_left(0) is not enough for past, id(0xb16d)\n");

    start({});
    modem_stats_data_skip(MODEM_STATS_UNPK_MAX_LEN - 3);
    EXPECT_EQ(fails([&] { return modem_stats_data_unpk("tb_bytes", &c); }),
              "g_pk_data_left(3) is not enough for tb_bytes, id(0xb16d)\n");
    EXPECT_EQ(g_pk_data_left, 3);

    /* A skip lowers the bytes left without a check. */
    start({});
    g_pk_data_left = 10;
    modem_stats_data_skip(32);
    EXPECT_EQ(g_pk_data_left, -22);
    EXPECT_EQ(g_pk_data_cnt, 32u);
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
    start({});
    EXPECT_EQ(fails([] { return modem_stats_unpk_set_pos(MODEM_STATS_UNPK_MAX_LEN); }),
              "UNPK_SET_POS, pos(2000) should be[0, 2000), id(0xb16d)\n");
    ASSERT_TRUE(modem_stats_unpk_set_pos(1999));
    EXPECT_EQ(g_pk_data_cnt, 1999u);
    EXPECT_EQ(g_pk_data_left, 1);
    g_pk_data_valid = 0;
    EXPECT_EQ(fails([] { return modem_stats_unpk_set_pos(0); }), "UNPK_SET_POS, pos(0) should be[0, 0), id(0xb16d)\n");
}

TEST_F(UnpackTest, BitPositionFromBytesRead)
{
    start({0x01, 0x02, 0x03, 0xa5});
    uint8_t a = 0;
    uint16_t b = 0;
    ASSERT_TRUE(modem_stats_data_unpk("a", &a) && modem_stats_data_unpk("b", &b));
    ASSERT_TRUE(modem_stats_base_with_bit());
    EXPECT_EQ(g_pk_bit_pos, 24u);
    EXPECT_EQ(g_pk_data_base, 3);
    EXPECT_EQ(g_pk_data_cnt, 0u);
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
}

TEST_F(UnpackTest, BitFieldChecksAndValues)
{
    const struct {
        uint32_t skip, width, dest_bits;
        bool ok;
        uint64_t value;
        const char *message;
    } cases[] = {
        /* low 4, high 11: 8 bits fit an 8-bit destination. */
        {3, 8, 8, true, 0xb5, ""},
        {3, 9, 16, true, 0x1b5, ""},
        {3, 9, 8, false, 0, "UNPK_LOW, bit_num(9) should be in [1, 8] for f, id(0xb16d)\n"},
        {7, 58, 64, false, 0, "UNPK_MID, high(65) should be in [1, 64] for f, id(0xb16d)\n"},
        {0, 0, 8, false, 0, "UNPK_MID, high(0) should be in [1, 64] for f, id(0xb16d)\n"},
        {3, 0, 8, false, 0, "UNPK_MID, low(4) should <= high(3) for f, id(0xb16d)\n"},
        {0, 64, 64, true, 0x0000000000000dadull, ""},
        {8 * 1993, 1, 8, false, 0, "g_pk_data_left(7) is not enough for f_tmp, id(0xb16d)\n"},
        {8 * 1992 + 7, 1, 8, true, 0, ""},
        {8 * 2000, 1, 8, false, 0, "UNPK_SET_POS, pos(2000) should be[0, 2000), id(0xb16d)\n"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(testing::Message() << "skip " << c.skip << " width " << c.width << " dest " << c.dest_bits);
        start({0xad, 0x0d});
        uint64_t v = 0;
        EXPECT_EQ(fails([&] { return modem_stats_unpk_bits("f", c.skip, c.width, c.dest_bits, false, &v); }, c.ok),
                  c.message);
        EXPECT_EQ(v, c.value);
    }
}

TEST_F(UnpackTest, SequentialFieldsAdvanceFixedRecordFieldsDoNot)
{
    /* byte0 = 0b0110_1011: fields of 3, 2 and 3 bits from the low end. */
    start({0x6b, 0xff, 0x00, 0x81});
    uint8_t a = 0, b = 0, c = 0, y = 0;
    ASSERT_TRUE(modem_stats_unpk_mid("a", 0, 3, &a) && modem_stats_unpk_mid("b", 0, 2, &b));
    ASSERT_TRUE(modem_stats_unpk_mid("c", 0, 3, &c));
    EXPECT_EQ(a, 0x3);
    EXPECT_EQ(b, 0x1);
    EXPECT_EQ(c, 0x3);
    EXPECT_EQ(g_pk_bit_pos, 8u);
    EXPECT_EQ(g_pk_data_base, 1);
    uint16_t x = 0;
    ASSERT_TRUE(modem_stats_unpk_at("x", 4, 12, &x) && modem_stats_unpk_at("y", 16, 8, &y));
    EXPECT_EQ(x, 0x00f);
    EXPECT_EQ(y, 0x81);
    EXPECT_EQ(g_pk_bit_pos, 8u);
    modem_stats_bit_advance(24);
    EXPECT_EQ(g_pk_bit_pos, 32u);
    EXPECT_EQ(g_pk_data_base, 4);
    EXPECT_EQ(g_pk_data_cnt, 0u);
}

TEST_F(UnpackTest, BitRowsReadInOrderAndStopAtFirstRefusal)
{
    static constexpr modem_stats_bit_field_row rows[] = {
        {"lo", 0, 4, 8}, {"hi", 4, 4, 8}, {"too_wide", 0, 9, 8}, {"never", 0, 1, 8}};
    static_assert(modem_stats_bit_row_fits(rows[0]) && !modem_stats_bit_row_fits(rows[2]), "row check");
    start({0x5a});
    uint64_t values[4] = {0, 0, 0, 77};
    EXPECT_EQ(fails([&] { return modem_stats_unpk_bit_rows(rows, 4, values); }),
              "UNPK_LOW, bit_num(9) should be in [1, 8] for too_wide, id(0xb16d)\n");
    EXPECT_EQ(values[0], 0xau);
    EXPECT_EQ(values[1], 0x5u);
    EXPECT_EQ(values[3], 77u);
}

TEST_F(UnpackTest, PackBufferAndItsLimits)
{
    start({});
    modem_stats_data_pk_begin();
    ASSERT_TRUE(modem_stats_data_pk("a", 0x01, 1) && modem_stats_data_pk("b", 0x0302, 2));
    ASSERT_TRUE(modem_stats_data_pk("c", 0x07060504, 4));
    modem_stats_data_id_e_type id = MODEM_STATS_DATA_ID_NONE;
    modem_stats_single_data_common_type *rec = nullptr;
    ASSERT_TRUE(modem_stats_data_pk_finish(MODEM_STATS_DATA_ID_LTE_TX_POWER, &id, &rec));
    EXPECT_EQ(id, MODEM_STATS_DATA_ID_LTE_TX_POWER);
    EXPECT_EQ(stats_test::seen(rec), (stats_test::seen_record{id, {1, 2, 3, 4, 5, 6, 7}}));
    modem_stats_data_check_and_update_for_diag(MODEM_STATS_SUB_ID_0, id, rec);

    g_pk_data_cnt = MODEM_STATS_PK_BUF_LEN;
    EXPECT_EQ(fails([] { return modem_stats_data_pk("old_config", 1, 1); }),
              "Cur(700) reached max(700), for old_config, id(0xb16d)\n");
    /* A wide value at the last cursor makes an overlong record. */
    g_pk_data_cnt = MODEM_STATS_PK_BUF_LEN - 1;
    ASSERT_TRUE(modem_stats_data_pk("wide", ~0ull, 8));
    EXPECT_EQ(g_pk_data_cnt, MODEM_STATS_PK_BUF_LEN + 7);
    id = MODEM_STATS_DATA_ID_NONE;
    rec = nullptr;
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
