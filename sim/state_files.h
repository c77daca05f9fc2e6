/* File operations under the simulator's state directory that never follow
 * a symbolic link: a link planted inside the tree (state/efs/nv -> /home)
 * must not lead a read, a write or a delete outside it.  Directories are
 * walked one component at a time with openat(O_NOFOLLOW | O_DIRECTORY) and
 * files are opened, replaced and removed relative to their directory. */
#ifndef MODEMD_STATE_FILES_H
#define MODEMD_STATE_FILES_H

#include <stddef.h>
#include <stdint.h>

#include <string>
#include <vector>

namespace modemd {

/* Closes a descriptor when it goes out of scope. */
class fd_guard {
public:
    explicit fd_guard(int fd = -1) : fd_(fd) {}
    ~fd_guard();
    fd_guard(const fd_guard &) = delete;
    fd_guard &operator=(const fd_guard &) = delete;
    int get() const { return fd_; }
    void reset(int fd);

private:
    int fd_;
};

/* Opens directory `dir` itself without following a link in its last
 * component (the path leading to it is the operator's choice). */
int open_dir_nofollow(const std::string &dir);

/* Opens the directory reached from `at` through `components`, none of which
 * may be a symbolic link; with `create`, missing ones are made (0700).
 * -1 with errno set (ELOOP or ENOTDIR for a link or a file on the way). */
int open_subdir_nofollow(int at, const std::vector<std::string> &components, size_t count, bool create);
/* The same, one openat() per component: what open_subdir_nofollow falls
 * back to on kernels without openat2(). */
int open_subdir_walk(int at, const std::vector<std::string> &components, size_t count, bool create);

/* Replaces `name` in directory `dir_fd` atomically: a temporary file
 * ".<name>.tmp.<pid>" is written, synced and renamed over it, and the
 * directory is synced.  A link at `name` is replaced, never followed. */
bool atomic_write_at(int dir_fd, const std::string &name, const void *data, size_t len);

/* Reads what is left of an open file. */
bool read_all(int fd, std::vector<uint8_t> *out);

/* True for the name of a temporary file of atomic_write_at: a dot, a name,
 * ".tmp." and a process id. */
bool is_temporary_name(const std::string &name);

/* Removes the temporary files a killed simulator left in `dir` (and, with
 * `recursive`, in its subdirectories, not following links); nothing else.
 * Returns how many were removed. */
size_t remove_stale_temporaries(int dir_fd, bool recursive);

}  // namespace modemd

#endif
