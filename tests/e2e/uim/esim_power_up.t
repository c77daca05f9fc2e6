# The modem accepts a power-up but leaves the slot off: the run fails at
# its check, and the next run of either switch powers the slot up first.
ignore~ *_unsol_ind_cb:*
ignore~ *[error_cb:*
ignore~ * error_cb:*
> error uim 0x31 0x5A 1
$ rlk 5 10 1 0
| esim switch to eSIM: failed (-205)
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
log~ SUB[shell][tolvek_cmn_esim.cpp:*] tolvek_cmn_esim_test: function entry ------------->
log~ SUB[shell][tolvek_cmn_esim.cpp:*] tolvek_cmn_esim_test: esim_on 1, debug_on 0
log~ SUB[shell][tolvek_cmn_esim.cpp:*] read_eid: esim step: read EID of slot 2
log~ SUB[shell][tolvek_uim_client.cpp:*] tolvek_uim_request_eid: function entry ------------->
log~ SUB[shell][tolvek_uim_client.cpp:*] init_uim_qmi_client: function entry ------------->
log~ SUB[shell][tolvek_uim_client.cpp:*] init_uim_qmi_client: init_uim_qmi_client 0x*
log~ SUB[shell][tolvek_uim_client.cpp:*] init_uim_qmi_client: function exit <-------------
log~ SUB[shell][tolvek_uim_client.cpp:*] tolvek_uim_request_eid: tolvek_uim_request_eid try init_uim_qmi_client 0x*
log~ SUB[shell][tolvek_uim_client.cpp:*] tolvek_uim_request_eid: tolvek_uim_request_eid uim_qmi_client 0x*
log~ SUB[shell][tolvek_uim_client.cpp:*] tolvek_uim_request_eid: function exit <-------------
log~ SUB[shell][tolvek_cmn_esim.cpp:*] switch_to_euicc: esim step: check EID 89049032000001000000000000000074
log~ SUB[shell][tolvek_cmn_esim.cpp:*] store_eid: esim step: store EID in /nv/item_files/modem/uim/uimdrv/esim_eid
log~ SUB[shell][tolvek_extend_nvefs.cpp:*] tolvek_efs_read: function entry ------------->
log~ SUB[shell][tolvek_extend_nvefs.cpp:*] tolvek_efs_read: tolvek_efs_read, sub_id 0, path_len: 40
log~ SUB[shell][tolvek_extend_nvefs.cpp:*] tolvek_efs_read: buf_len: 17
log~ SUB[shell][tolvek_extend_nvefs.cpp:*] tolvek_efs_read: path_value: /nv/item_files/modem/uim/uimdrv/esim_eid
log~ SUB[shell][tolvek_extend_cmn.cpp:*] tolvek_qmi_result_map: tolvek_qmi_result_map, old_result 0, new_result 0
log~ SUB[shell][tolvek_extend_nvefs.cpp:*] tolvek_efs_read: result = 0, rsp.result = -2
log~ SUB[shell][tolvek_extend_nvefs.cpp:*] tolvek_efs_read: qmi response fail
log~ SUB[shell][tolvek_extend_nvefs.cpp:*] tolvek_efs_read: function exit <-------------
log~ SUB[shell][tolvek_extend_nvefs.cpp:*] tolvek_efs_write: function entry ------------->
log~ SUB[shell][tolvek_extend_nvefs.cpp:*] tolvek_efs_write: tolvek_efs_write, sub_id 0, path_len: 40, buf_len: 16
log~ SUB[shell][tolvek_extend_nvefs.cpp:*] tolvek_efs_write: path_value: /nv/item_files/modem/uim/uimdrv/esim_eid
log~ SUB[shell][tolvek_extend_nvefs.cpp:*] tolvek_efs_write: left_num(16)
log~ SUB[shell][tolvek_extend_nvefs.cpp:*] tolvek_efs_write: send_num(16)
log~ SUB[shell][tolvek_extend_cmn.cpp:*] tolvek_qmi_result_map: tolvek_qmi_result_map, old_result 0, new_result 0
log~ SUB[shell][tolvek_extend_nvefs.cpp:*] tolvek_efs_write: result = 0, rsp.result[>=0 is instance id] = 0
log~ SUB[shell][tolvek_extend_nvefs.cpp:*] tolvek_efs_write: data_len_all = 16, data_len_send = 16, data_len_recv = 16, send_count = 1, data_len_cur = 0
log~ SUB[shell][tolvek_extend_nvefs.cpp:*] tolvek_efs_write: function exit <-------------
log~ SUB[shell][tolvek_extend_nvefs.cpp:*] tolvek_efs_read: function entry ------------->
log~ SUB[shell][tolvek_extend_nvefs.cpp:*] tolvek_efs_read: tolvek_efs_read, sub_id 0, path_len: 40
log~ SUB[shell][tolvek_extend_nvefs.cpp:*] tolvek_efs_read: buf_len: 17
log~ SUB[shell][tolvek_extend_nvefs.cpp:*] tolvek_efs_read: path_value: /nv/item_files/modem/uim/uimdrv/esim_eid
log~ SUB[shell][tolvek_extend_cmn.cpp:*] tolvek_qmi_result_map: tolvek_qmi_result_map, old_result 0, new_result 0
log~ SUB[shell][tolvek_extend_nvefs.cpp:*] tolvek_efs_read: result = 0, rsp.result = 0
log~ SUB[shell][tolvek_extend_nvefs.cpp:*] tolvek_efs_read: data_len_all = 16, data_len_send = 16, data_len_recv = 16, read_count = 1, data_len_cur = 0
log~ SUB[shell][tolvek_extend_nvefs.cpp:*] tolvek_efs_read: function exit <-------------
log~ SUB[shell][tolvek_cmn_esim.cpp:*] power_cycle_sim2: esim step: power down SIM2
log~ SUB[shell][tolvek_uim_client.cpp:*] tolvek_uim_request_uicc_power_ex: function entry ------------->
log~ SUB[shell][tolvek_uim_client.cpp:*] tolvek_uim_request_uicc_power_ex: tolvek_uim_request_uicc_power_ex uim_qmi_client 0x*
log~ SUB[shell][tolvek_uim_client.cpp:*] tolvek_uim_request_uicc_power_ex: tolvek_uim_request_uicc_power_ex power down sim
log~ SUB[shell][tolvek_uim_client.cpp:*] tolvek_uim_request_uicc_power_ex: uicc_power_ex res = 0, failed_cnt = 0
log~ SUB[shell][tolvek_uim_client.cpp:*] tolvek_uim_request_uicc_power_ex: function exit <-------------
log~ SUB[shell][tolvek_cmn_esim.cpp:*] power_cycle_sim2: esim step: power up SIM2
log~ SUB[shell][tolvek_uim_client.cpp:*] tolvek_uim_request_uicc_power_ex: function entry ------------->
log~ SUB[shell][tolvek_uim_client.cpp:*] tolvek_uim_request_uicc_power_ex: tolvek_uim_request_uicc_power_ex uim_qmi_client 0x*
log~ SUB[shell][tolvek_uim_client.cpp:*] tolvek_uim_request_uicc_power_ex: tolvek_uim_request_uicc_power_ex power up sim, ignore hotswap = 1 
log~ SUB[shell][tolvek_uim_client.cpp:*] tolvek_uim_request_uicc_power_ex: uicc_power_ex res = 0, failed_cnt = 0
log~ SUB[shell][tolvek_uim_client.cpp:*] tolvek_uim_request_uicc_power_ex: function exit <-------------
log~ SUB[shell][tolvek_cmn_esim.cpp:*] power_cycle_sim2: esim step: check SIM2 answers
log~ SUB[shell][tolvek_uim_client.cpp:*] tolvek_uim_request_eid: function entry ------------->
log~ SUB[shell][tolvek_uim_client.cpp:*] tolvek_uim_request_eid: tolvek_uim_request_eid uim_qmi_client 0x*
log~ SUB[shell][tolvek_uim_client.cpp:*] tolvek_uim_request_eid: function exit <-------------
log~ SUB[shell][tolvek_cmn_esim.cpp:*] power_cycle_sim2: SIM2 does not answer after power up
log~ SUB[shell][tolvek_cmn_esim.cpp:*] step_failed: esim step "power up SIM2" failed, code 0
log~ SUB[shell][tolvek_cmn_esim.cpp:*] tolvek_cmn_esim_test: function exit <-------------
> uim state
| slot1 on
| slot2 off psim
| eid 89049032000001000000000000000074
| channels 0
| profile 89445000000000000017 enabled operator-test
| profile 89445000000000000025 disabled spare
$ rlk 5 10 1 0
| esim switch to eSIM: ok (0)
log~ SUB[shell][tolvek_cmn_esim.cpp:*] tolvek_cmn_esim_test: function entry ------------->
log~ SUB[shell][tolvek_cmn_esim.cpp:*] tolvek_cmn_esim_test: esim_on 1, debug_on 0
log~ SUB[shell][tolvek_cmn_esim.cpp:*] read_eid: esim step: read EID of slot 2
log~ SUB[shell][tolvek_uim_client.cpp:*] tolvek_uim_request_eid: function entry ------------->
log~ SUB[shell][tolvek_uim_client.cpp:*] init_uim_qmi_client: function entry ------------->
log~ SUB[shell][tolvek_uim_client.cpp:*] init_uim_qmi_client: init_uim_qmi_client 0x*
log~ SUB[shell][tolvek_uim_client.cpp:*] init_uim_qmi_client: function exit <-------------
log~ SUB[shell][tolvek_uim_client.cpp:*] tolvek_uim_request_eid: tolvek_uim_request_eid try init_uim_qmi_client 0x*
log~ SUB[shell][tolvek_uim_client.cpp:*] tolvek_uim_request_eid: tolvek_uim_request_eid uim_qmi_client 0x*
log~ SUB[shell][tolvek_uim_client.cpp:*] tolvek_uim_request_eid: function exit <-------------
log~ SUB[shell][tolvek_cmn_esim.cpp:*] read_eid: the modem gave no EID for slot 2, power it up and read again
log~ SUB[shell][tolvek_uim_client.cpp:*] tolvek_uim_request_uicc_power_ex: function entry ------------->
log~ SUB[shell][tolvek_uim_client.cpp:*] tolvek_uim_request_uicc_power_ex: tolvek_uim_request_uicc_power_ex uim_qmi_client 0x*
log~ SUB[shell][tolvek_uim_client.cpp:*] tolvek_uim_request_uicc_power_ex: tolvek_uim_request_uicc_power_ex power up sim, ignore hotswap = 1 
log~ SUB[shell][tolvek_uim_client.cpp:*] tolvek_uim_request_uicc_power_ex: uicc_power_ex res = 0, failed_cnt = 0
log~ SUB[shell][tolvek_uim_client.cpp:*] tolvek_uim_request_uicc_power_ex: function exit <-------------
log~ SUB[shell][tolvek_uim_client.cpp:*] tolvek_uim_request_eid: function entry ------------->
log~ SUB[shell][tolvek_uim_client.cpp:*] tolvek_uim_request_eid: tolvek_uim_request_eid uim_qmi_client 0x*
log~ SUB[shell][tolvek_uim_client.cpp:*] tolvek_uim_request_eid: function exit <-------------
log~ SUB[shell][tolvek_cmn_esim.cpp:*] switch_to_euicc: esim step: check EID 89049032000001000000000000000074
log~ SUB[shell][tolvek_cmn_esim.cpp:*] store_eid: esim step: store EID in /nv/item_files/modem/uim/uimdrv/esim_eid
log~ SUB[shell][tolvek_extend_nvefs.cpp:*] tolvek_efs_read: function entry ------------->
log~ SUB[shell][tolvek_extend_nvefs.cpp:*] tolvek_efs_read: tolvek_efs_read, sub_id 0, path_len: 40
log~ SUB[shell][tolvek_extend_nvefs.cpp:*] tolvek_efs_read: buf_len: 17
log~ SUB[shell][tolvek_extend_nvefs.cpp:*] tolvek_efs_read: path_value: /nv/item_files/modem/uim/uimdrv/esim_eid
log~ SUB[shell][tolvek_extend_cmn.cpp:*] tolvek_qmi_result_map: tolvek_qmi_result_map, old_result 0, new_result 0
log~ SUB[shell][tolvek_extend_nvefs.cpp:*] tolvek_efs_read: result = 0, rsp.result = 0
log~ SUB[shell][tolvek_extend_nvefs.cpp:*] tolvek_efs_read: data_len_all = 16, data_len_send = 16, data_len_recv = 16, read_count = 1, data_len_cur = 0
log~ SUB[shell][tolvek_extend_nvefs.cpp:*] tolvek_efs_read: function exit <-------------
log~ SUB[shell][tolvek_cmn_esim.cpp:*] store_eid: EFS already holds this EID
log~ SUB[shell][tolvek_cmn_esim.cpp:*] power_cycle_sim2: esim step: power down SIM2
log~ SUB[shell][tolvek_uim_client.cpp:*] tolvek_uim_request_uicc_power_ex: function entry ------------->
log~ SUB[shell][tolvek_uim_client.cpp:*] tolvek_uim_request_uicc_power_ex: tolvek_uim_request_uicc_power_ex uim_qmi_client 0x*
log~ SUB[shell][tolvek_uim_client.cpp:*] tolvek_uim_request_uicc_power_ex: tolvek_uim_request_uicc_power_ex power down sim
log~ SUB[shell][tolvek_uim_client.cpp:*] tolvek_uim_request_uicc_power_ex: uicc_power_ex res = 0, failed_cnt = 0
log~ SUB[shell][tolvek_uim_client.cpp:*] tolvek_uim_request_uicc_power_ex: function exit <-------------
log~ SUB[shell][tolvek_cmn_esim.cpp:*] power_cycle_sim2: esim step: power up SIM2
log~ SUB[shell][tolvek_uim_client.cpp:*] tolvek_uim_request_uicc_power_ex: function entry ------------->
log~ SUB[shell][tolvek_uim_client.cpp:*] tolvek_uim_request_uicc_power_ex: tolvek_uim_request_uicc_power_ex uim_qmi_client 0x*
log~ SUB[shell][tolvek_uim_client.cpp:*] tolvek_uim_request_uicc_power_ex: tolvek_uim_request_uicc_power_ex power up sim, ignore hotswap = 1 
log~ SUB[shell][tolvek_uim_client.cpp:*] tolvek_uim_request_uicc_power_ex: uicc_power_ex res = 0, failed_cnt = 0
log~ SUB[shell][tolvek_uim_client.cpp:*] tolvek_uim_request_uicc_power_ex: function exit <-------------
log~ SUB[shell][tolvek_cmn_esim.cpp:*] power_cycle_sim2: esim step: check SIM2 answers
log~ SUB[shell][tolvek_uim_client.cpp:*] tolvek_uim_request_eid: function entry ------------->
log~ SUB[shell][tolvek_uim_client.cpp:*] tolvek_uim_request_eid: tolvek_uim_request_eid uim_qmi_client 0x*
log~ SUB[shell][tolvek_uim_client.cpp:*] tolvek_uim_request_eid: function exit <-------------
log~ SUB[shell][tolvek_cmn_esim.cpp:*] tolvek_cmn_esim_test: esim switch to eSIM done
log~ SUB[shell][tolvek_cmn_esim.cpp:*] tolvek_cmn_esim_test: function exit <-------------
> uim state
| slot1 on
| slot2 on euicc
| eid 89049032000001000000000000000074
| channels 0
| profile 89445000000000000017 enabled operator-test
| profile 89445000000000000025 disabled spare
> error uim 0x31 0x5A 1
$ rlk 5 10 2 0
| esim switch to PSIM2: failed (-205)
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
log~ SUB[shell][tolvek_cmn_esim.cpp:*] tolvek_cmn_esim_test: function entry ------------->
log~ SUB[shell][tolvek_cmn_esim.cpp:*] tolvek_cmn_esim_test: esim_on 2, debug_on 0
log~ SUB[shell][tolvek_cmn_esim.cpp:*] switch_to_psim: esim step: open logical channel to the ISD-R
log~ SUB[shell][tolvek_uim_client.cpp:*] tolvek_uim_open_logical_channel: function entry ------------->
log~ SUB[shell][tolvek_uim_client.cpp:*] init_uim_qmi_client: function entry ------------->
log~ SUB[shell][tolvek_uim_client.cpp:*] init_uim_qmi_client: init_uim_qmi_client 0x*
log~ SUB[shell][tolvek_uim_client.cpp:*] init_uim_qmi_client: function exit <-------------
log~ SUB[shell][tolvek_uim_client.cpp:*] tolvek_uim_open_logical_channel: tolvek_uim_open_logical_channel try init_uim_qmi_client 0x*
log~ SUB[shell][tolvek_uim_client.cpp:*] tolvek_uim_open_logical_channel: tolvek_uim_open_logical_channel uim_qmi_client 0x*
log~ SUB[shell][tolvek_uim_client.cpp:*] tolvek_uim_open_logical_channel: msg 0x42 res = 0, failed_cnt = 0
log~ SUB[shell][tolvek_uim_client.cpp:*] tolvek_uim_open_logical_channel: channel 1, sw 0x9000
log~ SUB[shell][tolvek_uim_client.cpp:*] tolvek_uim_open_logical_channel: function exit <-------------
log~ SUB[shell][tolvek_cmn_esim.cpp:*] remove_enabled_profile: esim step: list profiles
log~ SUB[shell][tolvek_uim_client.cpp:*] tolvek_uim_send_apdu: function entry ------------->
log~ SUB[shell][tolvek_uim_client.cpp:*] tolvek_uim_send_apdu: tolvek_uim_send_apdu uim_qmi_client 0x*
log~ SUB[shell][tolvek_uim_client.cpp:*] tolvek_uim_send_apdu: msg 0x3b res = 0, failed_cnt = 0
log~ SUB[shell][tolvek_uim_client.cpp:*] tolvek_uim_send_apdu: function exit <-------------
log~ SUB[shell][tolvek_cmn_esim_isdr.cpp:*] es10_exchange: apdu answered 63 bytes, sw 0x9000
log~ SUB[shell][tolvek_cmn_esim.cpp:*] choose_target: profile 89445000000000000017 state 1
log~ SUB[shell][tolvek_cmn_esim.cpp:*] choose_target: profile 89445000000000000025 state 0
log~ SUB[shell][tolvek_cmn_esim.cpp:*] remove_enabled_profile: esim step: note the removal of profile 89445000000000000017
log~ SUB[shell][tolvek_extend_nvefs.cpp:*] tolvek_efs_write: function entry ------------->
log~ SUB[shell][tolvek_extend_nvefs.cpp:*] tolvek_efs_write: tolvek_efs_write, sub_id 0, path_len: 47, buf_len: 10
log~ SUB[shell][tolvek_extend_nvefs.cpp:*] tolvek_efs_write: path_value: /nv/item_files/modem/tolvek/esim_delete_pending
log~ SUB[shell][tolvek_extend_nvefs.cpp:*] tolvek_efs_write: left_num(10)
log~ SUB[shell][tolvek_extend_nvefs.cpp:*] tolvek_efs_write: send_num(10)
log~ SUB[shell][tolvek_extend_cmn.cpp:*] tolvek_qmi_result_map: tolvek_qmi_result_map, old_result 0, new_result 0
log~ SUB[shell][tolvek_extend_nvefs.cpp:*] tolvek_efs_write: result = 0, rsp.result[>=0 is instance id] = 0
log~ SUB[shell][tolvek_extend_nvefs.cpp:*] tolvek_efs_write: data_len_all = 10, data_len_send = 10, data_len_recv = 10, send_count = 1, data_len_cur = 0
log~ SUB[shell][tolvek_extend_nvefs.cpp:*] tolvek_efs_write: function exit <-------------
log~ SUB[shell][tolvek_cmn_esim.cpp:*] remove_enabled_profile: esim step: disable profile 89445000000000000017
log~ SUB[shell][tolvek_uim_client.cpp:*] tolvek_uim_send_apdu: function entry ------------->
log~ SUB[shell][tolvek_uim_client.cpp:*] tolvek_uim_send_apdu: tolvek_uim_send_apdu uim_qmi_client 0x*
log~ SUB[shell][tolvek_uim_client.cpp:*] tolvek_uim_send_apdu: msg 0x3b res = 0, failed_cnt = 0
log~ SUB[shell][tolvek_uim_client.cpp:*] tolvek_uim_send_apdu: function exit <-------------
log~ SUB[shell][tolvek_cmn_esim_isdr.cpp:*] es10_exchange: apdu answered 6 bytes, sw 0x9000
log~ SUB[shell][tolvek_cmn_esim_isdr.cpp:*] es10_result: response to 0xBF32: result 0
log~ SUB[shell][tolvek_cmn_esim.cpp:*] remove_enabled_profile: esim step: delete profile 89445000000000000017
log~ SUB[shell][tolvek_uim_client.cpp:*] tolvek_uim_send_apdu: function entry ------------->
log~ SUB[shell][tolvek_uim_client.cpp:*] tolvek_uim_send_apdu: tolvek_uim_send_apdu uim_qmi_client 0x*
log~ SUB[shell][tolvek_uim_client.cpp:*] tolvek_uim_send_apdu: msg 0x3b res = 0, failed_cnt = 0
log~ SUB[shell][tolvek_uim_client.cpp:*] tolvek_uim_send_apdu: function exit <-------------
log~ SUB[shell][tolvek_cmn_esim_isdr.cpp:*] es10_exchange: apdu answered 6 bytes, sw 0x9000
log~ SUB[shell][tolvek_cmn_esim_isdr.cpp:*] es10_result: response to 0xBF33: result 0
log~ SUB[shell][tolvek_extend_nvefs.cpp:*] tolvek_efs_delete: function entry ------------->
log~ SUB[shell][tolvek_extend_nvefs.cpp:*] tolvek_efs_delete: tolvek_efs_delete, sub_id 0, path_len: 47
log~ SUB[shell][tolvek_extend_nvefs.cpp:*] tolvek_efs_delete: path_value: /nv/item_files/modem/tolvek/esim_delete_pending
log~ SUB[shell][tolvek_extend_cmn.cpp:*] tolvek_qmi_result_map: tolvek_qmi_result_map, old_result 0, new_result 0
log~ SUB[shell][tolvek_extend_nvefs.cpp:*] tolvek_efs_delete: result = 0, rsp.result = 0
log~ SUB[shell][tolvek_extend_nvefs.cpp:*] tolvek_efs_delete: function exit <-------------
log~ SUB[shell][tolvek_cmn_esim.cpp:*] switch_to_psim: esim step: close logical channel 1
log~ SUB[shell][tolvek_uim_client.cpp:*] tolvek_uim_close_logical_channel: function entry ------------->
log~ SUB[shell][tolvek_uim_client.cpp:*] tolvek_uim_close_logical_channel: tolvek_uim_close_logical_channel uim_qmi_client 0x*
log~ SUB[shell][tolvek_uim_client.cpp:*] tolvek_uim_close_logical_channel: msg 0x3f res = 0, failed_cnt = 0
log~ SUB[shell][tolvek_uim_client.cpp:*] tolvek_uim_close_logical_channel: function exit <-------------
log~ SUB[shell][tolvek_cmn_esim.cpp:*] power_cycle_sim2: esim step: power down SIM2
log~ SUB[shell][tolvek_uim_client.cpp:*] tolvek_uim_request_uicc_power_ex: function entry ------------->
log~ SUB[shell][tolvek_uim_client.cpp:*] tolvek_uim_request_uicc_power_ex: tolvek_uim_request_uicc_power_ex uim_qmi_client 0x*
log~ SUB[shell][tolvek_uim_client.cpp:*] tolvek_uim_request_uicc_power_ex: tolvek_uim_request_uicc_power_ex power down sim
log~ SUB[shell][tolvek_uim_client.cpp:*] tolvek_uim_request_uicc_power_ex: uicc_power_ex res = 0, failed_cnt = 0
log~ SUB[shell][tolvek_uim_client.cpp:*] tolvek_uim_request_uicc_power_ex: function exit <-------------
log~ SUB[shell][tolvek_cmn_esim.cpp:*] power_cycle_sim2: esim step: power up SIM2
log~ SUB[shell][tolvek_uim_client.cpp:*] tolvek_uim_request_uicc_power_ex: function entry ------------->
log~ SUB[shell][tolvek_uim_client.cpp:*] tolvek_uim_request_uicc_power_ex: tolvek_uim_request_uicc_power_ex uim_qmi_client 0x*
log~ SUB[shell][tolvek_uim_client.cpp:*] tolvek_uim_request_uicc_power_ex: tolvek_uim_request_uicc_power_ex power up sim, ignore hotswap = 1 
log~ SUB[shell][tolvek_uim_client.cpp:*] tolvek_uim_request_uicc_power_ex: uicc_power_ex res = 0, failed_cnt = 0
log~ SUB[shell][tolvek_uim_client.cpp:*] tolvek_uim_request_uicc_power_ex: function exit <-------------
log~ SUB[shell][tolvek_cmn_esim.cpp:*] power_cycle_sim2: esim step: check SIM2 answers
log~ SUB[shell][tolvek_uim_client.cpp:*] tolvek_uim_request_eid: function entry ------------->
log~ SUB[shell][tolvek_uim_client.cpp:*] tolvek_uim_request_eid: tolvek_uim_request_eid uim_qmi_client 0x*
log~ SUB[shell][tolvek_uim_client.cpp:*] tolvek_uim_request_eid: function exit <-------------
log~ SUB[shell][tolvek_cmn_esim.cpp:*] power_cycle_sim2: SIM2 does not answer after power up
log~ SUB[shell][tolvek_cmn_esim.cpp:*] step_failed: esim step "power up SIM2" failed, code 0
log~ SUB[shell][tolvek_cmn_esim.cpp:*] tolvek_cmn_esim_test: function exit <-------------
> uim state
| slot1 on
| slot2 off euicc
| eid 89049032000001000000000000000074
| channels 0
| profile 89445000000000000025 disabled spare
$ rlk 5 10 2 0
| esim switch to PSIM2: ok (0)
log~ SUB[shell][tolvek_cmn_esim.cpp:*] tolvek_cmn_esim_test: function entry ------------->
log~ SUB[shell][tolvek_cmn_esim.cpp:*] tolvek_cmn_esim_test: esim_on 2, debug_on 0
log~ SUB[shell][tolvek_cmn_esim.cpp:*] switch_to_psim: esim step: open logical channel to the ISD-R
log~ SUB[shell][tolvek_uim_client.cpp:*] tolvek_uim_open_logical_channel: function entry ------------->
log~ SUB[shell][tolvek_uim_client.cpp:*] init_uim_qmi_client: function entry ------------->
log~ SUB[shell][tolvek_uim_client.cpp:*] init_uim_qmi_client: init_uim_qmi_client 0x*
log~ SUB[shell][tolvek_uim_client.cpp:*] init_uim_qmi_client: function exit <-------------
log~ SUB[shell][tolvek_uim_client.cpp:*] tolvek_uim_open_logical_channel: tolvek_uim_open_logical_channel try init_uim_qmi_client 0x*
log~ SUB[shell][tolvek_uim_client.cpp:*] tolvek_uim_open_logical_channel: tolvek_uim_open_logical_channel uim_qmi_client 0x*
log~ SUB[shell][tolvek_uim_client.cpp:*] tolvek_uim_open_logical_channel: msg 0x42 res = 0, failed_cnt = 0
log~ SUB[shell][tolvek_uim_client.cpp:*] tolvek_uim_open_logical_channel: modem result = 1, error = 90
log~ SUB[shell][tolvek_uim_client.cpp:*] tolvek_uim_open_logical_channel: function exit <-------------
log~ SUB[shell][tolvek_cmn_esim_isdr.cpp:*] tolvek_isdr_open: open logical channel failed, code 90, sw 0x0000
log~ SUB[shell][tolvek_cmn_esim.cpp:*] switch_to_psim: slot 2 refuses a channel, power it up and open again
log~ SUB[shell][tolvek_uim_client.cpp:*] tolvek_uim_request_uicc_power_ex: function entry ------------->
log~ SUB[shell][tolvek_uim_client.cpp:*] tolvek_uim_request_uicc_power_ex: tolvek_uim_request_uicc_power_ex uim_qmi_client 0x*
log~ SUB[shell][tolvek_uim_client.cpp:*] tolvek_uim_request_uicc_power_ex: tolvek_uim_request_uicc_power_ex power up sim, ignore hotswap = 1 
log~ SUB[shell][tolvek_uim_client.cpp:*] tolvek_uim_request_uicc_power_ex: uicc_power_ex res = 0, failed_cnt = 0
log~ SUB[shell][tolvek_uim_client.cpp:*] tolvek_uim_request_uicc_power_ex: function exit <-------------
log~ SUB[shell][tolvek_uim_client.cpp:*] tolvek_uim_open_logical_channel: function entry ------------->
log~ SUB[shell][tolvek_uim_client.cpp:*] tolvek_uim_open_logical_channel: tolvek_uim_open_logical_channel uim_qmi_client 0x*
log~ SUB[shell][tolvek_uim_client.cpp:*] tolvek_uim_open_logical_channel: msg 0x42 res = 0, failed_cnt = 0
log~ SUB[shell][tolvek_uim_client.cpp:*] tolvek_uim_open_logical_channel: channel 1, sw 0x9000
log~ SUB[shell][tolvek_uim_client.cpp:*] tolvek_uim_open_logical_channel: function exit <-------------
log~ SUB[shell][tolvek_cmn_esim.cpp:*] remove_enabled_profile: esim step: list profiles
log~ SUB[shell][tolvek_uim_client.cpp:*] tolvek_uim_send_apdu: function entry ------------->
log~ SUB[shell][tolvek_uim_client.cpp:*] tolvek_uim_send_apdu: tolvek_uim_send_apdu uim_qmi_client 0x*
log~ SUB[shell][tolvek_uim_client.cpp:*] tolvek_uim_send_apdu: msg 0x3b res = 0, failed_cnt = 0
log~ SUB[shell][tolvek_uim_client.cpp:*] tolvek_uim_send_apdu: function exit <-------------
log~ SUB[shell][tolvek_cmn_esim_isdr.cpp:*] es10_exchange: apdu answered 30 bytes, sw 0x9000
log~ SUB[shell][tolvek_cmn_esim.cpp:*] choose_target: profile 89445000000000000025 state 0
log~ SUB[shell][tolvek_extend_nvefs.cpp:*] tolvek_efs_read: function entry ------------->
log~ SUB[shell][tolvek_extend_nvefs.cpp:*] tolvek_efs_read: tolvek_efs_read, sub_id 0, path_len: 47
log~ SUB[shell][tolvek_extend_nvefs.cpp:*] tolvek_efs_read: buf_len: 11
log~ SUB[shell][tolvek_extend_nvefs.cpp:*] tolvek_efs_read: path_value: /nv/item_files/modem/tolvek/esim_delete_pending
log~ SUB[shell][tolvek_extend_cmn.cpp:*] tolvek_qmi_result_map: tolvek_qmi_result_map, old_result 0, new_result 0
log~ SUB[shell][tolvek_extend_nvefs.cpp:*] tolvek_efs_read: result = 0, rsp.result = -2
log~ SUB[shell][tolvek_extend_nvefs.cpp:*] tolvek_efs_read: qmi response fail
log~ SUB[shell][tolvek_extend_nvefs.cpp:*] tolvek_efs_read: function exit <-------------
log~ SUB[shell][tolvek_cmn_esim.cpp:*] choose_target: no enabled profile, nothing to delete
log~ SUB[shell][tolvek_cmn_esim.cpp:*] switch_to_psim: esim step: close logical channel 1
log~ SUB[shell][tolvek_uim_client.cpp:*] tolvek_uim_close_logical_channel: function entry ------------->
log~ SUB[shell][tolvek_uim_client.cpp:*] tolvek_uim_close_logical_channel: tolvek_uim_close_logical_channel uim_qmi_client 0x*
log~ SUB[shell][tolvek_uim_client.cpp:*] tolvek_uim_close_logical_channel: msg 0x3f res = 0, failed_cnt = 0
log~ SUB[shell][tolvek_uim_client.cpp:*] tolvek_uim_close_logical_channel: function exit <-------------
log~ SUB[shell][tolvek_cmn_esim.cpp:*] power_cycle_sim2: esim step: power down SIM2
log~ SUB[shell][tolvek_uim_client.cpp:*] tolvek_uim_request_uicc_power_ex: function entry ------------->
log~ SUB[shell][tolvek_uim_client.cpp:*] tolvek_uim_request_uicc_power_ex: tolvek_uim_request_uicc_power_ex uim_qmi_client 0x*
log~ SUB[shell][tolvek_uim_client.cpp:*] tolvek_uim_request_uicc_power_ex: tolvek_uim_request_uicc_power_ex power down sim
log~ SUB[shell][tolvek_uim_client.cpp:*] tolvek_uim_request_uicc_power_ex: uicc_power_ex res = 0, failed_cnt = 0
log~ SUB[shell][tolvek_uim_client.cpp:*] tolvek_uim_request_uicc_power_ex: function exit <-------------
log~ SUB[shell][tolvek_cmn_esim.cpp:*] power_cycle_sim2: esim step: power up SIM2
log~ SUB[shell][tolvek_uim_client.cpp:*] tolvek_uim_request_uicc_power_ex: function entry ------------->
log~ SUB[shell][tolvek_uim_client.cpp:*] tolvek_uim_request_uicc_power_ex: tolvek_uim_request_uicc_power_ex uim_qmi_client 0x*
log~ SUB[shell][tolvek_uim_client.cpp:*] tolvek_uim_request_uicc_power_ex: tolvek_uim_request_uicc_power_ex power up sim, ignore hotswap = 1 
log~ SUB[shell][tolvek_uim_client.cpp:*] tolvek_uim_request_uicc_power_ex: uicc_power_ex res = 0, failed_cnt = 0
log~ SUB[shell][tolvek_uim_client.cpp:*] tolvek_uim_request_uicc_power_ex: function exit <-------------
log~ SUB[shell][tolvek_cmn_esim.cpp:*] power_cycle_sim2: esim step: check SIM2 answers
log~ SUB[shell][tolvek_uim_client.cpp:*] tolvek_uim_request_eid: function entry ------------->
log~ SUB[shell][tolvek_uim_client.cpp:*] tolvek_uim_request_eid: tolvek_uim_request_eid uim_qmi_client 0x*
log~ SUB[shell][tolvek_uim_client.cpp:*] tolvek_uim_request_eid: function exit <-------------
log~ SUB[shell][tolvek_cmn_esim.cpp:*] tolvek_cmn_esim_test: esim switch to PSIM2 done
log~ SUB[shell][tolvek_cmn_esim.cpp:*] tolvek_cmn_esim_test: function exit <-------------
> uim state
| slot1 on
| slot2 on psim
| eid 89049032000001000000000000000074
| channels 0
| profile 89445000000000000025 disabled spare
