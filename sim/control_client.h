/* The client side of the simulator's control interface, shared by
 * `rlk-modemd ctl` and the tests: one request, its whole answer, within a
 * time limit. */
#ifndef MODEMD_CONTROL_CLIENT_H
#define MODEMD_CONTROL_CLIENT_H

#include <string>

namespace modemd {

/* Time `rlk-modemd ctl` waits for an answer unless told otherwise. */
constexpr int k_ctl_default_timeout_ms = 10000;

/* Sends `request` to the simulator listening on `socket_path` and returns
 * its whole answer in `answer` ("ok ..." / "error ..."); false, with the
 * reason in `error`, when there is no simulator, the connection is lost or
 * the answer is not complete within `timeout_ms`. */
bool control_request(const std::string &socket_path, const std::string &request, int timeout_ms,
                     std::string *answer, std::string *error);

}  // namespace modemd

#endif
