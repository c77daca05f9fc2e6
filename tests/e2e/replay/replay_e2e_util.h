/* Helpers of the end-to-end tests of rlk-replay, rlk-mbn and the diag
 * port: files as bytes, the records of a pcap, a pseudo terminal, and
 * programs run as children that the test can signal while it reads their
 * output. */
#ifndef RLK_REPLAY_E2E_UTIL_H
#define RLK_REPLAY_E2E_UTIL_H

#include <stdint.h>
#include <sys/types.h>

#include <string>
#include <vector>

#include "process_runner.h"

namespace replay_e2e {

using bytes = std::vector<uint8_t>;

constexpr int k_wait_ms = 10000;

bytes read_file(const std::string &path);
bool write_file(const std::string &path, const bytes &data);

/* The records of a classic pcap stream (little-endian, link type IPv4),
 * each without its 16-byte record header; false when the file header is
 * not that or a record is cut short. */
bool pcap_records(const bytes &pcap, std::vector<std::string> *records);

/* The exit code of a wait status, -1 when the child did not exit. */
int exit_code(int status);

/* Runs rlk-replay with `args` to its end. */
run_result replay(const std::vector<std::string> &args);

/* A pseudo terminal in raw mode.  open() also opens the slave side and
 * holds it, so that bytes written before a program opens it wait there
 * unchanged; nobody reads what a program writes to it. */
struct pty {
    int master = -1;
    int slave = -1;
    std::string slave_path;
    bool open();
    ~pty();
};

/* A running program with its standard output and error as pipes. */
struct child {
    pid_t pid = -1;
    int out = -1;
    int err = -1;
};

/* Starts `argv` with `env` added to the test's environment, `stdin_fd` as
 * its standard input (-1: /dev/null) and, when `stderr_fd` is not -1, that
 * as its standard error (c.err is then -1). */
child spawn(const std::vector<std::string> &argv, int stdin_fd = -1, int stderr_fd = -1,
            const std::vector<std::string> &env = {});

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
