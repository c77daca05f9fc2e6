/* The SIM card slots of the simulated modem, answered through typed common
 * requests of the extension service: 39 status query, 55 status get, 56
 * type query, 57 status set, 80 hot-swap run.  Each slot has presence,
 * power, card type and a status line (mode, level); the slots live in the
 * modem state (one file, written atomically) so every connection and a
 * restarted simulator see the same cards.  Layouts: tolvek_card_payload.h. */
#ifndef MODEMD_EXT_CARD_SLOT_H
#define MODEMD_EXT_CARD_SLOT_H

#include "ext_common.h"
#include "tolvek_card_payload.h"

namespace modemd {

/* EFS file of the slots: per slot u8 present, power, card type, line mode,
 * line level. */
constexpr const char k_card_slot_file[] = "/nv/item_files/modem/uim/card_slots";

/* Errors of card requests besides those of ext_common.h. */
constexpr int32_t k_common_ebusy = -16; /* a hot-swap run is going on already */

struct card_slot {
    uint8_t present;
    uint8_t power;
    uint8_t kind;
    uint8_t line_mode;
    uint8_t line_level;
};

struct card_slots {
    card_slot slot[TOLVEK_CARD_SLOT_COUNT];
};

/* The slots as stored, or those of a fresh modem (a single-SIM card in
 * slot 0 and a multi-SIM card in slot 1, both present and powered). */
card_slots card_slots_load(const state_store &store);
bool card_slots_save(state_store &store, const card_slots &slots);

int32_t card_status_query(qmi_call &call, const tolvek_common_req &req, tolvek_common_rsp *rsp);
int32_t card_status_get(qmi_call &call, const tolvek_common_req &req, tolvek_common_rsp *rsp);
int32_t card_type_query(qmi_call &call, const tolvek_common_req &req, tolvek_common_rsp *rsp);
int32_t card_status_set(qmi_call &call, const tolvek_common_req &req, tolvek_common_rsp *rsp);
/* sim/services/ext_card_hotswap.cpp */
int32_t card_hotswap(qmi_call &call, const tolvek_common_req &req, tolvek_common_rsp *rsp);

/* "ext card ..." control requests (args[1] == "card"):
 *   ext card                  the slots and the hot-swap run
 *   ext card second-ms <ms>   length of one hot-swap "second" (1..10000,
 *                             default 1000), so that tests need not wait
 *                             long, or can slow a run down */
std::string card_control(daemon &d, const std::vector<std::string> &args);

/* One line describing the hot-swap run (ext_card_hotswap.cpp). */
std::string card_hotswap_describe();
/* Sets the length of one hot-swap second; false when out of range. */
bool card_hotswap_set_second_ms(int64_t ms);

}  // namespace modemd

#endif
