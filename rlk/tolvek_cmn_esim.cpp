/* The eSIM switch.  Slot 2 holds a physical SIM and an eUICC; the modem
 * selects the eUICC when the EID file in EFS names it and it has an
 * enabled profile, and selects it again at each power-up of the slot.
 *
 * Switching to the eSIM: read the EID, check it, store it in EFS (written
 * and read back), power slot 2 down and up.  Switching back: on a logical
 * channel to the ISD-R, list the profiles, disable and delete the enabled
 * one, close the channel, power slot 2 down and up.
 *
 * Every step is logged; a failure names its step and code.  Each step can
 * be repeated, so a second run finishes what a failed one left: the EID
 * write is one 16-byte chunk checked by reading it back; the ICCID of the
 * profile being removed is noted in EFS before it is disabled and the note
 * removed after it is deleted, so a profile left disabled by a cut-off run
 * is deleted by the next one, and no other profile is touched; a slot left
 * powered down is powered up before anything else. */
#include "tolvek_cmn_esim.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "tolvek_cmn_esim_isdr.h"
#include "tolvek_extend_nvefs.h"
#include "tolvek_log.h"
#include "tolvek_uim_client.h"

namespace {

constexpr int k_esim_argc = 5; /* rlk 5 10 esim_on debug_on */
constexpr int k_esim_on_euicc = 1;
constexpr int k_esim_on_psim = 2;
constexpr int k_debug_off = 0;
constexpr int k_debug_on = 1;
constexpr uint8_t k_sim2_slot = 2;
constexpr uint32_t k_efs_sub = 0;
constexpr int k_eid_digits = 2 * TOLVEK_UIM_EID_LEN;
constexpr int k_eid_modulus = 97;
constexpr int k_eid_remainder = 1;
constexpr uint8_t k_max_decimal_digit = 9;
constexpr char k_eid_path[] = TOLVEK_ESIM_EID_EFS_PATH;
constexpr uint32_t k_eid_path_len = sizeof(k_eid_path) - 1;
constexpr char k_pending_path[] = TOLVEK_ESIM_PENDING_EFS_PATH;
constexpr uint32_t k_pending_path_len = sizeof(k_pending_path) - 1;
/* The modem's QMI error for a request on a powered-down slot. */
constexpr int k_qmi_err_incompatible_state = 0x5A;
/* What the modem's EFS answers for a file that does not exist. */
constexpr int k_efs_no_such_file = -2;

const char *const k_usage_note = "\nnote: esim_on should be 1 or 2 and debug_on 0 or 1, Pls refer to the following cmd:";

/* Logs the failure of a step and returns that step's result. */
int step_failed(const char *step, int code, int result)
{
    TOLVEK_LOGD("esim step \"%s\" failed, code %d", step, code);
    return result;
}

void eid_text(const uint8_t *eid, char *out)
{
    static const char digits[] = "0123456789ABCDEF";
    for (int i = 0; i < TOLVEK_UIM_EID_LEN; i++) {
        out[2 * i] = digits[eid[i] >> 4];
        out[2 * i + 1] = digits[eid[i] & 0x0F];
    }
    out[k_eid_digits] = '\0';
}

/* Reads slot 2's EID into `eid`; *answered false when the modem gave none
 * (as it does while the slot is powered down). */
int request_sim2_eid(uint8_t *eid, bool *answered)
{
    static const uint8_t none[TOLVEK_UIM_EID_LEN] = {0};
    memset(eid, 0, TOLVEK_UIM_EID_LEN);
    int rc = tolvek_uim_request_eid(&k_sim2_slot, eid);
    *answered = rc == 0 && memcmp(eid, none, TOLVEK_UIM_EID_LEN) != 0;
    return rc;
}

int power_up_sim2()
{
    tolvek_uim_power_params up = {1, k_sim2_slot, 1};
    return tolvek_uim_request_uicc_power_ex(&up);
}

/* Reads the EID; a slot left powered down by an earlier run is powered up
 * first. */
int read_eid(uint8_t *eid)
{
    TOLVEK_LOGD("esim step: read EID of slot %d", int(k_sim2_slot));
    bool answered = false;
    int rc = request_sim2_eid(eid, &answered);
    if (rc == 0 && !answered) {
        TOLVEK_LOGD("the modem gave no EID for slot %d, power it up and read again", int(k_sim2_slot));
        rc = power_up_sim2();
        if (rc == 0) rc = request_sim2_eid(eid, &answered);
    }
    if (rc != 0) return step_failed("read EID", rc, TOLVEK_ESIM_ERR_READ_EID);
    if (!answered) {
        TOLVEK_LOGD("the modem gave no EID for slot %d", int(k_sim2_slot));
        return step_failed("read EID", 0, TOLVEK_ESIM_ERR_READ_EID);
    }
    return 0;
}

/* Writes the EID unless EFS holds it already, then reads it back; a file
 * that does not read back as written is removed, so no half-written EID
 * stays behind. */
int store_eid(const uint8_t *eid)
{
    TOLVEK_LOGD("esim step: store EID in %s", k_eid_path);
    uint8_t stored[TOLVEK_UIM_EID_LEN + 1];
    uint32_t stored_len = sizeof(stored);
    if (tolvek_efs_read(k_efs_sub, k_eid_path, k_eid_path_len, stored, &stored_len) == 0 &&
        stored_len == TOLVEK_UIM_EID_LEN && memcmp(stored, eid, TOLVEK_UIM_EID_LEN) == 0) {
        TOLVEK_LOGD("EFS already holds this EID");
        return 0;
    }
    uint8_t buf[TOLVEK_UIM_EID_LEN];
    memcpy(buf, eid, sizeof(buf));
    int rc = tolvek_efs_write(k_efs_sub, k_eid_path, k_eid_path_len, buf, sizeof(buf));
    if (rc != 0) return step_failed("store EID", rc, TOLVEK_ESIM_ERR_STORE_EID);
    stored_len = sizeof(stored);
    rc = tolvek_efs_read(k_efs_sub, k_eid_path, k_eid_path_len, stored, &stored_len);
    if (rc == 0 && (stored_len != TOLVEK_UIM_EID_LEN || memcmp(stored, eid, TOLVEK_UIM_EID_LEN) != 0)) {
        TOLVEK_LOGD("EFS read back %d bytes that differ from the EID, removing the file", int(stored_len));
        tolvek_efs_delete(k_efs_sub, k_eid_path, k_eid_path_len);
        rc = TOLVEK_ESIM_ERR_STORE_EID;
    }
    return rc != 0 ? step_failed("store EID", rc, TOLVEK_ESIM_ERR_STORE_EID) : 0;
}

/* Powers slot 2 down and up so that the modem selects its card again. */
int power_cycle_sim2()
{
    TOLVEK_LOGD("esim step: power down SIM%d", int(k_sim2_slot));
    tolvek_uim_power_params down = {0, k_sim2_slot, 0};
    int rc = tolvek_uim_request_uicc_power_ex(&down);
    if (rc != 0) return step_failed("power down SIM2", rc, TOLVEK_ESIM_ERR_POWER_DOWN);
    TOLVEK_LOGD("esim step: power up SIM%d", int(k_sim2_slot));
    rc = power_up_sim2();
    if (rc != 0) return step_failed("power up SIM2", rc, TOLVEK_ESIM_ERR_POWER_UP);
    /* The power requests report only that the modem answered: the slot
     * answering again shows that it is up. */
    TOLVEK_LOGD("esim step: check SIM%d answers", int(k_sim2_slot));
    uint8_t eid[TOLVEK_UIM_EID_LEN];
    bool answered = false;
    rc = request_sim2_eid(eid, &answered);
    if (rc == 0 && !answered) TOLVEK_LOGD("SIM%d does not answer after power up", int(k_sim2_slot));
    if (rc != 0 || !answered) return step_failed("power up SIM2", rc, TOLVEK_ESIM_ERR_POWER_UP);
    return 0;
}

int switch_to_euicc()
{
    uint8_t eid[TOLVEK_UIM_EID_LEN];
    int rc = read_eid(eid);
    if (rc != 0) return rc;
    char text[k_eid_digits + 1];
    eid_text(eid, text);
    TOLVEK_LOGD("esim step: check EID %s", text);
    if (!tolvek_esim_eid_valid(eid)) {
        TOLVEK_LOGD("EID %s is not 32 decimal digits whose value modulo 97 is 1; nothing changed", text);
        return step_failed("check EID", TOLVEK_ESIM_ERR_CHECK_EID, TOLVEK_ESIM_ERR_CHECK_EID);
    }
    rc = store_eid(eid);
    return rc != 0 ? rc : power_cycle_sim2();
}

/* The ICCID of a removal left unfinished; `*found` false when none. */
int read_pending(uint8_t *iccid, bool *found)
{
    uint8_t buf[TOLVEK_ISDR_ICCID_LEN + 1];
    uint32_t len = sizeof(buf);
    int rc = tolvek_efs_read(k_efs_sub, k_pending_path, k_pending_path_len, buf, &len);
    *found = rc == 0 && len == TOLVEK_ISDR_ICCID_LEN;
    if (*found) memcpy(iccid, buf, TOLVEK_ISDR_ICCID_LEN);
    return rc == k_efs_no_such_file ? 0 : rc;
}

void clear_pending()
{
    if (tolvek_efs_delete(k_efs_sub, k_pending_path, k_pending_path_len) != 0) {
        TOLVEK_LOGD("the note of the removal stays; the next run clears it");
    }
}

const tolvek_isdr_profile *find_profile(const tolvek_isdr_profile_list &list, const uint8_t *iccid)
{
    for (size_t i = 0; i < list.count; i++) {
        if (memcmp(list.profiles[i].iccid, iccid, TOLVEK_ISDR_ICCID_LEN) == 0) return &list.profiles[i];
    }
    return nullptr;
}

/* The profile to remove: the enabled one, else one a cut-off run left
 * disabled.  Null when there is nothing to remove. */
int choose_target(const tolvek_isdr_profile_list &list, const tolvek_isdr_profile **target)
{
    *target = nullptr;
    for (size_t i = 0; i < list.count; i++) {
        char iccid[2 * TOLVEK_ISDR_ICCID_LEN + 1];
        tolvek_isdr_iccid_text(list.profiles[i].iccid, iccid);
        TOLVEK_LOGD("profile %s state %d", iccid, int(list.profiles[i].state));
        if (list.profiles[i].state == 1 && *target == nullptr) *target = &list.profiles[i];
    }
    if (*target != nullptr) return 0;
    uint8_t pending[TOLVEK_ISDR_ICCID_LEN];
    bool found = false;
    int rc = read_pending(pending, &found);
    if (rc != 0) return step_failed("read pending removal", rc, TOLVEK_ESIM_ERR_PENDING_DELETE);
    if (found) {
        *target = find_profile(list, pending);
        if (*target == nullptr) clear_pending(); /* deleted before the note was removed */
    }
    if (*target == nullptr) TOLVEK_LOGD("no enabled profile, nothing to delete");
    return 0;
}

/* Disables and deletes the enabled profile, if the card has one. */
int remove_enabled_profile(uint8_t channel)
{
    TOLVEK_LOGD("esim step: list profiles");
    tolvek_isdr_profile_list list;
    int rc = tolvek_isdr_list_profiles(k_sim2_slot, channel, &list);
    if (rc != 0) return step_failed("list profiles", rc, TOLVEK_ESIM_ERR_LIST_PROFILES);
    const tolvek_isdr_profile *target = nullptr;
    rc = choose_target(list, &target);
    if (rc != 0 || target == nullptr) return rc;
    char iccid[2 * TOLVEK_ISDR_ICCID_LEN + 1];
    tolvek_isdr_iccid_text(target->iccid, iccid);
    if (target->state == 1) {
        TOLVEK_LOGD("esim step: note the removal of profile %s", iccid);
        uint8_t note[TOLVEK_ISDR_ICCID_LEN];
        memcpy(note, target->iccid, sizeof(note));
        rc = tolvek_efs_write(k_efs_sub, k_pending_path, k_pending_path_len, note, sizeof(note));
        if (rc != 0) return step_failed("note pending removal", rc, TOLVEK_ESIM_ERR_PENDING_DELETE);
        TOLVEK_LOGD("esim step: disable profile %s", iccid);
        rc = tolvek_isdr_disable_profile(k_sim2_slot, channel, target->iccid);
        if (rc != 0) return step_failed("disable profile", rc, TOLVEK_ESIM_ERR_DISABLE_PROFILE);
    } else {
        TOLVEK_LOGD("profile %s was left disabled by an earlier run", iccid);
    }
    TOLVEK_LOGD("esim step: delete profile %s", iccid);
    rc = tolvek_isdr_delete_profile(k_sim2_slot, channel, target->iccid);
    if (rc != 0) return step_failed("delete profile", rc, TOLVEK_ESIM_ERR_DELETE_PROFILE);
    clear_pending();
    return 0;
}

int switch_to_psim()
{
    TOLVEK_LOGD("esim step: open logical channel to the ISD-R");
    uint8_t channel = 0;
    int rc = tolvek_isdr_open(k_sim2_slot, &channel);
    if (rc == k_qmi_err_incompatible_state) {
        TOLVEK_LOGD("slot %d refuses a channel, power it up and open again", int(k_sim2_slot));
        rc = power_up_sim2();
        if (rc == 0) rc = tolvek_isdr_open(k_sim2_slot, &channel);
    }
    if (rc != 0) return step_failed("open channel", rc, TOLVEK_ESIM_ERR_OPEN_CHANNEL);
    int result = remove_enabled_profile(channel);
    TOLVEK_LOGD("esim step: close logical channel %d", int(channel));
    rc = tolvek_isdr_close(k_sim2_slot, channel);
    if (rc != 0) {
        step_failed("close channel", rc, TOLVEK_ESIM_ERR_CLOSE_CHANNEL);
        if (result == 0) result = TOLVEK_ESIM_ERR_CLOSE_CHANNEL;
    }
    return result != 0 ? result : power_cycle_sim2();
}

}  // namespace

bool tolvek_esim_eid_valid(const uint8_t *eid)
{
    int remainder = 0;
    for (int i = 0; i < k_eid_digits; i++) {
        uint8_t digit = (i % 2 == 0) ? uint8_t(eid[i / 2] >> 4) : uint8_t(eid[i / 2] & 0x0F);
        if (digit > k_max_decimal_digit) return false;
        remainder = (remainder * 10 + digit) % k_eid_modulus;
    }
    return remainder == k_eid_remainder;
}

int tolvek_cmn_esim_test(int argc, char **argv)
{
    if (argc != k_esim_argc) {
        if (!g_tolvek_console_quiet) printf("\nnote: need %d inputs, Pls refer to the following cmd:\n", k_esim_argc);
        return TOLVEK_ESIM_ERR_ARG_COUNT;
    }
    int esim_on = atoi(argv[3]);
    int debug_on = atoi(argv[4]);
    if ((esim_on != k_esim_on_euicc && esim_on != k_esim_on_psim) ||
        (debug_on != k_debug_off && debug_on != k_debug_on)) {
        if (!g_tolvek_console_quiet) puts(k_usage_note);
        return TOLVEK_ESIM_ERR_ARG_VALUE;
    }
    if (debug_on == k_debug_off) g_tolvek_console_quiet = true;

    TOLVEK_FUNC_ENTRY();
    TOLVEK_LOGD("esim_on %d, debug_on %d", esim_on, debug_on);
    int rc = esim_on == k_esim_on_euicc ? switch_to_euicc() : switch_to_psim();
    if (rc == 0) TOLVEK_LOGD("esim switch to %s done", esim_on == k_esim_on_euicc ? "eSIM" : "PSIM2");
    TOLVEK_FUNC_EXIT();
    /* The outcome, for scripts, even on a quiet console. */
    printf("esim switch to %s: %s (%d)\n", esim_on == k_esim_on_euicc ? "eSIM" : "PSIM2", rc == 0 ? "ok" : "failed",
           rc);
    return rc;
}
