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

void fsync_dir(const std::string &dir)
{
    int fd = ::open(dir.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd < 0) return;
    fsync(fd);
    close(fd);
}

void list_tree(const std::string &root, const std::string &rel, std::vector<std::string> *out)
{
    DIR *d = opendir((root + rel).c_str());
    if (!d) return;
    while (struct dirent *e = readdir(d)) {
        std::string name = e->d_name;
        if (name == "." || name == ".." || name[0] == '.') continue; /* skips temporary files */
        std::string child = rel + "/" + name;
        struct stat st;
        if (stat((root + child).c_str(), &st) != 0) continue;
        if (S_ISDIR(st.st_mode)) {
            list_tree(root, child, out);
        } else {
            out->push_back(child);
        }
    }
    closedir(d);
}

}  // namespace

bool atomic_write_file(const std::string &path, const void *data, size_t len)
{
    std::string dir = parent_of(path);
    if (!make_dirs(dir)) return false;
    std::string tmp = dir + "/." + path.substr(dir.size() + 1) + ".tmp." + std::to_string(getpid());
    int fd = ::open(tmp.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
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
    if (ok) ok = rename(tmp.c_str(), path.c_str()) == 0;
    if (!ok) {
        unlink(tmp.c_str());
        return false;
    }
    fsync_dir(dir);
    return true;
}

bool read_whole_file(const std::string &path, std::vector<uint8_t> *out)
{
    int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0) return false;
    out->clear();
    uint8_t buf[65536];
    for (;;) {
        ssize_t n = read(fd, buf, sizeof(buf));
        if (n < 0 && errno == EINTR) continue;
        if (n < 0) {
            close(fd);
            return false;
        }
        if (n == 0) break;
        out->insert(out->end(), buf, buf + n);
    }
    close(fd);
    return true;
}

bool state_store::open(const std::string &dir)
{
    dir_ = dir;
    bool fresh = access((dir_ + "/efs").c_str(), F_OK) != 0;
    if (!make_dirs(dir_ + "/efs")) return false;
    load_properties();
    if (fresh) seed_state(*this);
    return true;
}

/* Maps a modem path onto the host tree; refuses relative paths and ".."
 * components so that no request escapes the state directory. */
bool state_store::host_path(const std::string &modem_path, std::string *out) const
{
    if (modem_path.empty() || modem_path[0] != '/' || modem_path.size() > k_max_modem_path) return false;
    size_t pos = 0;
    while (pos < modem_path.size()) {
        size_t next = modem_path.find('/', pos + 1);
        std::string comp = modem_path.substr(pos + 1, next == std::string::npos ? std::string::npos : next - pos - 1);
        if (comp.empty() || comp == "." || comp == ".." || comp[0] == '.') return false;
        if (next == std::string::npos) break;
        pos = next;
    }
    *out = dir_ + "/efs" + modem_path;
    return true;
}

int state_store::efs_read(const std::string &path, std::vector<uint8_t> *out) const
{
    std::string host;
    if (!host_path(path, &host)) return k_efs_einval;
    struct stat st;
    if (stat(host.c_str(), &st) != 0 || !S_ISREG(st.st_mode)) return k_efs_enoent;
    return read_whole_file(host, out) ? k_efs_ok : k_efs_eio;
}

int state_store::efs_write(const std::string &path, const std::vector<uint8_t> &data)
{
    std::string host;
    if (!host_path(path, &host)) return k_efs_einval;
    return atomic_write_file(host, data.data(), data.size()) ? k_efs_ok : k_efs_eio;
}

int state_store::efs_delete(const std::string &path)
{
    std::string host;
    if (!host_path(path, &host)) return k_efs_einval;
    struct stat st;
    if (stat(host.c_str(), &st) != 0 || !S_ISREG(st.st_mode)) return k_efs_enoent;
    if (unlink(host.c_str()) != 0) return k_efs_eio;
    fsync_dir(parent_of(host));
    return k_efs_ok;
}

bool state_store::efs_exists(const std::string &path) const
{
    std::string host;
    struct stat st;
    return host_path(path, &host) && stat(host.c_str(), &st) == 0 && S_ISREG(st.st_mode);
}

std::vector<std::string> state_store::efs_list() const
{
    std::vector<std::string> out;
    list_tree(dir_ + "/efs", "", &out);
    std::sort(out.begin(), out.end());
    return out;
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

/* One "key=value" line per property. */
bool state_store::save_properties() const
{
    std::string text;
    for (const auto &kv : props_) text += kv.first + "=" + kv.second + "\n";
    return atomic_write_file(dir_ + "/properties", text.data(), text.size());
}

void state_store::load_properties()
{
    std::vector<uint8_t> raw;
    if (!read_whole_file(dir_ + "/properties", &raw)) return;
    std::string text(raw.begin(), raw.end());
    size_t pos = 0;
    while (pos < text.size()) {
        size_t end = text.find('\n', pos);
        if (end == std::string::npos) end = text.size();
        std::string line = text.substr(pos, end - pos);
        size_t eq = line.find('=');
        if (eq != std::string::npos && eq > 0) props_[line.substr(0, eq)] = line.substr(eq + 1);
        pos = end + 1;
    }
}

}  // namespace modemd
