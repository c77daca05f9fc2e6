#include "state_files.h"

#include <dirent.h>
#include <errno.h>
#include <fcntl.h>
#include <linux/openat2.h>
#include <stdio.h>
#include <string.h>
#include <sys/syscall.h>
#include <sys/stat.h>
#include <unistd.h>

namespace modemd {
namespace {

constexpr int k_dir_flags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;
constexpr mode_t k_dir_mode = 0700;
constexpr mode_t k_file_mode = 0600;
constexpr const char *k_tmp_marker = ".tmp.";
/* Deeper trees than a modem path can make are not searched. */
constexpr int k_max_cleanup_depth = 512;

size_t remove_in(int dir_fd, bool recursive, int depth)
{
    int list_fd = dup(dir_fd);
    if (list_fd < 0) return 0;
    DIR *d = fdopendir(list_fd);
    if (!d) {
        close(list_fd);
        return 0;
    }
    size_t removed = 0;
    std::vector<std::string> subdirs;
    while (struct dirent *e = readdir(d)) {
        std::string name = e->d_name;
        if (name == "." || name == "..") continue;
        struct stat st;
        if (fstatat(dir_fd, name.c_str(), &st, AT_SYMLINK_NOFOLLOW) != 0) continue;
        if (S_ISREG(st.st_mode) && is_temporary_name(name)) {
            if (unlinkat(dir_fd, name.c_str(), 0) == 0) removed++;
        } else if (S_ISDIR(st.st_mode) && recursive && depth < k_max_cleanup_depth) {
            subdirs.push_back(name);
        }
    }
    closedir(d);
    for (const std::string &name : subdirs) {
        fd_guard sub(openat(dir_fd, name.c_str(), k_dir_flags));
        if (sub.get() >= 0) removed += remove_in(sub.get(), true, depth + 1);
    }
    if (removed) fsync(dir_fd);
    return removed;
}

}  // namespace

fd_guard::~fd_guard()
{
    if (fd_ >= 0) close(fd_);
}

void fd_guard::reset(int fd)
{
    if (fd_ >= 0) close(fd_);
    fd_ = fd;
}

int open_dir_nofollow(const std::string &dir) { return open(dir.c_str(), k_dir_flags); }

/* One system call where the kernel has openat2(): the whole relative path
 * resolved beneath `at` with no link allowed anywhere in it.  -1 with
 * errno ENOSYS where it has not (or a filter forbids it). */
int open_beneath(int at, const std::vector<std::string> &components, size_t count)
{
#if defined(SYS_openat2) && defined(RESOLVE_NO_SYMLINKS)
    std::string rel = ".";
    for (size_t i = 0; i < count && i < components.size(); i++) rel += "/" + components[i];
    struct open_how how;
    memset(&how, 0, sizeof(how));
    how.flags = k_dir_flags;
    how.resolve = RESOLVE_BENEATH | RESOLVE_NO_SYMLINKS | RESOLVE_NO_MAGICLINKS;
    long fd = syscall(SYS_openat2, at, rel.c_str(), &how, sizeof(how));
    if (fd >= 0) return static_cast<int>(fd);
    if (errno == EPERM || errno == EINVAL || errno == E2BIG) errno = ENOSYS;
    return -1;
#else
    (void)at;
    (void)components;
    (void)count;
    errno = ENOSYS;
    return -1;
#endif
}

int open_subdir_nofollow(int at, const std::vector<std::string> &components, size_t count, bool create)
{
    int fast = open_beneath(at, components, count);
    if (fast >= 0 || (errno != ENOSYS && !(create && errno == ENOENT))) return fast;
    return open_subdir_walk(at, components, count, create);
}

int open_subdir_walk(int at, const std::vector<std::string> &components, size_t count, bool create)
{
    int cur = fcntl(at, F_DUPFD_CLOEXEC, 0);
    if (cur < 0) return -1;
    for (size_t i = 0; i < count && i < components.size(); i++) {
        const char *name = components[i].c_str();
        int next = openat(cur, name, k_dir_flags);
        if (next < 0 && errno == ENOENT && create) {
            if (mkdirat(cur, name, k_dir_mode) != 0 && errno != EEXIST) {
                int saved = errno;
                close(cur);
                errno = saved;
                return -1;
            }
            next = openat(cur, name, k_dir_flags);
        }
        int saved = errno;
        close(cur);
        if (next < 0) {
            errno = saved;
            return -1;
        }
        cur = next;
    }
    return cur;
}

bool atomic_write_at(int dir_fd, const std::string &name, const void *data, size_t len)
{
    std::string tmp = "." + name + k_tmp_marker + std::to_string(getpid());
    int fd = openat(dir_fd, tmp.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_NOFOLLOW | O_CLOEXEC, k_file_mode);
    if (fd < 0) return false;
    const uint8_t *p = static_cast<const uint8_t *>(data);
    size_t done = 0;
    while (done < len) {
        ssize_t n = write(fd, p + done, len - done);
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) break;
        done += size_t(n);
    }
    bool ok = done == len && fsync(fd) == 0;
    ok = close(fd) == 0 && ok;
    if (ok) ok = renameat(dir_fd, tmp.c_str(), dir_fd, name.c_str()) == 0;
    if (!ok) {
        unlinkat(dir_fd, tmp.c_str(), 0);
        return false;
    }
    fsync(dir_fd);
    return true;
}

bool read_all(int fd, std::vector<uint8_t> *out)
{
    out->clear();
    uint8_t buf[65536];
    for (;;) {
        ssize_t n = read(fd, buf, sizeof(buf));
        if (n < 0 && errno == EINTR) continue;
        if (n < 0) return false;
        if (n == 0) return true;
        out->insert(out->end(), buf, buf + n);
    }
}

bool is_temporary_name(const std::string &name)
{
    if (name.size() < 2 || name[0] != '.') return false;
    size_t marker = name.rfind(k_tmp_marker);
    if (marker == std::string::npos || marker < 2) return false;
    size_t digits = marker + std::char_traits<char>::length(k_tmp_marker);
    if (digits == name.size()) return false;
    for (size_t i = digits; i < name.size(); i++) {
        if (name[i] < '0' || name[i] > '9') return false;
    }
    return true;
}

size_t remove_stale_temporaries(int dir_fd, bool recursive) { return remove_in(dir_fd, recursive, 0); }

}  // namespace modemd
