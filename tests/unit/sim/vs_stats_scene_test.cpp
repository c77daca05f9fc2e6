/* The radio scene of the simulator's vendor statistics service: items of
 * every served id with the sizes the option-9 readers read, drift, and the
 * control's field setter. */
#include <math.h>
#include <string.h>

#include <gtest/gtest.h>

#include "data_file.h"
#include "services/vs_stats_scene.h"

namespace {

using namespace modemd;

float float_at(const std::vector<uint8_t> &b, size_t off)
{
    float v;
    memcpy(&v, b.data() + off, sizeof(v));
    return v;
}

/* Every served id of both subscriptions (the second camps on LTE only):
 * its size, and its first word, the version 1. */
TEST(VsStatsScene, EveryServedIdHasItsLayout)
{
    std::string all;
    size_t served = 0;
    for (uint32_t id = 0; id <= 0xFFFF; id++) {
        std::vector<uint8_t> b0, b1;
        if (!vs_scene_item(vs_scene_default(0), uint16_t(id), 0, &b0)) continue;
        served++;
        std::string sub1 = vs_scene_item(vs_scene_default(1), uint16_t(id), 0, &b1) ? std::to_string(b1.size()) : "-";
        all += std::to_string(id) + " " + std::to_string(b0.size()) + " " + sub1 + " " + hex(b0.data(), 4) + "\n";
    }
    EXPECT_EQ(served, k_vs_served_id_count);
    expect_golden(all, __FILE__, "vs_items.golden");
}

TEST(VsStatsScene, DriftMovesAroundTheSetValueFixedDoesNot)
{
    vs_scene s = vs_scene_default(0);
    std::vector<uint8_t> a, b;
    ASSERT_TRUE(vs_scene_item(s, 94, 1000, &a));
    ASSERT_TRUE(vs_scene_item(s, 94, 4000, &b));
    EXPECT_EQ(a, b);
    EXPECT_EQ(float_at(a, 4), -61.25f);
    s.drift = true;
    bool moved = false;
    for (uint64_t t = 0; t < 60000; t += 1500) {
        ASSERT_TRUE(vs_scene_item(s, 94, t, &b));
        for (int rx = 0; rx < 4; rx++) {
            float v = float_at(b, 4 + 4 * size_t(rx));
            EXPECT_LE(fabsf(v - s.nr_rssi[rx]), 2.5f + 1e-3f);
            moved = moved || v != s.nr_rssi[rx];
        }
        EXPECT_EQ(b[0], 1); /* the version never drifts */
    }
    EXPECT_TRUE(moved);
}

TEST(VsStatsScene, SetterChecksNamesAndRanges)
{
    vs_scene s = vs_scene_default(1);
    expect_cases(__FILE__, "vs_setter.cases", [&](const words &w) {
        return vs_scene_set(&s, w[0].c_str(), w.size() > 1 ? w[1].c_str() : "") ? "ok" : "refused";
    });
    EXPECT_EQ(facts(s.lte[6].earfcn, s.ant_switch_path, s.lte[0].rsrp[3]), "4294967295 511 -101.5\n");
}

}  // namespace
