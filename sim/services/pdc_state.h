/* The simulated modem's MBN configurations (PDC service): per type
 * (0 hardware/platform, 1 software) the stored configurations, per type
 * and subscription the active and pending selection, per SIM slot the
 * carrier selection mode.  Kept in <state>/pdc/configs (rewritten
 * atomically on every change); contents of loaded files beside it in
 * <state>/pdc/mbn/. */
#ifndef MODEMD_PDC_STATE_H
#define MODEMD_PDC_STATE_H

#include <stdint.h>

#include <string>
#include <vector>

namespace modemd {

constexpr uint32_t k_pdc_types = 2;
constexpr uint32_t k_pdc_subs = 2;
constexpr uint32_t k_pdc_slots = 2;
/* Most configurations one type holds. */
constexpr size_t k_pdc_max_configs_per_type = 100;
/* Default room for configurations, in bytes of their sizes. */
constexpr uint64_t k_pdc_default_capacity = 16u * 1024u * 1024u;

struct pdc_config {
    std::string id; /* raw id bytes */
    uint32_t size = 0;
    uint32_t version = 0;
    std::string desc;
};

struct pdc_selection {
    std::string active;  /* empty: none */
    std::string pending; /* empty: none */
};

struct pdc_state {
    std::vector<pdc_config> configs[k_pdc_types];
    pdc_selection selected[k_pdc_types][k_pdc_subs];
    uint32_t selection_mode[k_pdc_slots] = {0, 0};
    uint64_t capacity = k_pdc_default_capacity;

    pdc_config *find(uint32_t type, const std::string &id);
    uint64_t used_bytes() const;
    /* True when `id` is the active configuration of any subscription. */
    bool is_active(uint32_t type, const std::string &id) const;
};

/* The state of the daemon whose state directory is `dir`, loaded (or
 * seeded) on first use.  A state file that does not parse is refused
 * whole and set aside as "configs.bad", the seed is used, and `refused`
 * says so (for the log). */
pdc_state &pdc_state_for(const std::string &dir, std::string *refused = nullptr);
/* Writes the state file; false when it could not be written. */
bool pdc_state_save(const std::string &dir, const pdc_state &st);
/* Stores / removes the content of a loaded configuration. */
bool pdc_content_save(const std::string &dir, uint32_t type, const std::string &id, const std::vector<uint8_t> &data);
void pdc_content_remove(const std::string &dir, uint32_t type, const std::string &id);
/* Replaces the state with the seed. */
void pdc_state_seed(pdc_state *st);

std::string pdc_hex(const std::string &bytes);
bool pdc_unhex(const std::string &hex, std::string *out);

}  // namespace modemd

#endif
