#include "qmux_transport.h"

#include <errno.h>
#include <fcntl.h>
#include <stdlib.h>
#include <sys/socket.h>
#include <termios.h>
#include <unistd.h>

#include <chrono>
#include <mutex>
#include <string>
#include <vector>

#include "endpoint.h"
#include "qmux.h"
#include "qmux_exit.h"
#include "qmux_link.h"

namespace rlk_host {
namespace {

using namespace qmux_link;

constexpr const char k_device_env[] = "RLK_QMI_DEVICE";
constexpr size_t k_read_chunk = 4096;
/* How long reading away what is left on the device at open may take. */
constexpr int k_drain_max_ms = 200;

thread_local const call_bound *t_bound = nullptr;

/* Reads away what an earlier client left unread on the device, so that
 * none of it is taken for this process's answers; bounded in bytes and
 * time.  False for a device that never runs dry with no QMUX frame in
 * what it sends (/dev/zero, a terminal streaming something else). */
bool drain_at_open(device &d)
{
    std::vector<uint8_t> junk(k_read_chunk);
    qmux_reader frames;
    size_t bytes = 0;
    bool any_frame = false;
    auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(k_drain_max_ms);
    for (;;) {
        ssize_t n = read(d.fd, junk.data(), junk.size());
        if (n <= 0) return true; /* dry */
        bytes += size_t(n);
        frames.feed(junk.data(), size_t(n));
        qmux_frame f;
        while (frames.next(&f)) any_frame = true;
        if (bytes > k_garbage_max_bytes || std::chrono::steady_clock::now() >= deadline) break;
    }
    if (any_frame) return true; /* a busy modem: the rest is read as it comes */
    report(d.path + " never runs dry: " + std::to_string(bytes) +
           " bytes waiting at open and still coming, no QMUX frame among them: not a QMI device? Given up.");
    return false;
}

/* Opens the device once per process; releases the client ids an earlier
 * process of the user left behind on it. */
bool ensure_open(device &d)
{
    std::lock_guard<std::mutex> g(d.mu);
    if (d.opened) return !d.failed;
    d.opened = true;
    const char *path = getenv(k_device_env);
    d.path = path ? path : "";
    d.fd = open(d.path.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC | O_NONBLOCK);
    if (d.fd < 0 || pipe2(d.wake, O_CLOEXEC | O_NONBLOCK) != 0) {
        d.failed = true;
        d.error = errno;
        return false;
    }
    struct termios t;
    if (tcgetattr(d.fd, &t) == 0) { /* a terminal (the simulator's): raw, as a USB device is */
        cfmakeraw(&t);
        tcsetattr(d.fd, TCSANOW, &t);
    }
    if (!drain_at_open(d)) {
        d.failed = true;
        d.error = EPROTO;
        return false;
    }
    /* Transactions start where a stale answer is least likely to match. */
    d.next_txn = uint8_t(getpid() | 1);
    if (qmux_record_open(d.fd)) {
        for (qmux_owned_id id : qmux_record_take_orphans()) send_ctl_unwaited(d, QMI_CTL_MSG_RELEASE_CID, id);
    }
    start(d);
    return true;
}

}  // namespace

qmux_call_bound::qmux_call_bound(uint32_t timeout_ms) : outer_(t_bound)
{
    t_bound = new call_bound{std::chrono::steady_clock::now(), timeout_ms};
}

qmux_call_bound::~qmux_call_bound()
{
    delete t_bound;
    t_bound = static_cast<const call_bound *>(outer_);
}

bool qmux_mode()
{
    const char *path = getenv(k_device_env);
    return path && *path;
}

bool qmux_carries(uint32_t service)
{
    return qmux_mode() && (service <= QMUX_SERVICE_MAX || modemd_socket_is_default());
}

bool qmux_unusable(int *error)
{
    device &d = dev();
    ensure_open(d);
    std::lock_guard<std::mutex> g(d.mu);
    if (d.failed) *error = d.error;
    return d.failed;
}

bool qmux_lookup(uint32_t service, uint32_t *major)
{
    if (service > QMUX_SERVICE_MAX || service == QMUX_SERVICE_CTL) return false;
    device &d = dev();
    if (!ensure_open(d)) return false;
    bool have;
    {
        std::lock_guard<std::mutex> g(d.mu);
        have = d.have_versions;
    }
    if (!have) {
        std::vector<uint8_t> answer;
        bool answered = ctl_request(d, QMI_CTL_MSG_GET_VERSION_INFO, {}, &answer, t_bound);
        std::lock_guard<std::mutex> g(d.mu);
        if (answered) take_versions(d, answer); /* else a late answer may have come meanwhile */
    }
    std::lock_guard<std::mutex> g(d.mu);
    auto it = d.majors.find(uint8_t(service));
    if (it == d.majors.end()) return false;
    *major = it->second;
    return true;
}

int qmux_attach(uint32_t service)
{
    if (service > QMUX_SERVICE_MAX || service == QMUX_SERVICE_CTL) return -1;
    device &d = dev();
    if (!ensure_open(d)) return -1;
    qmux_exit_hooks_install(d.fd, d.wake[1]);
    std::vector<uint8_t> tlvs, answer;
    qmi_tlv_append(&tlvs, QMI_CTL_TLV_INFO, {uint8_t(service)});
    if (!ctl_request(d, QMI_CTL_MSG_ALLOCATE_CID, tlvs, &answer, t_bound)) return -1;
    qmux_owned_id id;
    if (!allocated_id(answer, &id)) return -1;
    int sv[2];
    if (id.service != service || socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, sv) != 0) {
        std::lock_guard<std::mutex> g(d.mu);
        send_ctl_unwaited(d, QMI_CTL_MSG_RELEASE_CID, id);
        qmux_unhold(id);
        return -1;
    }
    {
        std::lock_guard<std::mutex> g(d.mu);
        d.bridges.push_back({id.service, id.cid, sv[0], sv[1], false});
    }
    wake(d);
    return sv[1];
}

void qmux_detach(int fd)
{
    device &d = dev();
    std::vector<uint8_t> v;
    {
        std::lock_guard<std::mutex> g(d.mu);
        for (bridge &b : d.bridges) {
            if (b.client != fd || b.closing) continue;
            b.closing = true;
            v = {b.service, b.cid};
        }
    }
    if (v.empty()) return; /* revoked, or the device is gone */
    wake(d);
    std::vector<uint8_t> tlvs, answer;
    qmi_tlv_append(&tlvs, QMI_CTL_TLV_INFO, v);
    /* Held until the release is on its way: a signal meanwhile releases it
     * again, which the modem refuses harmlessly. */
    ctl_request(d, QMI_CTL_MSG_RELEASE_CID, tlvs, &answer, t_bound);
    qmux_unhold({v[0], v[1]});
}

}  // namespace rlk_host
