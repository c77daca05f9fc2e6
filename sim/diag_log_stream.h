/* Log and event packets of the simulated modem's diag stream, built from
 * the radio scene that the vendor statistics service reports (so the same
 * cell, levels and timing show through diag logs and through option 9).
 *
 * Layouts are the public ones that diag decoders know; docs/diag-port.md
 * lists every field written:
 *
 *   0xB193 LTE ML1 serving cell measurement   packet version 1, sub-packet
 *                                             25 version 36, one cell
 *   0xB17F LTE ML1 serving cell meas and eval version 5 (Rx0's levels)
 *   0xB97F NR5G ML1 searcher measurement      version 2.7, one carrier,
 *                                             one cell, one beam
 *   0xB0C0 LTE RRC OTA                        version 15, the serving cell's
 *                                             MIB on BCCH-BCH
 *   event 1606 LTE RRC state change           1-byte state (4 connected)
 *
 * Every packet is the whole diag payload (command byte first), ready to be
 * framed. */
#ifndef MODEMD_DIAG_LOG_STREAM_H
#define MODEMD_DIAG_LOG_STREAM_H

#include <stdint.h>

#include <vector>

#include "services/vs_stats_scene.h"

namespace modemd {

constexpr uint16_t k_log_lte_srv_meas = 0xB193;
constexpr uint16_t k_log_lte_srv_eval = 0xB17F;
constexpr uint16_t k_log_nr_ml1_search = 0xB97F;
constexpr uint16_t k_log_lte_rrc_ota = 0xB0C0;
constexpr uint16_t k_event_lte_rrc_state = 1606;

/* The NR serving cell of the stream (the scene has levels only). */
constexpr uint32_t k_stream_nr_arfcn = 632448;
constexpr uint16_t k_stream_nr_pci = 501;

/* Diag timestamp of a wall-clock time: 1.25 ms units since 1980-01-06 in
 * the upper 48 bits, 0 in the lower 16. */
uint64_t diag_timestamp_of(uint64_t unix_ms);

/* A log packet: 0x10, 0, u16 length, u16 length, u16 code, u64 timestamp,
 * body. */
void diag_log_packet(uint16_t code, uint64_t ts, const std::vector<uint8_t> &body, std::vector<uint8_t> *out);

/* The log body of `code` at time `now_ms` (monotonic: levels drift with it,
 * SFN counts 10 ms frames from it); false when the scene has nothing for
 * that code (no LTE serving cell, no NR carrier) or the code is not one of
 * the stream's. */
bool diag_stream_log_body(uint16_t code, const vs_scene &scene, uint64_t now_ms, std::vector<uint8_t> *body);

/* An event report packet (0x60) with one record of event 1606 carrying
 * the scene's RRC state. */
void diag_stream_event_packet(const vs_scene &scene, uint64_t ts, std::vector<uint8_t> *out);

/* Codes the stream can emit, in the order they are emitted each cycle. */
extern const uint16_t k_stream_log_codes[];
extern const size_t k_stream_log_code_count;

}  // namespace modemd

#endif
