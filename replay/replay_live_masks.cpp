#include "replay_live_masks.h"

#include <errno.h>
#include <poll.h>
#include <unistd.h>

#include <chrono>
#include <set>

#include "hdlc.h"

namespace {

constexpr uint8_t LOG_CONFIG = 0x73;
constexpr uint32_t LOG_CONFIG_SET_MASK = 3;
constexpr uint8_t EVENT_REPORT = 0x60;
constexpr uint32_t ITEM_MASK = 0x0FFF;
constexpr size_t READ_CHUNK = 4096;
constexpr int WAIT_MS = 500;

void put_u32(std::vector<uint8_t> *out, uint32_t v)
{
    for (int i = 0; i < 4; i++) out->push_back(uint8_t(v >> (8 * i)));
}

std::set<uint32_t> equip_ids(const std::vector<uint16_t> &codes)
{
    std::set<uint32_t> ids;
    for (uint16_t c : codes) ids.insert(uint32_t(c >> 12));
    return ids;
}

/* Writes all of `data`, waiting for room until `deadline`. */
bool write_all(int fd, const std::vector<uint8_t> &data, std::chrono::steady_clock::time_point deadline)
{
    size_t off = 0;
    while (off < data.size()) {
        ssize_t n = write(fd, data.data() + off, data.size() - off);
        if (n > 0) {
            off += size_t(n);
            continue;
        }
        if (n < 0 && errno != EAGAIN && errno != EINTR) return false;
        auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
        if (left.count() <= 0) return false;
        struct pollfd p = {fd, POLLOUT, 0};
        poll(&p, 1, int(left.count()));
    }
    return true;
}

struct answer_count {
    size_t log_config = 0;
    size_t event_report = 0;
};

/* Sends `cmds`; with `wait`, reads until every one has its answer (a
 * LOG_CONFIG or an EVENT_REPORT answer per command) or the wait ends. */
bool exchange(int fd, const std::vector<std::vector<uint8_t>> &cmds, bool wait)
{
    auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(WAIT_MS);
    answer_count want;
    std::vector<uint8_t> out;
    for (const auto &c : cmds) {
        (c[0] == LOG_CONFIG ? want.log_config : want.event_report)++;
        hdlc_encode(c.data(), c.size(), &out);
    }
    if (!write_all(fd, out, deadline)) return false;
    if (!wait) return true;
    answer_count got;
    hdlc_decoder dec;
    std::vector<hdlc_frame> frames;
    uint8_t buf[READ_CHUNK];
    while (got.log_config < want.log_config || got.event_report < want.event_report) {
        auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
        if (left.count() <= 0) return false;
        struct pollfd p = {fd, POLLIN, 0};
        if (poll(&p, 1, int(left.count())) <= 0) continue;
        ssize_t n = read(fd, buf, sizeof(buf));
        if (n < 0 && (errno == EAGAIN || errno == EINTR)) continue;
        if (n <= 0) return false;
        frames.clear();
        dec.feed(buf, size_t(n), &frames);
        for (const hdlc_frame &f : frames) {
            if (f.status != HDLC_OK || f.payload.empty()) continue;
            if (f.payload[0] == LOG_CONFIG) got.log_config++;
            /* An event report carrying events is not the answer. */
            if (f.payload.size() == 3 && f.payload[0] == EVENT_REPORT && !f.payload[1] && !f.payload[2]) {
                got.event_report++;
            }
        }
    }
    return true;
}

}  // namespace

std::vector<uint8_t> replay_log_mask_command(uint32_t equip, const std::vector<uint16_t> &codes, bool set)
{
    uint32_t last = 0;
    for (uint16_t c : codes) {
        if (uint32_t(c >> 12) == equip && (c & ITEM_MASK) > last) last = c & ITEM_MASK;
    }
    /* Items 0..last: a modem reads the count as items, some clients as the
     * last item; either way every wanted item is inside the mask. */
    uint32_t items = last + 1;
    std::vector<uint8_t> cmd = {LOG_CONFIG, 0, 0, 0};
    put_u32(&cmd, LOG_CONFIG_SET_MASK);
    put_u32(&cmd, equip);
    put_u32(&cmd, items);
    size_t at = cmd.size();
    cmd.resize(at + (items + 7) / 8, 0);
    for (uint16_t c : codes) {
        if (!set || uint32_t(c >> 12) != equip) continue;
        uint32_t item = c & ITEM_MASK;
        cmd[at + item / 8] |= uint8_t(1u << (item % 8));
    }
    return cmd;
}

bool replay_live_masks_enable(int fd, replay_live_masks *m)
{
    std::vector<std::vector<uint8_t>> cmds;
    for (uint32_t equip : equip_ids(m->codes)) cmds.push_back(replay_log_mask_command(equip, m->codes, true));
    if (m->events) cmds.push_back({EVENT_REPORT, 1});
    if (cmds.empty()) return true;
    m->on = true;
    return exchange(fd, cmds, false);
}

bool replay_live_masks_disable(int fd, replay_live_masks *m)
{
    if (!m->on) return true;
    m->on = false;
    std::vector<std::vector<uint8_t>> cmds;
    for (uint32_t equip : equip_ids(m->codes)) cmds.push_back(replay_log_mask_command(equip, m->codes, false));
    if (m->events) cmds.push_back({EVENT_REPORT, 0});
    return exchange(fd, cmds, true);
}
