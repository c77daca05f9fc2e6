#include "mbn_session.h"

#include <pthread.h>
#include <signal.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

#include "pdc_utils.h"

namespace {

/* Sent by this process to its own signal thread to end it. */
constexpr int k_quit_signal = SIGUSR1;

std::atomic<int> g_signal{0};
std::thread g_signal_thread;
std::mutex g_sleep_mu;
std::condition_variable g_sleep_cv;
std::chrono::steady_clock::time_point g_open_deadline;

void signal_set(sigset_t *set)
{
    sigemptyset(set);
    sigaddset(set, SIGINT);
    sigaddset(set, SIGTERM);
    sigaddset(set, k_quit_signal);
}

void signal_thread()
{
    sigset_t set;
    signal_set(&set);
    int sig = 0;
    while (sigwait(&set, &sig) != 0) {
    }
    if (sig == k_quit_signal) return;
    {
        std::lock_guard<std::mutex> g(g_sleep_mu);
        g_signal = sig;
    }
    g_sleep_cv.notify_all();
    pdc_cancel_waits();
}

/* Between two attempts to open the client: at most `seconds`, less when
 * the run's deadline comes first, nothing once a signal came. */
void interruptible_sleep(unsigned int seconds)
{
    std::unique_lock<std::mutex> lk(g_sleep_mu);
    auto until = std::chrono::steady_clock::now() + std::chrono::seconds(seconds);
    if (g_open_deadline < until) until = g_open_deadline;
    g_sleep_cv.wait_until(lk, until, [] { return g_signal.load() != 0; });
}

}  // namespace

void mbn_session_start()
{
    sigset_t set;
    signal_set(&set);
    pthread_sigmask(SIG_BLOCK, &set, nullptr);
    g_signal_thread = std::thread(signal_thread);
}

void mbn_session_end()
{
    if (!g_signal_thread.joinable()) return;
    /* The thread may still be waking the waiters: it is joined before the
     * process's objects go away. */
    pthread_kill(g_signal_thread.native_handle(), k_quit_signal);
    g_signal_thread.join();
}

int mbn_session_signal() { return g_signal.load(); }

bool mbn_open_pdc(unsigned int timeout_s)
{
    g_open_deadline = std::chrono::steady_clock::now() + std::chrono::seconds(timeout_s);
    pdc_set_retry_sleep(interruptible_sleep);
    return pdc_init() == 0;
}

void mbn_close_pdc()
{
    mbn_timer_stop();
    pdc_clean();
}
