/* The connection to a QMUX device behind qmux_transport.h: the device's
 * state, the thread that reads it and feeds each client handle's packet
 * pair, and control requests with their answers (late ones included). */
#ifndef RLK_HOST_QMUX_LINK_H
#define RLK_HOST_QMUX_LINK_H

#include <stdint.h>

#include <chrono>
#include <condition_variable>
#include <map>
#include <mutex>
#include <string>
#include <vector>

#include "qmux.h"
#include "qmux_id_record.h"

namespace rlk_host {
namespace qmux_link {

/* Bytes a device may send without one whole QMUX frame among them, at
 * open and after: twice the largest frame, so a QMUX stream never comes
 * near it.  A device past it is not one (/dev/zero, a terminal streaming
 * something else) and is given up. */
constexpr size_t k_garbage_max_bytes = 2 * (0xFFFF + 1);

struct bridge {
    uint8_t service;
    uint8_t cid;
    int local = -1;  /* the transport's end of the pair */
    int client = -1; /* the handle's end */
    bool closing = false;
};

struct ctl_wait {
    bool done = false;
    uint16_t msg_id = 0;
    std::vector<uint8_t> tlvs;
};

struct device {
    std::mutex mu;
    std::condition_variable cv;
    std::mutex write_mu;
    std::string path;
    int fd = -1;
    int wake[2] = {-1, -1};
    bool opened = false;
    bool failed = false;
    int error = 0; /* errno of the failure */
    /* A control request went unanswered, and nothing came since. */
    bool unresponsive = false;
    uint8_t next_txn = 1;
    std::map<uint8_t, ctl_wait *> waits;
    /* Requests given up on, by transaction: a late answer still counts. */
    std::map<uint8_t, uint16_t> late;
    std::vector<bridge> bridges;
    bool have_versions = false;
    std::map<uint8_t, uint16_t> majors;
    qmux_reader reader;
    size_t bytes_without_frame = 0;
};

/* The caller's bound over a call's control requests (qmux_call_bound). */
struct call_bound {
    std::chrono::steady_clock::time_point start;
    uint32_t timeout_ms;
};

/* The one device of the process. */
device &dev();

/* Reports what is wrong with the device on standard error, as the
 * platform reports a refused simulator. */
void report(const std::string &what);

/* Starts the thread that reads the device. */
void start(device &d);
/* Wakes the thread to look at the bridges again. */
void wake(device &d);

/* Under d.mu: sends a control request nobody waits for (a release on the
 * way out of a client id); its answer is not looked at. */
void send_ctl_unwaited(device &d, uint16_t msg_id, qmux_owned_id id);
/* Under d.mu: takes the services of a Get Version Info answer. */
void take_versions(device &d, const std::vector<uint8_t> &answer);
/* The client id an allocation's answer hands out, if it succeeded. */
bool allocated_id(const std::vector<uint8_t> &answer, qmux_owned_id *id);

/* One control request, waiting at most k_qmux_ctl_timeout_ms and no longer
 * than `bound` allows; false without an answer in time (a late answer is
 * still taken: versions are kept, a client id goes back at once). */
bool ctl_request(device &d, uint16_t msg_id, const std::vector<uint8_t> &tlvs, std::vector<uint8_t> *answer,
                 const call_bound *bound);

}  // namespace qmux_link
}  // namespace rlk_host

#endif
