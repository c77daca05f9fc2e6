# `rlk 7 2 <mask>` against a fresh modem: the blocks a mask selects, each
# ending at its true place, the cursor that moves only over printed blocks,
# the status verdicts, the two failure lines and the missing mask.

# Mask 1: the main block, 8 bytes of head and 137 of counters.
> counter set stats.main.cmd_ok_count 7
$ rlk 7 2 1
| Get the debug info of modem_stats, mask = 0x1
| RIL[tolvek_common_qmi_req:136]: function entry ------------->
| TOLVEK_QMI_NV: qmi_client_get_service_list() returned 0 num_services = 1
| TOLVEK_QMI_NV: qmi_client_get_service_list() returned 0 num_entries = 1 num_services = 1
| QMI client inited
| tolvek_extend_qmi_send_sync resp_len:145
| tolvek_extend_qmi_handle_req_cb result:0
| RIL[tolvek_common_qmi_req:142]: function exit <-------------
| UNPK[size:1], version = 1
| -------- stats main info start --------
| UNPK[size:1], g_modem_stats_feature_enable_status = 1
| UNPK[size:8], g_pk_version_not_support_num = 0
| UNPK[size:8], g_modem_stats_cmd_ok_count = 7
| UNPK[size:8], g_modem_stats_cmd_fail_count = 0
| -------- stats main info end, cnt(26) --------
$ rlk 7 2 3
| Get the debug info of modem_stats, mask = 0x3
| RIL[tolvek_common_qmi_req:136]: function entry ------------->
| TOLVEK_QMI_NV: qmi_client_get_service_list() returned 0 num_services = 1
| TOLVEK_QMI_NV: qmi_client_get_service_list() returned 0 num_entries = 1 num_services = 1
| QMI client inited
| tolvek_extend_qmi_send_sync resp_len:145
| tolvek_extend_qmi_handle_req_cb result:0
| RIL[tolvek_common_qmi_req:142]: function exit <-------------
| UNPK[size:1], version = 1
| -------- stats main info start --------
| UNPK[size:1], g_modem_stats_feature_enable_status = 1
| UNPK[size:8], g_pk_version_not_support_num = 0
| UNPK[size:8], g_modem_stats_cmd_ok_count = 8
| UNPK[size:8], g_modem_stats_cmd_fail_count = 0
| -------- stats main info end, cnt(26) --------
| -------- stats diag info start --------
| UNPK[size:1], init_state = 1
| UNPK[size:4], listener_event_num = 16
| UNPK[size:1], listener_event_state = 1
| UNPK[size:4], listener_event_call_num = 0
| UNPK[size:4], listener_event_parse_num = 0
| UNPK[size:4], listener_log_num = 34
| UNPK[size:1], listener_log_state = 1
| UNPK[size:8], listener_log_call_num = 0
| UNPK[size:8], listener_log_parse_num = 0
| UNPK[size:4], poll_update_call_num = 0
| UNPK[size:4], poll_update_parse_num = 0
| -------- stats diag info end, cnt(69) --------
$ rlk 7 2 15
| Get the debug info of modem_stats, mask = 0xf
| RIL[tolvek_common_qmi_req:136]: function entry ------------->
| TOLVEK_QMI_NV: qmi_client_get_service_list() returned 0 num_services = 1
| TOLVEK_QMI_NV: qmi_client_get_service_list() returned 0 num_entries = 1 num_services = 1
| QMI client inited
| tolvek_extend_qmi_send_sync resp_len:145
| tolvek_extend_qmi_handle_req_cb result:0
| RIL[tolvek_common_qmi_req:142]: function exit <-------------
| UNPK[size:1], version = 1
| -------- stats main info start --------
| UNPK[size:1], g_modem_stats_feature_enable_status = 1
| UNPK[size:8], g_pk_version_not_support_num = 0
| UNPK[size:8], g_modem_stats_cmd_ok_count = 9
| UNPK[size:8], g_modem_stats_cmd_fail_count = 0
| -------- stats main info end, cnt(26) --------
| -------- stats diag info start --------
| UNPK[size:1], init_state = 1
| UNPK[size:4], listener_event_num = 16
| UNPK[size:1], listener_event_state = 1
| UNPK[size:4], listener_event_call_num = 0
| UNPK[size:4], listener_event_parse_num = 0
| UNPK[size:4], listener_log_num = 34
| UNPK[size:1], listener_log_state = 1
| UNPK[size:8], listener_log_call_num = 0
| UNPK[size:8], listener_log_parse_num = 0
| UNPK[size:4], poll_update_call_num = 0
| UNPK[size:4], poll_update_parse_num = 0
| -------- stats diag info end, cnt(69) --------
| -------- stats cm info start --------
| UNPK[size:1], init_state = 1
| UNPK[size:1], listener_state = 1
| UNPK[size:4], listener_call_event_call_num = 0
| UNPK[size:4], listener_call_event_parse_num = 0
| UNPK[size:4], listener_subs_event_call_num = 0
| UNPK[size:4], listener_subs_event_parse_num = 0
| UNPK[size:4], listener_ss_event_call_num = 0
| UNPK[size:4], listener_ss_event_parse_num = 0
| UNPK[size:4], listener_stats_event_call_num = 0
| UNPK[size:4], listener_stats_event_parse_num = 0
| UNPK[size:4], poll_update_rf_call_num = 0
| UNPK[size:4], poll_update_rf_parse_num = 0
| UNPK[size:4], poll_update_lte_call_num = 0
| UNPK[size:4], poll_update_lte_parse_num = 0
| UNPK[size:4], poll_update_nr5g_call_num = 0
| UNPK[size:4], poll_update_nr5g_parse_num = 0
| -------- stats cm info end, cnt(127) --------
| -------- stats uim info start --------
| UNPK[size:1], init_state = 1
| UNPK[size:1], listener_state = 1
| UNPK[size:4], listener_event_call_num = 0
| UNPK[size:4], listener_event_parse_num = 0
| -------- stats uim info end, cnt(137) --------
$ rlk 7 2 255
| Get the debug info of modem_stats, mask = 0xff
| RIL[tolvek_common_qmi_req:136]: function entry ------------->
| TOLVEK_QMI_NV: qmi_client_get_service_list() returned 0 num_services = 1
| TOLVEK_QMI_NV: qmi_client_get_service_list() returned 0 num_entries = 1 num_services = 1
| QMI client inited
| tolvek_extend_qmi_send_sync resp_len:145
| tolvek_extend_qmi_handle_req_cb result:0
| RIL[tolvek_common_qmi_req:142]: function exit <-------------
| UNPK[size:1], version = 1
| -------- stats main info start --------
| UNPK[size:1], g_modem_stats_feature_enable_status = 1
| UNPK[size:8], g_pk_version_not_support_num = 0
| UNPK[size:8], g_modem_stats_cmd_ok_count = 10
| UNPK[size:8], g_modem_stats_cmd_fail_count = 0
| -------- stats main info end, cnt(26) --------
| -------- stats diag info start --------
| UNPK[size:1], init_state = 1
| UNPK[size:4], listener_event_num = 16
| UNPK[size:1], listener_event_state = 1
| UNPK[size:4], listener_event_call_num = 0
| UNPK[size:4], listener_event_parse_num = 0
| UNPK[size:4], listener_log_num = 34
| UNPK[size:1], listener_log_state = 1
| UNPK[size:8], listener_log_call_num = 0
| UNPK[size:8], listener_log_parse_num = 0
| UNPK[size:4], poll_update_call_num = 0
| UNPK[size:4], poll_update_parse_num = 0
| -------- stats diag info end, cnt(69) --------
| -------- stats cm info start --------
| UNPK[size:1], init_state = 1
| UNPK[size:1], listener_state = 1
| UNPK[size:4], listener_call_event_call_num = 0
| UNPK[size:4], listener_call_event_parse_num = 0
| UNPK[size:4], listener_subs_event_call_num = 0
| UNPK[size:4], listener_subs_event_parse_num = 0
| UNPK[size:4], listener_ss_event_call_num = 0
| UNPK[size:4], listener_ss_event_parse_num = 0
| UNPK[size:4], listener_stats_event_call_num = 0
| UNPK[size:4], listener_stats_event_parse_num = 0
| UNPK[size:4], poll_update_rf_call_num = 0
| UNPK[size:4], poll_update_rf_parse_num = 0
| UNPK[size:4], poll_update_lte_call_num = 0
| UNPK[size:4], poll_update_lte_parse_num = 0
| UNPK[size:4], poll_update_nr5g_call_num = 0
| UNPK[size:4], poll_update_nr5g_parse_num = 0
| -------- stats cm info end, cnt(127) --------
| -------- stats uim info start --------
| UNPK[size:1], init_state = 1
| UNPK[size:1], listener_state = 1
| UNPK[size:4], listener_event_call_num = 0
| UNPK[size:4], listener_event_parse_num = 0
| -------- stats uim info end, cnt(137) --------
# Mask 4 prints the call-manager block from where the main block stands:
# its first field is the feature status byte (1), its second the low byte
# of the not-supported count.
> counter set stats.main.version_not_support_num 3
$ rlk 7 2 4
| Get the debug info of modem_stats, mask = 0x4
| RIL[tolvek_common_qmi_req:136]: function entry ------------->
| TOLVEK_QMI_NV: qmi_client_get_service_list() returned 0 num_services = 1
| TOLVEK_QMI_NV: qmi_client_get_service_list() returned 0 num_entries = 1 num_services = 1
| QMI client inited
| tolvek_extend_qmi_send_sync resp_len:145
| tolvek_extend_qmi_handle_req_cb result:0
| RIL[tolvek_common_qmi_req:142]: function exit <-------------
| UNPK[size:1], version = 1
| -------- stats cm info start --------
| UNPK[size:1], init_state = 1
| UNPK[size:1], listener_state = 3
| UNPK[size:4], listener_call_event_call_num = 0
| UNPK[size:4], listener_call_event_parse_num = 184549376
| UNPK[size:4], listener_subs_event_call_num = 0
| UNPK[size:4], listener_subs_event_parse_num = 0
| UNPK[size:4], listener_ss_event_call_num = 0
| UNPK[size:4], listener_ss_event_parse_num = 16777216
| UNPK[size:4], listener_stats_event_call_num = 16
| UNPK[size:4], listener_stats_event_parse_num = 1
| UNPK[size:4], poll_update_rf_call_num = 0
| UNPK[size:4], poll_update_rf_parse_num = 8704
| UNPK[size:4], poll_update_lte_call_num = 256
| UNPK[size:4], poll_update_lte_parse_num = 0
| UNPK[size:4], poll_update_nr5g_call_num = 0
| UNPK[size:4], poll_update_nr5g_parse_num = 0
| -------- stats cm info end, cnt(59) --------

# Mask 0: the status check and its verdicts; the ok count grows as the
# framework serves commands.
> counter set stats.main.version_not_support_num 0
> counter set stats.main.cmd_ok_count 0
$ rlk 7 2 0
| Get the debug info of modem_stats, mask = 0x0
| RIL[tolvek_common_qmi_req:136]: function entry ------------->
| TOLVEK_QMI_NV: qmi_client_get_service_list() returned 0 num_services = 1
| TOLVEK_QMI_NV: qmi_client_get_service_list() returned 0 num_entries = 1 num_services = 1
| QMI client inited
| tolvek_extend_qmi_send_sync resp_len:145
| tolvek_extend_qmi_handle_req_cb result:0
| RIL[tolvek_common_qmi_req:142]: function exit <-------------
| UNPK[size:1], version = 1
| UNPK[size:1], modem_stats_feature_enable_status = 1
| UNPK[size:8], version_not_support_num = 0
| UNPK[size:8], modem_stats_cmd_ok_count = 0
| UNPK[size:8], modem_stats_cmd_fail_count = 0
| ===========================================
| ================ SUCCES ===================
$ rlk 7 2 0
| Get the debug info of modem_stats, mask = 0x0
| RIL[tolvek_common_qmi_req:136]: function entry ------------->
| TOLVEK_QMI_NV: qmi_client_get_service_list() returned 0 num_services = 1
| TOLVEK_QMI_NV: qmi_client_get_service_list() returned 0 num_entries = 1 num_services = 1
| QMI client inited
| tolvek_extend_qmi_send_sync resp_len:145
| tolvek_extend_qmi_handle_req_cb result:0
| RIL[tolvek_common_qmi_req:142]: function exit <-------------
| UNPK[size:1], version = 1
| UNPK[size:1], modem_stats_feature_enable_status = 1
| UNPK[size:8], version_not_support_num = 0
| UNPK[size:8], modem_stats_cmd_ok_count = 1
| UNPK[size:8], modem_stats_cmd_fail_count = 0
| ===========================================
| ================ SUCCES ===================
> counter set stats.main.version_not_support_num 2
$ rlk 7 2 0
| Get the debug info of modem_stats, mask = 0x0
| RIL[tolvek_common_qmi_req:136]: function entry ------------->
| TOLVEK_QMI_NV: qmi_client_get_service_list() returned 0 num_services = 1
| TOLVEK_QMI_NV: qmi_client_get_service_list() returned 0 num_entries = 1 num_services = 1
| QMI client inited
| tolvek_extend_qmi_send_sync resp_len:145
| tolvek_extend_qmi_handle_req_cb result:0
| RIL[tolvek_common_qmi_req:142]: function exit <-------------
| UNPK[size:1], version = 1
| UNPK[size:1], modem_stats_feature_enable_status = 1
| UNPK[size:8], version_not_support_num = 2
| UNPK[size:8], modem_stats_cmd_ok_count = 2
| UNPK[size:8], modem_stats_cmd_fail_count = 0
| ===========================================
| ================= FAIL ====================
> counter set stats.main.version_not_support_num 0
> counter set stats.main.feature_enable_status 0
$ rlk 7 2 0
| Get the debug info of modem_stats, mask = 0x0
| RIL[tolvek_common_qmi_req:136]: function entry ------------->
| TOLVEK_QMI_NV: qmi_client_get_service_list() returned 0 num_services = 1
| TOLVEK_QMI_NV: qmi_client_get_service_list() returned 0 num_entries = 1 num_services = 1
| QMI client inited
| tolvek_extend_qmi_send_sync resp_len:145
| tolvek_extend_qmi_handle_req_cb result:0
| RIL[tolvek_common_qmi_req:142]: function exit <-------------
| UNPK[size:1], version = 1
| UNPK[size:1], modem_stats_feature_enable_status = 0
| UNPK[size:8], version_not_support_num = 0
| UNPK[size:8], modem_stats_cmd_ok_count = 3
| UNPK[size:8], modem_stats_cmd_fail_count = 0
| ===========================================
| ================= FAIL ====================

# Failed requests end after their line: the service answers with a
# non-zero result (the send fails), or the modem's own result word is
# non-zero.
> error ext 2 5 1
$ rlk 7 2 255
| Get the debug info of modem_stats, mask = 0xff
| RIL[tolvek_common_qmi_req:136]: function entry ------------->
| TOLVEK_QMI_NV: qmi_client_get_service_list() returned 0 num_services = 1
| TOLVEK_QMI_NV: qmi_client_get_service_list() returned 0 num_entries = 1 num_services = 1
| QMI client inited
| 5 QMI service framework error. Check client
| tolvek_extend_qmi_handle_req_cb result:-3
| RIL[tolvek_common_qmi_req:142]: function exit <-------------
| tolvek_common_qmi_req fail, REQUEST_ID_COMMON, result = -3, rsp.result = 0
> respond ext 2 01040000000000020400080000001000021400000009000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000 1
$ rlk 7 2 1
| Get the debug info of modem_stats, mask = 0x1
| RIL[tolvek_common_qmi_req:136]: function entry ------------->
| TOLVEK_QMI_NV: qmi_client_get_service_list() returned 0 num_services = 1
| TOLVEK_QMI_NV: qmi_client_get_service_list() returned 0 num_entries = 1 num_services = 1
| QMI client inited
| tolvek_extend_qmi_send_sync resp_len:8
| tolvek_extend_qmi_handle_req_cb result:0
| RIL[tolvek_common_qmi_req:142]: function exit <-------------
| qmi response fail, result = 9, rsp.result = 9
$ rlk 7 2
|
| note: Too few parameters, Pls refer to the following cmd:
| tolvek_test_modem_stats_get_debug_info FAIL
|
| =========== blew: radio_lab_kit(rlk) cmd help =======================================================
| 7: tolvek modem stats test
|    rlk 7 type(0/1) id            /* type: 0 - log; 1 - event; */
|                                     id: id of log or event 
|    rlk 7 2 mask                  /* get the debug info of modem stats */
|                                     mask: 0 - check, 1 - main; 2 - diag; 4 - cm; 8 - uim, 255 - all 
| =========== above: radio_lab_kit(rlk) cmd help =======================================================
|
