#include "tolvek_modem_stats_debug_info.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "tolvek_extend_cmn.h"
#include "tolvek_log.h"

namespace {

constexpr uint32_t k_cmd_stats_debug = 20;
/* The counters follow the response's command word and result word. */
constexpr size_t k_rsp_data_offset = 8;
constexpr int k_min_args = 4;

/* One field of a block: its name as printed and its width in bytes. */
struct stats_field {
    const char *name;
    uint8_t width;
};

constexpr stats_field k_main_fields[] = {
    {"g_modem_stats_feature_enable_status", 1},
    {"g_pk_version_not_support_num", 8},
    {"g_modem_stats_cmd_ok_count", 8},
    {"g_modem_stats_cmd_fail_count", 8},
};

constexpr stats_field k_diag_fields[] = {
    {"init_state", 1},
    {"listener_event_num", 4},
    {"listener_event_state", 1},
    {"listener_event_call_num", 4},
    {"listener_event_parse_num", 4},
    {"listener_log_num", 4},
    {"listener_log_state", 1},
    {"listener_log_call_num", 8},
    {"listener_log_parse_num", 8},
    {"poll_update_call_num", 4},
    {"poll_update_parse_num", 4},
};

constexpr stats_field k_cm_fields[] = {
    {"init_state", 1},
    {"listener_state", 1},
    {"listener_call_event_call_num", 4},
    {"listener_call_event_parse_num", 4},
    {"listener_subs_event_call_num", 4},
    {"listener_subs_event_parse_num", 4},
    {"listener_ss_event_call_num", 4},
    {"listener_ss_event_parse_num", 4},
    {"listener_stats_event_call_num", 4},
    {"listener_stats_event_parse_num", 4},
    {"poll_update_rf_call_num", 4},
    {"poll_update_rf_parse_num", 4},
    {"poll_update_lte_call_num", 4},
    {"poll_update_lte_parse_num", 4},
    {"poll_update_nr5g_call_num", 4},
    {"poll_update_nr5g_parse_num", 4},
};

constexpr stats_field k_uim_fields[] = {
    {"init_state", 1},
    {"listener_state", 1},
    {"listener_event_call_num", 4},
    {"listener_event_parse_num", 4},
};

/* The status check reads the version and the main block under these names. */
constexpr stats_field k_check_fields[] = {
    {"version", 1},
    {"modem_stats_feature_enable_status", 1},
    {"version_not_support_num", 8},
    {"modem_stats_cmd_ok_count", 8},
    {"modem_stats_cmd_fail_count", 8},
};

template <size_t N>
constexpr uint32_t block_size(const stats_field (&fields)[N])
{
    uint32_t n = 0;
    for (const stats_field &f : fields) n += f.width;
    return n;
}
static_assert(block_size(k_main_fields) == 25 && block_size(k_diag_fields) == 43 &&
                  block_size(k_cm_fields) == 58 && block_size(k_uim_fields) == 10,
              "block sizes of the debug counters");
static_assert(k_rsp_data_offset + 1 + 25 + 43 + 58 + 10 <= TOLVEK_COMMON_RSP_LEN, "every block fits the answer");

uint64_t read_le(const uint8_t *p, uint8_t width)
{
    uint64_t v = 0;
    for (uint8_t i = 0; i < width; i++) v |= uint64_t(p[i]) << (8 * i);
    return v;
}

void print_field(const stats_field &f, const uint8_t *p)
{
    printf("UNPK[size:%d], %s = %lu\n", f.width, f.name, (unsigned long)read_le(p, f.width));
}

template <size_t N>
uint32_t print_block(const stats_field (&fields)[N], const uint8_t *p)
{
    if (!p) {
        printf("ptr is null\n");
        return 0;
    }
    uint32_t pos = 0;
    for (const stats_field &f : fields) {
        print_field(f, p + pos);
        pos += f.width;
    }
    return pos;
}

/* A block the mask may select, in the fixed order of the answer. */
struct stats_block {
    uint32_t bit;
    const char *label;
    uint32_t (*print)(const uint8_t *p);
};

const stats_block k_blocks[] = {
    {TOLVEK_STATS_DEBUG_MAIN, "main", tolvek_modem_stats_info_unpk},
    {TOLVEK_STATS_DEBUG_DIAG, "diag", tolvek_modem_stats_diag_info_unpk},
    {TOLVEK_STATS_DEBUG_CM, "cm", tolvek_modem_stats_cm_info_unpk},
    {TOLVEK_STATS_DEBUG_UIM, "uim", tolvek_modem_stats_uim_info_unpk},
};

/* Sends the debug-info request (command word 20 in a 512-byte area) and
 * leaves the answer in `rsp`. */
int tolvek_common_qmi_req(tolvek_common_rsp *rsp)
{
    TOLVEK_FUNC_ENTRY();
    uint8_t req[TOLVEK_EXTEND_DATA_MAX];
    memset(req, 0, sizeof(req));
    memcpy(req, &k_cmd_stats_debug, sizeof(k_cmd_stats_debug));
    uint32_t rsp_len = TOLVEK_COMMON_RSP_LEN;
    int result = tolvek_extend_qmi_send_sync(REQUEST_ID_COMMON, req, TOLVEK_EXTEND_DATA_MAX, rsp, &rsp_len);
    TOLVEK_FUNC_EXIT();
    return result;
}

}  // namespace

uint32_t tolvek_modem_stats_info_unpk(const uint8_t *p) { return print_block(k_main_fields, p); }
uint32_t tolvek_modem_stats_diag_info_unpk(const uint8_t *p) { return print_block(k_diag_fields, p); }
uint32_t tolvek_modem_stats_cm_info_unpk(const uint8_t *p) { return print_block(k_cm_fields, p); }
uint32_t tolvek_modem_stats_uim_info_unpk(const uint8_t *p) { return print_block(k_uim_fields, p); }

void tolvek_modem_stats_support_status_check(const uint8_t *p)
{
    if (!p) {
        printf("tolvek_modem_stats_support_status_check, ptr is null\n");
        return;
    }
    print_block(k_check_fields, p);
    uint64_t feature = read_le(p + 1, 1);
    uint64_t not_supported = read_le(p + 2, 8);
    printf("===========================================\n");
    if (not_supported != 0 || feature == 0) {
        printf("================= FAIL ====================\n");
    } else {
        printf("================ SUCCES ===================\n");
    }
}

void tolvek_test_modem_stats_get_debug_info_do(uint32_t mask)
{
    printf("Get the debug info of modem_stats, mask = 0x%x\n", mask);
    tolvek_common_rsp rsp;
    memset(&rsp, 0, sizeof(rsp));
    int result = tolvek_common_qmi_req(&rsp);
    if (result != 0) {
        printf("tolvek_common_qmi_req fail, REQUEST_ID_COMMON, result = %d, rsp.result = %d\n", result, rsp.result);
        return;
    }
    if (rsp.result != 0) {
        printf("qmi response fail, result = %d, rsp.result = %d\n", rsp.result, rsp.result);
        return;
    }
    const uint8_t *data = reinterpret_cast<const uint8_t *>(&rsp) + k_rsp_data_offset;
    if (mask == 0) {
        tolvek_modem_stats_support_status_check(data);
        return;
    }
    print_field(k_check_fields[0], data);
    uint32_t cursor = 1;
    for (const stats_block &b : k_blocks) {
        if (!(mask & b.bit)) continue;
        printf("-------- stats %s info start --------\n", b.label);
        cursor += b.print(data + cursor);
        printf("-------- stats %s info end, cnt(%d) --------\n", b.label, int(cursor % 256));
    }
}

int tolvek_test_modem_stats_get_debug_info(int argc, char **argv)
{
    if (argc < k_min_args) {
        puts("\nnote: Too few parameters, Pls refer to the following cmd:");
        return 0;
    }
    tolvek_test_modem_stats_get_debug_info_do(uint32_t(atoi(argv[3])));
    return 1;
}
