#include "qmux_id_record.h"

#include <errno.h>
#include <fcntl.h>
#include <signal.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <chrono>
#include <functional>
#include <mutex>
#include <string>
#include <thread>

#include "modemd_paths.h"

namespace rlk_host {
namespace {

constexpr const char k_lock_name[] = "/qmux-ids.lock";
/* How long a change waits for another process's change to the record. */
constexpr int k_lock_wait_ms = 500;
constexpr int k_lock_step_ms = 2;
constexpr mode_t k_file_mode = 0600;
/* Field 22 of /proc/PID/stat, counted after the command's closing ')'. */
constexpr int k_start_time_field_after_comm = 20;

struct entry {
    long pid;
    unsigned long long start;
    unsigned service;
    unsigned cid;
};

std::mutex g_mu;
std::string g_dir;  /* empty: nothing is recorded */
std::string g_path;

/* When `pid` started (clock ticks since boot), or 0 when unknown. */
unsigned long long start_time(long pid)
{
    char path[64];
    snprintf(path, sizeof(path), "/proc/%ld/stat", pid);
    FILE *f = fopen(path, "re");
    if (!f) return 0;
    char buf[1024];
    size_t n = fread(buf, 1, sizeof(buf) - 1, f);
    fclose(f);
    buf[n] = 0;
    const char *p = strrchr(buf, ')');
    for (int field = 0; p && field < k_start_time_field_after_comm; field++) p = strchr(p + 1, ' ');
    return p ? strtoull(p + 1, nullptr, 10) : 0;
}

bool alive(const entry &e)
{
    if (kill(pid_t(e.pid), 0) != 0 && errno != EPERM) return false;
    unsigned long long now = start_time(e.pid);
    return e.start == 0 || now == 0 || now == e.start; /* a reused pid is another process */
}

std::vector<entry> read_entries()
{
    std::vector<entry> out;
    FILE *f = fopen(g_path.c_str(), "re");
    if (!f) return out;
    entry e;
    while (fscanf(f, "%ld %llu %u %u", &e.pid, &e.start, &e.service, &e.cid) == 4) out.push_back(e);
    fclose(f);
    return out;
}

/* Replaces the record with `entries` in one rename. */
void write_entries(const std::vector<entry> &entries)
{
    if (entries.empty()) {
        unlink(g_path.c_str());
        return;
    }
    std::string text;
    for (const entry &e : entries) {
        char line[96];
        snprintf(line, sizeof(line), "%ld %llu %u %u\n", e.pid, e.start, e.service, e.cid);
        text += line;
    }
    std::string tmp = g_path + ".tmp" + std::to_string(getpid());
    int fd = open(tmp.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_NOFOLLOW | O_CLOEXEC, k_file_mode);
    if (fd < 0) return;
    bool ok = write(fd, text.data(), text.size()) == ssize_t(text.size());
    close(fd);
    if (!ok || rename(tmp.c_str(), g_path.c_str()) != 0) unlink(tmp.c_str());
}

/* Runs `change` on the record's entries under the lock shared by every
 * process of the user, and writes the result back. */
void update(const std::function<void(std::vector<entry> &)> &change)
{
    std::lock_guard<std::mutex> g(g_mu);
    if (g_dir.empty()) return;
    int lock = open((g_dir + k_lock_name).c_str(), O_RDWR | O_CREAT | O_NOFOLLOW | O_CLOEXEC, k_file_mode);
    if (lock < 0) return;
    auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(k_lock_wait_ms);
    while (flock(lock, LOCK_EX | LOCK_NB) != 0) {
        if ((errno != EWOULDBLOCK && errno != EINTR) || std::chrono::steady_clock::now() >= deadline) {
            close(lock);
            return;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(k_lock_step_ms));
    }
    std::vector<entry> entries = read_entries();
    change(entries);
    write_entries(entries);
    close(lock); /* and with it the lock */
}

bool same_id(const entry &e, qmux_owned_id id) { return e.service == id.service && e.cid == id.cid; }

}  // namespace

bool qmux_record_open(int fd)
{
    struct stat st;
    if (fstat(fd, &st) != 0) return false;
    std::string dir = modemd_dir_of(modemd_default_socket_path());
    std::string error;
    if (!modemd_private_dir_ensure(dir, &error)) return false;
    char name[96];
    snprintf(name, sizeof(name), "/qmux-ids-%u.%u-%lld.%09ld", major(st.st_rdev), minor(st.st_rdev),
             (long long)st.st_ctim.tv_sec, st.st_ctim.tv_nsec);
    std::lock_guard<std::mutex> g(g_mu);
    g_dir = dir;
    g_path = dir + name;
    return true;
}

std::vector<qmux_owned_id> qmux_record_take_orphans()
{
    std::vector<qmux_owned_id> out;
    update([&out](std::vector<entry> &entries) {
        std::vector<entry> live;
        for (const entry &e : entries) {
            if (alive(e)) {
                live.push_back(e);
            } else {
                out.push_back({uint8_t(e.service), uint8_t(e.cid)});
            }
        }
        entries.swap(live);
    });
    return out;
}

void qmux_record_add(qmux_owned_id id)
{
    entry mine = {long(getpid()), start_time(getpid()), id.service, id.cid};
    update([&](std::vector<entry> &entries) {
        std::vector<entry> kept;
        for (const entry &e : entries) {
            if (!same_id(e, id)) kept.push_back(e);
        }
        kept.push_back(mine);
        entries.swap(kept);
    });
}

void qmux_record_remove(qmux_owned_id id)
{
    long pid = getpid();
    update([&](std::vector<entry> &entries) {
        std::vector<entry> kept;
        for (const entry &e : entries) {
            if (!(e.pid == pid && same_id(e, id))) kept.push_back(e);
        }
        entries.swap(kept);
    });
}

void qmux_record_remove_mine()
{
    long pid = getpid();
    update([pid](std::vector<entry> &entries) {
        std::vector<entry> kept;
        for (const entry &e : entries) {
            if (e.pid != pid) kept.push_back(e);
        }
        entries.swap(kept);
    });
}

}  // namespace rlk_host
