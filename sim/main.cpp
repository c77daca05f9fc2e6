/* rlk-modemd: the modem simulator behind rlk's host platform.
 *
 *   rlk-modemd [--socket PATH] [--state DIR] [--log FILE] [--idle-exit SECONDS]
 *              [--hello-timeout MS] [--log-max BYTES] [--qmux LINK] [--diag-port LINK]
 *   rlk-modemd ctl [--socket PATH] [--timeout MS] <request words...>
 *
 * The socket defaults to RLK_MODEMD_SOCKET, else the per-user default; the
 * state directory defaults to "state" beside the socket.  ctl waits
 * RLK_MODEMD_CTL_TIMEOUT_MS (default 10 s) for the answer unless --timeout
 * says otherwise, and exits 0 for an "ok" answer, 1 for an "error" answer
 * and 2 when it got no complete answer. */
#include <errno.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <string>

#include "control_client.h"
#include "daemon.h"
#include "modemd_paths.h"
#include "modemd_proto.h"

namespace {

/* Longest time-out ctl accepts (an hour). */
constexpr unsigned long long k_ctl_max_timeout_ms = 3600000;
/* Largest log size limit accepted. */
constexpr unsigned long long k_log_max_limit = 1ull << 40;

void usage()
{
    fprintf(stderr,
            "usage: rlk-modemd [--socket PATH] [--state DIR] [--log FILE] [--idle-exit SECONDS]\n"
            "                  [--hello-timeout MS] [--log-max BYTES] [--qmux LINK] [--diag-port LINK]\n"
            "       rlk-modemd ctl [--socket PATH] [--timeout MS] <request...>   (rlk-modemd ctl help)\n");
}

std::string dir_of(const std::string &path)
{
    size_t slash = path.rfind('/');
    return slash == std::string::npos ? "." : path.substr(0, slash);
}

/* A positive number of at most `max`; false on junk. */
bool parse_limit(const char *text, unsigned long long max, unsigned long long *out)
{
    char *end = nullptr;
    errno = 0;
    unsigned long long v = strtoull(text, &end, 10);
    if (errno || !end || *end || end == text || v == 0 || v > max || text[0] == '-') return false;
    *out = v;
    return true;
}

/* Sends one control request and prints the answer; exit status 0 when the
 * answer is "ok...", 1 for any other answer, 2 without a whole answer. */
int run_ctl(int argc, char **argv)
{
    std::string sock = modemd_socket_path_from_env();
    unsigned long long timeout_ms = modemd::k_ctl_default_timeout_ms;
    const char *env_timeout = getenv("RLK_MODEMD_CTL_TIMEOUT_MS");
    if (env_timeout && *env_timeout && !parse_limit(env_timeout, k_ctl_max_timeout_ms, &timeout_ms)) {
        fprintf(stderr, "rlk-modemd: bad RLK_MODEMD_CTL_TIMEOUT_MS: %s\n", env_timeout);
        return 2;
    }
    int i = 0;
    for (; i + 1 < argc; i += 2) {
        if (strcmp(argv[i], "--socket") == 0) {
            sock = argv[i + 1];
        } else if (strcmp(argv[i], "--timeout") == 0) {
            if (!parse_limit(argv[i + 1], k_ctl_max_timeout_ms, &timeout_ms)) {
                fprintf(stderr, "rlk-modemd: bad time-out: %s\n", argv[i + 1]);
                return 2;
            }
        } else {
            break;
        }
    }
    std::string req;
    for (; i < argc; i++) req += (req.empty() ? "" : " ") + std::string(argv[i]);
    std::string answer, error;
    if (!modemd::control_request(sock, req, int(timeout_ms), &answer, &error)) {
        fprintf(stderr, "rlk-modemd: %s: %s\n", sock.c_str(), error.c_str());
        return 2;
    }
    fwrite(answer.data(), 1, answer.size(), stdout);
    fputc('\n', stdout);
    if (fflush(stdout) != 0) return 2;
    return answer.compare(0, 2, "ok") == 0 ? 0 : 1;
}

}  // namespace

int main(int argc, char **argv)
{
    if (argc >= 2 && strcmp(argv[1], "ctl") == 0) return run_ctl(argc - 2, argv + 2);
    modemd::daemon_options opts;
    opts.socket_path = modemd_socket_path_from_env();
    for (int i = 1; i < argc; i++) {
        std::string a = argv[i];
        if (i + 1 >= argc) {
            usage();
            return 2;
        }
        if (a == "--socket") {
            opts.socket_path = argv[++i];
        } else if (a == "--state") {
            opts.state_dir = argv[++i];
        } else if (a == "--qmux") {
            opts.qmux_link = argv[++i];
        } else if (a == "--diag-port") {
            opts.diag_port_link = argv[++i];
        } else if (a == "--log") {
            opts.log_path = argv[++i];
        } else if (a == "--idle-exit") {
            opts.idle_exit_s = uint32_t(strtoul(argv[++i], nullptr, 10));
        } else if (a == "--hello-timeout" || a == "--log-max") {
            unsigned long long v = 0;
            if (!parse_limit(argv[++i], a == "--log-max" ? k_log_max_limit : k_ctl_max_timeout_ms, &v)) {
                usage();
                return 2;
            }
            if (a == "--log-max") {
                opts.log_max_bytes = v;
            } else {
                opts.hello_timeout_ms = uint32_t(v);
            }
        } else {
            usage();
            return 2;
        }
    }
    if (opts.state_dir.empty()) opts.state_dir = dir_of(opts.socket_path) + "/state";
    std::string dir_error;
    if (!modemd_prepare_socket_dir(opts.socket_path, &dir_error)) {
        fprintf(stderr, "rlk-modemd: %s\n", dir_error.c_str());
        return 1;
    }
    modemd::daemon d(opts);
    std::string error;
    if (!d.start(&error)) {
        fprintf(stderr, "rlk-modemd: %s\n", error.c_str());
        if (!opts.log_path.empty()) d.log("refused to start: %s", error.c_str());
        return 1;
    }
    d.run();
    d.log("stopped");
    return 0;
}
