# Failures of options 3, 4 and 6 found before any request reaches the
# modem, each with its system-log line where it has one; the group help
# follows each.
# Refused before anything is sent: the request count stays.
> counter get ext.requests
| 0
$ rlk 4 1 0 7233
| RIL[tolvek_nv_read:401]: function entry ------------->
| RIL[tolvek_nv_read:405]: tolvek_nv_read, sub_id 0, nv_id: 7233
| RIL[tolvek_nv_read:286]: nv_id is out range(7232)
| RIL[tolvek_nv_read:408]: function exit <-------------
| tolvek_extend_qmi_send_sync fail, REQUEST_ID_EFS
|
| note: Error happen! error_code(-109)
|
| =========== blew: radio_lab_kit(rlk) cmd help =======================================================
| 4: nvefs option cmd: 
|    rlk 4 1 sub nv_id             /* nv read */
|    rlk 4 2 sub nv_id nv_data     /* nv write */
|    rlk 4 3 sub nv_id             /* nv delete */
|    rlk 4 4 sub efs_path          /* efs read */
|    rlk 4 5 sub efs_path efs_data /* efs write */
|    rlk 4 6 sub efs_path          /* efs delete */
| =========== above: radio_lab_kit(rlk) cmd help =======================================================
|
log~ *] tolvek_nv_read: nv_id is out range(7232)
$ rlk 4 1 0 -1
| RIL[tolvek_nv_read:401]: function entry ------------->
| RIL[tolvek_nv_read:405]: tolvek_nv_read, sub_id 0, nv_id: -1
| RIL[tolvek_nv_read:286]: nv_id is out range(7232)
| RIL[tolvek_nv_read:408]: function exit <-------------
| tolvek_extend_qmi_send_sync fail, REQUEST_ID_EFS
|
| note: Error happen! error_code(-109)
|
| =========== blew: radio_lab_kit(rlk) cmd help =======================================================
| 4: nvefs option cmd: 
|    rlk 4 1 sub nv_id             /* nv read */
|    rlk 4 2 sub nv_id nv_data     /* nv write */
|    rlk 4 3 sub nv_id             /* nv delete */
|    rlk 4 4 sub efs_path          /* efs read */
|    rlk 4 5 sub efs_path efs_data /* efs write */
|    rlk 4 6 sub efs_path          /* efs delete */
| =========== above: radio_lab_kit(rlk) cmd help =======================================================
|
log~ *] tolvek_nv_read: nv_id is out range(7232)
$ rlk 4 3 0 9000
| RIL[tolvek_nv_delete:427]: function entry ------------->
| RIL[tolvek_nv_delete:431]: tolvek_nv_delete, sub_id 0, nv_id: 9000
| RIL[tolvek_nv_delete:286]: nv_id is out range(7232)
| RIL[tolvek_nv_delete:434]: function exit <-------------
| tolvek_extend_qmi_send_sync fail, REQUEST_ID_EFS
|
| note: Error happen! error_code(-109)
|
| =========== blew: radio_lab_kit(rlk) cmd help =======================================================
| 4: nvefs option cmd: 
|    rlk 4 1 sub nv_id             /* nv read */
|    rlk 4 2 sub nv_id nv_data     /* nv write */
|    rlk 4 3 sub nv_id             /* nv delete */
|    rlk 4 4 sub efs_path          /* efs read */
|    rlk 4 5 sub efs_path efs_data /* efs write */
|    rlk 4 6 sub efs_path          /* efs delete */
| =========== above: radio_lab_kit(rlk) cmd help =======================================================
|
log~ *] tolvek_nv_delete: nv_id is out range(7232)
$ rlk 4 2 0 7233 1
| RIL[tolvek_nv_write_ex:414]: function entry ------------->
| RIL[tolvek_nv_write_ex:418]: tolvek_nv_write, sub_id 0, nv_id: 7233, buf_len: 1
| RIL[tolvek_nv_write_ex:286]: nv_id is out range(7232)
| RIL[tolvek_nv_write_ex:421]: function exit <-------------
| tolvek_extend_qmi_send_sync fail, REQUEST_ID_EFS
|
| note: Error happen! error_code(-109)
|
| =========== blew: radio_lab_kit(rlk) cmd help =======================================================
| 4: nvefs option cmd: 
|    rlk 4 1 sub nv_id             /* nv read */
|    rlk 4 2 sub nv_id nv_data     /* nv write */
|    rlk 4 3 sub nv_id             /* nv delete */
|    rlk 4 4 sub efs_path          /* efs read */
|    rlk 4 5 sub efs_path efs_data /* efs write */
|    rlk 4 6 sub efs_path          /* efs delete */
| =========== above: radio_lab_kit(rlk) cmd help =======================================================
|
log~ *] tolvek_nv_write_ex: nv_id is out range(7232)
$ rlk 4 2 0 10 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1
| RIL[tolvek_nv_write_ex:414]: function entry ------------->
| RIL[tolvek_nv_write_ex:418]: tolvek_nv_write, sub_id 0, nv_id: 10, buf_len: 425
| RIL[tolvek_nv_write_ex:328]: buf_len is invalid
| RIL[tolvek_nv_write_ex:421]: function exit <-------------
| tolvek_extend_qmi_send_sync fail, REQUEST_ID_EFS
|
| note: Error happen! error_code(-108)
|
| =========== blew: radio_lab_kit(rlk) cmd help =======================================================
| 4: nvefs option cmd: 
|    rlk 4 1 sub nv_id             /* nv read */
|    rlk 4 2 sub nv_id nv_data     /* nv write */
|    rlk 4 3 sub nv_id             /* nv delete */
|    rlk 4 4 sub efs_path          /* efs read */
|    rlk 4 5 sub efs_path efs_data /* efs write */
|    rlk 4 6 sub efs_path          /* efs delete */
| =========== above: radio_lab_kit(rlk) cmd help =======================================================
|
log~ *] tolvek_nv_write_ex: buf_len is invalid
$ rlk 4 5 0 /pppppppppppppppppppppppppppppppppppppppppppppppppppppppppppppppppppppp 1
| RIL[tolvek_efs_write:361]: function entry ------------->
| RIL[tolvek_efs_write:365]: tolvek_efs_write, sub_id 0, path_len: 71, buf_len: 1
| RIL[tolvek_efs_write:38]: len invalid
| RIL[tolvek_efs_write:369]: function exit <-------------
| tolvek_extend_qmi_send_sync fail, REQUEST_ID_EFS
|
| note: Error happen! error_code(-106)
|
| =========== blew: radio_lab_kit(rlk) cmd help =======================================================
| 4: nvefs option cmd: 
|    rlk 4 1 sub nv_id             /* nv read */
|    rlk 4 2 sub nv_id nv_data     /* nv write */
|    rlk 4 3 sub nv_id             /* nv delete */
|    rlk 4 4 sub efs_path          /* efs read */
|    rlk 4 5 sub efs_path efs_data /* efs write */
|    rlk 4 6 sub efs_path          /* efs delete */
| =========== above: radio_lab_kit(rlk) cmd help =======================================================
|
log~ *] tolvek_efs_write: len invalid
$ rlk 4 6 0 /pppppppppppppppppppppppppppppppppppppppppppppppppppppppppppppppppppppp
| RIL[tolvek_efs_delete:388]: function entry ------------->
| RIL[tolvek_efs_delete:392]: tolvek_efs_delete, sub_id 0, path_len: 71
| RIL[tolvek_efs_delete:38]: len invalid
| RIL[tolvek_efs_delete:395]: function exit <-------------
| tolvek_extend_qmi_send_sync fail, REQUEST_ID_EFS
|
| note: Error happen! error_code(-106)
|
| =========== blew: radio_lab_kit(rlk) cmd help =======================================================
| 4: nvefs option cmd: 
|    rlk 4 1 sub nv_id             /* nv read */
|    rlk 4 2 sub nv_id nv_data     /* nv write */
|    rlk 4 3 sub nv_id             /* nv delete */
|    rlk 4 4 sub efs_path          /* efs read */
|    rlk 4 5 sub efs_path efs_data /* efs write */
|    rlk 4 6 sub efs_path          /* efs delete */
| =========== above: radio_lab_kit(rlk) cmd help =======================================================
|
log~ *] tolvek_efs_delete: len invalid
$ rlk 4 2 0 10
|
| note: Too few inputs, Pls refer to the following cmd:
|
| note: Error happen! error_code(268431370)
|
| =========== blew: radio_lab_kit(rlk) cmd help =======================================================
| 4: nvefs option cmd: 
|    rlk 4 1 sub nv_id             /* nv read */
|    rlk 4 2 sub nv_id nv_data     /* nv write */
|    rlk 4 3 sub nv_id             /* nv delete */
|    rlk 4 4 sub efs_path          /* efs read */
|    rlk 4 5 sub efs_path efs_data /* efs write */
|    rlk 4 6 sub efs_path          /* efs delete */
| =========== above: radio_lab_kit(rlk) cmd help =======================================================
|
$ rlk 4 1 0
|
| note: need 5 inputs, Pls refer to the following cmd:
|
| note: Error happen! error_code(268431370)
|
| =========== blew: radio_lab_kit(rlk) cmd help =======================================================
| 4: nvefs option cmd: 
|    rlk 4 1 sub nv_id             /* nv read */
|    rlk 4 2 sub nv_id nv_data     /* nv write */
|    rlk 4 3 sub nv_id             /* nv delete */
|    rlk 4 4 sub efs_path          /* efs read */
|    rlk 4 5 sub efs_path efs_data /* efs write */
|    rlk 4 6 sub efs_path          /* efs delete */
| =========== above: radio_lab_kit(rlk) cmd help =======================================================
|
$ rlk 4 4 0 '/a b'
| RIL[tolvek_efs_read:375]: function entry ------------->
| RIL[tolvek_efs_read:379]: tolvek_efs_read, sub_id 0, path_len: 4
| RIL[tolvek_efs_read:151]: buf_len: 365
| RIL[tolvek_efs_read:53]: path_value: /a b
| TOLVEK_QMI_NV: qmi_client_get_service_list() returned 0 num_services = 1
| TOLVEK_QMI_NV: qmi_client_get_service_list() returned 0 num_entries = 1 num_services = 1
| QMI client inited
| tolvek_extend_qmi_send_sync resp_len:20
| tolvek_extend_qmi_handle_req_cb result:0
| RIL[tolvek_qmi_result_map:219]: tolvek_qmi_result_map, old_result 0, new_result 0
| RIL[tolvek_efs_read:204]: result = 0, rsp.result = -2
| RIL[tolvek_efs_read:210]: qmi response fail
| RIL[tolvek_efs_read:382]: function exit <-------------
| tolvek_extend_qmi_send_sync fail, REQUEST_ID_EFS
|
| note: Error happen! error_code(-2)
|
| =========== blew: radio_lab_kit(rlk) cmd help =======================================================
| 4: nvefs option cmd: 
|    rlk 4 1 sub nv_id             /* nv read */
|    rlk 4 2 sub nv_id nv_data     /* nv write */
|    rlk 4 3 sub nv_id             /* nv delete */
|    rlk 4 4 sub efs_path          /* efs read */
|    rlk 4 5 sub efs_path efs_data /* efs write */
|    rlk 4 6 sub efs_path          /* efs delete */
| =========== above: radio_lab_kit(rlk) cmd help =======================================================
|
$ rlk 4 7
|
| note: the second parameters is invalid, Pls refer to the following cmd:
|
| =========== blew: radio_lab_kit(rlk) cmd help =======================================================
| 4: nvefs option cmd: 
|    rlk 4 1 sub nv_id             /* nv read */
|    rlk 4 2 sub nv_id nv_data     /* nv write */
|    rlk 4 3 sub nv_id             /* nv delete */
|    rlk 4 4 sub efs_path          /* efs read */
|    rlk 4 5 sub efs_path efs_data /* efs write */
|    rlk 4 6 sub efs_path          /* efs delete */
| =========== above: radio_lab_kit(rlk) cmd help =======================================================
|
$ rlk 3 3 1 4
| tolvek_rf_tx_test_set, argc(5)
|
| note: need 5 inputs, Pls refer to the following cmd:
|
| note: Error happen! error_code(268431370)
|
| =========== blew: radio_lab_kit(rlk) cmd help =======================================================
| 3: rf option cmd
|    rlk 3 0 ...   /* gpio value setting(pls input enough gpio value by notice)*/
|                     (need to reboot duing first setting) 
|    rlk 3 1       /* get gpio test state */
|    rlk 3 2       /* Close gpio test(need to reboot) */
|    rlk 3 3 v_ant v_sys v_band_list
|                  /* fix tx to upper(lower) antenna for given band list */
|                     (need to reboot) 
|                     v_ant: 0 - lower antenna, 1 - upper antenna 
|                     v_sys: 0 - gsm, 1 - wcdma, 2 - cdma, 3 - tds, 4 - lte 
|                     v_band_list: bit0~bi43 - (gsm: 850,900,1800,1900; wcdma: b1,b2,b4,b5,b8; 
|                                             cdma: bc0, tds: b34,b39; lte: b1...b44 
|                     v_band_list: bit44~bi63 - (only for lte: b28b,b40b,b41b,b41c,b39b,b252,
|                                             b255,b253,b254,b66,b46,b250,b47,b48,b71,b71b,b38k ...  
|    rlk 3 4       /* get tx test state */
|    rlk 3 5       /* Close tx test(need to reboot) */
| =========== above: radio_lab_kit(rlk) cmd help =======================================================
|
$ rlk 3 1 extra
| tolvek_gpio_test_get
|
| note: Cmd error, should be: rlk 3 1 , Pls refer to the following cmd:
|
| note: Error happen! error_code(268431370)
|
| =========== blew: radio_lab_kit(rlk) cmd help =======================================================
| 3: rf option cmd
|    rlk 3 0 ...   /* gpio value setting(pls input enough gpio value by notice)*/
|                     (need to reboot duing first setting) 
|    rlk 3 1       /* get gpio test state */
|    rlk 3 2       /* Close gpio test(need to reboot) */
|    rlk 3 3 v_ant v_sys v_band_list
|                  /* fix tx to upper(lower) antenna for given band list */
|                     (need to reboot) 
|                     v_ant: 0 - lower antenna, 1 - upper antenna 
|                     v_sys: 0 - gsm, 1 - wcdma, 2 - cdma, 3 - tds, 4 - lte 
|                     v_band_list: bit0~bi43 - (gsm: 850,900,1800,1900; wcdma: b1,b2,b4,b5,b8; 
|                                             cdma: bc0, tds: b34,b39; lte: b1...b44 
|                     v_band_list: bit44~bi63 - (only for lte: b28b,b40b,b41b,b41c,b39b,b252,
|                                             b255,b253,b254,b66,b46,b250,b47,b48,b71,b71b,b38k ...  
|    rlk 3 4       /* get tx test state */
|    rlk 3 5       /* Close tx test(need to reboot) */
| =========== above: radio_lab_kit(rlk) cmd help =======================================================
|
$ rlk 3 5 x
| tolvek_rf_tx_test_closed
|
| note: Cmd error, should be: rlk 3 5 , Pls refer to the following cmd:
|
| note: Error happen! error_code(268431370)
|
| =========== blew: radio_lab_kit(rlk) cmd help =======================================================
| 3: rf option cmd
|    rlk 3 0 ...   /* gpio value setting(pls input enough gpio value by notice)*/
|                     (need to reboot duing first setting) 
|    rlk 3 1       /* get gpio test state */
|    rlk 3 2       /* Close gpio test(need to reboot) */
|    rlk 3 3 v_ant v_sys v_band_list
|                  /* fix tx to upper(lower) antenna for given band list */
|                     (need to reboot) 
|                     v_ant: 0 - lower antenna, 1 - upper antenna 
|                     v_sys: 0 - gsm, 1 - wcdma, 2 - cdma, 3 - tds, 4 - lte 
|                     v_band_list: bit0~bi43 - (gsm: 850,900,1800,1900; wcdma: b1,b2,b4,b5,b8; 
|                                             cdma: bc0, tds: b34,b39; lte: b1...b44 
|                     v_band_list: bit44~bi63 - (only for lte: b28b,b40b,b41b,b41c,b39b,b252,
|                                             b255,b253,b254,b66,b46,b250,b47,b48,b71,b71b,b38k ...  
|    rlk 3 4       /* get tx test state */
|    rlk 3 5       /* Close tx test(need to reboot) */
| =========== above: radio_lab_kit(rlk) cmd help =======================================================
|
$ rlk 3 6
|
| note: the second parameters is invalid, Pls refer to the following cmd:
|
| =========== blew: radio_lab_kit(rlk) cmd help =======================================================
| 3: rf option cmd
|    rlk 3 0 ...   /* gpio value setting(pls input enough gpio value by notice)*/
|                     (need to reboot duing first setting) 
|    rlk 3 1       /* get gpio test state */
|    rlk 3 2       /* Close gpio test(need to reboot) */
|    rlk 3 3 v_ant v_sys v_band_list
|                  /* fix tx to upper(lower) antenna for given band list */
|                     (need to reboot) 
|                     v_ant: 0 - lower antenna, 1 - upper antenna 
|                     v_sys: 0 - gsm, 1 - wcdma, 2 - cdma, 3 - tds, 4 - lte 
|                     v_band_list: bit0~bi43 - (gsm: 850,900,1800,1900; wcdma: b1,b2,b4,b5,b8; 
|                                             cdma: bc0, tds: b34,b39; lte: b1...b44 
|                     v_band_list: bit44~bi63 - (only for lte: b28b,b40b,b41b,b41c,b39b,b252,
|                                             b255,b253,b254,b66,b46,b250,b47,b48,b71,b71b,b38k ...  
|    rlk 3 4       /* get tx test state */
|    rlk 3 5       /* Close tx test(need to reboot) */
| =========== above: radio_lab_kit(rlk) cmd help =======================================================
|
$ rlk 6 5
|
| note: Too few parameters, Pls refer to the following cmd:
|
| =========== blew: radio_lab_kit(rlk) cmd help =======================================================
| 6: tolvek qmi send_data
|    rlk 6 qmi_id qmi_data         /* qmi_id: Any binary data you will send */
|                                     qmi_data: Any binary data you will send 
| =========== above: radio_lab_kit(rlk) cmd help =======================================================
|
$ rlk 6 6 1
|
| note: the second parameters(qmi_id) should be >= 0 && < 6
|
| =========== blew: radio_lab_kit(rlk) cmd help =======================================================
| 6: tolvek qmi send_data
|    rlk 6 qmi_id qmi_data         /* qmi_id: Any binary data you will send */
|                                     qmi_data: Any binary data you will send 
| =========== above: radio_lab_kit(rlk) cmd help =======================================================
|
$ rlk 6 -1 1
|
| note: the second parameters(qmi_id) should be >= 0 && < 6
|
| =========== blew: radio_lab_kit(rlk) cmd help =======================================================
| 6: tolvek qmi send_data
|    rlk 6 qmi_id qmi_data         /* qmi_id: Any binary data you will send */
|                                     qmi_data: Any binary data you will send 
| =========== above: radio_lab_kit(rlk) cmd help =======================================================
|
> counter get ext.requests
| 1
