#include "replay_session.h"

#include <string.h>

#include "modem_stats_dispatch.h"
#include "modem_stats_log_parsers.h"
#include "modem_stats_unpack.h"
#include "replay_format.h"

namespace {

/* The session the observers report to. */
replay_session *g_session = nullptr;

/* The one log whose parser keeps its record instead of handing it over. */
constexpr uint16_t REPLAY_KEPT_RECORD_LOG = 0xB887;

bool selected(const replay_options &opts, const diag_packet &pkt)
{
    if (!opts.filter) return true;
    return pkt.kind == DIAG_PACKET_LOG ? opts.logs[pkt.code] : opts.events[pkt.code];
}

/* Appends each line of `text` as a JSON string, comma separated; a last
 * line without its newline counts too. */
void append_json_lines(std::string *out, const std::string &text)
{
    size_t at = 0;
    bool first = true;
    while (at < text.size()) {
        size_t nl = text.find('\n', at);
        size_t end = nl == std::string::npos ? text.size() : nl;
        if (!first) out->push_back(',');
        first = false;
        replay_append_json_string(out, text.data() + at, end - at);
        at = nl == std::string::npos ? text.size() : nl + 1;
    }
}

}  // namespace

replay_session::replay_session(const replay_options &opts)
    : opts_(opts), reader_(opts.format, on_packet, this)
{
}

replay_session::~replay_session()
{
    end();
}

ssize_t replay_session::capture_write(void *cookie, const char *buf, size_t size)
{
    auto *self = static_cast<replay_session *>(cookie);
    if (self->sink_) self->sink_->append(buf, size);
    return static_cast<ssize_t>(size);
}

bool replay_session::begin()
{
    cookie_io_functions_t io = {};
    io.write = capture_write;
    capture_ = fopencookie(this, "w", io);
    if (!capture_) return false;
    setvbuf(capture_, nullptr, _IOFBF, REPLAY_CAPTURE_BUFFER);
    fflush(stdout);
    real_stdout_ = stdout;
    stdout = capture_;
    g_session = this;
    modem_stats_set_record_observer(on_record);
    modem_stats_set_version_observer(on_version);
    return true;
}

void replay_session::end()
{
    if (!capture_) return;
    fflush(capture_);
    modem_stats_set_record_observer(nullptr);
    modem_stats_set_version_observer(nullptr);
    g_session = nullptr;
    stdout = real_stdout_;
    fclose(capture_);
    capture_ = nullptr;
    flush();
    if (pcap_.is_open() && !pcap_.close()) write_failed_ = true;
}

bool replay_session::open_pcap(std::string *error)
{
    if (opts_.pcap.empty()) return true;
    counts_.pcap = true;
    return pcap_.open(opts_.pcap, error);
}

bool replay_session::flush()
{
    if (pcap_.is_open() && !pcap_.flush()) write_failed_ = true;
    FILE *out = opts_.pcap == "-" ? stderr : real_stdout_ ? real_stdout_ : stdout;
    if (!out_.empty() && fwrite(out_.data(), 1, out_.size(), out) != out_.size()) write_failed_ = true;
    out_.clear();
    if (fflush(out) != 0) write_failed_ = true;
    return !write_failed_;
}

bool replay_session::write_summary()
{
    if (opts_.mode == REPLAY_OUTPUT_JSON) {
        replay_summary_json(counts_, reader_, &out_);
    } else {
        replay_summary_text(counts_, reader_, &out_);
    }
    return flush();
}

void replay_session::on_packet(void *ctx, const diag_packet &pkt)
{
    static_cast<replay_session *>(ctx)->packet(pkt);
}

void replay_session::on_record(modem_stats_sub_id_e_type, modem_stats_data_id_e_type id,
                               const modem_stats_single_data_common_type *record)
{
    if (g_session && record) g_session->add_record(id, record->data, record->data_len);
}

void replay_session::on_version(uint32_t id, int32_t version)
{
    if (g_session) g_session->counts_.refused[{id, version}]++;
}

void replay_session::add_record(uint32_t id, const uint8_t *data, uint32_t len)
{
    counts_.records[id]++;
    if (opts_.mode != REPLAY_OUTPUT_JSON) return;
    if (!records_json_.empty()) records_json_.push_back(',');
    records_json_.append("{\"data_id\":");
    replay_append_uint(&records_json_, id);
    records_json_.append(",\"bytes\":\"");
    replay_append_hex(&records_json_, data, len);
    records_json_.append("\"}");
}

/* The 0xB887 parser keeps its newest record and frees the one before: a
 * record is new when the kept one changed during the packet. */
void replay_session::kept_record_after()
{
    const modem_stats_single_data_common_type *kept = modem_stats_b887_kept_record();
    if (!kept) return;
    bool same = kept == kept_ptr_before_ && kept->data_len == kept_before_.size() &&
                memcmp(kept->data, kept_before_.data(), kept->data_len) == 0;
    if (!same) add_record(kept->data_id, kept->data, kept->data_len);
}

void replay_session::dispatch(const diag_packet &pkt)
{
    auto length = static_cast<int32_t>(pkt.length);
    if (pkt.kind == DIAG_PACKET_EVENT) {
        modem_stats_diag_process_event_ex(length, pkt.code, pkt.sub, pkt.payload);
        return;
    }
    bool kept = pkt.code == REPLAY_KEPT_RECORD_LOG;
    if (kept) {
        const modem_stats_single_data_common_type *before = modem_stats_b887_kept_record();
        kept_ptr_before_ = before;
        kept_before_.assign(before ? reinterpret_cast<const char *>(before->data) : "", before ? before->data_len : 0);
    }
    modem_stats_diag_process_log_ex(length, pkt.code, pkt.sub, pkt.payload);
    if (kept) kept_record_after();
}

void replay_session::append_json(uint64_t number, const diag_packet &pkt)
{
    out_.append(pkt.kind == DIAG_PACKET_LOG ? "{\"type\":\"log\",\"n\":" : "{\"type\":\"event\",\"n\":");
    replay_append_uint(&out_, number);
    out_.append(",\"input\":");
    replay_append_json_string(&out_, input_.data(), input_.size());
    out_.append(",\"code\":");
    replay_append_uint(&out_, pkt.code);
    out_.append(",\"timestamp\":\"");
    replay_append_time(&out_, pkt.timestamp, true);
    out_.push_back('"');
    if (pkt.ts_truncated) {
        out_.append(",\"ts16\":");
        replay_append_uint(&out_, pkt.ts_short);
    }
    out_.append(",\"subscription\":");
    replay_append_uint(&out_, pkt.sub);
    out_.append(",\"length\":");
    replay_append_uint(&out_, pkt.length);
    out_.append(",\"records\":[");
    out_.append(records_json_);
    out_.append("],\"lines\":[");
    append_json_lines(&out_, lines_);
    out_.append("]}\n");
}

void replay_session::packet(const diag_packet &pkt)
{
    if (!selected(opts_, pkt)) {
        counts_.filtered_out++;
        return;
    }
    uint64_t number = ++counts_.packets;
    (pkt.kind == DIAG_PACKET_LOG ? counts_.logs : counts_.events)[pkt.code]++;
    if (pcap_.is_open()) pcap_.packet(pkt, &counts_);
    switch (opts_.mode) {
    case REPLAY_OUTPUT_SUMMARY:
        dispatch(pkt);
        break;
    case REPLAY_OUTPUT_TEXT:
        /* The parsers' text lands right after the header line. */
        replay_append_header(&out_, number, pkt);
        sink_ = &out_;
        dispatch(pkt);
        fflush(stdout);
        sink_ = nullptr;
        if (out_.back() != '\n') out_.push_back('\n');
        break;
    case REPLAY_OUTPUT_JSON:
        lines_.clear();
        records_json_.clear();
        sink_ = &lines_;
        dispatch(pkt);
        fflush(stdout);
        sink_ = nullptr;
        append_json(number, pkt);
        break;
    }
    if (out_.size() >= REPLAY_OUTPUT_FLUSH_AT) flush();
}
