#include "modemd_paths.h"

#include <errno.h>
#include <fcntl.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr mode_t k_private_dir_mode = 0700;
constexpr mode_t k_group_other_bits = 0077;
constexpr mode_t k_log_file_mode = 0600;
constexpr uid_t k_root_uid = 0;

std::string refusal(const std::string &dir, const std::string &why)
{
    return "refusing directory " + dir + ": " + why;
}

}  // namespace

std::string modemd_default_socket_path()
{
    const char *runtime = getenv("XDG_RUNTIME_DIR");
    std::string dir;
    if (runtime && *runtime && access(runtime, W_OK) == 0) {
        dir = std::string(runtime) + "/rlk-modemd";
    } else {
        dir = "/tmp/rlk-modemd-" + std::to_string(getuid());
    }
    return dir + "/modemd.sock";
}

std::string modemd_socket_path_from_env()
{
    const char *env = getenv("RLK_MODEMD_SOCKET");
    return env && *env ? std::string(env) : modemd_default_socket_path();
}

std::string modemd_dir_of(const std::string &path)
{
    size_t slash = path.rfind('/');
    if (slash == std::string::npos) return ".";
    return slash == 0 ? std::string("/") : path.substr(0, slash);
}

bool modemd_private_dir_check(const std::string &dir, std::string *error)
{
    struct stat st;
    if (lstat(dir.c_str(), &st) != 0) {
        *error = refusal(dir, strerror(errno));
        return false;
    }
    if (S_ISLNK(st.st_mode)) {
        *error = refusal(dir, "it is a symbolic link, not a directory");
        return false;
    }
    if (!S_ISDIR(st.st_mode)) {
        *error = refusal(dir, "it is not a directory");
        return false;
    }
    if (st.st_uid != geteuid()) {
        *error = refusal(dir, "it is owned by uid " + std::to_string(st.st_uid) + ", not by uid " +
                                  std::to_string(geteuid()));
        return false;
    }
    if (st.st_mode & k_group_other_bits) {
        char mode[8];
        snprintf(mode, sizeof(mode), "%04o", static_cast<unsigned>(st.st_mode & 07777));
        *error = refusal(dir, std::string("it is open to group or others (mode ") + mode + ", expected 0700)");
        return false;
    }
    return true;
}

bool modemd_private_dir_ensure(const std::string &dir, std::string *error)
{
    if (mkdir(dir.c_str(), k_private_dir_mode) != 0 && errno != EEXIST) {
        *error = refusal(dir, std::string("cannot create it: ") + strerror(errno));
        return false;
    }
    return modemd_private_dir_check(dir, error);
}

bool modemd_prepare_socket_dir(const std::string &socket_path, std::string *error)
{
    std::string dir = modemd_dir_of(socket_path);
    if (dir == modemd_dir_of(modemd_default_socket_path())) return modemd_private_dir_ensure(dir, error);
    mkdir(dir.c_str(), k_private_dir_mode);
    return true;
}

bool modemd_peer_is_trusted(int fd, std::string *error)
{
    struct ucred cred;
    socklen_t len = sizeof(cred);
    if (getsockopt(fd, SOL_SOCKET, SO_PEERCRED, &cred, &len) != 0) {
        *error = std::string("cannot tell who runs the simulator: ") + strerror(errno);
        return false;
    }
    if (cred.uid == geteuid() || cred.uid == k_root_uid) return true;
    *error = "the simulator at the default socket runs as uid " + std::to_string(cred.uid) + " (pid " +
             std::to_string(cred.pid) + "), not as uid " + std::to_string(geteuid());
    return false;
}

int modemd_open_log_file(const std::string &path)
{
    return open(path.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_NOFOLLOW | O_CLOEXEC, k_log_file_mode);
}
