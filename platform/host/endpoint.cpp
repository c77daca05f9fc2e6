#include "endpoint.h"
#include "modemd_paths.h"

#include <errno.h>
#include <fcntl.h>
#include <limits.h>
#include <poll.h>
#include <signal.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/types.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <atomic>
#include <mutex>

namespace rlk_host {
namespace {

/* How long an on-demand simulator lives without clients (seconds);
 * RLK_MODEMD_IDLE_EXIT overrides it. */
constexpr const char *k_autostart_idle_seconds = "300";
/* How long rlk waits for a simulator it started to answer. */
constexpr int k_autostart_wait_ms = 3000;

int connect_once(const std::string &path)
{
    sockaddr_un addr;
    memset(&addr, 0, sizeof(addr));
    addr.sun_family = AF_UNIX;
    if (path.size() >= sizeof(addr.sun_path)) {
        errno = ENAMETOOLONG;
        return -1;
    }
    memcpy(addr.sun_path, path.c_str(), path.size());
    int fd = socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0);
    if (fd < 0) return -1;
    if (connect(fd, reinterpret_cast<sockaddr *>(&addr), sizeof(addr)) != 0) {
        int saved = errno;
        close(fd);
        errno = saved;
        return -1;
    }
    return fd;
}

std::string self_dir()
{
    char buf[PATH_MAX];
    ssize_t n = readlink("/proc/self/exe", buf, sizeof(buf) - 1);
    if (n <= 0) return ".";
    buf[n] = 0;
    std::string p(buf);
    size_t slash = p.rfind('/');
    return slash == std::string::npos ? "." : p.substr(0, slash);
}

/* rlk-modemd: RLK_MODEMD, else beside this program, else in the build
 * tree's sim directory, else on PATH. */
std::string modemd_binary()
{
    const char *env = getenv("RLK_MODEMD");
    if (env && *env) return env;
    std::string dir = self_dir();
    for (const std::string &cand : {dir + "/rlk-modemd", dir + "/../sim/rlk-modemd"}) {
        if (access(cand.c_str(), X_OK) == 0) return cand;
    }
    return "rlk-modemd";
}

/* Starts the simulator as a daemon of its own: new session, no standard
 * stream of ours, logs in its state directory. */
void start_modemd(const std::string &sock)
{
    std::string dir = modemd_socket_dir();
    std::string bin = modemd_binary();
    std::string state = dir + "/state";
    std::string log = state + "/modemd.log";
    const char *idle_env = getenv("RLK_MODEMD_IDLE_EXIT");
    std::string idle = idle_env && *idle_env ? idle_env : k_autostart_idle_seconds;
    pid_t pid = fork();
    if (pid < 0) return;
    if (pid == 0) {
        setsid();
        pid_t grandchild = fork();
        if (grandchild != 0) _exit(grandchild < 0 ? 1 : 0);
        int devnull = open("/dev/null", O_RDWR);
        if (devnull >= 0) {
            dup2(devnull, 0);
            dup2(devnull, 1);
            dup2(devnull, 2);
        }
        for (int fd = 3; fd < 1024; fd++) close(fd);
        signal(SIGPIPE, SIG_DFL);
        execlp(bin.c_str(), bin.c_str(), "--socket", sock.c_str(), "--state", state.c_str(), "--log",
               log.c_str(), "--idle-exit", idle.c_str(), (char *)nullptr);
        _exit(127);
    }
    int status = 0;
    while (waitpid(pid, &status, 0) < 0 && errno == EINTR) {
    }
}

/* A process starts the simulator at most once: a simulator that was
 * stopped on purpose is not brought back behind the user's back by a
 * reconnecting notifier. */
std::atomic<bool> g_autostart_tried{false};
/* A refused default directory or simulator is reported once per process. */
std::atomic<bool> g_refusal_reported{false};

int refuse(const std::string &why)
{
    if (!g_refusal_reported.exchange(true)) fprintf(stderr, "rlk: %s\n", why.c_str());
    errno = EACCES;
    return -1;
}

/* The simulator at the default socket must run as this user. */
int trusted_or_closed(int fd)
{
    std::string error;
    if (modemd_peer_is_trusted(fd, &error)) return fd;
    close(fd);
    /* Nor does this process start a simulator of its own there later. */
    g_autostart_tried = true;
    return refuse(error);
}

int start_and_connect(const std::string &path)
{
    std::string error;
    if (!modemd_private_dir_ensure(modemd_dir_of(path), &error)) return refuse(error);
    start_modemd(path);
    struct timespec start;
    clock_gettime(CLOCK_MONOTONIC, &start);
    for (;;) {
        int fd = connect_once(path);
        if (fd >= 0) return fd;
        struct timespec now;
        clock_gettime(CLOCK_MONOTONIC, &now);
        long elapsed = (now.tv_sec - start.tv_sec) * 1000 + (now.tv_nsec - start.tv_nsec) / 1000000;
        if (elapsed > k_autostart_wait_ms) return -1;
        usleep(2000);
    }
}

/* At the default socket the directory is checked before anything is sent
 * and the simulator's user after connecting; a missing simulator is
 * started once. */
int connect_with_autostart(const std::string &path)
{
    if (!modemd_socket_is_default()) return connect_once(path);
    std::string dir = modemd_dir_of(path);
    std::string error;
    struct stat st;
    if (lstat(dir.c_str(), &st) == 0 && !modemd_private_dir_check(dir, &error)) return refuse(error);
    int fd = connect_once(path);
    if (fd < 0) {
        if (errno != ENOENT && errno != ECONNREFUSED) return -1;
        if (g_autostart_tried.exchange(true)) return -1;
        fd = start_and_connect(path);
        if (fd < 0) return -1;
    }
    return trusted_or_closed(fd);
}

}  // namespace

/* Read on every use (not cached), so that a process that points
 * RLK_MODEMD_SOCKET elsewhere, as tests do, is followed at once. */
std::string modemd_socket_path() { return modemd_socket_path_from_env(); }

bool modemd_socket_is_default()
{
    const char *env = getenv("RLK_MODEMD_SOCKET");
    return !(env && *env);
}

std::string modemd_socket_dir() { return modemd_dir_of(modemd_socket_path()); }

int modemd_connect(modemd_conn_kind kind, uint32_t service, uint32_t instance)
{
    int fd = connect_with_autostart(modemd_socket_path());
    if (fd < 0) return -1;
    modemd_hello hello = {MODEMD_HELLO_MAGIC, kind, service, instance};
    if (!modemd_send(fd, &hello, sizeof(hello))) {
        close(fd);
        return -1;
    }
    return fd;
}

bool modemd_send(int fd, const void *data, size_t len)
{
    for (;;) {
        ssize_t n = send(fd, data, len, MSG_NOSIGNAL);
        if (n == static_cast<ssize_t>(len)) return true;
        if (n < 0 && errno == EINTR) continue;
        return false;
    }
}

long modemd_recv(int fd, void *buf, size_t cap, int timeout_ms)
{
    if (timeout_ms >= 0) {
        struct timespec start;
        clock_gettime(CLOCK_MONOTONIC, &start);
        for (;;) {
            struct timespec now;
            clock_gettime(CLOCK_MONOTONIC, &now);
            long elapsed = (now.tv_sec - start.tv_sec) * 1000 + (now.tv_nsec - start.tv_nsec) / 1000000;
            long left = timeout_ms - elapsed;
            if (left < 0) left = 0;
            pollfd p = {fd, POLLIN, 0};
            int r = poll(&p, 1, static_cast<int>(left));
            if (r > 0) break;
            if (r == 0) {
                errno = ETIMEDOUT;
                return -1;
            }
            if (errno != EINTR) return -1;
        }
    }
    for (;;) {
        ssize_t n = recv(fd, buf, cap, 0);
        if (n >= 0) return n;
        if (errno != EINTR) return -1;
    }
}

bool modemd_control(const std::string &request, std::string *answer)
{
    int fd = modemd_connect(MODEMD_CONN_CONTROL, 0, 0);
    if (fd < 0) return false;
    bool ok = modemd_send(fd, request.data(), request.size());
    if (ok) {
        static thread_local char buf[MODEMD_MAX_PACKET];
        long n = modemd_recv(fd, buf, sizeof(buf), -1);
        ok = n > 0;
        if (ok && answer) answer->assign(buf, static_cast<size_t>(n));
    }
    close(fd);
    return ok;
}

}  // namespace rlk_host
