/* The seed of a fresh simulator: the files a user expects to find on a
 * modem, so that the first commands print real data.  Layouts of the
 * extension-service state files and NV items: docs/extension-service.md. */
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
        /* RF transmit test state: u32 v_ant 1 (upper antenna), u32 v_sys 4
         * (LTE), u64 band mask of LTE b1, b3, b7 and b41 (bits 0, 2, 6, 40). */
        {"/nv/item_files/modem/antenna/ant_tx_config", {0x01, 0x00, 0x00, 0x00, 0x04, 0x00, 0x00, 0x00,
                                                        0x45, 0x00, 0x00, 0x00, 0x00, 0x01, 0x00, 0x00}},
        /* GPIO test state: u32 count 4, then the four i32 values 1, 0, 1, 1. */
        {"/nv/item_files/modem/tolvek/rf_ant_port_config", {0x04, 0x00, 0x00, 0x00, 0x01, 0x00, 0x00, 0x00,
                                                             0x00, 0x00, 0x00, 0x00, 0x01, 0x00, 0x00, 0x00,
                                                             0x01, 0x00, 0x00, 0x00}},
        {"/nv/item_files/modem/tolvek/qmi_print_flag", {0x00}},
        {"/nv/item_files/modem/tolvek/rf_print_mask", {0x00, 0x00, 0x00, 0x00}},
        {"/orvex/orvex_print_mask", {0x00, 0x00, 0x00, 0x00}},
        {"/nv/item_files/modem/tolvek/ssr_update_count", {0x00, 0x00, 0x00, 0x00}},
        /* NV items, subscription 0 under /nvm/num, subscription 1 under
         * /nvm/context1. */
        /* NV 10, preferred mode: 4 (automatic). */
        {"/nvm/num/10", {0x04}},
        /* NV 441, band preference: all bands. */
        {"/nvm/num/441", {0xFF, 0xFF}},
        /* NV 550, IMEI: length 8, then the BCD digits (low nibble first,
         * 0xA marking the IMEI type) of 355343101234560 and, for
         * subscription 1, 355343101234578. */
        {"/nvm/num/550", {0x08, 0x3A, 0x55, 0x43, 0x13, 0x10, 0x32, 0x54, 0x06}},
        {"/nvm/context1/550", {0x08, 0x3A, 0x55, 0x43, 0x13, 0x10, 0x32, 0x54, 0x87}},
        /* NV 6828, LTE band configuration: b1, b3, b5, b7, b8, b20, b28,
         * b38, b40, b41. */
        {"/nvm/num/6828", {0xD5, 0x00, 0x08, 0x08, 0xA0, 0x01, 0x00, 0x00}},
    };
    for (const seed_file &f : files) store.efs_write(f.path, f.data);
    store.set_property("persist.vendor.ssr.restart_level", "ALL_ENABLE");
}

}  // namespace modemd
