#include "mbn_ops.h"

#include <stdio.h>
#include <string.h>

#include <functional>
#include <mutex>

#include "mbn_session.h"
#include "pdc_requests.h"

namespace {

typedef std::lock_guard<qtimutex::QtiSharedMutex> pdc_guard;

mbn_result fail(int code, const std::string &text) { return {code, text}; }

/* A request the modem refused at once, or that went nowhere. */
mbn_result send_failure(int rc, const char *what)
{
    char text[128];
    if (rc > 0) {
        snprintf(text, sizeof(text), "%s: refused by the modem (QMI error %d)", what, rc);
    } else {
        snprintf(text, sizeof(text), "%s: request not delivered (QMI client error %d)", what, rc);
    }
    return fail(k_mbn_exit_failure, text);
}

/* Sends with `send` (given a fresh token) and waits for the outcome of
 * `op`, the indication that carries the same token. */
mbn_result exchange(pdc_op op, const char *what, unsigned int timeout_s, const std::function<int(uint32_t)> &send)
{
    uint32_t token = pdc_next_token();
    pdc_begin(op);
    int rc = send(token);
    if (rc != 0) {
        pdc_end(op);
        return send_failure(rc, what);
    }
    /* Pages of a list are checked by the list itself; the other outcomes
     * must carry this request's token. */
    pdc_wait_status w = pdc_wait_outcome(op, timeout_s * 1000u, op == PDC_OP_LIST ? 0 : token);
    if (w == PDC_WAIT_CANCELLED) return fail(k_mbn_exit_signal_base + mbn_session_signal(), "interrupted");
    if (w == PDC_WAIT_TIMEOUT) {
        return fail(k_mbn_exit_timeout, std::string(what) + ": no answer from the modem within " +
                                            std::to_string(timeout_s) + " s");
    }
    pdc_guard lock(g_pdc_info.pdc_mutex);
    pdc_slot_view v = pdc_slot_of(op);
    return mbn_result_of(*v.result, *v.qmi_error, what);
}

std::string format_id(const pdc_config_id &id) { return mbn_format_id(id.bytes, id.len); }

/* Active and pending ids of type/sub into the report. */
mbn_result get_selected(const mbn_options &o, mbn_report *r)
{
    mbn_result res = exchange(PDC_OP_GET_SELECTED, "selected", o.timeout_s, [&o](uint32_t token) {
        return pdc_request_get_selected(o.config_type, o.sub, token);
    });
    if (res.exit_code) return res;
    pdc_guard lock(g_pdc_info.pdc_mutex);
    const pdc_selected_slot &s = g_pdc_info.slots.get_selected;
    r->active = s.active_config_id_len ? mbn_format_id(s.active_config_id, s.active_config_id_len) : "";
    r->pending = s.pending_config_id_len ? mbn_format_id(s.pending_config_id, s.pending_config_id_len) : "";
    return res;
}

mbn_result list(const mbn_options &o, mbn_report *r)
{
    uint32_t count = 0;
    pdc_config_list_element *head = nullptr;
    mbn_result res = exchange(PDC_OP_LIST, "list", o.timeout_s, [&](uint32_t token) {
        return pdc_list_start(o.config_type, token, &count, &head);
    });
    /* The handler pushed each id at the head: walk it backwards. */
    for (pdc_config_list_element *e = head; e; e = e->next) {
        r->ids.insert(r->ids.begin(), mbn_format_id(e->config_id, e->config_id_len));
    }
    pdc_free_config_list(head);
    if (res.exit_code) return res;
    return get_selected(o, r);
}

mbn_result info(const mbn_options &o, mbn_report *r)
{
    r->id = format_id(o.id);
    mbn_result res = exchange(PDC_OP_GET_CONFIG_INFO, "info", o.timeout_s, [&o](uint32_t token) {
        return pdc_request_config_info(o.config_type, o.id, token);
    });
    if (res.exit_code) return res;
    pdc_guard lock(g_pdc_info.pdc_mutex);
    const pdc_config_info_slot &s = g_pdc_info.slots.get_config_info;
    r->size_valid = s.config_size_valid;
    r->size = s.config_size;
    r->version_valid = s.config_version_valid;
    r->version = s.config_version;
    r->desc.assign(reinterpret_cast<const char *>(s.config_desc), s.config_desc_len);
    return res;
}

bool read_file(const std::string &path, std::vector<uint8_t> *out, std::string *error)
{
    FILE *f = fopen(path.c_str(), "rbe");
    if (!f) {
        *error = "load: cannot open " + path + ": " + strerror(errno);
        return false;
    }
    uint8_t buf[65536];
    size_t n;
    while ((n = fread(buf, 1, sizeof(buf), f)) > 0) {
        if (out->size() + n > k_mbn_max_file_size) {
            fclose(f);
            *error = "load: " + path + " is larger than 64 MiB";
            return false;
        }
        out->insert(out->end(), buf, buf + n);
    }
    bool ok = !ferror(f);
    fclose(f);
    if (!ok) *error = "load: cannot read " + path;
    if (ok && out->empty()) *error = "load: " + path + " is empty";
    return ok && !out->empty();
}

mbn_result load(const mbn_options &o, mbn_report *r)
{
    std::vector<uint8_t> data;
    std::string error;
    if (!read_file(o.file, &data, &error)) return fail(k_mbn_exit_failure, error);
    pdc_config_id id = o.id;
    if (!o.id_given) {
        size_t slash = o.file.rfind('/');
        if (!mbn_parse_id(slash == std::string::npos ? o.file : o.file.substr(slash + 1), &id)) {
            return fail(k_mbn_exit_usage, "load: the file name makes no id; give one with --id");
        }
    }
    r->id = format_id(id);
    r->size = uint32_t(data.size());
    for (size_t sent = 0; sent < data.size();) {
        uint32_t frame = uint32_t(data.size() - sent < PDC_CONFIG_FRAME_SIZE_MAX_V01 ? data.size() - sent
                                                                                    : PDC_CONFIG_FRAME_SIZE_MAX_V01);
        mbn_result res = exchange(PDC_OP_LOAD, "load", o.timeout_s, [&](uint32_t token) {
            return pdc_request_load_frame(o.config_type, id, uint32_t(data.size()), data.data() + sent, frame,
                                          token);
        });
        if (res.exit_code) return res;
        sent += frame;
        pdc_guard lock(g_pdc_info.pdc_mutex);
        if (g_pdc_info.slots.load.received_config_size != sent) {
            return fail(k_mbn_exit_failure, "load: the modem received " +
                                                std::to_string(g_pdc_info.slots.load.received_config_size) +
                                                " bytes of " + std::to_string(sent) + " sent");
        }
    }
    return {};
}

}  // namespace

mbn_result mbn_result_of(int8_t result, uint16_t qmi_error, const char *what)
{
    std::string w = what;
    switch (result) {
    case PDC_RESULT_SUCCESS:
        return {};
    case PDC_RESULT_NO_MEMORY:
        return fail(k_mbn_exit_no_memory, w + ": no memory (the modem has no room for the configuration)");
    case PDC_RESULT_CONFIG_EXISTS:
        return fail(k_mbn_exit_config_exists, w + ": config exists (a configuration with this id is stored)");
    case PDC_RESULT_FRAME_RESET:
        return fail(k_mbn_exit_frame_reset, w + ": frame reset (the modem dropped the partial transfer)");
    case PDC_RESULT_NO_MBN:
        return fail(k_mbn_exit_no_mbn, w + ": no MBN (no configuration of this type is stored)");
    default:
        if (qmi_error) return fail(k_mbn_exit_failure, w + ": failed (QMI error " + std::to_string(qmi_error) + ")");
        return fail(k_mbn_exit_failure, w + ": failed (result " + std::to_string(result) + ")");
    }
}

mbn_result mbn_run(const mbn_options &o, mbn_report *r)
{
    switch (o.command) {
    case MBN_CMD_LIST:
        return list(o, r);
    case MBN_CMD_INFO:
        return info(o, r);
    case MBN_CMD_SELECTED:
        return get_selected(o, r);
    case MBN_CMD_LOAD:
        return load(o, r);
    case MBN_CMD_SELECT:
        r->id = format_id(o.id);
        return exchange(PDC_OP_SELECT, "select", o.timeout_s, [&o](uint32_t token) {
            return pdc_request_select(o.config_type, o.id, o.sub, token);
        });
    case MBN_CMD_ACTIVATE:
        return exchange(PDC_OP_ACTIVATE, "activate", o.timeout_s, [&o](uint32_t token) {
            return pdc_request_activate(o.config_type, o.sub, token);
        });
    case MBN_CMD_DEACTIVATE:
        return exchange(PDC_OP_DEACTIVATE, "deactivate", o.timeout_s, [&o](uint32_t token) {
            return pdc_request_deactivate(o.config_type, o.sub, token);
        });
    case MBN_CMD_DELETE:
        r->id = format_id(o.id);
        return exchange(PDC_OP_DELETE, "delete", o.timeout_s, [&o](uint32_t token) {
            return pdc_request_delete(o.config_type, o.id, token);
        });
    default:
        return fail(k_mbn_exit_usage, "no command");
    }
}
