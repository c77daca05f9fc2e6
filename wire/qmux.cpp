#include "qmux.h"

#include <string.h>


namespace {

/* Shortest QMI message after a QMUX header: the control header. */
constexpr size_t k_min_qmi_len = QMI_CTL_HEADER_LEN;
constexpr size_t k_max_qmux_length = 0xFFFF;
constexpr size_t k_tlv_header_len = 3;
constexpr size_t k_result_tlv_value_len = 4;
constexpr uint16_t k_result_failure = 1;

uint16_t get_u16(const uint8_t *p) { return uint16_t(p[0] | p[1] << 8); }

}  // namespace

bool qmux_encode(uint8_t flags, uint8_t service, uint8_t client, const uint8_t *qmi, size_t len,
                 std::vector<uint8_t> *out)
{
    if (len + QMUX_LENGTH_OVERHEAD > k_max_qmux_length) return false;
    size_t qmux_len = len + QMUX_LENGTH_OVERHEAD;
    const uint8_t head[] = {QMUX_INTERFACE_TYPE, uint8_t(qmux_len), uint8_t(qmux_len >> 8), flags, service, client};
    out->resize(sizeof(head) + len);
    memcpy(out->data(), head, sizeof(head));
    if (len) memcpy(out->data() + sizeof(head), qmi, len);
    return true;
}

std::vector<uint8_t> qmi_ctl_message(uint8_t flags, uint8_t txn, uint16_t msg_id, const std::vector<uint8_t> &tlvs)
{
    const uint8_t head[] = {flags, txn, uint8_t(msg_id), uint8_t(msg_id >> 8), uint8_t(tlvs.size()),
                            uint8_t(tlvs.size() >> 8)};
    std::vector<uint8_t> m(sizeof(head) + tlvs.size());
    memcpy(m.data(), head, sizeof(head));
    if (!tlvs.empty()) memcpy(m.data() + sizeof(head), tlvs.data(), tlvs.size());
    return m;
}

bool qmi_ctl_header_read(const uint8_t *src, size_t len, qmi_ctl_header *h)
{
    if (len < QMI_CTL_HEADER_LEN) return false;
    h->flags = src[0];
    h->txn = src[1];
    h->msg_id = get_u16(src + 2);
    h->len = get_u16(src + 4);
    return size_t(h->len) == len - QMI_CTL_HEADER_LEN;
}

void qmi_tlv_append(std::vector<uint8_t> *out, uint8_t type, const std::vector<uint8_t> &value)
{
    size_t at = out->size();
    out->resize(at + 3 + value.size());
    uint8_t *p = out->data() + at;
    p[0] = type;
    p[1] = uint8_t(value.size());
    p[2] = uint8_t(value.size() >> 8);
    if (!value.empty()) memcpy(p + 3, value.data(), value.size());
}

bool qmi_tlv_find(const uint8_t *tlvs, size_t len, uint8_t type, std::vector<uint8_t> *value)
{
    size_t off = 0;
    while (off < len) {
        if (len - off < k_tlv_header_len) return false;
        size_t n = get_u16(tlvs + off + 1);
        if (len - off - k_tlv_header_len < n) return false;
        if (tlvs[off] == type) {
            value->assign(tlvs + off + k_tlv_header_len, tlvs + off + k_tlv_header_len + n);
            return true;
        }
        off += k_tlv_header_len + n;
    }
    return false;
}

std::vector<uint8_t> qmi_result_tlv(uint16_t error)
{
    uint16_t result = error ? k_result_failure : 0;
    std::vector<uint8_t> out;
    qmi_tlv_append(&out, QMI_TLV_RESULT, {uint8_t(result), uint8_t(result >> 8), uint8_t(error), uint8_t(error >> 8)});
    return out;
}

bool qmi_result_read(const uint8_t *tlvs, size_t len, uint16_t *error)
{
    std::vector<uint8_t> v;
    if (!qmi_tlv_find(tlvs, len, QMI_TLV_RESULT, &v) || v.size() != k_result_tlv_value_len) return false;
    *error = get_u16(v.data()) ? get_u16(v.data() + 2) : 0;
    if (get_u16(v.data()) && !*error) *error = QMI_PROTOCOL_ERR_INTERNAL; /* failure without a reason */
    return true;
}

void qmux_reader::feed(const uint8_t *data, size_t len) { buf_.insert(buf_.end(), data, data + len); }

void qmux_reader::reset() { buf_.clear(); }

bool qmux_reader::next(qmux_frame *out)
{
    size_t skip = 0;
    for (;;) {
        const size_t avail = buf_.size() - skip;
        if (avail == 0) break;
        const uint8_t *p = buf_.data() + skip;
        if (p[0] != QMUX_INTERFACE_TYPE) {
            skip++;
            continue;
        }
        if (avail < 3) break;
        size_t qmux_len = get_u16(p + 1);
        if (qmux_len < QMUX_LENGTH_OVERHEAD + k_min_qmi_len) {
            skip++;
            continue;
        }
        if (avail < qmux_len + 1) break;
        out->flags = p[3];
        out->service = p[4];
        out->client = p[5];
        out->qmi.assign(p + QMUX_HEADER_LEN, p + 1 + qmux_len);
        skipped_ += skip;
        buf_.erase(buf_.begin(), buf_.begin() + long(skip + 1 + qmux_len));
        return true;
    }
    skipped_ += skip;
    buf_.erase(buf_.begin(), buf_.begin() + long(skip));
    return false;
}
