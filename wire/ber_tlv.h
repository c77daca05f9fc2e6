/* BER-TLV as the eUICC speaks it (ETSI TS 102 221 / ISO 7816-4 rules):
 * tags of one to three bytes, lengths in short form or 0x81 / 0x82 long
 * form.  Parsing never reads past the buffer it is given. */
#ifndef RLK_WIRE_BER_TLV_H
#define RLK_WIRE_BER_TLV_H

#include <stddef.h>
#include <stdint.h>

#include <vector>

struct ber_tlv {
    uint32_t tag = 0;             /* the tag bytes, most significant first: 0xBF2D */
    const uint8_t *value = nullptr;
    size_t len = 0;
};

/* Parses the TLV at the start of `data`; returns the bytes it takes, or 0
 * when the data does not hold a whole TLV. */
size_t ber_tlv_parse(const uint8_t *data, size_t len, ber_tlv *out);

/* Finds the first TLV with `tag` among the TLVs that fill `data`; false
 * when absent or when the data is malformed before it. */
bool ber_tlv_find(const uint8_t *data, size_t len, uint32_t tag, ber_tlv *out);

/* Appends tag, length and value; false when the value is longer than a
 * two-byte length can say. */
bool ber_tlv_append(std::vector<uint8_t> *out, uint32_t tag, const uint8_t *value, size_t len);
bool ber_tlv_append(std::vector<uint8_t> *out, uint32_t tag, const std::vector<uint8_t> &value);

#endif
