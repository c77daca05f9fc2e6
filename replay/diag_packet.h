/* Diag packets inside one deframed diag frame: log packets, the records of
 * an event report, and the multi-SIM wrapper around either.
 *
 * Log packet (command 0x10), little-endian:
 *
 *   off 0  u8  0x10
 *   off 1  u8  pending count
 *   off 2  u16 length of everything from offset 4
 *   off 4  u16 log length = 12 + payload length (counts itself)
 *   off 6  u16 log code
 *   off 8  u64 timestamp
 *   off 16     payload
 *
 * Event report (command 0x60): u8 0x60, u16 length of the records, then
 * records packed back to back.  One record:
 *
 *   u16 word: bits 0-11 event id, bit 12 reserved, bits 13-14 payload
 *             length code, bit 15 truncated timestamp
 *   timestamp: u64, or u16 when bit 15 is set: bits 8-23 of the full
 *             timestamp (units of about 4.9 us, a 0.32 s span), the rest
 *             taken from the last full timestamp of the stream
 *   payload:  code 0 none, 1 one byte, 2 two bytes,
 *             3 a u8 length L, then L bytes
 *
 * Multi-SIM wrapper (command 0x98): u8 0x98, u8 wrapper version (1),
 * u16 reserved, u32 subscription (1-based; 0 and 0xFFFFFFFF mean the first),
 * then one unwrapped diag packet.
 *
 * Timestamps: the upper 48 bits count 1.25 ms ticks since 1980-01-06
 * 00:00:00; the whole value divided by 52,428,800 gives seconds. */
#ifndef RLK_REPLAY_DIAG_PACKET_H
#define RLK_REPLAY_DIAG_PACKET_H

#include <stddef.h>
#include <stdint.h>

constexpr uint8_t DIAG_CMD_LOG = 0x10;
constexpr uint8_t DIAG_CMD_EVENT_REPORT = 0x60;
constexpr uint8_t DIAG_CMD_MULTI_SIM = 0x98;

constexpr size_t DIAG_LOG_HEADER_LEN = 16;
/* Offset of the log length in a log packet; the log length counts itself,
 * the code and the timestamp. */
constexpr size_t DIAG_LOG_LENGTH_AT = 4;
constexpr size_t DIAG_LOG_LENGTH_SELF = 12;
constexpr size_t DIAG_EVENT_REPORT_HEADER_LEN = 3;
constexpr size_t DIAG_MULTI_SIM_HEADER_LEN = 8;
constexpr uint8_t DIAG_MULTI_SIM_VERSION = 1;

constexpr uint16_t DIAG_EVENT_ID_MASK = 0x0FFF;
constexpr unsigned DIAG_EVENT_LEN_CODE_SHIFT = 13;
constexpr uint16_t DIAG_EVENT_LEN_CODE_MASK = 0x3;
constexpr uint16_t DIAG_EVENT_TRUNCATED_TS = 0x8000;
constexpr uint8_t DIAG_EVENT_LEN_CODE_NONE = 0;
constexpr uint8_t DIAG_EVENT_LEN_CODE_ONE = 1;
constexpr uint8_t DIAG_EVENT_LEN_CODE_TWO = 2;
constexpr uint8_t DIAG_EVENT_LEN_CODE_COUNTED = 3;
constexpr size_t DIAG_EVENT_FULL_TS_LEN = 8;
constexpr size_t DIAG_EVENT_TRUNCATED_TS_LEN = 2;
/* Bits of the full timestamp a truncated one carries: 8 to 23. */
constexpr unsigned DIAG_EVENT_TRUNCATED_TS_SHIFT = 8;
constexpr uint64_t DIAG_EVENT_TRUNCATED_TS_SPAN = 1ull << 24;

/* Subscriptions the statistics dispatchers know: 0 and 1. */
constexpr uint32_t DIAG_SUB_COUNT = 2;

/* Ticks of the timestamp per second, and the Unix time of its epoch
 * (1980-01-06 00:00:00). */
constexpr uint64_t DIAG_TS_UNITS_PER_SECOND = 52428800;
constexpr int64_t DIAG_TS_EPOCH_UNIX = 315964800;

enum diag_packet_kind : uint8_t {
    DIAG_PACKET_LOG = 0,
    DIAG_PACKET_EVENT = 1,
};

/* One log packet or one event record.  `payload` points into the frame
 * and is valid only during the callback that receives it. */
struct diag_packet {
    diag_packet_kind kind;
    uint16_t code;          /* log code, or event id (0..4095) */
    uint8_t sub;            /* subscription: 0 or 1 */
    bool ts_truncated;      /* an event record's 2-byte timestamp */
    uint16_t ts_short;      /* that 2-byte value */
    uint64_t timestamp;     /* the full timestamp (a truncated one completed
                               from the last full one, nearest in time) */
    const uint8_t *payload; /* never null, even when `length` is 0 */
    size_t length;
};

/* Why a frame (or a stretch of input) was skipped. */
enum diag_skip_reason : uint8_t {
    DIAG_SKIP_BAD_CRC = 0,  /* the CRC does not match */
    DIAG_SKIP_BAD_ESCAPE,   /* an escape byte right before the flag */
    DIAG_SKIP_TOO_SHORT,    /* shorter than a CRC, or an empty packet */
    DIAG_SKIP_TOO_LONG,     /* longer than the largest frame kept */
    DIAG_SKIP_TRUNCATED,    /* the input ended inside a frame or record */
    DIAG_SKIP_BAD_LOG,      /* a log packet whose lengths do not fit */
    DIAG_SKIP_BAD_EVENT,    /* an event report whose records do not fit */
    DIAG_SKIP_BAD_WRAPPER,  /* a multi-SIM wrapper too short, of an unknown
                               version or around another wrapper */
    DIAG_SKIP_BAD_SUB,      /* a subscription beyond the second */
    DIAG_SKIP_BAD_RECORD,   /* a DLF record length below its header */
    DIAG_SKIP_REASON_COUNT,
};

/* Short text of a reason, for the summary. */
const char *diag_skip_reason_name(diag_skip_reason reason);

/* Receives the packets of a frame. */
typedef void (*diag_packet_fn)(void *ctx, const diag_packet &packet);

/* Values of a command byte. */
constexpr size_t DIAG_COMMAND_VALUES = 256;

/* What the frame parser keeps between frames and reports. */
struct diag_frame_state {
    uint64_t last_full_ts = 0;                      /* stands in for truncated event timestamps */
    uint64_t other_frames[DIAG_COMMAND_VALUES] = {}; /* frames of other commands, by command */
};

/* The full timestamp of a truncated one (`ts16`, bits 8-23): the value
 * with those bits nearest to `last_full`, the last full timestamp. */
uint64_t diag_expand_truncated_ts(uint64_t last_full, uint16_t ts16);

/* Hands every packet of one unescaped frame (CRC removed) to `fn`.
 * Returns DIAG_SKIP_REASON_COUNT when the frame was well formed (a frame of
 * another command counts in state->other_frames), else the reason it was
 * skipped; a skipped frame hands over nothing. */
diag_skip_reason diag_parse_frame(const uint8_t *frame, size_t len, diag_frame_state *state, diag_packet_fn fn,
                                  void *ctx);

/* Splits the records of an event report body (the bytes after the 3-byte
 * header, `len` of them as its length field says) for subscription `sub`.
 * All records are checked before the first is handed over: returns false,
 * handing over nothing, when one does not fit. */
bool diag_split_event_records(const uint8_t *body, size_t len, uint8_t sub, diag_frame_state *state,
                              diag_packet_fn fn, void *ctx);

/* Hands over one log whose bytes start at its log length field (the form
 * DLF records have); `len` is the bytes available.  False when the log
 * length is below 12 or beyond `len`.  Its timestamp becomes the state's
 * last full one. */
bool diag_parse_inner_log(const uint8_t *log, size_t len, uint8_t sub, diag_frame_state *state, diag_packet_fn fn,
                          void *ctx);

static inline uint16_t diag_le16(const uint8_t *p)
{
    return static_cast<uint16_t>(p[0] | (p[1] << 8));
}

static inline uint32_t diag_le32(const uint8_t *p)
{
    return static_cast<uint32_t>(p[0]) | (static_cast<uint32_t>(p[1]) << 8) | (static_cast<uint32_t>(p[2]) << 16) |
           (static_cast<uint32_t>(p[3]) << 24);
}

static inline uint64_t diag_le64(const uint8_t *p)
{
    return static_cast<uint64_t>(diag_le32(p)) | (static_cast<uint64_t>(diag_le32(p + 4)) << 32);
}

#endif
