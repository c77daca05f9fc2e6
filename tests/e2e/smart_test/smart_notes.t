# Option 11's argument notes (the opt is judged before the sub), the AP
# print switch that sets the statistics property ("on" is atoi's 0, a
# valid off) and sends nothing, and NV sync, which flushes the modem store
# with one valueless typed request and restarts nothing.
$ rlk 11
|
| note: Too few parameters, Pls refer to the following cmd:
|
| =========== blew: radio_lab_kit(rlk) cmd help =======================================================
| 11: smart test
|    rlk 11 0                      /* trigger SSR of modem */
|    rlk 11 1                      /* trigger Full Dump */
|    rlk 11 2                      /* trigger NV SYNC */
|    rlk 11 3 opt                  /* ap orvex print(need reboot), opt: 0 - off; 1 - on */
|    rlk 11 4 opt                  /* bp orvex print, opt: 0 - off; 1 - on */
|    rlk 11 5 opt                  /* bp qmi print, opt: 0 - off; 1 - on */
|    rlk 11 6 opt                  /* bp rf print, opt: 0 - off; 1 - on */
| =========== above: radio_lab_kit(rlk) cmd help =======================================================
|
$ rlk 11 0
|
| note: Too few parameters, Pls refer to the following cmd:
|
| =========== blew: radio_lab_kit(rlk) cmd help =======================================================
| 11: smart test
|    rlk 11 0                      /* trigger SSR of modem */
|    rlk 11 1                      /* trigger Full Dump */
|    rlk 11 2                      /* trigger NV SYNC */
|    rlk 11 3 opt                  /* ap orvex print(need reboot), opt: 0 - off; 1 - on */
|    rlk 11 4 opt                  /* bp orvex print, opt: 0 - off; 1 - on */
|    rlk 11 5 opt                  /* bp qmi print, opt: 0 - off; 1 - on */
|    rlk 11 6 opt                  /* bp rf print, opt: 0 - off; 1 - on */
| =========== above: radio_lab_kit(rlk) cmd help =======================================================
|
$ rlk 11 0 2
|
| note: opt(2) is invalid:
|
| =========== blew: radio_lab_kit(rlk) cmd help =======================================================
| 11: smart test
|    rlk 11 0                      /* trigger SSR of modem */
|    rlk 11 1                      /* trigger Full Dump */
|    rlk 11 2                      /* trigger NV SYNC */
|    rlk 11 3 opt                  /* ap orvex print(need reboot), opt: 0 - off; 1 - on */
|    rlk 11 4 opt                  /* bp orvex print, opt: 0 - off; 1 - on */
|    rlk 11 5 opt                  /* bp qmi print, opt: 0 - off; 1 - on */
|    rlk 11 6 opt                  /* bp rf print, opt: 0 - off; 1 - on */
| =========== above: radio_lab_kit(rlk) cmd help =======================================================
|
$ rlk 11 3 -1
|
| note: opt(-1) is invalid:
|
| =========== blew: radio_lab_kit(rlk) cmd help =======================================================
| 11: smart test
|    rlk 11 0                      /* trigger SSR of modem */
|    rlk 11 1                      /* trigger Full Dump */
|    rlk 11 2                      /* trigger NV SYNC */
|    rlk 11 3 opt                  /* ap orvex print(need reboot), opt: 0 - off; 1 - on */
|    rlk 11 4 opt                  /* bp orvex print, opt: 0 - off; 1 - on */
|    rlk 11 5 opt                  /* bp qmi print, opt: 0 - off; 1 - on */
|    rlk 11 6 opt                  /* bp rf print, opt: 0 - off; 1 - on */
| =========== above: radio_lab_kit(rlk) cmd help =======================================================
|
$ rlk 11 7 0
| invalid par_i = 7
|
| =========== blew: radio_lab_kit(rlk) cmd help =======================================================
| 11: smart test
|    rlk 11 0                      /* trigger SSR of modem */
|    rlk 11 1                      /* trigger Full Dump */
|    rlk 11 2                      /* trigger NV SYNC */
|    rlk 11 3 opt                  /* ap orvex print(need reboot), opt: 0 - off; 1 - on */
|    rlk 11 4 opt                  /* bp orvex print, opt: 0 - off; 1 - on */
|    rlk 11 5 opt                  /* bp qmi print, opt: 0 - off; 1 - on */
|    rlk 11 6 opt                  /* bp rf print, opt: 0 - off; 1 - on */
| =========== above: radio_lab_kit(rlk) cmd help =======================================================
|
$ rlk 11 -1 1
| invalid par_i = -1
|
| =========== blew: radio_lab_kit(rlk) cmd help =======================================================
| 11: smart test
|    rlk 11 0                      /* trigger SSR of modem */
|    rlk 11 1                      /* trigger Full Dump */
|    rlk 11 2                      /* trigger NV SYNC */
|    rlk 11 3 opt                  /* ap orvex print(need reboot), opt: 0 - off; 1 - on */
|    rlk 11 4 opt                  /* bp orvex print, opt: 0 - off; 1 - on */
|    rlk 11 5 opt                  /* bp qmi print, opt: 0 - off; 1 - on */
|    rlk 11 6 opt                  /* bp rf print, opt: 0 - off; 1 - on */
| =========== above: radio_lab_kit(rlk) cmd help =======================================================
|
$ rlk 11 9 5
|
| note: opt(5) is invalid:
|
| =========== blew: radio_lab_kit(rlk) cmd help =======================================================
| 11: smart test
|    rlk 11 0                      /* trigger SSR of modem */
|    rlk 11 1                      /* trigger Full Dump */
|    rlk 11 2                      /* trigger NV SYNC */
|    rlk 11 3 opt                  /* ap orvex print(need reboot), opt: 0 - off; 1 - on */
|    rlk 11 4 opt                  /* bp orvex print, opt: 0 - off; 1 - on */
|    rlk 11 5 opt                  /* bp qmi print, opt: 0 - off; 1 - on */
|    rlk 11 6 opt                  /* bp rf print, opt: 0 - off; 1 - on */
| =========== above: radio_lab_kit(rlk) cmd help =======================================================
|

$ rlk 11 3 1
| RIL[tolvek_smart_test_ap_orvex_switch:37]: ap_orvex_print, opt = 1
|
| RIL[tolvek_smart_test_ap_orvex_switch:44]: success, need to reboot
> getprop persist.vendor.radio.print_stats
| 1
$ rlk 11 3 0
| RIL[tolvek_smart_test_ap_orvex_switch:37]: ap_orvex_print, opt = 0
|
| RIL[tolvek_smart_test_ap_orvex_switch:44]: success, need to reboot
> getprop persist.vendor.radio.print_stats
| 2
$ rlk 11 3 1
| RIL[tolvek_smart_test_ap_orvex_switch:37]: ap_orvex_print, opt = 1
|
| RIL[tolvek_smart_test_ap_orvex_switch:44]: success, need to reboot
> getprop persist.vendor.radio.print_stats
| 1
$ rlk 11 3 on
| RIL[tolvek_smart_test_ap_orvex_switch:37]: ap_orvex_print, opt = 0
|
| RIL[tolvek_smart_test_ap_orvex_switch:44]: success, need to reboot
> getprop persist.vendor.radio.print_stats
| 2
> counter get ext.requests
| 0
