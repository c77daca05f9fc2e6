# rlk-replay's help, and every usage error: its text and the hint on
# standard error, status 2, nothing on standard output.
simulator: off

$ rlk-replay --help
| usage: rlk-replay [options] <capture>...
|
| Decodes diag captures through the modem statistics parsers of rlk: every
| log packet (command 0x10) and event record (command 0x60) is handed to
| modem_stats_diag_process_log_ex / modem_stats_diag_process_event_ex, and
| what the parsers print is shown packet by packet, each packet preceded by
| a header line:
|   #<n> <UTC date> <UTC time> UTC log 0x<code> length <bytes> sub <0|1>
|   #<n> <UTC date> <UTC time> UTC event <id> length <bytes> sub <0|1>
| A summary follows the last packet: packets per log code and event id,
| records made per data id, versions refused per code and version, frames
| skipped and why, frames of other commands.
|
| A capture is a file, '-' for standard input, or a character device (a
| diag serial port), read until interrupted (Ctrl-C) and then summarised.
| Formats: HDLC-framed streams (.qmdl, .mi2log, serial dumps; frames with a
| bad CRC, a bad escape or no end are counted and skipped) and DLF; the
| multi-SIM wrapper gives the subscription.
|
| options:
|   -f, --format FORMAT  auto (default: decided from the first bytes), hdlc or dlf
|   -l, --log CODES      decode only these log codes (comma separated,
|                        0x-prefixed hex or decimal; may be repeated)
|   -e, --event IDS      decode only these event ids (as for --log)
|                        (with --log and/or --event, nothing else is decoded)
|   -s, --summary-only   print the summary alone
|   -j, --json           one JSON object per line and packet: type, n, code,
|                        timestamp, subscription, length, records (data_id and
|                        bytes in hex) and lines (what the parsers printed);
|                        the summary is the last line, with type "summary"
|       --pcap FILE      also write the signalling messages (LTE RRC and NAS,
|                        WCDMA RRC, GSM RR) as GSMTAP in a pcap file for
|                        Wireshark; '-' writes it to standard output (the
|                        other output then goes to standard error)
|       --no-progress    no progress line on standard error
|   -h, --help           this text
|
| Timestamps are the modem's clock, counted from 1980-01-06 00:00:00 UTC.
| Exit status: 0 when every input was read to its end, 1 when an input could
| not be opened or read, 2 for a usage error, 128 + the signal number when
| interrupted before the end of a file (a character device ends normally).

$ rlk-replay
2| rlk-replay: no capture given (use - for standard input)
2| Try 'rlk-replay --help'.
? 2

$ rlk-replay -s
2| rlk-replay: no capture given (use - for standard input)
2| Try 'rlk-replay --help'.
? 2

$ rlk-replay --bogus x
2| rlk-replay: unknown option '--bogus'
2| Try 'rlk-replay --help'.
? 2

$ rlk-replay -x x
2| rlk-replay: unknown option '-x'
2| Try 'rlk-replay --help'.
? 2

$ rlk-replay x --log
2| rlk-replay: option '--log' needs a value
2| Try 'rlk-replay --help'.
? 2

$ rlk-replay --log 0x10000 x
2| rlk-replay: invalid log code '0x10000' (0 to 65535, decimal or 0x-prefixed hex)
2| Try 'rlk-replay --help'.
? 2

$ rlk-replay --log 0xFFFF,0xB193, x
2| rlk-replay: invalid log code '' (0 to 65535, decimal or 0x-prefixed hex)
2| Try 'rlk-replay --help'.
? 2

$ rlk-replay --log -1 x
2| rlk-replay: invalid log code '-1' (0 to 65535, decimal or 0x-prefixed hex)
2| Try 'rlk-replay --help'.
? 2

$ rlk-replay --log 0x x
2| rlk-replay: invalid log code '0x' (0 to 65535, decimal or 0x-prefixed hex)
2| Try 'rlk-replay --help'.
? 2

$ rlk-replay --log B193 x
2| rlk-replay: invalid log code 'B193' (0 to 65535, decimal or 0x-prefixed hex)
2| Try 'rlk-replay --help'.
? 2

$ rlk-replay --event 4096 x
2| rlk-replay: invalid event id '4096' (0 to 4095, decimal or 0x-prefixed hex)
2| Try 'rlk-replay --help'.
? 2

$ rlk-replay --event 16o6 x
2| rlk-replay: invalid event id '16o6' (0 to 4095, decimal or 0x-prefixed hex)
2| Try 'rlk-replay --help'.
? 2

$ rlk-replay --format pcap x
2| rlk-replay: unknown format 'pcap' (auto, hdlc or dlf)
2| Try 'rlk-replay --help'.
? 2

$ rlk-replay -s -j x
2| rlk-replay: --summary-only and --json exclude each other
2| Try 'rlk-replay --help'.
? 2

$ rlk-replay --json=1 x
2| rlk-replay: option '--json' takes no value
2| Try 'rlk-replay --help'.
? 2
