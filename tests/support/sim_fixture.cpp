#include "sim_fixture.h"

#include <errno.h>
#include <fcntl.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fstream>

#include <gtest/gtest.h>

#include "control_client.h"

namespace {

/* How long a fresh simulator may take to answer. */
constexpr int k_start_timeout_ms = 5000;
/* How long a control request may take before the test sees "". */
constexpr int k_ctl_timeout_ms = 10000;

std::string make_temp_dir()
{
    const char *base = getenv("TMPDIR");
    std::string templ = std::string(base && *base ? base : "/tmp") + "/rlk-test-XXXXXX";
    return mkdtemp(&templ[0]) ? templ : std::string();
}

/* A log field with its \n, \t and \\ escapes undone. */
std::string unescape(const std::string &s)
{
    std::string out;
    for (size_t i = 0; i < s.size(); i++) {
        char c = s[i];
        if (c == '\\' && i + 1 < s.size()) {
            c = s[++i];
            c = c == 'n' ? '\n' : c == 't' ? '\t' : c;
        }
        out += c;
    }
    return out;
}

/* The first max_fields - 1 tab-separated fields, then the rest. */
std::vector<std::string> split_tabs(const std::string &line, size_t max_fields)
{
    std::vector<std::string> f;
    size_t pos = 0;
    for (size_t tab; f.size() + 1 < max_fields && (tab = line.find('\t', pos)) != std::string::npos; pos = tab + 1) {
        f.push_back(line.substr(pos, tab - pos));
    }
    f.push_back(line.substr(pos));
    return f;
}

/* Sends `sig` to the child and waits for it; its status, -1 without one. */
int end_child(pid_t *pid, int sig)
{
    int status = -1;
    if (*pid <= 0) return status;
    kill(*pid, sig);
    while (waitpid(*pid, &status, 0) < 0 && errno == EINTR) {
    }
    *pid = -1;
    return status;
}

}  // namespace

bool poll_until(const std::function<bool()> &cond, int timeout_ms)
{
    for (long long end = monotonic_ms() + timeout_ms; !cond(); usleep(1000)) {
        if (monotonic_ms() > end) return false;
    }
    return true;
}

sim_instance::~sim_instance()
{
    stop();
    /* Leftovers in the temporary directory are harmless. */
    if (dir_.find("/rlk-test-") != std::string::npos && system(("rm -rf '" + dir_ + "'").c_str()) != 0) {
    }
}

bool sim_instance::spawn()
{
    std::vector<std::string> args = {RLK_MODEMD_BINARY, "--socket", socket_, "--state", state_, "--log", log_path()};
    if (qmux_) args.insert(args.end(), {"--qmux", qmux_path()});
    if (diag_port_) args.insert(args.end(), {"--diag-port", diag_port_path()});
    args.insert(args.end(), extra_args_.begin(), extra_args_.end());
    int log = open(log_path().c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
    pid_t pid = spawn_process(args, {}, {-1, log, log}, fd_limit_);
    if (log >= 0) close(log);
    if (pid < 0) return false;
    pid_ = pid;
    return poll_until(
        [&] {
            int status;
            if (pid_ > 0 && waitpid(pid_, &status, WNOHANG) == pid_) pid_ = -1;
            return pid_ < 0 || ctl("ping") == "ok";
        },
        k_start_timeout_ms) && pid_ > 0;
}

bool sim_instance::start_without_simulator()
{
    dir_ = make_temp_dir();
    if (dir_.empty()) return false;
    socket_ = dir_ + "/modemd.sock";
    state_ = dir_ + "/state";
    setenv("RLK_MODEMD_SOCKET", socket_.c_str(), 1);
    setenv("RLK_SYSLOG_FILE", (dir_ + "/test-syslog.log").c_str(), 1);
    setenv("RLK_LOGCAT_FILE", (dir_ + "/test-logcat.log").c_str(), 1);
    return true;
}

bool sim_instance::start()
{
    return start_without_simulator() && spawn();
}

bool sim_instance::restart()
{
    stop();
    return spawn();
}

int sim_instance::stop()
{
    return end_child(&pid_, SIGTERM);
}

void sim_instance::kill_hard()
{
    end_child(&pid_, SIGKILL);
}

std::string sim_instance::ctl(const std::string &request) const
{
    std::string answer, error;
    return modemd::control_request(socket_, request, k_ctl_timeout_ms, &answer, &error) ? answer : "";
}

std::string sim_instance::ctl_ok(const std::string &request) const
{
    std::string a = ctl(request);
    EXPECT_EQ(a.compare(0, 2, "ok"), 0) << request << " -> " << a;
    return a.size() > 3 ? a.substr(3) : std::string();
}

std::vector<std::string> sim_instance::env() const
{
    return {"RLK_MODEMD_SOCKET=" + socket_};
}

rlk_run sim_instance::run_rlk(const std::vector<std::string> &args, const std::vector<std::string> &extra_env,
                              int timeout_ms)
{
    return run_program(RLK_BINARY, args, extra_env, timeout_ms);
}

rlk_run sim_instance::run_program(const std::string &binary, const std::vector<std::string> &args,
                                  const std::vector<std::string> &extra_env, int timeout_ms)
{
    std::string run = dir_ + "/run" + std::to_string(++runs_);
    std::vector<std::string> argv = {binary};
    argv.insert(argv.end(), args.begin(), args.end());
    std::vector<std::string> e = env();
    e.push_back("RLK_SYSLOG_FILE=" + run + "-syslog.log");
    e.push_back("RLK_LOGCAT_FILE=" + run + "-logcat.log");
    e.insert(e.end(), extra_env.begin(), extra_env.end());
    run_result r = run_process(argv, e, "", timeout_ms);
    return {r.status, r.out, r.err, read_log_file(run + "-syslog.log", false),
            read_log_file(run + "-logcat.log", true)};
}

pid_t sim_instance::start_rlk(const std::vector<std::string> &args) const
{
    std::vector<std::string> argv = {RLK_BINARY};
    argv.insert(argv.end(), args.begin(), args.end());
    return spawn_process(argv, env(), {-1, -1, -1});
}

std::vector<log_line> read_log_file(const std::string &path, bool android)
{
    std::vector<log_line> lines;
    std::ifstream in(path);
    for (std::string line; std::getline(in, line);) {
        std::vector<std::string> f = split_tabs(line, android ? 4 : 2);
        if (f.size() != (android ? 4u : 2u)) continue;
        log_line l;
        l.buffer = android ? atoi(f[0].c_str()) : -1;
        l.priority = atoi(f[android ? 1 : 0].c_str());
        l.tag = android ? unescape(f[2]) : "";
        l.text = unescape(f.back());
        lines.push_back(l);
    }
    return lines;
}

std::vector<std::string> texts(const std::vector<log_line> &lines)
{
    std::vector<std::string> out;
    for (const log_line &l : lines) out.push_back(l.text);
    return out;
}
