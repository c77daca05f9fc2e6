/* The cards of the simulated modem's UIM service: two slots, each with a
 * power state; slot 1 holds a physical SIM, slot 2 a physical SIM and an
 * eUICC whose ISD-R keeps profiles.  Which card slot 2 presents is decided
 * at each power-up of the slot: the eUICC when the EFS file
 * "/nv/item_files/modem/uim/uimdrv/esim_eid" holds its EID and it has an
 * enabled profile, else the physical SIM.
 *
 * The persistent part (EID, power states, profiles) lives in
 * <state>/uim_state, written atomically after every change; logical
 * channels are lost with the service, and each one with the connection
 * that opened it, as a card resets the channels of a terminal that goes
 * away. */
#ifndef MODEMD_UIM_CARD_H
#define MODEMD_UIM_CARD_H

#include <stdint.h>

#include <array>
#include <map>
#include <string>
#include <vector>

#include "daemon.h"

namespace modemd {

constexpr uint8_t k_uim_slot_count = 2;
constexpr uint8_t k_uim_euicc_slot = 2;
constexpr size_t k_uim_eid_len = 16;
constexpr size_t k_uim_iccid_len = 10;
constexpr size_t k_uim_max_channels = 3;
constexpr char k_uim_eid_efs_path[] = "/nv/item_files/modem/uim/uimdrv/esim_eid";

struct uim_profile {
    std::array<uint8_t, k_uim_iccid_len> iccid{}; /* BCD, nibbles swapped */
    bool enabled = false;
    std::string nickname;
};

struct uim_model {
    std::string state_path;
    bool powered[k_uim_slot_count] = {true, true};
    bool euicc_active = false; /* slot 2 presents the eUICC */
    std::array<uint8_t, k_uim_eid_len> eid{};
    std::vector<uim_profile> profiles;
    std::map<uint8_t, uint64_t> channels; /* open logical channels to the ISD-R: their connection */
    uint32_t seen_port = 0;     /* server port of the last request: a new one means a restart */

    bool save() const;
    uim_profile *find_profile(const uint8_t *iccid);
    bool has_enabled_profile() const;
};

/* The model of the daemon's state directory, loaded (or seeded) on first
 * use.  When the service came back from a restart since the last call,
 * the channels are gone and both slots are powered up again. */
uim_model &uim_model_of(daemon &d, const sim_service *svc = nullptr);

/* Closes the logical channels connection `conn_id` opened (it closed). */
void uim_connection_closed(daemon &d, uint64_t conn_id);

/* Powers a slot (1-based) and, for slot 2 going up, chooses its card. */
void uim_set_power(daemon &d, uim_model &m, uint8_t slot, bool up);

/* Text forms: EID as 32 digits, ICCID as 20 digits (swapped nibbles). */
std::string uim_eid_text(const std::array<uint8_t, k_uim_eid_len> &eid);
bool uim_parse_eid(const std::string &text, std::array<uint8_t, k_uim_eid_len> *out);
std::string uim_iccid_text(const std::array<uint8_t, k_uim_iccid_len> &iccid);
bool uim_parse_iccid(const std::string &text, std::array<uint8_t, k_uim_iccid_len> *out);

/* Answers one APDU sent to the ISD-R on `channel`: response data and the
 * two status words. */
std::vector<uint8_t> uim_isdr_apdu(uim_model &m, uint8_t channel, const uint8_t *apdu, size_t len);

/* Control requests ("uim ...") and the one-shot restart fault. */
std::string uim_control(daemon &d, const std::vector<std::string> &args);
/* True when the request (message id, and for APDUs the ES10 tag) is armed
 * to take the service down: the client then gets no answer. */
bool uim_take_crash(qmi_call &call, uint32_t es10_tag);

}  // namespace modemd

#endif
