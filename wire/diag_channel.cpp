#include "diag_channel.h"

#include <string.h>

void diag_packet_build(uint32_t data_type, int32_t proc, uint32_t tag, const uint8_t *payload, size_t len,
                       std::vector<uint8_t> *out)
{
    out->clear();
    out->reserve(DIAG_ENVELOPE_LEN + hdlc_encoded_max(len));
    diag_put_u32(out, data_type);
    diag_put_u32(out, uint32_t(proc));
    diag_put_u32(out, tag);
    hdlc_encode(payload, len, out);
}

bool diag_packet_parse(const uint8_t *data, size_t len, diag_packet *out)
{
    if (len < DIAG_ENVELOPE_LEN) return false;
    out->env.data_type = diag_get_u32(data);
    out->env.proc = int32_t(diag_get_u32(data + 4));
    out->env.tag = diag_get_u32(data + 8);
    out->frames.clear();
    hdlc_decoder dec;
    dec.feed(data + DIAG_ENVELOPE_LEN, len - DIAG_ENVELOPE_LEN, &out->frames);
    dec.finish(&out->frames);
    return true;
}
