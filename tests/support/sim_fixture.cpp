#include "sim_fixture.h"

#include <errno.h>
#include <fcntl.h>
#include <signal.h>
#include <stdlib.h>
#include <string.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <fstream>
#include <sstream>

#include <gtest/gtest.h>

#include "control_client.h"
#include "modemd_proto.h"

namespace {

/* How long a fresh simulator may take to answer. */
constexpr int k_start_timeout_ms = 5000;
/* How long a control request may take before the test sees "". */
constexpr int k_ctl_timeout_ms = 10000;

std::string make_temp_dir()
{
    const char *base = getenv("TMPDIR");
    std::string templ = std::string(base && *base ? base : "/tmp") + "/rlk-test-XXXXXX";
    std::vector<char> buf(templ.begin(), templ.end());
    buf.push_back('\0');
    return mkdtemp(buf.data()) ? std::string(buf.data()) : std::string();
}

std::string unescape(const std::string &s)
{
    std::string out;
    for (size_t i = 0; i < s.size(); i++) {
        if (s[i] == '\\' && i + 1 < s.size()) {
            char n = s[++i];
            out += n == 'n' ? '\n' : n == 't' ? '\t' : n;
        } else {
            out += s[i];
        }
    }
    return out;
}

std::vector<std::string> split_tabs(const std::string &line, size_t max_fields)
{
    std::vector<std::string> f;
    size_t pos = 0;
    while (f.size() + 1 < max_fields) {
        size_t tab = line.find('\t', pos);
        if (tab == std::string::npos) break;
        f.push_back(line.substr(pos, tab - pos));
        pos = tab + 1;
    }
    f.push_back(line.substr(pos));
    return f;
}

void remove_tree(const std::string &dir)
{
    if (dir.empty() || dir.find("/rlk-test-") == std::string::npos) return;
    std::string cmd = "rm -rf '" + dir + "'";
    if (system(cmd.c_str()) != 0) {
        /* Leftovers in the temporary directory are harmless. */
    }
}

}  // namespace

long long monotonic_ms()
{
    struct timespec ts;
    clock_gettime(CLOCK_MONOTONIC, &ts);
    return (long long)ts.tv_sec * 1000 + ts.tv_nsec / 1000000;
}

sim_instance::~sim_instance()
{
    if (pid_ > 0) stop();
    remove_tree(dir_);
}

bool sim_instance::spawn()
{
    pid_t pid = fork();
    if (pid < 0) return false;
    if (pid == 0) {
        int devnull = open("/dev/null", O_RDWR);
        dup2(devnull, 0);
        std::string log = dir_ + "/modemd.log";
        int logfd = open(log.c_str(), O_WRONLY | O_CREAT | O_APPEND, 0600);
        dup2(logfd, 1);
        dup2(logfd, 2);
        if (fd_limit_) {
            struct rlimit rl = {rlim_t(fd_limit_), rlim_t(fd_limit_)};
            if (setrlimit(RLIMIT_NOFILE, &rl) != 0) _exit(126);
        }
        std::vector<std::string> args = {RLK_MODEMD_BINARY, "--socket", socket_, "--state", state_, "--log", log};
        if (qmux_) args.insert(args.end(), {"--qmux", qmux_path()});
        if (diag_port_) args.insert(args.end(), {"--diag-port", diag_port_path()});
        args.insert(args.end(), extra_args_.begin(), extra_args_.end());
        std::vector<char *> argv;
        for (std::string &a : args) argv.push_back(&a[0]);
        argv.push_back(nullptr);
        execv(RLK_MODEMD_BINARY, argv.data());
        _exit(127);
    }
    pid_ = pid;
    long long deadline = monotonic_ms() + k_start_timeout_ms;
    while (monotonic_ms() < deadline) {
        if (ctl("ping") == "ok") return true;
        int status;
        if (waitpid(pid_, &status, WNOHANG) == pid_) {
            pid_ = -1;
            return false;
        }
        usleep(1000);
    }
    return false;
}

bool sim_instance::start()
{
    dir_ = make_temp_dir();
    if (dir_.empty()) return false;
    socket_ = dir_ + "/modemd.sock";
    state_ = dir_ + "/state";
    setenv("RLK_MODEMD_SOCKET", socket_.c_str(), 1);
    setenv("RLK_SYSLOG_FILE", (dir_ + "/test-syslog.log").c_str(), 1);
    setenv("RLK_LOGCAT_FILE", (dir_ + "/test-logcat.log").c_str(), 1);
    return spawn();
}

bool sim_instance::restart()
{
    if (pid_ > 0) stop();
    return spawn();
}

int sim_instance::stop()
{
    if (pid_ <= 0) return -1;
    kill(pid_, SIGTERM);
    int status = -1;
    while (waitpid(pid_, &status, 0) < 0 && errno == EINTR) {
    }
    pid_ = -1;
    return status;
}

void sim_instance::kill_hard()
{
    if (pid_ <= 0) return;
    kill(pid_, SIGKILL);
    int status;
    while (waitpid(pid_, &status, 0) < 0 && errno == EINTR) {
    }
    pid_ = -1;
}

std::string sim_instance::ctl(const std::string &request) const
{
    std::string answer, error;
    if (!modemd::control_request(socket_, request, k_ctl_timeout_ms, &answer, &error)) return "";
    return answer;
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
    int n = ++runs_;
    std::string syslog = dir_ + "/run" + std::to_string(n) + "-syslog.log";
    std::string logcat = dir_ + "/run" + std::to_string(n) + "-logcat.log";
    std::vector<std::string> argv = {RLK_BINARY};
    argv.insert(argv.end(), args.begin(), args.end());
    std::vector<std::string> e = env();
    e.push_back("RLK_SYSLOG_FILE=" + syslog);
    e.push_back("RLK_LOGCAT_FILE=" + logcat);
    e.insert(e.end(), extra_env.begin(), extra_env.end());
    run_result r = run_process(argv, e, "", timeout_ms);
    rlk_run out;
    out.status = r.status;
    out.out = r.out;
    out.err = r.err;
    out.syslog = read_log_file(syslog, false);
    out.logcat = read_log_file(logcat, true);
    return out;
}

std::vector<log_line> read_log_file(const std::string &path, bool android)
{
    std::vector<log_line> lines;
    std::ifstream in(path);
    std::string line;
    while (std::getline(in, line)) {
        log_line l;
        std::vector<std::string> f = split_tabs(line, android ? 4 : 2);
        if (android && f.size() == 4) {
            l.buffer = atoi(f[0].c_str());
            l.priority = atoi(f[1].c_str());
            l.tag = unescape(f[2]);
            l.text = unescape(f[3]);
        } else if (!android && f.size() == 2) {
            l.priority = atoi(f[0].c_str());
            l.text = unescape(f[1]);
        } else {
            continue;
        }
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
