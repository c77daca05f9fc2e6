/* QMUX framing, as QMI travels on a modem's USB control channel (the
 * character device of a qmi_wwan modem):
 *
 *   u8 interface type (0x01), u16 length (of everything after the
 *   interface byte), u8 control flags (0x80 from the modem, 0x00 from the
 *   host), u8 service type, u8 client id, then one QMI message.
 *
 * The QMI message of the control service (CTL, service 0) has a shorter
 * header (u8 flags, u8 transaction, u16 message id, u16 length) than the
 * other services (u8 flags, u16 transaction, u16 message id, u16 length,
 * the header QRTR carries, see qmi_codec.h).  All integers little-endian. */
#ifndef RLK_WIRE_QMUX_H
#define RLK_WIRE_QMUX_H

#include <stddef.h>
#include <stdint.h>

#include <string>
#include <vector>

constexpr uint8_t QMUX_INTERFACE_TYPE = 0x01;
constexpr size_t QMUX_HEADER_LEN = 6;
/* The length field counts itself, the flags, service and client bytes. */
constexpr size_t QMUX_LENGTH_OVERHEAD = 5;
constexpr uint8_t QMUX_FLAG_FROM_SERVICE = 0x80;
constexpr uint8_t QMUX_SERVICE_CTL = 0x00;
/* Client id that addresses every client of a service (indications). */
constexpr uint8_t QMUX_CLIENT_BROADCAST = 0xFF;
/* Largest service id the service byte holds. */
constexpr uint32_t QMUX_SERVICE_MAX = 0xFF;

/* The control service's QMI header and message types. */
constexpr size_t QMI_CTL_HEADER_LEN = 6;
constexpr uint8_t QMI_CTL_FLAG_REQUEST = 0x00;
constexpr uint8_t QMI_CTL_FLAG_RESPONSE = 0x01;
constexpr uint8_t QMI_CTL_FLAG_INDICATION = 0x02;

/* Control service messages and their TLVs (public layouts). */
constexpr uint16_t QMI_CTL_MSG_GET_VERSION_INFO = 0x0021;
constexpr uint16_t QMI_CTL_MSG_ALLOCATE_CID = 0x0022;
constexpr uint16_t QMI_CTL_MSG_RELEASE_CID = 0x0023;
constexpr uint16_t QMI_CTL_MSG_REVOKE_CID_IND = 0x0024;
constexpr uint16_t QMI_CTL_MSG_SYNC = 0x0027;
/* Version info response 0x01: u8 count, per service u8 id, u16 major,
 * u16 minor.  Allocate/release request and response 0x01: u8 service
 * (request of allocate), u8 service + u8 client id (the others). */
constexpr uint8_t QMI_CTL_TLV_INFO = 0x01;
constexpr uint8_t QMI_TLV_RESULT = 0x02;

/* QMI error numbers of the control service's answers. */
constexpr uint16_t QMI_PROTOCOL_ERR_MALFORMED = 0x0001;
constexpr uint16_t QMI_PROTOCOL_ERR_INTERNAL = 0x0003;
constexpr uint16_t QMI_PROTOCOL_ERR_CLIENT_IDS_EXHAUSTED = 0x0005;
constexpr uint16_t QMI_PROTOCOL_ERR_INVALID_CLIENT_ID = 0x0007;
constexpr uint16_t QMI_PROTOCOL_ERR_INVALID_SERVICE_TYPE = 0x001F;
constexpr uint16_t QMI_PROTOCOL_ERR_INVALID_QMI_COMMAND = 0x0047;

struct qmux_frame {
    uint8_t flags = 0;
    uint8_t service = 0;
    uint8_t client = 0;
    std::vector<uint8_t> qmi; /* the QMI message, header included */
};

struct qmi_ctl_header {
    uint8_t flags;
    uint8_t txn;
    uint16_t msg_id;
    uint16_t len;
};

/* One QMUX frame around the QMI message `qmi` (false when it is too long
 * for the length field). */
bool qmux_encode(uint8_t flags, uint8_t service, uint8_t client, const uint8_t *qmi, size_t len,
                 std::vector<uint8_t> *out);

/* A control service message: header and TLV area. */
std::vector<uint8_t> qmi_ctl_message(uint8_t flags, uint8_t txn, uint16_t msg_id, const std::vector<uint8_t> &tlvs);
/* Reads a control header and checks its length against the message. */
bool qmi_ctl_header_read(const uint8_t *src, size_t len, qmi_ctl_header *h);

/* Appends one TLV to `out`. */
void qmi_tlv_append(std::vector<uint8_t> *out, uint8_t type, const std::vector<uint8_t> &value);
/* Finds TLV `type` in a TLV area; false when absent or the area is
 * malformed. */
bool qmi_tlv_find(const uint8_t *tlvs, size_t len, uint8_t type, std::vector<uint8_t> *value);
/* The standard result TLV: success, or failure with `error`. */
std::vector<uint8_t> qmi_result_tlv(uint16_t error);
/* Reads the result TLV of a TLV area: *error is 0 on success; false
 * when there is no well-formed result TLV. */
bool qmi_result_read(const uint8_t *tlvs, size_t len, uint16_t *error);

/* Splits a byte stream into QMUX frames.  Bytes that cannot start a frame
 * (wrong interface type, a length too short for any QMI header) are
 * skipped one at a time until a frame starts again, and counted. */
class qmux_reader {
public:
    void feed(const uint8_t *data, size_t len);
    /* The next whole frame; false when none is complete yet. */
    bool next(qmux_frame *out);
    /* Drops an incomplete frame (its sender went away in the middle). */
    void reset();
    bool partial() const { return !buf_.empty(); }
    uint64_t skipped_bytes() const { return skipped_; }

private:
    std::vector<uint8_t> buf_;
    uint64_t skipped_ = 0;
};

#endif
