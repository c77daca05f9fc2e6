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

#include <algorithm>
#include <vector>

#include "modem_stats_dispatch.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    for (size_t at = 0; size - at >= 6;) {
        const uint8_t *h = data + at;
        bool event = h[0] & 0x01;
        uint16_t code = static_cast<uint16_t>(h[1] | (h[2] << 8));
        modem_stats_parser_table table = event ? modem_stats_event_parser_table() : modem_stats_log_parser_table();
        if ((h[0] & 0x02) && table.count) code = table.rows[code % table.count].code;
        size_t len = std::min(static_cast<size_t>(h[4] | (h[5] << 8)), size - at - 6);
        at += 6;
        /* A copy of exactly `len` bytes, so that reading past it is seen. */
        std::vector<uint8_t> payload(data + at, data + at + len);
        at += len;
        const uint8_t *p = (h[0] & 0x04) ? nullptr : payload.data();
        int32_t length = (h[0] & 0x08) ? -static_cast<int32_t>(len) - 1 : static_cast<int32_t>(len);
        (event ? modem_stats_diag_process_event_ex : modem_stats_diag_process_log_ex)(length, code, h[3], p);
    }
    return 0;
}
