/* The runner the end-to-end tests start programs with. */
#include "process_runner.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>

#include <string>

namespace {

TEST(RunProcess, CollectsOutputsReportsFailuresAndKillsAtTheTimeOut)
{
    /* Larger than a pipe buffer in both directions: the runner must not
     * wait for one side before serving the other. */
    std::string input(1 << 20, 'x');
    setenv("RLK_RUNNER_PROBE", "parent", 1);
    run_result r = run_process({"/bin/sh", "-c", "cat; printf %s \"$RLK_RUNNER_PROBE\" >&2; exit 3"},
                               {"RLK_RUNNER_PROBE=child"}, input);
    unsetenv("RLK_RUNNER_PROBE");
    EXPECT_EQ(r.status, 3 << 8);
    EXPECT_EQ(r.out, input);
    EXPECT_EQ(r.err, "child");
    EXPECT_TRUE(ended_abnormally(r.status) && !exited_cleanly(r.status));
    EXPECT_TRUE(exited_cleanly(run_process({"/bin/true"}, {}).status));
    EXPECT_EQ(run_process({"/nonexistent/program"}, {}).status, 127 << 8);
    EXPECT_EQ(run_process({}, {}).status, -1);
    r = run_process({"/bin/sleep", "30"}, {}, "", 50);
    EXPECT_TRUE(WIFSIGNALED(r.status) && WTERMSIG(r.status) == SIGKILL) << r.status;
}

}  // namespace
