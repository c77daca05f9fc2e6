/* Where rlk-modemd listens when RLK_MODEMD_SOCKET is unset: a per-user
 * directory ($XDG_RUNTIME_DIR/rlk-modemd, else /tmp/rlk-modemd-<uid>)
 * that also holds the on-demand simulator's state and log files. */
#ifndef RLK_WIRE_MODEMD_PATHS_H
#define RLK_WIRE_MODEMD_PATHS_H

#include <string>

std::string modemd_default_socket_path();
/* RLK_MODEMD_SOCKET when set, else the default. */
std::string modemd_socket_path_from_env();

#endif
