#include "mbn_print.h"

#include <stdio.h>

namespace {

const char *type_name(uint32_t type) { return type == PDC_CONFIG_TYPE_MODEM_PLATFORM_V01 ? "hw" : "sw"; }

std::string json_id_or_null(const std::string &id) { return id.empty() ? "null" : mbn_json_string(id); }

std::string hex32(uint32_t v)
{
    char text[16];
    snprintf(text, sizeof(text), "0x%08X", v);
    return text;
}

std::string list_text(const mbn_options &o, const mbn_report &r)
{
    std::string out = std::to_string(r.ids.size()) + " " + type_name(o.config_type) + " configuration" +
                      (r.ids.size() == 1 ? "" : "s") + " (sub " + std::to_string(o.sub) + ")\n";
    for (const std::string &id : r.ids) {
        out += "  " + id;
        if (id == r.active) out += "  [active]";
        if (id == r.pending) out += "  [pending]";
        out += "\n";
    }
    return out;
}

/* The list object; `more` adds members (a failure's) before its end. */
std::string list_json(const mbn_options &o, const mbn_report &r, const std::string &more = "")
{
    std::string out = "{\"type\":\"" + std::string(type_name(o.config_type)) + "\",\"sub\":" + std::to_string(o.sub) +
                      ",\"count\":" + std::to_string(r.ids.size()) + ",\"configs\":[";
    for (size_t i = 0; i < r.ids.size(); i++) {
        if (i) out += ",";
        out += "{\"id\":" + mbn_json_string(r.ids[i]) + ",\"active\":" + (r.ids[i] == r.active ? "true" : "false") +
               ",\"pending\":" + (r.ids[i] == r.pending ? "true" : "false") + "}";
    }
    return out + "]" + more + "}\n";
}

/* The members of a failure in its JSON object. */
std::string failure_members(const mbn_result &res)
{
    return "\"error\":" + mbn_json_string(res.error) + ",\"exit_status\":" + std::to_string(res.exit_code);
}

std::string info_text(const mbn_report &r)
{
    std::string out = "id: " + r.id + "\n";
    if (r.size_valid) out += "size: " + std::to_string(r.size) + "\n";
    if (r.version_valid) out += "version: " + hex32(r.version) + "\n";
    return out + "description: " + r.desc + "\n";
}

std::string info_json(const mbn_report &r)
{
    std::string out = "{\"id\":" + mbn_json_string(r.id);
    out += ",\"size\":" + (r.size_valid ? std::to_string(r.size) : std::string("null"));
    out += ",\"version\":" + (r.version_valid ? std::to_string(r.version) : std::string("null"));
    return out + ",\"description\":" + mbn_json_string(r.desc) + "}\n";
}

}  // namespace

std::string mbn_json_string(const std::string &s)
{
    std::string out = "\"";
    for (unsigned char c : s) {
        if (c == '"' || c == '\\') {
            out += '\\';
            out += char(c);
        } else if (c < 0x20 || c >= 0x7F) {
            char esc[8];
            snprintf(esc, sizeof(esc), "\\u%04x", c);
            out += esc;
        } else {
            out += char(c);
        }
    }
    return out + "\"";
}

std::string mbn_format_failure(const mbn_options &o, const mbn_report &r, const mbn_result &res)
{
    if (o.command == MBN_CMD_LIST && r.listed) {
        if (!o.json) return list_text(o, r);
        /* Appended rather than "," + ...: GCC 12's Release build warns
         * falsely (-Wrestrict) on prefixing a temporary string. */
        std::string members(",");
        members += failure_members(res);
        return list_json(o, r, members);
    }
    if (!o.json) return "";
    std::string object("{");
    object += failure_members(res);
    object += "}\n";
    return object;
}

std::string mbn_format_report(const mbn_options &o, const mbn_report &r)
{
    const std::string type = type_name(o.config_type);
    switch (o.command) {
    case MBN_CMD_LIST:
        return o.json ? list_json(o, r) : list_text(o, r);
    case MBN_CMD_INFO:
        return o.json ? info_json(r) : info_text(r);
    case MBN_CMD_SELECTED:
        if (o.json) {
            return "{\"type\":\"" + type + "\",\"sub\":" + std::to_string(o.sub) + ",\"active\":" +
                   json_id_or_null(r.active) + ",\"pending\":" + json_id_or_null(r.pending) + "}\n";
        }
        return "active: " + (r.active.empty() ? std::string("none") : r.active) + "\npending: " +
               (r.pending.empty() ? std::string("none") : r.pending) + "\n";
    case MBN_CMD_LOAD:
        if (o.json) return "{\"loaded\":" + mbn_json_string(r.id) + ",\"size\":" + std::to_string(r.size) + "}\n";
        return "loaded " + r.id + " (" + std::to_string(r.size) + " bytes)\n";
    case MBN_CMD_SELECT:
        if (o.json) return "{\"selected\":" + mbn_json_string(r.id) + ",\"sub\":" + std::to_string(o.sub) + "}\n";
        return "selected " + r.id + " (pending until activated)\n";
    case MBN_CMD_ACTIVATE:
        if (o.json) return "{\"activated\":true,\"sub\":" + std::to_string(o.sub) + "}\n";
        return "activated; the modem restarts\n";
    case MBN_CMD_DEACTIVATE:
        if (o.json) return "{\"deactivated\":true,\"sub\":" + std::to_string(o.sub) + "}\n";
        return "deactivated\n";
    case MBN_CMD_DELETE:
        if (o.json) return "{\"deleted\":" + mbn_json_string(r.id) + "}\n";
        return "deleted " + r.id + "\n";
    default:
        return "";
    }
}
