#include "ber_tlv.h"

namespace {

constexpr uint8_t k_tag_more_bytes = 0x1F; /* low five bits of a first tag byte: more tag bytes follow */
constexpr uint8_t k_tag_continues = 0x80;  /* in a later tag byte: another follows */
constexpr size_t k_max_tag_bytes = 3;
constexpr uint8_t k_len_one_byte = 0x81;
constexpr uint8_t k_len_two_bytes = 0x82;
constexpr size_t k_short_len_max = 0x7F;
constexpr size_t k_one_byte_len_max = 0xFF;
constexpr size_t k_two_byte_len_max = 0xFFFF;

/* Reads the tag; returns its byte count or 0. */
size_t parse_tag(const uint8_t *data, size_t len, uint32_t *tag)
{
    if (len == 0) return 0;
    size_t n = 1;
    *tag = data[0];
    if ((data[0] & k_tag_more_bytes) == k_tag_more_bytes) {
        for (;;) {
            if (n >= len || n >= k_max_tag_bytes) return 0;
            uint8_t b = data[n++];
            *tag = *tag << 8 | b;
            if (!(b & k_tag_continues)) break;
        }
    }
    return n;
}

void append_tag(std::vector<uint8_t> *out, uint32_t tag)
{
    if (tag > 0xFFFF) out->push_back(uint8_t(tag >> 16));
    if (tag > 0xFF) out->push_back(uint8_t(tag >> 8));
    out->push_back(uint8_t(tag));
}

}  // namespace

size_t ber_tlv_parse(const uint8_t *data, size_t len, ber_tlv *out)
{
    uint32_t tag = 0;
    size_t pos = parse_tag(data, len, &tag);
    if (pos == 0 || pos >= len) return 0;
    size_t value_len = data[pos++];
    if (value_len == k_len_one_byte || value_len == k_len_two_bytes) {
        size_t bytes = value_len == k_len_one_byte ? 1 : 2;
        if (len - pos < bytes) return 0;
        value_len = 0;
        for (size_t i = 0; i < bytes; i++) value_len = value_len << 8 | data[pos++];
    } else if (value_len > k_short_len_max) {
        return 0;
    }
    if (value_len > len - pos) return 0;
    out->tag = tag;
    out->value = data + pos;
    out->len = value_len;
    return pos + value_len;
}

bool ber_tlv_find(const uint8_t *data, size_t len, uint32_t tag, ber_tlv *out)
{
    size_t pos = 0;
    while (pos < len) {
        ber_tlv t;
        size_t n = ber_tlv_parse(data + pos, len - pos, &t);
        if (n == 0) return false;
        if (t.tag == tag) {
            *out = t;
            return true;
        }
        pos += n;
    }
    return false;
}

bool ber_tlv_append(std::vector<uint8_t> *out, uint32_t tag, const uint8_t *value, size_t len)
{
    if (len > k_two_byte_len_max) return false;
    append_tag(out, tag);
    if (len <= k_short_len_max) {
        out->push_back(uint8_t(len));
    } else if (len <= k_one_byte_len_max) {
        out->push_back(k_len_one_byte);
        out->push_back(uint8_t(len));
    } else {
        out->push_back(k_len_two_bytes);
        out->push_back(uint8_t(len >> 8));
        out->push_back(uint8_t(len));
    }
    if (len) out->insert(out->end(), value, value + len);
    return true;
}

bool ber_tlv_append(std::vector<uint8_t> *out, uint32_t tag, const std::vector<uint8_t> &value)
{
    return ber_tlv_append(out, tag, value.data(), value.size());
}
