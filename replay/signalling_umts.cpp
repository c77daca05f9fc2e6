/* WCDMA RRC signalling (0x412F) and GSM RR signalling (0x512F) log packets
 * as GSMTAP messages.  Neither carries a version byte: their layouts have
 * not changed. */
#include "diag_packet.h"
#include "signalling.h"

namespace {

/* WCDMA: u8 channel type, u8 radio bearer, u16 message length; a channel
 * type with bit 7 set is followed by u16 UARFCN and u16 primary scrambling
 * code; then the message. */
constexpr size_t WCDMA_HEADER_LEN = 4;
constexpr size_t WCDMA_CELL_LEN = 4;
constexpr uint8_t WCDMA_EXPLICIT_CELL = 0x80;
/* Channel types 0xF0 and above are the modem's decoded system information,
 * not messages. */
constexpr uint8_t WCDMA_FIRST_DECODED = 0xF0;

/* A diag channel type and its GSMTAP sub-type and name. */
struct channel_row {
    uint8_t sub;
    const char *kind;
    bool uplink;
};

/* By WCDMA channel type 0-8: UL-CCCH, UL-DCCH, DL-CCCH, DL-DCCH, BCCH-BCH,
 * BCCH-FACH, PCCH, MCCH, MSCH (GSMTAP UMTS RRC sub-types 3, 1, 2, 0, 8, 7,
 * 4, 9, 10). */
const channel_row k_wcdma[] = {
    {3, "UMTS RRC UL-CCCH", true},    {1, "UMTS RRC UL-DCCH", true}, {2, "UMTS RRC DL-CCCH", false},
    {0, "UMTS RRC DL-DCCH", false},   {8, "UMTS RRC BCCH-BCH", false}, {7, "UMTS RRC BCCH-FACH", false},
    {4, "UMTS RRC PCCH", false},      {9, "UMTS RRC MCCH", false},   {10, "UMTS RRC MSCH", false},
};

/* GSM: u8 channel type (bit 7 set: downlink), u8 message type, u8 message
 * length, the layer 3 message.  The message lacks the LAPDm header a Um
 * GSMTAP message would start with, so it goes out as Abis (Wireshark
 * decodes it as DTAP); on BCCH and CCCH its first byte, the L2 pseudo
 * length, is dropped. */
constexpr size_t GSM_HEADER_LEN = 3;
constexpr uint8_t GSM_DOWNLINK = 0x80;
constexpr uint8_t GSM_CHANNEL_MASK = 0x7F;
constexpr uint8_t GSMTAP_CHANNEL_BCCH = 0x01;
constexpr uint8_t GSMTAP_CHANNEL_CCCH = 0x02;
constexpr uint8_t GSMTAP_CHANNEL_RACH = 0x03;
constexpr uint8_t GSMTAP_CHANNEL_SDCCH = 0x06;
constexpr uint8_t GSMTAP_CHANNEL_TCH_F = 0x09;
constexpr uint8_t GSMTAP_CHANNEL_ACCH = 0x80;

/* By GSM channel type 0-8: DCCH, BCCH, RACH, CCCH, SACCH, SDCCH, FACCH/F,
 * FACCH/H, RACH without delay. */
const channel_row k_gsm[] = {
    {GSMTAP_CHANNEL_SDCCH, "GSM DCCH", false},
    {GSMTAP_CHANNEL_BCCH, "GSM BCCH", false},
    {GSMTAP_CHANNEL_RACH, "GSM RACH", false},
    {GSMTAP_CHANNEL_CCCH, "GSM CCCH", false},
    {GSMTAP_CHANNEL_SDCCH | GSMTAP_CHANNEL_ACCH, "GSM SACCH", false},
    {GSMTAP_CHANNEL_SDCCH, "GSM SDCCH", false},
    {GSMTAP_CHANNEL_TCH_F | GSMTAP_CHANNEL_ACCH, "GSM FACCH/F", false},
    {GSMTAP_CHANNEL_TCH_F | GSMTAP_CHANNEL_ACCH, "GSM FACCH/H", false},
    {GSMTAP_CHANNEL_RACH, "GSM RACH", false},
};

}  // namespace

signalling_result signalling_wcdma_rrc(const uint8_t *payload, size_t len)
{
    signalling_result r;
    if (len < WCDMA_HEADER_LEN) {
        r.status = SIGNALLING_MALFORMED;
        return r;
    }
    uint8_t type = payload[0];
    size_t at = WCDMA_HEADER_LEN;
    uint16_t uarfcn = 0;
    if (type >= WCDMA_FIRST_DECODED) {
        r.status = SIGNALLING_CHANNEL_SKIPPED;
        return r;
    }
    if (type & WCDMA_EXPLICIT_CELL) {
        if (len < at + WCDMA_CELL_LEN) {
            r.status = SIGNALLING_MALFORMED;
            return r;
        }
        uarfcn = diag_le16(payload + at);
        at += WCDMA_CELL_LEN;
        type = static_cast<uint8_t>(type & ~WCDMA_EXPLICIT_CELL);
    }
    size_t n = diag_le16(payload + 2);
    if (n == 0 || n > len - at) {
        r.status = SIGNALLING_MALFORMED;
        return r;
    }
    if (type >= sizeof(k_wcdma) / sizeof(k_wcdma[0])) {
        r.status = SIGNALLING_CHANNEL_SKIPPED;
        return r;
    }
    const channel_row &ch = k_wcdma[type];
    r.status = SIGNALLING_OK;
    r.kind = ch.kind;
    r.msg.type = GSMTAP_TYPE_UMTS_RRC;
    r.msg.sub_type = ch.sub;
    r.msg.arfcn = uarfcn <= GSMTAP_ARFCN_MASK ? uarfcn : 0;
    r.msg.uplink = ch.uplink;
    r.msg.payload = payload + at;
    r.msg.length = n;
    return r;
}

signalling_result signalling_gsm_rr(const uint8_t *payload, size_t len)
{
    signalling_result r;
    if (len < GSM_HEADER_LEN) {
        r.status = SIGNALLING_MALFORMED;
        return r;
    }
    uint8_t type = payload[0] & GSM_CHANNEL_MASK;
    size_t n = payload[2];
    if (n > len - GSM_HEADER_LEN) {
        r.status = SIGNALLING_MALFORMED;
        return r;
    }
    if (type >= sizeof(k_gsm) / sizeof(k_gsm[0])) {
        r.status = SIGNALLING_CHANNEL_SKIPPED;
        return r;
    }
    const channel_row &ch = k_gsm[type];
    const uint8_t *msg = payload + GSM_HEADER_LEN;
    if (ch.sub == GSMTAP_CHANNEL_BCCH || ch.sub == GSMTAP_CHANNEL_CCCH) {
        if (n == 0) {
            r.status = SIGNALLING_MALFORMED;
            return r;
        }
        msg++;
        n--;
    }
    if (n == 0) {
        r.status = SIGNALLING_MALFORMED;
        return r;
    }
    r.status = SIGNALLING_OK;
    r.kind = ch.kind;
    r.msg.type = GSMTAP_TYPE_ABIS;
    r.msg.sub_type = ch.sub;
    r.msg.uplink = (payload[0] & GSM_DOWNLINK) == 0;
    r.msg.payload = msg;
    r.msg.length = n;
    return r;
}
