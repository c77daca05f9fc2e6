#include "ext_restart.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

#include <string>

namespace modemd {
namespace {

/* The restart delay of this simulator (one daemon per process). */
uint32_t g_restart_delay_ms = k_restart_delay_default_ms;

/* Most dump files kept side by side; a dump beyond them is refused. */
constexpr int k_dump_files_max = 1000;

/* The one 32-bit value a restart request carries. */
constexpr uint32_t k_ssr_value_len = 4;

uint32_t value_u32(const tolvek_common_req &req)
{
    return uint32_t(req.value[0]) | uint32_t(req.value[1]) << 8 | uint32_t(req.value[2]) << 16 |
           uint32_t(req.value[3]) << 24;
}

std::string utc_now()
{
    time_t now = time(nullptr);
    struct tm tm_utc;
    gmtime_r(&now, &tm_utc);
    char text[32];
    strftime(text, sizeof(text), "%Y-%m-%dT%H:%M:%SZ", &tm_utc);
    return text;
}

/* What a modem's dump tells an engineer, as text: when, the counters and
 * the EFS files with their sizes. */
std::string dump_text(daemon &d, int number)
{
    std::string out = "rlk-modemd modem full dump " + std::to_string(number) + "\ntime " + utc_now() + "\n";
    out += "counters\n";
    for (const auto &kv : d.counters()) out += "  " + kv.first + " " + std::to_string(kv.second) + "\n";
    out += "efs\n";
    for (const std::string &path : d.store().efs_list()) {
        std::vector<uint8_t> data;
        int rc = d.store().efs_read(path, &data);
        out += "  " + path + " " + (rc == k_efs_ok ? std::to_string(data.size()) : "unreadable") + "\n";
    }
    return out;
}

/* Writes the next free <state>/dumps/modem_full_dump_<n>.txt; an earlier
 * dump is never overwritten. */
bool write_dump(daemon &d)
{
    std::string dir = d.store().dir() + "/" + k_dump_dir;
    for (int n = 1; n <= k_dump_files_max; n++) {
        std::string path = dir + "/modem_full_dump_" + std::to_string(n) + ".txt";
        struct stat st;
        if (stat(path.c_str(), &st) == 0) continue;
        std::string text = dump_text(d, n);
        if (!atomic_write_file(path, text.data(), text.size())) break;
        d.log("full dump written to %s", path.c_str());
        return true;
    }
    d.log("full dump could not be written under %s", dir.c_str());
    return false;
}

/* Brings `s` back after the delay; the modem counts as up again once its
 * last service is (`last`). */
void bring_up_later(daemon &d, sim_service *s, uint32_t delay_ms, bool last)
{
    s->up_timer = d.loop().add_timer(delay_ms, [&d, s, last] {
        s->up_timer = 0;
        d.service_up(*s);
        if (last) d.counters()["ext.restart.up"]++;
    });
}

}  // namespace

void ext_schedule_restart(daemon &d)
{
    uint32_t delay_ms = g_restart_delay_ms;
    d.loop().add_timer(k_restart_ack_ms, [&d, delay_ms] {
        d.log("modem restart: every service down for %u ms", delay_ms);
        d.counters()["ext.restart.down"]++;
        for (size_t i = 0; i < g_sim_service_count; i++) {
            sim_service *s = d.find_service(g_sim_services[i]->name);
            if (!s) continue;
            d.service_down(*s);
            bring_up_later(d, s, delay_ms, i + 1 == g_sim_service_count);
        }
    });
}

int32_t ext_typed_ssr(qmi_call &call, const tolvek_common_req &req, tolvek_common_rsp *rsp)
{
    rsp->len = 0;
    if (req.len != k_ssr_value_len) return k_common_einval;
    uint32_t value = value_u32(req);
    if (value == k_ssr_value_restart) {
        call.d.counters()["ext.ssr"]++;
    } else if (value == k_ssr_value_full_dump) {
        call.d.counters()["ext.full_dump"]++;
        if (!write_dump(call.d)) return k_common_eio;
    } else {
        call.d.log("ext: restart request with unknown value %u", value);
        return k_common_unsupported;
    }
    ext_schedule_restart(call.d);
    return k_common_ok;
}

int32_t ext_typed_nv_sync(qmi_call &call, const tolvek_common_req &, tolvek_common_rsp *rsp)
{
    rsp->len = 0;
    /* Every EFS write is already durable on its own; the sync flushes the
     * file system that holds the state, as the modem commits its NV. */
    int fd = open(call.d.store().dir().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    bool synced = fd >= 0 && syncfs(fd) == 0;
    if (fd >= 0) close(fd);
    if (!synced) return k_common_eio;
    call.d.counters()["ext.nv_sync"]++;
    return k_common_ok;
}

bool ext_restart_control(daemon &, const std::vector<std::string> &a, std::string *answer)
{
    if (a.size() < 2 || a[1] != "restart-delay") return false;
    int64_t ms = 0;
    if (a.size() == 2) {
        *answer = "ok " + std::to_string(g_restart_delay_ms);
    } else if (a.size() == 3 && parse_number(a[2], &ms) && ms >= 0 && ms <= k_restart_delay_max_ms) {
        g_restart_delay_ms = uint32_t(ms);
        *answer = "ok";
    } else {
        *answer = "error usage: ext restart-delay [0.." + std::to_string(k_restart_delay_max_ms) + " ms]";
    }
    return true;
}

}  // namespace modemd
