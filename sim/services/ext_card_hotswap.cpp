/* The card-slot hot-swap run (type 80): the modem pulls the card of slot
 * TOLVEK_CARD_HOTSWAP_SLOT, waits seconds_after_pull, pushes it back, waits
 * seconds_after_push, and does so count_push_and_pull times, changing the
 * slot's presence in the modem state at every step, driven by timers of
 * the event loop.  A stop request ends the run with the card pushed in. */
#include <string.h>

#include <string>

#include "ext_card_slot.h"

namespace modemd {
namespace {

constexpr uint32_t k_stop_len = 4;
constexpr uint32_t k_start_len = sizeof(tolvek_card_hotswap_start_req);
constexpr uint32_t k_max_cycles = 10000;
constexpr uint32_t k_max_wait_s = 3600;
constexpr int64_t k_default_second_ms = 1000;
constexpr int64_t k_max_second_ms = 10000;

struct hotswap_run {
    bool running = false;
    uint64_t generation = 0; /* timers of an ended run see a newer value and do nothing */
    uint32_t cycles_asked = 0;
    uint32_t cycles_done = 0;
    uint32_t push_wait_s = 0;
    uint32_t pull_wait_s = 0;
};

/* The event loop runs every handler and timer on one thread. */
hotswap_run g_run;
int64_t g_second_ms = k_default_second_ms;

uint32_t wait_ms(uint32_t seconds) { return uint32_t(int64_t(seconds) * g_second_ms); }

void set_presence(daemon &d, uint8_t present)
{
    card_slots slots = card_slots_load(d.store());
    slots.slot[TOLVEK_CARD_HOTSWAP_SLOT].present = present;
    if (!card_slots_save(d.store(), slots)) d.log("card: slot state could not be stored");
}

void schedule_pull(daemon &d, uint64_t generation, uint32_t ms);

/* The card is out: push it back after the pull wait. */
void schedule_push(daemon &d, uint64_t generation, uint32_t ms)
{
    d.loop().add_timer(ms, [&d, generation] {
        if (!g_run.running || g_run.generation != generation) return;
        set_presence(d, TOLVEK_CARD_PRESENT);
        g_run.cycles_done++;
        d.log("card: hot-swap push %u of %u", g_run.cycles_done, g_run.cycles_asked);
        if (g_run.cycles_done >= g_run.cycles_asked) {
            /* The last push still gets its wait before the run counts as over. */
            d.loop().add_timer(wait_ms(g_run.push_wait_s), [generation] {
                if (g_run.generation == generation) g_run.running = false;
            });
            return;
        }
        schedule_pull(d, generation, wait_ms(g_run.push_wait_s));
    });
}

void schedule_pull(daemon &d, uint64_t generation, uint32_t ms)
{
    d.loop().add_timer(ms, [&d, generation] {
        if (!g_run.running || g_run.generation != generation) return;
        set_presence(d, TOLVEK_CARD_ABSENT);
        schedule_push(d, generation, wait_ms(g_run.pull_wait_s));
    });
}

tolvek_card_hotswap_rsp run_answer()
{
    return {g_run.running ? 1u : 0u, g_run.cycles_done, g_run.cycles_asked};
}

int32_t start_run(daemon &d, const tolvek_common_req &req)
{
    tolvek_card_hotswap_start_req start;
    memcpy(&start, req.value, sizeof(start));
    if (start.count_push_and_pull == 0 || start.count_push_and_pull > k_max_cycles ||
        start.seconds_after_push > k_max_wait_s || start.seconds_after_pull > k_max_wait_s) {
        return k_common_einval;
    }
    if (g_run.running) return k_common_ebusy;
    g_run.running = true;
    g_run.generation++;
    g_run.cycles_asked = start.count_push_and_pull;
    g_run.cycles_done = 0;
    g_run.push_wait_s = start.seconds_after_push;
    g_run.pull_wait_s = start.seconds_after_pull;
    d.log("card: hot-swap run of %u cycles, %u s after push, %u s after pull", g_run.cycles_asked,
          g_run.push_wait_s, g_run.pull_wait_s);
    /* The first pull happens at once, so the answer already sees it. */
    set_presence(d, TOLVEK_CARD_ABSENT);
    schedule_push(d, g_run.generation, wait_ms(g_run.pull_wait_s));
    return k_common_ok;
}

void stop_run(daemon &d)
{
    if (!g_run.running) return;
    g_run.running = false;
    g_run.generation++;
    set_presence(d, TOLVEK_CARD_PRESENT);
    d.log("card: hot-swap run stopped after %u cycles", g_run.cycles_done);
}

}  // namespace

int32_t card_hotswap(qmi_call &call, const tolvek_common_req &req, tolvek_common_rsp *rsp)
{
    uint32_t opt = 0;
    if (req.len >= k_stop_len) memcpy(&opt, req.value, sizeof(opt));
    int32_t result = k_common_ok;
    if (req.len == k_stop_len && opt == 0) {
        stop_run(call.d);
    } else if (req.len == k_start_len && opt != 0) {
        result = start_run(call.d, req);
    } else {
        result = k_common_einval;
    }
    tolvek_card_hotswap_rsp out = run_answer();
    memcpy(rsp->value, &out, sizeof(out));
    rsp->len = sizeof(out);
    return result;
}

std::string card_hotswap_describe()
{
    return std::string("hotswap=") + (g_run.running ? "running" : "idle") + " cycles=" +
           std::to_string(g_run.cycles_done) + "/" + std::to_string(g_run.cycles_asked);
}

bool card_hotswap_set_second_ms(int64_t ms)
{
    if (ms < 1 || ms > k_max_second_ms) return false;
    g_second_ms = ms;
    return true;
}

}  // namespace modemd
