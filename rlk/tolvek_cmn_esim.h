/* The eSIM switch of the common group: `rlk 5 10 esim_on debug_on`. */
#ifndef TOLVEK_CMN_ESIM_H
#define TOLVEK_CMN_ESIM_H

#include <stdint.h>

/* Wrong argument count (the common group's code). */
#define TOLVEK_ESIM_ERR_ARG_COUNT 0xFFFF00A
/* Results naming the step that failed. */
#define TOLVEK_ESIM_ERR_ARG_VALUE (-200)
#define TOLVEK_ESIM_ERR_READ_EID (-201)
#define TOLVEK_ESIM_ERR_CHECK_EID (-202)
#define TOLVEK_ESIM_ERR_STORE_EID (-203)
#define TOLVEK_ESIM_ERR_POWER_DOWN (-204)
#define TOLVEK_ESIM_ERR_POWER_UP (-205)
#define TOLVEK_ESIM_ERR_OPEN_CHANNEL (-206)
#define TOLVEK_ESIM_ERR_LIST_PROFILES (-207)
#define TOLVEK_ESIM_ERR_DISABLE_PROFILE (-208)
#define TOLVEK_ESIM_ERR_DELETE_PROFILE (-209)
#define TOLVEK_ESIM_ERR_CLOSE_CHANNEL (-210)
#define TOLVEK_ESIM_ERR_PENDING_DELETE (-211)

/* Where the EID of the eUICC is kept for the modem. */
#define TOLVEK_ESIM_EID_EFS_PATH "/nv/item_files/modem/uim/uimdrv/esim_eid"
/* The ICCID of a profile being removed: written before it is disabled,
 * removed once it is deleted, so that a run cut off in between is finished
 * by the next one. */
#define TOLVEK_ESIM_PENDING_EFS_PATH "/nv/item_files/modem/tolvek/esim_delete_pending"

/* esim_on 1 switches slot 2 to the eSIM, 2 back to the physical SIM;
 * debug_on 0 silences the console.  Gets the whole argument vector; 0 is
 * success, anything else an error code. */
int tolvek_cmn_esim_test(int argc, char **argv);

/* True when the 16 bytes hold 32 decimal digits (high nibble first) whose
 * value modulo 97 is 1. */
bool tolvek_esim_eid_valid(const uint8_t *eid);

#endif
