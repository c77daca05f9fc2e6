/* "diag ..." control requests of the simulator (listed in diag_endpoint.h).
 * Answers are "ok[ ...]" or "error <reason>". */
#include <stdio.h>

#include "diag_channel.h"
#include "diag_endpoint.h"
#include "diag_lsm_dci.h"

namespace modemd {
namespace {

constexpr int64_t k_default_last = 16;
/* Largest canned reply or injected record: what one diag packet carries. */
constexpr size_t k_max_canned_len = 16384;

/* The hex bytes of words a[from..], joined ("01 02" and "0102" alike). */
bool hex_words(const std::vector<std::string> &a, size_t from, std::vector<uint8_t> *out)
{
    std::string text;
    for (size_t i = from; i < a.size(); i++) text += a[i];
    return parse_hex(text, out) && out->size() <= k_max_canned_len;
}

bool parse_code(const std::vector<std::string> &a, size_t i, uint8_t *code)
{
    int64_t v = 0;
    if (a.size() <= i || !parse_number(a[i], &v) || v < 0 || v > 0xFF) return false;
    *code = uint8_t(v);
    return true;
}

}  // namespace

bool diag_endpoint_impl::control(const std::vector<std::string> &a, std::string *answer)
{
    if (a.size() < 2) return false;
    const std::string &cmd = a[1];
    if (cmd == "reply" || cmd == "reply-clear" || cmd == "delay" || cmd == "drop" || cmd == "undrop" ||
        cmd == "clear") {
        *answer = control_faults(a);
    } else if (cmd == "dci-piece" || cmd == "remote-mask" || cmd == "dci-support" || cmd == "status" ||
               cmd == "next-size") {
        *answer = control_config(a);
    } else if (cmd == "log" || cmd == "event") {
        std::vector<uint8_t> record;
        if (a.size() < 3 || !hex_words(a, 2, &record) || record.empty()) {
            *answer = "error usage: diag " + cmd + " <hex>";
        } else {
            size_t n = send_stream_record(cmd == "log" ? DIAG_STREAM_LOG_TAG : DIAG_STREAM_EVENT_TAG, record);
            *answer = n ? "ok " + std::to_string(n) : std::string("error no DCI client");
        }
    } else if (cmd == "last") {
        *answer = control_last(a);
    } else if (cmd == "rate" || cmd == "port") {
        *answer = port_ ? port_->control(a) : std::string("error no diag port (start with --diag-port LINK)");
    } else {
        return false;
    }
    return true;
}

std::string diag_endpoint_impl::control_faults(const std::vector<std::string> &a)
{
    const std::string &cmd = a[1];
    if (cmd == "clear") {
        replies_.clear();
        delays_.clear();
        drops_.clear();
        piece_ = k_diag_default_piece;
        next_size_ = 0;
        return "ok";
    }
    uint8_t code = 0;
    if (cmd == "reply-clear") {
        if (a.size() < 3) {
            replies_.clear();
            return "ok";
        }
        if (!parse_code(a, 2, &code)) return "error bad command code";
        replies_.erase(code);
        return "ok";
    }
    if (!parse_code(a, 2, &code)) return "error usage: diag " + cmd + " <code> ...";
    if (cmd == "reply") {
        std::vector<uint8_t> bytes;
        if (a.size() < 4 || !hex_words(a, 3, &bytes)) return "error usage: diag reply <code> <hex>";
        replies_[code] = bytes;
    } else if (cmd == "delay") {
        int64_t ms = 0;
        if (a.size() < 4 || !parse_number(a[3], &ms) || ms < 0 || ms > k_diag_max_delay_ms) {
            return "error usage: diag delay <code> <ms>";
        }
        if (ms == 0) {
            delays_.erase(code);
        } else {
            delays_[code] = uint32_t(ms);
        }
    } else if (cmd == "drop") {
        drops_.insert(code);
    } else {
        drops_.erase(code);
    }
    return "ok";
}

std::string diag_endpoint_impl::control_config(const std::vector<std::string> &a)
{
    const std::string &cmd = a[1];
    if (cmd == "status") {
        size_t clients = 0;
        for (const auto &kv : conns_) clients += kv.second.dci_procs.size();
        char line[160];
        snprintf(line, sizeof(line), "ok remote_mask=0x%x dci_piece=%zu connections=%zu dci_clients=%zu",
                 remote_mask_, piece_, conns_.size(), clients);
        return line;
    }
    int64_t v = 0;
    if (a.size() < 3 || !parse_number(a[2], &v)) return "error usage: diag " + cmd + " <value>";
    if (cmd == "next-size") {
        if (v < 0 || v > int64_t(k_max_canned_len)) return "error size must be 0.." + std::to_string(k_max_canned_len);
        next_size_ = size_t(v);
    } else if (cmd == "dci-piece") {
        if (v < 1 || v > int64_t(k_diag_max_piece)) return "error piece size must be 1.." + std::to_string(k_diag_max_piece);
        piece_ = size_t(v);
    } else if (cmd == "remote-mask") {
        /* Bit 0 is the local processor, which is always there. */
        if (v < 0 || v > 0xFFFF || (v & 1)) return "error bad remote mask";
        remote_mask_ = uint16_t(v);
    } else {
        int64_t proc = MSM;
        if (v < 0 || v > 0xFFFF) return "error bad peripheral mask";
        if (a.size() >= 4 && (!parse_number(a[3], &proc) || proc < 0 || proc > k_diag_max_proc)) {
            return "error bad processor";
        }
        dci_support_[int32_t(proc)] = uint16_t(v);
    }
    return "ok";
}

std::string diag_endpoint_impl::control_last(const std::vector<std::string> &a)
{
    int64_t n = k_default_last;
    if (a.size() >= 3 && (!parse_number(a[2], &n) || n < 1)) return "error bad count";
    size_t first = journal_.size() > size_t(n) ? journal_.size() - size_t(n) : 0;
    std::string out = "ok";
    for (size_t i = first; i < journal_.size(); i++) {
        const journal_entry &e = journal_[i];
        out += "\n";
        out += e.kind == JOURNAL_DCI ? "dci " : e.kind == JOURNAL_PORT ? "port " : "cmd ";
        out += std::to_string(e.proc) + " " + to_hex(e.bytes.data(), e.bytes.size());
    }
    return out;
}

}  // namespace modemd
