/* The unit tests never reach the user's own simulator: unless a test names
 * a socket, the default endpoint lives in a runtime directory of this test
 * process, removed when the process ends, and no simulator is started on
 * demand there (a test that needs one starts its own). */
#include <stdlib.h>
#include <string.h>

#include <string>

namespace {

constexpr char k_prefix[] = "rlk-unit-runtime-";

struct private_runtime {
    std::string dir;

    private_runtime()
    {
        /* A death-test child runs this binary again with our environment:
         * it shares its parent's directory, which the parent removes. */
        const char *inherited = getenv("XDG_RUNTIME_DIR");
        if (inherited && strstr(inherited, k_prefix)) return;
        std::string tmpl = std::string("/tmp/") + k_prefix + "XXXXXX";
        if (!mkdtemp(&tmpl[0])) return;
        dir = tmpl;
        setenv("XDG_RUNTIME_DIR", dir.c_str(), 1);
        setenv("RLK_MODEMD", "/nonexistent/rlk-modemd", 1);
    }
    ~private_runtime()
    {
        if (dir.empty()) return;
        std::string cmd = "rm -rf '" + dir + "'";
        if (system(cmd.c_str()) != 0) return;
    }
};

const private_runtime g_private_runtime;

}  // namespace
