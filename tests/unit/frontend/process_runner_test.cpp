#include "process_runner.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>

#include <string>

namespace {

TEST(RunProcess, FeedsLargeInputWhileCollectingOutput)
{
    /* Larger than a pipe buffer in both directions: a runner that wrote all
     * input before reading would deadlock. */
    std::string input(1 << 20, 'x');
    run_result r = run_process({"/bin/sh", "-c", "cat; echo oops >&2; exit 3"}, {}, input);
    ASSERT_TRUE(WIFEXITED(r.status));
    EXPECT_EQ(WEXITSTATUS(r.status), 3);
    EXPECT_EQ(r.out, input);
    EXPECT_EQ(r.err, "oops\n");
    EXPECT_TRUE(ended_abnormally(r.status));
}

TEST(RunProcess, ExtraEnvironmentReplacesInherited)
{
    setenv("RLK_RUNNER_PROBE", "parent", 1);
    run_result r = run_process({"/bin/sh", "-c", "printf %s \"$RLK_RUNNER_PROBE\""},
                               {"RLK_RUNNER_PROBE=child"});
    unsetenv("RLK_RUNNER_PROBE");
    EXPECT_TRUE(exited_cleanly(r.status));
    EXPECT_EQ(r.out, "child");
}

TEST(RunProcess, ReportsFailuresToStart)
{
    run_result r = run_process({"/nonexistent/program"}, {});
    ASSERT_TRUE(WIFEXITED(r.status));
    EXPECT_EQ(WEXITSTATUS(r.status), 127);
    EXPECT_EQ(run_process({}, {}).status, -1);
}

TEST(RunProcess, KillsAChildThatOutlivesTheTimeOut)
{
    run_result r = run_process({"/bin/sleep", "30"}, {}, "", 50);
    ASSERT_TRUE(WIFSIGNALED(r.status));
    EXPECT_EQ(WTERMSIG(r.status), SIGKILL);
}

}  // namespace
