#include "process_runner.h"

#include <errno.h>
#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <string.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

extern char **environ;

namespace {

enum pipe_end { READ_END = 0, WRITE_END = 1 };

struct child_pipes {
    int in[2] = {-1, -1};
    int out[2] = {-1, -1};
    int err[2] = {-1, -1};
};

void close_fd(int *fd)
{
    if (*fd >= 0) {
        close(*fd);
        *fd = -1;
    }
}

void close_all(child_pipes *p)
{
    for (int *pair : {p->in, p->out, p->err}) {
        close_fd(&pair[READ_END]);
        close_fd(&pair[WRITE_END]);
    }
}

bool open_pipes(child_pipes *p)
{
    return pipe2(p->in, O_CLOEXEC) == 0 && pipe2(p->out, O_CLOEXEC) == 0 &&
           pipe2(p->err, O_CLOEXEC) == 0;
}

std::string env_name(const std::string &entry)
{
    return entry.substr(0, entry.find('='));
}

/* The parent's environment without the names `extra` sets, then `extra`. */
std::vector<std::string> child_environment(const std::vector<std::string> &extra)
{
    std::vector<std::string> env;
    for (char **e = environ; e != nullptr && *e != nullptr; ++e) {
        std::string name = env_name(*e);
        bool replaced = false;
        for (const std::string &x : extra) {
            replaced = replaced || env_name(x) == name;
        }
        if (!replaced) {
            env.push_back(*e);
        }
    }
    env.insert(env.end(), extra.begin(), extra.end());
    return env;
}

std::vector<char *> c_strings(std::vector<std::string> &strings)
{
    std::vector<char *> out;
    for (std::string &s : strings) {
        out.push_back(&s[0]);
    }
    out.push_back(nullptr);
    return out;
}

/* Runs in the child between fork and exec: only async-signal-safe calls. */
[[noreturn]] void exec_child(child_pipes *p, char **argv, char **envp)
{
    dup2(p->in[READ_END], STDIN_FILENO);
    dup2(p->out[WRITE_END], STDOUT_FILENO);
    dup2(p->err[WRITE_END], STDERR_FILENO);
    signal(SIGPIPE, SIG_DFL);
    execve(argv[0], argv, envp);
    static const char msg[] = "run_process: exec failed\n";
    ssize_t n = write(STDERR_FILENO, msg, sizeof(msg) - 1);
    (void)n;
    _exit(127);
}

long long now_ms()
{
    timespec ts;
    clock_gettime(CLOCK_MONOTONIC, &ts);
    return static_cast<long long>(ts.tv_sec) * 1000 + ts.tv_nsec / 1000000;
}

void drain_into(int *fd, std::string *sink)
{
    char buf[4096];
    ssize_t n = read(*fd, buf, sizeof(buf));
    if (n > 0) {
        sink->append(buf, static_cast<size_t>(n));
    } else if (n == 0 || errno != EINTR) {
        close_fd(fd);
    }
}

/* Feeds stdin and collects stdout/stderr until both outputs close or the
 * time runs out.  Returns false on time-out. */
bool exchange(child_pipes *p, const std::string &stdin_text, run_result *result, int timeout_ms)
{
    size_t written = 0;
    if (stdin_text.empty()) {
        close_fd(&p->in[WRITE_END]);
    } else {
        fcntl(p->in[WRITE_END], F_SETFL, O_NONBLOCK);
    }
    long long deadline = now_ms() + timeout_ms;
    while (p->out[READ_END] >= 0 || p->err[READ_END] >= 0) {
        long long left = deadline - now_ms();
        if (left <= 0) {
            return false;
        }
        pollfd fds[3] = {{p->out[READ_END], POLLIN, 0},
                         {p->err[READ_END], POLLIN, 0},
                         {p->in[WRITE_END], POLLOUT, 0}};
        int ready = poll(fds, 3, static_cast<int>(left));
        if (ready < 0 && errno != EINTR) {
            return false;
        }
        if (fds[0].revents != 0) drain_into(&p->out[READ_END], &result->out);
        if (fds[1].revents != 0) drain_into(&p->err[READ_END], &result->err);
        if (fds[2].revents & (POLLERR | POLLHUP)) {
            close_fd(&p->in[WRITE_END]);
        } else if (fds[2].revents & POLLOUT) {
            ssize_t n = write(p->in[WRITE_END], stdin_text.data() + written, stdin_text.size() - written);
            if (n > 0) written += static_cast<size_t>(n);
            if (written == stdin_text.size() || (n < 0 && errno != EAGAIN && errno != EINTR)) {
                close_fd(&p->in[WRITE_END]);
            }
        }
    }
    return true;
}

}  // namespace

run_result run_process(const std::vector<std::string> &argv, const std::vector<std::string> &extra_env,
                       const std::string &stdin_text, int timeout_ms)
{
    run_result result{-1, "", ""};
    if (argv.empty()) {
        return result;
    }
    /* A child that stops reading its input must not kill the test. */
    signal(SIGPIPE, SIG_IGN);

    std::vector<std::string> args = argv;
    std::vector<std::string> env = child_environment(extra_env);
    std::vector<char *> c_args = c_strings(args);
    std::vector<char *> c_env = c_strings(env);

    child_pipes pipes;
    if (!open_pipes(&pipes)) {
        close_all(&pipes);
        return result;
    }
    pid_t pid = fork();
    if (pid < 0) {
        close_all(&pipes);
        return result;
    }
    if (pid == 0) {
        exec_child(&pipes, c_args.data(), c_env.data());
    }
    close_fd(&pipes.in[READ_END]);
    close_fd(&pipes.out[WRITE_END]);
    close_fd(&pipes.err[WRITE_END]);

    if (!exchange(&pipes, stdin_text, &result, timeout_ms)) {
        kill(pid, SIGKILL);
    }
    close_all(&pipes);
    while (waitpid(pid, &result.status, 0) < 0 && errno == EINTR) {
    }
    return result;
}

bool exited_cleanly(int status)
{
    return status >= 0 && WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

bool ended_abnormally(int status)
{
    return status >= 0 && !exited_cleanly(status);
}
