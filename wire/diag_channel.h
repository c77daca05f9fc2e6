/* How the host diag library and rlk-modemd use a DIAG connection.
 *
 * Every packet after the hello is a diag_envelope (modemd_proto.h) followed
 * by HDLC frames (hdlc.h); a frame never spans two packets, and the packets
 * built here carry exactly one frame.  The envelope says what the frame is:
 *
 *   data_type                 direction  proc          tag            frame
 *   USER_SPACE_RAW_DATA_TYPE  to sim     target proc   0              raw diag command
 *   USER_SPACE_RAW_DATA_TYPE  to lib     answering     0              its response
 *   DCI_PKT_TYPE              to sim     client proc   request tag    raw diag command
 *   DCI_PKT_TYPE              to lib     client proc   tag | FINAL?   one piece of the response
 *   DCI_DATA_TYPE             to sim     proc asked    session op     op arguments
 *   DCI_DATA_TYPE             to lib     proc asked    session op     u32 status, op answer
 *   DCI_DATA_TYPE             to lib     client proc   record type    one log or event record
 *
 * Request tags are chosen by the library, from 1 up to DIAG_TAG_MAX.  A DCI
 * response may come in several pieces; each carries the request tag, and
 * the last one also DIAG_TAG_FINAL.  Stream records carry the DCI record
 * type as a 32-bit word (DCI_LOG_TYPE -1, DCI_EVENT_TYPE -2): they can never
 * be mistaken for a session op.  A log record is the log packet without
 * its 0x10 command byte (u16 length, u16 log code, u64 timestamp, payload);
 * an event record is what the simulator was given; neither is changed.
 *
 * Session ops are requests of the library to the simulator; each gets
 * exactly one answer with the same op, in order.  The answer's frame starts
 * with a u32 status (DIAG_SESSION_OK, or DIAG_SESSION_BAD_PROC for a
 * processor that is not there).  All integers are little-endian. */
#ifndef RLK_WIRE_DIAG_CHANNEL_H
#define RLK_WIRE_DIAG_CHANNEL_H

#include <stddef.h>
#include <stdint.h>

#include <vector>

#include "diag_lsm.h"
#include "hdlc.h"
#include "modemd_proto.h"

#define DIAG_TAG_FINAL 0x80000000u
#define DIAG_TAG_MAX 0x7FFFFFFFu

/* Stream record types as they appear in the envelope's tag. */
#define DIAG_STREAM_LOG_TAG 0xFFFFFFFFu   /* DCI_LOG_TYPE (-1) */
#define DIAG_STREAM_EVENT_TAG 0xFFFFFFFEu /* DCI_EVENT_TYPE (-2) */

enum diag_session_op : uint32_t {
    /* No arguments.  Answer: u16 remote-processor mask (bit n = proc n). */
    DIAG_SESSION_REMOTE_MASK = 1,
    /* No arguments.  Answer: u16 DCI peripheral list of `proc`. */
    DIAG_SESSION_DCI_SUPPORT = 2,
    /* No arguments.  The connection now has a DCI client on `proc` and
     * receives its stream records.  Answer: nothing more. */
    DIAG_SESSION_DCI_REGISTER = 3,
    /* No arguments.  The DCI client on `proc` is gone.  Answer: nothing. */
    DIAG_SESSION_DCI_RELEASE = 4,
};

enum diag_session_status : uint32_t {
    DIAG_SESSION_OK = 0,
    DIAG_SESSION_BAD_PROC = 1,
    DIAG_SESSION_BAD_OP = 2,
};

#define DIAG_ENVELOPE_LEN 12
static_assert(sizeof(diag_envelope) == DIAG_ENVELOPE_LEN, "diag_envelope is three packed words");

/* Builds one packet: the envelope, then the frame of `payload`. */
void diag_packet_build(uint32_t data_type, int32_t proc, uint32_t tag, const uint8_t *payload, size_t len,
                       std::vector<uint8_t> *out);

/* A received packet: its envelope and the frames that followed it. */
struct diag_packet {
    diag_envelope env;
    std::vector<hdlc_frame> frames;
};

/* Splits a packet into envelope and frames; false when it is shorter than
 * an envelope.  Frames that failed to decode are kept with their status. */
bool diag_packet_parse(const uint8_t *data, size_t len, diag_packet *out);

/* Little-endian helpers for the session answers and the command layouts. */
inline void diag_put_u16(std::vector<uint8_t> *out, uint16_t v)
{
    out->push_back(uint8_t(v));
    out->push_back(uint8_t(v >> 8));
}
inline void diag_put_u32(std::vector<uint8_t> *out, uint32_t v)
{
    for (int i = 0; i < 4; i++) out->push_back(uint8_t(v >> (8 * i)));
}
inline uint16_t diag_get_u16(const uint8_t *p) { return uint16_t(p[0] | p[1] << 8); }
inline uint32_t diag_get_u32(const uint8_t *p)
{
    return uint32_t(p[0]) | uint32_t(p[1]) << 8 | uint32_t(p[2]) << 16 | uint32_t(p[3]) << 24;
}

#endif
