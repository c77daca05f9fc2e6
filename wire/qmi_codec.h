/* QMI TLV codec driven by element tables (`struct qmi_elem_info`, the model
 * of libqrtr and the kernel's QMI helpers).
 *
 * A table is a list of rows ended by QMI_EOTI; each row names one C field
 * by offset.  At the top level, consecutive rows with the same TLV id form
 * one TLV; an QMI_OPT_FLAG row points at the `_valid` byte of an optional
 * TLV; a QMI_DATA_LEN row holds the element count of the variable array row
 * that follows it (C field of elem_size bytes, 1 byte on the wire when
 * elem_size is 1, else 2); QMI_STRUCT rows nest another table.  Basic
 * fields have the same width in C and on the wire, little-endian.
 *
 * Unlike libqrtr's decoder, this one refuses malformed messages: a TLV
 * shorter or longer than its fields, a length running past the message, a
 * count above the array size, a repeated TLV, an unknown mandatory TLV
 * (ids below 0x10) and a missing mandatory TLV are errors
 * (QMI_IDL_LIB_* codes).  Unknown optional TLVs are skipped. */
#ifndef RLK_WIRE_QMI_CODEC_H
#define RLK_WIRE_QMI_CODEC_H

#include <stddef.h>
#include <stdint.h>

#include "qmi_idl_lib.h"

/* QMI header as carried over QRTR: u8 type, u16 transaction, u16 message
 * id, u16 length of the TLV area. */
#define QMI_HEADER_LEN 7
#define QMI_TYPE_REQUEST 0x00
#define QMI_TYPE_RESPONSE 0x02
#define QMI_TYPE_INDICATION 0x04
#define QMI_OPTIONAL_TLV_MIN 0x10

struct qmi_header {
    uint8_t type;
    uint16_t txn;
    uint16_t msg_id;
    uint16_t len;
};

/* Encodes `c_struct` as TLVs into `dst`; *out_len gets the encoded size. */
int32_t qmi_codec_encode(const struct qmi_elem_info *ei, const void *c_struct, uint8_t *dst, size_t cap,
                         size_t *out_len);

/* Decodes a TLV area into `c_struct` (c_len bytes, zeroed first). */
int32_t qmi_codec_decode(const struct qmi_elem_info *ei, const uint8_t *src, size_t len, void *c_struct,
                         size_t c_len);

/* Writes a 7-byte header.  */
void qmi_header_write(uint8_t *dst, const qmi_header &h);
/* Reads a header and checks that its length matches the packet; false for
 * a packet shorter than a header or with an inconsistent length. */
bool qmi_header_read(const uint8_t *src, size_t len, qmi_header *h);

#endif
