/* rlk-modemd: the modem simulator behind rlk's host platform.
 *
 *   rlk-modemd [--socket PATH] [--state DIR] [--log FILE] [--idle-exit SECONDS]
 *   rlk-modemd ctl [--socket PATH] <request words...>
 *
 * The socket defaults to RLK_MODEMD_SOCKET, else the per-user default; the
 * state directory defaults to "state" beside the socket. */
#include <errno.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <string>

#include "daemon.h"
#include "modemd_paths.h"
#include "modemd_proto.h"

namespace {

void usage()
{
    fprintf(stderr,
            "usage: rlk-modemd [--socket PATH] [--state DIR] [--log FILE] [--idle-exit SECONDS]\n"
            "       rlk-modemd ctl [--socket PATH] <request...>   (rlk-modemd ctl help)\n");
}

std::string dir_of(const std::string &path)
{
    size_t slash = path.rfind('/');
    return slash == std::string::npos ? "." : path.substr(0, slash);
}

/* Sends one control request and prints the answer; exit status 0 when the
 * answer is "ok...". */
int run_ctl(int argc, char **argv)
{
    std::string sock = modemd_socket_path_from_env();
    int i = 0;
    if (i + 1 < argc && strcmp(argv[i], "--socket") == 0) {
        sock = argv[i + 1];
        i += 2;
    }
    std::string req;
    for (; i < argc; i++) req += (req.empty() ? "" : " ") + std::string(argv[i]);
    int fd = socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0);
    sockaddr_un addr = {};
    addr.sun_family = AF_UNIX;
    snprintf(addr.sun_path, sizeof(addr.sun_path), "%s", sock.c_str());
    if (fd < 0 || connect(fd, reinterpret_cast<sockaddr *>(&addr), sizeof(addr)) != 0) {
        fprintf(stderr, "rlk-modemd: no simulator at %s: %s\n", sock.c_str(), strerror(errno));
        return 2;
    }
    modemd_hello hello = {MODEMD_HELLO_MAGIC, MODEMD_CONN_CONTROL, 0, 0};
    static char buf[MODEMD_MAX_PACKET];
    if (send(fd, &hello, sizeof(hello), MSG_NOSIGNAL) != ssize_t(sizeof(hello)) ||
        send(fd, req.data(), req.size(), MSG_NOSIGNAL) != ssize_t(req.size())) {
        fprintf(stderr, "rlk-modemd: cannot send to %s\n", sock.c_str());
        return 2;
    }
    ssize_t n = recv(fd, buf, sizeof(buf), 0);
    close(fd);
    if (n <= 0) {
        fprintf(stderr, "rlk-modemd: no answer from %s\n", sock.c_str());
        return 2;
    }
    fwrite(buf, 1, size_t(n), stdout);
    fputc('\n', stdout);
    return strncmp(buf, "ok", 2) == 0 ? 0 : 1;
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
        } else if (a == "--log") {
            opts.log_path = argv[++i];
        } else if (a == "--idle-exit") {
            opts.idle_exit_s = uint32_t(strtoul(argv[++i], nullptr, 10));
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
