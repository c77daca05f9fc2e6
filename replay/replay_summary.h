/* What one replay run counted, and its summary in text or as one JSON
 * line. */
#ifndef RLK_REPLAY_SUMMARY_H
#define RLK_REPLAY_SUMMARY_H

#include <stdint.h>

#include <map>
#include <string>
#include <vector>

#include "diag_capture.h"
#include "signalling.h"

/* Values of a log code and of an event id. */
constexpr size_t REPLAY_LOG_CODES = 65536;
constexpr size_t REPLAY_EVENT_IDS = DIAG_EVENT_ID_MASK + 1;

struct replay_counts {
    replay_counts() : logs(REPLAY_LOG_CODES, 0), events(REPLAY_EVENT_IDS, 0) {}

    uint64_t inputs = 0;         /* inputs opened */
    uint64_t inputs_read = 0;    /* inputs read to their end */
    uint64_t packets = 0;        /* log packets and event records decoded */
    uint64_t filtered_out = 0;   /* packets the filter did not select */
    std::vector<uint64_t> logs;   /* decoded log packets, by code */
    std::vector<uint64_t> events; /* decoded event records, by id */
    std::map<uint32_t, uint64_t> records;             /* records made, by data id */
    std::map<std::pair<uint32_t, int32_t>, uint64_t> refused; /* (code, version) refused */
    /* --pcap: messages written by kind, versions refused, packets whose
     * message was not written (by signalling_status). */
    bool pcap = false;
    std::map<std::string, uint64_t> pcap_written;
    std::map<std::pair<uint32_t, int32_t>, uint64_t> pcap_refused;
    uint64_t pcap_not_written[SIGNALLING_STATUS_COUNT] = {};
};

/* Appends the summary as text lines:
 *
 *   summary: 2 inputs (2 read to the end), 1564416 bytes, 18295 frames, 2935 packets
 *   log packets per code:
 *     0xB193 1091
 *   event records per id:
 *     1606 5
 *   records made per data id:
 *     82 1091
 *   versions refused per code and version:
 *     0xB111 version 21: 81
 *   frames skipped:
 *     bad CRC: 2
 *   frames of other commands:
 *     0x92: 15137
 *   packets not selected by the filter: 12
 *   pcap messages written per kind:
 *     LTE RRC DL-DCCH 12
 *   pcap versions refused per code and version:
 *     0xB0C0 version 30: 2
 *   pcap messages not written:
 *     malformed: 1
 *
 * Sections without entries are left out except the first line. */
void replay_summary_text(const replay_counts &counts, const diag_capture_reader &reader, std::string *out);

/* The same as one JSON object line {"type":"summary",...}. */
void replay_summary_json(const replay_counts &counts, const diag_capture_reader &reader, std::string *out);

#endif
