#include "frontend_test_util.h"

#include <stdio.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <fstream>
#include <sstream>

#include "tolvek_log.h"

namespace {

const char k_syslog_env[] = "RLK_SYSLOG_FILE";

std::string g_private_syslog;

void remove_private_syslog()
{
    unlink(g_private_syslog.c_str());
}

/* Runs before main, hence before the first log line of the process (the
 * platform reads the variable once). */
[[maybe_unused]] const bool g_syslog_redirected = [] {
    const char *set = getenv(k_syslog_env);
    if (set != nullptr && *set != '\0') {
        return false;
    }
    const char *tmp = getenv("TMPDIR");
    std::string path = std::string(tmp != nullptr && *tmp != '\0' ? tmp : "/tmp") +
                       "/rlk_unit_syslog_XXXXXX";
    int fd = mkstemp(&path[0]);
    if (fd < 0) {
        return false;
    }
    close(fd);
    g_private_syslog = path;
    atexit(remove_private_syslog);
    setenv(k_syslog_env, path.c_str(), 1);
    return true;
}();

std::string syslog_path()
{
    const char *path = getenv(k_syslog_env);
    return path != nullptr ? path : "";
}

long long file_size(const std::string &path)
{
    struct stat st;
    return stat(path.c_str(), &st) == 0 ? static_cast<long long>(st.st_size) : 0;
}

}  // namespace

syslog_capture::syslog_capture() : start_(file_size(syslog_path())) {}

std::vector<std::string> syslog_capture::lines() const
{
    std::ifstream in(syslog_path(), std::ios::binary);
    in.seekg(start_);
    std::vector<std::string> out;
    std::string line;
    while (std::getline(in, line)) {
        out.push_back(line);
    }
    return out;
}

console_quiet_scope::console_quiet_scope(bool quiet) : saved_(g_tolvek_console_quiet)
{
    g_tolvek_console_quiet = quiet;
}

console_quiet_scope::~console_quiet_scope()
{
    g_tolvek_console_quiet = saved_;
}
