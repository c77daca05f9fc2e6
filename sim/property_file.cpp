#include "property_file.h"

namespace modemd {
namespace {

constexpr const char *k_format_line = "# rlk-modemd properties, escaped\n";
constexpr const char *k_hex_digits = "0123456789abcdef";
constexpr unsigned char k_first_printable = 0x20;
constexpr unsigned char k_delete = 0x7F;

void escape(const std::string &text, std::string *out)
{
    for (char c : text) {
        unsigned char u = static_cast<unsigned char>(c);
        if (c == '\\') {
            *out += "\\\\";
        } else if (c == '\n') {
            *out += "\\n";
        } else if (c == '\r') {
            *out += "\\r";
        } else if (c == '=') {
            *out += "\\=";
        } else if (u < k_first_printable || u == k_delete) {
            *out += "\\x";
            *out += k_hex_digits[u >> 4];
            *out += k_hex_digits[u & 0xF];
        } else {
            *out += c;
        }
    }
}

int hex_value(char c)
{
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

/* Unescapes line[from, to); false for an escape this format never writes. */
bool unescape(const std::string &line, size_t from, size_t to, std::string *out)
{
    for (size_t i = from; i < to; i++) {
        if (line[i] != '\\') {
            *out += line[i];
            continue;
        }
        if (++i >= to) return false;
        switch (line[i]) {
            case '\\': *out += '\\'; break;
            case 'n': *out += '\n'; break;
            case 'r': *out += '\r'; break;
            case '=': *out += '='; break;
            case 'x': {
                int hi = i + 2 < to ? hex_value(line[i + 1]) : -1;
                int lo = i + 2 < to ? hex_value(line[i + 2]) : -1;
                if (hi < 0 || lo < 0) return false;
                *out += static_cast<char>(hi << 4 | lo);
                i += 2;
                break;
            }
            default: return false;
        }
    }
    return true;
}

/* The first '=' that is not escaped. */
size_t separator(const std::string &line)
{
    for (size_t i = 0; i < line.size(); i++) {
        if (line[i] == '\\') {
            i++;
        } else if (line[i] == '=') {
            return i;
        }
    }
    return std::string::npos;
}

}  // namespace

std::string encode_properties(const std::map<std::string, std::string> &props)
{
    std::string text = k_format_line;
    for (const auto &kv : props) {
        escape(kv.first, &text);
        text += '=';
        escape(kv.second, &text);
        text += '\n';
    }
    return text;
}

void decode_properties(const std::string &text, std::map<std::string, std::string> *props)
{
    std::string format = k_format_line;
    bool escaped = text.compare(0, format.size(), format) == 0;
    size_t pos = escaped ? format.size() : 0;
    while (pos < text.size()) {
        size_t end = text.find('\n', pos);
        if (end == std::string::npos) end = text.size();
        std::string line = text.substr(pos, end - pos);
        pos = end + 1;
        size_t eq = escaped ? separator(line) : line.find('=');
        if (eq == std::string::npos || eq == 0) continue;
        if (!escaped) {
            (*props)[line.substr(0, eq)] = line.substr(eq + 1);
            continue;
        }
        std::string key, value;
        /* A damaged line is skipped rather than read as something else. */
        if (unescape(line, 0, eq, &key) && unescape(line, eq + 1, line.size(), &value)) (*props)[key] = value;
    }
}

}  // namespace modemd
