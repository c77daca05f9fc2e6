#include "mbn_ops.h"

#include <errno.h>
#include <stdio.h>
#include <string.h>

#include <functional>
#include <mutex>

#include "mbn_session.h"
#include "pdc_requests.h"

namespace {

typedef std::lock_guard<qtimutex::QtiSharedMutex> pdc_guard;
typedef std::chrono::steady_clock steady;

mbn_result fail(int code, const std::string &text) { return {code, text}; }

mbn_result interrupted() { return fail(k_mbn_exit_signal_base + mbn_session_signal(), "interrupted"); }

mbn_result timed_out(const mbn_options &o, const char *what)
{
    return fail(k_mbn_exit_timeout,
                std::string(what) + ": no answer from the modem within " + std::to_string(o.timeout_s) + " s");
}

mbn_result restarted(const char *what)
{
    return fail(k_mbn_exit_service_restarted, std::string(what) + ": the PDC service restarted before answering");
}

unsigned int ms_left(steady::time_point deadline)
{
    long long left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - steady::now()).count();
    return left > 0 ? unsigned(left) : 0;
}

/* Sends with `send` (given a fresh token) and waits, until the run's
 * deadline, for the outcome of `op`: the indication that carries the same
 * token. */
mbn_result exchange(pdc_op op, const char *what, const mbn_options &o, const mbn_input &in,
                    const std::function<int(uint32_t)> &send)
{
    uint32_t token = pdc_next_token();
    pdc_begin(op);
    int rc = send(token);
    if (rc != 0) {
        pdc_end(op);
        if (rc == PDC_SEND_CANCELLED) return interrupted();
        if (rc == QMI_TIMEOUT_ERR) return timed_out(o, what);
        if (rc == QMI_SERVICE_ERR) return restarted(what);
        return mbn_send_failure(rc, what);
    }
    /* Pages of a list are checked by the list itself; the other outcomes
     * must carry this request's token. */
    switch (pdc_wait_outcome(op, ms_left(in.deadline), op == PDC_OP_LIST ? 0 : token)) {
    case PDC_WAIT_CANCELLED:
        return interrupted();
    case PDC_WAIT_TIMEOUT:
        return timed_out(o, what);
    case PDC_WAIT_LOST:
        return restarted(what);
    case PDC_WAIT_DONE:
        break;
    }
    pdc_guard lock(g_pdc_info.pdc_mutex);
    pdc_slot_view v = pdc_slot_of(op);
    return mbn_result_of(*v.result, *v.qmi_error, what);
}

std::string format_id(const pdc_config_id &id) { return mbn_format_id(id.bytes, id.len); }

/* Active and pending ids of type/sub into the report. */
mbn_result get_selected(const mbn_options &o, const mbn_input &in, const char *what, mbn_report *r)
{
    mbn_result res = exchange(PDC_OP_GET_SELECTED, what, o, in, [&o](uint32_t token) {
        return pdc_request_get_selected(o.config_type, o.sub, token);
    });
    if (res.exit_code) return res;
    pdc_guard lock(g_pdc_info.pdc_mutex);
    const pdc_selected_slot &s = g_pdc_info.slots.get_selected;
    r->active = s.active_config_id_len ? mbn_format_id(s.active_config_id, s.active_config_id_len) : "";
    r->pending = s.pending_config_id_len ? mbn_format_id(s.pending_config_id, s.pending_config_id_len) : "";
    return res;
}

mbn_result list(const mbn_options &o, const mbn_input &in, mbn_report *r)
{
    uint32_t count = 0;
    pdc_config_list_element *head = nullptr;
    mbn_result res = exchange(PDC_OP_LIST, "list", o, in, [&](uint32_t token) {
        return pdc_list_start(o.config_type, token, &count, &head);
    });
    /* The handler pushed each id at the head: walk it backwards. */
    for (pdc_config_list_element *e = head; e; e = e->next) {
        r->ids.insert(r->ids.begin(), mbn_format_id(e->config_id, e->config_id_len));
    }
    pdc_free_config_list(head);
    if (res.exit_code) return res;
    /* The ids stand even when the selection query after them fails. */
    r->listed = true;
    return get_selected(o, in, "list (active and pending)", r);
}

mbn_result info(const mbn_options &o, const mbn_input &in, mbn_report *r)
{
    r->id = format_id(o.id);
    mbn_result res = exchange(PDC_OP_GET_CONFIG_INFO, "info", o, in, [&o](uint32_t token) {
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

mbn_result read_file(const std::string &path, std::vector<uint8_t> *out)
{
    FILE *f = fopen(path.c_str(), "rbe");
    if (!f) return fail(k_mbn_exit_failure, "load: cannot open " + path + ": " + strerror(errno));
    uint8_t buf[65536];
    size_t n;
    while ((n = fread(buf, 1, sizeof(buf), f)) > 0) {
        if (out->size() + n > k_mbn_max_file_size) {
            fclose(f);
            return fail(k_mbn_exit_failure, "load: " + path + " is larger than 64 MiB");
        }
        out->insert(out->end(), buf, buf + n);
    }
    int error = ferror(f) ? errno : 0;
    fclose(f);
    if (error) return fail(k_mbn_exit_failure, "load: cannot read " + path + ": " + strerror(error));
    if (out->empty()) return fail(k_mbn_exit_failure, "load: " + path + " is empty");
    return {};
}

mbn_result load(const mbn_options &o, const mbn_input &in, mbn_report *r)
{
    const std::vector<uint8_t> &data = in.data;
    r->id = format_id(in.load_id);
    r->size = uint32_t(data.size());
    for (size_t sent = 0; sent < data.size();) {
        uint32_t frame = uint32_t(data.size() - sent < PDC_CONFIG_FRAME_SIZE_MAX_V01 ? data.size() - sent
                                                                                    : PDC_CONFIG_FRAME_SIZE_MAX_V01);
        mbn_result res = exchange(PDC_OP_LOAD, "load", o, in, [&](uint32_t token) {
            return pdc_request_load_frame(o.config_type, in.load_id, uint32_t(data.size()), data.data() + sent,
                                          frame, token);
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

mbn_result mbn_prepare(const mbn_options &o, mbn_input *in)
{
    if (o.command != MBN_CMD_LOAD) return {};
    in->load_id = o.id;
    if (!o.id_given) {
        size_t slash = o.file.rfind('/');
        if (!mbn_parse_id(slash == std::string::npos ? o.file : o.file.substr(slash + 1), &in->load_id)) {
            return fail(k_mbn_exit_usage, "load: the file name makes no id; give one with --id");
        }
    }
    return read_file(o.file, &in->data);
}

mbn_result mbn_run(const mbn_options &o, const mbn_input &in, mbn_report *r)
{
    switch (o.command) {
    case MBN_CMD_LIST:
        return list(o, in, r);
    case MBN_CMD_INFO:
        return info(o, in, r);
    case MBN_CMD_SELECTED:
        return get_selected(o, in, "selected", r);
    case MBN_CMD_LOAD:
        return load(o, in, r);
    case MBN_CMD_SELECT:
        r->id = format_id(o.id);
        return exchange(PDC_OP_SELECT, "select", o, in, [&o](uint32_t token) {
            return pdc_request_select(o.config_type, o.id, o.sub, token);
        });
    case MBN_CMD_ACTIVATE:
        return exchange(PDC_OP_ACTIVATE, "activate", o, in, [&o](uint32_t token) {
            return pdc_request_activate(o.config_type, o.sub, token);
        });
    case MBN_CMD_DEACTIVATE:
        return exchange(PDC_OP_DEACTIVATE, "deactivate", o, in, [&o](uint32_t token) {
            return pdc_request_deactivate(o.config_type, o.sub, token);
        });
    case MBN_CMD_DELETE:
        r->id = format_id(o.id);
        return exchange(PDC_OP_DELETE, "delete", o, in, [&o](uint32_t token) {
            return pdc_request_delete(o.config_type, o.id, token);
        });
    default:
        return fail(k_mbn_exit_usage, "no command");
    }
}
