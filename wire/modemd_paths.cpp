#include "modemd_paths.h"

#include <stdlib.h>
#include <unistd.h>

std::string modemd_default_socket_path()
{
    const char *runtime = getenv("XDG_RUNTIME_DIR");
    std::string dir;
    if (runtime && *runtime && access(runtime, W_OK) == 0) {
        dir = std::string(runtime) + "/rlk-modemd";
    } else {
        dir = "/tmp/rlk-modemd-" + std::to_string(getuid());
    }
    return dir + "/modemd.sock";
}

std::string modemd_socket_path_from_env()
{
    const char *env = getenv("RLK_MODEMD_SOCKET");
    return env && *env ? std::string(env) : modemd_default_socket_path();
}
