/* A private rlk-modemd for one test: its own temporary state directory and
 * socket, control requests, and runs of the real rlk binary against it with
 * each run's system-log and Android-log lines collected separately. */
#ifndef RLK_TEST_SIM_FIXTURE_H
#define RLK_TEST_SIM_FIXTURE_H

#include <sys/types.h>

#include <functional>
#include <string>
#include <vector>

#include "process_runner.h"

/* One line of the host platform's log files. */
struct log_line {
    int buffer = -1;   /* Android log: buffer id; system log: -1 */
    int priority = 0;
    std::string tag;   /* Android log only */
    std::string text;  /* unescaped message */
};

struct rlk_run {
    int status = -1;
    std::string out;
    std::string err;
    std::vector<log_line> syslog;
    std::vector<log_line> logcat;
};

class sim_instance {
public:
    sim_instance() = default;
    ~sim_instance();
    sim_instance(const sim_instance &) = delete;
    sim_instance &operator=(const sim_instance &) = delete;

    /* Creates the directory, starts the simulator and waits until it
     * answers; also points RLK_MODEMD_SOCKET of this process at it (for
     * tests that call the platform library directly). */
    bool start();
    /* Creates the directory like start() but starts no simulator: runs
     * then meet a socket that nobody serves. */
    bool start_without_simulator();
    /* Starts again on the same state directory (after stop or kill). */
    bool restart();
    /* SIGTERM and wait; returns the exit status. */
    int stop();
    /* SIGKILL and wait. */
    void kill_hard();
    bool running() const { return pid_ > 0; }
    pid_t pid() const { return pid_; }

    /* A control request; returns the whole answer ("ok ..."/"error ..."),
     * or "" when the simulator did not answer. */
    std::string ctl(const std::string &request) const;
    /* The data part of an "ok" answer; fails the test otherwise. */
    std::string ctl_ok(const std::string &request) const;

    /* Runs rlk with `args` against this simulator. */
    rlk_run run_rlk(const std::vector<std::string> &args, const std::vector<std::string> &extra_env = {},
                    int timeout_ms = k_run_process_default_timeout_ms);
    /* Runs the program at `binary` (rlk, a companion or a test probe)
     * with `args` against this simulator, like run_rlk. */
    rlk_run run_program(const std::string &binary, const std::vector<std::string> &args,
                        const std::vector<std::string> &extra_env = {},
                        int timeout_ms = k_run_process_default_timeout_ms);
    /* Starts rlk with `args` against this simulator, its output dropped,
     * without waiting; its process id (the caller waits for it). */
    pid_t start_rlk(const std::vector<std::string> &args) const;

    /* Before start(): more options for the simulator, and a lower limit
     * of open descriptors for it (0: inherited). */
    void set_extra_args(const std::vector<std::string> &args) { extra_args_ = args; }
    void set_fd_limit(unsigned long limit) { fd_limit_ = limit; }
    /* Before start(): also serve the QMUX device, linked at qmux_path(). */
    void enable_qmux() { qmux_ = true; }
    std::string qmux_path() const { return dir_ + "/qmux"; }
    /* Before start(): also serve the diag port, linked at diag_port_path(). */
    void enable_diag_port() { diag_port_ = true; }
    std::string diag_port_path() const { return dir_ + "/diag"; }
    /* The simulator's own log file. */
    std::string log_path() const { return dir_ + "/modemd.log"; }

    /* Environment entries that point a child process at this simulator. */
    std::vector<std::string> env() const;

    const std::string &dir() const { return dir_; }
    const std::string &socket_path() const { return socket_; }
    const std::string &state_dir() const { return state_; }

private:
    bool spawn();
    std::string dir_, socket_, state_;
    pid_t pid_ = -1;
    int runs_ = 0;
    std::vector<std::string> extra_args_;
    unsigned long fd_limit_ = 0;
    bool qmux_ = false;
    bool diag_port_ = false;
};

/* Reads a log file of the host platform. */
std::vector<log_line> read_log_file(const std::string &path, bool android);

/* The messages of `lines`, in order. */
std::vector<std::string> texts(const std::vector<log_line> &lines);

/* Checks `cond` every millisecond until it holds (true) or `timeout_ms`
 * have passed (false). */
bool poll_until(const std::function<bool()> &cond, int timeout_ms);

#endif
