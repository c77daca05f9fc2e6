# `rlk 9 <opt> <sub>` against the simulator: the argument notes (nothing
# is opened), the unknown opt, the invalid sub, and every opt printing the
# values of a radio scene.
$ rlk 9 7
|
| note: Too few parameters, Pls refer to the following cmd:
|
| =========== blew: radio_lab_kit(rlk) cmd help =======================================================
| 9: tolvek modem stats qmi test
|    rlk 9 0 sub                   /* 4G PCC rssi, sub: 0 - sub0; 1 - sub1 */
|    rlk 9 1 sub                   /* 4G SCC1 rssi, sub: 0 - sub0; 1 - sub1 */
|    rlk 9 2 sub                   /* 4G SCC2 rssi, sub: 0 - sub0; 1 - sub1 */
|    rlk 9 3 sub                   /* 4G SCC3 rssi, sub: 0 - sub0; 1 - sub1 */
|    rlk 9 4 sub                   /* 4G SCC4 rssi, sub: 0 - sub0; 1 - sub1 */
|    rlk 9 5 sub                   /* 4G SCC5 rssi, sub: 0 - sub0; 1 - sub1 */
|    rlk 9 6 sub                   /* 4G SCC6 rssi, sub: 0 - sub0; 1 - sub1 */
|    rlk 9 7 sub                   /* 5G PCC rssi, sub: 0 - sub0; 1 - sub1 */
|    rlk 9 8 sub                   /* 5G PCC snr, sub: 0 - sub0; 1 - sub1 */
|    rlk 9 9 sub                   /* 5G ANT diversity, sub: 0 - sub0; 1 - sub1 */
|    rlk 9 10 sub                  /* 5G PCC rsrp, sub: 0 - sub0; 1 - sub1 */
|    rlk 9 11 sub                  /* 5G SCC1 rsrp, sub: 0 - sub0; 1 - sub1 */
|    rlk 9 12 sub                  /* 5G SCC2 rsrp, sub: 0 - sub0; 1 - sub1 */
|    rlk 9 20 sub                  /* WCDMA rssi, sub: 0 - sub0; 1 - sub1 */
|    rlk 9 21 sub                  /* GSM rssi, sub: 0 - sub0; 1 - sub1 */
|    rlk 9 30 0                    /* Ant info */
| =========== above: radio_lab_kit(rlk) cmd help =======================================================
|
$ rlk 9 13 0
| opt = 13, sub = 0, g_orvex_client_id = 0
| tolvek_test_qmi_modem_stats_hdl: Unknown opt(13), sub(0)
$ rlk 9 0 2
| opt = 0, sub = 2, g_orvex_client_id = 0
| modem_api_get_stats_parameter, sub(2) is invalid

# The scene of subscription 1: LTE carrier c gets earfcn 1000 + c, pci
# 10 + c and levels c.xx so that a wrong carrier shows.
> vs set 1 lte.0.present 1
> vs set 1 lte.0.earfcn 1000
> vs set 1 lte.0.pci 10
> vs set 1 lte.0.rx_valid 3
> vs set 1 lte.0.rsrp0 -90.05
> vs set 1 lte.0.rsrq0 -10.05
> vs set 1 lte.0.rssi0 -60.05
> vs set 1 lte.0.snr0 0.05
> vs set 1 lte.0.rsrp1 -90.15
> vs set 1 lte.0.rsrq1 -10.15
> vs set 1 lte.0.rssi1 -60.15
> vs set 1 lte.0.snr1 0.15
> vs set 1 lte.0.rsrp2 -90.25
> vs set 1 lte.0.rsrq2 -10.25
> vs set 1 lte.0.rssi2 -60.25
> vs set 1 lte.0.snr2 0.25
> vs set 1 lte.0.rsrp3 -90.35
> vs set 1 lte.0.rsrq3 -10.35
> vs set 1 lte.0.rssi3 -60.35
> vs set 1 lte.0.snr3 0.35
> vs set 1 lte.1.present 1
> vs set 1 lte.1.earfcn 1001
> vs set 1 lte.1.pci 11
> vs set 1 lte.1.rx_valid 3
> vs set 1 lte.1.rsrp0 -91.05
> vs set 1 lte.1.rsrq0 -11.05
> vs set 1 lte.1.rssi0 -61.05
> vs set 1 lte.1.snr0 1.05
> vs set 1 lte.1.rsrp1 -91.15
> vs set 1 lte.1.rsrq1 -11.15
> vs set 1 lte.1.rssi1 -61.15
> vs set 1 lte.1.snr1 1.15
> vs set 1 lte.1.rsrp2 -91.25
> vs set 1 lte.1.rsrq2 -11.25
> vs set 1 lte.1.rssi2 -61.25
> vs set 1 lte.1.snr2 1.25
> vs set 1 lte.1.rsrp3 -91.35
> vs set 1 lte.1.rsrq3 -11.35
> vs set 1 lte.1.rssi3 -61.35
> vs set 1 lte.1.snr3 1.35
> vs set 1 lte.2.present 1
> vs set 1 lte.2.earfcn 1002
> vs set 1 lte.2.pci 12
> vs set 1 lte.2.rx_valid 3
> vs set 1 lte.2.rsrp0 -92.05
> vs set 1 lte.2.rsrq0 -12.05
> vs set 1 lte.2.rssi0 -62.05
> vs set 1 lte.2.snr0 2.05
> vs set 1 lte.2.rsrp1 -92.15
> vs set 1 lte.2.rsrq1 -12.15
> vs set 1 lte.2.rssi1 -62.15
> vs set 1 lte.2.snr1 2.15
> vs set 1 lte.2.rsrp2 -92.25
> vs set 1 lte.2.rsrq2 -12.25
> vs set 1 lte.2.rssi2 -62.25
> vs set 1 lte.2.snr2 2.25
> vs set 1 lte.2.rsrp3 -92.35
> vs set 1 lte.2.rsrq3 -12.35
> vs set 1 lte.2.rssi3 -62.35
> vs set 1 lte.2.snr3 2.35
> vs set 1 lte.3.present 1
> vs set 1 lte.3.earfcn 1003
> vs set 1 lte.3.pci 13
> vs set 1 lte.3.rx_valid 3
> vs set 1 lte.3.rsrp0 -93.05
> vs set 1 lte.3.rsrq0 -13.05
> vs set 1 lte.3.rssi0 -63.05
> vs set 1 lte.3.snr0 3.05
> vs set 1 lte.3.rsrp1 -93.15
> vs set 1 lte.3.rsrq1 -13.15
> vs set 1 lte.3.rssi1 -63.15
> vs set 1 lte.3.snr1 3.15
> vs set 1 lte.3.rsrp2 -93.25
> vs set 1 lte.3.rsrq2 -13.25
> vs set 1 lte.3.rssi2 -63.25
> vs set 1 lte.3.snr2 3.25
> vs set 1 lte.3.rsrp3 -93.35
> vs set 1 lte.3.rsrq3 -13.35
> vs set 1 lte.3.rssi3 -63.35
> vs set 1 lte.3.snr3 3.35
> vs set 1 lte.4.present 1
> vs set 1 lte.4.earfcn 1004
> vs set 1 lte.4.pci 14
> vs set 1 lte.4.rx_valid 3
> vs set 1 lte.4.rsrp0 -94.05
> vs set 1 lte.4.rsrq0 -14.05
> vs set 1 lte.4.rssi0 -64.05
> vs set 1 lte.4.snr0 4.05
> vs set 1 lte.4.rsrp1 -94.15
> vs set 1 lte.4.rsrq1 -14.15
> vs set 1 lte.4.rssi1 -64.15
> vs set 1 lte.4.snr1 4.15
> vs set 1 lte.4.rsrp2 -94.25
> vs set 1 lte.4.rsrq2 -14.25
> vs set 1 lte.4.rssi2 -64.25
> vs set 1 lte.4.snr2 4.25
> vs set 1 lte.4.rsrp3 -94.35
> vs set 1 lte.4.rsrq3 -14.35
> vs set 1 lte.4.rssi3 -64.35
> vs set 1 lte.4.snr3 4.35
> vs set 1 lte.5.present 1
> vs set 1 lte.5.earfcn 1005
> vs set 1 lte.5.pci 15
> vs set 1 lte.5.rx_valid 3
> vs set 1 lte.5.rsrp0 -95.05
> vs set 1 lte.5.rsrq0 -15.05
> vs set 1 lte.5.rssi0 -65.05
> vs set 1 lte.5.snr0 5.05
> vs set 1 lte.5.rsrp1 -95.15
> vs set 1 lte.5.rsrq1 -15.15
> vs set 1 lte.5.rssi1 -65.15
> vs set 1 lte.5.snr1 5.15
> vs set 1 lte.5.rsrp2 -95.25
> vs set 1 lte.5.rsrq2 -15.25
> vs set 1 lte.5.rssi2 -65.25
> vs set 1 lte.5.snr2 5.25
> vs set 1 lte.5.rsrp3 -95.35
> vs set 1 lte.5.rsrq3 -15.35
> vs set 1 lte.5.rssi3 -65.35
> vs set 1 lte.5.snr3 5.35
> vs set 1 lte.6.present 1
> vs set 1 lte.6.earfcn 1006
> vs set 1 lte.6.pci 16
> vs set 1 lte.6.rx_valid 3
> vs set 1 lte.6.rsrp0 -96.05
> vs set 1 lte.6.rsrq0 -16.05
> vs set 1 lte.6.rssi0 -66.05
> vs set 1 lte.6.snr0 6.05
> vs set 1 lte.6.rsrp1 -96.15
> vs set 1 lte.6.rsrq1 -16.15
> vs set 1 lte.6.rssi1 -66.15
> vs set 1 lte.6.snr1 6.15
> vs set 1 lte.6.rsrp2 -96.25
> vs set 1 lte.6.rsrq2 -16.25
> vs set 1 lte.6.rssi2 -66.25
> vs set 1 lte.6.snr2 6.25
> vs set 1 lte.6.rsrp3 -96.35
> vs set 1 lte.6.rsrq3 -16.35
> vs set 1 lte.6.rssi3 -66.35
> vs set 1 lte.6.snr3 6.35
> vs set 1 nr.present 1
> vs set 1 nr.rssi0 -50.25
> vs set 1 nr.rssi1 -51.5
> vs set 1 nr.rssi2 -52
> vs set 1 nr.rssi3 -53.75
> vs set 1 nr.snr0 30
> vs set 1 nr.snr1 29.5
> vs set 1 nr.snr2 -1.25
> vs set 1 nr.snr3 0
> vs set 1 wcdma.present 1
> vs set 1 wcdma.agc0 -80.5
> vs set 1 wcdma.agc1 -81.25
> vs set 1 gsm.present 1
> vs set 1 gsm.prx -90
> vs set 1 gsm.drx -91.75
> vs set 0 ant.num 2
> vs set 0 ant.path 300
> vs set 0 ant.sig 7
> vs set 0 ant.old 1
> vs set 0 ant.new 2
> vs set 1 nr.0.present 1
> vs set 1 nr.0.rsrp0 -70
> vs set 1 nr.0.rsrp1 -80
> vs set 1 nr.0.rsrp2 -90
> vs set 1 nr.0.rsrp3 -100
> vs set 1 nr.0.rsrq -10
> vs set 1 nr.1.present 1
> vs set 1 nr.1.rsrp0 -71
> vs set 1 nr.1.rsrp1 -81
> vs set 1 nr.1.rsrp2 -91
> vs set 1 nr.1.rsrp3 -101
> vs set 1 nr.1.rsrq -11
> vs set 1 nr.2.present 1
> vs set 1 nr.2.rsrp0 -72
> vs set 1 nr.2.rsrp1 -82
> vs set 1 nr.2.rsrp2 -92
> vs set 1 nr.2.rsrp3 -102
> vs set 1 nr.2.rsrq -12
> vs set 1 asdiv.0 20
> vs set 1 asdiv.1 21
> vs set 1 asdiv.2 22
> vs set 1 asdiv.3 23
> vs set 1 asdiv.4 24
> vs set 1 asdiv.5 25
> vs set 1 asdiv.6 26
> vs set 1 asdiv.7 27
> vs set 1 asdiv.8 28
> vs set 1 asdiv.9 29
> vs set 1 asdiv.10 30
> vs set 1 asdiv.11 31

$ rlk 9 0 1
| opt = 0, sub = 1, g_orvex_client_id = 0
| Success to get data, number = 1, sub = 1, ret id_num = 1, id = 82, data_len = 75
| ASDIV DATA: earfcn: 1000, pci: 10, rx_valid: 3, rsrp_rx0: -90.05, rsrq_rx0: -10.05, rssi_rx0: -60.05, snr_rx0: 0.05, rsrp_rx1: -90.15, rsrq_rx1: -10.15, rssi_rx1: -60.15, snr_rx1: 0.15, rsrp_rx2: -90.25, rsrq_rx2: -10.25, rssi_rx2: -60.25, snr_rx2: 0.25, rsrp_rx3: -90.35, rsrq_rx3: -10.35, rssi_rx3: -60.35, snr_rx3: 0.35
$ rlk 9 1 1
| opt = 1, sub = 1, g_orvex_client_id = 0
| Success to get data, number = 1, sub = 1, ret id_num = 1, id = 103, data_len = 75
| ASDIV DATA: earfcn: 1001, pci: 11, rx_valid: 3, rsrp_rx0: -91.05, rsrq_rx0: -11.05, rssi_rx0: -61.05, snr_rx0: 1.05, rsrp_rx1: -91.15, rsrq_rx1: -11.15, rssi_rx1: -61.15, snr_rx1: 1.15, rsrp_rx2: -91.25, rsrq_rx2: -11.25, rssi_rx2: -61.25, snr_rx2: 1.25, rsrp_rx3: -91.35, rsrq_rx3: -11.35, rssi_rx3: -61.35, snr_rx3: 1.35
$ rlk 9 2 1
| opt = 2, sub = 1, g_orvex_client_id = 0
| Success to get data, number = 1, sub = 1, ret id_num = 1, id = 104, data_len = 75
| ASDIV DATA: earfcn: 1002, pci: 12, rx_valid: 3, rsrp_rx0: -92.05, rsrq_rx0: -12.05, rssi_rx0: -62.05, snr_rx0: 2.05, rsrp_rx1: -92.15, rsrq_rx1: -12.15, rssi_rx1: -62.15, snr_rx1: 2.15, rsrp_rx2: -92.25, rsrq_rx2: -12.25, rssi_rx2: -62.25, snr_rx2: 2.25, rsrp_rx3: -92.35, rsrq_rx3: -12.35, rssi_rx3: -62.35, snr_rx3: 2.35
$ rlk 9 3 1
| opt = 3, sub = 1, g_orvex_client_id = 0
| Success to get data, number = 1, sub = 1, ret id_num = 1, id = 105, data_len = 75
| ASDIV DATA: earfcn: 1003, pci: 13, rx_valid: 3, rsrp_rx0: -93.05, rsrq_rx0: -13.05, rssi_rx0: -63.05, snr_rx0: 3.05, rsrp_rx1: -93.15, rsrq_rx1: -13.15, rssi_rx1: -63.15, snr_rx1: 3.15, rsrp_rx2: -93.25, rsrq_rx2: -13.25, rssi_rx2: -63.25, snr_rx2: 3.25, rsrp_rx3: -93.35, rsrq_rx3: -13.35, rssi_rx3: -63.35, snr_rx3: 3.35
$ rlk 9 4 1
| opt = 4, sub = 1, g_orvex_client_id = 0
| Success to get data, number = 1, sub = 1, ret id_num = 1, id = 106, data_len = 75
| ASDIV DATA: earfcn: 1004, pci: 14, rx_valid: 3, rsrp_rx0: -94.05, rsrq_rx0: -14.05, rssi_rx0: -64.05, snr_rx0: 4.05, rsrp_rx1: -94.15, rsrq_rx1: -14.15, rssi_rx1: -64.15, snr_rx1: 4.15, rsrp_rx2: -94.25, rsrq_rx2: -14.25, rssi_rx2: -64.25, snr_rx2: 4.25, rsrp_rx3: -94.35, rsrq_rx3: -14.35, rssi_rx3: -64.35, snr_rx3: 4.35
$ rlk 9 5 1
| opt = 5, sub = 1, g_orvex_client_id = 0
| Success to get data, number = 1, sub = 1, ret id_num = 1, id = 107, data_len = 75
| ASDIV DATA: earfcn: 1005, pci: 15, rx_valid: 3, rsrp_rx0: -95.05, rsrq_rx0: -15.05, rssi_rx0: -65.05, snr_rx0: 5.05, rsrp_rx1: -95.15, rsrq_rx1: -15.15, rssi_rx1: -65.15, snr_rx1: 5.15, rsrp_rx2: -95.25, rsrq_rx2: -15.25, rssi_rx2: -65.25, snr_rx2: 5.25, rsrp_rx3: -95.35, rsrq_rx3: -15.35, rssi_rx3: -65.35, snr_rx3: 5.35
$ rlk 9 6 1
| opt = 6, sub = 1, g_orvex_client_id = 0
| Success to get data, number = 1, sub = 1, ret id_num = 1, id = 108, data_len = 75
| ASDIV DATA: earfcn: 1006, pci: 16, rx_valid: 3, rsrp_rx0: -96.05, rsrq_rx0: -16.05, rssi_rx0: -66.05, snr_rx0: 6.05, rsrp_rx1: -96.15, rsrq_rx1: -16.15, rssi_rx1: -66.15, snr_rx1: 6.15, rsrp_rx2: -96.25, rsrq_rx2: -16.25, rssi_rx2: -66.25, snr_rx2: 6.25, rsrp_rx3: -96.35, rsrq_rx3: -16.35, rssi_rx3: -66.35, snr_rx3: 6.35
$ rlk 9 7 1
| opt = 7, sub = 1, g_orvex_client_id = 0
| Success to get data, number = 1, sub = 1, ret id_num = 1, id = 94, data_len = 20
| ASDIV DATA: rssi_rx0: -50.25, rssi_rx1: -51.50, rssi_rx2: -52.00, rssi_rx3: -53.75
$ rlk 9 8 1
| opt = 8, sub = 1, g_orvex_client_id = 0
| Success to get data, number = 1, sub = 1, ret id_num = 1, id = 112, data_len = 20
| ASDIV DATA: snr_rx0: 30.00, snr_rx1: 29.50, snr_rx2: -1.25, snr_rx3: 0.00
$ rlk 9 9 1
| opt = 9, sub = 1, g_orvex_client_id = 0
| Success to get data, number = 1, sub = 1, ret id_num = 1, id = 113, data_len = 16
| ASDIV DATA: ant_rx_0_old = 20, ant_rx_0_new = 21, ant_rx_1_old = 22, ant_rx_1_new = 23, ant_rx_2_old = 24, ant_rx_2_new = 25, ant_rx_3_old = 26, ant_rx_3_new = 27, ant_tx_0_old = 28, ant_tx_0_new = 29, ant_tx_1_old = 30, ant_tx_1_new = 31
$ rlk 9 10 1
| opt = 10, sub = 1, g_orvex_client_id = 0
| Success to get data, number = 1, sub = 1, ret id_num = 1, id = 135, data_len = 24
| ASDIV DATA: rsrp_rx0: -70.00, rsrp_rx1: -80.00, rsrp_rx2: -90.00, rsrp_rx3: -100.00, rsrq: -10.00
$ rlk 9 11 1
| opt = 11, sub = 1, g_orvex_client_id = 0
| Success to get data, number = 1, sub = 1, ret id_num = 1, id = 6, data_len = 24
| ASDIV DATA: rsrp_rx0: -71.00, rsrp_rx1: -81.00, rsrp_rx2: -91.00, rsrp_rx3: -101.00, rsrq: -11.00
$ rlk 9 12 1
| opt = 12, sub = 1, g_orvex_client_id = 0
| Success to get data, number = 1, sub = 1, ret id_num = 1, id = 7, data_len = 24
| ASDIV DATA: rsrp_rx0: -72.00, rsrp_rx1: -82.00, rsrp_rx2: -92.00, rsrp_rx3: -102.00, rsrq: -12.00
$ rlk 9 20 1
| opt = 20, sub = 1, g_orvex_client_id = 0
| Success to get data, number = 1, sub = 1, ret id_num = 1, id = 110, data_len = 12
| ASDIV DATA: rx_agc_0: -80.50, rx_agc_1: -81.25
$ rlk 9 21 1
| opt = 21, sub = 1, g_orvex_client_id = 0
| Success to get data, number = 1, sub = 1, ret id_num = 1, id = 111, data_len = 12
| ASDIV DATA: rx_prx: -90.00, rx_drx: -91.75
$ rlk 9 30 0
| opt = 30, sub = 0, g_orvex_client_id = 0
| Success to get data, number = 1, sub = 0, ret id_num = 1, id = 100, data_len = 11
| ANT INFO: ant_num: 2, ant_path: 300, sig_path: 7, old_config: 1, new_config: 2
