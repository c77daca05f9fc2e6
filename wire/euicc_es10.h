/* The eUICC's ISD-R and the ES10 commands the tool and the simulator
 * exchange (GSMA SGP.22): ids, tags, result codes and the STORE DATA
 * command that carries each ES10 request over a logical channel. */
#ifndef RLK_WIRE_EUICC_ES10_H
#define RLK_WIRE_EUICC_ES10_H

#include <stddef.h>
#include <stdint.h>

/* Application id of the ISD-R. */
constexpr uint8_t k_es10_isdr_aid[] = {0xA0, 0x00, 0x00, 0x05, 0x59, 0x10, 0x10, 0xFF,
                                       0xFF, 0xFF, 0xFF, 0x89, 0x00, 0x00, 0x01, 0x00};
constexpr size_t k_es10_isdr_aid_len = sizeof(k_es10_isdr_aid);

/* ES10 request and response tags. */
constexpr uint32_t k_es10_tag_profile_info_list = 0xBF2D;
constexpr uint32_t k_es10_tag_disable_profile = 0xBF32;
constexpr uint32_t k_es10_tag_delete_profile = 0xBF33;
constexpr uint32_t k_es10_tag_profile_info = 0xE3;
constexpr uint32_t k_es10_tag_iccid = 0x5A;
constexpr uint32_t k_es10_tag_isdp_aid = 0x4F;
constexpr uint32_t k_es10_tag_profile_state = 0x9F70;
constexpr uint32_t k_es10_tag_profile_nickname = 0x90;
constexpr uint32_t k_es10_tag_service_provider = 0x91;
constexpr uint32_t k_es10_tag_ctx0 = 0xA0;   /* profileInfoListOk, profileIdentifier */
constexpr uint32_t k_es10_tag_result = 0x80; /* disableResult, deleteResult */
constexpr uint32_t k_es10_tag_list_error = 0x81;
constexpr uint32_t k_es10_tag_refresh_flag = 0x81;

constexpr size_t k_es10_iccid_len = 10;

/* Profile states of ProfileInfo. */
constexpr uint8_t k_es10_profile_disabled = 0;
constexpr uint8_t k_es10_profile_enabled = 1;

/* Results of DisableProfile and DeleteProfile. */
constexpr uint8_t k_es10_result_ok = 0;
constexpr uint8_t k_es10_result_not_found = 1;
constexpr uint8_t k_es10_result_wrong_state = 2; /* not enabled (disable) / not disabled (delete) */
constexpr uint8_t k_es10_result_undefined = 127;

/* STORE DATA: the one command of an ES10 request in a single block. */
constexpr uint8_t k_es10_cla_base = 0x80;          /* channels 1 to 3: CLA 0x80 | channel */
constexpr uint8_t k_es10_cla_extended = 0xC0;      /* channels 4 to 19: CLA 0xC0 | (channel - 4) */
constexpr uint8_t k_es10_first_extended_channel = 4;
constexpr uint8_t k_es10_last_channel = 19;
constexpr uint8_t k_es10_ins_store_data = 0xE2;
constexpr uint8_t k_es10_p1_last_block = 0x91;
constexpr uint8_t k_es10_p2_first_block = 0x00;
constexpr size_t k_es10_apdu_header_len = 5; /* CLA INS P1 P2 Lc */
constexpr size_t k_es10_store_data_max = 255;

/* Status words. */
constexpr uint16_t k_sw_ok = 0x9000;
constexpr uint16_t k_sw_wrong_length = 0x6700;
constexpr uint16_t k_sw_channel_not_supported = 0x6881;
constexpr uint16_t k_sw_wrong_data = 0x6A80;
constexpr uint16_t k_sw_not_found = 0x6A82;
constexpr uint16_t k_sw_wrong_p1p2 = 0x6A86;
constexpr uint16_t k_sw_data_not_found = 0x6A88;
constexpr uint16_t k_sw_ins_not_supported = 0x6D00;
constexpr uint16_t k_sw_cla_not_supported = 0x6E00;

/* The CLA byte of a STORE DATA on `channel` (1 to 19). */
constexpr uint8_t es10_store_data_cla(uint8_t channel)
{
    return channel < k_es10_first_extended_channel ? uint8_t(k_es10_cla_base | channel)
                                                   : uint8_t(k_es10_cla_extended |
                                                             (channel - k_es10_first_extended_channel));
}

#endif
