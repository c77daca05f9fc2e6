/* The unit tests never reach the user's own simulator: unless a test names
 * a socket, the default endpoint lives in a runtime directory of this test
 * process, removed when the process ends, and no simulator is started on
 * demand there (a test that needs one starts its own). */
#include <stdlib.h>
#include <string.h>

#include <string>

namespace {

struct private_runtime {
    std::string dir = "/tmp/rlk-unit-runtime-XXXXXX";

    private_runtime()
    {
        /* A death-test child runs this binary again with our environment:
         * it shares its parent's directory, which the parent removes. */
        const char *inherited = getenv("XDG_RUNTIME_DIR");
        if ((inherited && strstr(inherited, "rlk-unit-runtime-")) || !mkdtemp(&dir[0])) {
            dir.clear();
            return;
        }
        setenv("XDG_RUNTIME_DIR", dir.c_str(), 1);
        setenv("RLK_MODEMD", "/nonexistent/rlk-modemd", 1);
    }
    ~private_runtime()
    {
        if (!dir.empty() && system(("rm -rf '" + dir + "'").c_str()) != 0) dir.clear();
    }
};

const private_runtime g_private_runtime;

}  // namespace
