/* Where rlk-modemd listens when RLK_MODEMD_SOCKET is unset: a per-user
 * directory ($XDG_RUNTIME_DIR/rlk-modemd, else /tmp/rlk-modemd-<uid>)
 * that also holds the on-demand simulator's state and log files.
 *
 * Under /tmp another user can make that directory first, or put a link
 * there, and so receive what the tool writes or answer in the simulator's
 * place.  The tool and the simulator therefore use the default directory
 * only when it is a real directory (not a link), owned by the user and
 * closed to group and others, and talk to a simulator at the default
 * socket only when it runs as the user (or as root). */
#ifndef RLK_WIRE_MODEMD_PATHS_H
#define RLK_WIRE_MODEMD_PATHS_H

#include <string>

std::string modemd_default_socket_path();
/* RLK_MODEMD_SOCKET when set, else the default. */
std::string modemd_socket_path_from_env();
/* The directory part of a socket path ("." for a bare name). */
std::string modemd_dir_of(const std::string &path);

/* Checks `dir` as a private directory of this user: it must exist, be a
 * directory itself (not a link), be owned by the effective user and grant
 * nothing to group or others.  Otherwise false, with `*error` naming the
 * directory and what is wrong. */
bool modemd_private_dir_check(const std::string &dir, std::string *error);
/* Makes `dir` (mode 0700) when it is missing, then checks it. */
bool modemd_private_dir_ensure(const std::string &dir, std::string *error);

/* Prepares the directory of `socket_path` before a simulator binds there:
 * the default directory is made and checked as private; the directory of
 * a socket named by the user is only made when missing. */
bool modemd_prepare_socket_dir(const std::string &socket_path, std::string *error);

/* True when the process at the other end of the connected local socket
 * `fd` runs as this user or as root; otherwise false with `*error`. */
bool modemd_peer_is_trusted(int fd, std::string *error);

/* Opens (creating, mode 0600) a log file for appending without following
 * a link at its name; -1 with errno set (ELOOP for a link). */
int modemd_open_log_file(const std::string &path);

#endif
