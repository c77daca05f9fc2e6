/* Where the simulator is and how a process of the tool reaches it. */
#ifndef RLK_HOST_ENDPOINT_H
#define RLK_HOST_ENDPOINT_H

#include <stdint.h>

#include <string>

#include "modemd_proto.h"

namespace rlk_host {

/* RLK_MODEMD_SOCKET, or the per-user default when it is unset. */
std::string modemd_socket_path();
/* True when the socket comes from the per-user default (rlk may then start
 * the simulator itself). */
bool modemd_socket_is_default();
/* Directory of the socket: the default place of the log files. */
std::string modemd_socket_dir();

/* Opens a connection of the given kind and sends its hello.  When nothing
 * answers at the default socket, starts rlk-modemd there and retries.
 * Returns the socket, or -1 (errno set) when the simulator cannot be
 * reached. */
int modemd_connect(modemd_conn_kind kind, uint32_t service, uint32_t instance);

/* One control request and its answer ("ok ..." or "error ...").  Returns
 * false when the simulator cannot be reached. */
bool modemd_control(const std::string &request, std::string *answer);

/* Sends one packet; false on failure. */
bool modemd_send(int fd, const void *data, size_t len);
/* Receives one packet into `buf`; returns its length, 0 on end of
 * connection, -1 on error.  `timeout_ms` < 0 waits without limit; on time-out
 * returns -1 with errno ETIMEDOUT. */
long modemd_recv(int fd, void *buf, size_t cap, int timeout_ms);

}  // namespace rlk_host

#endif
