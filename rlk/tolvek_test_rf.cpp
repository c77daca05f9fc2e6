#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "tolvek_extend_cmn.h"
#include "tolvek_extend_nvefs.h"
#include "tolvek_group_entry.h"
#include "tolvek_read_dump.h"
#include "tolvek_test_groups.h"

/* Option 3: GPIO and RF transmit-antenna tests.  "set" sends a common
 * request; the modem keeps each test's state in an EFS file, which "get"
 * reads and "close" deletes (subscription 0). */

enum rf_subcmd {
    RF_SUBCMD_GPIO_SET = 0,
    RF_SUBCMD_GPIO_GET = 1,
    RF_SUBCMD_GPIO_CLOSE = 2,
    RF_SUBCMD_TX_SET = 3,
    RF_SUBCMD_TX_GET = 4,
    RF_SUBCMD_TX_CLOSE = 5,
};

/* Words of get and close: program, option, sub-command. */
static const int k_state_cmd_words = 3;
/* Words of the transmit set, and the number of inputs its note names. */
static const int k_tx_set_words = 6;
static const int k_tx_set_note_inputs = 5;
/* argv index of the first GPIO value, and of v_ant, v_sys, v_band_list. */
static const int k_arg_first_value = 3;
static const int k_arg_ant = 3;
static const int k_arg_sys = 4;
static const int k_arg_band_list = 5;
/* State files are read at subscription 0, passing the terminating zero in
 * the path length. */
static const uint32_t k_state_sub = 0;
static const uint32_t k_gpio_path_len = sizeof(TOLVEK_GPIO_STATE_FILE);
static const uint32_t k_tx_path_len = sizeof(TOLVEK_RF_TX_STATE_FILE);
static_assert(sizeof(TOLVEK_GPIO_STATE_FILE) == 47 && sizeof(TOLVEK_RF_TX_STATE_FILE) == 43,
              "state file path lengths as the modem expects them");

static const char k_note_cmd_error[] = "\nnote: Cmd error, should be: rlk %d %d , Pls refer to the following cmd:\n";

/* Sends a 512-byte common payload; a failure prints its line. */
static int send_common_payload(const void *payload)
{
    uint8_t rsp[TOLVEK_COMMON_RSP_LEN];
    uint32_t rsp_len = sizeof(rsp);
    int result = tolvek_extend_qmi_send_sync(REQUEST_ID_COMMON, static_cast<const uint8_t *>(payload),
                                             TOLVEK_EXTEND_DATA_MAX, rsp, &rsp_len);
    if (result != 0) {
        puts("tolvek_extend_qmi_send_sync fail, REQUEST_ID_COMMON");
    }
    return result;
}

static bool state_cmd_words_ok(int argc, int subcmd)
{
    if (argc != k_state_cmd_words) {
        printf(k_note_cmd_error, TOLVEK_OPTION_RF, subcmd);
        return false;
    }
    return true;
}

static int read_state_file(const char *path, uint32_t path_len)
{
    uint8_t data[TOLVEK_READ_SHOW_MAX] = {0};
    uint32_t size = sizeof(data);
    int result = tolvek_efs_read(k_state_sub, path, path_len, data, &size);
    if (result != 0) {
        return tolvek_report_efs_failure(result);
    }
    tolvek_print_read_data(data, size);
    return 0;
}

static int delete_state_file(const char *path, uint32_t path_len)
{
    int result = tolvek_efs_delete(k_state_sub, path, path_len);
    if (result != 0) {
        return tolvek_report_efs_failure(result);
    }
    return 0;
}

static int tolvek_gpio_test_set(int argc, char **argv)
{
    puts(__func__);
    tolvek_gpio_set_req req;
    memset(&req, 0, sizeof(req));
    req.cmd_code = TOLVEK_COMMON_CMD_GPIO_SET;
    int count = argc - k_arg_first_value;
    req.count = uint32_t(count);
    for (int i = 0; i < count && i < TOLVEK_GPIO_VALUE_MAX; ++i) {
        int value = atoi(argv[k_arg_first_value + i]);
        req.gpio_v[i] = value;
        printf("tolvek_gpio_test_set, gpio_v[%d]: %d\n", i, value);
    }
    return send_common_payload(&req);
}

static int tolvek_gpio_test_get(int argc, char **)
{
    puts(__func__);
    if (!state_cmd_words_ok(argc, RF_SUBCMD_GPIO_GET)) {
        return TOLVEK_ERR_ARG_COUNT;
    }
    return read_state_file(TOLVEK_GPIO_STATE_FILE, k_gpio_path_len);
}

static int tolvek_gpio_test_closed(int argc, char **)
{
    puts(__func__);
    if (!state_cmd_words_ok(argc, RF_SUBCMD_GPIO_CLOSE)) {
        return TOLVEK_ERR_ARG_COUNT;
    }
    return delete_state_file(TOLVEK_GPIO_STATE_FILE, k_gpio_path_len);
}

static int tolvek_rf_tx_test_set(int argc, char **argv)
{
    printf("tolvek_rf_tx_test_set, argc(%d)\n", argc);
    if (argc != k_tx_set_words) {
        printf("\nnote: need %d inputs, Pls refer to the following cmd:\n", k_tx_set_note_inputs);
        return TOLVEK_ERR_ARG_COUNT;
    }
    tolvek_rf_tx_set_req req;
    memset(&req, 0, sizeof(req));
    req.cmd_code = TOLVEK_COMMON_CMD_RF_TX_SET;
    int v_ant = atoi(argv[k_arg_ant]);
    int v_sys = atoi(argv[k_arg_sys]);
    unsigned long v_band_list = strtoul(argv[k_arg_band_list], NULL, 0);
    req.v_ant = uint32_t(v_ant);
    req.v_sys = uint32_t(v_sys);
    req.v_band_list = v_band_list;
    printf(" v_ant(%d)\n", v_ant);
    printf(" v_sys(%d)\n", v_sys);
    printf(" v_band_list(%lu)\n", v_band_list);
    return send_common_payload(&req);
}

static int tolvek_rf_tx_test_get(int argc, char **)
{
    puts(__func__);
    if (!state_cmd_words_ok(argc, RF_SUBCMD_TX_GET)) {
        return TOLVEK_ERR_ARG_COUNT;
    }
    return read_state_file(TOLVEK_RF_TX_STATE_FILE, k_tx_path_len);
}

static int tolvek_rf_tx_test_closed(int argc, char **)
{
    puts(__func__);
    if (!state_cmd_words_ok(argc, RF_SUBCMD_TX_CLOSE)) {
        return TOLVEK_ERR_ARG_COUNT;
    }
    return delete_state_file(TOLVEK_RF_TX_STATE_FILE, k_tx_path_len);
}

/* Sub-command handlers, by sub-command number. */
static const tolvek_subcmd_entry k_rf_subcmds[] = {
    {RF_SUBCMD_GPIO_SET, tolvek_gpio_test_set}, {RF_SUBCMD_GPIO_GET, tolvek_gpio_test_get},
    {RF_SUBCMD_GPIO_CLOSE, tolvek_gpio_test_closed}, {RF_SUBCMD_TX_SET, tolvek_rf_tx_test_set},
    {RF_SUBCMD_TX_GET, tolvek_rf_tx_test_get}, {RF_SUBCMD_TX_CLOSE, tolvek_rf_tx_test_closed},
};

int tolvek_test_rf_do(int argc, char **argv)
{
    return tolvek_group_entry_run(TOLVEK_OPTION_RF, argc, argv, k_rf_subcmds,
                                  sizeof(k_rf_subcmds) / sizeof(k_rf_subcmds[0]));
}
