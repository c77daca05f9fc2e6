/* WCDMA, GSM and IMS log parsers: a packet built to the accepted version
 * with known values, the same packet cut short, and an unsupported version;
 * wcdma_gsm_ims_log.golden holds every printed line and record. */
#include <gtest/gtest.h>

#include "golden.h"
#include "log_test_util.h"

using namespace log_test;

namespace {

TEST(WcdmaGsmImsLogTest, EveryCodeAndVersion)
{
    packet w = packet().u8(0, 8).u16(3, static_cast<uint16_t>(-512)).u16(5, static_cast<uint16_t>(-612)).size(16);
    packet g = packet().u8(0, 6).u16(7, static_cast<uint16_t>(-1600)).u16(9, static_cast<uint16_t>(-1608)).size(16);
    /* Dialled string "12345", call id of 5 bytes, URLs of 10 and 12 bytes. */
    packet volte;
    volte.u8(0, 3).u8(1, 5).raw(2, {'1', '2', '3', '4', '5'}).u8(7, 1).u8(8, 5).raw(9, {'a', 'b', 'c', '@', 'x'});
    volte.u8(14, 10).u8(25, 12).u16(38, 200).u32(40, 1500).u8(44, 2);
    packet sip;
    sip.u8(0, 1).u8(1, 1).u8(2, 1).u8(3, 32).u16(4, 900).u16(6, 512).u16(8, 2).u16(10, 180).u32(12, 3).size(48);
    packet rtp = packet().u8(0, 13).u8(12, 2).u8(21, 7).size(32);
    /* The public sample vectors of 0x4179 are version 5.  The first VoLTE
     * cut falls inside the call id: its skip stops at the end, and the next
     * length field finds nothing. */
    const std::vector<log_case> cases = {
        {0x4179, w, 0},          {0x4179, packet(w).u8(0, 5)},     {0x5096, g, 0},
        {0x5096, packet(g).u8(0, 5)}, {0x1830, volte, 12},         {0x1830, packet(volte).u8(0, 2)},
        {0x1831, volte, 40},     {0x1831, packet(volte).u8(0, 4)}, {0x156E, sip, 9},
        {0x156E, packet(sip).u8(0, 2)}, {0x1568, rtp, 21},         {0x1568, packet(rtp).u8(0, 12)}};
    expect_golden(describe(cases), __FILE__, "wcdma_gsm_ims_log.golden");
}

}  // namespace
