/* Helpers of the rlk-replay end-to-end tests: an independent scan of a
 * capture (written apart from the product's reader: whole file in memory,
 * split on every flag, bit-by-bit CRC), the summary the program prints read
 * back into numbers, the records of a pcap, and runs of the program, whole
 * or as a child the test can signal. */
#ifndef RLK_REPLAY_E2E_UTIL_H
#define RLK_REPLAY_E2E_UTIL_H

#include <stdint.h>
#include <sys/types.h>

#include <map>
#include <string>
#include <vector>

#include "process_runner.h"

namespace replay_e2e {

using bytes = std::vector<uint8_t>;

constexpr int k_wait_ms = 10000;

struct scanned_log {
    uint16_t code;
    uint64_t timestamp;
    bytes payload;
};

struct capture_scan {
    std::map<uint32_t, uint64_t> logs;   /* log packets per code */
    std::map<uint32_t, uint64_t> events; /* event records per id */
    std::vector<scanned_log> log_packets;
    uint64_t bad_frames = 0;
};

bytes read_file(const std::string &path);
bool write_file(const std::string &path, const bytes &data);

/* Counts what a capture holds, independently of the product. */
capture_scan scan_capture(const bytes &capture);

/* The tables of the text summary: "log packets per code" (keys parsed as
 * hex) and "event records per id". */
struct summary_tables {
    bool found = false;
    std::string first_line;
    std::map<uint32_t, uint64_t> logs, events;
};
summary_tables parse_summary(const std::string &out);

/* "pcap messages written per kind" of a text summary. */
std::map<std::string, uint64_t> written_per_kind(const std::string &out);

/* The records of a classic pcap stream (little-endian, link type IPv4),
 * each without its 16-byte record header; false when the file header is
 * not that or a record is cut short. */
bool pcap_records(const std::string &pcap, std::vector<std::string> *records);

/* The exit code of a wait status, -1 when the child did not exit. */
int exit_code(int status);

/* Runs rlk-replay with `args` and `stdin_text` to its end. */
run_result replay(const std::vector<std::string> &args, const std::string &stdin_text = "");

/* A running rlk-replay with its standard output and error as pipes. */
struct child {
    pid_t pid = -1;
    int out = -1;
    int err = -1;
};

/* Starts `argv` with `stdin_fd` as its standard input (-1: /dev/null) and,
 * when `stderr_fd` is not -1, that as its standard error (c.err is then
 * -1). */
child spawn(const std::vector<std::string> &argv, int stdin_fd, int stderr_fd = -1);

/* Reads the child's standard output into *acc until it holds `needle` or
 * `timeout_ms` passes; true when found. */
bool read_until(const child &c, const std::string &needle, int timeout_ms, std::string *acc);

/* Waits up to `timeout_ms` for the child's end (killing it after that),
 * reading the rest of its output; returns the wait status. */
int finish(child *c, int timeout_ms, std::string *out, std::string *err);

/* Starts rlk-replay with `args`, writes `input` to `write_fd` (-1: to a
 * pipe that is the program's standard input, closed only after its end),
 * reads its output until it holds `needle`, then sends `sig` and collects
 * the rest. */
run_result replay_interrupted(const std::vector<std::string> &args, int write_fd, const bytes &input,
                              const std::string &needle, int sig);

}  // namespace replay_e2e

#endif
