/* The seed of a fresh simulator: the files a user expects to find on a
 * modem, so that the first commands print real data. */
#include "state_store.h"

namespace modemd {
namespace {

struct seed_file {
    const char *path;
    std::vector<uint8_t> data;
};

}  // namespace

void seed_state(state_store &store)
{
    const seed_file files[] = {
        /* Transmit antenna selection: 4 x u32 (mode, antenna, system, band mask). */
        {"/nv/item_files/modem/antenna/ant_tx_config", {0x01, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00,
                                                        0x04, 0x00, 0x00, 0x00, 0x05, 0x00, 0x00, 0x00}},
        {"/nv/item_files/modem/tolvek/qmi_print_flag", {0x00}},
        {"/nv/item_files/modem/tolvek/rf_print_mask", {0x00, 0x00, 0x00, 0x00}},
        {"/orvex/orvex_print_mask", {0x00, 0x00, 0x00, 0x00}},
        {"/nv/item_files/modem/tolvek/ssr_update_count", {0x00, 0x00, 0x00, 0x00}},
    };
    for (const seed_file &f : files) store.efs_write(f.path, f.data);
    store.set_property("persist.vendor.ssr.restart_level", "ALL_ENABLE");
}

}  // namespace modemd
