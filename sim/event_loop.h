/* Single-threaded epoll loop with millisecond timers: the simulator serves
 * every client from one thread, so modem state needs no locks. */
#ifndef MODEMD_EVENT_LOOP_H
#define MODEMD_EVENT_LOOP_H

#include <stdint.h>

#include <functional>
#include <map>
#include <memory>

namespace modemd {

class event_loop {
public:
    using fd_handler = std::function<void(uint32_t events)>;
    using timer_id = uint64_t;

    event_loop();
    ~event_loop();
    event_loop(const event_loop &) = delete;
    event_loop &operator=(const event_loop &) = delete;

    /* Watches `fd` for input (EPOLLIN); the handler gets the epoll events. */
    bool add_fd(int fd, fd_handler handler);
    void remove_fd(int fd);
    /* Changes what `fd` is watched for (EPOLLIN, EPOLLOUT, both or none;
     * hang-ups and errors are always reported). */
    bool set_fd_events(int fd, uint32_t events);

    /* Runs `fn` once after `ms` milliseconds. */
    timer_id add_timer(uint32_t ms, std::function<void()> fn);
    void cancel_timer(timer_id id);

    /* Runs until stop(). */
    void run();
    void stop() { running_ = false; }

    /* Milliseconds on the monotonic clock. */
    static uint64_t now_ms();

    /* Longest time one handler or timer kept the loop, in microseconds of
     * the clock (the most any client waited for another one, including
     * time the system gave other processes) and of the loop's own CPU. */
    struct dispatch_time {
        uint64_t wall_us = 0;
        uint64_t cpu_us = 0;
    };
    dispatch_time longest_dispatch() const { return longest_; }
    void reset_longest_dispatch() { longest_ = dispatch_time(); }

private:
    using dispatch_start = dispatch_time;
    void note_dispatch(const dispatch_start &start);

    int epfd_;
    bool running_ = false;
    timer_id next_timer_ = 1;
    dispatch_time longest_;
    std::map<int, std::shared_ptr<fd_handler>> fds_;
    /* Ordered by deadline, then by id (creation order). */
    std::map<std::pair<uint64_t, timer_id>, std::function<void()>> timers_;
    std::map<timer_id, uint64_t> timer_deadline_;
};

}  // namespace modemd

#endif
