#include "event_loop.h"

#include <errno.h>
#include <sys/epoll.h>
#include <time.h>
#include <unistd.h>

namespace modemd {

event_loop::event_loop() : epfd_(epoll_create1(EPOLL_CLOEXEC)) {}

event_loop::~event_loop()
{
    if (epfd_ >= 0) close(epfd_);
}

uint64_t event_loop::now_ms()
{
    struct timespec ts;
    clock_gettime(CLOCK_MONOTONIC, &ts);
    return uint64_t(ts.tv_sec) * 1000u + uint64_t(ts.tv_nsec) / 1000000u;
}

namespace {

uint64_t clock_us(clockid_t clock)
{
    struct timespec ts;
    clock_gettime(clock, &ts);
    return uint64_t(ts.tv_sec) * 1000000u + uint64_t(ts.tv_nsec) / 1000u;
}

}  // namespace

bool event_loop::add_fd(int fd, fd_handler handler)
{
    struct epoll_event ev = {};
    ev.events = EPOLLIN;
    ev.data.fd = fd;
    if (epoll_ctl(epfd_, EPOLL_CTL_ADD, fd, &ev) != 0) return false;
    fds_[fd] = std::make_shared<fd_handler>(std::move(handler));
    return true;
}

bool event_loop::set_fd_events(int fd, uint32_t events)
{
    struct epoll_event ev = {};
    ev.events = events;
    ev.data.fd = fd;
    return epoll_ctl(epfd_, EPOLL_CTL_MOD, fd, &ev) == 0;
}

void event_loop::remove_fd(int fd)
{
    epoll_ctl(epfd_, EPOLL_CTL_DEL, fd, nullptr);
    fds_.erase(fd);
}

event_loop::timer_id event_loop::add_timer(uint32_t ms, std::function<void()> fn)
{
    timer_id id = next_timer_++;
    uint64_t deadline = now_ms() + ms;
    timers_[{deadline, id}] = std::move(fn);
    timer_deadline_[id] = deadline;
    return id;
}

void event_loop::cancel_timer(timer_id id)
{
    auto it = timer_deadline_.find(id);
    if (it == timer_deadline_.end()) return;
    timers_.erase({it->second, id});
    timer_deadline_.erase(it);
}

void event_loop::note_dispatch(const dispatch_start &start)
{
    uint64_t wall = clock_us(CLOCK_MONOTONIC) - start.wall_us;
    uint64_t cpu = clock_us(CLOCK_THREAD_CPUTIME_ID) - start.cpu_us;
    if (wall > longest_.wall_us) longest_.wall_us = wall;
    if (cpu > longest_.cpu_us) longest_.cpu_us = cpu;
}

void event_loop::run()
{
    running_ = true;
    struct epoll_event events[64];
    while (running_) {
        int timeout = -1;
        if (!timers_.empty()) {
            uint64_t now = now_ms();
            uint64_t first = timers_.begin()->first.first;
            timeout = first <= now ? 0 : int(first - now);
        }
        int n = epoll_wait(epfd_, events, 64, timeout);
        if (n < 0 && errno != EINTR) break;
        for (int i = 0; i < n && running_; i++) {
            auto it = fds_.find(events[i].data.fd);
            if (it == fds_.end()) continue;
            auto handler = it->second; /* keeps the handler alive if it removes itself */
            dispatch_start start = {clock_us(CLOCK_MONOTONIC), clock_us(CLOCK_THREAD_CPUTIME_ID)};
            (*handler)(events[i].events);
            note_dispatch(start);
        }
        uint64_t now = now_ms();
        while (running_ && !timers_.empty() && timers_.begin()->first.first <= now) {
            auto node = timers_.begin();
            auto fn = std::move(node->second);
            timer_deadline_.erase(node->first.second);
            timers_.erase(node);
            dispatch_start start = {clock_us(CLOCK_MONOTONIC), clock_us(CLOCK_THREAD_CPUTIME_ID)};
            fn();
            note_dispatch(start);
        }
    }
}

}  // namespace modemd
