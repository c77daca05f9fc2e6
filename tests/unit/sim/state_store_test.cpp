/* The simulator's state on disk: links planted in the EFS tree lead
 * nowhere, every property survives a restart exactly, and the temporary
 * files of a killed simulator are cleaned up without touching anything
 * else. */
#include <sys/stat.h>

#include <gtest/gtest.h>

#include "data_file.h"
#include "sim_test_util.h"
#include "state_files.h"
#include "state_store.h"

namespace {

bool exists_nofollow(const std::string &path)
{
    struct stat st;
    return lstat(path.c_str(), &st) == 0;
}

class StateStoreTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_EQ(mkdir(outside.c_str(), 0700), 0);
        write_file(outside + "/secret", "private");
        ASSERT_TRUE(store.open(state));
    }
    /* A store opened afresh on the same directory, as after a restart. */
    modemd::state_store restarted()
    {
        modemd::state_store again;
        EXPECT_TRUE(again.open(state));
        return again;
    }

    temp_dir root;
    std::string state = root.path + "/state", outside = root.path + "/outside";
    modemd::state_store store;
};

/* One EFS operation of the store on a path (writes write "xy"); its
 * answer as text. */
std::string efs_op(modemd::state_store &store, const words &w)
{
    std::vector<uint8_t> got;
    int rc = w[0] == "read" ? store.efs_read(w[1], &got) : 0;
    if (w[0] == "read") return std::to_string(rc) + (got.empty() ? "" : " " + std::string(got.begin(), got.end()));
    if (w[0] == "exists") return store.efs_exists(w[1]) ? "yes" : "no";
    if (w[0] == "delete") return std::to_string(store.efs_delete(w[1]));
    if (w[0] == "write") return std::to_string(store.efs_write(w[1], {'x', 'y'}));
    return joined(store.efs_list());
}

TEST_F(StateStoreTest, LinksInTheEfsTreeAreNeverFollowed)
{
    ASSERT_EQ(symlink(outside.c_str(), (state + "/efs/linked_dir").c_str()), 0);
    ASSERT_EQ(symlink((outside + "/secret").c_str(), (state + "/efs/linked_file").c_str()), 0);
    ASSERT_EQ(mkdir((state + "/efs/tst").c_str(), 0700), 0);
    ASSERT_EQ(symlink(outside.c_str(), (state + "/efs/tst/deeper").c_str()), 0);
    expect_cases(__FILE__, "efs_links.cases", [&](const words &w) { return efs_op(store, w); });
    EXPECT_EQ(file_text(outside + "/secret"), "private");
    for (const char *made : {"/new", "/sub"}) EXPECT_FALSE(exists_nofollow(outside + made)) << made;
    EXPECT_TRUE(exists_nofollow(state + "/efs/linked_file")) << "the links are left alone";
}

/* Both ways of reaching a directory (one openat2() call, or a walk of
 * openat() calls on kernels without it) stop at a link anywhere. */
TEST_F(StateStoreTest, DirectoryWalksStopAtLinks)
{
    const std::string efs = state + "/efs";
    ASSERT_EQ(mkdir((efs + "/w").c_str(), 0700), 0);
    ASSERT_EQ(mkdir((efs + "/w/real").c_str(), 0700), 0);
    ASSERT_EQ(symlink(outside.c_str(), (efs + "/w/link").c_str()), 0);
    ASSERT_EQ(symlink("real", (efs + "/w/relative").c_str()), 0);
    modemd::fd_guard root(modemd::open_dir_nofollow(efs));
    ASSERT_GE(root.get(), 0);
    /* A real directory, through a link (absolute or relative) without and
     * with creation, and a new directory made when asked for. */
    const std::pair<std::vector<std::string>, bool> cases[] = {
        {{"w", "real"}, false},     {{"w", "link", "x"}, false}, {{"w", "link", "x"}, true},
        {{"w", "relative"}, false}, {{"w", "relative"}, true},   {{"w", "real", "made"}, true}};
    for (auto open_dir : {modemd::open_subdir_nofollow, modemd::open_subdir_walk}) {
        std::string got;
        for (const auto &[path, create] : cases) {
            modemd::fd_guard fd(open_dir(root.get(), path, path.size(), create));
            got += fd.get() >= 0 ? "opened " : "refused ";
        }
        EXPECT_EQ(got, "opened refused refused refused refused opened ");
        EXPECT_FALSE(exists_nofollow(outside + "/x"));
        ASSERT_EQ(rmdir((efs + "/w/real/made").c_str()), 0);
    }
}

/* Every property survives a restart exactly.  A store written before
 * values were escaped reads as it always did, and its values outlive the
 * next save. */
TEST_F(StateStoreTest, EveryPropertyRoundTripsThroughARestart)
{
    write_file(state + "/properties", "persist.old=x=y\npersist.path=C:\\temp\\n\nbroken line\n=nokey\n");
    modemd::state_store plain = restarted();
    const std::pair<std::string, std::string> old[] = {{"persist.old", "x=y"}, {"persist.path", "C:\\temp\\n"}};
    for (const auto &p : old) EXPECT_EQ(plain.get_property(p.first), p.second) << p.first;
    static const char k_controls[] = "nul\0tab\tbell\adel\x7f";
    const std::pair<std::string, std::string> props[] = {
        {"persist.a", "x\npersist.radio.injected=1"},
        {"persist.b", "line\r\nnext\n"},
        {"key=with=equals", "value=with=equals"},
        {"persist.back", "ends with a backslash\\"},
        {"persist.escapes", "\\n is not a newline, \\= not an equals, \\x41 not A"},
        {"persist.controls", std::string(k_controls, sizeof(k_controls) - 1)},
        {"persist.utf8", "\xc3\xa9t\xc3\xa9 \xe2\x82\xac"},
        {"=", "="},
        {"k\n", "\n"},
    };
    for (const auto &p : props) ASSERT_TRUE(plain.set_property(p.first, p.second)) << p.first;
    modemd::state_store again = restarted();
    for (const auto &p : props) EXPECT_EQ(again.get_property(p.first), p.second) << p.first;
    for (const char *injected : {"persist.radio.injected", "next", "key", "k", "line\r"})
        EXPECT_EQ(again.get_property(injected), "") << injected;
    for (const auto &p : old) EXPECT_EQ(again.get_property(p.first), p.second) << p.first;
    /* Clearing one leaves the others. */
    ASSERT_TRUE(again.set_property("persist.a", ""));
    modemd::state_store third = restarted();
    EXPECT_EQ(third.get_property("persist.a"), "");
    EXPECT_EQ(third.get_property("key=with=equals"), "value=with=equals");
}

TEST_F(StateStoreTest, TemporariesOfAKilledSimulatorAreRemovedAtStart)
{
    ASSERT_EQ(store.efs_write("/nv/item_files/a", {1}), modemd::k_efs_ok);
    ASSERT_TRUE(store.set_property("persist.a", "1"));
    const std::string efs = state + "/efs/nv/item_files";
    const std::vector<std::string> stale = {state + "/.properties.tmp.4242", efs + "/.a.tmp.17",
                                            state + "/efs/.top.tmp.1", efs + "/.b.c.tmp.99999"};
    const std::vector<std::string> kept = {efs + "/.a.tmp.",     efs + "/.a.tmp.12x", efs + "/a.tmp.5",
                                           efs + "/.hidden",     state + "/lock.tmp", state + "/.tmp.5",
                                           outside + "/.x.tmp.3"};
    for (const std::string &p : stale) write_file(p, "half");
    for (const std::string &p : kept) write_file(p, "keep");
    /* A link with a temporary's name, and a linked directory holding one. */
    ASSERT_EQ(symlink((outside + "/secret").c_str(), (efs + "/.link.tmp.5").c_str()), 0);
    ASSERT_EQ(symlink(outside.c_str(), (state + "/efs/linked").c_str()), 0);
    ASSERT_EQ(mkdir((efs + "/.a.tmp.6").c_str(), 0700), 0);

    modemd::state_store again = restarted();
    for (const std::string &p : stale) EXPECT_FALSE(exists_nofollow(p)) << p;
    for (const std::string &p : kept) EXPECT_EQ(file_text(p), "keep") << p;
    for (const char *left : {"/.link.tmp.5", "/.a.tmp.6"}) EXPECT_TRUE(exists_nofollow(efs + left)) << left;
    EXPECT_EQ(file_text(outside + "/secret"), "private");
    std::vector<uint8_t> got;
    EXPECT_EQ(again.efs_read("/nv/item_files/a", &got), modemd::k_efs_ok);
    EXPECT_EQ(again.get_property("persist.a"), "1");
}

}  // namespace
