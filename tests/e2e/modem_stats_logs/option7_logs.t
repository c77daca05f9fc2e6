# Option 7 run as a user runs it, without a modem: the 68-byte sample
# payload under every log code the parsers understand (most refuse the
# version byte 15, or 0x3000F read as a 32-bit version; 0xB883 accepts it
# and finds no record) and under every event id, unknown codes, ids above
# 0xFFFF (their low 16 bits count), and the type and argument errors.
simulator: off

$ rlk 7 0 0x1568
| length = 68, type = 0, id = 5480(0x1568)
| modem_stats_diag_process_log_ex: log_id 0x1568, length 68, sub_id = 0
| VERSION_NOT_SUPPORT, version(15), not_support_num(1), name(modem_stats_parse_1568_diag_log_ims_rtp_sn_and_payload), id(0x1568)

$ rlk 7 0 0x156E
| length = 68, type = 0, id = 5486(0x156e)
| modem_stats_diag_process_log_ex: log_id 0x156e, length 68, sub_id = 0
| VERSION_NOT_SUPPORT, version(15), not_support_num(1), name(modem_stats_parse_156e_diag_log_ims_sip_message), id(0x156e)

$ rlk 7 0 0x1830
| length = 68, type = 0, id = 6192(0x1830)
| modem_stats_diag_process_log_ex: log_id 0x1830, length 68, sub_id = 0
| VERSION_NOT_SUPPORT, version(15), not_support_num(1), name(modem_stats_parse_1830_diag_log_ims_volte_session_setup), id(0x1830)

$ rlk 7 0 0x1831
| length = 68, type = 0, id = 6193(0x1831)
| modem_stats_diag_process_log_ex: log_id 0x1831, length 68, sub_id = 0
| VERSION_NOT_SUPPORT, version(15), not_support_num(1), name(modem_stats_parse_1831_diag_log_ims_volte_session_end), id(0x1831)

$ rlk 7 0 0x4179
| length = 68, type = 0, id = 16761(0x4179)
| modem_stats_diag_process_log_ex: log_id 0x4179, length 68, sub_id = 0
| VERSION_NOT_SUPPORT, version(15), not_support_num(1), name(modem_stats_parse_4179_diag_log_wcdma_pn_search_edition2), id(0x4179)

$ rlk 7 0 0x5096
| length = 68, type = 0, id = 20630(0x5096)
| modem_stats_diag_process_log_ex: log_id 0x5096, length 68, sub_id = 0
| VERSION_NOT_SUPPORT, version(15), not_support_num(1), name(modem_stats_parse_5096_diag_log_gsm_l1_rx_diversity_metrics), id(0x5096)

$ rlk 7 0 0xB062
| length = 68, type = 0, id = 45154(0xb062)
| modem_stats_diag_process_log_ex: log_id 0xb062, length 68, sub_id = 0
| VERSION_NOT_SUPPORT, version(15), not_support_num(1), name(modem_stats_parse_b062_diag_log_lte_mac_rach_attempt), id(0xb062)

$ rlk 7 0 0xB064
| length = 68, type = 0, id = 45156(0xb064)
| modem_stats_diag_process_log_ex: log_id 0xb064, length 68, sub_id = 0
| VERSION_NOT_SUPPORT, version(15), not_support_num(1), name(modem_stats_parse_b064_diag_log_lte_mac_ul_transport_block), id(0xb064)

$ rlk 7 0 0xB0C2
| length = 68, type = 0, id = 45250(0xb0c2)
| modem_stats_diag_process_log_ex: log_id 0xb0c2, length 68, sub_id = 0
| VERSION_NOT_SUPPORT, version(15), not_support_num(1), name(modem_stats_parse_b0c2_diag_log_lte_rrc_serving_cell_info), id(0xb0c2)

$ rlk 7 0 0xB111
| length = 68, type = 0, id = 45329(0xb111)
| modem_stats_diag_process_log_ex: log_id 0xb111, length 68, sub_id = 0
| VERSION_NOT_SUPPORT, version(15), not_support_num(1), name(modem_stats_parse_b111_diag_log_lte_ll1_rx_agc), id(0xb111)

$ rlk 7 0 0xB14E
| length = 68, type = 0, id = 45390(0xb14e)
| modem_stats_diag_process_log_ex: log_id 0xb14e, length 68, sub_id = 0
| VERSION_NOT_SUPPORT, version(15), not_support_num(1), name(modem_stats_parse_b14e_diag_log_lte_pusch_csf), id(0xb14e)

$ rlk 7 0 0xB16D
| length = 68, type = 0, id = 45421(0xb16d)
| modem_stats_diag_process_log_ex: log_id 0xb16d, length 68, sub_id = 0
| VERSION_NOT_SUPPORT, version(15), not_support_num(1), name(modem_stats_parse_b16d_diag_log_lte_tx_power), id(0xb16d)

$ rlk 7 0 0xB16E
| length = 68, type = 0, id = 45422(0xb16e)
| modem_stats_diag_process_log_ex: log_id 0xb16e, length 68, sub_id = 0
| VERSION_NOT_SUPPORT, version(15), not_support_num(1), name(modem_stats_parse_b16e_diag_log_lte_pusch_power_control), id(0xb16e)

$ rlk 7 0 0xB16F
| length = 68, type = 0, id = 45423(0xb16f)
| modem_stats_diag_process_log_ex: log_id 0xb16f, length 68, sub_id = 0
| VERSION_NOT_SUPPORT, version(15), not_support_num(1), name(modem_stats_parse_b16f_diag_log_lte_pucch_power_control), id(0xb16f)

$ rlk 7 0 0xB173
| length = 68, type = 0, id = 45427(0xb173)
| modem_stats_diag_process_log_ex: log_id 0xb173, length 68, sub_id = 0
| VERSION_NOT_SUPPORT, version(15), not_support_num(1), name(modem_stats_parse_b173_diag_log_lte_pdsch_stat_indication), id(0xb173)

$ rlk 7 0 0xB193
| length = 68, type = 0, id = 45459(0xb193)
| modem_stats_diag_process_log_ex: log_id 0xb193, length 68, sub_id = 0
| VERSION_NOT_SUPPORT, version(15), not_support_num(1), name(modem_stats_parse_b193_diag_log_lte_srv_meas), id(0xb193)

$ rlk 7 0 0xB823
| length = 68, type = 0, id = 47139(0xb823)
| modem_stats_diag_process_log_ex: log_id 0xb823, length 68, sub_id = 0
| VERSION_NOT_SUPPORT, version(196623), not_support_num(1), name(modem_stats_parse_b823_diag_log_nr5g_rrc_serving_cell_info), id(0xb823)

$ rlk 7 0 0xB825
| length = 68, type = 0, id = 47141(0xb825)
| modem_stats_diag_process_log_ex: log_id 0xb825, length 68, sub_id = 0
| VERSION_NOT_SUPPORT, version(196623), not_support_num(1), name(modem_stats_parse_b825_diag_log_nr5g_rrc_configuration_info), id(0xb825)

$ rlk 7 0 0xB872
| length = 68, type = 0, id = 47218(0xb872)
| modem_stats_diag_process_log_ex: log_id 0xb872, length 68, sub_id = 0
| VERSION_NOT_SUPPORT, version(196623), not_support_num(1), name(modem_stats_parse_b872_diag_log_nr5g_l2_ul_tb), id(0xb872)

$ rlk 7 0 0xB883
| length = 68, type = 0, id = 47235(0xb883)
| modem_stats_diag_process_log_ex: log_id 0xb883, length 68, sub_id = 0
| DATA_IS_NOT_VALID(0), name(modem_stats_parse_b883_diag_log_nr5g_mac_ul_physical_channel_schedule_report), id(0xb883)

$ rlk 7 0 0xB884
| length = 68, type = 0, id = 47236(0xb884)
| modem_stats_diag_process_log_ex: log_id 0xb884, length 68, sub_id = 0
| VERSION_NOT_SUPPORT, version(196623), not_support_num(1), name(modem_stats_parse_b884_diag_log_nr5g_mac_ul_phy_ch_power_ctrl), id(0xb884)

$ rlk 7 0 0xB885
| length = 68, type = 0, id = 47237(0xb885)
| modem_stats_diag_process_log_ex: log_id 0xb885, length 68, sub_id = 0
| VERSION_NOT_SUPPORT, version(196623), not_support_num(1), name(modem_stats_parse_b885_diag_log_nr5g_mac_dci_info), id(0xb885)

$ rlk 7 0 0xB887
| length = 68, type = 0, id = 47239(0xb887)
| modem_stats_diag_process_log_ex: log_id 0xb887, length 68, sub_id = 0
| VERSION_NOT_SUPPORT, version(196623), not_support_num(1), name(modem_stats_parse_b887_diag_log_nr5g_mac_pdsch_status), id(0xb887)

$ rlk 7 0 0xB888
| length = 68, type = 0, id = 47240(0xb888)
| modem_stats_diag_process_log_ex: log_id 0xb888, length 68, sub_id = 0
| VERSION_NOT_SUPPORT, version(196623), not_support_num(1), name(modem_stats_parse_b888_diag_log_nr5g_mac_pdsch_stats), id(0xb888)

$ rlk 7 0 0xB88A
| length = 68, type = 0, id = 47242(0xb88a)
| modem_stats_diag_process_log_ex: log_id 0xb88a, length 68, sub_id = 0
| VERSION_NOT_SUPPORT, version(196623), not_support_num(1), name(modem_stats_parse_b88a_diag_log_nr5g_mac_rach_attempt), id(0xb88a)

$ rlk 7 0 0xB8A7
| length = 68, type = 0, id = 47271(0xb8a7)
| modem_stats_diag_process_log_ex: log_id 0xb8a7, length 68, sub_id = 0
| VERSION_NOT_SUPPORT, version(196623), not_support_num(1), name(modem_stats_parse_b8a7_diag_log_nr5g_mac_csf_report), id(0xb8a7)

$ rlk 7 0 0xB8C9
| length = 68, type = 0, id = 47305(0xb8c9)
| modem_stats_diag_process_log_ex: log_id 0xb8c9, length 68, sub_id = 0
| VERSION_NOT_SUPPORT, version(196623), not_support_num(1), name(modem_stats_parse_b8c9_diag_log_nr5g_ll1_fw_rx_control_agc), id(0xb8c9)

$ rlk 7 0 0xB8D2
| length = 68, type = 0, id = 47314(0xb8d2)
| modem_stats_diag_process_log_ex: log_id 0xb8d2, length 68, sub_id = 0
| VERSION_NOT_SUPPORT, version(196623), not_support_num(1), name(modem_stats_parse_b8d2_diag_log_nr5g_ll1_fw_mac_tx_iu_power), id(0xb8d2)

$ rlk 7 0 0xB8D8
| length = 68, type = 0, id = 47320(0xb8d8)
| modem_stats_diag_process_log_ex: log_id 0xb8d8, length 68, sub_id = 0
| VERSION_NOT_SUPPORT, version(196623), not_support_num(1), name(modem_stats_parse_b8d8_diag_log_nr5g_ll1_log_serving_snr), id(0xb8d8)

$ rlk 7 0 0xB8DD
| length = 68, type = 0, id = 47325(0xb8dd)
| modem_stats_diag_process_log_ex: log_id 0xb8dd, length 68, sub_id = 0
| VERSION_NOT_SUPPORT, version(196623), not_support_num(1), name(modem_stats_parse_b8dd_diag_log_nr5g_ll1_fw_serving_ftl), id(0xb8dd)

$ rlk 7 0 0xB975
| length = 68, type = 0, id = 47477(0xb975)
| modem_stats_diag_process_log_ex: log_id 0xb975, length 68, sub_id = 0
| VERSION_NOT_SUPPORT, version(196623), not_support_num(1), name(modem_stats_parse_b975_diag_log_nr5g_mac_ml1_srv_beam), id(0xb975)

$ rlk 7 0 0xB97F
| length = 68, type = 0, id = 47487(0xb97f)
| modem_stats_diag_process_log_ex: log_id 0xb97f, length 68, sub_id = 0
| VERSION_NOT_SUPPORT, version(196623), not_support_num(1), name(modem_stats_parse_b97f_diag_log_nr5g_ml1_meas_database_update_ext), id(0xb97f)

$ rlk 7 0 0xB981
| length = 68, type = 0, id = 47489(0xb981)
| modem_stats_diag_process_log_ex: log_id 0xb981, length 68, sub_id = 0
| VERSION_NOT_SUPPORT, version(196623), not_support_num(1), name(modem_stats_parse_b981_diag_log_nr5g_ml1_fc_information), id(0xb981)

$ rlk 7 0 0xB98F
| length = 68, type = 0, id = 47503(0xb98f)
| modem_stats_diag_process_log_ex: log_id 0xb98f, length 68, sub_id = 0
| VERSION_NOT_SUPPORT, version(196623), not_support_num(1), name(modem_stats_parse_b98f_diag_log_nr5g_ml1_antenna_switch_diversity), id(0xb98f)

$ rlk 7 1 629
| length = 68, type = 1, id = 629(0x275)
| modem_stats_diag_process_event_ex: event_id 629, length 68, sub_id = 0
| call_id = 15, call_type = 0, srv_type = 3

$ rlk 7 1 631
| length = 68, type = 1, id = 631(0x277)
| modem_stats_diag_process_event_ex: event_id 631, length 68, sub_id = 0
| num_calls = 15, call_id = 0

$ rlk 7 1 1428
| length = 68, type = 1, id = 1428(0x594)
| modem_stats_diag_process_event_ex: event_id 1428, length 68, sub_id = 0
| sip_call_id = 196623

$ rlk 7 1 1429
| length = 68, type = 1, id = 1429(0x595)
| modem_stats_diag_process_event_ex: event_id 1429, length 68, sub_id = 0
| sip_call_id = 196623

$ rlk 7 1 1430
| length = 68, type = 1, id = 1430(0x596)
| modem_stats_diag_process_event_ex: event_id 1430, length 68, sub_id = 0
| sip_call_id = 196623

$ rlk 7 1 1431
| length = 68, type = 1, id = 1431(0x597)
| modem_stats_diag_process_event_ex: event_id 1431, length 68, sub_id = 0
| sip_call_id = 196623

$ rlk 7 1 1432
| length = 68, type = 1, id = 1432(0x598)
| modem_stats_diag_process_event_ex: event_id 1432, length 68, sub_id = 0
| sip_call_id = 196623

$ rlk 7 1 1433
| length = 68, type = 1, id = 1433(0x599)
| modem_stats_diag_process_event_ex: event_id 1433, length 68, sub_id = 0
| sip_call_id = 196623

$ rlk 7 1 1606
| length = 68, type = 1, id = 1606(0x646)
| modem_stats_diag_process_event_ex: event_id 1606, length 68, sub_id = 0
| sub_id = 0, rrc_state_current_in = 15
| 1606_diag_event_lte_rrc_state_change, time_last = 0, time_current = 0, rrc_state_last = 0, rrc_state_current = 15, rrc_state_current_in = 15, old rrc_active_time = 0, old rrc_setup_count = 0
| 1606_diag_event_lte_rrc_state_change, New other state and Old other state, do nothing, sub_id 0

$ rlk 7 1 1632
| length = 68, type = 1, id = 1632(0x660)
| modem_stats_diag_process_event_ex: event_id 1632, length 68, sub_id = 0
| lte_emm_timer_expiry, sub_id = 0, timer_id = 15

$ rlk 7 1 1995
| length = 68, type = 1, id = 1995(0x7cb)
| modem_stats_diag_process_event_ex: event_id 1995, length 68, sub_id = 0
| sub_id = 0, rlf_count_rrc_connected = 15, rlf_count_lte_active = 3, rlf_cause = 0

$ rlk 7 1 2568
| length = 68, type = 1, id = 2568(0xa08)
| modem_stats_diag_process_event_ex: event_id 2568, length 68, sub_id = 0
| cause = 15, freq = 768, pci = 0
| DATA_IS_NOT_VALID(15), name(modem_stats_parse_2568_diag_event_lte_rrc_new_cell_ind_ext_earfcn), id(0xa08)

$ rlk 7 1 2622
| length = 68, type = 1, id = 2622(0xa3e)
| modem_stats_diag_process_event_ex: event_id 2622, length 68, sub_id = 0
| version = 0, ant_number = 0, ant_switch_path = 256, sig_path = 275, old_config = 0, new_config = 3

$ rlk 7 1 3184
| length = 68, type = 1, id = 3184(0xc70)
| modem_stats_diag_process_event_ex: event_id 3184, length 68, sub_id = 0
| ssb_freq = 196623, pci = 0, bw = 0

$ rlk 7 1 3215
| length = 68, type = 1, id = 3215(0xc8f)
| modem_stats_diag_process_event_ex: event_id 3215, length 68, sub_id = 0
| nr5g_emm_timer_expiry, sub_id = 0, timer_id = 15

$ rlk 7 1 3243
| length = 68, type = 1, id = 3243(0xcab)
| modem_stats_diag_process_event_ex: event_id 3243, length 68, sub_id = 0
| sub_id = 0, scg_failure_cause = 513

$ rlk 7 1 630
| length = 68, type = 1, id = 630(0x276)
| modem_stats_diag_process_event_ex: event_id 630, length 68, sub_id = 0

$ rlk 7 0 0x1234
| length = 68, type = 0, id = 4660(0x1234)
| modem_stats_diag_process_log_ex: log_id 0x1234, length 68, sub_id = 0

$ rlk 7 1 0x10c70
| length = 68, type = 1, id = 3184(0xc70)
| modem_stats_diag_process_event_ex: event_id 3184, length 68, sub_id = 0
| ssb_freq = 196623, pci = 0, bw = 0

$ rlk 7 1 68720
| length = 68, type = 1, id = 3184(0xc70)
| modem_stats_diag_process_event_ex: event_id 3184, length 68, sub_id = 0
| ssb_freq = 196623, pci = 0, bw = 0

$ rlk 7 0 70003
| length = 68, type = 0, id = 4467(0x1173)
| modem_stats_diag_process_log_ex: log_id 0x1173, length 68, sub_id = 0

$ rlk 7
|
| note: Too few parameters, Pls refer to the following cmd:
|
| =========== blew: radio_lab_kit(rlk) cmd help =======================================================
| 7: tolvek modem stats test
|    rlk 7 type(0/1) id            /* type: 0 - log; 1 - event; */
|                                     id: id of log or event 
|    rlk 7 2 mask                  /* get the debug info of modem stats */
|                                     mask: 0 - check, 1 - main; 2 - diag; 4 - cm; 8 - uim, 255 - all 
| =========== above: radio_lab_kit(rlk) cmd help =======================================================
|

$ rlk 7 1
|
| note: Too few parameters, Pls refer to the following cmd:
| tolvek_test_modem_stats_log_or_event FAIL
|
| =========== blew: radio_lab_kit(rlk) cmd help =======================================================
| 7: tolvek modem stats test
|    rlk 7 type(0/1) id            /* type: 0 - log; 1 - event; */
|                                     id: id of log or event 
|    rlk 7 2 mask                  /* get the debug info of modem stats */
|                                     mask: 0 - check, 1 - main; 2 - diag; 4 - cm; 8 - uim, 255 - all 
| =========== above: radio_lab_kit(rlk) cmd help =======================================================
|

$ rlk 7 0
|
| note: Too few parameters, Pls refer to the following cmd:
| tolvek_test_modem_stats_log_or_event FAIL
|
| =========== blew: radio_lab_kit(rlk) cmd help =======================================================
| 7: tolvek modem stats test
|    rlk 7 type(0/1) id            /* type: 0 - log; 1 - event; */
|                                     id: id of log or event 
|    rlk 7 2 mask                  /* get the debug info of modem stats */
|                                     mask: 0 - check, 1 - main; 2 - diag; 4 - cm; 8 - uim, 255 - all 
| =========== above: radio_lab_kit(rlk) cmd help =======================================================
|

$ rlk 7 5 3184
| invalid type = 5
|
| =========== blew: radio_lab_kit(rlk) cmd help =======================================================
| 7: tolvek modem stats test
|    rlk 7 type(0/1) id            /* type: 0 - log; 1 - event; */
|                                     id: id of log or event 
|    rlk 7 2 mask                  /* get the debug info of modem stats */
|                                     mask: 0 - check, 1 - main; 2 - diag; 4 - cm; 8 - uim, 255 - all 
| =========== above: radio_lab_kit(rlk) cmd help =======================================================
|

$ rlk 7 -1 3184
| invalid type = -1
|
| =========== blew: radio_lab_kit(rlk) cmd help =======================================================
| 7: tolvek modem stats test
|    rlk 7 type(0/1) id            /* type: 0 - log; 1 - event; */
|                                     id: id of log or event 
|    rlk 7 2 mask                  /* get the debug info of modem stats */
|                                     mask: 0 - check, 1 - main; 2 - diag; 4 - cm; 8 - uim, 255 - all 
| =========== above: radio_lab_kit(rlk) cmd help =======================================================
|

$ rlk 7 abc 3184
| length = 68, type = 0, id = 3184(0xc70)
| modem_stats_diag_process_log_ex: log_id 0xc70, length 68, sub_id = 0
