# The largest file through the library driver: written in 248 chunks, read
# back whole in 242 with the same checksum; one byte more is refused
# before anything is sent.
$ ext_probe efs_write 0 /lib/max 102410 5
~ RIL[tolvek_efs_write:*]: function entry ------------->
...
| PROBE result=0 len=102410 fnv=0bbe46d4 head=050c131a21282f363d444b525960676e757c838a91989fa6adb4bbc2c9d0d7de
> counter get ext.requests
| 248
$ ext_probe efs_read 0 /lib/max 102410
~ RIL[tolvek_efs_read:*]: function entry ------------->
...
| PROBE result=0 len=102410 fnv=0bbe46d4 head=050c131a21282f363d444b525960676e757c838a91989fa6adb4bbc2c9d0d7de
> counter get ext.requests
| 490
$ ext_probe efs_write 0 /lib/max 102411 5
| RIL[tolvek_efs_write:361]: function entry ------------->
| RIL[tolvek_efs_write:365]: tolvek_efs_write, sub_id 0, path_len: 8, buf_len: 102411
| RIL[tolvek_efs_write:84]: buf_len is invalid
| RIL[tolvek_efs_write:369]: function exit <-------------
| PROBE result=-108 len=102411 fnv=1b892c4d head=050c131a21282f363d444b525960676e757c838a91989fa6adb4bbc2c9d0d7de
> counter get ext.requests
| 490
