# Option 8's argument notes: more than 100 characters, and a word count
# other than one (nothing reaches the AT channel).
$ rlk 8 AT+AAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAB
|
| note: the second parameters length should <= 100, Pls refer to the following cmd:
|
| =========== blew: radio_lab_kit(rlk) cmd help =======================================================
| 8: tolvek at command test
|    rlk 8 atcmd_cxt               /* atcmd_cxt: at command context */
|                                     the len of atcmd can not > 100
| =========== above: radio_lab_kit(rlk) cmd help =======================================================
|
$ rlk 8
|
| note: The number of inputs should be 2, Pls refer to the following cmd:
|
| =========== blew: radio_lab_kit(rlk) cmd help =======================================================
| 8: tolvek at command test
|    rlk 8 atcmd_cxt               /* atcmd_cxt: at command context */
|                                     the len of atcmd can not > 100
| =========== above: radio_lab_kit(rlk) cmd help =======================================================
|
$ rlk 8 AT AT
|
| note: The number of inputs should be 2, Pls refer to the following cmd:
|
| =========== blew: radio_lab_kit(rlk) cmd help =======================================================
| 8: tolvek at command test
|    rlk 8 atcmd_cxt               /* atcmd_cxt: at command context */
|                                     the len of atcmd can not > 100
| =========== above: radio_lab_kit(rlk) cmd help =======================================================
|
