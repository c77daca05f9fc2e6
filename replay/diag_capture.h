/* Streaming reader of diag captures: turns the bytes of a capture, in
 * pieces of any size, into diag packets (diag_packet.h).
 *
 * Formats:
 *   HDLC  .qmdl, .mi2log, a dump of a diag serial port: frames of escaped
 *         payload and CRC-16/X.25 closed by 0x7E (wire/hdlc.h).  A frame
 *         with a bad CRC, a bad escape or no end is counted and skipped;
 *         decoding resynchronises on the next flag.
 *   DLF   log records without framing: u16 log length (counting itself),
 *         u16 code, u64 timestamp, payload.  A length below the record
 *         header is counted once and the reader moves on byte by byte until
 *         a plausible record starts (a length that holds the header and a
 *         code of a known log group).
 *   AUTO  decided per input from a bounded prefix scored under both
 *         readings (diag_detect.h): CRC-valid frames against DLF records
 *         that chain and look like logs.
 *
 * Memory stays bounded whatever the input size: the reader keeps at most
 * one frame or record in progress (64 KiB) and the detection window
 * (1 MiB). */
#ifndef RLK_REPLAY_DIAG_CAPTURE_H
#define RLK_REPLAY_DIAG_CAPTURE_H

#include <stddef.h>
#include <stdint.h>

#include <vector>

#include "diag_detect.h"
#include "diag_packet.h"
#include "hdlc.h"

/* "auto", "hdlc" or "dlf". */
const char *diag_capture_format_name(diag_capture_format format);

struct diag_capture_counters {
    uint64_t bytes = 0;                               /* bytes fed */
    uint64_t frames = 0;                              /* well-formed frames or DLF records */
    uint64_t skipped[DIAG_SKIP_REASON_COUNT] = {};    /* frames skipped, by reason */
};

class diag_capture_reader {
public:
    /* Packets go to `fn` with `ctx`, in input order. */
    diag_capture_reader(diag_capture_format format, diag_packet_fn fn, void *ctx);

    /* Reads the next `len` bytes of the current input. */
    void feed(const uint8_t *data, size_t len);
    /* Ends the current input: a frame or record in progress counts as
     * truncated.  The next feed starts a new input (detected afresh when
     * the reader was made for AUTO). */
    void finish();

    /* Format of the current input; AUTO while still undecided. */
    diag_capture_format format() const { return current_; }
    const diag_capture_counters &counters() const { return counters_; }
    /* Frames of commands other than logs, events and the wrapper. */
    const uint64_t *other_frames() const { return state_.other_frames; }

private:
    static void on_hdlc_frame(void *ctx, hdlc_status status, const uint8_t *payload, size_t len);
    void take_frame(const uint8_t *payload, size_t len);
    void skip(diag_skip_reason reason) { counters_.skipped[reason]++; }
    void feed_format(const uint8_t *data, size_t len);
    void feed_dlf(const uint8_t *data, size_t len);
    void take_dlf_record(const uint8_t *record, size_t len);
    bool dlf_plausible(const uint8_t *record) const;
    void dlf_bad_start();
    void detect(bool at_end);

    diag_capture_format wanted_;
    diag_capture_format current_;
    diag_packet_fn fn_;
    void *ctx_;
    diag_capture_counters counters_;
    diag_frame_state state_;
    hdlc_decoder hdlc_;
    diag_format_detector detector_;
    std::vector<uint8_t> window_;  /* bytes held while the format is undecided */
    std::vector<uint8_t> partial_; /* a DLF record split across feeds */
    bool dlf_resyncing_ = false;
};

#endif
