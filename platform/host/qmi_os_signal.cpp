/* The QMI client library's OS signal: a flag, a mutex and a condition
 * variable on the monotonic clock. */
#include <errno.h>
#include <time.h>

#include <mutex>

#include "qmi_cci_target_ext.h"

namespace {

std::mutex g_init_lock;

/* Callers hand in zeroed structures; they are initialised on first use. */
void ensure_init(qmi_cci_os_signal_type *s)
{
    std::lock_guard<std::mutex> guard(g_init_lock);
    if (s->inited) return;
    pthread_condattr_init(&s->attr);
    pthread_condattr_setclock(&s->attr, CLOCK_MONOTONIC);
    s->clock = CLOCK_MONOTONIC;
    pthread_cond_init(&s->cond, &s->attr);
    pthread_mutex_init(&s->mutex, nullptr);
    s->inited = 1;
}

}  // namespace

extern "C" void qmi_cci_os_signal_init(qmi_cci_os_signal_type *ptr)
{
    if (!ptr) return;
    ensure_init(ptr);
    pthread_mutex_lock(&ptr->mutex);
    ptr->sig_set = 0;
    ptr->timed_out = 0;
    pthread_mutex_unlock(&ptr->mutex);
}

extern "C" void qmi_cci_os_signal_deinit(qmi_cci_os_signal_type *ptr)
{
    if (!ptr) return;
    std::lock_guard<std::mutex> guard(g_init_lock);
    if (!ptr->inited) return;
    pthread_cond_destroy(&ptr->cond);
    pthread_condattr_destroy(&ptr->attr);
    pthread_mutex_destroy(&ptr->mutex);
    ptr->inited = 0;
}

extern "C" void qmi_cci_os_signal_wait(qmi_cci_os_signal_type *ptr, unsigned int timeout_ms)
{
    if (!ptr) return;
    ensure_init(ptr);
    pthread_mutex_lock(&ptr->mutex);
    ptr->timed_out = 0;
    if (timeout_ms == 0) {
        while (!ptr->sig_set) pthread_cond_wait(&ptr->cond, &ptr->mutex);
    } else {
        struct timespec deadline;
        clock_gettime(CLOCK_MONOTONIC, &deadline);
        deadline.tv_sec += timeout_ms / 1000;
        deadline.tv_nsec += long(timeout_ms % 1000) * 1000000L;
        if (deadline.tv_nsec >= 1000000000L) {
            deadline.tv_sec += 1;
            deadline.tv_nsec -= 1000000000L;
        }
        while (!ptr->sig_set) {
            if (pthread_cond_timedwait(&ptr->cond, &ptr->mutex, &deadline) == ETIMEDOUT) {
                if (!ptr->sig_set) ptr->timed_out = 1;
                break;
            }
        }
    }
    pthread_mutex_unlock(&ptr->mutex);
}

extern "C" void qmi_cci_os_signal_set(qmi_cci_os_signal_type *ptr)
{
    if (!ptr) return;
    ensure_init(ptr);
    pthread_mutex_lock(&ptr->mutex);
    ptr->sig_set = 1;
    pthread_cond_broadcast(&ptr->cond);
    pthread_mutex_unlock(&ptr->mutex);
}
