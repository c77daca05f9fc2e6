/* Reader of .mi2log captures for the tests.
 *
 * An .mi2log file is a raw stream of HDLC-framed diag packets (each frame:
 * escaped payload and CRC-16/X.25, closed by 0x7E), as a diag port delivers
 * them.  Log packets are command 0x10:
 *
 *   off 0  u8  0x10
 *   off 1  u8  pending count
 *   off 2  u16 length of everything from offset 4
 *   off 4  u16 log length = 12 + payload length
 *   off 6  u16 log code
 *   off 8  u64 timestamp
 *   off 16     payload
 *
 * A multi-SIM wrapper (command 0x98, 8-byte header) may precede a packet;
 * frames with a bad CRC and frames of other commands (messages, events,
 * the recorder's own 0xEE frames) are skipped. */
#ifndef RLK_TEST_MI2LOG_READER_H
#define RLK_TEST_MI2LOG_READER_H

#include <stdint.h>

#include <string>
#include <vector>

struct mi2log_log_packet {
    uint16_t code;
    uint64_t timestamp;
    std::vector<uint8_t> payload;
};

/* Reads every log packet of the file at `path`, in file order.  False when
 * the file cannot be read. */
bool mi2log_read_logs(const std::string &path, std::vector<mi2log_log_packet> *out);

/* The packets of `code`, in order. */
std::vector<mi2log_log_packet> mi2log_logs_of(const std::vector<mi2log_log_packet> &logs, uint16_t code);

/* Decodes one unescaped frame payload (CRC removed) into a log packet;
 * false when it is not a well-formed log packet. */
bool mi2log_parse_log_frame(const std::vector<uint8_t> &frame, mi2log_log_packet *out);

/* The captures folder the tests read (../shared/captures beside the
 * repository), or an empty string when it is absent. */
std::string mi2log_captures_dir(void);

#endif
