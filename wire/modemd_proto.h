/* How the host platform talks to rlk-modemd.
 *
 * The simulator listens on one AF_UNIX SOCK_SEQPACKET socket; every packet
 * is one message, as one QRTR datagram is on a handset.  The first packet
 * of a connection is a hello that says what the connection is for:
 *
 *   LOOKUP   a name-service connection (QRTR's control port): the simulator
 *            answers with one NEW_SERVER per matching server, then an
 *            all-zero NEW_SERVER as end-of-list marker, and keeps sending
 *            NEW_SERVER / DEL_SERVER as servers come and go.
 *   CLIENT   a QMI client of one server: the simulator answers NEW_SERVER for
 *            the server it attached, or DEL_SERVER when there is none; then
 *            every packet is a QMI message exactly as QRTR carries it (u8 type,
 *            u16 transaction, u16 message id, u16 length, TLVs).  The
 *            simulator closes the connection when the server goes away.
 *   DIAG     the diag channel: every packet is a diag_envelope followed by
 *            one HDLC frame (payload, CRC-16/X.25 little-endian, 0x7E).
 *   CONTROL  text requests and text answers: properties and the test
 *            controls of the simulator.  With MODEMD_CONTROL_PIECES in the
 *            hello's `service`, requests and answers of any size travel as
 *            pieces (see below); without it, one packet is one request and
 *            one answer, and an answer too large for one packet is refused.
 *
 * All integers are little-endian. */
#ifndef RLK_WIRE_MODEMD_PROTO_H
#define RLK_WIRE_MODEMD_PROTO_H

#include <stdint.h>

#define MODEMD_HELLO_MAGIC 0x4d4b4c52u /* "RLKM" */
#define MODEMD_MAX_PACKET 65536

enum modemd_conn_kind : uint32_t {
    MODEMD_CONN_LOOKUP = 1,
    MODEMD_CONN_CLIENT = 2,
    MODEMD_CONN_DIAG = 3,
    MODEMD_CONN_CONTROL = 4,
};

struct modemd_hello {
    uint32_t magic;
    uint32_t kind;      /* modemd_conn_kind */
    uint32_t service;   /* LOOKUP, CLIENT: QMI service id (LOOKUP: 0 = all) */
    uint32_t instance;  /* LOOKUP, CLIENT: QRTR instance word, instance << 8 | IDL major; 0xFFFFFFFF = any */
} __attribute__((packed));

/* CONTROL hello flags (in `service`). */
#define MODEMD_CONTROL_PIECES 1u
/* A piece: one flag byte, then up to MODEMD_CONTROL_PIECE_DATA bytes of the
 * text.  Every piece of a request or answer but its last is flagged
 * MODEMD_PIECE_MORE, the last MODEMD_PIECE_LAST, so a reader knows when
 * the text is whole and a connection lost in the middle shows as such. */
#define MODEMD_CONTROL_PIECE_DATA 32768
#define MODEMD_PIECE_MORE 'm'
#define MODEMD_PIECE_LAST 'e'

/* Name-service packets, the layout of QRTR's control packets. */
enum modemd_ctrl_cmd : uint32_t {
    MODEMD_CTRL_NEW_SERVER = 4,
    MODEMD_CTRL_DEL_SERVER = 5,
};

struct modemd_ctrl_pkt {
    uint32_t cmd;
    uint32_t service;
    uint32_t instance;  /* instance << 8 | IDL major version */
    uint32_t node;
    uint32_t port;
} __attribute__((packed));

/* Node number the simulator reports for its servers (the modem's node). */
#define MODEMD_MODEM_NODE 0u

/* Header of every diag packet.  `data_type` uses the diag device's words:
 * USER_SPACE_RAW_DATA_TYPE (0x80) for callback-mode commands and their
 * responses, DCI_PKT_TYPE (0x400) for DCI requests and responses, and
 * DCI_DATA_TYPE (0x40) for DCI log and event stream records and for the
 * session requests of the library (see diag_session_op). */
struct diag_envelope {
    uint32_t data_type;
    int32_t proc;       /* processor id: 0 MSM, 1 MDM, ... */
    uint32_t tag;       /* DCI: request tag echoed in the response; stream: record type */
} __attribute__((packed));

#endif
