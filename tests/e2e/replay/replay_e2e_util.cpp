#include "replay_e2e_util.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <fstream>
#include <iterator>

namespace replay_e2e {

namespace {

uint64_t le(const bytes &d, size_t at, int n)
{
    uint64_t v = 0;
    for (int i = n - 1; i >= 0; i--) v = (v << 8) | d[at + size_t(i)];
    return v;
}

/* Moves what is readable from `fd` into *acc; false at end of file. */
bool drain(int fd, std::string *acc)
{
    char buf[65536];
    ssize_t n;
    while ((n = read(fd, buf, sizeof(buf))) > 0) acc->append(buf, size_t(n));
    return n < 0;
}

}  // namespace

bytes read_file(const std::string &path)
{
    std::ifstream in(path, std::ios::binary);
    return bytes(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

bool write_file(const std::string &path, const bytes &data)
{
    std::ofstream out(path, std::ios::binary);
    out.write(reinterpret_cast<const char *>(data.data()), std::streamsize(data.size()));
    out.close();
    return bool(out);
}

bool pcap_records(const bytes &b, std::vector<std::string> *records)
{
    if (b.size() < 24 || le(b, 0, 4) != 0xA1B2C3D4 || le(b, 20, 4) != 228) return false;
    size_t at = 24;
    while (at < b.size()) {
        if (b.size() - at < 16) return false;
        size_t n = size_t(le(b, at + 8, 4));
        if (n != le(b, at + 12, 4) || b.size() - at - 16 < n) return false;
        records->emplace_back(b.begin() + long(at + 16), b.begin() + long(at + 16 + n));
        at += 16 + n;
    }
    return true;
}

int exit_code(int status)
{
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

run_result replay(const std::vector<std::string> &args)
{
    std::vector<std::string> argv = {RLK_REPLAY_BINARY};
    argv.insert(argv.end(), args.begin(), args.end());
    return run_process(argv, {});
}

bool pty::open()
{
    master = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
    if (master < 0 || grantpt(master) != 0 || unlockpt(master) != 0) return false;
    slave_path = ptsname(master);
    slave = ::open(slave_path.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);
    struct termios raw;
    if (slave < 0 || tcgetattr(slave, &raw) != 0) return false;
    cfmakeraw(&raw);
    return tcsetattr(slave, TCSANOW, &raw) == 0;
}

pty::~pty()
{
    if (slave >= 0) close(slave);
    if (master >= 0) close(master);
}

child spawn(const std::vector<std::string> &argv, int stdin_fd, int stderr_fd, const std::vector<std::string> &env)
{
    child c;
    int out[2], err[2];
    if (pipe2(out, O_CLOEXEC) != 0 || pipe2(err, O_CLOEXEC) != 0) return c;
    c.pid = spawn_process(argv, env, {stdin_fd, out[1], stderr_fd >= 0 ? stderr_fd : err[1]});
    close(out[1]);
    close(err[1]);
    c.out = out[0];
    c.err = stderr_fd >= 0 ? -1 : err[0];
    if (stderr_fd >= 0) close(err[0]);
    for (int fd : {c.out, c.err}) {
        if (fd >= 0) fcntl(fd, F_SETFL, fcntl(fd, F_GETFL) | O_NONBLOCK);
    }
    return c;
}

bool read_until(const child &c, const std::string &needle, int timeout_ms, std::string *acc)
{
    long long deadline = monotonic_ms() + timeout_ms;
    while (acc->find(needle) == std::string::npos) {
        long long left = deadline - monotonic_ms();
        if (left <= 0) return false;
        struct pollfd p = {c.out, POLLIN, 0};
        if (poll(&p, 1, int(left)) > 0 && !drain(c.out, acc)) return acc->find(needle) != std::string::npos;
    }
    return true;
}

int finish(child *c, int timeout_ms, std::string *out, std::string *err)
{
    long long deadline = monotonic_ms() + timeout_ms;
    bool out_open = true, err_open = c->err >= 0;
    while (out_open || err_open) {
        long long left = deadline - monotonic_ms();
        if (left <= 0) {
            kill(c->pid, SIGKILL);
            break;
        }
        struct pollfd p[2] = {{out_open ? c->out : -1, POLLIN, 0}, {err_open ? c->err : -1, POLLIN, 0}};
        if (poll(p, 2, int(left)) <= 0) continue;
        if (out_open && p[0].revents) out_open = drain(c->out, out);
        if (err_open && p[1].revents) err_open = drain(c->err, err);
    }
    int status = -1;
    waitpid(c->pid, &status, 0);
    close(c->out);
    if (c->err >= 0) close(c->err);
    c->pid = -1;
    return status;
}

run_result replay_interrupted(const std::vector<std::string> &args, int write_fd, const bytes &input,
                              const std::string &needle, int sig)
{
    int fds[2] = {-1, -1};
    if (write_fd < 0 && pipe2(fds, O_CLOEXEC) == 0) write_fd = fds[1];
    std::vector<std::string> argv = {RLK_REPLAY_BINARY};
    argv.insert(argv.end(), args.begin(), args.end());
    child c = spawn(argv, fds[0]);
    if (fds[0] >= 0) close(fds[0]);
    run_result r = {-1, "", ""};
    if (c.pid > 0) {
        EXPECT_EQ(write(write_fd, input.data(), input.size()), ssize_t(input.size()));
        EXPECT_TRUE(read_until(c, needle, k_wait_ms, &r.out)) << r.out;
        kill(c.pid, sig);
        r.status = finish(&c, k_wait_ms, &r.out, &r.err);
    }
    if (fds[1] >= 0) close(fds[1]);
    return r;
}

}  // namespace replay_e2e
