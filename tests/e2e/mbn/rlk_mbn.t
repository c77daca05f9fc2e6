# rlk-mbn against the simulator: a list of sixty in three pages, then
# every outcome by name with its exit status (as JSON: the same message
# and one object on standard output), each run releasing its client; load, select and activate kept across a restart;
# and what is refused before the modem is touched, with the service down.
> pdc reset
> pdc clear sw
> pdc fill sw 60
$ rlk-mbn list --json
| {"type":"sw","sub":0,"count":60,"configs":[{"id":"sw_cfg_000","active":false,"pending":false},{"id":"sw_cfg_001","active":false,"pending":false},{"id":"sw_cfg_002","active":false,"pending":false},{"id":"sw_cfg_003","active":false,"pending":false},{"id":"sw_cfg_004","active":false,"pending":false},{"id":"sw_cfg_005","active":false,"pending":false},{"id":"sw_cfg_006","active":false,"pending":false},{"id":"sw_cfg_007","active":false,"pending":false},{"id":"sw_cfg_008","active":false,"pending":false},{"id":"sw_cfg_009","active":false,"pending":false},{"id":"sw_cfg_010","active":false,"pending":false},{"id":"sw_cfg_011","active":false,"pending":false},{"id":"sw_cfg_012","active":false,"pending":false},{"id":"sw_cfg_013","active":false,"pending":false},{"id":"sw_cfg_014","active":false,"pending":false},{"id":"sw_cfg_015","active":false,"pending":false},{"id":"sw_cfg_016","active":false,"pending":false},{"id":"sw_cfg_017","active":false,"pending":false},{"id":"sw_cfg_018","active":false,"pending":false},{"id":"sw_cfg_019","active":false,"pending":false},{"id":"sw_cfg_020","active":false,"pending":false},{"id":"sw_cfg_021","active":false,"pending":false},{"id":"sw_cfg_022","active":false,"pending":false},{"id":"sw_cfg_023","active":false,"pending":false},{"id":"sw_cfg_024","active":false,"pending":false},{"id":"sw_cfg_025","active":false,"pending":false},{"id":"sw_cfg_026","active":false,"pending":false},{"id":"sw_cfg_027","active":false,"pending":false},{"id":"sw_cfg_028","active":false,"pending":false},{"id":"sw_cfg_029","active":false,"pending":false},{"id":"sw_cfg_030","active":false,"pending":false},{"id":"sw_cfg_031","active":false,"pending":false},{"id":"sw_cfg_032","active":false,"pending":false},{"id":"sw_cfg_033","active":false,"pending":false},{"id":"sw_cfg_034","active":false,"pending":false},{"id":"sw_cfg_035","active":false,"pending":false},{"id":"sw_cfg_036","active":false,"pending":false},{"id":"sw_cfg_037","active":false,"pending":false},{"id":"sw_cfg_038","active":false,"pending":false},{"id":"sw_cfg_039","active":false,"pending":false},{"id":"sw_cfg_040","active":false,"pending":false},{"id":"sw_cfg_041","active":false,"pending":false},{"id":"sw_cfg_042","active":false,"pending":false},{"id":"sw_cfg_043","active":false,"pending":false},{"id":"sw_cfg_044","active":false,"pending":false},{"id":"sw_cfg_045","active":false,"pending":false},{"id":"sw_cfg_046","active":false,"pending":false},{"id":"sw_cfg_047","active":false,"pending":false},{"id":"sw_cfg_048","active":false,"pending":false},{"id":"sw_cfg_049","active":false,"pending":false},{"id":"sw_cfg_050","active":false,"pending":false},{"id":"sw_cfg_051","active":false,"pending":false},{"id":"sw_cfg_052","active":false,"pending":false},{"id":"sw_cfg_053","active":false,"pending":false},{"id":"sw_cfg_054","active":false,"pending":false},{"id":"sw_cfg_055","active":false,"pending":false},{"id":"sw_cfg_056","active":false,"pending":false},{"id":"sw_cfg_057","active":false,"pending":false},{"id":"sw_cfg_058","active":false,"pending":false},{"id":"sw_cfg_059","active":false,"pending":false}]}
logcat| PDC_SUCCESS, more_available_valid 1, ind_token_valid 1, more_available 1, get_list_complete 0
logcat| PDC_SUCCESS, more_available_valid 1, ind_token_valid 1, more_available 1, get_list_complete 0
logcat| PDC_SUCCESS, more_available_valid 1, ind_token_valid 1, more_available 0, get_list_complete 1
logcat| Release client connection to PDC

> pdc reset
$ rlk-mbn list --type hw --sub 1
| 2 hw configurations (sub 1)
|   mcfg_hw_ssss
|   mcfg_hw_dsds  [active]
logcat| Release client connection to PDC
# The selection query after the list fails: what was listed is still
# printed, unmarked, beside the error.
> error pdc 0x22 3 2
$ rlk-mbn list --type hw
| 2 hw configurations (sub 0)
|   mcfg_hw_ssss
|   mcfg_hw_dsds
2| rlk-mbn: list (active and pending): refused by the modem: internal (QMI error 3)
? 1
logcat| Release client connection to PDC
$ rlk-mbn list --type hw --json
| {"type":"hw","sub":0,"count":2,"configs":[{"id":"mcfg_hw_ssss","active":false,"pending":false},{"id":"mcfg_hw_dsds","active":false,"pending":false}],"error":"list (active and pending): refused by the modem: internal (QMI error 3)","exit_status":1}
2| rlk-mbn: list (active and pending): refused by the modem: internal (QMI error 3)
? 1
logcat| Release client connection to PDC
$ rlk-mbn delete Commercial_TMO_VoLTE
| deleted Commercial_TMO_VoLTE
logcat| Release client connection to PDC
$ rlk-mbn delete Commercial_TMO_VoLTE
2| rlk-mbn: delete: invalid id (QMI error 41)
? 1
logcat| Release client connection to PDC
# The active one.
$ rlk-mbn delete ROW_Generic_3GPP
2| rlk-mbn: delete: incompatible state (QMI error 90)
? 1
logcat| Release client connection to PDC
$ rlk-mbn deactivate
| deactivated
logcat| Release client connection to PDC
$ rlk-mbn selected
| active: none
| pending: none
logcat| Release client connection to PDC
$ rlk-mbn deactivate --json
| {"error":"deactivate: not provisioned (QMI error 16)","exit_status":1}
2| rlk-mbn: deactivate: not provisioned (QMI error 16)
? 1
logcat| Release client connection to PDC
# Binary ids round trip as hex.
$ rlk-mbn load $HERE/bin.mbn --id hex:00ff10
| loaded hex:00ff10 (10 bytes)
logcat| Release client connection to PDC
$ rlk-mbn info hex:00ff10 --json
| {"id":"hex:00ff10","size":10,"version":0,"description":"Loaded configuration"}
logcat| Release client connection to PDC
> pdc reset
> pdc capacity 1000
$ rlk-mbn load $HERE/f.mbn
2| rlk-mbn: load: no memory (the modem has no room for the configuration)
? 4
logcat| Release client connection to PDC
> pdc reset
$ rlk-mbn load $HERE/f.mbn --id ROW_Generic_3GPP --json
| {"error":"load: config exists (a configuration with this id is stored)","exit_status":5}
2| rlk-mbn: load: config exists (a configuration with this id is stored)
? 5
logcat| Release client connection to PDC
> pdc fail 0x26 reset 1
$ rlk-mbn load $HERE/f.mbn
2| rlk-mbn: load: frame reset (the modem dropped the partial transfer)
? 6
logcat| Release client connection to PDC
> pdc clear hw
$ rlk-mbn list --type hw --json
| {"error":"list: no MBN (no configuration of this type is stored)","exit_status":7}
2| rlk-mbn: list: no MBN (no configuration of this type is stored)
? 7
logcat| Release client connection to PDC
> pdc reset
> pdc fail 0x26 nomem 1
$ rlk-mbn load $HERE/f.mbn --json
| {"error":"load: no memory (the modem has no room for the configuration)","exit_status":4}
2| rlk-mbn: load: no memory (the modem has no room for the configuration)
? 4
logcat| Release client connection to PDC
> pdc fail 0x26 exists 1
$ rlk-mbn load $HERE/f.mbn
2| rlk-mbn: load: config exists (a configuration with this id is stored)
? 5
logcat| Release client connection to PDC
> pdc fail 0x24 nombn 1
$ rlk-mbn list
2| rlk-mbn: list: no MBN (no configuration of this type is stored)
? 7
logcat| Release client connection to PDC
> pdc fail 0x22 noind 1
$ rlk-mbn selected --timeout 1 --json
| {"error":"selected: no answer from the modem within 1 s","exit_status":3}
2| rlk-mbn: selected: no answer from the modem within 1 s
? 3
logcat| Release client connection to PDC
$ rlk-mbn activate --type hw
2| rlk-mbn: activate: not provisioned (QMI error 16)
? 1
logcat| Release client connection to PDC
> pdc fail 0x25 error 1234 1
$ rlk-mbn delete Commercial_VZW_VoLTE --json
| {"error":"delete: failed (QMI error 1234)","exit_status":1}
2| rlk-mbn: delete: failed (QMI error 1234)
? 1
logcat| Release client connection to PDC
> error pdc 0x23 48 1
$ rlk-mbn select x
2| rlk-mbn: select: refused by the modem: invalid argument (QMI error 48)
? 1
logcat| Release client connection to PDC

# Load, select and activate on subscription 1; the state is on disk.
> pdc reset
> pdc timing 0 0
$ rlk-mbn load $HERE/f.mbn
| loaded f.mbn (100 bytes)
logcat| Release client connection to PDC
$ rlk-mbn info f.mbn
| id: f.mbn
| size: 100
| version: 0x00000000
| description: f.mbn
logcat| Release client connection to PDC
$ rlk-mbn select f.mbn --sub 1
| selected f.mbn (pending until activated)
logcat| Release client connection to PDC
$ rlk-mbn selected --sub 1
| active: ROW_Generic_3GPP
| pending: f.mbn
logcat| Release client connection to PDC
$ rlk-mbn activate --sub 1
| activated; the modem restarts
logcat| Release client connection to PDC
! restart
$ rlk-mbn selected --sub 1 --json
| {"type":"sw","sub":1,"active":"f.mbn","pending":null}
logcat| Release client connection to PDC
$ rlk-mbn selected
| active: ROW_Generic_3GPP
| pending: none
logcat| Release client connection to PDC

# With the service down, what is refused before the modem is touched is
# reported at once; without a client by the deadline the run ends.
> down pdc
$ rlk-mbn
2| rlk-mbn: no command
2| usage: rlk-mbn [options] <command>
2| commands:
2|   list                  configurations of a type, active and pending ones marked
2|   info ID               size, version and description of a configuration
2|   selected              active and pending configuration
2|   load FILE [--id ID]   store FILE in the modem (id: the file name by default)
2|   select ID             make ID the pending configuration
2|   activate              activate the pending configuration (the modem restarts)
2|   deactivate            deactivate the active configuration
2|   delete ID             remove a configuration
2| options:
2|   --type hw|sw          hardware (platform) or software (carrier) configurations; sw by default
2|   --sub N               subscription 0 or 1 (list, selected, select, activate, deactivate); 0 by default
2|   --timeout SECONDS     longest time the whole run takes: opening the PDC client and
2|                         every wait for the modem (default 60)
2|   --json                results as JSON; a failure as {"error":TEXT,"exit_status":N}
2|   --help                this text
2| Options take their value as --name VALUE or --name=VALUE.
2| IDs that are not printable are written hex:<bytes in hexadecimal>.
2| RLK_QMI_DEVICE names a QMI device (such as /dev/cdc-wdm0) to use instead of the simulator.
2| Exit status: 0 success, 1 failure, 2 usage, 3 time-out, 4 no memory, 5 config exists,
2| 6 frame reset, 7 no MBN, 8 QMI device cannot be opened, 9 PDC service restarted
2| during a wait, 128+N stopped by signal N (SIGINT, SIGTERM; the client is released).
? 2
$ rlk-mbn --help
| usage: rlk-mbn [options] <command>
| commands:
|   list                  configurations of a type, active and pending ones marked
|   info ID               size, version and description of a configuration
|   selected              active and pending configuration
|   load FILE [--id ID]   store FILE in the modem (id: the file name by default)
|   select ID             make ID the pending configuration
|   activate              activate the pending configuration (the modem restarts)
|   deactivate            deactivate the active configuration
|   delete ID             remove a configuration
| options:
|   --type hw|sw          hardware (platform) or software (carrier) configurations; sw by default
|   --sub N               subscription 0 or 1 (list, selected, select, activate, deactivate); 0 by default
|   --timeout SECONDS     longest time the whole run takes: opening the PDC client and
|                         every wait for the modem (default 60)
|   --json                results as JSON; a failure as {"error":TEXT,"exit_status":N}
|   --help                this text
| Options take their value as --name VALUE or --name=VALUE.
| IDs that are not printable are written hex:<bytes in hexadecimal>.
| RLK_QMI_DEVICE names a QMI device (such as /dev/cdc-wdm0) to use instead of the simulator.
| Exit status: 0 success, 1 failure, 2 usage, 3 time-out, 4 no memory, 5 config exists,
| 6 frame reset, 7 no MBN, 8 QMI device cannot be opened, 9 PDC service restarted
| during a wait, 128+N stopped by signal N (SIGINT, SIGTERM; the client is released).
$ rlk-mbn list --sub=2 --json
| {"error":"--sub takes 0 or 1","exit_status":2}
2| rlk-mbn: --sub takes 0 or 1
2| usage: rlk-mbn [options] <command>
2...
? 2
$ rlk-mbn info hex:zz
2| rlk-mbn: an id has 1 to 124 bytes
2| usage: rlk-mbn [options] <command>
2...
? 2
$ rlk-mbn list --json=1
2| rlk-mbn: --json takes no value
2| usage: rlk-mbn [options] <command>
2...
? 2
$ rlk-mbn load $DIR/no-such-file.mbn --timeout=5
2~ rlk-mbn: load: cannot open */no-such-file.mbn: No such file or directory
? 1
$ rlk-mbn load $DIR --id x --timeout 5
2~ rlk-mbn: load: cannot read *: Is a directory
? 1
$ RLK_QMI_DEVICE=$DIR/no-such-device rlk-mbn list --timeout 5
2~ rlk-mbn: cannot open the QMI device */no-such-device (RLK_QMI_DEVICE): No such file or directory
? 8
$ rlk-mbn list --timeout=1
2| rlk-mbn: the PDC service did not answer within 1 s
? 3
