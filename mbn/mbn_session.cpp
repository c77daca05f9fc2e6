#include "mbn_session.h"

#include <errno.h>
#include <fcntl.h>
#include <pthread.h>
#include <signal.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <mutex>
#include <thread>

#include "pdc_requests.h"

namespace {

typedef std::chrono::steady_clock steady;

/* Sent by this process to its own signal thread to end it. */
constexpr int k_quit_signal = SIGUSR1;
/* Between two failed attempts to open the client (each attempt itself
 * waits for the service until the deadline). */
constexpr std::chrono::milliseconds k_retry_pause(200);
/* How long past the deadline an attempt may take to return before it is
 * abandoned (the QMI library ends its own wait at the deadline too). */
constexpr std::chrono::milliseconds k_attempt_grace(50);

std::atomic<int> g_signal{0};
std::thread g_signal_thread;

/* Guards the opening below and the signal's arrival (g_signal is also set
 * under it, so that waiters on g_cv do not miss it). */
std::mutex g_mu;
std::condition_variable g_cv;

struct opening {
    bool finished = false;           /* the opening thread is done */
    bool abandoned = false;          /* the run went on without it */
    qmi_client_type handle = nullptr; /* what it opened */
    std::thread thread;
};
opening g_open;

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
        std::lock_guard<std::mutex> g(g_mu);
        g_signal = sig;
    }
    g_cv.notify_all();
    pdc_cancel_waits();
}

unsigned int ms_until(steady::time_point deadline)
{
    long long left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - steady::now()).count();
    return left > 0 ? unsigned(left) : 0;
}

/* Tries to open the client until the deadline.  A client opened after the
 * run gave up on it is released here. */
void open_thread(steady::time_point deadline)
{
    qmi_client_type handle = nullptr;
    for (int attempt = 0; !handle; attempt++) {
        unsigned int left = ms_until(deadline);
        if (left == 0 || pdc_open_attempt(left, attempt, &handle) == 0) break;
        std::unique_lock<std::mutex> lk(g_mu);
        steady::time_point until = std::min(steady::now() + k_retry_pause, deadline);
        if (g_cv.wait_until(lk, until, [] { return g_open.abandoned || g_signal.load() != 0; })) break;
    }
    std::unique_lock<std::mutex> lk(g_mu);
    if (g_open.abandoned) {
        lk.unlock();
        if (handle) qmi_client_release(handle);
        return;
    }
    g_open.finished = true;
    g_open.handle = handle;
    lk.unlock();
    g_cv.notify_all();
}

}  // namespace

void mbn_session_start()
{
    sigset_t set;
    signal_set(&set);
    pthread_sigmask(SIG_BLOCK, &set, nullptr);
    g_signal_thread = std::thread(signal_thread);
}

int mbn_session_end(int exit_code)
{
    fflush(stdout);
    fflush(stderr);
    if (g_signal_thread.joinable()) {
        /* The thread may still be waking the waiters: it is joined before
         * the process's objects go away. */
        pthread_kill(g_signal_thread.native_handle(), k_quit_signal);
        g_signal_thread.join();
    }
    bool abandoned;
    {
        std::lock_guard<std::mutex> g(g_mu);
        abandoned = g_open.abandoned;
    }
    if (abandoned) _exit(exit_code);
    return exit_code;
}

int mbn_session_signal() { return g_signal.load(); }

bool mbn_check_device(std::string *error)
{
    const char *path = getenv("RLK_QMI_DEVICE");
    if (!path || !*path) return true;
    int fd = open(path, O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
    if (fd < 0) {
        *error = std::string("cannot open the QMI device ") + path + " (RLK_QMI_DEVICE): " + strerror(errno);
        return false;
    }
    close(fd);
    return true;
}

mbn_open_status mbn_open_pdc(steady::time_point deadline)
{
    qmi_pdc_init_pdc_info();
    pdc_set_deadline(deadline);
    std::unique_lock<std::mutex> lk(g_mu);
    g_open.thread = std::thread(open_thread, deadline);
    g_cv.wait_until(lk, deadline + k_attempt_grace, [] { return g_open.finished || g_signal.load() != 0; });
    if (!g_open.finished) {
        /* An attempt is still blocked in the QMI library: the run goes on
         * without it (and ends through _exit, see mbn_session_end). */
        g_open.abandoned = true;
        lk.unlock();
        g_cv.notify_all();
        g_open.thread.detach();
        return g_signal.load() ? MBN_OPEN_SIGNAL : MBN_OPEN_TIMEOUT;
    }
    qmi_client_type handle = g_open.handle;
    lk.unlock();
    g_open.thread.join();
    if (handle) pdc_install_client(handle);
    if (g_signal.load()) return MBN_OPEN_SIGNAL;
    return handle ? MBN_OPEN_OK : MBN_OPEN_TIMEOUT;
}

void mbn_close_pdc()
{
    mbn_timer_stop();
    pdc_clean();
}
