/* Builders of diag capture bytes, shared by the reader tests and the
 * rlk-replay end-to-end tests. */
#ifndef RLK_REPLAY_TEST_UTIL_H
#define RLK_REPLAY_TEST_UTIL_H

#include <stdint.h>

#include <vector>

#include "diag_capture.h"
#include "hdlc.h"

namespace replay_test {

using bytes = std::vector<uint8_t>;

inline void put_le(bytes *b, uint64_t v, int n)
{
    for (int i = 0; i < n; i++) b->push_back(static_cast<uint8_t>(v >> (8 * i)));
}

inline bytes concat(const std::vector<bytes> &parts)
{
    bytes out;
    for (const bytes &p : parts) out.insert(out.end(), p.begin(), p.end());
    return out;
}

/* The bytes from the log length field on: what a DLF record holds. */
inline bytes inner_log(uint16_t code, uint64_t ts, const bytes &payload)
{
    bytes b;
    put_le(&b, DIAG_LOG_LENGTH_SELF + payload.size(), 2);
    put_le(&b, code, 2);
    put_le(&b, ts, 8);
    return concat({b, payload});
}

/* A log packet (command 0x10) as a frame payload. */
inline bytes log_packet(uint16_t code, uint64_t ts, const bytes &payload)
{
    bytes inner = inner_log(code, ts, payload);
    bytes b = {DIAG_CMD_LOG, 0};
    put_le(&b, inner.size(), 2);
    return concat({b, inner});
}

/* One event record; `truncated` writes a 2-byte timestamp.  The length code
 * follows from the payload size (0, 1, 2, else counted) unless `counted`. */
inline bytes event_record(uint16_t id, uint64_t ts, bool truncated, const bytes &payload, bool counted = false)
{
    uint16_t code = payload.size() <= 2 && !counted ? static_cast<uint16_t>(payload.size()) : 3;
    bytes b;
    put_le(&b, id | (code << DIAG_EVENT_LEN_CODE_SHIFT) | (truncated ? DIAG_EVENT_TRUNCATED_TS : 0), 2);
    put_le(&b, ts, truncated ? 2 : 8);
    if (code == 3) b.push_back(static_cast<uint8_t>(payload.size()));
    return concat({b, payload});
}

/* An event report (command 0x60) of the given records. */
inline bytes event_report(const std::vector<bytes> &records)
{
    bytes body = concat(records);
    bytes b = {DIAG_CMD_EVENT_REPORT};
    put_le(&b, body.size(), 2);
    return concat({b, body});
}

/* `inner` inside a multi-SIM wrapper. */
inline bytes wrapped(uint32_t sub_id, const bytes &inner, uint8_t version = DIAG_MULTI_SIM_VERSION)
{
    bytes b = {DIAG_CMD_MULTI_SIM, version, 0, 0};
    put_le(&b, sub_id, 4);
    return concat({b, inner});
}

inline bytes frame(const bytes &payload)
{
    bytes out;
    hdlc_encode(payload.data(), payload.size(), &out);
    return out;
}

}  // namespace replay_test

#endif
