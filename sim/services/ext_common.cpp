#include "ext_common.h"
#include "ext_stats_debug.h"

#include <string.h>

#include <vector>

namespace modemd {
namespace {

/* Bytes of the response record before the value. */
constexpr uint32_t k_rsp_head_len = offsetof(tolvek_common_rsp, value);

/* Handles one command code; fills `rsp` beyond word and result and returns
 * the result. */
typedef int32_t (*common_cmd_handler)(qmi_call &call, const tolvek_extend_msg &req, tolvek_common_rsp *rsp);

struct common_cmd_entry {
    uint32_t cmd_code;
    common_cmd_handler fn;
};

void put_u32(std::vector<uint8_t> *out, uint32_t v)
{
    for (int i = 0; i < 4; i++) out->push_back(uint8_t(v >> (8 * i)));
}

int32_t store_state(qmi_call &call, const char *path, const std::vector<uint8_t> &data)
{
    return call.d.store().efs_write(path, data) == k_efs_ok ? k_common_ok : k_common_eio;
}

/* GPIO state file: u32 number of values given, then the values carried
 * (at most 50) as i32. */
int32_t gpio_set(qmi_call &call, const tolvek_extend_msg &req_msg, tolvek_common_rsp *)
{
    tolvek_gpio_set_req req = ext_payload_as<tolvek_gpio_set_req>(req_msg);
    uint32_t carried = req.count < TOLVEK_GPIO_VALUE_MAX ? req.count : TOLVEK_GPIO_VALUE_MAX;
    std::vector<uint8_t> file;
    put_u32(&file, req.count);
    for (uint32_t i = 0; i < carried; i++) put_u32(&file, uint32_t(req.gpio_v[i]));
    return store_state(call, TOLVEK_GPIO_STATE_FILE, file);
}

/* RF transmit state file: u32 v_ant, u32 v_sys, u64 v_band_list. */
int32_t rf_tx_set(qmi_call &call, const tolvek_extend_msg &req_msg, tolvek_common_rsp *)
{
    tolvek_rf_tx_set_req req = ext_payload_as<tolvek_rf_tx_set_req>(req_msg);
    std::vector<uint8_t> file;
    put_u32(&file, req.v_ant);
    put_u32(&file, req.v_sys);
    put_u32(&file, uint32_t(req.v_band_list));
    put_u32(&file, uint32_t(req.v_band_list >> 32));
    return store_state(call, TOLVEK_RF_TX_STATE_FILE, file);
}

int32_t typed_request(qmi_call &call, const tolvek_extend_msg &req_msg, tolvek_common_rsp *rsp)
{
    tolvek_common_req req = ext_payload_as<tolvek_common_req>(req_msg);
    rsp->type = req.type;
    if (req.len > TOLVEK_COMMON_VALUE_MAX) return k_common_einval;
    for (const ext_typed_entry *e = g_ext_typed_requests; e->fn; e++) {
        if (e->type == req.type) {
            int32_t result = e->fn(call, req, rsp);
            if (rsp->len > TOLVEK_COMMON_RSP_VALUE_MAX) rsp->len = TOLVEK_COMMON_RSP_VALUE_MAX;
            return result;
        }
    }
    call.d.log("ext: common request of unknown type %u", req.type);
    return k_common_unsupported;
}

const common_cmd_entry k_common_cmds[] = {
    {TOLVEK_COMMON_CMD_GPIO_SET, gpio_set},
    {TOLVEK_COMMON_CMD_RF_TX_SET, rf_tx_set},
    {TOLVEK_COMMON_CMD_TYPED, typed_request},
};

/* Commands whose answer is not a typed record: their handler writes the
 * whole payload. */
const ext_request_entry k_common_raw_cmds[] = {
    {TOLVEK_COMMON_CMD_STATS_DEBUG, ext_stats_debug_info},
};

}  // namespace

void ext_handle_common_request(qmi_call &call, const tolvek_extend_msg &req, tolvek_extend_msg &resp)
{
    uint32_t cmd_code = ext_payload_as<uint32_t>(req);
    for (const ext_request_entry &e : k_common_raw_cmds) {
        if (e.request_code == cmd_code) return e.fn(call, req, resp);
    }
    tolvek_common_rsp rsp;
    memset(&rsp, 0, sizeof(rsp));
    rsp.word = cmd_code;
    const common_cmd_entry *entry = nullptr;
    for (const common_cmd_entry &e : k_common_cmds) {
        if (e.cmd_code == cmd_code) entry = &e;
    }
    if (entry) {
        rsp.result = entry->fn(call, req, &rsp);
    } else {
        call.d.log("ext: common command %u not supported", cmd_code);
        rsp.result = k_common_unsupported;
    }
    ext_reply_with(resp, rsp, k_rsp_head_len + rsp.len);
}

}  // namespace modemd
