/* The eUICC's ISD-R as the eSIM switch talks to it: ES10 requests carried
 * by STORE DATA commands over a logical channel of the UIM client.  Every
 * call returns 0 or a non-zero code (a negative UIM client result, the
 * modem's QMI error, the card's status words such as 0x6A88, or the ES10
 * result of the command) and logs what the card answered. */
#ifndef TOLVEK_CMN_ESIM_ISDR_H
#define TOLVEK_CMN_ESIM_ISDR_H

#include <stddef.h>
#include <stdint.h>

#define TOLVEK_ISDR_ICCID_LEN 10
#define TOLVEK_ISDR_MAX_PROFILES 16
/* The card's answer could not be read as the ES10 response expected. */
#define TOLVEK_ISDR_ERR_MALFORMED (-1000)

typedef struct {
    uint8_t iccid[TOLVEK_ISDR_ICCID_LEN];
    uint8_t state; /* 0 disabled, 1 enabled */
} tolvek_isdr_profile;

typedef struct {
    size_t count;
    tolvek_isdr_profile profiles[TOLVEK_ISDR_MAX_PROFILES];
} tolvek_isdr_profile_list;

int tolvek_isdr_open(uint8_t slot, uint8_t *channel);
int tolvek_isdr_close(uint8_t slot, uint8_t channel);
/* ProfileInfoList: the profiles the card holds (at most 16 are kept). */
int tolvek_isdr_list_profiles(uint8_t slot, uint8_t channel, tolvek_isdr_profile_list *list);
/* DisableProfile without refresh, then DeleteProfile, by ICCID. */
int tolvek_isdr_disable_profile(uint8_t slot, uint8_t channel, const uint8_t *iccid);
int tolvek_isdr_delete_profile(uint8_t slot, uint8_t channel, const uint8_t *iccid);

/* The ICCID as its digits (swapped nibbles, trailing F dropped) into `out`
 * (at least 21 bytes). */
void tolvek_isdr_iccid_text(const uint8_t *iccid, char *out);

#endif
