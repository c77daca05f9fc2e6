/* Text pieces of the replay output: packet timestamps as UTC date and
 * time, the header line before each packet's parser lines, JSON strings and
 * hex bytes.  All append to a caller's std::string and allocate only when it
 * grows. */
#ifndef RLK_REPLAY_FORMAT_H
#define RLK_REPLAY_FORMAT_H

#include <stddef.h>
#include <stdint.h>

#include <string>

#include "diag_packet.h"

/* Characters of "YYYY-MM-DD HH:MM:SS.mmm" and its terminator. */
constexpr size_t REPLAY_TIME_TEXT_LEN = 24;

/* Broken-down UTC time of a diag timestamp (milliseconds truncated). */
struct replay_utc {
    int64_t year;
    uint32_t month, day, hour, minute, second, millisecond;
};

/* The UTC time of a timestamp counted from 1980-01-06 00:00:00 (no leap
 * seconds are applied: the modem's clock is taken as it reads). */
replay_utc replay_utc_of(uint64_t timestamp);

/* Appends "YYYY-MM-DD HH:MM:SS.mmm", or with `iso` "YYYY-MM-DDTHH:MM:SS.mmmZ". */
void replay_append_time(std::string *out, uint64_t timestamp, bool iso);

/* Appends the header line of a packet (newline included):
 *   "#<n> <date> <time> UTC log 0xB193 length 528 sub 0"
 *   "#<n> <date> <time> UTC event 1606 length 1 sub 0"
 * An event record with a truncated timestamp ends with " ts16 0x1234"
 * (its 16-bit value). */
void replay_append_header(std::string *out, uint64_t number, const diag_packet &pkt);

/* Appends `len` bytes as lower-case hex digits. */
void replay_append_hex(std::string *out, const uint8_t *data, size_t len);

/* Appends `text` as a JSON string with its quotes.  Bytes that do not form
 * valid UTF-8 are written as \u00XX of their own value. */
void replay_append_json_string(std::string *out, const char *text, size_t len);

/* Appends a decimal number. */
void replay_append_uint(std::string *out, uint64_t v);

#endif
