#include "replay_input.h"

#include <errno.h>
#include <fcntl.h>
#include <poll.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

#include <vector>

volatile sig_atomic_t g_replay_stop_signal = 0;

namespace {

void on_stop_signal(int sig)
{
    g_replay_stop_signal = sig;
}

std::string errno_text(const std::string &what)
{
    return what + ": " + strerror(errno);
}

}  // namespace

void replay_install_stop_handlers(void)
{
    struct sigaction sa = {};
    sa.sa_handler = on_stop_signal;
    sigemptyset(&sa.sa_mask);
    /* No SA_RESTART: a blocked read returns at once; the second signal
     * ends the process as usual. */
    sa.sa_flags = SA_RESETHAND;
    sigaction(SIGINT, &sa, nullptr);
    sigaction(SIGTERM, &sa, nullptr);
}

bool replay_open_input(const std::string &path, replay_input *in, std::string *error)
{
    *in = replay_input();
    if (path == "-") {
        in->fd = STDIN_FILENO;
    } else {
        /* A character device is opened for writing too, to set its log
         * masks; one that refuses is read all the same. */
        struct stat pre;
        if (stat(path.c_str(), &pre) == 0 && S_ISCHR(pre.st_mode)) {
            in->fd = open(path.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);
            in->writable = in->fd >= 0;
        }
        if (in->fd < 0) in->fd = open(path.c_str(), O_RDONLY | O_NOCTTY | O_CLOEXEC);
        if (in->fd < 0) {
            *error = errno_text("cannot open " + path);
            return false;
        }
        in->own_fd = true;
    }
    struct stat st;
    if (fstat(in->fd, &st) != 0) {
        *error = errno_text("cannot read " + path);
        replay_close_input(in);
        return false;
    }
    if (S_ISDIR(st.st_mode)) {
        errno = EISDIR;
        *error = errno_text("cannot read " + path);
        replay_close_input(in);
        return false;
    }
    if (S_ISREG(st.st_mode)) {
        in->kind = REPLAY_INPUT_FILE;
        in->size = static_cast<uint64_t>(st.st_size);
        posix_fadvise(in->fd, 0, 0, POSIX_FADV_SEQUENTIAL);
        return true;
    }
    in->kind = S_ISCHR(st.st_mode) && path != "-" ? REPLAY_INPUT_DEVICE : REPLAY_INPUT_STREAM;
    if (in->kind == REPLAY_INPUT_DEVICE && isatty(in->fd) && tcgetattr(in->fd, &in->saved_termios) == 0) {
        /* A diag serial port carries binary frames: no line discipline. */
        struct termios raw = in->saved_termios;
        cfmakeraw(&raw);
        if (tcsetattr(in->fd, TCSANOW, &raw) == 0) in->restore_termios = true;
    }
    return true;
}

void replay_close_input(replay_input *in)
{
    if (in->restore_termios) tcsetattr(in->fd, TCSANOW, &in->saved_termios);
    in->restore_termios = false;
    if (in->own_fd && in->fd >= 0) close(in->fd);
    in->fd = -1;
    in->own_fd = false;
}

replay_read_result replay_read_input(const replay_input &in, diag_capture_reader *reader, replay_chunk_fn after_chunk,
                                     void *ctx, std::string *error)
{
    std::vector<uint8_t> buf(REPLAY_READ_CHUNK);
    uint64_t total = 0;
    while (true) {
        if (g_replay_stop_signal) return REPLAY_READ_INTERRUPTED;
        if (in.kind != REPLAY_INPUT_FILE) {
            struct pollfd pfd = {in.fd, POLLIN, 0};
            int ready = poll(&pfd, 1, REPLAY_POLL_MS);
            if (ready == 0 || (ready < 0 && errno == EINTR)) continue;
        }
        ssize_t n = read(in.fd, buf.data(), buf.size());
        if (n < 0) {
            if (errno == EINTR || errno == EAGAIN) continue;
            *error = errno_text("read failed");
            return REPLAY_READ_FAILED;
        }
        if (n == 0) return REPLAY_READ_END;
        total += static_cast<uint64_t>(n);
        reader->feed(buf.data(), static_cast<size_t>(n));
        if (after_chunk) after_chunk(ctx, total);
    }
}
