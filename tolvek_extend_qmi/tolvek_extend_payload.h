/* Payloads carried in the 512-byte `data` of a tolvek_extend_msg: the EFS
 * and NV requests (request code 2) with their response record, and the
 * common requests (request code 4) with theirs.  Every field is
 * little-endian on the wire; the structures below match the wire byte for
 * byte on a little-endian host, so the tool fills them and the simulator
 * reads them without per-field code.  Shared by the tool and the modem
 * simulator. */
#ifndef TOLVEK_EXTEND_PAYLOAD_H
#define TOLVEK_EXTEND_PAYLOAD_H

#include <stddef.h>
#include <stdint.h>

#include "tolvek_extend_service_v01.h"

#if !defined(__BYTE_ORDER__) || __BYTE_ORDER__ != __ORDER_LITTLE_ENDIAN__
#error "the extension payload structures assume a little-endian host"
#endif

/* ---- EFS and NV requests (request code REQUEST_ID_EFS) ---------------- */

/* Operation codes, first byte of the payload. */
#define TOLVEK_EFS_OP_NV_READ 1
#define TOLVEK_EFS_OP_NV_WRITE 2
#define TOLVEK_EFS_OP_NV_DELETE 3
#define TOLVEK_EFS_OP_READ 4
#define TOLVEK_EFS_OP_WRITE 5
#define TOLVEK_EFS_OP_DELETE 6

/* Instance byte of the first chunk of a write: asks the modem for a new
 * transfer, whose id (0..254) the later chunks quote. */
#define TOLVEK_EFS_NEW_INSTANCE 255
#define TOLVEK_EFS_INSTANCE_MAX 254

#define TOLVEK_EFS_SUB_COUNT 2
/* Longest path of a write or delete; a read takes one more byte. */
#define TOLVEK_EFS_PATH_MAX 70
#define TOLVEK_EFS_READ_PATH_MAX 71
/* Size of the path field in the payload (offsets 5 to 75). */
#define TOLVEK_EFS_PATH_FIELD 71
/* Largest chunk of a write (88 + 414 stays inside the payload) and of a
 * read answer (20 + 424 fills the 444-byte response record). */
#define TOLVEK_EFS_WRITE_CHUNK_MAX 414
#define TOLVEK_EFS_READ_CHUNK_MAX 424
/* Largest file the tool moves in one operation. */
#define TOLVEK_EFS_FILE_MAX 102410
/* Response capacity of every EFS and NV request. */
#define TOLVEK_EFS_RSP_LEN 444

/* NV items: ids 0..7232; up to 424 data bytes travel at offset 88. */
#define TOLVEK_NV_ID_MAX 7232
#define TOLVEK_NV_DATA_MAX 424

/* EFS read, write and delete request. */
typedef struct {
    uint8_t op;
    uint8_t sub_id;
    uint8_t instance; /* writes: TOLVEK_EFS_NEW_INSTANCE, then the id the modem returned */
    uint8_t reserved;
    uint8_t path_len;
    char path[TOLVEK_EFS_PATH_FIELD]; /* not terminated; zero bytes follow the path */
    uint32_t data_len_all;            /* writes: total length of the file */
    uint32_t data_len_send;           /* writes: length of this chunk */
    uint32_t data_len_cur;            /* offset of this chunk (reads: bytes received so far) */
    uint8_t data[TOLVEK_EXTEND_DATA_MAX - 88];
} tolvek_efs_req;

/* NV read, write and delete request (same head as the EFS request). */
typedef struct {
    uint8_t op;
    uint8_t sub_id;
    uint16_t nv_id;
    uint8_t reserved[72];
    uint32_t data_len; /* writes: number of data bytes */
    uint8_t reserved2[8];
    uint8_t data[TOLVEK_NV_DATA_MAX];
} tolvek_nv_req;

/* Response record of every EFS and NV request. */
typedef struct {
    uint32_t reserved;
    uint32_t data_len_all;  /* reads: total length of the file or item */
    uint32_t data_len_send; /* EFS reads: length of this chunk */
    uint32_t reserved2;
    int32_t result; /* EFS write: instance id (>= 0); EFS: negative error; NV: status, 0 = done */
    uint8_t data[TOLVEK_EFS_RSP_LEN - 20];
} tolvek_efs_rsp;

static_assert(sizeof(tolvek_efs_req) == TOLVEK_EXTEND_DATA_MAX, "EFS request fills the payload");
static_assert(offsetof(tolvek_efs_req, path_len) == 4 && offsetof(tolvek_efs_req, path) == 5, "EFS path");
static_assert(offsetof(tolvek_efs_req, data_len_all) == 76 && offsetof(tolvek_efs_req, data_len_send) == 80 &&
                  offsetof(tolvek_efs_req, data_len_cur) == 84 && offsetof(tolvek_efs_req, data) == 88,
              "EFS lengths and chunk");
static_assert(88 + TOLVEK_EFS_WRITE_CHUNK_MAX <= TOLVEK_EXTEND_DATA_MAX, "a write chunk fits the payload");
static_assert(sizeof(tolvek_nv_req) == TOLVEK_EXTEND_DATA_MAX, "NV request fills the payload");
static_assert(offsetof(tolvek_nv_req, nv_id) == 2 && offsetof(tolvek_nv_req, data_len) == 76 &&
                  offsetof(tolvek_nv_req, data) == 88,
              "NV request layout");
static_assert(sizeof(tolvek_efs_rsp) == TOLVEK_EFS_RSP_LEN, "EFS/NV response record");
static_assert(offsetof(tolvek_efs_rsp, data_len_all) == 4 && offsetof(tolvek_efs_rsp, data_len_send) == 8 &&
                  offsetof(tolvek_efs_rsp, result) == 16 && offsetof(tolvek_efs_rsp, data) == 20,
              "EFS/NV response layout");
static_assert(sizeof(((tolvek_efs_rsp *)0)->data) == TOLVEK_EFS_READ_CHUNK_MAX, "a read chunk fills the record");

/* ---- Common requests (request code REQUEST_ID_COMMON) ----------------- */

/* Command codes, first word of the payload. */
#define TOLVEK_COMMON_CMD_GPIO_SET 0
#define TOLVEK_COMMON_CMD_RF_TX_SET 1
#define TOLVEK_COMMON_CMD_TYPED 2
#define TOLVEK_COMMON_CMD_STATS_DEBUG 20

/* Response capacity of a common request and its value areas. */
#define TOLVEK_COMMON_RSP_LEN 508
#define TOLVEK_COMMON_VALUE_MAX 496
#define TOLVEK_COMMON_RSP_VALUE_MAX 492

/* Largest number of GPIO values one request carries. */
#define TOLVEK_GPIO_VALUE_MAX 50

/* Typed request (command code 2): type, length and value. */
typedef struct {
    uint32_t cmd_code;
    uint32_t reserved;
    uint32_t type;
    uint32_t len;
    uint8_t value[TOLVEK_COMMON_VALUE_MAX];
} tolvek_common_req;

/* Response record of a common request: the command code echoed, the
 * result (0 = success), then type, length and value. */
typedef struct {
    uint32_t word;
    int32_t result;
    uint32_t type;
    uint32_t len;
    uint8_t value[TOLVEK_COMMON_RSP_VALUE_MAX];
} tolvek_common_rsp;

/* GPIO test set (command code 0). */
typedef struct {
    uint32_t cmd_code;
    uint32_t reserved;
    uint32_t count; /* number of values given; only the first 50 travel */
    int32_t gpio_v[TOLVEK_GPIO_VALUE_MAX];
    uint8_t pad[TOLVEK_EXTEND_DATA_MAX - 12 - 4 * TOLVEK_GPIO_VALUE_MAX];
} tolvek_gpio_set_req;

/* RF transmit test set (command code 1). */
typedef struct {
    uint32_t cmd_code;
    uint32_t reserved;
    uint32_t v_ant;        /* 0 lower antenna, 1 upper antenna */
    uint32_t v_sys;        /* 0 GSM, 1 WCDMA, 2 CDMA, 3 TD-SCDMA, 4 LTE */
    uint64_t v_band_list;  /* band bit mask */
    uint8_t pad[TOLVEK_EXTEND_DATA_MAX - 24];
} tolvek_rf_tx_set_req;

static_assert(sizeof(tolvek_common_req) == TOLVEK_EXTEND_DATA_MAX, "common request fills the payload");
static_assert(offsetof(tolvek_common_req, value) == 16, "common request head");
static_assert(sizeof(tolvek_common_rsp) == TOLVEK_COMMON_RSP_LEN, "common response record");
static_assert(sizeof(tolvek_gpio_set_req) == TOLVEK_EXTEND_DATA_MAX && offsetof(tolvek_gpio_set_req, gpio_v) == 12,
              "GPIO set layout");
static_assert(sizeof(tolvek_rf_tx_set_req) == TOLVEK_EXTEND_DATA_MAX &&
                  offsetof(tolvek_rf_tx_set_req, v_band_list) == 16,
              "RF transmit set layout");

/* State files the modem keeps for the two factory tests. */
#define TOLVEK_GPIO_STATE_FILE "/nv/item_files/modem/tolvek/rf_ant_port_config"
#define TOLVEK_RF_TX_STATE_FILE "/nv/item_files/modem/antenna/ant_tx_config"

#endif
