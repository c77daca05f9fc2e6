/* Helpers of the MBN end-to-end tests: rlk-mbn runs (waited for, or left
 * running to be signalled) against a private simulator, with each run's
 * output and Android-log lines in files of the simulator's directory. */
#ifndef RLK_TEST_MBN_TEST_UTIL_H
#define RLK_TEST_MBN_TEST_UTIL_H

#include <fcntl.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fstream>
#include <functional>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "sim_fixture.h"

inline std::string read_text(const std::string &path)
{
    std::ifstream in(path, std::ios::binary);
    std::stringstream s;
    s << in.rdbuf();
    return s.str();
}

/* The PDC_UTIL messages of an Android-log file. */
inline std::vector<std::string> pdc_lines(const std::string &logcat_path)
{
    std::vector<std::string> out;
    for (const log_line &l : read_log_file(logcat_path, true)) {
        if (l.tag == "PDC_UTIL") out.push_back(l.text);
    }
    return out;
}

/* Polls `done` every 5 ms for up to `ms`; true once it holds. */
inline bool eventually(const std::function<bool()> &done, int ms = 5000)
{
    for (long long end = monotonic_ms() + ms; monotonic_ms() < end; usleep(5000)) {
        if (done()) return true;
    }
    return done();
}

struct mbn_run {
    int exit_code = -1; /* -1: did not exit normally */
    std::string out, err;
    std::vector<std::string> logcat;
};

/* One rlk-mbn process; killed at the end of the scope if still running. */
class mbn_proc {
public:
    mbn_proc(const sim_instance &sim, const std::vector<std::string> &args, const std::vector<std::string> &env = {})
    {
        static int seq = 0;
        base_ = sim.dir() + "/mbn" + std::to_string(++seq);
        std::vector<std::string> all = sim.env();
        all.push_back("RLK_LOGCAT_FILE=" + base_ + "-logcat.log");
        all.push_back("RLK_SYSLOG_FILE=" + sim.dir() + "/mbn-syslog.log");
        all.insert(all.end(), env.begin(), env.end());
        std::vector<std::string> argv = {RLK_MBN_BINARY};
        argv.insert(argv.end(), args.begin(), args.end());
        pid_ = fork();
        if (pid_ != 0) return;
        for (const std::string &e : all) putenv(strdup(e.c_str()));
        dup2(open((base_ + "-out").c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600), 1);
        dup2(open((base_ + "-err").c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600), 2);
        std::vector<char *> cargv;
        for (const std::string &a : argv) cargv.push_back(const_cast<char *>(a.c_str()));
        cargv.push_back(nullptr);
        execv(cargv[0], cargv.data());
        _exit(127);
    }
    ~mbn_proc()
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
        int status = -1;
        if (!eventually([&] { return waitpid(pid_, &status, WNOHANG) == pid_; }, ms)) return -1;
        pid_ = -1;
        return status;
    }
    mbn_run result(int status) const
    {
        bool exited = status != -1 && WIFEXITED(status);
        return {exited ? WEXITSTATUS(status) : -1, read_text(base_ + "-out"), read_text(base_ + "-err"), logcat()};
    }
    std::vector<std::string> logcat() const { return pdc_lines(base_ + "-logcat.log"); }

private:
    pid_t pid_ = -1;
    std::string base_;
};

inline mbn_run run_mbn(const sim_instance &sim, const std::vector<std::string> &args,
                       const std::vector<std::string> &env = {})
{
    mbn_proc p(sim, args, env);
    return p.result(p.wait(60000));
}

/* A pseudo-terminal nobody answers on: a QMI device that stopped
 * responding (RLK_QMI_DEVICE=path()). */
class dead_device {
public:
    dead_device()
    {
        master_ = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
        if (master_ >= 0 && grantpt(master_) == 0 && unlockpt(master_) == 0) path_ = ptsname(master_);
    }
    ~dead_device() { close(master_); }
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

/* The simulator's journal of PDC requests of message `msg` ("0x0024"):
 * "<svc> <msg> <txn> <hex>" lines. */
inline std::vector<std::string> pdc_requests(const sim_instance &sim, const std::string &msg)
{
    std::vector<std::string> out;
    std::istringstream in(sim.ctl_ok("last 200 pdc"));
    for (std::string line; std::getline(in, line);) {
        if (line.compare(0, 13, "0x0024 " + msg) == 0) out.push_back(line);
    }
    return out;
}

/* "a b c" as {"a", "b", "c"}. */
inline std::vector<std::string> words(const std::string &text)
{
    std::vector<std::string> out;
    std::istringstream in(text);
    for (std::string w; in >> w;) out.push_back(w);
    return out;
}

#endif
