/* Card-slot commands of the common group: status query, status get and
 * set, card type query and the hot-swap test, each a typed common request
 * of the extension service whose answer is dumped as it came. */
#include <stdlib.h>
#include <string.h>

#include "tolvek_card_payload.h"
#include "tolvek_extend_cmn.h"
#include "tolvek_qmi_test_cmn.h"

namespace {

/* Longest value sent as given; a longer (or missing) one goes with
 * length 0. */
constexpr uint32_t k_value_send_max = 491;
/* The dump covers type, length and value, and may not pass 500 bytes. */
constexpr uint32_t k_dump_head_len = 8;
constexpr uint64_t k_dump_max_len = 500;

/* Values of the card commands: 32-bit integers. */
constexpr int k_value_bytes = 4;
constexpr int k_status_get_values = 1;
constexpr int k_status_set_values = 3;
constexpr int k_hotswap_values = 4;
/* Words of the hot-swap test: at least the opt, exactly four values to
 * start a run. */
constexpr int k_hotswap_min_words = 4;
constexpr int k_hotswap_start_words = 7;
constexpr int k_arg_first_value = TOLVEK_CMN_HEAD_WORDS;

const char k_note_need_inputs[] = "\nnote: need %d inputs, Pls refer to the following cmd:\n";

/* Prints type, length and value of the answer, as bytes. */
void dump_answer(const tolvek_common_rsp &rsp)
{
    uint64_t dump_len = uint64_t(rsp.len) + k_dump_head_len;
    if (dump_len > k_dump_max_len) {
        /* The modem answered more than a common response can hold. */
        abort();
    }
    tolvek_cmn_console("\ndata len(%d)\ndata:", int(dump_len));
    const uint8_t *bytes = reinterpret_cast<const uint8_t *>(&rsp.type);
    for (uint64_t i = 0; i < dump_len; ++i) {
        tolvek_cmn_console(" %02X", bytes[i]);
    }
    tolvek_cmn_console("\n");
}

/* Sends `count` arguments from argv[3] on, each reduced to 0 or 1, as
 * 32-bit values of request `type`. */
int card_status_cmd(uint32_t type, int count, int argc, char **argv)
{
    if (argc != count + TOLVEK_CMN_HEAD_WORDS) {
        tolvek_cmn_console(k_note_need_inputs, count + TOLVEK_CMN_HEAD_WORDS);
        return TOLVEK_CMN_ERR_ARG_COUNT;
    }
    int32_t values[k_status_set_values] = {0};
    tolvek_cmn_console("param(cnt: %d):\n", count);
    for (int i = 0; i < count; ++i) {
        values[i] = atoi(argv[k_arg_first_value + i]) != 0 ? 1 : 0;
        tolvek_cmn_console(" %d", values[i]);
    }
    return tolvek_cmn_cmd_send(type, uint32_t(count * k_value_bytes), values);
}

/* The start form of the hot-swap test: four values taken as given. */
int card_status_cmd_ex(uint32_t type, int count, int argc, char **argv)
{
    if (argc != count + TOLVEK_CMN_HEAD_WORDS) {
        tolvek_cmn_console(k_note_need_inputs, count + TOLVEK_CMN_HEAD_WORDS);
        return TOLVEK_CMN_ERR_ARG_COUNT;
    }
    int32_t values[k_hotswap_values] = {0};
    tolvek_cmn_console("param(cnt: %d):\n", count);
    for (int i = 0; i < count; ++i) {
        values[i] = atoi(argv[k_arg_first_value + i]);
        tolvek_cmn_console(" %d", values[i]);
    }
    return tolvek_cmn_cmd_send(type, uint32_t(count * k_value_bytes), values);
}

}  // namespace

int tolvek_cmn_cmd_send(uint32_t t, uint32_t l, void *value)
{
    tolvek_cmn_console("tolvek_cmn_cmd_send, t: %d, l: %d\n", int(t), int(l));
    tolvek_common_req req;
    memset(&req, 0, sizeof(req));
    req.cmd_code = TOLVEK_COMMON_CMD_TYPED;
    req.type = t;
    if (value != NULL && l <= k_value_send_max) {
        req.len = l;
        memcpy(req.value, value, l);
    }
    tolvek_common_rsp rsp;
    memset(&rsp, 0, sizeof(rsp));
    uint32_t rsp_len = TOLVEK_COMMON_RSP_LEN;
    int result = tolvek_extend_qmi_send_sync(REQUEST_ID_COMMON, reinterpret_cast<const uint8_t *>(&req),
                                             TOLVEK_EXTEND_DATA_MAX, &rsp, &rsp_len);
    tolvek_cmn_console("result = %d, rsp.result = %d\n", result, int(rsp.result));
    if (result != 0) {
        tolvek_cmn_console_line("tolvek_extend_qmi_send_sync fail");
        return result;
    }
    if (rsp.result != 0) {
        /* The modem refused: reported here, not as an error of the group. */
        tolvek_cmn_console_line("rsp.result fail");
        return result;
    }
    dump_answer(rsp);
    return 0;
}

int tolvek_cmn_card_status_query(int argc, char **argv)
{
    tolvek_cmn_console_line("tolvek_cmn_card_status_query");
    return card_status_cmd(TOLVEK_CARD_TYPE_STATUS_QUERY, 0, argc, argv);
}

int tolvek_cmn_card_status_get(int argc, char **argv)
{
    TOLVEK_LOGD("tolvek_cmn_card_status_get");
    return card_status_cmd(TOLVEK_CARD_TYPE_STATUS_GET, k_status_get_values, argc, argv);
}

int tolvek_cmn_card_status_set(int argc, char **argv)
{
    TOLVEK_LOGD("tolvek_cmn_card_status_set");
    return card_status_cmd(TOLVEK_CARD_TYPE_STATUS_SET, k_status_set_values, argc, argv);
}

int tolvek_cmn_card_type_query(int argc, char **argv)
{
    tolvek_cmn_console_line("tolvek_cmn_card_type_query");
    return card_status_cmd(TOLVEK_CARD_TYPE_TYPE_QUERY, 0, argc, argv);
}

int tolvek_cmn_card_hotswap_test(int argc, char **argv)
{
    tolvek_cmn_console_line("tolvek_cmn_card_hotswap_test");
    if (argc < k_hotswap_min_words) {
        tolvek_cmn_console("\nnote: need %d inputs at least, Pls refer to the following cmd:\n", k_hotswap_min_words);
        return TOLVEK_CMN_ERR_ARG_COUNT;
    }
    int opt = atoi(argv[k_arg_first_value]);
    tolvek_cmn_console("opt: %d\n", opt);
    if (opt == 0) {
        int32_t stop = 0;
        return tolvek_cmn_cmd_send(TOLVEK_CARD_TYPE_HOTSWAP, k_value_bytes, &stop);
    }
    static_assert(k_hotswap_start_words == TOLVEK_CMN_HEAD_WORDS + k_hotswap_values, "opt and three values");
    return card_status_cmd_ex(TOLVEK_CARD_TYPE_HOTSWAP, k_hotswap_values, argc, argv);
}
