/* Helpers of the MBN end-to-end tests: runs of rlk-mbn (waited for, or
 * started in the background) against a private simulator, with each run's
 * Android-log lines collected. */
#ifndef RLK_TEST_MBN_TEST_UTIL_H
#define RLK_TEST_MBN_TEST_UTIL_H

#include <fcntl.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "process_runner.h"
#include "sim_fixture.h"

struct mbn_run {
    int exit_code = -1; /* -1: did not exit normally */
    std::string out, err;
    std::vector<std::string> logcat; /* PDC_UTIL messages */
};

inline std::vector<std::string> pdc_lines(const std::string &logcat_path)
{
    std::vector<std::string> out;
    for (const log_line &l : read_log_file(logcat_path, true)) {
        if (l.tag == "PDC_UTIL") out.push_back(l.text);
    }
    return out;
}

inline int mbn_seq()
{
    static int n = 0;
    return ++n;
}

inline mbn_run run_mbn(const sim_instance &sim, const std::vector<std::string> &args,
                       const std::vector<std::string> &extra_env = {})
{
    std::string logcat = sim.dir() + "/mbn" + std::to_string(mbn_seq()) + "-logcat.log";
    std::vector<std::string> argv = {RLK_MBN_BINARY};
    argv.insert(argv.end(), args.begin(), args.end());
    std::vector<std::string> env = sim.env();
    env.push_back("RLK_LOGCAT_FILE=" + logcat);
    env.push_back("RLK_SYSLOG_FILE=" + sim.dir() + "/mbn-syslog.log");
    env.insert(env.end(), extra_env.begin(), extra_env.end());
    run_result r = run_process(argv, env);
    mbn_run m;
    m.exit_code = WIFEXITED(r.status) ? WEXITSTATUS(r.status) : -1;
    m.out = r.out;
    m.err = r.err;
    m.logcat = pdc_lines(logcat);
    return m;
}

/* rlk-mbn running in the background. */
class mbn_background {
public:
    mbn_background(const sim_instance &sim, const std::vector<std::string> &args,
                   const std::vector<std::string> &extra_env = {})
    {
        int n = mbn_seq();
        logcat_ = sim.dir() + "/bg" + std::to_string(n) + "-logcat.log";
        err_ = sim.dir() + "/bg" + std::to_string(n) + "-stderr.txt";
        std::vector<std::string> env = sim.env();
        env.push_back("RLK_LOGCAT_FILE=" + logcat_);
        env.insert(env.end(), extra_env.begin(), extra_env.end());
        std::vector<std::string> argv = {RLK_MBN_BINARY};
        argv.insert(argv.end(), args.begin(), args.end());
        pid_ = fork();
        if (pid_ == 0) {
            for (const std::string &e : env) putenv(strdup(e.c_str()));
            int fd = open(err_.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
            dup2(fd, 2);
            int null_fd = open("/dev/null", O_WRONLY);
            dup2(null_fd, 1);
            std::vector<char *> cargv;
            for (const std::string &a : argv) cargv.push_back(const_cast<char *>(a.c_str()));
            cargv.push_back(nullptr);
            execv(cargv[0], cargv.data());
            _exit(127);
        }
    }
    ~mbn_background()
    {
        if (pid_ > 0) {
            kill(pid_, SIGKILL);
            waitpid(pid_, nullptr, 0);
        }
    }
    void signal(int sig) { kill(pid_, sig); }
    /* Waits up to `ms` for the exit; the wait status, or -1 on time-out. */
    int wait(int ms)
    {
        for (long long end = monotonic_ms() + ms; monotonic_ms() < end;) {
            int status = 0;
            if (waitpid(pid_, &status, WNOHANG) == pid_) {
                pid_ = -1;
                return status;
            }
            usleep(5000);
        }
        return -1;
    }
    std::string err() const
    {
        std::ifstream in(err_);
        std::stringstream s;
        s << in.rdbuf();
        return s.str();
    }
    std::vector<std::string> logcat() const { return pdc_lines(logcat_); }

private:
    pid_t pid_ = -1;
    std::string logcat_, err_;
};

/* A pseudo-terminal nobody answers on: a QMI device that stopped
 * responding (RLK_QMI_DEVICE=path()). */
class dead_device {
public:
    dead_device()
    {
        master_ = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
        if (master_ >= 0 && grantpt(master_) == 0 && unlockpt(master_) == 0) path_ = ptsname(master_);
    }
    ~dead_device()
    {
        if (master_ >= 0) close(master_);
    }
    const std::string &path() const { return path_; }

private:
    int master_ = -1;
    std::string path_;
};

/* For a run that exits while an attempt to open its client is still
 * blocked in the QMI library: a ThreadSanitizer build would otherwise
 * sleep a second at exit (to catch races there) because that thread
 * still runs. */
inline std::string tsan_no_exit_sleep()
{
    const char *tsan = getenv("TSAN_OPTIONS");
    return "TSAN_OPTIONS=" + std::string(tsan ? tsan : "") + " atexit_sleep_ms=0";
}

/* The simulator's journal of PDC requests ("<svc> <msg> <txn> <hex>" lines). */
inline std::vector<std::string> pdc_journal(const sim_instance &sim, int n = 200)
{
    std::vector<std::string> out;
    std::istringstream in(sim.ctl_ok("last " + std::to_string(n) + " pdc"));
    std::string line;
    while (std::getline(in, line)) {
        if (!line.empty()) out.push_back(line);
    }
    return out;
}

inline int count_msg(const std::vector<std::string> &journal, const std::string &msg)
{
    int n = 0;
    for (const std::string &l : journal) n += l.compare(0, 13, "0x0024 " + msg) == 0;
    return n;
}

#endif
