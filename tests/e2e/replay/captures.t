# rlk-replay on the public sample captures: the summary of each (packets
# per code and event id, signalling messages per kind written to the
# pcap), the first serving-cell packets of att.mi2log with their values
# as the public decoders list them, several inputs with unreadable ones,
# and the filter.
requires: captures
simulator: off

$ rlk-replay --pcap $DIR/att.pcap --summary-only $CAPTURES/att.mi2log
| summary: 1 input (1 read to the end), 524026 bytes, 1808 frames, 0 skipped, 1808 packets
| log packets per code:
|   0xB060 9
|   0xB063 50
|   0xB064 86
|   0xB0C0 31
|   0xB0C2 2
|   0xB0ED 2
|   0xB0EE 6
|   0xB126 80
|   0xB179 223
|   0xB187 4
|   0xB193 1091
|   0xB195 224
| records made per data id:
|   82 975
|   108 116
|   114 86
|   129 2
| pcap messages written per kind:
|   LTE NAS EMM uplink 2
|   LTE RRC DL-CCCH 2
|   LTE RRC DL-DCCH 9
|   LTE RRC PCCH 9
|   LTE RRC UL-CCCH 2
|   LTE RRC UL-DCCH 9

$ rlk-replay --pcap $DIR/offline.pcap --summary-only $CAPTURES/offline_log_example.mi2log
| summary: 1 input (1 read to the end), 1040390 bytes, 16485 frames, 0 skipped, 1252 packets
| log packets per code:
|   0x1273 1
|   0x12C1 4
|   0x12E8 53
|   0x134F 5
|   0x138E 2
|   0x138F 24
|   0x17F7 28
|   0x184C 4
|   0x4116 1
|   0x5094 2
|   0x5B2C 2
|   0x7001 34
|   0x7130 7
|   0x7131 2
|   0x7132 2
|   0x7150 1
|   0x7152 2
|   0xB060 3
|   0xB061 1
|   0xB062 1
|   0xB063 7
|   0xB064 3
|   0xB066 12
|   0xB081 2
|   0xB082 5
|   0xB091 2
|   0xB092 5
|   0xB0A0 3
|   0xB0A3 4
|   0xB0A4 2
|   0xB0B0 3
|   0xB0B1 2
|   0xB0B3 5
|   0xB0B4 2
|   0xB0C0 17
|   0xB0C1 1
|   0xB0C2 1
|   0xB0E1 1
|   0xB0E2 2
|   0xB0E3 1
|   0xB0E4 2
|   0xB0E5 2
|   0xB0E6 2
|   0xB0EA 2
|   0xB0EB 3
|   0xB0EC 1
|   0xB0ED 2
|   0xB0EE 5
|   0xB111 81
|   0xB113 23
|   0xB114 45
|   0xB115 13
|   0xB116 47
|   0xB119 13
|   0xB11B 30
|   0xB11D 30
|   0xB122 13
|   0xB123 104
|   0xB126 16
|   0xB129 5
|   0xB12A 26
|   0xB12C 3
|   0xB12E 15
|   0xB130 3
|   0xB132 1
|   0xB134 32
|   0xB139 9
|   0xB13C 14
|   0xB144 1
|   0xB146 35
|   0xB149 3
|   0xB14B 3
|   0xB14C 5
|   0xB14D 6
|   0xB14E 1
|   0xB166 1
|   0xB167 1
|   0xB168 1
|   0xB169 1
|   0xB16A 1
|   0xB16B 26
|   0xB16C 1
|   0xB16D 2
|   0xB173 2
|   0xB174 6
|   0xB176 1
|   0xB179 11
|   0xB17A 1
|   0xB17C 1
|   0xB17D 1
|   0xB17E 2
|   0xB17F 1
|   0xB183 2
|   0xB184 1
|   0xB187 1
|   0xB189 1
|   0xB18A 1
|   0xB18B 1
|   0xB18C 2
|   0xB18F 5
|   0xB193 46
|   0xB194 25
|   0xB195 11
|   0xB1A7 113
|   0xB1B9 1
|   0xB1BD 2
| event records per id:
|   389 3
|   416 1
|   418 1
|   442 1
|   444 1
|   558 1
|   621 2
|   630 1
|   989 1
|   1022 2
|   1023 8
|   1024 3
|   1498 1
|   1501 1
|   1502 1
|   1503 1
|   1605 19
|   1606 5
|   1609 12
|   1610 7
|   1611 1
|   1614 3
|   1627 2
|   1628 2
|   1629 7
|   1630 4
|   1631 1
|   1633 1
|   1634 2
|   1636 2
|   1719 10
|   1720 3
|   1888 1
|   1938 3
|   1966 1
|   1967 2
|   1968 2
|   1969 1
|   2042 2
|   2239 1
|   2242 1
|   2483 1
| records made per data id:
|   5 5
|   82 46
|   114 3
|   127 1
|   129 1
| versions refused per code and version:
|   0xB062 version 2: 1
|   0xB111 version 21: 81
|   0xB14E version 42: 1
|   0xB16D version 8: 2
|   0xB173 version 16: 2
| frames of other commands:
|   0x79: 210
|   0x92: 15137
| pcap messages written per kind:
|   LTE NAS EMM downlink 1
|   LTE NAS EMM uplink 2
|   LTE NAS ESM downlink 2
|   LTE NAS ESM uplink 1
|   LTE RRC BCCH-DL-SCH 5
|   LTE RRC DL-CCCH 1
|   LTE RRC DL-DCCH 4
|   LTE RRC UL-CCCH 1
|   LTE RRC UL-DCCH 6

$ rlk-replay --log 0xB193 $CAPTURES/att.mi2log
| #1 2016-01-17 03:40:41.642 UTC log 0xB193 length 368 sub 0
| modem_stats_diag_process_log_ex: log_id 0xb193, length 368, sub_id = 0
| subpacket_id = 25, version_ssmr = 19
| version = 1, earfcn = 5780, rx_valid = 3, pci = 185, is_srv_cell = 1, srv_cell_idx = 0, num_cells = 1
| Serving Cell Measurement Result
| rsrp_rx0 = -112.94, rsrp_rx1 = -109.50, rsrp_rx2 = 65535.00, rsrp_rx3 = 65535.00
| rsrq_rx0 = -8.88, rsrq_rx1 = -9.25, rsrq_rx2 = 65535.00, rsrq_rx3 = 65535.00
| rssi_rx0 = -87.06, rssi_rx1 = -83.25, rssi_rx2 = 65535.00, rssi_rx3 = 65535.00
| snr_rx0 = 4.90, snr_rx1 = 5.30, snr_rx2 = 65535.00, snr_rx3 = 65535.00
| avg_rsrp = -111.22, avg_rsrq = -9.07, max_rssi = -83.25
| #2 2016-01-17 03:40:41.642 UTC log 0xB193 length 368 sub 0
| modem_stats_diag_process_log_ex: log_id 0xb193, length 368, sub_id = 0
| subpacket_id = 25, version_ssmr = 19
| version = 1, earfcn = 700, rx_valid = 3, pci = 185, is_srv_cell = 1, srv_cell_idx = 1, num_cells = 1
| Serving Cell Measurement Result
| rsrp_rx0 = -107.00, rsrp_rx1 = -109.88, rsrp_rx2 = 65535.00, rsrp_rx3 = 65535.00
| rsrq_rx0 = -7.19, rsrq_rx1 = -8.44, rsrq_rx2 = 65535.00, rsrq_rx3 = 65535.00
| rssi_rx0 = -82.81, rssi_rx1 = -84.44, rssi_rx2 = 65535.00, rssi_rx3 = 65535.00
| snr_rx0 = 9.10, snr_rx1 = 7.60, snr_rx2 = 65535.00, snr_rx3 = 65535.00
| avg_rsrp = -108.44, avg_rsrq = -7.81, max_rssi = -82.81
| #3 2016-01-17 03:40:41.652 UTC log 0xB193 length 368 sub 0
| modem_stats_diag_process_log_ex: log_id 0xb193, length 368, sub_id = 0
| subpacket_id = 25, version_ssmr = 19
| version = 1, earfcn = 5780, rx_valid = 3, pci = 185, is_srv_cell = 1, srv_cell_idx = 0, num_cells = 1
| Serving Cell Measurement Result
| rsrp_rx0 = -112.94, rsrp_rx1 = -109.50, rsrp_rx2 = 65535.00, rsrp_rx3 = 65535.00
| rsrq_rx0 = -10.69, rsrq_rx1 = -10.31, rsrq_rx2 = 65535.00, rsrq_rx3 = 65535.00
| rssi_rx0 = -85.25, rssi_rx1 = -82.19, rssi_rx2 = 65535.00, rssi_rx3 = 65535.00
| snr_rx0 = 4.79, snr_rx1 = 5.40, snr_rx2 = 65535.00, snr_rx3 = 65535.00
| avg_rsrp = -111.22, avg_rsrq = -10.50, max_rssi = -82.19
| #4 2016-01-17 03:40:41.652 UTC log 0xB193 length 368 sub 0
| modem_stats_diag_process_log_ex: log_id 0xb193, length 368, sub_id = 0
| subpacket_id = 25, version_ssmr = 19
| version = 1, earfcn = 700, rx_valid = 3, pci = 185, is_srv_cell = 1, srv_cell_idx = 1, num_cells = 1
| Serving Cell Measurement Result
| rsrp_rx0 = -107.00, rsrp_rx1 = -109.88, rsrp_rx2 = 65535.00, rsrp_rx3 = 65535.00
| rsrq_rx0 = -7.94, rsrq_rx1 = -9.00, rsrq_rx2 = 65535.00, rsrq_rx3 = 65535.00
| rssi_rx0 = -82.06, rssi_rx1 = -83.88, rssi_rx2 = 65535.00, rssi_rx3 = 65535.00
| snr_rx0 = 8.70, snr_rx1 = 6.90, snr_rx2 = 65535.00, snr_rx3 = 65535.00
| avg_rsrp = -108.44, avg_rsrq = -8.47, max_rssi = -82.06
| #5 2016-01-17 03:40:41.662 UTC log 0xB193 length 368 sub 0
| modem_stats_diag_process_log_ex: log_id 0xb193, length 368, sub_id = 0
| subpacket_id = 25, version_ssmr = 19
| version = 1, earfcn = 5780, rx_valid = 3, pci = 185, is_srv_cell = 1, srv_cell_idx = 0, num_cells = 1
| Serving Cell Measurement Result
| rsrp_rx0 = -112.94, rsrp_rx1 = -109.50, rsrp_rx2 = 65535.00, rsrp_rx3 = 65535.00
| rsrq_rx0 = -8.94, rsrq_rx1 = -9.56, rsrq_rx2 = 65535.00, rsrq_rx3 = 65535.00
| rssi_rx0 = -87.00, rssi_rx1 = -82.94, rssi_rx2 = 65535.00, rssi_rx3 = 65535.00
| snr_rx0 = 4.29, snr_rx1 = 5.00, snr_rx2 = 65535.00, snr_rx3 = 65535.00
| avg_rsrp = -111.22, avg_rsrq = -9.25, max_rssi = -82.94
| #6 2016-01-17 03:40:41.662 UTC log 0xB193 length 368 sub 0
| modem_stats_diag_process_log_ex: log_id 0xb193, length 368, sub_id = 0
| subpacket_id = 25, version_ssmr = 19
| version = 1, earfcn = 700, rx_valid = 3, pci = 185, is_srv_cell = 1, srv_cell_idx = 1, num_cells = 1
| Serving Cell Measurement Result
| rsrp_rx0 = -107.00, rsrp_rx1 = -109.81, rsrp_rx2 = 65535.00, rsrp_rx3 = 65535.00
| rsrq_rx0 = -8.25, rsrq_rx1 = -9.00, rsrq_rx2 = 65535.00, rsrq_rx3 = 65535.00
| rssi_rx0 = -81.75, rssi_rx1 = -83.81, rssi_rx2 = 65535.00, rssi_rx3 = 65535.00
| snr_rx0 = 9.30, snr_rx1 = 6.80, snr_rx2 = 65535.00, snr_rx3 = 65535.00
| avg_rsrp = -108.41, avg_rsrq = -8.63, max_rssi = -81.75
| #7 2016-01-17 03:40:41.672 UTC log 0xB193 length 368 sub 0
| modem_stats_diag_process_log_ex: log_id 0xb193, length 368, sub_id = 0
| subpacket_id = 25, version_ssmr = 19
| version = 1, earfcn = 5780, rx_valid = 3, pci = 185, is_srv_cell = 1, srv_cell_idx = 0, num_cells = 1
| Serving Cell Measurement Result
| rsrp_rx0 = -112.88, rsrp_rx1 = -109.50, rsrp_rx2 = 65535.00, rsrp_rx3 = 65535.00
| rsrq_rx0 = -9.13, rsrq_rx1 = -9.88, rsrq_rx2 = 65535.00, rsrq_rx3 = 65535.00
| rssi_rx0 = -86.81, rssi_rx1 = -82.56, rssi_rx2 = 65535.00, rssi_rx3 = 65535.00
| snr_rx0 = 4.30, snr_rx1 = 5.10, snr_rx2 = 65535.00, snr_rx3 = 65535.00
| avg_rsrp = -111.19, avg_rsrq = -9.51, max_rssi = -82.56
| #8 2016-01-17 03:40:41.672 UTC log 0xB193 length 368 sub 0
| modem_stats_diag_process_log_ex: log_id 0xb193, length 368, sub_id = 0
| subpacket_id = 25, version_ssmr = 19
| version = 1, earfcn = 700, rx_valid = 3, pci = 185, is_srv_cell = 1, srv_cell_idx = 1, num_cells = 1
| Serving Cell Measurement Result
| rsrp_rx0 = -107.00, rsrp_rx1 = -109.81, rsrp_rx2 = 65535.00, rsrp_rx3 = 65535.00
| rsrq_rx0 = -7.56, rsrq_rx1 = -8.25, rsrq_rx2 = 65535.00, rsrq_rx3 = 65535.00
| rssi_rx0 = -82.44, rssi_rx1 = -84.56, rssi_rx2 = 65535.00, rssi_rx3 = 65535.00
| snr_rx0 = 8.70, snr_rx1 = 6.80, snr_rx2 = 65535.00, snr_rx3 = 65535.00
| avg_rsrp = -108.41, avg_rsrq = -7.90, max_rssi = -82.44
...
| summary: 1 input (1 read to the end), 524026 bytes, 1808 frames, 0 skipped, 1091 packets
| log packets per code:
|   0xB193 1091
| records made per data id:
|   82 975
|   108 116
| packets not selected by the filter: 717

$ rlk-replay -s - $CAPTURES/att.mi2log $DIR/missing.qmdl $DIR $CAPTURES/att.mi2log
| summary: 5 inputs (3 read to the end), 1048052 bytes, 3616 frames, 0 skipped, 3616 packets
| log packets per code:
|   0xB060 18
|   0xB063 100
|   0xB064 172
|   0xB0C0 62
|   0xB0C2 4
|   0xB0ED 4
|   0xB0EE 12
|   0xB126 160
|   0xB179 446
|   0xB187 8
|   0xB193 2182
|   0xB195 448
| records made per data id:
|   82 1950
|   108 232
|   114 172
|   129 4
2~ rlk-replay: cannot open */missing.qmdl: No such file or directory
2~ rlk-replay: cannot read *: Is a directory
? 1

$ rlk-replay --log 0xB0C2,0xB062 --event 1606 $CAPTURES/offline_log_example.mi2log
| #1 2016-03-23 21:55:48.913 UTC event 1606 length 1 sub 0 ts16 0x5aa0
| modem_stats_diag_process_event_ex: event_id 1606, length 1, sub_id = 0
| sub_id = 0, rrc_state_current_in = 1
| 1606_diag_event_lte_rrc_state_change, time_last = 0, time_current = 0, rrc_state_last = 0, rrc_state_current = 1, rrc_state_current_in = 1, old rrc_active_time = 0, old rrc_setup_count = 0
| 1606_diag_event_lte_rrc_state_change, New other state and Old other state, do nothing, sub_id 0
| #2 2016-03-23 21:55:49.206 UTC log 0xB0C2 length 29 sub 0
| modem_stats_diag_process_log_ex: log_id 0xb0c2, length 29, sub_id = 0
| version = 3, mcc = 310, mnc_num 3, mnc 410, tac 34624, cgi 143281423, pci 405
| freq_band_ind = 17, dl_earfcn = 5780, dl_bw 50, ul_earfcn 23780, ul_bw 50, allow_access 0
| #3 2016-03-23 21:55:49.205 UTC event 1606 length 1 sub 0 ts16 0x447d
| modem_stats_diag_process_event_ex: event_id 1606, length 1, sub_id = 0
| sub_id = 0, rrc_state_current_in = 2
| 1606_diag_event_lte_rrc_state_change, time_last = 0, time_current = 0, rrc_state_last = 1, rrc_state_current = 2, rrc_state_current_in = 2, old rrc_active_time = 0, old rrc_setup_count = 0
| 1606_diag_event_lte_rrc_state_change, New other state and Old other state, do nothing, sub_id 0
| #4 2016-03-23 21:55:49.205 UTC event 1606 length 1 sub 0 ts16 0x447d
| modem_stats_diag_process_event_ex: event_id 1606, length 1, sub_id = 0
| sub_id = 0, rrc_state_current_in = 2
| 1606_diag_event_lte_rrc_state_change, time_last = 0, time_current = 0, rrc_state_last = 2, rrc_state_current = 2, rrc_state_current_in = 2, old rrc_active_time = 0, old rrc_setup_count = 0
| 1606_diag_event_lte_rrc_state_change, New other state and Old other state, do nothing, sub_id 0
| #5 2016-03-23 21:55:49.247 UTC event 1606 length 1 sub 0 ts16 0x6617
| modem_stats_diag_process_event_ex: event_id 1606, length 1, sub_id = 0
| sub_id = 0, rrc_state_current_in = 3
| 1606_diag_event_lte_rrc_state_change, time_last = 0, time_current = 0, rrc_state_last = 2, rrc_state_current = 3, rrc_state_current_in = 3, old rrc_active_time = 0, old rrc_setup_count = 0
| 1606_diag_event_lte_rrc_state_change, New other state and Old other state, do nothing, sub_id 0
| #6 2016-03-23 21:55:49.315 UTC log 0xB062 length 44 sub 0
| modem_stats_diag_process_log_ex: log_id 0xb062, length 44, sub_id = 0
| VERSION_NOT_SUPPORT, version(2), not_support_num(1), name(lte_mac_rach_attempt), id(0xb062)
| #7 2016-03-23 21:55:49.323 UTC event 1606 length 1 sub 0 ts16 0xa2ab
| modem_stats_diag_process_event_ex: event_id 1606, length 1, sub_id = 0
| sub_id = 0, rrc_state_current_in = 4
| 1606_diag_event_lte_rrc_state_change, time_last = 0, time_current = 0, rrc_state_last = 3, rrc_state_current = 4, rrc_state_current_in = 4, old rrc_active_time = 0, old rrc_setup_count = 0
| ----1606_diag_event_lte_rrc_state_change, New Connected and Old other state, rrc_setup_count = 1, sub_id 0
| summary: 1 input (1 read to the end), 1040390 bytes, 16485 frames, 0 skipped, 7 packets
| log packets per code:
|   0xB062 1
|   0xB0C2 1
| event records per id:
|   1606 5
| records made per data id:
|   5 5
|   127 1
|   129 1
| versions refused per code and version:
|   0xB062 version 2: 1
| frames of other commands:
|   0x79: 210
|   0x92: 15137
| packets not selected by the filter: 1245
