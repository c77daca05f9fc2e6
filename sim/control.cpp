/* The simulator's control interface: one text request, one text answer
 * ("ok[ <data>]" or "error <reason>"; data may span lines).  Used by tests
 * and by users who script scenarios with `rlk-modemd ctl ...`. */
#include <errno.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "daemon.h"
#include "at_channel.h"
#include "qmux_device.h"

namespace modemd {
namespace {

std::vector<std::string> split_words(const std::string &text)
{
    std::vector<std::string> out;
    size_t pos = 0;
    while (pos < text.size()) {
        while (pos < text.size() && (text[pos] == ' ' || text[pos] == '\n' || text[pos] == '\t')) pos++;
        size_t end = pos;
        while (end < text.size() && text[end] != ' ' && text[end] != '\n' && text[end] != '\t') end++;
        if (end > pos) out.push_back(text.substr(pos, end - pos));
        pos = end;
    }
    return out;
}

/* The rest of `text` after its first `n` words. */
std::string rest_after_words(const std::string &text, size_t n)
{
    size_t pos = 0;
    for (size_t i = 0; i < n; i++) {
        while (pos < text.size() && text[pos] == ' ') pos++;
        while (pos < text.size() && text[pos] != ' ') pos++;
    }
    if (pos < text.size() && text[pos] == ' ') pos++;
    return text.substr(pos);
}

const char k_help[] =
    "ok commands:\n"
    "  ping\n"
    "  getprop <key> | setprop <key> <value>\n"
    "  services\n"
    "  down <svc> | up <svc> [after_ms] | ssr <svc|all> <down_ms>\n"
    "  delay <svc> <msg> <ms> [count] | drop <svc> <msg> [count]\n"
    "  respond <svc> <msg> <hex tlvs, one word> [count] | error <svc> <msg> <code> [count] | clear-faults\n"
    "  ind <svc> <msg> <hex tlvs>\n"
    "  last [n] [svc]\n"
    "  efs ls | efs get <path> | efs put <path> <hex> | efs rm <path>\n"
    "  counter get <name> | counter set <name> <value> | counters\n"
    "  loop [reset]   longest time one event kept the daemon busy (us, and its CPU time)\n"
    "  diag ...\n"
    "  at path | at received [n] | at clear\n"
    "  qmux [clients | counters | path]   the QMUX device: allocated client ids per service, frames dropped\n"
    "  qmux delay-ctl MSG MS [COUNT]      answer the next COUNT control messages MSG (0x22 allocate) MS ms late\n";

}  // namespace

bool parse_number(const std::string &text, int64_t *out)
{
    if (text.empty()) return false;
    char *end = nullptr;
    errno = 0;
    long long v = strtoll(text.c_str(), &end, 0);
    if (errno || !end || *end) return false;
    *out = v;
    return true;
}

bool parse_hex(const std::string &text, std::vector<uint8_t> *out)
{
    out->clear();
    int hi = -1;
    for (char ch : text) {
        if (ch == ' ' || ch == ':' || ch == '\n') continue;
        int v;
        if (ch >= '0' && ch <= '9') {
            v = ch - '0';
        } else if (ch >= 'a' && ch <= 'f') {
            v = ch - 'a' + 10;
        } else if (ch >= 'A' && ch <= 'F') {
            v = ch - 'A' + 10;
        } else {
            return false;
        }
        if (hi < 0) {
            hi = v;
        } else {
            out->push_back(uint8_t(hi << 4 | v));
            hi = -1;
        }
    }
    return hi < 0;
}

std::string to_hex(const uint8_t *data, size_t len)
{
    static const char digits[] = "0123456789abcdef";
    std::string s;
    s.reserve(len * 2);
    for (size_t i = 0; i < len; i++) {
        s += digits[data[i] >> 4];
        s += digits[data[i] & 15];
    }
    return s;
}

std::string daemon::control_services(const std::vector<std::string> &a)
{
    const std::string &cmd = a[0];
    if (cmd == "services") {
        std::string out = "ok";
        for (auto &s : services_) {
            char line[160];
            snprintf(line, sizeof(line), "\n%s 0x%04x instance %u %s port %u", s->def->name, s->obj->service_id,
                     s->def->instance, s->up ? "up" : "down", s->port);
            out += line;
        }
        return out;
    }
    if (a.size() < 2) return "error usage: " + cmd + " <svc> ...";
    std::vector<sim_service *> targets;
    if (a[1] == "all" && cmd == "ssr") {
        for (auto &s : services_) targets.push_back(s.get());
    } else if (sim_service *s = find_service(a[1])) {
        targets.push_back(s);
    } else {
        return "error unknown service " + a[1];
    }
    int64_t ms = 0;
    if (a.size() >= 3 && (!parse_number(a[2], &ms) || ms < 0 || ms > 3600000)) return "error bad time " + a[2];
    for (sim_service *s : targets) {
        if (cmd == "down") {
            service_down(*s);
        } else if (cmd == "up" && ms == 0) {
            service_up(*s);
        } else {
            /* "up <svc> <ms>" brings it up later; "ssr" takes it down now
             * and brings it back after the delay. */
            if (cmd == "ssr") service_down(*s);
            if (s->up_timer) loop_.cancel_timer(s->up_timer);
            s->up_timer = loop_.add_timer(uint32_t(ms), [this, s] {
                s->up_timer = 0;
                service_up(*s);
            });
        }
    }
    return "ok";
}

std::string daemon::control_faults(const std::vector<std::string> &a)
{
    const std::string &cmd = a[0];
    if (cmd == "clear-faults") {
        faults_.clear();
        return "ok";
    }
    if (a.size() < 3) return "error usage: " + cmd + " <svc> <msg> ...";
    sim_service *s = find_service(a[1]);
    if (!s) return "error unknown service " + a[1];
    int64_t msg = 0;
    if (!parse_number(a[2], &msg) || msg < 0 || msg > 0xFFFF) return "error bad message id " + a[2];
    fault f = {s->obj->service_id, uint16_t(msg), fault::DROP, 0, 0, {}, -1};
    size_t count_at = 3;
    if (cmd == "delay" || cmd == "error") {
        int64_t v = 0;
        if (a.size() < 4 || !parse_number(a[3], &v)) return "error usage: " + cmd + " <svc> <msg> <value> [count]";
        f.kind = cmd == "delay" ? fault::DELAY : fault::ERROR;
        if (f.kind == fault::DELAY && (v < 0 || v > 3600000)) return "error bad time";
        f.ms = uint32_t(v);
        f.code = int(v);
        count_at = 4;
    } else if (cmd == "respond") {
        if (a.size() < 4 || !parse_hex(a[3], &f.tlvs)) return "error usage: respond <svc> <msg> <hex tlvs> [count]";
        f.kind = fault::RESPOND;
        count_at = 4;
    }
    if (a.size() > count_at) {
        int64_t n = 0;
        if (!parse_number(a[count_at], &n) || n < 1) return "error bad count " + a[count_at];
        f.remaining = int(n);
    }
    /* A new rule for the same message replaces the old one. */
    for (auto it = faults_.begin(); it != faults_.end();) {
        it = it->service == f.service && it->msg_id == f.msg_id ? faults_.erase(it) : it + 1;
    }
    faults_.push_back(f);
    return "ok";
}

std::string daemon::control_state(const std::vector<std::string> &a)
{
    if (a[0] == "efs") {
        if (a.size() == 2 && a[1] == "ls") {
            std::string out = "ok";
            for (const std::string &p : store_.efs_list()) out += "\n" + p;
            return out;
        }
        if (a.size() < 3) return "error usage: efs ls|get|put|rm <path> [hex]";
        std::vector<uint8_t> data;
        int rc;
        if (a[1] == "get") {
            rc = store_.efs_read(a[2], &data);
            if (rc == 0) return "ok " + to_hex(data.data(), data.size());
        } else if (a[1] == "put") {
            if (!parse_hex(a.size() > 3 ? a[3] : std::string(), &data)) return "error bad hex";
            rc = store_.efs_write(a[2], data);
        } else if (a[1] == "rm") {
            rc = store_.efs_delete(a[2]);
        } else {
            return "error unknown efs command " + a[1];
        }
        return rc == 0 ? std::string("ok") : "error " + std::to_string(rc);
    }
    /* counters */
    if (a[0] == "counters") {
        std::string out = "ok";
        for (auto &kv : counters_) out += "\n" + kv.first + " " + std::to_string(kv.second);
        return out;
    }
    if (a.size() >= 3 && a[1] == "get") return "ok " + std::to_string(counters_[a[2]]);
    int64_t v = 0;
    if (a.size() >= 4 && a[1] == "set" && parse_number(a[3], &v)) {
        counters_[a[2]] = v;
        return "ok";
    }
    return "error usage: counter get <name> | counter set <name> <value>";
}

std::string daemon::control(const std::string &request)
{
    std::vector<std::string> a = split_words(request);
    if (a.empty() || a[0] == "help") {
        std::string out = k_help;
        for (auto &s : services_) {
            if (s->def->control_help) out += s->def->control_help;
        }
        if (!out.empty() && out.back() == '\n') out.pop_back();
        return out;
    }
    const std::string &cmd = a[0];
    if (cmd == "ping") return "ok";
    if (cmd == "loop") {
        event_loop::dispatch_time t = loop_.longest_dispatch();
        std::string out = "ok longest-event-us " + std::to_string(t.wall_us) + " cpu-us " + std::to_string(t.cpu_us);
        if (a.size() >= 2 && a[1] == "reset") loop_.reset_longest_dispatch();
        return out;
    }
    if (cmd == "getprop") {
        if (a.size() != 2) return "error usage: getprop <key>";
        return "ok " + store_.get_property(a[1]);
    }
    if (cmd == "setprop") {
        if (a.size() < 2) return "error usage: setprop <key> <value>";
        return store_.set_property(a[1], rest_after_words(request, 2)) ? "ok" : "error cannot save properties";
    }
    if (cmd == "services" || cmd == "down" || cmd == "up" || cmd == "ssr") return control_services(a);
    if (cmd == "delay" || cmd == "drop" || cmd == "respond" || cmd == "error" || cmd == "clear-faults") {
        return control_faults(a);
    }
    if (cmd == "ind") {
        std::vector<uint8_t> tlvs;
        int64_t msg = 0;
        sim_service *s = a.size() >= 3 ? find_service(a[1]) : nullptr;
        if (!s || !parse_number(a[2], &msg) || msg < 0 || msg > 0xFFFF ||
            !parse_hex(rest_after_words(request, 3), &tlvs)) {
            return "error usage: ind <svc> <msg> <hex tlvs>";
        }
        return send_indication_raw(*s, uint16_t(msg), tlvs) ? "ok" : "error no client";
    }
    if (cmd == "last") {
        int64_t n = 16;
        if (a.size() >= 2 && (!parse_number(a[1], &n) || n < 1)) return "error bad count";
        sim_service *only = a.size() >= 3 ? find_service(a[2]) : nullptr;
        if (a.size() >= 3 && !only) return "error unknown service " + a[2];
        std::vector<std::string> lines;
        for (auto it = journal_.rbegin(); it != journal_.rend() && int64_t(lines.size()) < n; ++it) {
            if (only && it->service != only->obj->service_id) continue;
            char head[64];
            snprintf(head, sizeof(head), "0x%04x 0x%04x %u ", it->service, it->msg_id, it->txn);
            lines.push_back(head + to_hex(it->bytes.data(), it->bytes.size()));
        }
        std::string out = "ok";
        for (auto it = lines.rbegin(); it != lines.rend(); ++it) out += "\n" + *it; /* oldest first */
        return out;
    }
    if (cmd == "efs" || cmd == "counter" || cmd == "counters") return control_state(a);
    for (auto &s : services_) {
        if (s->def->control && cmd == s->def->name) return s->def->control(*this, a);
    }
    if (cmd == "at" && at_) return at_->control(a);
    if (cmd == "qmux") return qmux_ ? qmux_->control(a) : "error no QMUX device (start with --qmux LINK)";
    if (cmd == "diag") {
        std::string answer;
        if (diag_ && diag_->control(a, &answer)) return answer;
        return "error unknown diag command";
    }
    return "error unknown command " + cmd + " (try help)";
}

}  // namespace modemd
