/* Option 9: one statistics item read over the vendor statistics QMI
 * service.  Each run registers a client with the modem API, starts
 * collection, asks for one item, prints it and releases the client. */
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "modem_api.h"
#include "orvex_mem.h"
#include "tolvek_help.h"
#include "tolvek_qmi_modem_stats.h"
#include "tolvek_qmi_modem_stats_reader.h"
#include "tolvek_test_groups.h"

int32_t g_orvex_client_id = MODEM_API_NO_CLIENT;

namespace {

/* Words of a complete command: rlk 9 <opt> <sub>. */
constexpr int k_min_argc = 4;
/* Items asked for per request. */
constexpr uint32_t k_items_per_request = 1;
/* Failure result of the group's own checks. */
constexpr int k_fail = -1;
/* The antenna information is kept for subscription 0 only. */
constexpr int k_ant_info_sub = 0;
constexpr uint16_t k_ant_info_id = 100;

const char k_note_first_param[] = "\nnote: the first parameters should be %d, Pls refer to the following cmd:\n";
const char k_note_too_few[] = "\nnote: Too few parameters, Pls refer to the following cmd:";

struct opt_row {
    int opt;
    uint16_t data_id;
    void (*reader)(void);
};

const opt_row k_opts[] = {
    {0, 82, tolvek_qmi_stats_read_4g_rssi},     {1, 103, tolvek_qmi_stats_read_4g_rssi},
    {2, 104, tolvek_qmi_stats_read_4g_rssi},    {3, 105, tolvek_qmi_stats_read_4g_rssi},
    {4, 106, tolvek_qmi_stats_read_4g_rssi},    {5, 107, tolvek_qmi_stats_read_4g_rssi},
    {6, 108, tolvek_qmi_stats_read_4g_rssi},    {7, 94, tolvek_qmi_stats_read_5g_rssi},
    {8, 112, tolvek_qmi_stats_read_5g_snr},     {9, 113, tolvek_qmi_stats_read_5g_asdiv},
    {10, 135, tolvek_qmi_stats_read_5g_rsrp},   {11, 6, tolvek_qmi_stats_read_5g_rsrp},
    {12, 7, tolvek_qmi_stats_read_5g_rsrp},     {20, 110, tolvek_qmi_stats_read_wcdma_rssi},
    {21, 111, tolvek_qmi_stats_read_gsm_rssi},  {30, 100, tolvek_qmi_stats_read_ant_info},
};

/* The checks of a received list, in order; false after printing the first
 * mismatch. */
bool item_ok(const orvex_vs_get_stats_resp_msg_v01 &resp, int sub, int id)
{
    uint32_t count = resp.data_list_len > ORVEX_VS_GET_STATS_LIST_MAX ? ORVEX_VS_GET_STATS_LIST_MAX
                                                                       : resp.data_list_len;
    const orvex_vs_stats_data_type_v01 &item = resp.data_list[0];
    int number = int(k_items_per_request);
    if (item.data_id != id) {
        printf("Fail to get data, ret_id(%d) is invalid, number = %d, sub = %d, ret id_num = %d, id = %d\n",
               int(item.data_id), number, sub, int(count), id);
        return false;
    }
    if (item.sub != sub) {
        printf("Fail to get data, ret_sub(%d) is invalid, number = %d, sub = %d, ret id_num = %d, id = %d\n",
               int(item.sub), number, sub, int(count), id);
        return false;
    }
    if (item.data_len == 0 || item.data_len > ORVEX_VS_DATA_MAX) {
        printf("Fail to get data, data_len(%d) is invalid, should be in (0, %d], number = %d, sub = %d, "
               "ret id_num = %d, id = %d\n",
               int(item.data_len), ORVEX_VS_DATA_MAX, number, sub, int(count), id);
        return false;
    }
    printf("Success to get data, number = %d, sub = %d, ret id_num = %d, id = %d, data_len = %d\n", number, sub,
           int(count), id, int(item.data_len));
    return true;
}

}  // namespace

void tolvek_test_qmi_modem_stats_callback_event_cb(uint32_t, modem_api_qmi_client_e_type, void *) {}

void tolvek_test_qmi_modem_stats_operational_status_cb(modem_api_qmi_client_e_type, modem_api_operational_status_type,
                                                       void *)
{
}

void tolvek_qmi_modem_stats_api_init(void)
{
    modem_api_init();
    modem_api_init_client(MODEM_API_QMI_CLIENT_VS, tolvek_test_qmi_modem_stats_callback_event_cb,
                          tolvek_test_qmi_modem_stats_operational_status_cb, nullptr, &g_orvex_client_id);
}

void tolvek_qmi_modem_stats_api_deinit(void)
{
    if (g_orvex_client_id != MODEM_API_NO_CLIENT) {
        modem_api_free_client(g_orvex_client_id);
        g_orvex_client_id = MODEM_API_NO_CLIENT;
    }
    modem_api_release();
}

int tolvek_test_qmi_modem_stats_start(void)
{
    int result = modem_api_set_orvex_feature_status(g_orvex_client_id, ORVEX_VS_FEATURE_START);
    if (result != MODEM_API_SUCCESS) printf("modem_api_set_orvex_feature_status, start fail, result = %d\n", result);
    return result;
}

int tolvek_test_qmi_modem_stats_get(int sub, int id)
{
    if (g_orvex_client_id == MODEM_API_NO_CLIENT) {
        /* The text carries no newline of its own. */
        printf("orvex qmi is not yet inited");
        return k_fail;
    }
    if (sub < 0 || sub >= ORVEX_VS_SUB_MAX) {
        printf("modem_api_get_stats_parameter, sub(%d) is invalid\n", sub);
        return k_fail;
    }
    auto *resp = static_cast<orvex_vs_get_stats_resp_msg_v01 *>(
        orvex_malloc_adv(ORVEX_VS_GET_STATS_RESP_BUF_LEN, "tolvek_test_qmi_modem_stats_get"));
    if (!resp) return k_fail;
    int ret = modem_api_get_stats_parameter(g_orvex_client_id, sub, k_items_per_request, uint16_t(id), resp);
    int result = k_fail;
    if (ret != MODEM_API_SUCCESS) {
        printf("Fail to get data fail, number = %d, ret = %d, sub = %d, id = %d\n", int(k_items_per_request), ret,
               sub, id);
    } else if (item_ok(*resp, sub, id)) {
        const orvex_vs_stats_data_type_v01 &item = resp->data_list[0];
        tolvek_qmi_stats_data_set(uint32_t(id), item.data, int32_t(item.data_len));
        result = 0;
    }
    orvex_free_adv(resp);
    return result;
}

int tolvek_test_qmi_modem_stats_hdl(int opt, int sub)
{
    for (const opt_row &row : k_opts) {
        if (row.opt != opt) continue;
        int item_sub = row.data_id == k_ant_info_id ? k_ant_info_sub : sub;
        int result = tolvek_test_qmi_modem_stats_get(item_sub, row.data_id);
        if (result == 0) row.reader();
        return result;
    }
    printf("tolvek_test_qmi_modem_stats_hdl: Unknown opt(%d), sub(%d)\n", opt, sub);
    return k_fail;
}

int tolvek_test_qmi_modem_stats_do(int argc, char **argv)
{
    if (argc < 2 || atoi(argv[1]) != TOLVEK_OPTION_QMI_MODEM_STATS) {
        printf(k_note_first_param, TOLVEK_OPTION_QMI_MODEM_STATS);
        show_help(TOLVEK_OPTION_QMI_MODEM_STATS);
        return k_fail;
    }
    if (argc < k_min_argc) {
        puts(k_note_too_few);
        show_help(TOLVEK_OPTION_QMI_MODEM_STATS);
        return k_fail;
    }
    int opt = atoi(argv[2]);
    int sub = atoi(argv[3]);
    tolvek_qmi_modem_stats_api_init();
    tolvek_test_qmi_modem_stats_start();
    printf("opt = %d, sub = %d, g_orvex_client_id = %d\n", opt, sub, g_orvex_client_id);
    int result = tolvek_test_qmi_modem_stats_hdl(opt, sub);
    tolvek_qmi_modem_stats_api_deinit();
    return result;
}
