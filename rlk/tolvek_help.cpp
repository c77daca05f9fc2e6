#include "tolvek_help.h"

#include <stddef.h>
#include <stdio.h>

/* "blew" is the spelling factory scripts look for. */
static const char k_help_head[] =
    "\n=========== blew: radio_lab_kit(rlk) cmd help "
    "=======================================================";
/* Ends in a newline of its own, so an empty line follows the foot. */
static const char k_help_foot[] =
    "=========== above: radio_lab_kit(rlk) cmd help "
    "=======================================================\n";

enum help_row_kind {
    HELP_ROW_LINE,     /* text written as a line */
    HELP_ROW_FORMAT_1, /* format printed with one number */
    HELP_ROW_FORMAT_2, /* format printed with two numbers */
};

struct help_row {
    help_row_kind kind;
    const char *text;
    int arg1;
    int arg2;
};

static constexpr help_row help_line(const char *text)
{
    return help_row{HELP_ROW_LINE, text, 0, 0};
}

static constexpr help_row help_format(const char *text, int arg1)
{
    return help_row{HELP_ROW_FORMAT_1, text, arg1, 0};
}

static constexpr help_row help_format(const char *text, int arg1, int arg2)
{
    return help_row{HELP_ROW_FORMAT_2, text, arg1, arg2};
}

/* Each block starts with its header row; usage rows carry the option and,
 * where the group has them, the sub-command number. */
static const help_row k_help_nv[] = {
    help_format("%d: nv option cmd\n", 1),
    help_format("   rlk %d 1       /* nv test */\n", 1),
    help_format("   rlk %d 2 0     /* nv backup(no privacy nvs) */\n", 1),
    help_format("   rlk %d 2 1     /* nv backup(have privacy nvs) */\n", 1),
    help_format("   rlk %d 3 0     /* nv restore(no goldencopy done after restore) */\n", 1),
    help_format("   rlk %d 3 1     /* nv restore(do goldencopy done after restore) */\n", 1),
    help_format("   rlk %d 4 nvid  /* nv delete */\n", 1),
};

static const help_row k_help_imei[] = {
    help_format("%d: imei option cmd\n", 2),
    help_format("   rlk %d 0       /* imei_protect disable */\n", 2),
    help_format("   rlk %d 1       /* imei_protect start */\n", 2),
};

static const help_row k_help_rf[] = {
    help_format("%d: rf option cmd\n", 3),
    help_format("   rlk %d %d ...   /* gpio value setting(pls input enough gpio value by notice)*/\n", 3, 0),
    help_line("                    (need to reboot duing first setting) "),
    help_format("   rlk %d %d       /* get gpio test state */\n", 3, 1),
    help_format("   rlk %d %d       /* Close gpio test(need to reboot) */\n", 3, 2),
    help_format("   rlk %d %d v_ant v_sys v_band_list\n", 3, 3),
    help_line("                 /* fix tx to upper(lower) antenna for given band list */"),
    help_line("                    (need to reboot) "),
    help_line("                    v_ant: 0 - lower antenna, 1 - upper antenna "),
    help_line("                    v_sys: 0 - gsm, 1 - wcdma, 2 - cdma, 3 - tds, 4 - lte "),
    help_line("                    v_band_list: bit0~bi43 - (gsm: 850,900,1800,1900; wcdma: b1,b2,b4,b5,b8; "),
    help_line("                                            cdma: bc0, tds: b34,b39; lte: b1...b44 "),
    help_line("                    v_band_list: bit44~bi63 - (only for lte: b28b,b40b,b41b,b41c,b39b,b252,"),
    help_line("                                            b255,b253,b254,b66,b46,b250,b47,b48,b71,b71b,b38k ...  "),
    help_format("   rlk %d %d       /* get tx test state */\n", 3, 4),
    help_format("   rlk %d %d       /* Close tx test(need to reboot) */\n", 3, 5),
};

static const help_row k_help_nvefs[] = {
    help_format("%d: nvefs option cmd: \n", 4),
    help_format("   rlk %d %d sub nv_id             /* nv read */\n", 4, 1),
    help_format("   rlk %d %d sub nv_id nv_data     /* nv write */\n", 4, 2),
    help_format("   rlk %d %d sub nv_id             /* nv delete */\n", 4, 3),
    help_format("   rlk %d %d sub efs_path          /* efs read */\n", 4, 4),
    help_format("   rlk %d %d sub efs_path efs_data /* efs write */\n", 4, 5),
    help_format("   rlk %d %d sub efs_path          /* efs delete */\n", 4, 6),
};

static const help_row k_help_cmn[] = {
    help_format("%d: cmn option cmd: \n", 5),
    help_format("   rlk %d %d mode type time_out cmd_cnt\n", 5, 0),
    help_line("                                 /* diag cmd */"),
    help_line("                                    mode: 0 - callback, 1 - dci; "),
    help_line("                                    type: 0 - with result, 1 - without result; "),
    help_line("                                    time_out: set time - with result, set 0 - without result. unit:ms */"),
    help_line("                                    cmd_cnt: diag cmd bytes */"),
    help_format("   rlk %d %d                       /* card status query: 0 - absent, 1 - present\n", 5, 1),
    help_format("   rlk %d %d sub                   /* card status get, sub: 0 or 1; ret: 0 - absent, 1 - present */\n", 5, 2),
    help_format("   rlk %d %d sub mode set_val      /* card status set, sub: 0 or 1; mode: 0 - general, 1 - sim; set_val: 0 - low, 1 - high */\n", 5, 3),
    help_format("   rlk %d %d                       /* card type query: 0 - err, 1 - single sim, 2 - mult sim */\n", 5, 4),
    help_format("   rlk %d %d                       /* get sar dsi */\n", 5, 5),
    help_format("   rlk %d %d opt option_list       /* card slot hotswap test */\n", 5, 6),
    help_line("                                    opt: 0 - stop hotswap test, 1 - start hotswap test "),
    help_line("                                    option_list(when opt is 1 for blew inputs): "),
    help_line("                                      seconds_after_push : the seconds of waiting after push the card slot "),
    help_line("                                      seconds_after_pull : the seconds of waiting after pull the card slot "),
    help_line("                                      count_push_and_pull: the count of push and pull the card slot "),
    help_format("   rlk %d %d esim_on debug_on     /* set esim state */\n", 5, 10),
    help_line("                                    esim_on  : 1 - switch to eSIM,2 - switch to PSIM2 "),
    help_line("                                    debug_on : 0 - disable log print,1 - enable log print "),
};

static const help_row k_help_qmi_send[] = {
    help_format("%d: tolvek qmi send_data\n", 6),
    help_format("   rlk %d qmi_id qmi_data         /* qmi_id: Any binary data you will send */\n", 6),
    help_line("                                    qmi_data: Any binary data you will send "),
};

static const help_row k_help_modem_stats[] = {
    help_format("%d: tolvek modem stats test\n", 7),
    help_format("   rlk %d type(0/1) id            /* type: 0 - log; 1 - event; */\n", 7),
    help_line("                                    id: id of log or event "),
    help_format("   rlk %d 2 mask                  /* get the debug info of modem stats */\n", 7),
    help_line("                                    mask: 0 - check, 1 - main; 2 - diag; 4 - cm; 8 - uim, 255 - all "),
};

static const help_row k_help_at_cmd[] = {
    help_format("%d: tolvek at command test\n", 8),
    help_format("   rlk %d atcmd_cxt               /* atcmd_cxt: at command context */\n", 8),
    help_format("                                    the len of atcmd can not > %d\n", 100),
};

static const help_row k_help_qmi_modem_stats[] = {
    help_format("%d: tolvek modem stats qmi test\n", 9),
    help_format("   rlk %d %d sub                   /* 4G PCC rssi, sub: 0 - sub0; 1 - sub1 */\n", 9, 0),
    help_format("   rlk %d %d sub                   /* 4G SCC1 rssi, sub: 0 - sub0; 1 - sub1 */\n", 9, 1),
    help_format("   rlk %d %d sub                   /* 4G SCC2 rssi, sub: 0 - sub0; 1 - sub1 */\n", 9, 2),
    help_format("   rlk %d %d sub                   /* 4G SCC3 rssi, sub: 0 - sub0; 1 - sub1 */\n", 9, 3),
    help_format("   rlk %d %d sub                   /* 4G SCC4 rssi, sub: 0 - sub0; 1 - sub1 */\n", 9, 4),
    help_format("   rlk %d %d sub                   /* 4G SCC5 rssi, sub: 0 - sub0; 1 - sub1 */\n", 9, 5),
    help_format("   rlk %d %d sub                   /* 4G SCC6 rssi, sub: 0 - sub0; 1 - sub1 */\n", 9, 6),
    help_format("   rlk %d %d sub                   /* 5G PCC rssi, sub: 0 - sub0; 1 - sub1 */\n", 9, 7),
    help_format("   rlk %d %d sub                   /* 5G PCC snr, sub: 0 - sub0; 1 - sub1 */\n", 9, 8),
    help_format("   rlk %d %d sub                   /* 5G ANT diversity, sub: 0 - sub0; 1 - sub1 */\n", 9, 9),
    help_format("   rlk %d %d sub                  /* 5G PCC rsrp, sub: 0 - sub0; 1 - sub1 */\n", 9, 10),
    help_format("   rlk %d %d sub                  /* 5G SCC1 rsrp, sub: 0 - sub0; 1 - sub1 */\n", 9, 11),
    help_format("   rlk %d %d sub                  /* 5G SCC2 rsrp, sub: 0 - sub0; 1 - sub1 */\n", 9, 12),
    help_format("   rlk %d %d sub                  /* WCDMA rssi, sub: 0 - sub0; 1 - sub1 */\n", 9, 20),
    help_format("   rlk %d %d sub                  /* GSM rssi, sub: 0 - sub0; 1 - sub1 */\n", 9, 21),
    help_format("   rlk %d %d 0                    /* Ant info */\n", 9, 30),
};

static const help_row k_help_mbn[] = {
    help_format("%d: tolvek mbn test\n", 10),
};

static const help_row k_help_smart_test[] = {
    help_format("%d: smart test\n", 11),
    help_format("   rlk %d %d                      /* trigger SSR of modem */\n", 11, 0),
    help_format("   rlk %d %d                      /* trigger Full Dump */\n", 11, 1),
    help_format("   rlk %d %d                      /* trigger NV SYNC */\n", 11, 2),
    help_format("   rlk %d %d opt                  /* ap orvex print(need reboot), opt: 0 - off; 1 - on */\n", 11, 3),
    help_format("   rlk %d %d opt                  /* bp orvex print, opt: 0 - off; 1 - on */\n", 11, 4),
    help_format("   rlk %d %d opt                  /* bp qmi print, opt: 0 - off; 1 - on */\n", 11, 5),
    help_format("   rlk %d %d opt                  /* bp rf print, opt: 0 - off; 1 - on */\n", 11, 6),
};
struct help_block {
    int option;
    const help_row *rows;
    size_t count;
};

#define HELP_BLOCK(option, rows) {option, rows, sizeof(rows) / sizeof(rows[0])}

/* Ascending by option: the full help prints them in this order. */
static const help_block k_help_blocks[] = {
    HELP_BLOCK(1, k_help_nv),
    HELP_BLOCK(2, k_help_imei),
    HELP_BLOCK(3, k_help_rf),
    HELP_BLOCK(4, k_help_nvefs),
    HELP_BLOCK(5, k_help_cmn),
    HELP_BLOCK(6, k_help_qmi_send),
    HELP_BLOCK(7, k_help_modem_stats),
    HELP_BLOCK(8, k_help_at_cmd),
    HELP_BLOCK(9, k_help_qmi_modem_stats),
    HELP_BLOCK(10, k_help_mbn),
    HELP_BLOCK(11, k_help_smart_test),
};

static void print_help_row(const help_row *row)
{
    switch (row->kind) {
    case HELP_ROW_LINE:
        puts(row->text);
        break;
    case HELP_ROW_FORMAT_1:
        printf(row->text, row->arg1);
        break;
    case HELP_ROW_FORMAT_2:
        printf(row->text, row->arg1, row->arg2);
        break;
    }
}

static void print_help_block(const help_block *block)
{
    for (size_t i = 0; i < block->count; ++i) {
        print_help_row(&block->rows[i]);
    }
}

void show_help(int option)
{
    puts(k_help_head);
    for (const help_block &block : k_help_blocks) {
        if (option == TOLVEK_HELP_ALL || option == block.option) {
            print_help_block(&block);
        }
    }
    puts(k_help_foot);
}
