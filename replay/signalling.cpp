#include "signalling.h"

namespace {

const char *const k_status_names[SIGNALLING_STATUS_COUNT] = {
    "written",
    "not signalling",
    "version refused",
    "malformed",
    "channel not written",
    "NR RRC, no GSMTAP type",
};

}  // namespace

const char *signalling_status_name(signalling_status status)
{
    return status < SIGNALLING_STATUS_COUNT ? k_status_names[status] : "?";
}

signalling_result signalling_extract(uint16_t code, const uint8_t *payload, size_t len)
{
    switch (code) {
    case LOG_LTE_RRC_OTA: return signalling_lte_rrc(payload, len);
    case LOG_LTE_NAS_ESM_IN:
    case LOG_LTE_NAS_ESM_OUT:
    case LOG_LTE_NAS_EMM_IN:
    case LOG_LTE_NAS_EMM_OUT: return signalling_lte_nas(code, payload, len);
    case LOG_WCDMA_RRC_SIGNALLING: return signalling_wcdma_rrc(payload, len);
    case LOG_GSM_RR_SIGNALLING: return signalling_gsm_rr(payload, len);
    case LOG_NR_RRC_OTA: {
        signalling_result r;
        r.status = SIGNALLING_NO_GSMTAP;
        return r;
    }
    default: break;
    }
    return signalling_result();
}
