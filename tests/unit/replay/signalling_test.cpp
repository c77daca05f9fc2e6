/* Signalling messages of log packets as GSMTAP records: per kind one
 * known-good packet gives the exact GSMTAP header and message bytes;
 * truncated packets, unknown versions and channels give nothing. */
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "gsmtap_pcap.h"
#include "replay_test_util.h"
#include "signalling.h"

using replay_test::bytes;
using replay_test::hex;

namespace {

/* Little-endian fields of `n` bytes each, e.g. {{9, 1}, {5780, 4}}. */
bytes fields(std::initializer_list<std::pair<uint32_t, int>> list, const bytes &tail = {})
{
    bytes b;
    for (const auto &f : list) replay_test::put_le(&b, f.first, f.second);
    return replay_test::concat({b, tail});
}

const bytes k_msg = {0x22, 0x0A, 0x7E, 0x7D};

/* LTE RRC OTA of each header layout: version, releases, bearer, PCI,
 * EARFCN, SFN, PDU number, SIB mask, length, message. */
const auto rrc_v2 = [](uint8_t pdu, uint16_t earfcn) {
    return fields({{2, 1}, {0x0870, 2}, {1, 1}, {185, 2}, {earfcn, 2}, {0x1234, 2}, {pdu, 1}, {4, 2}}, k_msg);
};
const auto rrc_v6 = [](uint8_t pdu) {
    return fields({{6, 1}, {0x0970, 2}, {0, 1}, {185, 2}, {100, 2}, {0, 2}, {pdu, 1}, {0, 4}, {4, 2}}, k_msg);
};
const auto rrc_v9 = [](uint8_t pdu, uint32_t earfcn = 5780, uint32_t len = 4) {
    return fields({{9, 1}, {0x700B, 2}, {1, 1}, {185, 2}, {earfcn, 4}, {0x8139, 2}, {pdu, 1}, {0, 4}, {len, 2}}, k_msg);
};
const auto rrc_v26 = [](uint8_t pdu, uint32_t earfcn) {
    return fields({{26, 1}, {0x400F, 2}, {0x400F, 2}, {1, 1}, {270, 2}, {earfcn, 4}, {0, 2}, {pdu, 1}, {0, 4}, {4, 2}},
                  k_msg);
};
/* NAS: version, three bytes, message.  WCDMA: channel, radio bearer,
 * length, [UARFCN, PSC], message.  GSM: channel, message type, length,
 * message. */
const auto nas = [](uint8_t version) { return fields({{version, 1}, {9, 1}, {5, 1}, {0, 1}}, k_msg); };
const auto wcdma = [](uint8_t channel, uint16_t length) { return fields({{channel, 1}, {3, 1}, {length, 2}}, k_msg); };
const auto wcdma_cell = [](uint8_t channel, uint16_t length) {
    return fields({{channel, 1}, {3, 1}, {length, 2}, {10700, 2}, {0x1A0, 2}}, k_msg);
};
const auto gsm = [](uint8_t channel, uint8_t length) { return fields({{channel, 1}, {0x1B, 1}, {length, 1}}, k_msg); };

/* "02 04 <type> 00 <arfcn> 00 00 00000000 <sub> 000000" */
std::string header_hex(uint8_t type, uint16_t arfcn, uint8_t sub)
{
    char buf[64];
    snprintf(buf, sizeof(buf), "0204%02x00%04x000000000000%02x000000", type, arfcn, sub);
    return buf;
}

TEST(Signalling, EachKindGivesItsGsmtapHeaderAndMessage)
{
    const std::string msg = "220a7e7d";
    struct {
        const char *name;
        uint16_t code;
        bytes payload;
        std::string gsmtap;
    } cases[] = {
        {"LTE RRC DL-DCCH", 0xB0C0, rrc_v9(13), header_hex(0x0D, 5780, 1) + msg},
        {"LTE RRC UL-DCCH", 0xB0C0, rrc_v9(15), header_hex(0x0D, 0x4000 | 5780, 3) + msg},
        {"LTE RRC PCCH", 0xB0C0, rrc_v9(11, 70000), header_hex(0x0D, 0, 6) + msg},
        {"LTE RRC BCCH-BCH", 0xB0C0, rrc_v9(8), header_hex(0x0D, 5780, 4) + msg},
        {"LTE RRC UL-CCCH", 0xB0C0, rrc_v2(7, 1300), header_hex(0x0D, 0x4000 | 1300, 2) + msg},
        {"LTE RRC BCCH-DL-SCH", 0xB0C0, rrc_v6(2), header_hex(0x0D, 100, 5) + msg},
        {"LTE RRC DL-CCCH-NB", 0xB0C0, rrc_v26(48, 2500), header_hex(0x0D, 2500, 14) + msg},
        {"LTE RRC MCCH", 0xB0C0, rrc_v26(6, 2500), header_hex(0x0D, 2500, 7) + msg},
        {"LTE NAS EMM uplink", 0xB0ED, nas(1), header_hex(0x12, 0x4000, 0) + msg},
        {"LTE NAS ESM downlink", 0xB0E2, nas(1), header_hex(0x12, 0, 0) + msg},
        {"UMTS RRC DL-DCCH", 0x412F, wcdma(3, 4), header_hex(0x0C, 0, 0) + msg},
        {"UMTS RRC UL-DCCH", 0x412F, wcdma_cell(0x81, 3), header_hex(0x0C, 0x4000 | 10700, 1) + "220a7e"},
        {"GSM BCCH", 0x512F, gsm(0x81, 4), header_hex(0x02, 0, 1) + "0a7e7d"},
        {"GSM SDCCH", 0x512F, gsm(0x05, 4), header_hex(0x02, 0x4000, 6) + msg},
    };
    const size_t gsmtap_at = PCAP_RECORD_HEADER_LEN + IPV4_HEADER_LEN + UDP_HEADER_LEN;
    std::vector<std::string> records;
    for (const auto &c : cases) {
        signalling_result r = signalling_extract(c.code, c.payload.data(), c.payload.size());
        ASSERT_EQ(r.status, SIGNALLING_OK) << c.name;
        EXPECT_STREQ(r.kind, c.name);
        records.emplace_back();
        ASSERT_TRUE(pcap_append_gsmtap(&records.back(), 0x56A3F139, 642000, r.msg)) << c.name;
        EXPECT_EQ(hex(records.back(), gsmtap_at), c.gsmtap) << c.name;
    }
    /* The record and datagram around a message: time, lengths, loopback,
     * port 4729 both ways, the IPv4 header checksum. */
    EXPECT_EQ(hex(records[0]).substr(0, 2 * gsmtap_at),
              "39f1a356d0cb09003000000030000000"
              "450000300000000040117cbb7f0000017f000001"
              "12791279001c0000");
    /* A message no IPv4 datagram holds is not written. */
    std::vector<uint8_t> big(GSMTAP_MAX_MESSAGE + 1);
    gsmtap_message m;
    m.payload = big.data();
    m.length = big.size();
    std::string rec;
    EXPECT_FALSE(pcap_append_gsmtap(&rec, 0, 0, m));
    EXPECT_TRUE(rec.empty());
}

TEST(Signalling, TruncatedUnknownAndOtherPacketsGiveNoMessage)
{
    bytes v9 = rrc_v9(13);
    struct {
        const char *name;
        uint16_t code;
        bytes payload;
        signalling_status status;
        int32_t version;
    } cases[] = {
        {"rrc cut in its header", 0xB0C0, bytes(v9.begin(), v9.begin() + 12), SIGNALLING_MALFORMED, 9},
        {"rrc cut in its message", 0xB0C0, bytes(v9.begin(), v9.end() - 1), SIGNALLING_MALFORMED, 9},
        {"rrc length past the end", 0xB0C0, rrc_v9(13, 5780, 5), SIGNALLING_MALFORMED, 9},
        {"rrc empty", 0xB0C0, {}, SIGNALLING_MALFORMED, -1},
        {"rrc version 30", 0xB0C0, fields({{30, 1}}, v9), SIGNALLING_VERSION_REFUSED, 30},
        {"rrc version 5", 0xB0C0, fields({{5, 1}}, v9), SIGNALLING_VERSION_REFUSED, 5},
        {"rrc channel 99", 0xB0C0, rrc_v9(99), SIGNALLING_CHANNEL_SKIPPED, 9},
        {"rrc v9 channel 5", 0xB0C0, rrc_v9(5), SIGNALLING_CHANNEL_SKIPPED, 9},
        {"nas version 2", 0xB0EC, nas(2), SIGNALLING_VERSION_REFUSED, 2},
        {"nas header only", 0xB0EC, fields({{1, 4}}), SIGNALLING_MALFORMED, 1},
        {"wcdma decoded SIB", 0x412F, wcdma(0xFE, 4), SIGNALLING_CHANNEL_SKIPPED, -1},
        {"wcdma SIB container", 0x412F, wcdma(10, 4), SIGNALLING_CHANNEL_SKIPPED, -1},
        {"wcdma length past the end", 0x412F, wcdma(3, 5), SIGNALLING_MALFORMED, -1},
        {"wcdma cell cut", 0x412F, fields({{0x83, 1}, {0, 1}, {1, 2}, {0, 2}}), SIGNALLING_MALFORMED, -1},
        {"gsm length past the end", 0x512F, gsm(0x81, 5), SIGNALLING_MALFORMED, -1},
        {"gsm channel 9", 0x512F, gsm(0x89, 4), SIGNALLING_CHANNEL_SKIPPED, -1},
        {"NR RRC", 0xB821, v9, SIGNALLING_NO_GSMTAP, -1},
        {"not signalling", 0xB193, v9, SIGNALLING_NONE, -1},
    };
    for (const auto &c : cases) {
        signalling_result r = signalling_extract(c.code, c.payload.data(), c.payload.size());
        EXPECT_EQ(r.status, c.status) << c.name;
        EXPECT_EQ(r.version, c.version) << c.name;
    }
}

}  // namespace
