/* Card-slot status and type requests (types 39, 55, 56, 57). */
#include "ext_card_slot.h"

#include <string.h>

#include <string>

namespace modemd {
namespace {

constexpr size_t k_slot_record_len = 5;
constexpr size_t k_slot_file_len = k_slot_record_len * TOLVEK_CARD_SLOT_COUNT;
constexpr uint32_t k_one_word = 4;
constexpr uint32_t k_set_words = 3 * k_one_word;

constexpr card_slots k_fresh_slots = {{
    {TOLVEK_CARD_PRESENT, 1, TOLVEK_CARD_KIND_SINGLE_SIM, TOLVEK_CARD_LINE_MODE_SIM, TOLVEK_CARD_LINE_HIGH},
    {TOLVEK_CARD_PRESENT, 1, TOLVEK_CARD_KIND_MULTI_SIM, TOLVEK_CARD_LINE_MODE_SIM, TOLVEK_CARD_LINE_HIGH},
}};

uint32_t value_word(const tolvek_common_req &req, size_t index)
{
    uint32_t v;
    memcpy(&v, req.value + index * k_one_word, sizeof(v));
    return v;
}

template <typename T>
void answer(tolvek_common_rsp *rsp, const T &value)
{
    static_assert(sizeof(T) <= sizeof(rsp->value), "answer fits the value area");
    memcpy(rsp->value, &value, sizeof(value));
    rsp->len = sizeof(value);
}

tolvek_card_status_rsp slot_status(const card_slot &s)
{
    return {s.present, s.power, s.line_mode, s.line_level};
}

}  // namespace

card_slots card_slots_load(const state_store &store)
{
    std::vector<uint8_t> data;
    if (store.efs_read(k_card_slot_file, &data) != k_efs_ok || data.size() != k_slot_file_len) return k_fresh_slots;
    card_slots slots;
    for (size_t i = 0; i < TOLVEK_CARD_SLOT_COUNT; i++) {
        const uint8_t *r = data.data() + i * k_slot_record_len;
        slots.slot[i] = {r[0], r[1], r[2], r[3], r[4]};
    }
    return slots;
}

bool card_slots_save(state_store &store, const card_slots &slots)
{
    std::vector<uint8_t> data(k_slot_file_len);
    for (size_t i = 0; i < TOLVEK_CARD_SLOT_COUNT; i++) {
        const card_slot &s = slots.slot[i];
        uint8_t *r = data.data() + i * k_slot_record_len;
        r[0] = s.present;
        r[1] = s.power;
        r[2] = s.kind;
        r[3] = s.line_mode;
        r[4] = s.line_level;
    }
    return store.efs_write(k_card_slot_file, data) == k_efs_ok;
}

int32_t card_status_query(qmi_call &call, const tolvek_common_req &, tolvek_common_rsp *rsp)
{
    card_slots slots = card_slots_load(call.d.store());
    tolvek_card_status_query_rsp out;
    for (size_t i = 0; i < TOLVEK_CARD_SLOT_COUNT; i++) out.present[i] = slots.slot[i].present;
    answer(rsp, out);
    return k_common_ok;
}

int32_t card_status_get(qmi_call &call, const tolvek_common_req &req, tolvek_common_rsp *rsp)
{
    if (req.len != k_one_word || value_word(req, 0) >= TOLVEK_CARD_SLOT_COUNT) return k_common_einval;
    card_slots slots = card_slots_load(call.d.store());
    answer(rsp, slot_status(slots.slot[value_word(req, 0)]));
    return k_common_ok;
}

int32_t card_type_query(qmi_call &call, const tolvek_common_req &, tolvek_common_rsp *rsp)
{
    card_slots slots = card_slots_load(call.d.store());
    tolvek_card_type_query_rsp out;
    for (size_t i = 0; i < TOLVEK_CARD_SLOT_COUNT; i++) {
        const card_slot &s = slots.slot[i];
        out.kind[i] = s.present && s.power ? s.kind : uint32_t(TOLVEK_CARD_KIND_ERR);
    }
    answer(rsp, out);
    return k_common_ok;
}

/* Sets a slot's status line.  In SIM mode the line is the card-detect
 * line, so the slot's presence follows its level; in general mode the line
 * is only recorded. */
int32_t card_status_set(qmi_call &call, const tolvek_common_req &req, tolvek_common_rsp *rsp)
{
    if (req.len != k_set_words) return k_common_einval;
    uint32_t sub = value_word(req, 0), mode = value_word(req, 1), level = value_word(req, 2);
    if (sub >= TOLVEK_CARD_SLOT_COUNT || mode > TOLVEK_CARD_LINE_MODE_SIM || level > TOLVEK_CARD_LINE_HIGH) {
        return k_common_einval;
    }
    card_slots slots = card_slots_load(call.d.store());
    card_slot &s = slots.slot[sub];
    s.line_mode = uint8_t(mode);
    s.line_level = uint8_t(level);
    if (mode == TOLVEK_CARD_LINE_MODE_SIM) s.present = uint8_t(level);
    if (!card_slots_save(call.d.store(), slots)) return k_common_eio;
    answer(rsp, slot_status(s));
    return k_common_ok;
}

std::string card_control(daemon &d, const std::vector<std::string> &a)
{
    int64_t ms = 0;
    if (a.size() == 4 && a[2] == "second-ms" && parse_number(a[3], &ms)) {
        return card_hotswap_set_second_ms(ms) ? "ok" : "error second-ms must be 1..10000";
    }
    if (a.size() != 2) return "error usage: ext card [second-ms <ms>]";
    card_slots slots = card_slots_load(d.store());
    std::string out = "ok";
    for (size_t i = 0; i < TOLVEK_CARD_SLOT_COUNT; i++) {
        const card_slot &s = slots.slot[i];
        out += " slot" + std::to_string(i) + " present=" + std::to_string(s.present) +
               " power=" + std::to_string(s.power) + " type=" + std::to_string(s.kind) +
               " mode=" + std::to_string(s.line_mode) + " level=" + std::to_string(s.line_level);
    }
    return out + " " + card_hotswap_describe();
}

}  // namespace modemd
