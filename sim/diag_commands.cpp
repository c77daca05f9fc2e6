/* Top-level diag commands of the simulated modem.  Layouts are the public
 * QCDM ones; all integers little-endian, structures packed. */
#include "diag_commands.h"

#include <string.h>
#include <time.h>

#include <algorithm>

#include "diag_channel.h"

namespace modemd {
namespace {

constexpr size_t k_no_max = SIZE_MAX;

/* VERSION_INFO: u8 code, char comp_date[11], comp_time[8], rel_date[11],
 * rel_time[8], model[8], u8 scm, u8 mob_cai_rev, u8 mob_model,
 * u16 mob_firmware_rev, u8 slot_cycle_index, u8 msm_ver, u8 reserved. */
constexpr const char k_comp_date[] = "Jan 01 2025";
constexpr const char k_comp_time[] = "12:00:00";
constexpr const char k_model[] = "RLKSIM";
constexpr uint8_t k_mob_cai_rev = 6;
constexpr uint16_t k_mob_firmware_rev = 1;
constexpr uint8_t k_msm_ver = 1;

/* STATUS: u8 code, 3 reserved, u8 esn[4], then 40 bytes of radio status
 * (rf mode, MIN, frame counters, channel, SID/NID...). */
constexpr size_t k_status_len = 48;
constexpr size_t k_status_esn_offset = 4;
constexpr size_t k_status_rf_mode_offset = 8;
constexpr uint16_t k_rf_mode_cdma = 1;

constexpr uint32_t k_default_esn = 0x80A1B2C3;
constexpr uint16_t k_diag_version = 8;

/* EXT_BUILD_ID: u8 code, u8 version, u16 reserved, u32 msm_hw_version,
 * u32 mobile_model_id, build id and model string, each NUL-terminated. */
constexpr uint8_t k_ext_build_id_version = 2;
constexpr uint32_t k_msm_hw_version = 0x0A0B0000;
constexpr uint32_t k_mobile_model_id = 0x0000F00D;
constexpr const char k_build_id[] = "MPSS.RLK.1.0-00001-SIM";
constexpr const char k_model_string[] = "rlk-modemd";

/* TIMESTAMP: u8 code, u64 time: upper 48 bits count 1.25 ms units since
 * the GPS epoch (1980-01-06), lower 16 bits a sub-unit count (0 here). */
constexpr int64_t k_gps_epoch_unix_s = 315964800;
constexpr int64_t k_ts_units_per_s = 800; /* 1.25 ms */
constexpr int k_ts_unit_shift = 16;

/* LOG_CONFIG: u8 code, 3 pad, u32 op, op arguments.  Responses insert a
 * u32 result after op. */
constexpr uint32_t k_log_op_disable = 0;
constexpr uint32_t k_log_op_get_range = 1;
constexpr uint32_t k_log_op_set_mask = 3;
constexpr uint32_t k_log_op_get_mask = 4;
constexpr size_t k_log_config_head_len = 8;
constexpr size_t k_log_config_mask_head_len = 16; /* head, equip id, item count */
constexpr size_t k_log_config_get_head_len = 12;  /* head, equip id */
constexpr uint32_t k_log_result_ok = 0;
constexpr uint32_t k_log_result_bad_equip = 1;

/* EVENT_REPORT response: u8 code, u16 length (0: no event follows). */

/* CONTROL (mode change): u8 code, u16 mode; the response echoes the
 * request.  Modes 0 offline analog, 1 offline digital, 2 reset, 3 factory
 * test, 4 online, 5 low power, 6 power off. */
constexpr size_t k_control_len = 3;
constexpr uint16_t k_control_last_mode = 6;

typedef void (*diag_cmd_handler)(diag_modem_state &m, const uint8_t *req, size_t len, std::vector<uint8_t> *rsp);

struct diag_cmd_entry {
    uint8_t code;
    size_t min_len;
    size_t max_len;
    diag_cmd_handler fn;
};

void put_u64(std::vector<uint8_t> *out, uint64_t v)
{
    for (int i = 0; i < 8; i++) out->push_back(uint8_t(v >> (8 * i)));
}

/* Appends `text` padded with NULs (or cut) to exactly `width` bytes. */
void put_fixed_text(std::vector<uint8_t> *out, const char *text, size_t width)
{
    size_t n = strlen(text);
    for (size_t i = 0; i < width; i++) out->push_back(i < n ? uint8_t(text[i]) : 0);
}

void put_cstring(std::vector<uint8_t> *out, const char *text)
{
    out->insert(out->end(), text, text + strlen(text) + 1);
}

uint32_t modem_esn(const diag_modem_state &m)
{
    std::vector<uint8_t> nv;
    if (m.store && m.store->efs_read(diag_nv_item_path(k_nv_item_esn), &nv) == k_efs_ok && nv.size() >= 4) {
        return diag_get_u32(nv.data());
    }
    return k_default_esn;
}

void cmd_version_info(diag_modem_state &, const uint8_t *, size_t, std::vector<uint8_t> *rsp)
{
    rsp->push_back(k_diag_cmd_version_info);
    put_fixed_text(rsp, k_comp_date, sizeof(k_comp_date) - 1);
    put_fixed_text(rsp, k_comp_time, sizeof(k_comp_time) - 1);
    put_fixed_text(rsp, k_comp_date, sizeof(k_comp_date) - 1);
    put_fixed_text(rsp, k_comp_time, sizeof(k_comp_time) - 1);
    put_fixed_text(rsp, k_model, 8);
    rsp->push_back(0); /* station class mark */
    rsp->push_back(k_mob_cai_rev);
    rsp->push_back(0); /* mobile model */
    diag_put_u16(rsp, k_mob_firmware_rev);
    rsp->push_back(0); /* slot cycle index */
    rsp->push_back(k_msm_ver);
    rsp->push_back(0);
}

void cmd_esn(diag_modem_state &m, const uint8_t *, size_t, std::vector<uint8_t> *rsp)
{
    rsp->push_back(k_diag_cmd_esn);
    diag_put_u32(rsp, modem_esn(m));
}

void cmd_status(diag_modem_state &m, const uint8_t *, size_t, std::vector<uint8_t> *rsp)
{
    rsp->assign(k_status_len, 0);
    (*rsp)[0] = k_diag_cmd_status;
    uint32_t esn = modem_esn(m);
    for (size_t i = 0; i < 4; i++) (*rsp)[k_status_esn_offset + i] = uint8_t(esn >> (8 * i));
    (*rsp)[k_status_rf_mode_offset] = uint8_t(k_rf_mode_cdma);
}

void cmd_diag_ver(diag_modem_state &, const uint8_t *, size_t, std::vector<uint8_t> *rsp)
{
    rsp->push_back(k_diag_cmd_diag_ver);
    diag_put_u16(rsp, k_diag_version);
}

void cmd_timestamp(diag_modem_state &, const uint8_t *, size_t, std::vector<uint8_t> *rsp)
{
    struct timespec ts;
    clock_gettime(CLOCK_REALTIME, &ts);
    int64_t units = (int64_t(ts.tv_sec) - k_gps_epoch_unix_s) * k_ts_units_per_s +
                    int64_t(ts.tv_nsec) / (1000000000 / k_ts_units_per_s);
    if (units < 0) units = 0;
    rsp->push_back(k_diag_cmd_timestamp);
    put_u64(rsp, uint64_t(units) << k_ts_unit_shift);
}

void cmd_ext_build_id(diag_modem_state &, const uint8_t *, size_t, std::vector<uint8_t> *rsp)
{
    rsp->push_back(k_diag_cmd_ext_build_id);
    rsp->push_back(k_ext_build_id_version);
    diag_put_u16(rsp, 0);
    diag_put_u32(rsp, k_msm_hw_version);
    diag_put_u32(rsp, k_mobile_model_id);
    put_cstring(rsp, k_build_id);
    put_cstring(rsp, k_model_string);
}

/* NV_READ / NV_WRITE share one layout; the response echoes the request
 * with data and status filled in.  Items live in the EFS tree, so a write
 * keeps all 128 data bytes and a read returns what was kept, zero-padded. */
void cmd_nv(diag_modem_state &m, const uint8_t *req, size_t len, std::vector<uint8_t> *rsp)
{
    constexpr size_t k_item_offset = 1;
    constexpr size_t k_data_offset = 3;
    constexpr size_t k_status_offset = k_data_offset + k_nv_data_len;
    static_assert(k_status_offset + 2 == k_nv_packet_len, "NV packet layout");
    rsp->assign(req, req + len);
    uint16_t item = diag_get_u16(req + k_item_offset);
    std::string path = diag_nv_item_path(item);
    uint16_t status = k_nv_status_done;
    if (req[0] == k_diag_cmd_nv_read) {
        std::vector<uint8_t> data;
        memset(rsp->data() + k_data_offset, 0, k_nv_data_len);
        if (!m.store || m.store->efs_read(path, &data) != k_efs_ok) {
            status = k_nv_status_inactive;
        } else if (!data.empty()) {
            memcpy(rsp->data() + k_data_offset, data.data(), data.size() < k_nv_data_len ? data.size() : k_nv_data_len);
        }
    } else {
        std::vector<uint8_t> data(req + k_data_offset, req + k_data_offset + k_nv_data_len);
        if (!m.store || m.store->efs_write(path, data) != k_efs_ok) status = k_nv_status_failed;
    }
    (*rsp)[k_status_offset] = uint8_t(status);
    (*rsp)[k_status_offset + 1] = uint8_t(status >> 8);
}

/* The mask of one equipment id, created all-clear on first use. */
std::vector<uint8_t> &log_mask(diag_modem_state &m, uint32_t equip)
{
    std::vector<uint8_t> &mask = m.log_masks[equip];
    if (mask.empty()) mask.assign((k_log_last_item + 1 + 7) / 8, 0);
    return mask;
}

void put_log_config_head(std::vector<uint8_t> *rsp, uint32_t op, uint32_t result)
{
    rsp->push_back(k_diag_cmd_log_config);
    rsp->insert(rsp->end(), 3, 0);
    diag_put_u32(rsp, op);
    diag_put_u32(rsp, result);
}

void cmd_log_config(diag_modem_state &m, const uint8_t *req, size_t len, std::vector<uint8_t> *rsp)
{
    uint32_t op = diag_get_u32(req + 4);
    if (op == k_log_op_disable) {
        m.log_masks.clear();
        put_log_config_head(rsp, op, k_log_result_ok);
        return;
    }
    if (op == k_log_op_get_range) {
        put_log_config_head(rsp, op, k_log_result_ok);
        for (uint32_t e = 0; e < k_log_equip_count; e++) diag_put_u32(rsp, e == 0 ? 0 : k_log_last_item);
        return;
    }
    if (op != k_log_op_set_mask && op != k_log_op_get_mask) {
        diag_error_response(k_diag_cmd_bad_parm, req, len, rsp);
        return;
    }
    size_t head = op == k_log_op_set_mask ? k_log_config_mask_head_len : k_log_config_get_head_len;
    if (len < head) {
        diag_error_response(k_diag_cmd_bad_len, req, len, rsp);
        return;
    }
    uint32_t equip = diag_get_u32(req + 8);
    if (equip == 0 || equip >= k_log_equip_count) {
        put_log_config_head(rsp, op, k_log_result_bad_equip);
        diag_put_u32(rsp, equip);
        return;
    }
    std::vector<uint8_t> &mask = log_mask(m, equip);
    uint32_t items = k_log_last_item + 1;
    if (op == k_log_op_set_mask) {
        uint32_t asked = diag_get_u32(req + 12);
        size_t mask_bytes = (size_t(asked) + 7) / 8;
        if (asked > items || len - head < mask_bytes) {
            diag_error_response(k_diag_cmd_bad_len, req, len, rsp);
            return;
        }
        std::fill(mask.begin(), mask.end(), 0);
        memcpy(mask.data(), req + head, mask_bytes);
        items = asked;
    }
    put_log_config_head(rsp, op, k_log_result_ok);
    diag_put_u32(rsp, equip);
    diag_put_u32(rsp, items);
    rsp->insert(rsp->end(), mask.begin(), mask.begin() + long((items + 7) / 8));
}

void cmd_event_report(diag_modem_state &m, const uint8_t *req, size_t, std::vector<uint8_t> *rsp)
{
    m.event_report_on = req[1] != 0;
    rsp->push_back(k_diag_cmd_event_report);
    diag_put_u16(rsp, 0);
}

/* EXT_MESSAGE_CONFIG: u8 code, u8 sub-command, then its fields.  The
 * simulated modem sends no messages; it keeps no levels and reports one
 * subsystem id range whose levels are all 0.
 *   1 retrieve ranges   -> code, 1, u8 status, u8 0, u32 count, (u16 first, u16 last)*
 *   2/3 build/rt levels  u16 first, u16 last -> the request, u8 status, u8 0, u32 level*
 *   4 set rt levels      u16 first, u16 last, u16 0, u32 level* -> the request, status at @6
 *   5 set all levels     u8 0, u8 0, u32 level -> the request, status at @2 */
constexpr uint8_t k_msg_sub_ranges = 1;
constexpr uint8_t k_msg_sub_build_mask = 2;
constexpr uint8_t k_msg_sub_rt_mask = 3;
constexpr uint8_t k_msg_sub_set_rt = 4;
constexpr uint8_t k_msg_sub_set_all = 5;
constexpr uint8_t k_msg_status_ok = 1;
constexpr uint16_t k_msg_ssid_last = 0x0065;
constexpr size_t k_msg_range_head_len = 6;
constexpr size_t k_msg_set_head_len = 8;
constexpr uint16_t k_msg_max_ssids = 4096;

void cmd_ext_msg_config(diag_modem_state &, const uint8_t *req, size_t len, std::vector<uint8_t> *rsp)
{
    uint8_t sub = req[1];
    if (sub == k_msg_sub_ranges) {
        rsp->assign({k_diag_cmd_ext_msg_config, sub, k_msg_status_ok, 0});
        diag_put_u32(rsp, 1);
        diag_put_u16(rsp, 0);
        diag_put_u16(rsp, k_msg_ssid_last);
        return;
    }
    if (sub == k_msg_sub_set_all) {
        rsp->assign(req, req + len);
        if (rsp->size() < 4) rsp->resize(4, 0); /* room for the status byte */
        (*rsp)[2] = k_msg_status_ok;
        return;
    }
    if (sub != k_msg_sub_build_mask && sub != k_msg_sub_rt_mask && sub != k_msg_sub_set_rt) {
        diag_error_response(k_diag_cmd_bad_parm, req, len, rsp);
        return;
    }
    if (len < k_msg_range_head_len) {
        diag_error_response(k_diag_cmd_bad_len, req, len, rsp);
        return;
    }
    uint16_t first = diag_get_u16(req + 2);
    uint16_t last = diag_get_u16(req + 4);
    if (last < first || last - first >= k_msg_max_ssids) {
        diag_error_response(k_diag_cmd_bad_parm, req, len, rsp);
        return;
    }
    if (sub == k_msg_sub_set_rt) {
        rsp->assign(req, req + len);
        if (len >= k_msg_set_head_len) (*rsp)[6] = k_msg_status_ok;
        return;
    }
    rsp->assign(req, req + k_msg_range_head_len);
    rsp->push_back(k_msg_status_ok);
    rsp->push_back(0);
    for (uint32_t i = first; i <= last; i++) diag_put_u32(rsp, 0);
}

void cmd_control(diag_modem_state &m, const uint8_t *req, size_t len, std::vector<uint8_t> *rsp)
{
    uint16_t mode = diag_get_u16(req + 1);
    if (mode > k_control_last_mode) {
        diag_error_response(k_diag_cmd_bad_parm, req, len, rsp);
        return;
    }
    m.oper_mode = mode;
    rsp->assign(req, req + len);
}

void cmd_subsys(diag_modem_state &m, const uint8_t *req, size_t len, std::vector<uint8_t> *rsp)
{
    diag_answer_subsys(m, req, len, rsp);
}

const diag_cmd_entry k_diag_commands[] = {
    {k_diag_cmd_version_info, 1, 1, cmd_version_info},
    {k_diag_cmd_esn, 1, 1, cmd_esn},
    {k_diag_cmd_status, 1, 1, cmd_status},
    {k_diag_cmd_diag_ver, 1, 1, cmd_diag_ver},
    {k_diag_cmd_timestamp, 1, 1, cmd_timestamp},
    {k_diag_cmd_nv_read, k_nv_packet_len, k_nv_packet_len, cmd_nv},
    {k_diag_cmd_nv_write, k_nv_packet_len, k_nv_packet_len, cmd_nv},
    {k_diag_cmd_control, k_control_len, k_control_len, cmd_control},
    {k_diag_cmd_subsys, k_diag_subsys_header_len, k_no_max, cmd_subsys},
    {k_diag_cmd_event_report, 2, 2, cmd_event_report},
    {k_diag_cmd_log_config, k_log_config_head_len, k_no_max, cmd_log_config},
    {k_diag_cmd_ext_build_id, 1, 1, cmd_ext_build_id},
    {k_diag_cmd_ext_msg_config, 2, k_no_max, cmd_ext_msg_config},
};

}  // namespace

bool diag_log_enabled(const diag_modem_state &m, uint16_t code)
{
    auto it = m.log_masks.find(uint32_t(code >> 12));
    uint32_t item = code & k_log_last_item;
    return it != m.log_masks.end() && item / 8 < it->second.size() && ((it->second[item / 8] >> (item % 8)) & 1);
}

std::string diag_nv_item_path(uint16_t item) { return "/nvm/num/" + std::to_string(item); }

void diag_error_response(uint8_t code, const uint8_t *req, size_t len, std::vector<uint8_t> *rsp)
{
    rsp->clear();
    rsp->push_back(code);
    rsp->insert(rsp->end(), req, req + len);
}

void diag_answer_command(diag_modem_state &m, const uint8_t *req, size_t len, std::vector<uint8_t> *rsp)
{
    rsp->clear();
    if (len == 0) {
        rsp->push_back(k_diag_cmd_bad_len);
        return;
    }
    for (const diag_cmd_entry &e : k_diag_commands) {
        if (e.code != req[0]) continue;
        if (len < e.min_len || len > e.max_len) {
            diag_error_response(k_diag_cmd_bad_len, req, len, rsp);
        } else {
            e.fn(m, req, len, rsp);
        }
        return;
    }
    diag_error_response(k_diag_cmd_bad_cmd, req, len, rsp);
}

}  // namespace modemd
