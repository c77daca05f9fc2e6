#include "mi2log_reader.h"

#include <sys/stat.h>

#include <fstream>
#include <iterator>

#include "hdlc.h"

namespace {

constexpr uint8_t DIAG_CMD_LOG = 0x10;
constexpr uint8_t DIAG_CMD_MULTI_SIM = 0x98;
constexpr size_t MULTI_SIM_HEADER_LEN = 8;
constexpr size_t LOG_HEADER_LEN = 16;
/* The log length counts itself, the code and the timestamp. */
constexpr size_t LOG_LENGTH_SELF = 12;
constexpr size_t LOG_LENGTH_AT = 4;

uint16_t le16(const uint8_t *p)
{
    return static_cast<uint16_t>(p[0] | (p[1] << 8));
}

uint64_t le64(const uint8_t *p)
{
    uint64_t v = 0;
    for (int i = 7; i >= 0; i--) v = (v << 8) | p[i];
    return v;
}

}  // namespace

bool mi2log_parse_log_frame(const std::vector<uint8_t> &frame, mi2log_log_packet *out)
{
    size_t at = 0;
    if (!frame.empty() && frame[0] == DIAG_CMD_MULTI_SIM) at = MULTI_SIM_HEADER_LEN;
    if (frame.size() < at + LOG_HEADER_LEN || frame[at] != DIAG_CMD_LOG) return false;
    const uint8_t *p = frame.data() + at;
    size_t log_len = le16(p + LOG_LENGTH_AT);
    if (log_len < LOG_LENGTH_SELF || at + LOG_LENGTH_AT + log_len > frame.size()) return false;
    out->code = le16(p + 6);
    out->timestamp = le64(p + 8);
    out->payload.assign(p + LOG_HEADER_LEN, p + LOG_LENGTH_AT + log_len);
    return true;
}

bool mi2log_read_logs(const std::string &path, std::vector<mi2log_log_packet> *out)
{
    std::ifstream in(path, std::ios::binary);
    if (!in) return false;
    std::vector<uint8_t> bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    hdlc_decoder decoder;
    std::vector<hdlc_frame> frames;
    decoder.feed(bytes.data(), bytes.size(), &frames);
    decoder.finish(&frames);
    for (const hdlc_frame &f : frames) {
        mi2log_log_packet packet;
        if (f.status == HDLC_OK && mi2log_parse_log_frame(f.payload, &packet)) out->push_back(std::move(packet));
    }
    return true;
}

std::vector<mi2log_log_packet> mi2log_logs_of(const std::vector<mi2log_log_packet> &logs, uint16_t code)
{
    std::vector<mi2log_log_packet> of;
    for (const mi2log_log_packet &p : logs) {
        if (p.code == code) of.push_back(p);
    }
    return of;
}

std::string mi2log_captures_dir(void)
{
#ifdef RLK_CAPTURES_DIR
    struct stat st;
    if (stat(RLK_CAPTURES_DIR, &st) == 0 && S_ISDIR(st.st_mode)) return RLK_CAPTURES_DIR;
#endif
    return "";
}
