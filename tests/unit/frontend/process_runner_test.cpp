#include "process_runner.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>

#include <string>

namespace {

TEST(RunProcess, FeedsInputCollectsOutputsAndSetsTheEnvironment)
{
    /* Larger than a pipe buffer in both directions: the runner must not
     * wait for one side before serving the other. */
    std::string input(1 << 20, 'x');
    setenv("RLK_RUNNER_PROBE", "parent", 1);
    run_result r = run_process({"/bin/sh", "-c", "cat; printf %s \"$RLK_RUNNER_PROBE\" >&2; exit 3"},
                               {"RLK_RUNNER_PROBE=child"}, input);
    unsetenv("RLK_RUNNER_PROBE");
    ASSERT_TRUE(WIFEXITED(r.status));
    EXPECT_EQ(WEXITSTATUS(r.status), 3);
    EXPECT_EQ(r.out, input);
    EXPECT_EQ(r.err, "child");
    EXPECT_TRUE(ended_abnormally(r.status));
    EXPECT_FALSE(exited_cleanly(r.status));
    EXPECT_TRUE(exited_cleanly(run_process({"/bin/true"}, {}).status));
}

TEST(RunProcess, ReportsFailuresToStartAndKillsAtTheTimeOut)
{
    run_result r = run_process({"/nonexistent/program"}, {});
    ASSERT_TRUE(WIFEXITED(r.status));
    EXPECT_EQ(WEXITSTATUS(r.status), 127);
    EXPECT_EQ(run_process({}, {}).status, -1);
    r = run_process({"/bin/sleep", "30"}, {}, "", 50);
    ASSERT_TRUE(WIFSIGNALED(r.status));
    EXPECT_EQ(WTERMSIG(r.status), SIGKILL);
}

}  // namespace
