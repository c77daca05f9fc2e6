#include "qmux_exit.h"

#include <signal.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <thread>

#include "qmux.h"

namespace rlk_host {
namespace {

/* Client ids one process may hold at once (the table's slots). */
constexpr size_t k_max_clients = 64;
/* How long exit waits for an allocation in flight to be answered. */
constexpr int k_exit_alloc_wait_ms = 50;
constexpr int k_exit_alloc_step_ms = 1;

/* service << 8 | cid, plus one; 0 is a free slot. */
std::atomic<uint32_t> g_held[k_max_clients];
std::atomic<int> g_device_fd{-1};
std::atomic<int> g_wake_fd{-1};
std::atomic<bool> g_installed{false};
std::atomic<int> g_pending_signal{0};
std::atomic<int> g_allocs{0};

/* Writes a release of every client id still held; safe in a signal
 * handler (no allocation, no locks). */
void write_releases()
{
    int fd = g_device_fd.load();
    for (auto &slot : g_held) {
        uint32_t v = slot.exchange(0);
        if (!v || fd < 0) continue;
        v--;
        uint8_t f[] = {QMUX_INTERFACE_TYPE, 0, 0, 0, QMUX_SERVICE_CTL, 0,
                       QMI_CTL_FLAG_REQUEST, 0xFF, uint8_t(QMI_CTL_MSG_RELEASE_CID), 0, 5, 0,
                       QMI_CTL_TLV_INFO, 2, 0, uint8_t(v >> 8), uint8_t(v)};
        f[1] = uint8_t(sizeof(f) - 1);
        ssize_t n = write(fd, f, sizeof(f));
        (void)n;
    }
}

void end_by(int sig)
{
    signal(sig, SIG_DFL);
    raise(sig);
}

void on_signal(int sig)
{
    /* The signal is posted before the thread is looked at, and the thread
     * is marked gone before it looks at the signal: one of them sees it. */
    int earlier = g_pending_signal.exchange(sig);
    int wake = g_wake_fd.load();
    if (earlier != 0 || wake < 0) {
        /* A second signal, or no device thread to finish the first. */
        write_releases();
        end_by(sig);
        return;
    }
    uint8_t b = 1;
    ssize_t n = write(wake, &b, 1);
    (void)n;
}

void at_exit()
{
    /* An allocation the device is answering right now brings an id to
     * release; exit waits a moment for it. */
    auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(k_exit_alloc_wait_ms);
    while (g_allocs.load() > 0 && std::chrono::steady_clock::now() < deadline) {
        std::this_thread::sleep_for(std::chrono::milliseconds(k_exit_alloc_step_ms));
    }
    qmux_release_held_and_end(g_pending_signal.load());
}

uint32_t slot_value(qmux_owned_id id) { return (uint32_t(id.service) << 8 | id.cid) + 1; }

}  // namespace

void qmux_hold(qmux_owned_id id)
{
    for (auto &slot : g_held) {
        uint32_t expect = 0;
        if (slot.compare_exchange_strong(expect, slot_value(id))) break;
    }
    qmux_record_add(id);
}

void qmux_unhold(qmux_owned_id id)
{
    for (auto &slot : g_held) {
        uint32_t expect = slot_value(id);
        if (slot.compare_exchange_strong(expect, 0)) {
            qmux_record_remove(id);
            return;
        }
    }
}

void qmux_exit_hooks_install(int device_fd, int wake_fd)
{
    g_device_fd.store(device_fd);
    g_wake_fd.store(wake_fd);
    if (g_installed.exchange(true)) return;
    atexit(at_exit);
    /* Only where the signal would end the process without the program's
     * say: a program that handles the signal itself exits through exit(). */
    for (int sig : {SIGINT, SIGTERM}) {
        struct sigaction old;
        if (sigaction(sig, nullptr, &old) != 0 || (old.sa_flags & SA_SIGINFO) || old.sa_handler != SIG_DFL) continue;
        struct sigaction sa;
        memset(&sa, 0, sizeof(sa));
        sa.sa_handler = on_signal;
        sigemptyset(&sa.sa_mask);
        sigaction(sig, &sa, nullptr);
    }
}

void qmux_exit_device_gone()
{
    g_device_fd.store(-1);
    g_wake_fd.store(-1);
    for (auto &slot : g_held) slot.store(0);
    qmux_record_remove_mine();
    int sig = g_pending_signal.load();
    if (sig) end_by(sig); /* the handler passed it here before it saw the thread gone */
}

void qmux_alloc_started() { g_allocs.fetch_add(1); }
void qmux_alloc_ended() { g_allocs.fetch_sub(1); }
int qmux_allocs_in_flight() { return g_allocs.load(); }

int qmux_pending_signal() { return g_pending_signal.load(); }

void qmux_release_held_and_end(int sig)
{
    write_releases();
    qmux_record_remove_mine();
    if (sig) end_by(sig);
}

}  // namespace rlk_host
