/* Signalling messages inside diag log packets, as GSMTAP messages.
 *
 * One extraction unit per family fills a gsmtap_message from a log
 * packet's payload (the bytes after the 12-byte log header):
 *   signalling_lte.cpp   LTE RRC OTA 0xB0C0, LTE NAS plain OTA 0xB0E2,
 *                        0xB0E3, 0xB0EC, 0xB0ED
 *   signalling_umts.cpp  WCDMA RRC 0x412F, GSM RR signalling 0x512F
 * Layouts and versions are in docs/replay.md.  A version without a known
 * layout is refused, never guessed; a channel type without a GSMTAP
 * counterpart is skipped; lengths that do not fit make the packet
 * malformed.  The message points into the payload. */
#ifndef RLK_REPLAY_SIGNALLING_H
#define RLK_REPLAY_SIGNALLING_H

#include <stddef.h>
#include <stdint.h>

#include "gsmtap_pcap.h"

constexpr uint16_t LOG_LTE_RRC_OTA = 0xB0C0;
constexpr uint16_t LOG_LTE_NAS_ESM_IN = 0xB0E2;
constexpr uint16_t LOG_LTE_NAS_ESM_OUT = 0xB0E3;
constexpr uint16_t LOG_LTE_NAS_EMM_IN = 0xB0EC;
constexpr uint16_t LOG_LTE_NAS_EMM_OUT = 0xB0ED;
constexpr uint16_t LOG_WCDMA_RRC_SIGNALLING = 0x412F;
constexpr uint16_t LOG_GSM_RR_SIGNALLING = 0x512F;
/* NR RRC OTA: counted, not written (no GSMTAP type in the Wireshark the
 * project targets; see docs/replay.md). */
constexpr uint16_t LOG_NR_RRC_OTA = 0xB821;

enum signalling_status : uint8_t {
    SIGNALLING_OK = 0,          /* `msg` describes the message */
    SIGNALLING_NONE,            /* the code carries no signalling we write */
    SIGNALLING_VERSION_REFUSED, /* a version without a known layout */
    SIGNALLING_MALFORMED,       /* too short, or a length that does not fit */
    SIGNALLING_CHANNEL_SKIPPED, /* a channel type with no GSMTAP counterpart */
    SIGNALLING_NO_GSMTAP,       /* a message of a protocol GSMTAP does not carry */
    SIGNALLING_STATUS_COUNT,
};

/* What one log packet gave. */
struct signalling_result {
    signalling_status status = SIGNALLING_NONE;
    gsmtap_message msg;
    const char *kind = nullptr; /* SIGNALLING_OK: e.g. "LTE RRC DL-DCCH" */
    int32_t version = -1;       /* the packet's layout version, -1 when it has none */
};

/* The signalling message of the log packet `code`, or why there is none. */
signalling_result signalling_extract(uint16_t code, const uint8_t *payload, size_t len);

/* Short text of a status, for the summary. */
const char *signalling_status_name(signalling_status status);

/* The family units. */
signalling_result signalling_lte_rrc(const uint8_t *payload, size_t len);
signalling_result signalling_lte_nas(uint16_t code, const uint8_t *payload, size_t len);
signalling_result signalling_wcdma_rrc(const uint8_t *payload, size_t len);
signalling_result signalling_gsm_rr(const uint8_t *payload, size_t len);

#endif
