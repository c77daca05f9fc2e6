/* Inputs of a replay: opening a path ("-" is standard input), reading it
 * in chunks into the capture reader until its end or a stop signal, and
 * the interrupt handling that makes a live diag port end with a summary.
 *
 * Reads never wait without a bound: inputs other than regular files are
 * polled with a short time-out, so a stop signal is seen within it. */
#ifndef RLK_REPLAY_INPUT_H
#define RLK_REPLAY_INPUT_H

#include <signal.h>
#include <stddef.h>
#include <stdint.h>
#include <termios.h>

#include <string>

#include "diag_capture.h"

/* Bytes read at a time, and the longest wait for a non-file input before
 * the stop flag is looked at again. */
constexpr size_t REPLAY_READ_CHUNK = 1 << 18;
constexpr int REPLAY_POLL_MS = 200;

/* The signal that asked the run to stop (SIGINT or SIGTERM), or 0. */
extern volatile sig_atomic_t g_replay_stop_signal;

/* Makes SIGINT and SIGTERM set g_replay_stop_signal; a second one of the
 * same kind then has its default effect. */
void replay_install_stop_handlers(void);

enum replay_input_kind : uint8_t {
    REPLAY_INPUT_FILE = 0,   /* a regular file */
    REPLAY_INPUT_STREAM = 1, /* a pipe, socket or standard input */
    REPLAY_INPUT_DEVICE = 2, /* a character device: read until stopped */
};

struct replay_input {
    int fd = -1;
    replay_input_kind kind = REPLAY_INPUT_FILE;
    uint64_t size = 0;           /* a regular file's size, else 0 */
    bool own_fd = false;         /* closed by replay_close_input */
    bool writable = false;       /* a device opened for writing too (log masks) */
    bool restore_termios = false;
    struct termios saved_termios = {};
};

/* Opens `path` ("-": standard input).  A terminal device is switched to raw
 * mode (restored on close).  False with the reason in *error. */
bool replay_open_input(const std::string &path, replay_input *in, std::string *error);
void replay_close_input(replay_input *in);

enum replay_read_result : uint8_t {
    REPLAY_READ_END = 0,         /* read to its end */
    REPLAY_READ_FAILED = 1,      /* a read error (reason in *error) */
    REPLAY_READ_INTERRUPTED = 2, /* a stop signal came first */
};

/* Called after each chunk with the bytes read so far from this input. */
typedef void (*replay_chunk_fn)(void *ctx, uint64_t bytes_read);

/* Reads `in` to its end, feeding `reader` (which is not finished here). */
replay_read_result replay_read_input(const replay_input &in, diag_capture_reader *reader, replay_chunk_fn after_chunk,
                                     void *ctx, std::string *error);

#endif
