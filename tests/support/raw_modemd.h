/* Connections to rlk-modemd spoken by hand, for tests that act as clients
 * the tool never is: clients that stop reading, that never say hello, that
 * leave in the middle of a transfer. */
#ifndef RLK_TEST_RAW_MODEMD_H
#define RLK_TEST_RAW_MODEMD_H

#include <errno.h>
#include <string.h>
#include <sys/socket.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "endpoint.h"
#include "ext_request.h"
#include "modemd_proto.h"
#include "qmi_codec.h"
#include "qmi_idl_lib.h"
#include "tolvek_extend_payload.h"
#include "tolvek_extend_service_v01.h"

struct raw_conn {
    int fd = -1;
    raw_conn() = default;
    raw_conn(const raw_conn &) = delete;
    raw_conn &operator=(const raw_conn &) = delete;
    ~raw_conn() { close_now(); }
    void close_now()
    {
        if (fd >= 0) close(fd);
        fd = -1;
    }
    /* Connects and says hello (the simulator's socket from RLK_MODEMD_SOCKET). */
    bool open(modemd_conn_kind kind, uint32_t service = 0, uint32_t instance = 0)
    {
        fd = rlk_host::modemd_connect(kind, service, instance);
        return fd >= 0;
    }
    bool send(const std::vector<uint8_t> &pkt) const { return rlk_host::modemd_send(fd, pkt.data(), pkt.size()); }
    /* One packet; empty on time-out, end of connection or error. */
    std::vector<uint8_t> recv(int timeout_ms) const
    {
        std::vector<uint8_t> buf(MODEMD_MAX_PACKET);
        long n = rlk_host::modemd_recv(fd, buf.data(), buf.size(), timeout_ms);
        buf.resize(n > 0 ? size_t(n) : 0);
        return buf;
    }
    /* True when the simulator closed the connection within `timeout_ms`
     * (whatever it sent before is read and dropped). */
    bool closed_by_peer(int timeout_ms) const
    {
        std::vector<uint8_t> buf(MODEMD_MAX_PACKET);
        for (;;) {
            long n = rlk_host::modemd_recv(fd, buf.data(), buf.size(), timeout_ms);
            if (n == 0 || (n < 0 && errno == ECONNRESET)) return true;
            if (n < 0) return false;
        }
    }
};

/* The extension service's client: attach, and requests as raw packets. */
struct raw_ext_client : raw_conn {
    bool attach()
    {
        qmi_idl_service_object_type obj = tolvek_extend_get_service_object_v01();
        if (!open(MODEMD_CONN_CLIENT, obj->service_id, 0xFFFFFFFFu)) return false;
        std::vector<uint8_t> ack = recv(3000);
        modemd_ctrl_pkt p;
        if (ack.size() != sizeof(p)) return false;
        memcpy(&p, ack.data(), sizeof(p));
        return p.cmd == MODEMD_CTRL_NEW_SERVER;
    }
    static const qmi_idl_service_message_table_entry *message(qmi_idl_type_of_message_type type)
    {
        return qmi_idl_find_message(tolvek_extend_get_service_object_v01(), type, TOLVEK_EXTEND_REQ_MSG_ID_V01);
    }
    static std::vector<uint8_t> packet(uint16_t txn, const tolvek_extend_msg &req)
    {
        const qmi_idl_service_message_table_entry *m = message(QMI_IDL_REQUEST);
        std::vector<uint8_t> pkt(QMI_HEADER_LEN + m->max_msg_len + 64);
        size_t len = 0;
        if (qmi_codec_encode(m->ei, &req, pkt.data() + QMI_HEADER_LEN, pkt.size() - QMI_HEADER_LEN, &len) != 0) {
            return {};
        }
        qmi_header_write(pkt.data(), {QMI_TYPE_REQUEST, txn, TOLVEK_EXTEND_REQ_MSG_ID_V01, uint16_t(len)});
        pkt.resize(QMI_HEADER_LEN + len);
        return pkt;
    }
    /* Sends `req` and waits for its response; false without one. */
    bool call(const tolvek_extend_msg &req, tolvek_extend_msg *resp, int timeout_ms = 3000)
    {
        uint16_t txn = next_txn++;
        if (!send(packet(txn, req))) return false;
        for (;;) {
            std::vector<uint8_t> pkt = recv(timeout_ms);
            qmi_header h;
            if (pkt.empty() || !qmi_header_read(pkt.data(), pkt.size(), &h)) return false;
            if (h.type != QMI_TYPE_RESPONSE || h.txn != txn) continue;
            memset(resp, 0, sizeof(*resp));
            return qmi_codec_decode(message(QMI_IDL_RESPONSE)->ei, pkt.data() + QMI_HEADER_LEN,
                                    pkt.size() - QMI_HEADER_LEN, resp, sizeof(*resp)) == 0;
        }
    }
    /* An EFS write chunk; returns the answer's result (INT32_MIN without one). */
    int32_t efs_write(const std::string &path, uint8_t instance, uint32_t total, uint32_t off, uint32_t len,
                      uint8_t fill)
    {
        tolvek_efs_req efs;
        memset(&efs, 0, sizeof(efs));
        efs.op = TOLVEK_EFS_OP_WRITE;
        efs.instance = instance;
        efs.path_len = uint8_t(path.size());
        memcpy(efs.path, path.data(), path.size());
        efs.data_len_all = total;
        efs.data_len_send = len;
        efs.data_len_cur = off;
        memset(efs.data, fill, len);
        /* The head of any EFS request; the chunk fills the whole payload. */
        tolvek_extend_msg req = make_efs_read_request(), resp;
        memcpy(req.data, &efs, sizeof(efs));
        if (!call(req, &resp)) return INT32_MIN;
        tolvek_efs_rsp rsp;
        memcpy(&rsp, resp.data, sizeof(rsp));
        return rsp.result;
    }
    uint16_t next_txn = 1;
};

#endif
