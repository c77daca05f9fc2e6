/* WCDMA, GSM and IMS log parsers: a packet built to the accepted version
 * with known values (every printed line and the record bytes), the same
 * packet cut short, and an unsupported version. */
#include <gtest/gtest.h>

#include "log_test_util.h"

using namespace log_test;

namespace {

TEST(WcdmaGsmImsLogTest, ReceiveLevels)
{
    packet w = packet().u8(0, 8).u16(3, static_cast<uint16_t>(-512)).u16(5, static_cast<uint16_t>(-612)).size(16);
    expect_log(0x4179, w,
               "version = 8, rx_agc_old_0 = -512, rx_agc_old_1 = -612, rx_agc_0 = -106.00, rx_agc_1 = -116.00\n",
               {{MODEM_STATS_DATA_ID_WCDMA_PN_SEARCH, packet().u8(8).f32(-106).f32(-116)}}, {0, "version", 0});
    packet g = packet().u8(0, 6).u16(7, static_cast<uint16_t>(-1600)).u16(9, static_cast<uint16_t>(-1608)).size(16);
    expect_log(0x5096, g, "version = 6, rx_prx_old = -1600, rx_drx_old = -1608, rx_prx = -100.00, rx_drx = -100.50\n",
               {{MODEM_STATS_DATA_ID_GSM_L1_RX_DIVERSITY, packet().u8(6).f32(-100).f32(-100.5f)}}, {0, "version", 0});
    /* The public sample vectors of 0x4179 are version 5. */
    expect_refused(0x4179, packet(w).u8(0, 5), 5);
    expect_refused(0x5096, packet(g).u8(0, 5), 5);
}

TEST(WcdmaGsmImsLogTest, VolteSessions)
{
    /* Dialled string "12345", call id of 5 bytes, URLs of 10 and 12 bytes. */
    packet p;
    p.u8(0, 3).u8(1, 5).raw(2, {'1', '2', '3', '4', '5'}).u8(7, 1).u8(8, 5).raw(9, {'a', 'b', 'c', '@', 'x'});
    p.u8(14, 10).u8(25, 12).u16(38, 200).u32(40, 1500).u8(44, 2);
    const packet r = packet().u8(3).u8(1).u16(200).u32(1500).u8(2);
    const char *line =
        "version = 3, direction = 1, %s = 200, call_setup_delay = 1500, rat = 2, "
        "originating_url_len = 10, terminating_url_len = 12\n";
    /* The cut falls inside the call id: its skip stops at the end, and the
     * next length field finds nothing. */
    expect_log(0x1830, p, fmt(line, "result"), {{MODEM_STATS_DATA_ID_IMS_VOLTE_SESSION_SETUP, r}},
               {12, "originating_url_len", 0});
    expect_log(0x1831, p, fmt(line, "end_cause"), {{MODEM_STATS_DATA_ID_IMS_VOLTE_SESSION_END, r}},
               {40, "call_setup_delay", 0});
    expect_refused(0x1830, packet(p).u8(0, 2), 2);
    expect_refused(0x1831, packet(p).u8(0, 4), 4);
}

TEST(WcdmaGsmImsLogTest, SipMessageAndRtp)
{
    packet sip;
    sip.u8(0, 1).u8(1, 1).u8(2, 1).u8(3, 32).u16(4, 900).u16(6, 512).u16(8, 2).u16(10, 180).u32(12, 3).size(48);
    expect_log(0x156E, sip,
               "version = 1, direction = 1, sdp_presence = 1, sip_call_id_len = 32, sip_msg_len = 900, "
               "sip_msg_logged_bytes = 512, msg_id = 2\nresponse_code = 180, cm_call_id = 3\n",
               {{MODEM_STATS_DATA_ID_IMS_SIP_MESSAGE,
                 packet().u8(1).u8(1).u8(1).u8(32).u16(900).u16(512).u16(2).u16(180).u32(3)}},
               {9, "msg_id", 1});
    packet rtp = packet().u8(0, 13).u8(12, 2).u8(21, 7).size(32);
    expect_log(0x1568, rtp, "version = 13, codec_type = 2, frame_type = 7\n",
               {{MODEM_STATS_DATA_ID_IMS_RTP_SN_AND_PAYLOAD, packet().u8(13).u8(2).u8(7)}}, {21, "frame_type", 0});
    expect_refused(0x156E, packet(sip).u8(0, 2), 2);
    expect_refused(0x1568, packet(rtp).u8(0, 12), 12);
}

}  // namespace
