#include "replay_e2e_util.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fstream>
#include <iterator>
#include <sstream>

#include "sim_fixture.h"

namespace replay_e2e {

namespace {

uint16_t crc_bitwise(const bytes &d, size_t n)
{
    uint16_t crc = 0xFFFF;
    for (size_t i = 0; i < n; i++) {
        crc ^= d[i];
        for (int b = 0; b < 8; b++) crc = (crc & 1) ? uint16_t((crc >> 1) ^ 0x8408) : uint16_t(crc >> 1);
    }
    return uint16_t(~crc);
}

uint64_t le(const bytes &d, size_t at, int n)
{
    uint64_t v = 0;
    for (int i = n - 1; i >= 0; i--) v = (v << 8) | d[at + size_t(i)];
    return v;
}

void scan_events(const bytes &p, capture_scan *scan)
{
    size_t end = 3 + size_t(le(p, 1, 2));
    size_t at = 3;
    while (at + 2 <= end && end <= p.size()) {
        uint16_t word = uint16_t(le(p, at, 2));
        at += 2 + ((word & 0x8000) ? 2 : 8);
        int code = (word >> 13) & 3;
        at += code == 3 ? 1 + (at < p.size() ? p[at] : 0) : size_t(code);
        if (at > end) break;
        scan->events[word & 0xFFF]++;
    }
}

void scan_frame(bytes p, capture_scan *scan)
{
    if (!p.empty() && p[0] == 0x98) p.erase(p.begin(), p.begin() + std::min<size_t>(8, p.size()));
    if (p.size() >= 16 && p[0] == 0x10) {
        size_t log_len = size_t(le(p, 4, 2));
        uint16_t code = uint16_t(le(p, 6, 2));
        scan->logs[code]++;
        scan->log_packets.push_back({code, le(p, 8, 8), bytes(p.begin() + 16, p.begin() + long(4 + log_len))});
    } else if (p.size() >= 3 && p[0] == 0x60) {
        scan_events(p, scan);
    }
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

capture_scan scan_capture(const bytes &capture)
{
    capture_scan scan;
    bytes frame;
    bool escaped = false;
    for (uint8_t b : capture) {
        if (b == 0x7E) {
            if (frame.size() >= 3 && !escaped && crc_bitwise(frame, frame.size() - 2) == le(frame, frame.size() - 2, 2)) {
                frame.resize(frame.size() - 2);
                scan_frame(frame, &scan);
            } else if (!frame.empty()) {
                scan.bad_frames++;
            }
            frame.clear();
            escaped = false;
        } else if (escaped) {
            frame.push_back(uint8_t(b ^ 0x20));
            escaped = false;
        } else if (b == 0x7D) {
            escaped = true;
        } else {
            frame.push_back(b);
        }
    }
    return scan;
}

summary_tables parse_summary(const std::string &out)
{
    summary_tables t;
    size_t at = out.rfind("\nsummary: ");
    at = at != std::string::npos ? at + 1 : out.compare(0, 9, "summary: ") == 0 ? 0 : std::string::npos;
    if (at == std::string::npos) return t;
    t.found = true;
    std::istringstream in(out.substr(at));
    std::getline(in, t.first_line);
    std::map<uint32_t, uint64_t> *table = nullptr;
    std::string line, key;
    while (std::getline(in, line)) {
        if (line.compare(0, 2, "  ") != 0) {
            table = nullptr;
            if (line == "log packets per code:") table = &t.logs;
            if (line == "event records per id:") table = &t.events;
        } else if (table) {
            uint64_t count = 0;
            std::istringstream(line) >> key >> count;
            (*table)[uint32_t(strtoul(key.c_str(), nullptr, table == &t.logs ? 16 : 10))] = count;
        }
    }
    return t;
}

std::map<std::string, uint64_t> written_per_kind(const std::string &out)
{
    std::map<std::string, uint64_t> kinds;
    size_t at = out.find("pcap messages written per kind:\n");
    if (at == std::string::npos) return kinds;
    for (at = out.find('\n', at) + 1; out.compare(at, 2, "  ") == 0; at = out.find('\n', at) + 1) {
        std::string line = out.substr(at + 2, out.find('\n', at) - at - 2);
        kinds[line.substr(0, line.rfind(' '))] = std::stoull(line.substr(line.rfind(' ') + 1));
    }
    return kinds;
}

bool pcap_records(const std::string &pcap, std::vector<std::string> *records)
{
    bytes b(pcap.begin(), pcap.end());
    if (b.size() < 24 || le(b, 0, 4) != 0xA1B2C3D4 || le(b, 20, 4) != 228) return false;
    size_t at = 24;
    while (at < b.size()) {
        if (b.size() - at < 16) return false;
        size_t n = size_t(le(b, at + 8, 4));
        if (n != le(b, at + 12, 4) || b.size() - at - 16 < n) return false;
        records->push_back(pcap.substr(at + 16, n));
        at += 16 + n;
    }
    return true;
}

int exit_code(int status)
{
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

run_result replay(const std::vector<std::string> &args, const std::string &stdin_text)
{
    std::vector<std::string> argv = {RLK_REPLAY_BINARY};
    argv.insert(argv.end(), args.begin(), args.end());
    return run_process(argv, {}, stdin_text);
}

child spawn(const std::vector<std::string> &argv, int stdin_fd, int stderr_fd)
{
    child c;
    int out[2], err[2];
    if (pipe2(out, O_CLOEXEC) != 0 || pipe2(err, O_CLOEXEC) != 0) return c;
    std::vector<char *> args;
    for (const std::string &a : argv) args.push_back(const_cast<char *>(a.c_str()));
    args.push_back(nullptr);
    c.pid = fork();
    if (c.pid == 0) {
        dup2(stdin_fd >= 0 ? stdin_fd : open("/dev/null", O_RDONLY), STDIN_FILENO);
        dup2(out[1], STDOUT_FILENO);
        dup2(stderr_fd >= 0 ? stderr_fd : err[1], STDERR_FILENO);
        execv(args[0], args.data());
        _exit(127);
    }
    close(out[1]);
    close(err[1]);
    c.out = out[0];
    c.err = err[0];
    if (stderr_fd >= 0) {
        close(c.err);
        c.err = -1;
    }
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
