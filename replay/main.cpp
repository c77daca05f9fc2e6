/* rlk-replay: decodes diag captures through the modem statistics
 * dispatchers (see replay_options.cpp for the command line). */
#include <stdio.h>
#include <time.h>
#include <unistd.h>

#include <string>

#include "replay_input.h"
#include "replay_live_masks.h"
#include "replay_options.h"
#include "replay_session.h"

namespace {

constexpr const char *PROGRAM = "rlk-replay";
/* Shortest time between two progress lines. */
constexpr uint64_t PROGRESS_INTERVAL_NS = 250000000;
constexpr double BYTES_PER_MB = 1e6;

uint64_t now_ns(void)
{
    struct timespec ts;
    clock_gettime(CLOCK_MONOTONIC, &ts);
    return static_cast<uint64_t>(ts.tv_sec) * 1000000000u + static_cast<uint64_t>(ts.tv_nsec);
}

struct chunk_context {
    replay_session *session;
    const std::string *name;
    uint64_t size;
    bool progress;
    bool live;           /* a device or stream: output goes out as it comes */
    uint64_t last_shown; /* monotonic ns of the last progress line */
    bool shown;
};

void after_chunk(void *ctx, uint64_t bytes_read)
{
    auto *c = static_cast<chunk_context *>(ctx);
    if (c->live) c->session->flush();
    if (!c->progress) return;
    uint64_t now = now_ns();
    if (now - c->last_shown < PROGRESS_INTERVAL_NS) return;
    c->last_shown = now;
    c->shown = true;
    if (c->size) {
        fprintf(stderr, "\r%s: %s: %.1f of %.1f MB (%d%%), %llu packets\033[K", PROGRAM, c->name->c_str(),
                double(bytes_read) / BYTES_PER_MB, double(c->size) / BYTES_PER_MB,
                int(bytes_read * 100 / c->size), static_cast<unsigned long long>(c->session->counts().packets));
    } else {
        fprintf(stderr, "\r%s: %s: %.1f MB, %llu packets\033[K", PROGRAM, c->name->c_str(),
                double(bytes_read) / BYTES_PER_MB, static_cast<unsigned long long>(c->session->counts().packets));
    }
}

/* Reads one input; returns false when it was not read to its end (a
 * device stopped by a signal counts as read). */
bool replay_one(replay_session *session, const std::string &path, bool progress, int *status)
{
    replay_counts &counts = session->counts();
    counts.inputs++;
    replay_input in;
    std::string error;
    if (!replay_open_input(path, &in, &error)) {
        fprintf(stderr, "%s: %s\n", PROGRAM, error.c_str());
        *status = REPLAY_EXIT_INPUT;
        return false;
    }
    session->set_input(path);
    replay_live_masks masks;
    if (in.kind == REPLAY_INPUT_DEVICE && in.writable) {
        replay_live_codes(session->options(), &masks);
        replay_live_masks_enable(in.fd, &masks);
    }
    chunk_context ctx = {session, &path, in.size, progress, in.kind != REPLAY_INPUT_FILE, 0, false};
    ctx.last_shown = now_ns();
    replay_read_result res = replay_read_input(in, &session->reader(), after_chunk, &ctx, &error);
    replay_live_masks_disable(in.fd, &masks);
    session->reader().finish();
    replay_close_input(&in);
    if (ctx.shown) fprintf(stderr, "\r\033[K");
    switch (res) {
    case REPLAY_READ_END: counts.inputs_read++; return true;
    case REPLAY_READ_FAILED:
        fprintf(stderr, "%s: %s: %s\n", PROGRAM, path.c_str(), error.c_str());
        *status = REPLAY_EXIT_INPUT;
        return false;
    case REPLAY_READ_INTERRUPTED:
        if (in.kind == REPLAY_INPUT_DEVICE) {
            counts.inputs_read++;
            return true;
        }
        fprintf(stderr, "%s: %s: interrupted before its end\n", PROGRAM, path.c_str());
        return false;
    }
    return false;
}

}  // namespace

int main(int argc, char **argv)
{
    replay_options opts;
    std::string error;
    if (!replay_parse_options(argc - 1, argv + 1, &opts, &error)) {
        fprintf(stderr, "%s: %s\nTry '%s --help'.\n", PROGRAM, error.c_str(), PROGRAM);
        return REPLAY_EXIT_USAGE;
    }
    if (opts.help) {
        fputs(replay_help_text(), stdout);
        return fflush(stdout) == 0 ? REPLAY_EXIT_OK : REPLAY_EXIT_INPUT;
    }
    replay_install_stop_handlers();
    bool progress = opts.progress && isatty(STDERR_FILENO);
    replay_session session(opts);
    if (!session.open_pcap(&error)) {
        fprintf(stderr, "%s: %s\n", PROGRAM, error.c_str());
        return REPLAY_EXIT_INPUT;
    }
    if (!session.begin()) {
        perror(PROGRAM);
        return REPLAY_EXIT_INPUT;
    }
    int status = REPLAY_EXIT_OK;
    for (size_t i = 0; i < opts.inputs.size() && !g_replay_stop_signal; i++) {
        bool done = replay_one(&session, opts.inputs[i], progress, &status);
        /* A stop ends the run; only a device read up to it counts as done. */
        bool cut_short = !done || i + 1 < opts.inputs.size();
        if (g_replay_stop_signal && cut_short) status = REPLAY_EXIT_SIGNAL_BASE + g_replay_stop_signal;
    }
    session.end();
    if (!session.write_summary()) {
        fprintf(stderr, "%s: cannot write the output\n", PROGRAM);
        if (status == REPLAY_EXIT_OK) status = REPLAY_EXIT_INPUT;
    }
    return status;
}
