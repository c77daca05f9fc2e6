/* The simulated modem's diag commands: a table {command code → handler}
 * over the modem state shared by all diag connections.  A handler gets a
 * request whose length the table has already checked and writes the whole
 * response (command code first).  Unknown codes answer BAD_CMD and lengths
 * outside the table's bounds BAD_LEN, both echoing the request. */
#ifndef MODEMD_DIAG_COMMANDS_H
#define MODEMD_DIAG_COMMANDS_H

#include <stddef.h>
#include <stdint.h>

#include <map>
#include <string>
#include <vector>

#include "state_store.h"

namespace modemd {

/* Command codes (first byte of a request, echoed in the response). */
constexpr uint8_t k_diag_cmd_version_info = 0x00;
constexpr uint8_t k_diag_cmd_esn = 0x01;
constexpr uint8_t k_diag_cmd_status = 0x0C;
constexpr uint8_t k_diag_cmd_bad_cmd = 0x13;
constexpr uint8_t k_diag_cmd_bad_parm = 0x14;
constexpr uint8_t k_diag_cmd_bad_len = 0x15;
constexpr uint8_t k_diag_cmd_diag_ver = 0x1C;
constexpr uint8_t k_diag_cmd_timestamp = 0x1D;
constexpr uint8_t k_diag_cmd_nv_read = 0x26;
constexpr uint8_t k_diag_cmd_nv_write = 0x27;
constexpr uint8_t k_diag_cmd_control = 0x29;
constexpr uint8_t k_diag_cmd_subsys = 0x4B;
constexpr uint8_t k_diag_cmd_event_report = 0x60;
constexpr uint8_t k_diag_cmd_log_config = 0x73;
constexpr uint8_t k_diag_cmd_ext_build_id = 0x7C;
constexpr uint8_t k_diag_cmd_ext_msg_config = 0x7D;

/* Subsystem dispatch header: u8 0x4B, u8 subsystem id, u16 subsystem command. */
constexpr size_t k_diag_subsys_header_len = 4;
constexpr uint8_t k_diag_subsys_cm = 15;
constexpr uint8_t k_diag_subsys_fs = 19;

/* NV read/write: u8 code, u16 item, u8 data[128], u16 status. */
constexpr size_t k_nv_data_len = 128;
constexpr size_t k_nv_packet_len = 133;
constexpr uint16_t k_nv_status_done = 0;
constexpr uint16_t k_nv_status_failed = 4;
constexpr uint16_t k_nv_status_inactive = 5;
constexpr uint16_t k_nv_item_esn = 0;

/* LOG_CONFIG: equipment ids 0..15, each with codes up to its last item. */
constexpr uint32_t k_log_equip_count = 16;
constexpr uint32_t k_log_last_item = 0x0FFF;

/* What every diag connection sees of the modem. */
struct diag_modem_state {
    state_store *store = nullptr;
    /* LOG_CONFIG masks by equipment id, one bit per log item. */
    std::map<uint32_t, std::vector<uint8_t>> log_masks;
    bool event_report_on = false;
    /* Operating mode set by CONTROL (0x29); the modem runs online. */
    uint16_t oper_mode = 4;
};

/* True when the LOG_CONFIG mask of `m` enables log `code` (equipment id
 * in the top nibble, item in the low 12 bits). */
bool diag_log_enabled(const diag_modem_state &m, uint16_t code);

/* The EFS path that holds NV item `item`, so that NV and EFS views of the
 * modem agree ("/nvm/num/<item>"). */
std::string diag_nv_item_path(uint16_t item);

/* Writes the response to one command into `rsp` (cleared first). */
void diag_answer_command(diag_modem_state &m, const uint8_t *req, size_t len, std::vector<uint8_t> *rsp);

/* The error response `code` (BAD_CMD, BAD_PARM, BAD_LEN): the code, then the
 * request. */
void diag_error_response(uint8_t code, const uint8_t *req, size_t len, std::vector<uint8_t> *rsp);

/* Subsystem commands (0x4B), sim/diag_subsys.cpp; same contract. */
void diag_answer_subsys(diag_modem_state &m, const uint8_t *req, size_t len, std::vector<uint8_t> *rsp);

}  // namespace modemd

#endif
