/* The simulator's modem state on disk: the EFS tree (one host file per
 * modem file under <state>/efs), the property store (<state>/properties)
 * and small helpers for files written atomically (write, fsync, rename,
 * fsync of the directory), so that a simulator killed at any moment leaves
 * every file either old or new; the temporary files such a simulator leaves
 * are removed when the store is opened again.  Nothing under the EFS tree
 * is reached through a symbolic link. */
#ifndef MODEMD_STATE_STORE_H
#define MODEMD_STATE_STORE_H

#include <stdint.h>
#include <sys/stat.h>

#include <map>
#include <string>
#include <vector>

namespace modemd {

/* EFS error numbers as the modem's EFS layer reports them (negative
 * errno values). */
constexpr int k_efs_ok = 0;
constexpr int k_efs_enoent = -2;  /* no such file */
constexpr int k_efs_eio = -5;     /* the host file could not be read or written */
constexpr int k_efs_eisdir = -21; /* the path names a directory */
constexpr int k_efs_einval = -22; /* bad path */
constexpr int k_efs_enametoolong = -36;

bool atomic_write_file(const std::string &path, const void *data, size_t len);
bool read_whole_file(const std::string &path, std::vector<uint8_t> *out);

class state_store {
public:
    /* Opens (and creates) the state directory; seeds it when it is new. */
    bool open(const std::string &dir);
    const std::string &dir() const { return dir_; }

    /* EFS by modem path ("/nv/item_files/..."); results are k_efs_*. */
    int efs_read(const std::string &path, std::vector<uint8_t> *out) const;
    int efs_write(const std::string &path, const std::vector<uint8_t> &data);
    int efs_delete(const std::string &path);
    bool efs_exists(const std::string &path) const;
    /* The host file's status of an EFS file; false when there is no regular
     * file at the path (a link is never followed). */
    bool efs_stat(const std::string &path, struct stat *st) const;
    /* Modem paths of every EFS file, sorted. */
    std::vector<std::string> efs_list() const;

    /* Android properties; an unset property reads as "". */
    std::string get_property(const std::string &key) const;
    bool set_property(const std::string &key, const std::string &value);

private:
    static bool split_path(const std::string &modem_path, std::vector<std::string> *components);
    int open_parent(const std::vector<std::string> &components, bool create) const;
    size_t remove_temporaries();
    bool save_properties() const;
    void load_properties();

    std::string dir_;
    std::map<std::string, std::string> props_;
};

/* Writes the seed files of a fresh state directory. */
void seed_state(state_store &store);

}  // namespace modemd

#endif
