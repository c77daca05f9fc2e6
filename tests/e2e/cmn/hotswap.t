# The hot-swap test started and stopped: the typed requests, a stopped run
# leaving the card in, four values sent as given, and a second start while
# a run goes on refused by the modem (reported, but no error).
ignore~ *_unsol_ind_cb:*
ignore~ *[error_cb:*
ignore~ * error_cb:*
$ rlk 5 6 0
| tolvek_cmn_card_hotswap_test
| opt: 0
| tolvek_cmn_cmd_send, t: 80, l: 4
| TOLVEK_QMI_NV: qmi_client_get_service_list() returned 0 num_services = 1
| TOLVEK_QMI_NV: qmi_client_get_service_list() returned 0 num_entries = 1 num_services = 1
| QMI client inited
| tolvek_extend_qmi_send_sync resp_len:28
| tolvek_extend_qmi_handle_req_cb result:0
| result = 0, rsp.result = 0
|
| data len(20)
| data: 50 00 00 00 0C 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00
> last 1 ext
| 0xffe4 0x0002 1 0001000200110201040004000000020400000200001000020200000000000000500000000400000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000
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
| data: 27 00 00 00 08 00 00 00 01 00 00 00 01 00 00 00
> ext card second-ms 1000
$ rlk 5 6 1 5 10 10
| tolvek_cmn_card_hotswap_test
| opt: 1
| param(cnt: 4):
|  1 5 10 10tolvek_cmn_cmd_send, t: 80, l: 16
| TOLVEK_QMI_NV: qmi_client_get_service_list() returned 0 num_services = 1
| TOLVEK_QMI_NV: qmi_client_get_service_list() returned 0 num_entries = 1 num_services = 1
| QMI client inited
| tolvek_extend_qmi_send_sync resp_len:28
| tolvek_extend_qmi_handle_req_cb result:0
| result = 0, rsp.result = 0
|
| data len(20)
| data: 50 00 00 00 0C 00 00 00 01 00 00 00 00 00 00 00 05 00 00 00
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
| data: 27 00 00 00 08 00 00 00 00 00 00 00 01 00 00 00
$ rlk 5 6 0
| tolvek_cmn_card_hotswap_test
| opt: 0
| tolvek_cmn_cmd_send, t: 80, l: 4
| TOLVEK_QMI_NV: qmi_client_get_service_list() returned 0 num_services = 1
| TOLVEK_QMI_NV: qmi_client_get_service_list() returned 0 num_entries = 1 num_services = 1
| QMI client inited
| tolvek_extend_qmi_send_sync resp_len:28
| tolvek_extend_qmi_handle_req_cb result:0
| result = 0, rsp.result = 0
|
| data len(20)
| data: 50 00 00 00 0C 00 00 00 00 00 00 00 00 00 00 00 05 00 00 00
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
| data: 27 00 00 00 08 00 00 00 01 00 00 00 01 00 00 00
# Answer: running, no cycle done yet, three asked.
$ rlk 5 6 2 3 0 1
| tolvek_cmn_card_hotswap_test
| opt: 2
| param(cnt: 4):
|  2 3 0 1tolvek_cmn_cmd_send, t: 80, l: 16
| TOLVEK_QMI_NV: qmi_client_get_service_list() returned 0 num_services = 1
| TOLVEK_QMI_NV: qmi_client_get_service_list() returned 0 num_entries = 1 num_services = 1
| QMI client inited
| tolvek_extend_qmi_send_sync resp_len:28
| tolvek_extend_qmi_handle_req_cb result:0
| result = 0, rsp.result = 0
|
| data len(20)
| data: 50 00 00 00 0C 00 00 00 01 00 00 00 00 00 00 00 03 00 00 00
> last 1 ext
| 0xffe4 0x0002 1 0001000200110201040004000000020400000200001000020200000000000000500000001000000002000000030000000000000001000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000
$ rlk 5 6 1 1 1 1
| tolvek_cmn_card_hotswap_test
| opt: 1
| param(cnt: 4):
|  1 1 1 1tolvek_cmn_cmd_send, t: 80, l: 16
| TOLVEK_QMI_NV: qmi_client_get_service_list() returned 0 num_services = 1
| TOLVEK_QMI_NV: qmi_client_get_service_list() returned 0 num_entries = 1 num_services = 1
| QMI client inited
| tolvek_extend_qmi_send_sync resp_len:28
| tolvek_extend_qmi_handle_req_cb result:0
| result = 0, rsp.result = -16
| rsp.result fail
