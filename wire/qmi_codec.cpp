#include "qmi_codec.h"

#include <string.h>

namespace {

constexpr uint8_t k_max_tlv_types = 255;

struct writer {
    uint8_t *p;
    size_t cap;
    size_t n;

    bool put(const void *src, size_t len)
    {
        if (len > cap - n) return false;
        memcpy(p + n, src, len);
        n += len;
        return true;
    }
    bool put_uint(uint32_t v, size_t width)
    {
        uint8_t b[4] = {uint8_t(v), uint8_t(v >> 8), uint8_t(v >> 16), uint8_t(v >> 24)};
        return put(b, width);
    }
};

struct reader {
    const uint8_t *p;
    size_t len;
    size_t n;

    bool get(void *dst, size_t count)
    {
        if (count > len - n) return false;
        memcpy(dst, p + n, count);
        n += count;
        return true;
    }
    bool get_uint(uint32_t *v, size_t width)
    {
        uint8_t b[4] = {0, 0, 0, 0};
        if (!get(b, width)) return false;
        *v = uint32_t(b[0]) | uint32_t(b[1]) << 8 | uint32_t(b[2]) << 16 | uint32_t(b[3]) << 24;
        return true;
    }
};

size_t count_width(const qmi_elem_info *len_row) { return len_row->elem_size == 1 ? 1 : 2; }

uint32_t read_c_uint(const uint8_t *field, size_t width)
{
    uint32_t v = 0;
    memcpy(&v, field, width < 4 ? width : 4);
    return v;
}

int32_t encode_rows(const qmi_elem_info *ei, const uint8_t *base, writer *w, bool top, uint8_t tlv);

/* Encodes one row (all its array elements). `count` is the element count
 * for a variable array, else ignored. */
int32_t encode_row(const qmi_elem_info *row, const uint8_t *base, writer *w, uint32_t count)
{
    const uint8_t *field = base + row->offset;
    uint32_t n = row->array_type == NO_ARRAY ? 1 : row->array_type == STATIC_ARRAY ? row->elem_len : count;
    if (n > row->elem_len && row->array_type != NO_ARRAY) return QMI_IDL_LIB_ARRAY_TOO_BIG;
    for (uint32_t i = 0; i < n; i++) {
        const uint8_t *elem = field + size_t(i) * row->elem_size;
        switch (row->data_type) {
        case QMI_STRUCT: {
            int32_t r = encode_rows(row->ei_array, elem, w, false, 0);
            if (r) return r;
            break;
        }
        case QMI_STRING: {
            size_t slen = strnlen(reinterpret_cast<const char *>(elem), row->elem_len);
            if (row->tlv_type == 0) {
                if (!w->put_uint(uint32_t(slen), row->elem_len <= 256 ? 1 : 2)) return QMI_IDL_LIB_BUFFER_TOO_SMALL;
            }
            if (!w->put(elem, slen)) return QMI_IDL_LIB_BUFFER_TOO_SMALL;
            return 0;
        }
        default:
            if (!w->put(elem, row->elem_size)) return QMI_IDL_LIB_BUFFER_TOO_SMALL;
        }
    }
    return 0;
}

/* Encodes a run of rows.  At the top level rows are grouped into TLVs by
 * their TLV id; inside a struct they follow each other without headers. */
int32_t encode_rows(const qmi_elem_info *ei, const uint8_t *base, writer *w, bool top, uint8_t)
{
    size_t tlv_len_at = 0;
    int cur_tlv = -1;
    uint32_t pending_count = 0;
    for (const qmi_elem_info *row = ei; row->data_type != QMI_EOTI; row++) {
        if (top && row->tlv_type != cur_tlv) {
            if (cur_tlv >= 0) {
                size_t body = w->n - tlv_len_at - 2;
                if (body > 0xFFFF) return QMI_IDL_LIB_LENGTH_INCONSISTENCY;
                w->p[tlv_len_at] = uint8_t(body);
                w->p[tlv_len_at + 1] = uint8_t(body >> 8);
            }
            cur_tlv = row->tlv_type;
            if (row->data_type == QMI_OPT_FLAG && base[row->offset] == 0) {
                /* Absent optional TLV: skip all of its rows. */
                while (row[1].data_type != QMI_EOTI && row[1].tlv_type == row->tlv_type) row++;
                cur_tlv = -1;
                continue;
            }
            if (!w->put_uint(row->tlv_type, 1)) return QMI_IDL_LIB_BUFFER_TOO_SMALL;
            tlv_len_at = w->n;
            if (!w->put_uint(0, 2)) return QMI_IDL_LIB_BUFFER_TOO_SMALL;
        }
        if (row->data_type == QMI_OPT_FLAG) continue;
        if (row->data_type == QMI_DATA_LEN) {
            pending_count = read_c_uint(base + row->offset, row->elem_size);
            if (row[1].data_type != QMI_EOTI && pending_count > row[1].elem_len) return QMI_IDL_LIB_ARRAY_TOO_BIG;
            if (!w->put_uint(pending_count, count_width(row))) return QMI_IDL_LIB_BUFFER_TOO_SMALL;
            continue;
        }
        int32_t r = encode_row(row, base, w, pending_count);
        if (r) return r;
    }
    if (top && cur_tlv >= 0) {
        size_t body = w->n - tlv_len_at - 2;
        if (body > 0xFFFF) return QMI_IDL_LIB_LENGTH_INCONSISTENCY;
        w->p[tlv_len_at] = uint8_t(body);
        w->p[tlv_len_at + 1] = uint8_t(body >> 8);
    }
    return 0;
}

int32_t decode_rows(const qmi_elem_info *first, const qmi_elem_info *end, uint8_t *base, reader *r, bool in_tlv);

int32_t decode_row(const qmi_elem_info *row, uint8_t *base, reader *r, uint32_t count)
{
    uint8_t *field = base + row->offset;
    uint32_t n = row->array_type == NO_ARRAY ? 1 : row->array_type == STATIC_ARRAY ? row->elem_len : count;
    if (row->array_type != NO_ARRAY && n > row->elem_len) return QMI_IDL_LIB_ARRAY_TOO_BIG;
    for (uint32_t i = 0; i < n; i++) {
        uint8_t *elem = field + size_t(i) * row->elem_size;
        switch (row->data_type) {
        case QMI_STRUCT: {
            const qmi_elem_info *end = row->ei_array;
            while (end->data_type != QMI_EOTI) end++;
            int32_t res = decode_rows(row->ei_array, end, elem, r, false);
            if (res) return res;
            break;
        }
        case QMI_STRING: {
            uint32_t slen = 0;
            if (row->tlv_type == 0) {
                if (!r->get_uint(&slen, row->elem_len <= 256 ? 1 : 2)) return QMI_IDL_LIB_LENGTH_INCONSISTENCY;
            } else {
                slen = uint32_t(r->len - r->n);
            }
            if (slen > row->elem_len) return QMI_IDL_LIB_ARRAY_TOO_BIG;
            if (!r->get(elem, slen)) return QMI_IDL_LIB_LENGTH_INCONSISTENCY;
            return 0;
        }
        default:
            if (!r->get(elem, row->elem_size)) return QMI_IDL_LIB_LENGTH_INCONSISTENCY;
        }
    }
    return 0;
}

/* Decodes the rows [first, end) from `r`. */
int32_t decode_rows(const qmi_elem_info *first, const qmi_elem_info *end, uint8_t *base, reader *r, bool)
{
    uint32_t count = 0;
    for (const qmi_elem_info *row = first; row != end; row++) {
        if (row->data_type == QMI_OPT_FLAG) {
            base[row->offset] = 1;
            continue;
        }
        if (row->data_type == QMI_DATA_LEN) {
            if (!r->get_uint(&count, count_width(row))) return QMI_IDL_LIB_LENGTH_INCONSISTENCY;
            if (row + 1 != end && count > row[1].elem_len) return QMI_IDL_LIB_ARRAY_TOO_BIG;
            memcpy(base + row->offset, &count, row->elem_size < 4 ? row->elem_size : 4);
            continue;
        }
        int32_t res = decode_row(row, base, r, count);
        if (res) return res;
    }
    return 0;
}

bool tlv_is_optional(const qmi_elem_info *first) { return first->data_type == QMI_OPT_FLAG; }

}  // namespace

int32_t qmi_codec_encode(const qmi_elem_info *ei, const void *c_struct, uint8_t *dst, size_t cap, size_t *out_len)
{
    if (!ei || !c_struct || (!dst && cap) || !out_len) return QMI_IDL_LIB_PARAMETER_ERROR;
    writer w = {dst, cap, 0};
    int32_t r = encode_rows(ei, static_cast<const uint8_t *>(c_struct), &w, true, 0);
    if (r) return r;
    *out_len = w.n;
    return QMI_IDL_LIB_NO_ERR;
}

int32_t qmi_codec_decode(const qmi_elem_info *ei, const uint8_t *src, size_t len, void *c_struct, size_t c_len)
{
    if (!ei || (!src && len) || !c_struct) return QMI_IDL_LIB_PARAMETER_ERROR;
    memset(c_struct, 0, c_len);
    uint8_t *base = static_cast<uint8_t *>(c_struct);
    bool seen[k_max_tlv_types + 1] = {};
    size_t pos = 0;
    while (pos < len) {
        if (len - pos < 3) return QMI_IDL_LIB_LENGTH_INCONSISTENCY;
        uint8_t type = src[pos];
        size_t tlv_len = size_t(src[pos + 1]) | size_t(src[pos + 2]) << 8;
        pos += 3;
        if (tlv_len > len - pos) return QMI_IDL_LIB_LENGTH_INCONSISTENCY;
        const qmi_elem_info *first = ei;
        while (first->data_type != QMI_EOTI && first->tlv_type != type) first++;
        if (first->data_type == QMI_EOTI) {
            if (type < QMI_OPTIONAL_TLV_MIN) return QMI_IDL_LIB_UNKNOWN_MANDATORY_TLV;
            pos += tlv_len;
            continue;
        }
        if (seen[type]) return QMI_IDL_LIB_TLV_DUPLICATED;
        seen[type] = true;
        const qmi_elem_info *end = first;
        while (end->data_type != QMI_EOTI && end->tlv_type == type) end++;
        reader r = {src + pos, tlv_len, 0};
        int32_t res = decode_rows(first, end, base, &r, true);
        if (res) return res;
        if (r.n != tlv_len) return QMI_IDL_LIB_LENGTH_INCONSISTENCY;
        pos += tlv_len;
    }
    /* Every mandatory TLV must have been present. */
    for (const qmi_elem_info *row = ei; row->data_type != QMI_EOTI; row++) {
        bool starts_tlv = row == ei || row[-1].tlv_type != row->tlv_type;
        if (starts_tlv && !tlv_is_optional(row) && !seen[row->tlv_type]) return QMI_IDL_LIB_MISSING_TLV;
    }
    return QMI_IDL_LIB_NO_ERR;
}

void qmi_header_write(uint8_t *dst, const qmi_header &h)
{
    dst[0] = h.type;
    dst[1] = uint8_t(h.txn);
    dst[2] = uint8_t(h.txn >> 8);
    dst[3] = uint8_t(h.msg_id);
    dst[4] = uint8_t(h.msg_id >> 8);
    dst[5] = uint8_t(h.len);
    dst[6] = uint8_t(h.len >> 8);
}

bool qmi_header_read(const uint8_t *src, size_t len, qmi_header *h)
{
    if (len < QMI_HEADER_LEN) return false;
    h->type = src[0];
    h->txn = uint16_t(src[1] | src[2] << 8);
    h->msg_id = uint16_t(src[3] | src[4] << 8);
    h->len = uint16_t(src[5] | src[6] << 8);
    return size_t(h->len) == len - QMI_HEADER_LEN;
}
