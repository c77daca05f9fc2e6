#include "replay_format.h"

#include <stdio.h>

namespace {

constexpr uint64_t SECONDS_PER_DAY = 86400;
constexpr uint32_t MS_PER_SECOND = 1000;
/* Days from 0000-03-01 to 1970-01-01 in the proleptic Gregorian calendar,
 * and the days of a 400-year era. */
constexpr int64_t DAYS_0000_03_01_TO_UNIX = 719468;
constexpr int64_t DAYS_PER_ERA = 146097;
constexpr char HEX_DIGITS[] = "0123456789abcdef";

/* Civil date of a day count since 1970-01-01: eras of 400 years starting on
 * March 1st, so that the leap day ends each year. */
void civil_from_days(int64_t days, int64_t *year, uint32_t *month, uint32_t *day)
{
    int64_t z = days + DAYS_0000_03_01_TO_UNIX;
    int64_t era = (z >= 0 ? z : z - (DAYS_PER_ERA - 1)) / DAYS_PER_ERA;
    int64_t doe = z - era * DAYS_PER_ERA;                                   /* [0, 146096] */
    int64_t yoe = (doe - doe / 1460 + doe / 36524 - doe / 146096) / 365;    /* [0, 399] */
    int64_t doy = doe - (365 * yoe + yoe / 4 - yoe / 100);                  /* [0, 365] */
    int64_t mp = (5 * doy + 2) / 153;                                       /* [0, 11], March = 0 */
    *day = static_cast<uint32_t>(doy - (153 * mp + 2) / 5 + 1);
    *month = static_cast<uint32_t>(mp < 10 ? mp + 3 : mp - 9);
    *year = yoe + era * 400 + (*month <= 2 ? 1 : 0);
}

void append_digits(std::string *out, uint64_t v, int width)
{
    char buf[24];
    int n = 0;
    do {
        buf[n++] = static_cast<char>('0' + v % 10);
        v /= 10;
    } while (v && n < static_cast<int>(sizeof(buf)));
    while (n < width) buf[n++] = '0';
    while (n > 0) out->push_back(buf[--n]);
}

/* Length of the valid UTF-8 sequence at `p` (`left` bytes), or 0. */
size_t utf8_sequence(const unsigned char *p, size_t left)
{
    unsigned char c = p[0];
    size_t n = 0;
    uint32_t cp = 0;
    uint32_t min = 0;
    if (c >= 0xC2 && c <= 0xDF) {
        n = 2, cp = c & 0x1F, min = 0x80;
    } else if (c >= 0xE0 && c <= 0xEF) {
        n = 3, cp = c & 0x0F, min = 0x800;
    } else if (c >= 0xF0 && c <= 0xF4) {
        n = 4, cp = c & 0x07, min = 0x10000;
    } else {
        return 0;
    }
    if (left < n) return 0;
    for (size_t i = 1; i < n; i++) {
        if ((p[i] & 0xC0) != 0x80) return 0;
        cp = (cp << 6) | (p[i] & 0x3F);
    }
    if (cp < min || cp > 0x10FFFF || (cp >= 0xD800 && cp <= 0xDFFF)) return 0;
    return n;
}

void append_u00(std::string *out, unsigned char c)
{
    out->append("\\u00");
    out->push_back(HEX_DIGITS[c >> 4]);
    out->push_back(HEX_DIGITS[c & 0xF]);
}

}  // namespace

replay_utc replay_utc_of(uint64_t timestamp)
{
    uint64_t seconds = timestamp / DIAG_TS_UNITS_PER_SECOND;
    uint64_t units = timestamp % DIAG_TS_UNITS_PER_SECOND;
    replay_utc t;
    t.millisecond = static_cast<uint32_t>(units * MS_PER_SECOND / DIAG_TS_UNITS_PER_SECOND);
    /* seconds < 2^64 / 52428800 < 2^39: no overflow in the sums below. */
    int64_t unix_seconds = DIAG_TS_EPOCH_UNIX + static_cast<int64_t>(seconds);
    int64_t days = unix_seconds / static_cast<int64_t>(SECONDS_PER_DAY);
    uint64_t rest = static_cast<uint64_t>(unix_seconds % static_cast<int64_t>(SECONDS_PER_DAY));
    t.hour = static_cast<uint32_t>(rest / 3600);
    t.minute = static_cast<uint32_t>(rest / 60 % 60);
    t.second = static_cast<uint32_t>(rest % 60);
    civil_from_days(days, &t.year, &t.month, &t.day);
    return t;
}

void replay_append_time(std::string *out, uint64_t timestamp, bool iso)
{
    /* Packets come many per second: the date and time of the last second
     * formatted are kept (one process, one thread). */
    static uint64_t cached_second = UINT64_MAX;
    static bool cached_iso = false;
    static std::string cached;
    uint64_t second = timestamp / DIAG_TS_UNITS_PER_SECOND;
    replay_utc t = {};
    if (second != cached_second || iso != cached_iso) {
        t = replay_utc_of(timestamp);
        cached.clear();
        append_digits(&cached, static_cast<uint64_t>(t.year), 4);
        cached.push_back('-');
        append_digits(&cached, t.month, 2);
        cached.push_back('-');
        append_digits(&cached, t.day, 2);
        cached.push_back(iso ? 'T' : ' ');
        append_digits(&cached, t.hour, 2);
        cached.push_back(':');
        append_digits(&cached, t.minute, 2);
        cached.push_back(':');
        append_digits(&cached, t.second, 2);
        cached.push_back('.');
        cached_second = second;
        cached_iso = iso;
    }
    out->append(cached);
    uint64_t ms = timestamp % DIAG_TS_UNITS_PER_SECOND * MS_PER_SECOND / DIAG_TS_UNITS_PER_SECOND;
    out->push_back(static_cast<char>('0' + ms / 100));
    out->push_back(static_cast<char>('0' + ms / 10 % 10));
    out->push_back(static_cast<char>('0' + ms % 10));
    if (iso) out->push_back('Z');
}

void replay_append_uint(std::string *out, uint64_t v)
{
    append_digits(out, v, 1);
}

void replay_append_header(std::string *out, uint64_t number, const diag_packet &pkt)
{
    out->push_back('#');
    replay_append_uint(out, number);
    out->push_back(' ');
    replay_append_time(out, pkt.timestamp, false);
    if (pkt.kind == DIAG_PACKET_LOG) {
        char code[8];
        snprintf(code, sizeof(code), "0x%04X", pkt.code);
        out->append(" UTC log ");
        out->append(code);
    } else {
        out->append(" UTC event ");
        replay_append_uint(out, pkt.code);
    }
    out->append(" length ");
    replay_append_uint(out, pkt.length);
    out->append(" sub ");
    replay_append_uint(out, pkt.sub);
    if (pkt.ts_truncated) {
        char ts[8];
        snprintf(ts, sizeof(ts), "0x%04x", pkt.ts_short);
        out->append(" ts16 ");
        out->append(ts);
    }
    out->push_back('\n');
}

void replay_append_hex(std::string *out, const uint8_t *data, size_t len)
{
    size_t at = out->size();
    out->resize(at + 2 * len);
    char *p = &(*out)[at];
    for (size_t i = 0; i < len; i++) {
        p[2 * i] = HEX_DIGITS[data[i] >> 4];
        p[2 * i + 1] = HEX_DIGITS[data[i] & 0xF];
    }
}

void replay_append_json_string(std::string *out, const char *text, size_t len)
{
    const auto *p = reinterpret_cast<const unsigned char *>(text);
    out->push_back('"');
    size_t i = 0;
    while (i < len) {
        unsigned char c = p[i];
        if (c >= 0x20 && c < 0x80 && c != '"' && c != '\\') {
            /* Plain ASCII runs are copied whole. */
            size_t j = i + 1;
            while (j < len && p[j] >= 0x20 && p[j] < 0x80 && p[j] != '"' && p[j] != '\\') j++;
            out->append(text + i, j - i);
            i = j;
            continue;
        }
        switch (c) {
        case '"': out->append("\\\""); break;
        case '\\': out->append("\\\\"); break;
        case '\n': out->append("\\n"); break;
        case '\r': out->append("\\r"); break;
        case '\t': out->append("\\t"); break;
        default:
            if (c < 0x20) {
                append_u00(out, c);
            } else if (size_t n = utf8_sequence(p + i, len - i)) {
                out->append(text + i, n);
                i += n;
                continue;
            } else {
                append_u00(out, c);
            }
            break;
        }
        i++;
    }
    out->push_back('"');
}
