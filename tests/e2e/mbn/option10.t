# Option 10: the argument checks come before PDC; the client opens
# silently; mbn_i 1 is refused without the help, other indexes with it.
# The init function's own source lines may move: '*' stands for them.
$ rlk 10 0 4
|
| note: sub_mask(4) is invalid:
|
| =========== blew: radio_lab_kit(rlk) cmd help =======================================================
| 10: tolvek mbn test
| =========== above: radio_lab_kit(rlk) cmd help =======================================================
|
$ rlk 10 0 0
|
| note: sub_mask(0) is invalid:
|
| =========== blew: radio_lab_kit(rlk) cmd help =======================================================
| 10: tolvek mbn test
| =========== above: radio_lab_kit(rlk) cmd help =======================================================
|
$ rlk 10 0 x
|
| note: sub_mask(0) is invalid:
|
| =========== blew: radio_lab_kit(rlk) cmd help =======================================================
| 10: tolvek mbn test
| =========== above: radio_lab_kit(rlk) cmd help =======================================================
|
$ rlk 10 0
|
| note: Too few parameters, Pls refer to the following cmd:
|
| =========== blew: radio_lab_kit(rlk) cmd help =======================================================
| 10: tolvek mbn test
| =========== above: radio_lab_kit(rlk) cmd help =======================================================
|
$ rlk 10
|
| note: Too few parameters, Pls refer to the following cmd:
|
| =========== blew: radio_lab_kit(rlk) cmd help =======================================================
| 10: tolvek mbn test
| =========== above: radio_lab_kit(rlk) cmd help =======================================================
|
$ rlk 10 0 1
~ RIL[tolvek_test_mbn_pdc_init:*]: function entry ------------->
~ RIL[tolvek_test_mbn_pdc_init:*]: start tolvek pdc init, g_pdc_init_status = -1, force_init = 0
~ RIL[tolvek_test_mbn_pdc_init:*]: function exit <-------------
logcat| pdc_info init done
logcat| qmi_client_init succeeds for PDC
$ rlk 10 1 1
~ RIL[tolvek_test_mbn_pdc_init:*]: function entry ------------->
~ RIL[tolvek_test_mbn_pdc_init:*]: start tolvek pdc init, g_pdc_init_status = -1, force_init = 0
~ RIL[tolvek_test_mbn_pdc_init:*]: function exit <-------------
logcat| pdc_info init done
logcat| qmi_client_init succeeds for PDC
| invalid mbn_i = 1
$ rlk 10 2 3
~ RIL[tolvek_test_mbn_pdc_init:*]: function entry ------------->
~ RIL[tolvek_test_mbn_pdc_init:*]: start tolvek pdc init, g_pdc_init_status = -1, force_init = 0
~ RIL[tolvek_test_mbn_pdc_init:*]: function exit <-------------
logcat| pdc_info init done
logcat| qmi_client_init succeeds for PDC
| invalid mbn_i = 2
|
| =========== blew: radio_lab_kit(rlk) cmd help =======================================================
| 10: tolvek mbn test
| =========== above: radio_lab_kit(rlk) cmd help =======================================================
|
$ rlk 10 -1 2
~ RIL[tolvek_test_mbn_pdc_init:*]: function entry ------------->
~ RIL[tolvek_test_mbn_pdc_init:*]: start tolvek pdc init, g_pdc_init_status = -1, force_init = 0
~ RIL[tolvek_test_mbn_pdc_init:*]: function exit <-------------
logcat| pdc_info init done
logcat| qmi_client_init succeeds for PDC
| invalid mbn_i = -1
|
| =========== blew: radio_lab_kit(rlk) cmd help =======================================================
| 10: tolvek mbn test
| =========== above: radio_lab_kit(rlk) cmd help =======================================================
|

# A PDC service that never comes: twenty attempts (the C++ test counts
# them), then the failure.
> down pdc
$ RLK_TEST_PDC_RETRY_MS=1 mbn_retry_probe 10 0 1
~ RIL[tolvek_test_mbn_pdc_init:*]: function entry ------------->
~ RIL[tolvek_test_mbn_pdc_init:*]: start tolvek pdc init, g_pdc_init_status = -1, force_init = 0
~ RIL[tolvek_test_mbn_pdc_init:*]: pdc init failed
~ RIL[tolvek_test_mbn_pdc_init:*]: function exit <-------------
logcat| qmi_client_init returned failure (-3) for PDC, retry times 19
log| SUB[shell][tolvek_test_mbn.cpp:199] tolvek_test_mbn_do: pdc init failed, do nothing
| RIL[tolvek_test_mbn_do:199]: pdc init failed, do nothing
|
| =========== blew: radio_lab_kit(rlk) cmd help =======================================================
| 10: tolvek mbn test
| =========== above: radio_lab_kit(rlk) cmd help =======================================================
|
