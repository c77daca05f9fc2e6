# Option 5's card-slot commands against a fresh modem: the typed request
# sent, the notes and error codes of wrong argument counts (nothing is
# sent), the dumps of the simulator's answers and the slots kept across a
# restart.
ignore~ *_unsol_ind_cb:*
ignore~ *[error_cb:*
ignore~ * error_cb:*
$ rlk 5 2 7
| RIL[tolvek_cmn_card_status_get:122]: tolvek_cmn_card_status_get
| param(cnt: 1):
|  1tolvek_cmn_cmd_send, t: 55, l: 4
| TOLVEK_QMI_NV: qmi_client_get_service_list() returned 0 num_services = 1
| TOLVEK_QMI_NV: qmi_client_get_service_list() returned 0 num_entries = 1 num_services = 1
| QMI client inited
| tolvek_extend_qmi_send_sync resp_len:32
| tolvek_extend_qmi_handle_req_cb result:0
| result = 0, rsp.result = 0
|
| data len(24)
| data: 37 00 00 00 10 00 00 00 01 00 00 00 01 00 00 00 01 00 00 00 01 00 00 00
log~ SUB[shell][tolvek_cmn_card.cpp:*] tolvek_cmn_card_status_get: tolvek_cmn_card_status_get
> last 1 ext
| 0xffe4 0x0002 1 0001000200110201040004000000020400000200001000020200000000000000370000000400000001000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000
> counter get ext.requests
| 1
$ rlk 5 3 0 1
| RIL[tolvek_cmn_card_status_set:128]: tolvek_cmn_card_status_set
|
| note: need 6 inputs, Pls refer to the following cmd:
|
| note: Error happen! error_code(268431370)
|
| =========== blew: radio_lab_kit(rlk) cmd help =======================================================
| 5: cmn option cmd: 
|    rlk 5 0 mode type time_out cmd_cnt
|                                  /* diag cmd */
|                                     mode: 0 - callback, 1 - dci; 
|                                     type: 0 - with result, 1 - without result; 
|                                     time_out: set time - with result, set 0 - without result. unit:ms */
|                                     cmd_cnt: diag cmd bytes */
|    rlk 5 1                       /* card status query: 0 - absent, 1 - present
|    rlk 5 2 sub                   /* card status get, sub: 0 or 1; ret: 0 - absent, 1 - present */
|    rlk 5 3 sub mode set_val      /* card status set, sub: 0 or 1; mode: 0 - general, 1 - sim; set_val: 0 - low, 1 - high */
|    rlk 5 4                       /* card type query: 0 - err, 1 - single sim, 2 - mult sim */
|    rlk 5 5                       /* get sar dsi */
|    rlk 5 6 opt option_list       /* card slot hotswap test */
|                                     opt: 0 - stop hotswap test, 1 - start hotswap test 
|                                     option_list(when opt is 1 for blew inputs): 
|                                       seconds_after_push : the seconds of waiting after push the card slot 
|                                       seconds_after_pull : the seconds of waiting after pull the card slot 
|                                       count_push_and_pull: the count of push and pull the card slot 
|    rlk 5 10 esim_on debug_on     /* set esim state */
|                                     esim_on  : 1 - switch to eSIM,2 - switch to PSIM2 
|                                     debug_on : 0 - disable log print,1 - enable log print 
| =========== above: radio_lab_kit(rlk) cmd help =======================================================
|
log~ SUB[shell][tolvek_cmn_card.cpp:*] tolvek_cmn_card_status_set: tolvek_cmn_card_status_set
$ rlk 5 2
| RIL[tolvek_cmn_card_status_get:122]: tolvek_cmn_card_status_get
|
| note: need 4 inputs, Pls refer to the following cmd:
|
| note: Error happen! error_code(268431370)
|
| =========== blew: radio_lab_kit(rlk) cmd help =======================================================
| 5: cmn option cmd: 
|    rlk 5 0 mode type time_out cmd_cnt
|                                  /* diag cmd */
|                                     mode: 0 - callback, 1 - dci; 
|                                     type: 0 - with result, 1 - without result; 
|                                     time_out: set time - with result, set 0 - without result. unit:ms */
|                                     cmd_cnt: diag cmd bytes */
|    rlk 5 1                       /* card status query: 0 - absent, 1 - present
|    rlk 5 2 sub                   /* card status get, sub: 0 or 1; ret: 0 - absent, 1 - present */
|    rlk 5 3 sub mode set_val      /* card status set, sub: 0 or 1; mode: 0 - general, 1 - sim; set_val: 0 - low, 1 - high */
|    rlk 5 4                       /* card type query: 0 - err, 1 - single sim, 2 - mult sim */
|    rlk 5 5                       /* get sar dsi */
|    rlk 5 6 opt option_list       /* card slot hotswap test */
|                                     opt: 0 - stop hotswap test, 1 - start hotswap test 
|                                     option_list(when opt is 1 for blew inputs): 
|                                       seconds_after_push : the seconds of waiting after push the card slot 
|                                       seconds_after_pull : the seconds of waiting after pull the card slot 
|                                       count_push_and_pull: the count of push and pull the card slot 
|    rlk 5 10 esim_on debug_on     /* set esim state */
|                                     esim_on  : 1 - switch to eSIM,2 - switch to PSIM2 
|                                     debug_on : 0 - disable log print,1 - enable log print 
| =========== above: radio_lab_kit(rlk) cmd help =======================================================
|
log~ SUB[shell][tolvek_cmn_card.cpp:*] tolvek_cmn_card_status_get: tolvek_cmn_card_status_get
$ rlk 5 1 0
| tolvek_cmn_card_status_query
|
| note: need 3 inputs, Pls refer to the following cmd:
|
| note: Error happen! error_code(268431370)
|
| =========== blew: radio_lab_kit(rlk) cmd help =======================================================
| 5: cmn option cmd: 
|    rlk 5 0 mode type time_out cmd_cnt
|                                  /* diag cmd */
|                                     mode: 0 - callback, 1 - dci; 
|                                     type: 0 - with result, 1 - without result; 
|                                     time_out: set time - with result, set 0 - without result. unit:ms */
|                                     cmd_cnt: diag cmd bytes */
|    rlk 5 1                       /* card status query: 0 - absent, 1 - present
|    rlk 5 2 sub                   /* card status get, sub: 0 or 1; ret: 0 - absent, 1 - present */
|    rlk 5 3 sub mode set_val      /* card status set, sub: 0 or 1; mode: 0 - general, 1 - sim; set_val: 0 - low, 1 - high */
|    rlk 5 4                       /* card type query: 0 - err, 1 - single sim, 2 - mult sim */
|    rlk 5 5                       /* get sar dsi */
|    rlk 5 6 opt option_list       /* card slot hotswap test */
|                                     opt: 0 - stop hotswap test, 1 - start hotswap test 
|                                     option_list(when opt is 1 for blew inputs): 
|                                       seconds_after_push : the seconds of waiting after push the card slot 
|                                       seconds_after_pull : the seconds of waiting after pull the card slot 
|                                       count_push_and_pull: the count of push and pull the card slot 
|    rlk 5 10 esim_on debug_on     /* set esim state */
|                                     esim_on  : 1 - switch to eSIM,2 - switch to PSIM2 
|                                     debug_on : 0 - disable log print,1 - enable log print 
| =========== above: radio_lab_kit(rlk) cmd help =======================================================
|
$ rlk 5 6
| tolvek_cmn_card_hotswap_test
|
| note: need 4 inputs at least, Pls refer to the following cmd:
|
| note: Error happen! error_code(268431370)
|
| =========== blew: radio_lab_kit(rlk) cmd help =======================================================
| 5: cmn option cmd: 
|    rlk 5 0 mode type time_out cmd_cnt
|                                  /* diag cmd */
|                                     mode: 0 - callback, 1 - dci; 
|                                     type: 0 - with result, 1 - without result; 
|                                     time_out: set time - with result, set 0 - without result. unit:ms */
|                                     cmd_cnt: diag cmd bytes */
|    rlk 5 1                       /* card status query: 0 - absent, 1 - present
|    rlk 5 2 sub                   /* card status get, sub: 0 or 1; ret: 0 - absent, 1 - present */
|    rlk 5 3 sub mode set_val      /* card status set, sub: 0 or 1; mode: 0 - general, 1 - sim; set_val: 0 - low, 1 - high */
|    rlk 5 4                       /* card type query: 0 - err, 1 - single sim, 2 - mult sim */
|    rlk 5 5                       /* get sar dsi */
|    rlk 5 6 opt option_list       /* card slot hotswap test */
|                                     opt: 0 - stop hotswap test, 1 - start hotswap test 
|                                     option_list(when opt is 1 for blew inputs): 
|                                       seconds_after_push : the seconds of waiting after push the card slot 
|                                       seconds_after_pull : the seconds of waiting after pull the card slot 
|                                       count_push_and_pull: the count of push and pull the card slot 
|    rlk 5 10 esim_on debug_on     /* set esim state */
|                                     esim_on  : 1 - switch to eSIM,2 - switch to PSIM2 
|                                     debug_on : 0 - disable log print,1 - enable log print 
| =========== above: radio_lab_kit(rlk) cmd help =======================================================
|
$ rlk 5 6 1 5 2
| tolvek_cmn_card_hotswap_test
| opt: 1
|
| note: need 7 inputs, Pls refer to the following cmd:
|
| note: Error happen! error_code(268431370)
|
| =========== blew: radio_lab_kit(rlk) cmd help =======================================================
| 5: cmn option cmd: 
|    rlk 5 0 mode type time_out cmd_cnt
|                                  /* diag cmd */
|                                     mode: 0 - callback, 1 - dci; 
|                                     type: 0 - with result, 1 - without result; 
|                                     time_out: set time - with result, set 0 - without result. unit:ms */
|                                     cmd_cnt: diag cmd bytes */
|    rlk 5 1                       /* card status query: 0 - absent, 1 - present
|    rlk 5 2 sub                   /* card status get, sub: 0 or 1; ret: 0 - absent, 1 - present */
|    rlk 5 3 sub mode set_val      /* card status set, sub: 0 or 1; mode: 0 - general, 1 - sim; set_val: 0 - low, 1 - high */
|    rlk 5 4                       /* card type query: 0 - err, 1 - single sim, 2 - mult sim */
|    rlk 5 5                       /* get sar dsi */
|    rlk 5 6 opt option_list       /* card slot hotswap test */
|                                     opt: 0 - stop hotswap test, 1 - start hotswap test 
|                                     option_list(when opt is 1 for blew inputs): 
|                                       seconds_after_push : the seconds of waiting after push the card slot 
|                                       seconds_after_pull : the seconds of waiting after pull the card slot 
|                                       count_push_and_pull: the count of push and pull the card slot 
|    rlk 5 10 esim_on debug_on     /* set esim state */
|                                     esim_on  : 1 - switch to eSIM,2 - switch to PSIM2 
|                                     debug_on : 0 - disable log print,1 - enable log print 
| =========== above: radio_lab_kit(rlk) cmd help =======================================================
|
$ rlk 5 7
|
| note: the second parameters is invalid, Pls refer to the following cmd:
|
| =========== blew: radio_lab_kit(rlk) cmd help =======================================================
| 5: cmn option cmd: 
|    rlk 5 0 mode type time_out cmd_cnt
|                                  /* diag cmd */
|                                     mode: 0 - callback, 1 - dci; 
|                                     type: 0 - with result, 1 - without result; 
|                                     time_out: set time - with result, set 0 - without result. unit:ms */
|                                     cmd_cnt: diag cmd bytes */
|    rlk 5 1                       /* card status query: 0 - absent, 1 - present
|    rlk 5 2 sub                   /* card status get, sub: 0 or 1; ret: 0 - absent, 1 - present */
|    rlk 5 3 sub mode set_val      /* card status set, sub: 0 or 1; mode: 0 - general, 1 - sim; set_val: 0 - low, 1 - high */
|    rlk 5 4                       /* card type query: 0 - err, 1 - single sim, 2 - mult sim */
|    rlk 5 5                       /* get sar dsi */
|    rlk 5 6 opt option_list       /* card slot hotswap test */
|                                     opt: 0 - stop hotswap test, 1 - start hotswap test 
|                                     option_list(when opt is 1 for blew inputs): 
|                                       seconds_after_push : the seconds of waiting after push the card slot 
|                                       seconds_after_pull : the seconds of waiting after pull the card slot 
|                                       count_push_and_pull: the count of push and pull the card slot 
|    rlk 5 10 esim_on debug_on     /* set esim state */
|                                     esim_on  : 1 - switch to eSIM,2 - switch to PSIM2 
|                                     debug_on : 0 - disable log print,1 - enable log print 
| =========== above: radio_lab_kit(rlk) cmd help =======================================================
|
$ rlk 5 8
|
| note: the second parameters is invalid, Pls refer to the following cmd:
|
| =========== blew: radio_lab_kit(rlk) cmd help =======================================================
| 5: cmn option cmd: 
|    rlk 5 0 mode type time_out cmd_cnt
|                                  /* diag cmd */
|                                     mode: 0 - callback, 1 - dci; 
|                                     type: 0 - with result, 1 - without result; 
|                                     time_out: set time - with result, set 0 - without result. unit:ms */
|                                     cmd_cnt: diag cmd bytes */
|    rlk 5 1                       /* card status query: 0 - absent, 1 - present
|    rlk 5 2 sub                   /* card status get, sub: 0 or 1; ret: 0 - absent, 1 - present */
|    rlk 5 3 sub mode set_val      /* card status set, sub: 0 or 1; mode: 0 - general, 1 - sim; set_val: 0 - low, 1 - high */
|    rlk 5 4                       /* card type query: 0 - err, 1 - single sim, 2 - mult sim */
|    rlk 5 5                       /* get sar dsi */
|    rlk 5 6 opt option_list       /* card slot hotswap test */
|                                     opt: 0 - stop hotswap test, 1 - start hotswap test 
|                                     option_list(when opt is 1 for blew inputs): 
|                                       seconds_after_push : the seconds of waiting after push the card slot 
|                                       seconds_after_pull : the seconds of waiting after pull the card slot 
|                                       count_push_and_pull: the count of push and pull the card slot 
|    rlk 5 10 esim_on debug_on     /* set esim state */
|                                     esim_on  : 1 - switch to eSIM,2 - switch to PSIM2 
|                                     debug_on : 0 - disable log print,1 - enable log print 
| =========== above: radio_lab_kit(rlk) cmd help =======================================================
|
$ rlk 5 9
|
| note: the second parameters is invalid, Pls refer to the following cmd:
|
| =========== blew: radio_lab_kit(rlk) cmd help =======================================================
| 5: cmn option cmd: 
|    rlk 5 0 mode type time_out cmd_cnt
|                                  /* diag cmd */
|                                     mode: 0 - callback, 1 - dci; 
|                                     type: 0 - with result, 1 - without result; 
|                                     time_out: set time - with result, set 0 - without result. unit:ms */
|                                     cmd_cnt: diag cmd bytes */
|    rlk 5 1                       /* card status query: 0 - absent, 1 - present
|    rlk 5 2 sub                   /* card status get, sub: 0 or 1; ret: 0 - absent, 1 - present */
|    rlk 5 3 sub mode set_val      /* card status set, sub: 0 or 1; mode: 0 - general, 1 - sim; set_val: 0 - low, 1 - high */
|    rlk 5 4                       /* card type query: 0 - err, 1 - single sim, 2 - mult sim */
|    rlk 5 5                       /* get sar dsi */
|    rlk 5 6 opt option_list       /* card slot hotswap test */
|                                     opt: 0 - stop hotswap test, 1 - start hotswap test 
|                                     option_list(when opt is 1 for blew inputs): 
|                                       seconds_after_push : the seconds of waiting after push the card slot 
|                                       seconds_after_pull : the seconds of waiting after pull the card slot 
|                                       count_push_and_pull: the count of push and pull the card slot 
|    rlk 5 10 esim_on debug_on     /* set esim state */
|                                     esim_on  : 1 - switch to eSIM,2 - switch to PSIM2 
|                                     debug_on : 0 - disable log print,1 - enable log print 
| =========== above: radio_lab_kit(rlk) cmd help =======================================================
|
$ rlk 5 11
|
| note: the second parameters is invalid, Pls refer to the following cmd:
|
| =========== blew: radio_lab_kit(rlk) cmd help =======================================================
| 5: cmn option cmd: 
|    rlk 5 0 mode type time_out cmd_cnt
|                                  /* diag cmd */
|                                     mode: 0 - callback, 1 - dci; 
|                                     type: 0 - with result, 1 - without result; 
|                                     time_out: set time - with result, set 0 - without result. unit:ms */
|                                     cmd_cnt: diag cmd bytes */
|    rlk 5 1                       /* card status query: 0 - absent, 1 - present
|    rlk 5 2 sub                   /* card status get, sub: 0 or 1; ret: 0 - absent, 1 - present */
|    rlk 5 3 sub mode set_val      /* card status set, sub: 0 or 1; mode: 0 - general, 1 - sim; set_val: 0 - low, 1 - high */
|    rlk 5 4                       /* card type query: 0 - err, 1 - single sim, 2 - mult sim */
|    rlk 5 5                       /* get sar dsi */
|    rlk 5 6 opt option_list       /* card slot hotswap test */
|                                     opt: 0 - stop hotswap test, 1 - start hotswap test 
|                                     option_list(when opt is 1 for blew inputs): 
|                                       seconds_after_push : the seconds of waiting after push the card slot 
|                                       seconds_after_pull : the seconds of waiting after pull the card slot 
|                                       count_push_and_pull: the count of push and pull the card slot 
|    rlk 5 10 esim_on debug_on     /* set esim state */
|                                     esim_on  : 1 - switch to eSIM,2 - switch to PSIM2 
|                                     debug_on : 0 - disable log print,1 - enable log print 
| =========== above: radio_lab_kit(rlk) cmd help =======================================================
|
> counter get ext.requests
| 1
# Status set drives the presence in SIM mode; no card, so no type.
$ rlk 5 3 1 1 0
| RIL[tolvek_cmn_card_status_set:128]: tolvek_cmn_card_status_set
| param(cnt: 3):
|  1 1 0tolvek_cmn_cmd_send, t: 57, l: 12
| TOLVEK_QMI_NV: qmi_client_get_service_list() returned 0 num_services = 1
| TOLVEK_QMI_NV: qmi_client_get_service_list() returned 0 num_entries = 1 num_services = 1
| QMI client inited
| tolvek_extend_qmi_send_sync resp_len:32
| tolvek_extend_qmi_handle_req_cb result:0
| result = 0, rsp.result = 0
|
| data len(24)
| data: 39 00 00 00 10 00 00 00 00 00 00 00 01 00 00 00 01 00 00 00 00 00 00 00
log~ SUB[shell][tolvek_cmn_card.cpp:*] tolvek_cmn_card_status_set: tolvek_cmn_card_status_set
$ rlk 5 1
| tolvek_cmn_card_status_query
| param(cnt: 0):
| tolvek_cmn_cmd_send, t: 39, l: 0
| TOLVEK_QMI_NV: qmi_client_get_service_list() returned 0 num_services = 1
| TOLVEK_QMI_NV: qmi_client_get_service_list() returned 0 num_entries = 1 num_services = 1
| QMI client inited
| tolvek_extend_qmi_send_sync resp_len:24
| tolvek_extend_qmi_handle_req_cb result:0
| result = 0, rsp.result = 0
|
| data len(16)
| data: 27 00 00 00 08 00 00 00 01 00 00 00 00 00 00 00
$ rlk 5 4
| tolvek_cmn_card_type_query
| param(cnt: 0):
| tolvek_cmn_cmd_send, t: 56, l: 0
| TOLVEK_QMI_NV: qmi_client_get_service_list() returned 0 num_services = 1
| TOLVEK_QMI_NV: qmi_client_get_service_list() returned 0 num_entries = 1 num_services = 1
| QMI client inited
| tolvek_extend_qmi_send_sync resp_len:24
| tolvek_extend_qmi_handle_req_cb result:0
| result = 0, rsp.result = 0
|
| data len(16)
| data: 38 00 00 00 08 00 00 00 01 00 00 00 00 00 00 00
# General mode: the line is recorded, the card stays out.
$ rlk 5 3 1 0 5
| RIL[tolvek_cmn_card_status_set:128]: tolvek_cmn_card_status_set
| param(cnt: 3):
|  1 0 1tolvek_cmn_cmd_send, t: 57, l: 12
| TOLVEK_QMI_NV: qmi_client_get_service_list() returned 0 num_services = 1
| TOLVEK_QMI_NV: qmi_client_get_service_list() returned 0 num_entries = 1 num_services = 1
| QMI client inited
| tolvek_extend_qmi_send_sync resp_len:32
| tolvek_extend_qmi_handle_req_cb result:0
| result = 0, rsp.result = 0
|
| data len(24)
| data: 39 00 00 00 10 00 00 00 00 00 00 00 01 00 00 00 00 00 00 00 01 00 00 00
log~ SUB[shell][tolvek_cmn_card.cpp:*] tolvek_cmn_card_status_set: tolvek_cmn_card_status_set
$ rlk 5 2 1
| RIL[tolvek_cmn_card_status_get:122]: tolvek_cmn_card_status_get
| param(cnt: 1):
|  1tolvek_cmn_cmd_send, t: 55, l: 4
| TOLVEK_QMI_NV: qmi_client_get_service_list() returned 0 num_services = 1
| TOLVEK_QMI_NV: qmi_client_get_service_list() returned 0 num_entries = 1 num_services = 1
| QMI client inited
| tolvek_extend_qmi_send_sync resp_len:32
| tolvek_extend_qmi_handle_req_cb result:0
| result = 0, rsp.result = 0
|
| data len(24)
| data: 37 00 00 00 10 00 00 00 00 00 00 00 01 00 00 00 00 00 00 00 01 00 00 00
log~ SUB[shell][tolvek_cmn_card.cpp:*] tolvek_cmn_card_status_get: tolvek_cmn_card_status_get
> ext card
| slot0 present=1 power=1 type=1 mode=1 level=1 slot1 present=0 power=1 type=2 mode=0 level=1 hotswap=idle cycles=0/0
# The slots are modem state: a restarted simulator still sees them.
! restart
$ rlk 5 1
| tolvek_cmn_card_status_query
| param(cnt: 0):
| tolvek_cmn_cmd_send, t: 39, l: 0
| TOLVEK_QMI_NV: qmi_client_get_service_list() returned 0 num_services = 1
| TOLVEK_QMI_NV: qmi_client_get_service_list() returned 0 num_entries = 1 num_services = 1
| QMI client inited
| tolvek_extend_qmi_send_sync resp_len:24
| tolvek_extend_qmi_handle_req_cb result:0
| result = 0, rsp.result = 0
|
| data len(16)
| data: 27 00 00 00 08 00 00 00 01 00 00 00 00 00 00 00
