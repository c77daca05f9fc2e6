/* The radio scene of the simulator's vendor statistics service: items of
 * every served id with the sizes the option-9 readers read, drift, and the
 * control's field setter. */
#include <math.h>
#include <string.h>

#include <gtest/gtest.h>

#include "services/vs_stats_scene.h"

namespace {

using namespace modemd;

float float_at(const std::vector<uint8_t> &b, size_t off)
{
    float v;
    memcpy(&v, b.data() + off, sizeof(v));
    return v;
}

TEST(VsStatsScene, EveryServedIdHasItsLayout)
{
    const struct {
        uint16_t id;
        size_t len;
    } sizes[] = {{82, 75}, {103, 75}, {104, 75}, {105, 75}, {106, 75}, {107, 75}, {108, 75}, {94, 20},
                 {112, 20}, {113, 16}, {135, 24}, {6, 24}, {7, 24}, {110, 12}, {111, 12}, {100, 11}};
    ASSERT_EQ(k_vs_served_id_count, sizeof(sizes) / sizeof(sizes[0]));
    vs_scene s0 = vs_scene_default(0);
    for (const auto &s : sizes) {
        std::vector<uint8_t> b;
        ASSERT_TRUE(vs_scene_item(s0, s.id, 0, &b)) << s.id;
        EXPECT_EQ(b.size(), s.len) << s.id;
        EXPECT_EQ(b[0], 1) << "version first, 32-bit, id " << s.id;
        EXPECT_EQ(b[1] | b[2] | b[3], 0) << s.id;
    }
    std::vector<uint8_t> b;
    EXPECT_FALSE(vs_scene_item(s0, 83, 0, &b));
    EXPECT_FALSE(vs_scene_item(s0, 0, 0, &b));
    /* The second subscription camps on LTE only. */
    vs_scene s1 = vs_scene_default(1);
    EXPECT_TRUE(vs_scene_item(s1, 82, 0, &b));
    for (uint16_t id : {103, 94, 112, 113, 135, 110, 111, 100}) EXPECT_FALSE(vs_scene_item(s1, id, 0, &b)) << id;
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
    const struct {
        const char *name, *value;
        bool ok;
    } cases[] = {
        {"lte.6.earfcn", "4294967295", true}, {"lte.6.earfcn", "4294967296", false}, {"lte.0.pci", "65535", true},
        {"lte.0.pci", "65536", false},        {"lte.7.pci", "1", false},             {"lte.0.rsrp3", "-101.5", true},
        {"lte.0.rsrp4", "1", false},          {"lte.0.rsrp0", "nan", false},         {"lte.0.rsrp0", "x", false},
        {"asdiv.11", "255", true},            {"asdiv.12", "1", false},              {"asdiv.0", "256", false},
        {"ant.path", "0x1ff", true},          {"served", "2", false},                {"nr.2.rsrq", "-3", true},
        {"gsm.drx", "", false},               {"nope", "1", false},                  {"ant.num", "-1", false},
    };
    for (const auto &c : cases) EXPECT_EQ(vs_scene_set(&s, c.name, c.value), c.ok) << c.name << "=" << c.value;
    EXPECT_EQ(s.lte[6].earfcn, 4294967295u);
    EXPECT_EQ(s.ant_switch_path, 0x1ff);
    EXPECT_EQ(s.lte[0].rsrp[3], -101.5f);
}

}  // namespace
