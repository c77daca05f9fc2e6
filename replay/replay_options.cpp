#include "replay_options.h"

#include <errno.h>
#include <stdlib.h>
#include <string.h>

namespace {

const char k_help[] =
    "usage: rlk-replay [options] <capture>...\n"
    "\n"
    "Decodes diag captures through the modem statistics parsers of rlk: every\n"
    "log packet (command 0x10) and event record (command 0x60) is handed to\n"
    "modem_stats_diag_process_log_ex / modem_stats_diag_process_event_ex, and\n"
    "what the parsers print is shown packet by packet, each packet preceded by\n"
    "a header line:\n"
    "  #<n> <UTC date> <UTC time> UTC log 0x<code> length <bytes> sub <0|1>\n"
    "  #<n> <UTC date> <UTC time> UTC event <id> length <bytes> sub <0|1>\n"
    "A summary follows the last packet: packets per log code and event id,\n"
    "records made per data id, versions refused per code and version, frames\n"
    "skipped and why, frames of other commands.\n"
    "\n"
    "A capture is a file, '-' for standard input, or a character device (a\n"
    "diag serial port), read until interrupted (Ctrl-C) and then summarised.\n"
    "Formats: HDLC-framed streams (.qmdl, .mi2log, serial dumps; frames with a\n"
    "bad CRC, a bad escape or no end are counted and skipped) and DLF; the\n"
    "multi-SIM wrapper gives the subscription.\n"
    "\n"
    "options:\n"
    "  -f, --format FORMAT  auto (default: decided from the first bytes), hdlc or dlf\n"
    "  -l, --log CODES      decode only these log codes (comma separated,\n"
    "                       0x-prefixed hex or decimal; may be repeated)\n"
    "  -e, --event IDS      decode only these event ids (as for --log)\n"
    "                       (with --log and/or --event, nothing else is decoded)\n"
    "  -s, --summary-only   print the summary alone\n"
    "  -j, --json           one JSON object per line and packet: type, n, code,\n"
    "                       timestamp, subscription, length, records (data_id and\n"
    "                       bytes in hex) and lines (what the parsers printed);\n"
    "                       the summary is the last line, with type \"summary\"\n"
    "      --pcap FILE      also write the signalling messages (LTE RRC and NAS,\n"
    "                       WCDMA RRC, GSM RR) as GSMTAP in a pcap file for\n"
    "                       Wireshark; '-' writes it to standard output (the\n"
    "                       other output then goes to standard error)\n"
    "      --no-progress    no progress line on standard error\n"
    "  -h, --help           this text\n"
    "\n"
    "Timestamps are the modem's clock, counted from 1980-01-06 00:00:00 UTC.\n"
    "Exit status: 0 when every input was read to its end, 1 when an input could\n"
    "not be opened or read, 2 for a usage error, 128 + the signal number when\n"
    "interrupted before the end of a file (a character device ends normally).\n";

/* One value of a code list: 0x-prefixed hex or decimal, at most `max`. */
bool parse_code(const std::string &text, unsigned long max, unsigned long *value)
{
    if (text.empty() || text[0] == '-' || text[0] == '+') return false;
    /* A leading zero is still decimal (strtoul's base 0 would read octal). */
    bool hex = text.size() > 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X');
    errno = 0;
    char *end = nullptr;
    unsigned long v = strtoul(text.c_str(), &end, hex ? 16 : 10);
    if (errno != 0 || *end != '\0' || v > max) return false;
    *value = v;
    return true;
}

bool parse_code_list(const std::string &list, std::vector<bool> *selected, const char *what, std::string *error)
{
    size_t at = 0;
    while (true) {
        size_t comma = list.find(',', at);
        std::string item = list.substr(at, comma == std::string::npos ? std::string::npos : comma - at);
        unsigned long v = 0;
        if (!parse_code(item, selected->size() - 1, &v)) {
            *error = std::string("invalid ") + what + " '" + item + "' (0 to " + std::to_string(selected->size() - 1) +
                     ", decimal or 0x-prefixed hex)";
            return false;
        }
        (*selected)[v] = true;
        if (comma == std::string::npos) return true;
        at = comma + 1;
    }
}

bool parse_format(const std::string &text, diag_capture_format *format, std::string *error)
{
    for (diag_capture_format f : {DIAG_FORMAT_AUTO, DIAG_FORMAT_HDLC, DIAG_FORMAT_DLF}) {
        if (text == diag_capture_format_name(f)) {
            *format = f;
            return true;
        }
    }
    *error = "unknown format '" + text + "' (auto, hdlc or dlf)";
    return false;
}

enum option_id { OPT_FORMAT, OPT_LOG, OPT_EVENT, OPT_SUMMARY, OPT_JSON, OPT_PCAP, OPT_NO_PROGRESS, OPT_HELP };

struct option_row {
    option_id id;
    char short_name; /* 0: none */
    const char *long_name;
    bool takes_value;
};

const option_row k_options[] = {
    {OPT_FORMAT, 'f', "format", true},     {OPT_LOG, 'l', "log", true},
    {OPT_EVENT, 'e', "event", true},       {OPT_SUMMARY, 's', "summary-only", false},
    {OPT_JSON, 'j', "json", false},        {OPT_PCAP, 0, "pcap", true},
    {OPT_NO_PROGRESS, 0, "no-progress", false},
    {OPT_HELP, 'h', "help", false},
};

bool apply(option_id id, const std::string &value, replay_options *opts, std::string *error)
{
    switch (id) {
    case OPT_FORMAT: return parse_format(value, &opts->format, error);
    case OPT_LOG: opts->filter = true; return parse_code_list(value, &opts->logs, "log code", error);
    case OPT_EVENT: opts->filter = true; return parse_code_list(value, &opts->events, "event id", error);
    case OPT_SUMMARY:
        if (opts->mode == REPLAY_OUTPUT_JSON) {
            *error = "--summary-only and --json exclude each other";
            return false;
        }
        opts->mode = REPLAY_OUTPUT_SUMMARY;
        return true;
    case OPT_JSON:
        if (opts->mode == REPLAY_OUTPUT_SUMMARY) {
            *error = "--summary-only and --json exclude each other";
            return false;
        }
        opts->mode = REPLAY_OUTPUT_JSON;
        return true;
    case OPT_PCAP:
        if (value.empty()) {
            *error = "--pcap needs a file name (or - for standard output)";
            return false;
        }
        opts->pcap = value;
        return true;
    case OPT_NO_PROGRESS: opts->progress = false; return true;
    case OPT_HELP: opts->help = true; return true;
    }
    return false;
}

/* The row an argument names ("--name", "--name=value", "-x"), or null. */
const option_row *find_option(const std::string &arg, std::string *inline_value, bool *has_inline)
{
    *has_inline = false;
    for (const option_row &row : k_options) {
        if (arg.compare(0, 2, "--") == 0) {
            std::string name = arg.substr(2);
            size_t eq = name.find('=');
            if (eq != std::string::npos) {
                *inline_value = name.substr(eq + 1);
                *has_inline = true;
                name.resize(eq);
            }
            if (name == row.long_name) return &row;
        } else if (row.short_name && arg.size() == 2 && arg[1] == row.short_name) {
            return &row;
        }
    }
    return nullptr;
}

}  // namespace

const char *replay_help_text(void)
{
    return k_help;
}

bool replay_parse_options(int argc, const char *const *argv, replay_options *opts, std::string *error)
{
    bool options_done = false;
    for (int i = 0; i < argc; i++) {
        std::string arg = argv[i];
        if (options_done || arg == "-" || arg.empty() || arg[0] != '-') {
            opts->inputs.push_back(arg);
            continue;
        }
        if (arg == "--") {
            options_done = true;
            continue;
        }
        std::string value;
        bool has_inline = false;
        const option_row *row = find_option(arg, &value, &has_inline);
        if (!row) {
            *error = "unknown option '" + arg + "'";
            return false;
        }
        if (row->takes_value && !has_inline) {
            if (i + 1 >= argc) {
                *error = "option '" + arg + "' needs a value";
                return false;
            }
            value = argv[++i];
        } else if (!row->takes_value && has_inline) {
            *error = "option '--" + std::string(row->long_name) + "' takes no value";
            return false;
        }
        if (!apply(row->id, value, opts, error)) return false;
    }
    if (!opts->help && opts->inputs.empty()) {
        *error = "no capture given (use - for standard input)";
        return false;
    }
    return true;
}
