/* WCDMA, GSM and IMS log parsers: a packet built to the accepted version
 * with known values (every printed line and the record bytes), the same
 * packet cut short, and an unsupported version. */
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "log_test_util.h"

using log_test::packet;
using log_test::record;

namespace {

TEST(WcdmaGsmImsLogTest, ReceiveLevels)
{
    packet w;
    w.u8(0, 8).u16(3, static_cast<uint16_t>(-512)).u16(5, static_cast<uint16_t>(-612)).size(16);
    log_test::expect_case({"0x4179 v8",
                           0x4179,
                           w.bytes(),
                           "version = 8, rx_agc_old_0 = -512, rx_agc_old_1 = -612, rx_agc_0 = -106.00, "
                           "rx_agc_1 = -116.00\n",
                           {{MODEM_STATS_DATA_ID_WCDMA_PN_SEARCH, record().u8(8).f32(-106).f32(-116).bytes()}},
                           0,
                           "version",
                           0});
    packet g;
    g.u8(0, 6).u16(7, static_cast<uint16_t>(-1600)).u16(9, static_cast<uint16_t>(-1608)).size(16);
    log_test::expect_case({"0x5096 v6",
                           0x5096,
                           g.bytes(),
                           "version = 6, rx_prx_old = -1600, rx_drx_old = -1608, rx_prx = -100.00, rx_drx = -100.50\n",
                           {{MODEM_STATS_DATA_ID_GSM_L1_RX_DIVERSITY, record().u8(6).f32(-100).f32(-100.5f).bytes()}},
                           0,
                           "version",
                           0});
    /* The public sample vectors of 0x4179 are version 5. */
    log_test::expect_refused(0x4179, packet(w).u8(0, 5).bytes(), 5, log_test::parser_name(0x4179));
    log_test::expect_refused(0x5096, packet(g).u8(0, 5).bytes(), 5, log_test::parser_name(0x5096));
}

/* Dialled string "12345", call id of 5 bytes, URLs of 10 and 12 bytes. */
packet volte()
{
    packet p;
    p.u8(0, 3).u8(1, 5).raw(2, {'1', '2', '3', '4', '5'}).u8(7, 1).u8(8, 5).raw(9, {'a', 'b', 'c', '@', 'x'});
    p.u8(14, 10).u8(25, 12).u16(38, 200).u32(40, 1500).u8(44, 2);
    return p;
}

TEST(WcdmaGsmImsLogTest, VolteSessions)
{
    record r;
    r.u8(3).u8(1).u16(200).u32(1500).u8(2);
    /* The cut falls inside the call id: its skip stops at the end, and the
     * next length field finds nothing. */
    log_test::expect_case({"0x1830",
                           0x1830,
                           volte().bytes(),
                           "version = 3, direction = 1, result = 200, call_setup_delay = 1500, rat = 2, "
                           "originating_url_len = 10, terminating_url_len = 12\n",
                           {{MODEM_STATS_DATA_ID_IMS_VOLTE_SESSION_SETUP, r.bytes()}},
                           12,
                           "originating_url_len",
                           0});
    log_test::expect_case({"0x1831",
                           0x1831,
                           volte().bytes(),
                           "version = 3, direction = 1, end_cause = 200, call_setup_delay = 1500, rat = 2, "
                           "originating_url_len = 10, terminating_url_len = 12\n",
                           {{MODEM_STATS_DATA_ID_IMS_VOLTE_SESSION_END, r.bytes()}},
                           40,
                           "call_setup_delay",
                           0});
    log_test::expect_refused(0x1830, packet(volte()).u8(0, 2).bytes(), 2, log_test::parser_name(0x1830));
    log_test::expect_refused(0x1831, packet(volte()).u8(0, 4).bytes(), 4, log_test::parser_name(0x1831));
}

TEST(WcdmaGsmImsLogTest, SipMessageAndRtp)
{
    packet sip;
    sip.u8(0, 1).u8(1, 1).u8(2, 1).u8(3, 32).u16(4, 900).u16(6, 512).u16(8, 2).u16(10, 180).u32(12, 3).size(48);
    log_test::expect_case({"0x156E v1",
                           0x156E,
                           sip.bytes(),
                           "version = 1, direction = 1, sdp_presence = 1, sip_call_id_len = 32, sip_msg_len = 900, "
                           "sip_msg_logged_bytes = 512, msg_id = 2\nresponse_code = 180, cm_call_id = 3\n",
                           {{MODEM_STATS_DATA_ID_IMS_SIP_MESSAGE,
                             record().u8(1).u8(1).u8(1).u8(32).u16(900).u16(512).u16(2).u16(180).u32(3).bytes()}},
                           9,
                           "msg_id",
                           1});
    packet rtp;
    rtp.u8(0, 13).u8(12, 2).u8(21, 7).size(32);
    log_test::expect_case({"0x1568 v13",
                           0x1568,
                           rtp.bytes(),
                           "version = 13, codec_type = 2, frame_type = 7\n",
                           {{MODEM_STATS_DATA_ID_IMS_RTP_SN_AND_PAYLOAD, record().u8(13).u8(2).u8(7).bytes()}},
                           21,
                           "frame_type",
                           0});
    log_test::expect_refused(0x156E, packet(sip).u8(0, 2).bytes(), 2, log_test::parser_name(0x156E));
    log_test::expect_refused(0x1568, packet(rtp).u8(0, 12).bytes(), 12, log_test::parser_name(0x1568));
}

}  // namespace
