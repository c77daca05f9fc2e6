#include "diag_packet.h"

namespace {

/* Stands in for the payload of a record without one: never null. */
const uint8_t k_no_payload[1] = {0};

const char *const k_skip_names[DIAG_SKIP_REASON_COUNT] = {
    "bad CRC",
    "bad escape",
    "too short",
    "too long",
    "truncated at end of input",
    "malformed log packet",
    "malformed event report",
    "malformed multi-SIM wrapper",
    "subscription out of range",
    "malformed DLF record",
};

/* Subscription of a multi-SIM wrapper's 1-based id: 0 and all ones mean
 * the first; false for ids beyond the second. */
bool wrapper_sub(uint32_t id, uint8_t *sub)
{
    if (id == 0 || id == UINT32_MAX) {
        *sub = 0;
        return true;
    }
    if (id > DIAG_SUB_COUNT) return false;
    *sub = static_cast<uint8_t>(id - 1);
    return true;
}

/* Size of the event record at `p` (`left` bytes available), or 0 when it
 * does not fit. */
size_t event_record_size(const uint8_t *p, size_t left, size_t *payload_at, size_t *payload_len)
{
    if (left < 2) return 0;
    uint16_t word = diag_le16(p);
    size_t at = 2 + ((word & DIAG_EVENT_TRUNCATED_TS) ? DIAG_EVENT_TRUNCATED_TS_LEN : DIAG_EVENT_FULL_TS_LEN);
    size_t len = 0;
    switch ((word >> DIAG_EVENT_LEN_CODE_SHIFT) & DIAG_EVENT_LEN_CODE_MASK) {
    case DIAG_EVENT_LEN_CODE_NONE: len = 0; break;
    case DIAG_EVENT_LEN_CODE_ONE: len = 1; break;
    case DIAG_EVENT_LEN_CODE_TWO: len = 2; break;
    default:
        if (left < at + 1) return 0;
        len = p[at];
        at++;
        break;
    }
    if (left < at + len) return 0;
    *payload_at = at;
    *payload_len = len;
    return at + len;
}

diag_skip_reason parse_unwrapped(const uint8_t *frame, size_t len, uint8_t sub, diag_frame_state *state,
                                 diag_packet_fn fn, void *ctx)
{
    if (len == 0) return DIAG_SKIP_TOO_SHORT;
    switch (frame[0]) {
    case DIAG_CMD_LOG:
        if (len < DIAG_LOG_HEADER_LEN) return DIAG_SKIP_BAD_LOG;
        return diag_parse_inner_log(frame + DIAG_LOG_LENGTH_AT, len - DIAG_LOG_LENGTH_AT, sub, state, fn, ctx)
                   ? DIAG_SKIP_REASON_COUNT
                   : DIAG_SKIP_BAD_LOG;
    case DIAG_CMD_EVENT_REPORT: {
        if (len < DIAG_EVENT_REPORT_HEADER_LEN) return DIAG_SKIP_BAD_EVENT;
        size_t body = diag_le16(frame + 1);
        if (body > len - DIAG_EVENT_REPORT_HEADER_LEN) return DIAG_SKIP_BAD_EVENT;
        return diag_split_event_records(frame + DIAG_EVENT_REPORT_HEADER_LEN, body, sub, state, fn, ctx)
                   ? DIAG_SKIP_REASON_COUNT
                   : DIAG_SKIP_BAD_EVENT;
    }
    case DIAG_CMD_MULTI_SIM:
        return DIAG_SKIP_BAD_WRAPPER; /* a wrapper inside a wrapper */
    default:
        state->other_frames[frame[0]]++;
        return DIAG_SKIP_REASON_COUNT;
    }
}

}  // namespace

const char *diag_skip_reason_name(diag_skip_reason reason)
{
    return reason < DIAG_SKIP_REASON_COUNT ? k_skip_names[reason] : "?";
}

uint64_t diag_expand_truncated_ts(uint64_t last_full, uint16_t ts16)
{
    constexpr uint64_t span = DIAG_EVENT_TRUNCATED_TS_SPAN;
    uint64_t t = (last_full & ~(span - 1)) | (static_cast<uint64_t>(ts16) << DIAG_EVENT_TRUNCATED_TS_SHIFT);
    /* The record may lie just across a wrap of the 24 bits, either way. */
    if (t > last_full && t - last_full > span / 2 && t >= span) return t - span;
    if (t < last_full && last_full - t > span / 2 && t <= UINT64_MAX - span) return t + span;
    return t;
}

bool diag_parse_inner_log(const uint8_t *log, size_t len, uint8_t sub, diag_frame_state *state, diag_packet_fn fn,
                          void *ctx)
{
    if (len < DIAG_LOG_LENGTH_SELF) return false;
    size_t log_len = diag_le16(log);
    if (log_len < DIAG_LOG_LENGTH_SELF || log_len > len) return false;
    diag_packet pkt;
    pkt.kind = DIAG_PACKET_LOG;
    pkt.code = diag_le16(log + 2);
    pkt.sub = sub;
    pkt.ts_truncated = false;
    pkt.ts_short = 0;
    pkt.timestamp = diag_le64(log + 4);
    state->last_full_ts = pkt.timestamp;
    pkt.length = log_len - DIAG_LOG_LENGTH_SELF;
    pkt.payload = pkt.length ? log + DIAG_LOG_LENGTH_SELF : k_no_payload;
    fn(ctx, pkt);
    return true;
}

bool diag_split_event_records(const uint8_t *body, size_t len, uint8_t sub, diag_frame_state *state,
                              diag_packet_fn fn, void *ctx)
{
    size_t at = 0;
    size_t payload_at = 0;
    size_t payload_len = 0;
    while (at < len) {
        size_t n = event_record_size(body + at, len - at, &payload_at, &payload_len);
        if (n == 0) return false;
        at += n;
    }
    for (at = 0; at < len;) {
        const uint8_t *rec = body + at;
        at += event_record_size(rec, len - at, &payload_at, &payload_len);
        uint16_t word = diag_le16(rec);
        diag_packet pkt;
        pkt.kind = DIAG_PACKET_EVENT;
        pkt.code = word & DIAG_EVENT_ID_MASK;
        pkt.sub = sub;
        pkt.ts_truncated = (word & DIAG_EVENT_TRUNCATED_TS) != 0;
        if (pkt.ts_truncated) {
            pkt.ts_short = diag_le16(rec + 2);
        } else {
            pkt.ts_short = 0;
            state->last_full_ts = diag_le64(rec + 2);
        }
        pkt.timestamp = pkt.ts_truncated ? diag_expand_truncated_ts(state->last_full_ts, pkt.ts_short)
                                         : state->last_full_ts;
        pkt.length = payload_len;
        pkt.payload = payload_len ? rec + payload_at : k_no_payload;
        fn(ctx, pkt);
    }
    return true;
}

diag_skip_reason diag_parse_frame(const uint8_t *frame, size_t len, diag_frame_state *state, diag_packet_fn fn,
                                  void *ctx)
{
    if (len == 0 || frame[0] != DIAG_CMD_MULTI_SIM) return parse_unwrapped(frame, len, 0, state, fn, ctx);
    if (len < DIAG_MULTI_SIM_HEADER_LEN || frame[1] != DIAG_MULTI_SIM_VERSION) return DIAG_SKIP_BAD_WRAPPER;
    uint8_t sub = 0;
    if (!wrapper_sub(diag_le32(frame + 4), &sub)) return DIAG_SKIP_BAD_SUB;
    return parse_unwrapped(frame + DIAG_MULTI_SIM_HEADER_LEN, len - DIAG_MULTI_SIM_HEADER_LEN, sub, state, fn, ctx);
}
