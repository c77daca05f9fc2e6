# The SAR state set through the control interface is read back; without
# the service the query fails with -1, and the group still reports no error.
$ rlk 5 5
| RIL[tolvek_get_sar_dsi:30]: function entry ------------->
| RIL[tolvek_get_sar_dsi:49]: dsi vailid = 1 , dsi value = 0
| SAR DSI: 0
| RIL[tolvek_get_sar_dsi:51]: function exit <-------------
> sar state 7
$ rlk 5 5
| RIL[tolvek_get_sar_dsi:30]: function entry ------------->
| RIL[tolvek_get_sar_dsi:49]: dsi vailid = 1 , dsi value = 7
| SAR DSI: 7
| RIL[tolvek_get_sar_dsi:51]: function exit <-------------
> sar state
| 7
> down sar
$ rlk 5 5
| RIL[tolvek_get_sar_dsi:30]: function entry ------------->
| RIL[tolvek_get_sar_dsi:39]: qmi_client_init_instance failed, qmi_client_error = -3
| RIL[tolvek_get_sar_dsi:49]: dsi vailid = 0 , dsi value = 0
| SAR DSI: -1
| RIL[tolvek_get_sar_dsi:51]: function exit <-------------
