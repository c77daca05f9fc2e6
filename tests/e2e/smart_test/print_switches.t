# The modem print switches write or delete their flag, then sync the NV
# store and restart the modem; switching off what is already off fails at
# the delete: no sync, no restart.
ignore~ *_unsol_ind_cb:*
ignore~ *[error_cb:*
ignore~ * error_cb:*
> ext restart-delay 300
> setprop persist.radio.ssr_wait_s 0
> setprop persist.vendor.ssr.restart_level ALL_ENABLE
$ rlk 11 4 0
| RIL[tolvek_smart_test_bp_orvex_print_switch:52]: bp_orvex_print, opt = 0
|
| RIL[tolvek_efs_delete:388]: function entry ------------->
| RIL[tolvek_efs_delete:392]: tolvek_efs_delete, sub_id 0, path_len: 23
| RIL[tolvek_efs_delete:53]: path_value: /orvex/orvex_print_mask
| TOLVEK_QMI_NV: qmi_client_get_service_list() returned 0 num_services = 1
| TOLVEK_QMI_NV: qmi_client_get_service_list() returned 0 num_entries = 1 num_services = 1
| QMI client inited
| tolvek_extend_qmi_send_sync resp_len:20
| tolvek_extend_qmi_handle_req_cb result:0
| RIL[tolvek_qmi_result_map:219]: tolvek_qmi_result_map, old_result 0, new_result 0
| RIL[tolvek_efs_delete:246]: result = 0, rsp.result = 0
| RIL[tolvek_efs_delete:395]: function exit <-------------
| Will trigger NV SYNC
| RIL[tolvek_send_common_qmi_msg:171]: function entry ------------->
| RIL[tolvek_send_common_qmi_msg:180]: t 35
| RIL[tolvek_send_common_qmi_msg:181]: l 0
| tolvek_extend_qmi_send_sync resp_len:16
| tolvek_extend_qmi_handle_req_cb result:0
| RIL[tolvek_send_common_qmi_msg:200]: function exit <-------------
| RIL[tolvek_smart_test_modem_ssr:97]: Will trigger SSR of modem, the current state: ALL_ENABLE
|
| RIL[tolvek_send_common_qmi_msg:171]: function entry ------------->
| RIL[tolvek_send_common_qmi_msg:180]: t 31
| RIL[tolvek_send_common_qmi_msg:181]: l 4
| tolvek_extend_qmi_send_sync resp_len:16
| tolvek_extend_qmi_handle_req_cb result:0
| RIL[tolvek_send_common_qmi_msg:200]: function exit <-------------
| RIL[tolvek_smart_test_bp_orvex_print_switch:71]: success, pls wait 10 seconds 
log~ SUB[shell][tolvek_smart_test_switch.cpp:*] tolvek_smart_test_bp_orvex_print_switch: bp_orvex_print, opt = 0
log~ SUB[shell][tolvek_extend_nvefs.cpp:*] tolvek_efs_delete: function entry ------------->
log~ SUB[shell][tolvek_extend_nvefs.cpp:*] tolvek_efs_delete: tolvek_efs_delete, sub_id 0, path_len: 23
log~ SUB[shell][tolvek_extend_nvefs.cpp:*] tolvek_efs_delete: path_value: /orvex/orvex_print_mask
log~ SUB[shell][tolvek_extend_cmn.cpp:*] tolvek_qmi_result_map: tolvek_qmi_result_map, old_result 0, new_result 0
log~ SUB[shell][tolvek_extend_nvefs.cpp:*] tolvek_efs_delete: result = 0, rsp.result = 0
log~ SUB[shell][tolvek_extend_nvefs.cpp:*] tolvek_efs_delete: function exit <-------------
log~ SUB[shell][tolvek_extend_cmn.cpp:*] tolvek_send_common_qmi_msg: function entry ------------->
log~ SUB[shell][tolvek_extend_cmn.cpp:*] tolvek_send_common_qmi_msg: t 35
log~ SUB[shell][tolvek_extend_cmn.cpp:*] tolvek_send_common_qmi_msg: l 0
log~ SUB[shell][tolvek_extend_cmn.cpp:*] tolvek_send_common_qmi_msg: function exit <-------------
log~ SUB[shell][tolvek_smart_test.cpp:*] tolvek_smart_test_modem_ssr: Will trigger SSR of modem, the current state: ALL_ENABLE
log~ SUB[shell][tolvek_extend_cmn.cpp:*] tolvek_send_common_qmi_msg: function entry ------------->
log~ SUB[shell][tolvek_extend_cmn.cpp:*] tolvek_send_common_qmi_msg: t 31
log~ SUB[shell][tolvek_extend_cmn.cpp:*] tolvek_send_common_qmi_msg: l 4
log~ SUB[shell][tolvek_extend_cmn.cpp:*] tolvek_send_common_qmi_msg: function exit <-------------
log~ SUB[shell][tolvek_smart_test_switch.cpp:*] tolvek_smart_test_bp_orvex_print_switch: success, pls wait 10 seconds 
> efs get /orvex/orvex_print_mask
| error -2
! wait-up 1
> counter get ext.restart.up
| 1
$ rlk 11 4 1
| RIL[tolvek_smart_test_bp_orvex_print_switch:52]: bp_orvex_print, opt = 1
|
| RIL[tolvek_efs_write:361]: function entry ------------->
| RIL[tolvek_efs_write:365]: tolvek_efs_write, sub_id 0, path_len: 23, buf_len: 4
| RIL[tolvek_efs_write:53]: path_value: /orvex/orvex_print_mask
| RIL[tolvek_efs_write:100]: left_num(4)
| RIL[tolvek_efs_write:102]: send_num(4)
| TOLVEK_QMI_NV: qmi_client_get_service_list() returned 0 num_services = 1
| TOLVEK_QMI_NV: qmi_client_get_service_list() returned 0 num_entries = 1 num_services = 1
| QMI client inited
| tolvek_extend_qmi_send_sync resp_len:20
| tolvek_extend_qmi_handle_req_cb result:0
| RIL[tolvek_qmi_result_map:219]: tolvek_qmi_result_map, old_result 0, new_result 0
| RIL[tolvek_efs_write:110]: result = 0, rsp.result[>=0 is instance id] = 0
| RIL[tolvek_efs_write:121]: data_len_all = 4, data_len_send = 4, data_len_recv = 4, send_count = 1, data_len_cur = 0
| RIL[tolvek_efs_write:369]: function exit <-------------
| Will trigger NV SYNC
| RIL[tolvek_send_common_qmi_msg:171]: function entry ------------->
| RIL[tolvek_send_common_qmi_msg:180]: t 35
| RIL[tolvek_send_common_qmi_msg:181]: l 0
| tolvek_extend_qmi_send_sync resp_len:16
| tolvek_extend_qmi_handle_req_cb result:0
| RIL[tolvek_send_common_qmi_msg:200]: function exit <-------------
| RIL[tolvek_smart_test_modem_ssr:97]: Will trigger SSR of modem, the current state: ALL_ENABLE
|
| RIL[tolvek_send_common_qmi_msg:171]: function entry ------------->
| RIL[tolvek_send_common_qmi_msg:180]: t 31
| RIL[tolvek_send_common_qmi_msg:181]: l 4
| tolvek_extend_qmi_send_sync resp_len:16
| tolvek_extend_qmi_handle_req_cb result:0
| RIL[tolvek_send_common_qmi_msg:200]: function exit <-------------
| RIL[tolvek_smart_test_bp_orvex_print_switch:71]: success, pls wait 10 seconds 
log~ SUB[shell][tolvek_smart_test_switch.cpp:*] tolvek_smart_test_bp_orvex_print_switch: bp_orvex_print, opt = 1
log~ SUB[shell][tolvek_extend_nvefs.cpp:*] tolvek_efs_write: function entry ------------->
log~ SUB[shell][tolvek_extend_nvefs.cpp:*] tolvek_efs_write: tolvek_efs_write, sub_id 0, path_len: 23, buf_len: 4
log~ SUB[shell][tolvek_extend_nvefs.cpp:*] tolvek_efs_write: path_value: /orvex/orvex_print_mask
log~ SUB[shell][tolvek_extend_nvefs.cpp:*] tolvek_efs_write: left_num(4)
log~ SUB[shell][tolvek_extend_nvefs.cpp:*] tolvek_efs_write: send_num(4)
log~ SUB[shell][tolvek_extend_cmn.cpp:*] tolvek_qmi_result_map: tolvek_qmi_result_map, old_result 0, new_result 0
log~ SUB[shell][tolvek_extend_nvefs.cpp:*] tolvek_efs_write: result = 0, rsp.result[>=0 is instance id] = 0
log~ SUB[shell][tolvek_extend_nvefs.cpp:*] tolvek_efs_write: data_len_all = 4, data_len_send = 4, data_len_recv = 4, send_count = 1, data_len_cur = 0
log~ SUB[shell][tolvek_extend_nvefs.cpp:*] tolvek_efs_write: function exit <-------------
log~ SUB[shell][tolvek_extend_cmn.cpp:*] tolvek_send_common_qmi_msg: function entry ------------->
log~ SUB[shell][tolvek_extend_cmn.cpp:*] tolvek_send_common_qmi_msg: t 35
log~ SUB[shell][tolvek_extend_cmn.cpp:*] tolvek_send_common_qmi_msg: l 0
log~ SUB[shell][tolvek_extend_cmn.cpp:*] tolvek_send_common_qmi_msg: function exit <-------------
log~ SUB[shell][tolvek_smart_test.cpp:*] tolvek_smart_test_modem_ssr: Will trigger SSR of modem, the current state: ALL_ENABLE
log~ SUB[shell][tolvek_extend_cmn.cpp:*] tolvek_send_common_qmi_msg: function entry ------------->
log~ SUB[shell][tolvek_extend_cmn.cpp:*] tolvek_send_common_qmi_msg: t 31
log~ SUB[shell][tolvek_extend_cmn.cpp:*] tolvek_send_common_qmi_msg: l 4
log~ SUB[shell][tolvek_extend_cmn.cpp:*] tolvek_send_common_qmi_msg: function exit <-------------
log~ SUB[shell][tolvek_smart_test_switch.cpp:*] tolvek_smart_test_bp_orvex_print_switch: success, pls wait 10 seconds 
> efs get /orvex/orvex_print_mask
| 1f000000
! wait-up 2
> counter get ext.restart.up
| 2
$ rlk 11 5 0
| RIL[tolvek_smart_test_bp_qmi_print_switch:52]: bp_qmi_print, opt = 0
|
| RIL[tolvek_efs_delete:388]: function entry ------------->
| RIL[tolvek_efs_delete:392]: tolvek_efs_delete, sub_id 0, path_len: 42
| RIL[tolvek_efs_delete:53]: path_value: /nv/item_files/modem/tolvek/qmi_print_flag
| TOLVEK_QMI_NV: qmi_client_get_service_list() returned 0 num_services = 1
| TOLVEK_QMI_NV: qmi_client_get_service_list() returned 0 num_entries = 1 num_services = 1
| QMI client inited
| tolvek_extend_qmi_send_sync resp_len:20
| tolvek_extend_qmi_handle_req_cb result:0
| RIL[tolvek_qmi_result_map:219]: tolvek_qmi_result_map, old_result 0, new_result 0
| RIL[tolvek_efs_delete:246]: result = 0, rsp.result = 0
| RIL[tolvek_efs_delete:395]: function exit <-------------
| Will trigger NV SYNC
| RIL[tolvek_send_common_qmi_msg:171]: function entry ------------->
| RIL[tolvek_send_common_qmi_msg:180]: t 35
| RIL[tolvek_send_common_qmi_msg:181]: l 0
| tolvek_extend_qmi_send_sync resp_len:16
| tolvek_extend_qmi_handle_req_cb result:0
| RIL[tolvek_send_common_qmi_msg:200]: function exit <-------------
| RIL[tolvek_smart_test_modem_ssr:97]: Will trigger SSR of modem, the current state: ALL_ENABLE
|
| RIL[tolvek_send_common_qmi_msg:171]: function entry ------------->
| RIL[tolvek_send_common_qmi_msg:180]: t 31
| RIL[tolvek_send_common_qmi_msg:181]: l 4
| tolvek_extend_qmi_send_sync resp_len:16
| tolvek_extend_qmi_handle_req_cb result:0
| RIL[tolvek_send_common_qmi_msg:200]: function exit <-------------
| RIL[tolvek_smart_test_bp_qmi_print_switch:71]: success, pls wait 10 seconds 
log~ SUB[shell][tolvek_smart_test_switch.cpp:*] tolvek_smart_test_bp_qmi_print_switch: bp_qmi_print, opt = 0
log~ SUB[shell][tolvek_extend_nvefs.cpp:*] tolvek_efs_delete: function entry ------------->
log~ SUB[shell][tolvek_extend_nvefs.cpp:*] tolvek_efs_delete: tolvek_efs_delete, sub_id 0, path_len: 42
log~ SUB[shell][tolvek_extend_nvefs.cpp:*] tolvek_efs_delete: path_value: /nv/item_files/modem/tolvek/qmi_print_flag
log~ SUB[shell][tolvek_extend_cmn.cpp:*] tolvek_qmi_result_map: tolvek_qmi_result_map, old_result 0, new_result 0
log~ SUB[shell][tolvek_extend_nvefs.cpp:*] tolvek_efs_delete: result = 0, rsp.result = 0
log~ SUB[shell][tolvek_extend_nvefs.cpp:*] tolvek_efs_delete: function exit <-------------
log~ SUB[shell][tolvek_extend_cmn.cpp:*] tolvek_send_common_qmi_msg: function entry ------------->
log~ SUB[shell][tolvek_extend_cmn.cpp:*] tolvek_send_common_qmi_msg: t 35
log~ SUB[shell][tolvek_extend_cmn.cpp:*] tolvek_send_common_qmi_msg: l 0
log~ SUB[shell][tolvek_extend_cmn.cpp:*] tolvek_send_common_qmi_msg: function exit <-------------
log~ SUB[shell][tolvek_smart_test.cpp:*] tolvek_smart_test_modem_ssr: Will trigger SSR of modem, the current state: ALL_ENABLE
log~ SUB[shell][tolvek_extend_cmn.cpp:*] tolvek_send_common_qmi_msg: function entry ------------->
log~ SUB[shell][tolvek_extend_cmn.cpp:*] tolvek_send_common_qmi_msg: t 31
log~ SUB[shell][tolvek_extend_cmn.cpp:*] tolvek_send_common_qmi_msg: l 4
log~ SUB[shell][tolvek_extend_cmn.cpp:*] tolvek_send_common_qmi_msg: function exit <-------------
log~ SUB[shell][tolvek_smart_test_switch.cpp:*] tolvek_smart_test_bp_qmi_print_switch: success, pls wait 10 seconds 
> efs get /nv/item_files/modem/tolvek/qmi_print_flag
| error -2
! wait-up 3
> counter get ext.restart.up
| 3
$ rlk 11 5 1
| RIL[tolvek_smart_test_bp_qmi_print_switch:52]: bp_qmi_print, opt = 1
|
| RIL[tolvek_efs_write:361]: function entry ------------->
| RIL[tolvek_efs_write:365]: tolvek_efs_write, sub_id 0, path_len: 42, buf_len: 1
| RIL[tolvek_efs_write:53]: path_value: /nv/item_files/modem/tolvek/qmi_print_flag
| RIL[tolvek_efs_write:100]: left_num(1)
| RIL[tolvek_efs_write:102]: send_num(1)
| TOLVEK_QMI_NV: qmi_client_get_service_list() returned 0 num_services = 1
| TOLVEK_QMI_NV: qmi_client_get_service_list() returned 0 num_entries = 1 num_services = 1
| QMI client inited
| tolvek_extend_qmi_send_sync resp_len:20
| tolvek_extend_qmi_handle_req_cb result:0
| RIL[tolvek_qmi_result_map:219]: tolvek_qmi_result_map, old_result 0, new_result 0
| RIL[tolvek_efs_write:110]: result = 0, rsp.result[>=0 is instance id] = 0
| RIL[tolvek_efs_write:121]: data_len_all = 1, data_len_send = 1, data_len_recv = 1, send_count = 1, data_len_cur = 0
| RIL[tolvek_efs_write:369]: function exit <-------------
| Will trigger NV SYNC
| RIL[tolvek_send_common_qmi_msg:171]: function entry ------------->
| RIL[tolvek_send_common_qmi_msg:180]: t 35
| RIL[tolvek_send_common_qmi_msg:181]: l 0
| tolvek_extend_qmi_send_sync resp_len:16
| tolvek_extend_qmi_handle_req_cb result:0
| RIL[tolvek_send_common_qmi_msg:200]: function exit <-------------
| RIL[tolvek_smart_test_modem_ssr:97]: Will trigger SSR of modem, the current state: ALL_ENABLE
|
| RIL[tolvek_send_common_qmi_msg:171]: function entry ------------->
| RIL[tolvek_send_common_qmi_msg:180]: t 31
| RIL[tolvek_send_common_qmi_msg:181]: l 4
| tolvek_extend_qmi_send_sync resp_len:16
| tolvek_extend_qmi_handle_req_cb result:0
| RIL[tolvek_send_common_qmi_msg:200]: function exit <-------------
| RIL[tolvek_smart_test_bp_qmi_print_switch:71]: success, pls wait 10 seconds 
log~ SUB[shell][tolvek_smart_test_switch.cpp:*] tolvek_smart_test_bp_qmi_print_switch: bp_qmi_print, opt = 1
log~ SUB[shell][tolvek_extend_nvefs.cpp:*] tolvek_efs_write: function entry ------------->
log~ SUB[shell][tolvek_extend_nvefs.cpp:*] tolvek_efs_write: tolvek_efs_write, sub_id 0, path_len: 42, buf_len: 1
log~ SUB[shell][tolvek_extend_nvefs.cpp:*] tolvek_efs_write: path_value: /nv/item_files/modem/tolvek/qmi_print_flag
log~ SUB[shell][tolvek_extend_nvefs.cpp:*] tolvek_efs_write: left_num(1)
log~ SUB[shell][tolvek_extend_nvefs.cpp:*] tolvek_efs_write: send_num(1)
log~ SUB[shell][tolvek_extend_cmn.cpp:*] tolvek_qmi_result_map: tolvek_qmi_result_map, old_result 0, new_result 0
log~ SUB[shell][tolvek_extend_nvefs.cpp:*] tolvek_efs_write: result = 0, rsp.result[>=0 is instance id] = 0
log~ SUB[shell][tolvek_extend_nvefs.cpp:*] tolvek_efs_write: data_len_all = 1, data_len_send = 1, data_len_recv = 1, send_count = 1, data_len_cur = 0
log~ SUB[shell][tolvek_extend_nvefs.cpp:*] tolvek_efs_write: function exit <-------------
log~ SUB[shell][tolvek_extend_cmn.cpp:*] tolvek_send_common_qmi_msg: function entry ------------->
log~ SUB[shell][tolvek_extend_cmn.cpp:*] tolvek_send_common_qmi_msg: t 35
log~ SUB[shell][tolvek_extend_cmn.cpp:*] tolvek_send_common_qmi_msg: l 0
log~ SUB[shell][tolvek_extend_cmn.cpp:*] tolvek_send_common_qmi_msg: function exit <-------------
log~ SUB[shell][tolvek_smart_test.cpp:*] tolvek_smart_test_modem_ssr: Will trigger SSR of modem, the current state: ALL_ENABLE
log~ SUB[shell][tolvek_extend_cmn.cpp:*] tolvek_send_common_qmi_msg: function entry ------------->
log~ SUB[shell][tolvek_extend_cmn.cpp:*] tolvek_send_common_qmi_msg: t 31
log~ SUB[shell][tolvek_extend_cmn.cpp:*] tolvek_send_common_qmi_msg: l 4
log~ SUB[shell][tolvek_extend_cmn.cpp:*] tolvek_send_common_qmi_msg: function exit <-------------
log~ SUB[shell][tolvek_smart_test_switch.cpp:*] tolvek_smart_test_bp_qmi_print_switch: success, pls wait 10 seconds 
> efs get /nv/item_files/modem/tolvek/qmi_print_flag
| 01
! wait-up 4
> counter get ext.restart.up
| 4
$ rlk 11 6 0
| RIL[tolvek_smart_test_bp_rf_print_switch:52]: bp_rf_print, opt = 0
|
| RIL[tolvek_efs_delete:388]: function entry ------------->
| RIL[tolvek_efs_delete:392]: tolvek_efs_delete, sub_id 0, path_len: 41
| RIL[tolvek_efs_delete:53]: path_value: /nv/item_files/modem/tolvek/rf_print_mask
| TOLVEK_QMI_NV: qmi_client_get_service_list() returned 0 num_services = 1
| TOLVEK_QMI_NV: qmi_client_get_service_list() returned 0 num_entries = 1 num_services = 1
| QMI client inited
| tolvek_extend_qmi_send_sync resp_len:20
| tolvek_extend_qmi_handle_req_cb result:0
| RIL[tolvek_qmi_result_map:219]: tolvek_qmi_result_map, old_result 0, new_result 0
| RIL[tolvek_efs_delete:246]: result = 0, rsp.result = 0
| RIL[tolvek_efs_delete:395]: function exit <-------------
| Will trigger NV SYNC
| RIL[tolvek_send_common_qmi_msg:171]: function entry ------------->
| RIL[tolvek_send_common_qmi_msg:180]: t 35
| RIL[tolvek_send_common_qmi_msg:181]: l 0
| tolvek_extend_qmi_send_sync resp_len:16
| tolvek_extend_qmi_handle_req_cb result:0
| RIL[tolvek_send_common_qmi_msg:200]: function exit <-------------
| RIL[tolvek_smart_test_modem_ssr:97]: Will trigger SSR of modem, the current state: ALL_ENABLE
|
| RIL[tolvek_send_common_qmi_msg:171]: function entry ------------->
| RIL[tolvek_send_common_qmi_msg:180]: t 31
| RIL[tolvek_send_common_qmi_msg:181]: l 4
| tolvek_extend_qmi_send_sync resp_len:16
| tolvek_extend_qmi_handle_req_cb result:0
| RIL[tolvek_send_common_qmi_msg:200]: function exit <-------------
| RIL[tolvek_smart_test_bp_rf_print_switch:71]: success, pls wait 10 seconds 
log~ SUB[shell][tolvek_smart_test_switch.cpp:*] tolvek_smart_test_bp_rf_print_switch: bp_rf_print, opt = 0
log~ SUB[shell][tolvek_extend_nvefs.cpp:*] tolvek_efs_delete: function entry ------------->
log~ SUB[shell][tolvek_extend_nvefs.cpp:*] tolvek_efs_delete: tolvek_efs_delete, sub_id 0, path_len: 41
log~ SUB[shell][tolvek_extend_nvefs.cpp:*] tolvek_efs_delete: path_value: /nv/item_files/modem/tolvek/rf_print_mask
log~ SUB[shell][tolvek_extend_cmn.cpp:*] tolvek_qmi_result_map: tolvek_qmi_result_map, old_result 0, new_result 0
log~ SUB[shell][tolvek_extend_nvefs.cpp:*] tolvek_efs_delete: result = 0, rsp.result = 0
log~ SUB[shell][tolvek_extend_nvefs.cpp:*] tolvek_efs_delete: function exit <-------------
log~ SUB[shell][tolvek_extend_cmn.cpp:*] tolvek_send_common_qmi_msg: function entry ------------->
log~ SUB[shell][tolvek_extend_cmn.cpp:*] tolvek_send_common_qmi_msg: t 35
log~ SUB[shell][tolvek_extend_cmn.cpp:*] tolvek_send_common_qmi_msg: l 0
log~ SUB[shell][tolvek_extend_cmn.cpp:*] tolvek_send_common_qmi_msg: function exit <-------------
log~ SUB[shell][tolvek_smart_test.cpp:*] tolvek_smart_test_modem_ssr: Will trigger SSR of modem, the current state: ALL_ENABLE
log~ SUB[shell][tolvek_extend_cmn.cpp:*] tolvek_send_common_qmi_msg: function entry ------------->
log~ SUB[shell][tolvek_extend_cmn.cpp:*] tolvek_send_common_qmi_msg: t 31
log~ SUB[shell][tolvek_extend_cmn.cpp:*] tolvek_send_common_qmi_msg: l 4
log~ SUB[shell][tolvek_extend_cmn.cpp:*] tolvek_send_common_qmi_msg: function exit <-------------
log~ SUB[shell][tolvek_smart_test_switch.cpp:*] tolvek_smart_test_bp_rf_print_switch: success, pls wait 10 seconds 
> efs get /nv/item_files/modem/tolvek/rf_print_mask
| error -2
! wait-up 5
> counter get ext.restart.up
| 5
$ rlk 11 6 1
| RIL[tolvek_smart_test_bp_rf_print_switch:52]: bp_rf_print, opt = 1
|
| RIL[tolvek_efs_write:361]: function entry ------------->
| RIL[tolvek_efs_write:365]: tolvek_efs_write, sub_id 0, path_len: 41, buf_len: 4
| RIL[tolvek_efs_write:53]: path_value: /nv/item_files/modem/tolvek/rf_print_mask
| RIL[tolvek_efs_write:100]: left_num(4)
| RIL[tolvek_efs_write:102]: send_num(4)
| TOLVEK_QMI_NV: qmi_client_get_service_list() returned 0 num_services = 1
| TOLVEK_QMI_NV: qmi_client_get_service_list() returned 0 num_entries = 1 num_services = 1
| QMI client inited
| tolvek_extend_qmi_send_sync resp_len:20
| tolvek_extend_qmi_handle_req_cb result:0
| RIL[tolvek_qmi_result_map:219]: tolvek_qmi_result_map, old_result 0, new_result 0
| RIL[tolvek_efs_write:110]: result = 0, rsp.result[>=0 is instance id] = 0
| RIL[tolvek_efs_write:121]: data_len_all = 4, data_len_send = 4, data_len_recv = 4, send_count = 1, data_len_cur = 0
| RIL[tolvek_efs_write:369]: function exit <-------------
| Will trigger NV SYNC
| RIL[tolvek_send_common_qmi_msg:171]: function entry ------------->
| RIL[tolvek_send_common_qmi_msg:180]: t 35
| RIL[tolvek_send_common_qmi_msg:181]: l 0
| tolvek_extend_qmi_send_sync resp_len:16
| tolvek_extend_qmi_handle_req_cb result:0
| RIL[tolvek_send_common_qmi_msg:200]: function exit <-------------
| RIL[tolvek_smart_test_modem_ssr:97]: Will trigger SSR of modem, the current state: ALL_ENABLE
|
| RIL[tolvek_send_common_qmi_msg:171]: function entry ------------->
| RIL[tolvek_send_common_qmi_msg:180]: t 31
| RIL[tolvek_send_common_qmi_msg:181]: l 4
| tolvek_extend_qmi_send_sync resp_len:16
| tolvek_extend_qmi_handle_req_cb result:0
| RIL[tolvek_send_common_qmi_msg:200]: function exit <-------------
| RIL[tolvek_smart_test_bp_rf_print_switch:71]: success, pls wait 10 seconds 
log~ SUB[shell][tolvek_smart_test_switch.cpp:*] tolvek_smart_test_bp_rf_print_switch: bp_rf_print, opt = 1
log~ SUB[shell][tolvek_extend_nvefs.cpp:*] tolvek_efs_write: function entry ------------->
log~ SUB[shell][tolvek_extend_nvefs.cpp:*] tolvek_efs_write: tolvek_efs_write, sub_id 0, path_len: 41, buf_len: 4
log~ SUB[shell][tolvek_extend_nvefs.cpp:*] tolvek_efs_write: path_value: /nv/item_files/modem/tolvek/rf_print_mask
log~ SUB[shell][tolvek_extend_nvefs.cpp:*] tolvek_efs_write: left_num(4)
log~ SUB[shell][tolvek_extend_nvefs.cpp:*] tolvek_efs_write: send_num(4)
log~ SUB[shell][tolvek_extend_cmn.cpp:*] tolvek_qmi_result_map: tolvek_qmi_result_map, old_result 0, new_result 0
log~ SUB[shell][tolvek_extend_nvefs.cpp:*] tolvek_efs_write: result = 0, rsp.result[>=0 is instance id] = 0
log~ SUB[shell][tolvek_extend_nvefs.cpp:*] tolvek_efs_write: data_len_all = 4, data_len_send = 4, data_len_recv = 4, send_count = 1, data_len_cur = 0
log~ SUB[shell][tolvek_extend_nvefs.cpp:*] tolvek_efs_write: function exit <-------------
log~ SUB[shell][tolvek_extend_cmn.cpp:*] tolvek_send_common_qmi_msg: function entry ------------->
log~ SUB[shell][tolvek_extend_cmn.cpp:*] tolvek_send_common_qmi_msg: t 35
log~ SUB[shell][tolvek_extend_cmn.cpp:*] tolvek_send_common_qmi_msg: l 0
log~ SUB[shell][tolvek_extend_cmn.cpp:*] tolvek_send_common_qmi_msg: function exit <-------------
log~ SUB[shell][tolvek_smart_test.cpp:*] tolvek_smart_test_modem_ssr: Will trigger SSR of modem, the current state: ALL_ENABLE
log~ SUB[shell][tolvek_extend_cmn.cpp:*] tolvek_send_common_qmi_msg: function entry ------------->
log~ SUB[shell][tolvek_extend_cmn.cpp:*] tolvek_send_common_qmi_msg: t 31
log~ SUB[shell][tolvek_extend_cmn.cpp:*] tolvek_send_common_qmi_msg: l 4
log~ SUB[shell][tolvek_extend_cmn.cpp:*] tolvek_send_common_qmi_msg: function exit <-------------
log~ SUB[shell][tolvek_smart_test_switch.cpp:*] tolvek_smart_test_bp_rf_print_switch: success, pls wait 10 seconds 
> efs get /nv/item_files/modem/tolvek/rf_print_mask
| 0f000000
! wait-up 6
> counter get ext.restart.up
| 6
> counter get ext.nv_sync
| 6
> efs rm /orvex/orvex_print_mask
$ rlk 11 4 0
| RIL[tolvek_smart_test_bp_orvex_print_switch:52]: bp_orvex_print, opt = 0
|
| RIL[tolvek_efs_delete:388]: function entry ------------->
| RIL[tolvek_efs_delete:392]: tolvek_efs_delete, sub_id 0, path_len: 23
| RIL[tolvek_efs_delete:53]: path_value: /orvex/orvex_print_mask
| TOLVEK_QMI_NV: qmi_client_get_service_list() returned 0 num_services = 1
| TOLVEK_QMI_NV: qmi_client_get_service_list() returned 0 num_entries = 1 num_services = 1
| QMI client inited
| tolvek_extend_qmi_send_sync resp_len:20
| tolvek_extend_qmi_handle_req_cb result:0
| RIL[tolvek_qmi_result_map:219]: tolvek_qmi_result_map, old_result 0, new_result 0
| RIL[tolvek_efs_delete:246]: result = 0, rsp.result = -2
| RIL[tolvek_efs_delete:252]: qmi response fail
| RIL[tolvek_efs_delete:395]: function exit <-------------
| RIL[tolvek_smart_test_bp_orvex_print_switch:65]: tolvek_efs_delete failed
log~ SUB[shell][tolvek_smart_test_switch.cpp:*] tolvek_smart_test_bp_orvex_print_switch: bp_orvex_print, opt = 0
log~ SUB[shell][tolvek_extend_nvefs.cpp:*] tolvek_efs_delete: function entry ------------->
log~ SUB[shell][tolvek_extend_nvefs.cpp:*] tolvek_efs_delete: tolvek_efs_delete, sub_id 0, path_len: 23
log~ SUB[shell][tolvek_extend_nvefs.cpp:*] tolvek_efs_delete: path_value: /orvex/orvex_print_mask
log~ SUB[shell][tolvek_extend_cmn.cpp:*] tolvek_qmi_result_map: tolvek_qmi_result_map, old_result 0, new_result 0
log~ SUB[shell][tolvek_extend_nvefs.cpp:*] tolvek_efs_delete: result = 0, rsp.result = -2
log~ SUB[shell][tolvek_extend_nvefs.cpp:*] tolvek_efs_delete: qmi response fail
log~ SUB[shell][tolvek_extend_nvefs.cpp:*] tolvek_efs_delete: function exit <-------------
log~ SUB[shell][tolvek_smart_test_switch.cpp:*] tolvek_smart_test_bp_orvex_print_switch: tolvek_efs_delete failed
> counter get ext.nv_sync
| 6
> counter get ext.ssr
| 6
