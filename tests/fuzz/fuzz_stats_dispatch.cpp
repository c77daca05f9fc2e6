/* Fuzz target of the diag statistics dispatchers.
 *
 * An input is a sequence of packets, each a 6-byte header and its payload:
 *   byte 0  flags: bit 0 event (else log); bit 1 code is an index into the
 *           registered parsers of that kind (else the code itself); bit 2
 *           null payload; bit 3 negative length
 *   byte 1-2 code or index, little-endian
 *   byte 3  subscription
 *   byte 4-5 payload length, little-endian (cut to what the input holds)
 * Packets run in order through one process, so state kept between packets
 * (RRC state, version counter) is exercised too. */
#include <stddef.h>
#include <stdint.h>
#include <string.h>

#include <vector>

#include "modem_stats_dispatch.h"

namespace {

constexpr size_t FUZZ_HEADER_LEN = 6;
constexpr uint8_t FUZZ_FLAG_EVENT = 0x01;
constexpr uint8_t FUZZ_FLAG_INDEX = 0x02;
constexpr uint8_t FUZZ_FLAG_NULL_PAYLOAD = 0x04;
constexpr uint8_t FUZZ_FLAG_NEGATIVE_LENGTH = 0x08;

uint16_t pick_code(uint8_t flags, uint16_t raw)
{
    if (!(flags & FUZZ_FLAG_INDEX)) return raw;
    modem_stats_parser_table table =
        (flags & FUZZ_FLAG_EVENT) ? modem_stats_event_parser_table() : modem_stats_log_parser_table();
    if (table.count == 0) return raw;
    return table.rows[raw % table.count].code;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    size_t at = 0;
    while (size - at >= FUZZ_HEADER_LEN) {
        const uint8_t *h = data + at;
        uint8_t flags = h[0];
        uint16_t code = pick_code(flags, static_cast<uint16_t>(h[1] | (h[2] << 8)));
        uint8_t sub = h[3];
        size_t len = static_cast<size_t>(h[4] | (h[5] << 8));
        at += FUZZ_HEADER_LEN;
        if (len > size - at) len = size - at;
        /* A copy of exactly `len` bytes, so that reading past it is seen. */
        std::vector<uint8_t> payload(data + at, data + at + len);
        at += len;
        const uint8_t *p = (flags & FUZZ_FLAG_NULL_PAYLOAD) ? nullptr : payload.data();
        int32_t length = (flags & FUZZ_FLAG_NEGATIVE_LENGTH) ? -static_cast<int32_t>(len) - 1
                                                             : static_cast<int32_t>(len);
        if (flags & FUZZ_FLAG_EVENT) {
            modem_stats_diag_process_event_ex(length, code, sub, p);
        } else {
            modem_stats_diag_process_log_ex(length, code, sub, p);
        }
    }
    return 0;
}
