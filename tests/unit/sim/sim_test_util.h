/* What the simulator's tests share: whole files, private directories,
 * bounded polls, hex text, QMI clients and extension-service requests. */
#ifndef RLK_TEST_SIM_TEST_UTIL_H
#define RLK_TEST_SIM_TEST_UTIL_H

#include <stdlib.h>
#include <string.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "data_file.h"
#include "qmi_client.h"
#include "sim_fixture.h"
#include "tolvek_extend_payload.h"

constexpr int k_wait_ms = 3000;

inline std::string file_text(const std::string &path)
{
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

inline void write_file(const std::string &path, const std::string &text)
{
    std::ofstream(path, std::ios::binary | std::ios::trunc) << text;
}

/* The exit code of a wait status; -1 when the process did not exit. */
inline int exit_code(int status)
{
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

/* A local packet socket bound at `path` (to listen on), or connected to
 * it; -1 on failure. */
inline int seqpacket_at(const std::string &path, bool bound, int flags = 0)
{
    int fd = socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC | flags, 0);
    sockaddr_un addr = {};
    addr.sun_family = AF_UNIX;
    snprintf(addr.sun_path, sizeof(addr.sun_path), "%s", path.c_str());
    const sockaddr *a = reinterpret_cast<const sockaddr *>(&addr);
    if (fd >= 0 && (bound ? bind(fd, a, sizeof(addr)) : connect(fd, a, sizeof(addr))) != 0) {
        close(fd);
        fd = -1;
    }
    return fd;
}

/* Hex text of `n` bytes, byte i being byte_at(i). */
template <typename F>
std::string hex_of(size_t n, F byte_at)
{
    std::vector<uint8_t> b(n);
    for (size_t i = 0; i < n; i++) b[i] = uint8_t(byte_at(i));
    return hex(b);
}

inline std::string hex_fill(uint8_t b, size_t n)
{
    return hex_of(n, [b](size_t) { return b; });
}

/* Polls `done` every 10 ms for up to `ms`; false when it never held. */
template <typename F>
bool wait_until(F done, int ms = k_wait_ms)
{
    for (long long end = monotonic_ms() + ms; !done(); usleep(10 * 1000)) {
        if (monotonic_ms() >= end) return false;
    }
    return true;
}

/* The simulator's counters `names`: their values joined by spaces. */
inline std::string counters(const sim_instance &sim, const std::vector<std::string> &names)
{
    std::string all;
    for (const std::string &n : names) all += (all.empty() ? "" : " ") + sim.ctl_ok("counter get " + n);
    return all;
}

/* A control request on a raw connection to the simulator; its answer. */
template <typename Conn>
std::string ask(const Conn &c, const std::string &request)
{
    EXPECT_TRUE(c.send(std::vector<uint8_t>(request.begin(), request.end())));
    std::vector<uint8_t> a = c.recv(k_wait_ms);
    return std::string(a.begin(), a.end());
}

/* A private directory under /tmp, removed with its content. */
struct temp_dir {
    std::string path;
    temp_dir()
    {
        char t[] = "/tmp/rlk-sim-test-XXXXXX";
        path = mkdtemp(t) ? t : "/nonexistent";
    }
    ~temp_dir() { EXPECT_EQ(system(("rm -rf '" + path + "'").c_str()), 0); }
};

/* A QMI client of the simulator RLK_MODEMD_SOCKET names. */
struct qmi_conn {
    qmi_client_type c = nullptr;
    ~qmi_conn() { release(); }
    bool open(qmi_idl_service_object_type svc, qmi_client_ind_cb ind = nullptr, void *data = nullptr)
    {
        release();
        qmi_client_os_params os = {};
        return qmi_client_init_instance(svc, QMI_CLIENT_INSTANCE_ANY, ind, data, &os, k_wait_ms, &c) == QMI_NO_ERR;
    }
    void release()
    {
        if (c) qmi_client_release(c);
        c = nullptr;
    }
    /* Sends a request; true when its response came. */
    template <typename Req, typename Resp>
    bool call(unsigned int msg_id, const Req *req, Resp *resp, size_t req_len = sizeof(Req))
    {
        memset(static_cast<void *>(resp), 0, sizeof(*resp));
        return qmi_client_send_msg_sync(c, msg_id, const_cast<Req *>(req), unsigned(req_len), resp,
                                        unsigned(sizeof(*resp)), k_wait_ms) == QMI_NO_ERR;
    }
};

/* An extension-service request of `code` carrying `payload`. */
template <typename T>
tolvek_extend_msg ext_msg(uint32_t code, const T &payload, uint32_t data_len = TOLVEK_EXTEND_DATA_MAX)
{
    tolvek_extend_msg m = tolvek_extend_msg();
    m.msg_code = code;
    m.data_len = data_len;
    m.data_valid = 1;
    memcpy(m.data, &payload, sizeof(payload));
    return m;
}

#endif
