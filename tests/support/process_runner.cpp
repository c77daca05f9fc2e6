#include "process_runner.h"

#include <errno.h>
#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/resource.h>
#include <stdio.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

extern char **environ;

namespace {

std::vector<char *> c_strings(std::vector<std::string> &strings)
{
    std::vector<char *> out;
    for (std::string &s : strings) out.push_back(&s[0]);
    out.push_back(nullptr);
    return out;
}

/* The parent's environment without the names `extra` sets, then `extra`. */
std::vector<std::string> child_environment(const std::vector<std::string> &extra)
{
    std::vector<std::string> env;
    for (char **e = environ; e != nullptr && *e != nullptr; ++e) {
        std::string entry = *e;
        bool replaced = false;
        for (const std::string &x : extra) {
            replaced = replaced || x.substr(0, x.find('=')) == entry.substr(0, entry.find('='));
        }
        if (!replaced) env.push_back(entry);
    }
    env.insert(env.end(), extra.begin(), extra.end());
    return env;
}

/* The whole standard input lies in an unlinked file, so the child reads it
 * at its own pace and one that stops reading blocks nobody. */
int stdin_file(const std::string &text)
{
    FILE *f = tmpfile();
    if (f == nullptr) return -1;
    bool ok = fwrite(text.data(), 1, text.size(), f) == text.size() && fflush(f) == 0;
    int fd = ok ? fcntl(fileno(f), F_DUPFD_CLOEXEC, 0) : -1;
    fclose(f);
    if (fd >= 0) lseek(fd, 0, SEEK_SET);
    return fd;
}

/* Collects both outputs until they close or the time runs out.  Returns
 * false on time-out. */
bool collect(int fds[2], std::string *sinks[2], int timeout_ms)
{
    long long deadline = monotonic_ms() + timeout_ms;
    while (fds[0] >= 0 || fds[1] >= 0) {
        long long left = deadline - monotonic_ms();
        pollfd p[2] = {{fds[0], POLLIN, 0}, {fds[1], POLLIN, 0}};
        if (left <= 0 || (poll(p, 2, static_cast<int>(left)) < 0 && errno != EINTR)) return false;
        for (int i = 0; i < 2; i++) {
            char buf[4096];
            ssize_t n = p[i].revents != 0 ? read(fds[i], buf, sizeof(buf)) : -1;
            if (n > 0) {
                sinks[i]->append(buf, static_cast<size_t>(n));
            } else if (p[i].revents != 0 && (n == 0 || errno != EINTR)) {
                close(fds[i]);
                fds[i] = -1;
            }
        }
    }
    return true;
}

}  // namespace

pid_t spawn_process(const std::vector<std::string> &argv, const std::vector<std::string> &extra_env,
                    const std::array<int, 3> &fds, unsigned long fd_limit)
{
    std::vector<std::string> args = argv;
    std::vector<std::string> env = child_environment(extra_env);
    std::vector<char *> c_args = c_strings(args);
    std::vector<char *> c_env = c_strings(env);
    struct rlimit rl = {rlim_t(fd_limit), rlim_t(fd_limit)};
    int null = open("/dev/null", O_RDWR | O_CLOEXEC);
    pid_t pid = argv.empty() || null < 0 ? -1 : fork();
    if (pid == 0) {
        /* Only async-signal-safe calls between fork and exec. */
        for (int i = 0; i < 3; i++) dup2(fds[size_t(i)] >= 0 ? fds[size_t(i)] : null, i);
        signal(SIGPIPE, SIG_DFL);
        if (fd_limit != 0 && setrlimit(RLIMIT_NOFILE, &rl) != 0) _exit(126);
        execve(c_args[0], c_args.data(), c_env.data());
        static const char msg[] = "run_process: exec failed\n";
        ssize_t n = write(STDERR_FILENO, msg, sizeof(msg) - 1);
        (void)n;
        _exit(127);
    }
    if (null >= 0) close(null);
    return pid;
}

run_result run_process(const std::vector<std::string> &argv, const std::vector<std::string> &extra_env,
                       const std::string &stdin_text, int timeout_ms)
{
    run_result result{-1, "", ""};
    /* A child that stops reading its input must not kill the test. */
    signal(SIGPIPE, SIG_IGN);
    int out[2] = {-1, -1}, err[2] = {-1, -1};
    int in = stdin_file(stdin_text);
    bool piped = in >= 0 && pipe2(out, O_CLOEXEC) == 0 && pipe2(err, O_CLOEXEC) == 0;
    const std::array<int, 3> fds = {in, out[1], err[1]};
    pid_t pid = piped ? spawn_process(argv, extra_env, fds) : -1;
    for (int fd : fds) {
        if (fd >= 0) close(fd);
    }
    int readers[2] = {out[0], err[0]};
    std::string *sinks[2] = {&result.out, &result.err};
    if (pid > 0 && !collect(readers, sinks, timeout_ms)) kill(pid, SIGKILL);
    for (int fd : readers) {
        if (fd >= 0) close(fd);
    }
    while (pid > 0 && waitpid(pid, &result.status, 0) < 0 && errno == EINTR) {
    }
    return result;
}

long long monotonic_ms()
{
    timespec ts;
    clock_gettime(CLOCK_MONOTONIC, &ts);
    return static_cast<long long>(ts.tv_sec) * 1000 + ts.tv_nsec / 1000000;
}

bool exited_cleanly(int status)
{
    return status >= 0 && WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

bool ended_abnormally(int status)
{
    return status >= 0 && !exited_cleanly(status);
}
