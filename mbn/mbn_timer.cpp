/* The timed callback of the PDC client in rlk-mbn: callbacks run in order
 * of their due time on one thread, started on first use, so that the next
 * page of a list is asked for outside the QMI library's callback thread. */
#include <chrono>
#include <condition_variable>
#include <map>
#include <mutex>
#include <thread>

#include "mbn_session.h"
#include "pdc_utils.h"

namespace {

struct timed_call {
    tolvek_qcril_timed_callback fn;
    void *param;
};

struct timer_state {
    std::mutex mu;
    std::condition_variable cv;
    std::multimap<std::chrono::steady_clock::time_point, timed_call> due;
    bool stopping = false;
    std::thread thread;
};

timer_state g_timer;

void timer_run()
{
    std::unique_lock<std::mutex> lk(g_timer.mu);
    while (!g_timer.stopping) {
        if (g_timer.due.empty()) {
            g_timer.cv.wait(lk);
            continue;
        }
        auto first = g_timer.due.begin();
        if (std::chrono::steady_clock::now() < first->first) {
            g_timer.cv.wait_until(lk, first->first);
            continue;
        }
        timed_call call = first->second;
        g_timer.due.erase(first);
        lk.unlock();
        call.fn(call.param);
        lk.lock();
    }
}

}  // namespace

void tolvek_qcril_setup_timed_callback(int, int, tolvek_qcril_timed_callback callback, const struct timeval *delay)
{
    if (!callback) return;
    auto wait = delay ? std::chrono::seconds(delay->tv_sec) + std::chrono::microseconds(delay->tv_usec)
                      : std::chrono::microseconds(0);
    std::lock_guard<std::mutex> g(g_timer.mu);
    if (g_timer.stopping) return;
    g_timer.due.emplace(std::chrono::steady_clock::now() + wait, timed_call{callback, nullptr});
    if (!g_timer.thread.joinable()) g_timer.thread = std::thread(timer_run);
    g_timer.cv.notify_one();
}

void mbn_timer_stop()
{
    std::thread t;
    {
        std::lock_guard<std::mutex> g(g_timer.mu);
        g_timer.stopping = true;
        g_timer.due.clear();
        t = std::move(g_timer.thread);
    }
    g_timer.cv.notify_one();
    if (t.joinable()) t.join();
}
