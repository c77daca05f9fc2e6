/* Runs a program as a child process and collects what it wrote. */
#ifndef RLK_TEST_PROCESS_RUNNER_H
#define RLK_TEST_PROCESS_RUNNER_H

#include <sys/types.h>

#include <array>
#include <string>
#include <vector>

struct run_result {
    int status;      /* wait status as waitpid() reports it; -1 if the child never started */
    std::string out; /* everything written to standard output */
    std::string err; /* everything written to standard error */
};

/* How long a child may run before it is killed with SIGKILL (its status
 * then reports the signal). */
constexpr int k_run_process_default_timeout_ms = 60000;

/* The calling process ignores SIGPIPE from the first call on (the child
 * gets the default back).
 *
 * Starts argv[0] (a path; no search of PATH) with the arguments argv[1..],
 * the test's own environment plus `extra_env` ("NAME=value" entries, which
 * replace variables of the same name), and `stdin_text` as its whole
 * standard input.  Waits for it to end and returns its status and output. */
run_result run_process(const std::vector<std::string> &argv, const std::vector<std::string> &extra_env,
                       const std::string &stdin_text = "",
                       int timeout_ms = k_run_process_default_timeout_ms);

/* Starts argv like run_process with fds[0..2] as its standard input,
 * output and error (-1: /dev/null) and `fd_limit` as its limit of open
 * descriptors (0: inherited; 126 is its exit status when the limit cannot
 * be set); returns its process id at once (-1 when it could not start).
 * The caller waits for it. */
pid_t spawn_process(const std::vector<std::string> &argv, const std::vector<std::string> &extra_env,
                    const std::array<int, 3> &fds, unsigned long fd_limit = 0);

/* Milliseconds on the monotonic clock. */
long long monotonic_ms();

/* True when the status reports a normal exit with code 0. */
bool exited_cleanly(int status);

/* True when the child ended by a signal or with a non-zero exit code, as
 * an abort, a sanitizer report or a trap makes it do. */
bool ended_abnormally(int status);

#endif
