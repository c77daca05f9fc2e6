/* The radio layer's shared mutex type. */
#ifndef RLK_PLATFORM_QTIMUTEX_H
#define RLK_PLATFORM_QTIMUTEX_H

#include <shared_mutex>

namespace qtimutex {

/* A reader/writer mutex; lock()/unlock() take it exclusively, which is how
 * the tool uses it (also with std::unique_lock and condition_variable_any). */
class QtiSharedMutex {
public:
    void lock() { m_.lock(); }
    void unlock() { m_.unlock(); }
    bool try_lock() { return m_.try_lock(); }
    void lock_shared() { m_.lock_shared(); }
    void unlock_shared() { m_.unlock_shared(); }
    bool try_lock_shared() { return m_.try_lock_shared(); }

private:
    std::shared_mutex m_;
};

}  // namespace qtimutex
#endif
