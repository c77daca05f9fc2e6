/* HDLC-like framing of diag packets, blind to what the packets say.
 *
 *   frame = escape(payload ‖ crc16_le) ‖ 0x7E
 *
 * The CRC is CRC-16/X.25 (reflected polynomial 0x8408, initial value
 * 0xFFFF, final complement) over the unescaped payload, stored low byte
 * first.  Escaping turns every 0x7E or 0x7D of the payload or the CRC into
 * 0x7D followed by the byte XOR 0x20.  The encoder writes no leading 0x7E;
 * the decoder accepts one (and any run of flags: empty frames are skipped).
 *
 * The decoder is streaming: bytes may arrive in any split, one buffer may
 * hold several frames, and a frame in progress is kept until its flag
 * arrives.  Each finished frame is reported with a status; a bad frame is
 * reported and dropped, and decoding goes on with the next one.
 *
 * Frames can be collected into a vector or handed one by one to a callback;
 * the callback form allocates nothing per frame and, for a frame that lies
 * whole and without escapes in the buffer fed, passes a pointer into that
 * buffer (capture replay decodes hundreds of MB/s this way). */
#ifndef RLK_WIRE_HDLC_H
#define RLK_WIRE_HDLC_H

#include <stddef.h>
#include <stdint.h>

#include <vector>

#define HDLC_FLAG 0x7E
#define HDLC_ESCAPE 0x7D
#define HDLC_ESCAPE_XOR 0x20
#define HDLC_CRC_LEN 2
/* Largest unescaped frame (payload and CRC) the decoder keeps; a longer
 * one is reported as HDLC_TOO_LONG and skipped up to its flag. */
#define HDLC_MAX_FRAME 65536

enum hdlc_status {
    HDLC_OK = 0,
    HDLC_BAD_CRC,      /* the CRC does not match the payload */
    HDLC_TOO_SHORT,    /* fewer bytes than a CRC before the flag */
    HDLC_BAD_ESCAPE,   /* an escape byte directly before the flag */
    HDLC_TOO_LONG,     /* more than HDLC_MAX_FRAME bytes */
    HDLC_UNTERMINATED, /* bytes left without a flag (hdlc_decoder::finish) */
};

/* CRC-16/X.25 of `len` bytes. */
uint16_t hdlc_crc16(const uint8_t *data, size_t len);

/* Appends the frame of `payload` to `out`. */
void hdlc_encode(const uint8_t *payload, size_t len, std::vector<uint8_t> *out);

/* Size of the largest frame of a payload of `len` bytes (every byte and
 * both CRC bytes escaped, plus the flag). */
constexpr size_t hdlc_encoded_max(size_t len) { return 2 * (len + HDLC_CRC_LEN) + 1; }

/* One decoded frame: the payload without CRC when status is HDLC_OK. */
struct hdlc_frame {
    hdlc_status status;
    std::vector<uint8_t> payload;
};

/* Receives one finished frame: its status and, for HDLC_OK, the payload
 * without CRC; `payload` is valid only during the call. */
typedef void (*hdlc_frame_fn)(void *ctx, hdlc_status status, const uint8_t *payload, size_t len);

class hdlc_decoder {
public:
    /* Decodes `len` bytes and appends every frame they finish to `out`. */
    void feed(const uint8_t *data, size_t len, std::vector<hdlc_frame> *out);
    /* Ends the stream: a frame in progress is appended as
     * HDLC_UNTERMINATED.  The decoder is then ready for a new stream. */
    void finish(std::vector<hdlc_frame> *out);
    /* The same two, calling `on_frame` for each frame instead. */
    void feed(const uint8_t *data, size_t len, hdlc_frame_fn on_frame, void *ctx);
    void finish(hdlc_frame_fn on_frame, void *ctx);
    /* Forgets a frame in progress. */
    void reset();
    /* True while a frame has begun and its flag has not arrived. */
    bool in_frame() const { return started_; }

private:
    void append_unescaped(const uint8_t *p, const uint8_t *end);
    void end_frame(hdlc_frame_fn on_frame, void *ctx);

    std::vector<uint8_t> buf_;
    bool escaped_ = false;
    bool too_long_ = false;
    bool started_ = false; /* bytes seen since the last flag */
};

/* Decodes a buffer that must hold exactly one frame (an optional leading
 * flag, the frame, its closing flag, nothing after it).  Returns HDLC_OK and
 * fills `payload`, or the reason it failed. */
hdlc_status hdlc_decode_one(const uint8_t *data, size_t len, std::vector<uint8_t> *payload);

#endif
