/* A driver of the tool's extension-service library calls for end-to-end
 * tests, started like rlk (one process, one lazily opened connection):
 *
 *   ext_probe send <code> <req_len> <rsp_cap>      request bytes are i & 0xff
 *   ext_probe efs_write <sub> <path> <len> <seed>  data bytes are (seed + 7 i) & 0xff
 *   ext_probe efs_read <sub> <path> <cap>
 *   ext_probe efs_delete <sub> <path>
 *   ext_probe common <type> <len>                  value bytes are i & 0xff
 *
 * Besides what the library prints, the last line is
 * "PROBE result=<r> len=<n> fnv=<hash of the bytes> head=<first 32 bytes>"
 * (len, fnv and head only where the call returns bytes). */
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include <string>
#include <vector>

#include "tolvek_extend_cmn.h"
#include "tolvek_extend_nvefs.h"

namespace {

int report(int result, const uint8_t *data, size_t len)
{
    uint32_t fnv = 2166136261u;
    for (size_t i = 0; i < len; i++) fnv = (fnv ^ data[i]) * 16777619u;
    printf("PROBE result=%d len=%zu fnv=%08x head=", result, len, fnv);
    for (size_t i = 0; i < len && i < 32; i++) printf("%02x", data[i]);
    printf("\n");
    return 0;
}

uint32_t arg_u32(const char *text) { return uint32_t(strtoul(text, nullptr, 0)); }

/* `n` bytes (seed + step i) & 0xff. */
std::vector<uint8_t> pattern(size_t n, uint32_t seed, uint32_t step)
{
    std::vector<uint8_t> out(n);
    for (size_t i = 0; i < n; i++) out[i] = uint8_t(seed + step * i);
    return out;
}

}  // namespace

int main(int argc, char **argv)
{
    const std::string cmd = argc > 1 ? argv[1] : "";
    if (cmd == "send" && argc == 5) {
        std::vector<uint8_t> req = pattern(TOLVEK_EXTEND_DATA_MAX + 8, 0, 1), rsp(TOLVEK_EXTEND_DATA_MAX + 8, 0xEE);
        uint32_t len = arg_u32(argv[4]);
        int result = tolvek_extend_qmi_send_sync(arg_u32(argv[2]), req.data(), atoi(argv[3]), rsp.data(), &len);
        return report(result, rsp.data(), result == 0 && len <= rsp.size() ? len : 0);
    }
    if (cmd == "efs_write" && argc == 6) {
        uint32_t len = arg_u32(argv[4]);
        std::vector<uint8_t> data = pattern(len + 1, arg_u32(argv[5]), 7);
        return report(tolvek_efs_write(arg_u32(argv[2]), argv[3], uint32_t(strlen(argv[3])), data.data(), len),
                      data.data(), len);
    }
    if (cmd == "efs_read" && argc == 5) {
        uint32_t len = arg_u32(argv[4]);
        std::vector<uint8_t> data(len + 1);
        int result = tolvek_efs_read(arg_u32(argv[2]), argv[3], uint32_t(strlen(argv[3])), data.data(), &len);
        return report(result, data.data(), result == 0 ? len : 0);
    }
    if (cmd == "efs_delete" && argc == 4) {
        return report(tolvek_efs_delete(arg_u32(argv[2]), argv[3], uint32_t(strlen(argv[3]))), nullptr, 0);
    }
    if (cmd == "common" && argc == 4) {
        std::vector<uint8_t> value = pattern(TOLVEK_COMMON_VALUE_MAX, 0, 1);
        tolvek_common_rsp rsp;
        tolvek_send_common_qmi_msg(arg_u32(argv[2]), arg_u32(argv[3]), value.data(), &rsp);
        printf("PROBE word=%u result=%d type=%u len=%u\n", rsp.word, rsp.result, rsp.type, rsp.len);
        return 0;
    }
    fprintf(stderr, "usage: ext_probe send|efs_write|efs_read|efs_delete|common ...\n");
    return 2;
}
