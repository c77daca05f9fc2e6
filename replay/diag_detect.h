/* Tells HDLC-framed captures from DLF ones by scoring a bounded prefix of
 * an input under both readings:
 *
 *   HDLC  bytes covered by frames whose CRC checks out;
 *   DLF   bytes covered by the records that chain from the first byte
 *         while each one looks like a log: a length that holds the record
 *         header, a code of a known log equipment group and a timestamp
 *         before 2116 (2^32 seconds after the 1980 epoch).
 *
 * The reading that covers more bytes wins; neither (a run of flags, noise)
 * reads as HDLC, where nothing is then decoded.  The detector is fed the
 * prefix piece by piece and scores incrementally, so each byte is looked at
 * once whatever the split.  It decides early when the evidence cannot turn:
 * HDLC after a few valid frames once the DLF chain has broken (or before
 * its first record is whole), DLF after a run of chained records with no
 * valid frame; else at the end of the window or of the input. */
#ifndef RLK_REPLAY_DIAG_DETECT_H
#define RLK_REPLAY_DIAG_DETECT_H

#include <stddef.h>
#include <stdint.h>

#include <vector>

#include "hdlc.h"

enum diag_capture_format : uint8_t {
    DIAG_FORMAT_AUTO = 0,
    DIAG_FORMAT_HDLC = 1,
    DIAG_FORMAT_DLF = 2,
};

/* Bytes of an input scored at most: room for a frame over the 64 KiB limit
 * and many frames after it. */
constexpr size_t DIAG_DETECT_WINDOW = 1 << 20;
/* Evidence that decides before the window is full: CRC-valid frames for
 * HDLC (once the DLF reading has broken); chained records (with no valid
 * frame) for DLF. */
constexpr uint32_t DIAG_DETECT_HDLC_FRAMES = 2;
constexpr uint32_t DIAG_DETECT_DLF_RECORDS = 16;
constexpr size_t DIAG_DLF_LENGTH_LEN = 2;
/* Bytes that show whether a record may start somewhere: length and code. */
constexpr size_t DIAG_DLF_HEADER_CHECK = 4;
/* Length, code and timestamp of a DLF record. */
constexpr size_t DIAG_DLF_HEADER_LEN = 12;
/* Equipment groups of log codes (the code's top nibble): 1 common and
 * 1x, 4 WCDMA, 5 GSM, 7 UMTS NAS, 0xB LTE and NR. */
constexpr unsigned DIAG_LOG_GROUP_SHIFT = 12;
constexpr uint32_t DIAG_LOG_GROUPS = (1u << 0x1) | (1u << 0x4) | (1u << 0x5) | (1u << 0x7) | (1u << 0xB);

/* True when the 16-bit log code belongs to a known equipment group. */
bool diag_log_code_plausible(uint16_t code);

class diag_format_detector {
public:
    /* Scores the next `len` bytes of the input, which start at `data`;
     * `held` is every byte fed so far, these included (the caller's
     * window: the DLF chain reads its records there). */
    void feed(const uint8_t *held, size_t held_len, size_t len);
    /* The format once decided; AUTO while more bytes could change it.
     * `complete`: the bytes fed are the whole input or a full window. */
    diag_capture_format decide(bool complete) const;

private:
    static void on_frame(void *ctx, hdlc_status status, const uint8_t *payload, size_t len);
    void chain_dlf(const uint8_t *held, size_t held_len);

    hdlc_decoder hdlc_;
    uint32_t hdlc_valid_ = 0;
    uint64_t hdlc_covered_ = 0; /* bytes of CRC-valid frames */
    uint32_t dlf_records_ = 0;
    size_t dlf_at_ = 0;         /* where the next DLF record starts */
    bool dlf_broken_ = false;   /* a record there does not look like a log */
};

/* The format of an input that starts with `len` bytes; `complete` when
 * they are the whole input or a full window.  AUTO when more bytes are
 * needed to decide. */
diag_capture_format diag_capture_detect(const uint8_t *data, size_t len, bool complete);

#endif
