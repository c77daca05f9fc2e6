#include "state_store.h"

#include <dirent.h>
#include <errno.h>
#include <fcntl.h>
#include <stdio.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <functional>

#include "property_file.h"
#include "state_files.h"

namespace modemd {
namespace {

constexpr size_t k_max_modem_path = 1024;

bool make_dirs(const std::string &dir)
{
    size_t pos = 1;
    for (;;) {
        size_t slash = dir.find('/', pos);
        std::string part = dir.substr(0, slash);
        if (!part.empty() && mkdir(part.c_str(), 0700) != 0 && errno != EEXIST) return false;
        if (slash == std::string::npos) return true;
        pos = slash + 1;
    }
}

std::string parent_of(const std::string &path)
{
    size_t slash = path.rfind('/');
    return slash == std::string::npos || slash == 0 ? std::string("/") : path.substr(0, slash);
}

/* A directory entry that is a regular file, not following a link. */
bool is_regular_at(int dir_fd, const std::string &name, struct stat *st)
{
    return fstatat(dir_fd, name.c_str(), st, AT_SYMLINK_NOFOLLOW) == 0 && S_ISREG(st->st_mode);
}

void list_tree(int dir_fd, const std::string &rel, std::vector<std::string> *out)
{
    int list_fd = dup(dir_fd);
    DIR *d = list_fd >= 0 ? fdopendir(list_fd) : nullptr;
    if (!d) {
        if (list_fd >= 0) close(list_fd);
        return;
    }
    std::vector<std::string> names;
    while (struct dirent *e = readdir(d)) {
        std::string name = e->d_name;
        if (name[0] != '.') names.push_back(name); /* skips temporary files */
    }
    closedir(d);
    for (const std::string &name : names) {
        struct stat st;
        if (fstatat(dir_fd, name.c_str(), &st, AT_SYMLINK_NOFOLLOW) != 0) continue;
        if (S_ISDIR(st.st_mode)) {
            fd_guard sub(openat(dir_fd, name.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
            if (sub.get() >= 0) list_tree(sub.get(), rel + "/" + name, out);
        } else if (S_ISREG(st.st_mode)) {
            out->push_back(rel + "/" + name);
        }
    }
}

}  // namespace

bool atomic_write_file(const std::string &path, const void *data, size_t len)
{
    std::string dir = parent_of(path);
    if (!make_dirs(dir)) return false;
    fd_guard dir_fd(::open(dir.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    return dir_fd.get() >= 0 && atomic_write_at(dir_fd.get(), path.substr(dir.size() + 1), data, len);
}

bool read_whole_file(const std::string &path, std::vector<uint8_t> *out)
{
    fd_guard fd(::open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC));
    return fd.get() >= 0 && read_all(fd.get(), out);
}

bool state_store::open(const std::string &dir)
{
    dir_ = dir;
    bool fresh = access((dir_ + "/efs").c_str(), F_OK) != 0;
    if (!make_dirs(dir_ + "/efs")) return false;
    remove_temporaries();
    load_properties();
    if (fresh) seed_state(*this);
    return true;
}

/* Splits a modem path into its components; refuses relative paths and
 * ".", ".." and hidden components, so that no request names a file outside
 * the EFS tree or one of its temporary files. */
bool state_store::split_path(const std::string &modem_path, std::vector<std::string> *components)
{
    if (modem_path.empty() || modem_path[0] != '/' || modem_path.size() > k_max_modem_path) return false;
    components->clear();
    size_t pos = 0;
    while (pos < modem_path.size()) {
        size_t next = modem_path.find('/', pos + 1);
        std::string comp = modem_path.substr(pos + 1, next == std::string::npos ? std::string::npos : next - pos - 1);
        if (comp.empty() || comp == "." || comp == ".." || comp[0] == '.') return false;
        components->push_back(comp);
        if (next == std::string::npos) break;
        pos = next;
    }
    return true;
}

/* Opens the directory that holds the file of `components` (made with
 * `create`); -1 when a component on the way is missing, not a directory or
 * a link. */
int state_store::open_parent(const std::vector<std::string> &components, bool create) const
{
    fd_guard root(open_dir_nofollow(dir_ + "/efs"));
    if (root.get() < 0) return -1;
    return open_subdir_nofollow(root.get(), components, components.size() - 1, create);
}

bool state_store::efs_stat(const std::string &path, struct stat *st) const
{
    std::vector<std::string> comps;
    if (!split_path(path, &comps)) return false;
    fd_guard dir(open_parent(comps, false));
    return dir.get() >= 0 && is_regular_at(dir.get(), comps.back(), st);
}

int state_store::efs_read(const std::string &path, std::vector<uint8_t> *out) const
{
    std::vector<std::string> comps;
    if (!split_path(path, &comps)) return k_efs_einval;
    fd_guard dir(open_parent(comps, false));
    if (dir.get() < 0) return k_efs_enoent;
    fd_guard fd(openat(dir.get(), comps.back().c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    struct stat st;
    if (fd.get() < 0 || fstat(fd.get(), &st) != 0) return k_efs_enoent;
    if (S_ISDIR(st.st_mode)) return k_efs_eisdir;
    if (!S_ISREG(st.st_mode)) return k_efs_enoent;
    return read_all(fd.get(), out) ? k_efs_ok : k_efs_eio;
}

int state_store::efs_write(const std::string &path, const std::vector<uint8_t> &data)
{
    std::vector<std::string> comps;
    if (!split_path(path, &comps)) return k_efs_einval;
    fd_guard dir(open_parent(comps, true));
    if (dir.get() < 0) return k_efs_eio;
    struct stat st;
    /* A directory or a link where the file goes is not replaced. */
    if (fstatat(dir.get(), comps.back().c_str(), &st, AT_SYMLINK_NOFOLLOW) == 0 && !S_ISREG(st.st_mode))
        return S_ISDIR(st.st_mode) ? k_efs_eisdir : k_efs_eio;
    return atomic_write_at(dir.get(), comps.back(), data.data(), data.size()) ? k_efs_ok : k_efs_eio;
}

int state_store::efs_delete(const std::string &path)
{
    std::vector<std::string> comps;
    if (!split_path(path, &comps)) return k_efs_einval;
    fd_guard dir(open_parent(comps, false));
    struct stat st;
    if (dir.get() < 0) return k_efs_enoent;
    if (!is_regular_at(dir.get(), comps.back(), &st)) {
        bool is_dir = fstatat(dir.get(), comps.back().c_str(), &st, AT_SYMLINK_NOFOLLOW) == 0 && S_ISDIR(st.st_mode);
        return is_dir ? k_efs_eisdir : k_efs_enoent;
    }
    if (unlinkat(dir.get(), comps.back().c_str(), 0) != 0) return k_efs_eio;
    fsync(dir.get());
    return k_efs_ok;
}

bool state_store::efs_exists(const std::string &path) const
{
    struct stat st;
    return efs_stat(path, &st);
}

std::vector<std::string> state_store::efs_list() const
{
    std::vector<std::string> out;
    fd_guard root(open_dir_nofollow(dir_ + "/efs"));
    if (root.get() >= 0) list_tree(root.get(), "", &out);
    std::sort(out.begin(), out.end());
    return out;
}

/* Temporary files of writes a killed simulator never finished: in the
 * state directory (the property store's) and anywhere in the EFS tree. */
size_t state_store::remove_temporaries()
{
    size_t removed = 0;
    fd_guard top(open_dir_nofollow(dir_));
    if (top.get() >= 0) removed += remove_stale_temporaries(top.get(), false);
    fd_guard root(open_dir_nofollow(dir_ + "/efs"));
    if (root.get() >= 0) removed += remove_stale_temporaries(root.get(), true);
    return removed;
}

std::string state_store::get_property(const std::string &key) const
{
    auto it = props_.find(key);
    return it == props_.end() ? std::string() : it->second;
}

bool state_store::set_property(const std::string &key, const std::string &value)
{
    std::string old = get_property(key);
    if (value.empty()) {
        props_.erase(key);
    } else {
        props_[key] = value;
    }
    if (save_properties()) return true;
    if (old.empty()) {
        props_.erase(key);
    } else {
        props_[key] = old;
    }
    return false;
}

bool state_store::save_properties() const
{
    std::string text = encode_properties(props_);
    return atomic_write_file(dir_ + "/properties", text.data(), text.size());
}

void state_store::load_properties()
{
    std::vector<uint8_t> raw;
    if (!read_whole_file(dir_ + "/properties", &raw)) return;
    decode_properties(std::string(raw.begin(), raw.end()), &props_);
}

}  // namespace modemd
