#include "mbn_options.h"

#include <stdlib.h>
#include <string.h>

const char k_mbn_usage[] =
    "usage: rlk-mbn [options] <command>\n"
    "commands:\n"
    "  list                  configurations of a type, active and pending ones marked\n"
    "  info ID               size, version and description of a configuration\n"
    "  selected              active and pending configuration\n"
    "  load FILE [--id ID]   store FILE in the modem (id: the file name by default)\n"
    "  select ID             make ID the pending configuration\n"
    "  activate              activate the pending configuration (the modem restarts)\n"
    "  deactivate            deactivate the active configuration\n"
    "  delete ID             remove a configuration\n"
    "options:\n"
    "  --type hw|sw          hardware (platform) or software (carrier) configurations; sw by default\n"
    "  --sub N               subscription 0 or 1 (list, selected, select, activate, deactivate); 0 by default\n"
    "  --timeout SECONDS     longest time the whole run takes: opening the PDC client and\n"
    "                        every wait for the modem (default 60)\n"
    "  --json                results as JSON; a failure as {\"error\":TEXT,\"exit_status\":N}\n"
    "  --help                this text\n"
    "Options take their value as --name VALUE or --name=VALUE.\n"
    "IDs that are not printable are written hex:<bytes in hexadecimal>.\n"
    "RLK_QMI_DEVICE names a QMI device (such as /dev/cdc-wdm0) to use instead of the simulator.\n"
    "Exit status: 0 success, 1 failure, 2 usage, 3 time-out, 4 no memory, 5 config exists,\n"
    "6 frame reset, 7 no MBN, 8 QMI device cannot be opened, 9 PDC service restarted\n"
    "during a wait, 128+N stopped by signal N (SIGINT, SIGTERM; the client is released).\n";

namespace {

struct command_word {
    const char *word;
    mbn_command command;
    bool takes_argument;
};

const command_word k_commands[] = {
    {"list", MBN_CMD_LIST, false},       {"info", MBN_CMD_INFO, true},         {"selected", MBN_CMD_SELECTED, false},
    {"load", MBN_CMD_LOAD, true},         {"select", MBN_CMD_SELECT, true},     {"activate", MBN_CMD_ACTIVATE, false},
    {"deactivate", MBN_CMD_DEACTIVATE, false}, {"delete", MBN_CMD_DELETE, true},
};

constexpr uint32_t k_subs = 2;

bool parse_uint(const char *text, unsigned long max, unsigned long *out)
{
    if (!text || !*text || *text == '-') return false;
    char *end = nullptr;
    unsigned long v = strtoul(text, &end, 10);
    if (*end || v > max) return false;
    *out = v;
    return true;
}

int hex_digit(char c)
{
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

/* One option and its value; false with `error` set when it is wrong. */
bool parse_option(const std::string &opt, const char *value, mbn_options *o, std::string *error)
{
    unsigned long v = 0;
    if (opt == "--type") {
        if (value && !strcmp(value, "hw")) {
            o->config_type = PDC_CONFIG_TYPE_MODEM_PLATFORM_V01;
        } else if (value && !strcmp(value, "sw")) {
            o->config_type = PDC_CONFIG_TYPE_MODEM_SW_V01;
        } else {
            *error = "--type takes hw or sw";
            return false;
        }
    } else if (opt == "--sub") {
        if (!parse_uint(value, k_subs - 1, &v)) {
            *error = "--sub takes 0 or 1";
            return false;
        }
        o->sub = uint32_t(v);
    } else if (opt == "--timeout") {
        if (!parse_uint(value, k_mbn_max_timeout_s, &v) || v == 0) {
            *error = "--timeout takes 1 to 3600 seconds";
            return false;
        }
        o->timeout_s = unsigned(v);
    } else if (opt == "--id") {
        if (!value || !mbn_parse_id(value, &o->id)) {
            *error = "--id takes an id of 1 to 124 bytes";
            return false;
        }
        o->id_given = true;
    } else {
        *error = "unknown option " + opt;
        return false;
    }
    return true;
}

bool takes_value(const std::string &opt) { return opt == "--type" || opt == "--sub" || opt == "--timeout" || opt == "--id"; }

}  // namespace

bool mbn_parse_id(const std::string &text, pdc_config_id *out)
{
    std::string bytes;
    if (text.compare(0, 4, "hex:") == 0) {
        std::string hex = text.substr(4);
        if (hex.size() % 2) return false;
        for (size_t i = 0; i < hex.size(); i += 2) {
            int hi = hex_digit(hex[i]), lo = hex_digit(hex[i + 1]);
            if (hi < 0 || lo < 0) return false;
            bytes += char(hi << 4 | lo);
        }
    } else {
        bytes = text;
    }
    if (bytes.empty() || bytes.size() > PDC_CONFIG_ID_SIZE_MAX_V01) return false;
    out->len = uint32_t(bytes.size());
    memcpy(out->bytes, bytes.data(), bytes.size());
    return true;
}

std::string mbn_format_id(const uint8_t *bytes, uint32_t len)
{
    bool printable = len > 0;
    for (uint32_t i = 0; i < len; i++) {
        if (bytes[i] <= 0x20 || bytes[i] > 0x7E || bytes[i] == '"' || bytes[i] == '\\') printable = false;
    }
    if (printable && !(len >= 4 && !memcmp(bytes, "hex:", 4))) return std::string(reinterpret_cast<const char *>(bytes), len);
    static const char digits[] = "0123456789abcdef";
    std::string out = "hex:";
    for (uint32_t i = 0; i < len; i++) {
        out += digits[bytes[i] >> 4];
        out += digits[bytes[i] & 15];
    }
    return out;
}

bool mbn_parse_options(int argc, char **argv, mbn_options *o, std::string *error)
{
    std::vector<std::string> words;
    /* Known before any word is refused, so that a usage error is also
     * reported as JSON. */
    for (int i = 1; i < argc; i++) o->json = o->json || !strcmp(argv[i], "--json");
    for (int i = 1; i < argc; i++) {
        std::string a = argv[i];
        if (a == "--help" || a == "-h") {
            o->command = MBN_CMD_HELP;
            return true;
        }
        if (a.compare(0, 2, "--") != 0) {
            words.push_back(a);
            continue;
        }
        /* "--name value" or "--name=value". */
        size_t eq = a.find('=');
        std::string name = a.substr(0, eq);
        std::string inline_value = eq == std::string::npos ? "" : a.substr(eq + 1);
        if (name == "--json" || name == "--help") {
            if (eq != std::string::npos) {
                *error = name + " takes no value";
                return false;
            }
            continue;
        }
        const char *value = nullptr;
        if (takes_value(name)) {
            if (eq != std::string::npos) {
                value = inline_value.c_str();
            } else if (i + 1 < argc) {
                value = argv[++i];
            } else {
                *error = name + " needs a value";
                return false;
            }
        }
        if (!parse_option(name, value, o, error)) return false;
    }
    if (words.empty()) {
        *error = "no command";
        return false;
    }
    for (const command_word &c : k_commands) {
        if (words[0] != c.word) continue;
        if (words.size() != (c.takes_argument ? 2u : 1u)) {
            *error = words[0] + (c.takes_argument ? " takes one argument" : " takes no argument");
            return false;
        }
        o->command = c.command;
        if (c.command == MBN_CMD_LOAD) {
            o->file = words[1];
        } else if (c.takes_argument && !mbn_parse_id(words[1], &o->id)) {
            *error = "an id has 1 to 124 bytes";
            return false;
        }
        return true;
    }
    *error = "unknown command " + words[0];
    return false;
}
