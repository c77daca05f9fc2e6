/* The radio scene behind the vendor statistics service: per subscription,
 * the serving LTE cell and its carriers, the NR carriers, WCDMA and GSM
 * receive levels and the antenna state.  Items of the service are packed
 * from it as docs/vendor-stats-service.md lays them out.  A fixed scene
 * reports its values as set; a drifting scene moves every level around
 * its set value like a live radio. */
#ifndef MODEMD_VS_STATS_SCENE_H
#define MODEMD_VS_STATS_SCENE_H

#include <stdint.h>

#include <string>
#include <vector>

namespace modemd {

constexpr int k_vs_rx_count = 4;
constexpr int k_vs_lte_carriers = 7; /* PCC, SCC1..SCC6 */
constexpr int k_vs_nr_carriers = 3;  /* PCC, SCC1, SCC2 */
constexpr int k_vs_asdiv_fields = 12;
constexpr int k_vs_subs = 2;

struct vs_lte_carrier {
    bool present = false;
    uint32_t earfcn = 0;
    uint16_t pci = 0;
    uint8_t rx_valid = 0;
    float rsrp[k_vs_rx_count] = {};
    float rsrq[k_vs_rx_count] = {};
    float rssi[k_vs_rx_count] = {};
    float snr[k_vs_rx_count] = {};
};

struct vs_nr_carrier {
    bool present = false;
    float rsrp[k_vs_rx_count] = {};
    float rsrq = 0;
};

struct vs_scene {
    bool served = true; /* the subscription has a modem stack at all */
    bool drift = false;
    vs_lte_carrier lte[k_vs_lte_carriers];
    bool nr_present = false;
    float nr_rssi[k_vs_rx_count] = {};
    float nr_snr[k_vs_rx_count] = {};
    vs_nr_carrier nr[k_vs_nr_carriers];
    uint8_t asdiv[k_vs_asdiv_fields] = {};
    bool wcdma_present = false;
    float wcdma_agc[2] = {};
    bool gsm_present = false;
    float gsm_prx = 0, gsm_drx = 0;
    bool ant_present = false;
    uint8_t ant_number = 0;
    uint16_t ant_switch_path = 0;
    uint16_t sig_path = 0;
    uint8_t old_config = 0;
    uint8_t new_config = 0;
};

/* The seed scene of a subscription. */
vs_scene vs_scene_default(int sub);

/* Packs item `data_id` of `scene` at time `now_ms` into `out`; false when
 * the scene has nothing for that id. */
bool vs_scene_item(const vs_scene &scene, uint32_t data_id, uint64_t now_ms, std::vector<uint8_t> *out);

/* Sets one named value ("lte.0.rsrp1", "nr.rssi2", "ant.num", ...); false
 * for an unknown name or a value out of the field's range. */
bool vs_scene_set(vs_scene *scene, const std::string &name, const std::string &value);
/* The names vs_scene_set knows, for the control help. */
std::string vs_scene_field_names(void);

/* Data ids the service serves. */
extern const uint16_t k_vs_served_ids[];
extern const size_t k_vs_served_id_count;

}  // namespace modemd

#endif
