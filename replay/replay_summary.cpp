#include "replay_summary.h"

#include <stdio.h>
#include <string.h>

#include "replay_format.h"

namespace {

void append_code(std::string *out, uint32_t code)
{
    char buf[16];
    snprintf(buf, sizeof(buf), "0x%04X", code);
    out->append(buf);
}

void append_int(std::string *out, int64_t v)
{
    if (v < 0) {
        out->push_back('-');
        replay_append_uint(out, static_cast<uint64_t>(-(v + 1)) + 1);
    } else {
        replay_append_uint(out, static_cast<uint64_t>(v));
    }
}

/* "  <key> <count>\n" for each non-zero entry of a by-value table, under
 * `title` when there is one. */
void text_table(std::string *out, const char *title, const std::vector<uint64_t> &counts, bool hex)
{
    bool any = false;
    for (size_t i = 0; i < counts.size(); i++) {
        if (!counts[i]) continue;
        if (!any) out->append(title).append(":\n");
        any = true;
        out->append("  ");
        if (hex) {
            append_code(out, static_cast<uint32_t>(i));
        } else {
            replay_append_uint(out, i);
        }
        out->push_back(' ');
        replay_append_uint(out, counts[i]);
        out->push_back('\n');
    }
}

/* "<name>":{"<key>":count,...} over the non-zero entries. */
void json_table(std::string *out, const char *name, const std::vector<uint64_t> &counts, bool hex)
{
    out->append(",\"").append(name).append("\":{");
    bool first = true;
    for (size_t i = 0; i < counts.size(); i++) {
        if (!counts[i]) continue;
        if (!first) out->push_back(',');
        first = false;
        out->push_back('"');
        if (hex) {
            append_code(out, static_cast<uint32_t>(i));
        } else {
            replay_append_uint(out, i);
        }
        out->append("\":");
        replay_append_uint(out, counts[i]);
    }
    out->push_back('}');
}

uint64_t skipped_total(const diag_capture_reader &reader)
{
    uint64_t n = 0;
    for (uint64_t s : reader.counters().skipped) n += s;
    return n;
}

std::vector<uint64_t> other_frames(const diag_capture_reader &reader)
{
    return std::vector<uint64_t>(reader.other_frames(), reader.other_frames() + DIAG_COMMAND_VALUES);
}

void text_refused(std::string *out, const char *title, const std::map<std::pair<uint32_t, int32_t>, uint64_t> &refused)
{
    if (!refused.empty()) out->append(title).append(":\n");
    for (const auto &r : refused) {
        out->append("  ");
        append_code(out, r.first.first);
        out->append(" version ");
        append_int(out, r.first.second);
        out->append(": ");
        replay_append_uint(out, r.second);
        out->push_back('\n');
    }
}

void json_refused(std::string *out, const std::map<std::pair<uint32_t, int32_t>, uint64_t> &refused)
{
    bool first = true;
    for (const auto &r : refused) {
        if (!first) out->push_back(',');
        first = false;
        out->append("{\"code\":");
        replay_append_uint(out, r.first.first);
        out->append(",\"version\":");
        append_int(out, r.first.second);
        out->append(",\"count\":");
        replay_append_uint(out, r.second);
        out->push_back('}');
    }
}

/* Statuses of a message that was not written, as counted. */
constexpr signalling_status k_not_written[] = {SIGNALLING_MALFORMED, SIGNALLING_CHANNEL_SKIPPED,
                                              SIGNALLING_NO_GSMTAP};

void pcap_text(const replay_counts &counts, std::string *out)
{
    if (!counts.pcap) return;
    out->append("pcap messages written per kind:\n");
    for (const auto &w : counts.pcap_written) {
        out->append("  ").append(w.first).push_back(' ');
        replay_append_uint(out, w.second);
        out->push_back('\n');
    }
    text_refused(out, "pcap versions refused per code and version", counts.pcap_refused);
    bool any = false;
    for (signalling_status s : k_not_written) {
        if (!counts.pcap_not_written[s]) continue;
        if (!any) out->append("pcap messages not written:\n");
        any = true;
        out->append("  ").append(signalling_status_name(s)).append(": ");
        replay_append_uint(out, counts.pcap_not_written[s]);
        out->push_back('\n');
    }
}

void pcap_json(const replay_counts &counts, std::string *out)
{
    if (!counts.pcap) return;
    out->append(",\"pcap\":{\"written\":{");
    bool first = true;
    for (const auto &w : counts.pcap_written) {
        if (!first) out->push_back(',');
        first = false;
        replay_append_json_string(out, w.first.data(), w.first.size());
        out->push_back(':');
        replay_append_uint(out, w.second);
    }
    out->append("},\"refused\":[");
    json_refused(out, counts.pcap_refused);
    out->append("],\"not_written\":{");
    first = true;
    for (signalling_status s : k_not_written) {
        if (!first) out->push_back(',');
        first = false;
        const char *name = signalling_status_name(s);
        replay_append_json_string(out, name, strlen(name));
        out->push_back(':');
        replay_append_uint(out, counts.pcap_not_written[s]);
    }
    out->append("}}");
}

}  // namespace

void replay_summary_text(const replay_counts &counts, const diag_capture_reader &reader, std::string *out)
{
    const diag_capture_counters &c = reader.counters();
    out->append("summary: ");
    replay_append_uint(out, counts.inputs);
    out->append(counts.inputs == 1 ? " input (" : " inputs (");
    replay_append_uint(out, counts.inputs_read);
    out->append(" read to the end), ");
    replay_append_uint(out, c.bytes);
    out->append(" bytes, ");
    replay_append_uint(out, c.frames);
    out->append(" frames, ");
    replay_append_uint(out, skipped_total(reader));
    out->append(" skipped, ");
    replay_append_uint(out, counts.packets);
    out->append(" packets\n");
    text_table(out, "log packets per code", counts.logs, true);
    text_table(out, "event records per id", counts.events, false);
    if (!counts.records.empty()) out->append("records made per data id:\n");
    for (const auto &r : counts.records) {
        out->append("  ");
        replay_append_uint(out, r.first);
        out->push_back(' ');
        replay_append_uint(out, r.second);
        out->push_back('\n');
    }
    text_refused(out, "versions refused per code and version", counts.refused);
    if (skipped_total(reader)) out->append("frames skipped:\n");
    for (size_t i = 0; i < DIAG_SKIP_REASON_COUNT; i++) {
        if (!c.skipped[i]) continue;
        out->append("  ").append(diag_skip_reason_name(static_cast<diag_skip_reason>(i))).append(": ");
        replay_append_uint(out, c.skipped[i]);
        out->push_back('\n');
    }
    std::vector<uint64_t> others = other_frames(reader);
    for (size_t i = 0; i < others.size(); i++) {
        if (!others[i]) continue;
        out->append("frames of other commands:\n");
        for (; i < others.size(); i++) {
            if (!others[i]) continue;
            char cmd[8];
            snprintf(cmd, sizeof(cmd), "0x%02X", static_cast<unsigned>(i));
            out->append("  ").append(cmd).append(": ");
            replay_append_uint(out, others[i]);
            out->push_back('\n');
        }
    }
    if (counts.filtered_out) {
        out->append("packets not selected by the filter: ");
        replay_append_uint(out, counts.filtered_out);
        out->push_back('\n');
    }
    pcap_text(counts, out);
}

void replay_summary_json(const replay_counts &counts, const diag_capture_reader &reader, std::string *out)
{
    const diag_capture_counters &c = reader.counters();
    out->append("{\"type\":\"summary\",\"inputs\":");
    replay_append_uint(out, counts.inputs);
    out->append(",\"inputs_read\":");
    replay_append_uint(out, counts.inputs_read);
    out->append(",\"bytes\":");
    replay_append_uint(out, c.bytes);
    out->append(",\"frames\":");
    replay_append_uint(out, c.frames);
    out->append(",\"packets\":");
    replay_append_uint(out, counts.packets);
    out->append(",\"filtered_out\":");
    replay_append_uint(out, counts.filtered_out);
    json_table(out, "logs", counts.logs, true);
    json_table(out, "events", counts.events, false);
    out->append(",\"records\":{");
    bool first = true;
    for (const auto &r : counts.records) {
        if (!first) out->push_back(',');
        first = false;
        out->push_back('"');
        replay_append_uint(out, r.first);
        out->append("\":");
        replay_append_uint(out, r.second);
    }
    out->append("},\"refused\":[");
    json_refused(out, counts.refused);
    out->append("],\"skipped\":{");
    first = true;
    for (size_t i = 0; i < DIAG_SKIP_REASON_COUNT; i++) {
        if (!first) out->push_back(',');
        first = false;
        replay_append_json_string(out, diag_skip_reason_name(static_cast<diag_skip_reason>(i)),
                                  strlen(diag_skip_reason_name(static_cast<diag_skip_reason>(i))));
        out->push_back(':');
        replay_append_uint(out, c.skipped[i]);
    }
    out->push_back('}');
    json_table(out, "other_commands", other_frames(reader), true);
    pcap_json(counts, out);
    out->append("}\n");
}
