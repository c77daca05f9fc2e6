#include "capture_files.h"

#include <sys/stat.h>

#include "diag_capture.h"
#include "replay_input.h"

namespace {

void keep_log(void *ctx, const diag_packet &p)
{
    if (p.kind != DIAG_PACKET_LOG) return;
    auto *out = static_cast<std::vector<capture_log_packet> *>(ctx);
    out->push_back({p.code, p.timestamp, p.sub, std::vector<uint8_t>(p.payload, p.payload + p.length)});
}

}  // namespace

bool capture_read_logs(const std::string &path, std::vector<capture_log_packet> *out)
{
    replay_input in;
    std::string error;
    if (!replay_open_input(path, &in, &error)) return false;
    diag_capture_reader reader(DIAG_FORMAT_AUTO, keep_log, out);
    replay_read_result res = replay_read_input(in, &reader, nullptr, nullptr, &error);
    reader.finish();
    replay_close_input(&in);
    return res == REPLAY_READ_END;
}

std::vector<capture_log_packet> capture_logs_of(const std::vector<capture_log_packet> &logs, uint16_t code)
{
    std::vector<capture_log_packet> of;
    for (const capture_log_packet &p : logs) {
        if (p.code == code) of.push_back(p);
    }
    return of;
}

std::string capture_files_dir(void)
{
#ifdef RLK_CAPTURES_DIR
    struct stat st;
    if (stat(RLK_CAPTURES_DIR, &st) == 0 && S_ISDIR(st.st_mode)) return RLK_CAPTURES_DIR;
#endif
    return "";
}
