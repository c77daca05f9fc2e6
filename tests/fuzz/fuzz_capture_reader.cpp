/* Fuzz target of the capture reader: HDLC deframing, DLF records, format
 * detection, the multi-SIM wrapper and the event report splitter, and of
 * the signalling extraction and GSMTAP records of --pcap (every log packet
 * is read as each signalling log).
 *
 * An input is one control byte and a stream:
 *   byte 0  bits 0-1 format (0 auto, 1 HDLC, 2 DLF, 3 auto);
 *           bits 2-7 piece size - 1 (the stream is fed in pieces of that
 *           size; 63 feeds it whole)
 *   byte 1- the capture bytes
 * The stream is then also split as one event report body and parsed as
 * one deframed frame.  Every packet handed over is checked and read whole,
 * so a payload that points outside the input shows up under ASan. */
#include <stddef.h>
#include <stdint.h>

#include <string>

#include "diag_capture.h"
#include "gsmtap_pcap.h"
#include "signalling.h"

namespace {

volatile uint32_t g_sink;

void check_packet(void *, const diag_packet &p)
{
    if (!p.payload || p.sub >= DIAG_SUB_COUNT) __builtin_trap();
    if (p.kind == DIAG_PACKET_EVENT && p.code > DIAG_EVENT_ID_MASK) __builtin_trap();
    uint32_t sum = 0;
    for (size_t i = 0; i < p.length; i++) sum += p.payload[i];
    g_sink = sum;
    if (p.kind != DIAG_PACKET_LOG) return;
    /* The signalling message of a packet must lie inside it. */
    for (uint16_t code : {LOG_LTE_RRC_OTA, LOG_LTE_NAS_EMM_OUT, LOG_WCDMA_RRC_SIGNALLING, LOG_GSM_RR_SIGNALLING}) {
        signalling_result r = signalling_extract(code, p.payload, p.length);
        if (r.status != SIGNALLING_OK) continue;
        if (r.msg.payload < p.payload || r.msg.length > p.length ||
            size_t(r.msg.payload - p.payload) > p.length - r.msg.length) {
            __builtin_trap();
        }
        std::string record;
        if (!pcap_append_gsmtap(&record, 0, 0, r.msg)) __builtin_trap();
        g_sink = static_cast<uint32_t>(record.size());
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (size == 0) return 0;
    const uint8_t *stream = data + 1;
    size_t len = size - 1;
    size_t piece = (data[0] >> 2) + 1u;
    if (piece == 64) piece = len ? len : 1;
    const diag_capture_format formats[] = {DIAG_FORMAT_AUTO, DIAG_FORMAT_HDLC, DIAG_FORMAT_DLF, DIAG_FORMAT_AUTO};

    diag_capture_reader reader(formats[data[0] & 3], check_packet, nullptr);
    for (size_t at = 0; at < len; at += piece) reader.feed(stream + at, len - at < piece ? len - at : piece);
    reader.finish();
    uint64_t skipped = 0;
    for (uint64_t s : reader.counters().skipped) skipped += s;
    if (reader.counters().bytes != len || reader.counters().frames + skipped > len + 1) __builtin_trap();

    diag_frame_state state;
    diag_split_event_records(stream, len, 0, &state, check_packet, nullptr);
    diag_parse_frame(stream, len, &state, check_packet, nullptr);
    return 0;
}
