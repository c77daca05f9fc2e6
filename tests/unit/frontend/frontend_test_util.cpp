#include "frontend_test_util.h"

#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <fstream>

namespace {

std::string g_private_syslog;

/* Runs before main, hence before the first log line of the process. */
const std::string g_syslog_path = [] {
    const char *set = getenv("RLK_SYSLOG_FILE");
    if (set != nullptr && *set != '\0') return std::string(set);
    const char *tmp = getenv("TMPDIR");
    std::string path = std::string(tmp != nullptr && *tmp != '\0' ? tmp : "/tmp") + "/rlk_unit_syslog_XXXXXX";
    int fd = mkstemp(&path[0]);
    if (fd < 0) return std::string();
    close(fd);
    g_private_syslog = path;
    atexit([] { unlink(g_private_syslog.c_str()); });
    setenv("RLK_SYSLOG_FILE", path.c_str(), 1);
    return path;
}();

}  // namespace

/* Tests that ran before may have pointed the variable elsewhere (at a
 * simulator directory since removed): it names this process's file again. */
syslog_capture::syslog_capture()
{
    if (!g_syslog_path.empty()) setenv("RLK_SYSLOG_FILE", g_syslog_path.c_str(), 1);
    struct stat st;
    start_ = stat(g_syslog_path.c_str(), &st) == 0 ? static_cast<long long>(st.st_size) : 0;
}

std::vector<std::string> syslog_capture::lines() const
{
    std::ifstream in(g_syslog_path, std::ios::binary);
    in.seekg(start_);
    std::vector<std::string> out;
    for (std::string line; std::getline(in, line);) out.push_back(line);
    return out;
}
