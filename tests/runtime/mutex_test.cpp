#include <velmor2/threading.hpp>

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <thread>

namespace {

using velmor2::threading::mutex_guard_t;
using velmor2::threading::mutex_t;

// Takes and gives back `mutex` on another thread; hangs (and the test times out) if the lock
// is not free for it.
bool other_thread_acquires(mutex_t& mutex) {
    bool acquired = false;
    std::thread other([&] {
        mutex_guard_t guard(mutex);
        acquired = true;
    });
    other.join();
    return acquired;
}

TEST(mutex, owner_reenters_and_others_wait_for_every_release) {
    mutex_t mutex;
    std::atomic<bool> acquired{false};
    mutex.acquire();
    mutex.acquire();
    std::thread other([&] {
        mutex_guard_t guard(mutex);
        acquired = true;
    });
    std::this_thread::sleep_for(std::chrono::milliseconds(30));
    EXPECT_FALSE(acquired);
    mutex.release();
    std::this_thread::sleep_for(std::chrono::milliseconds(30));
    EXPECT_FALSE(acquired);
    mutex.release();
    other.join();
    EXPECT_TRUE(acquired);
}

TEST(mutex, copy_and_assignment_change_no_lock) {
    mutex_t held;
    mutex_guard_t guard(held);
    // A copy has its own lock, unlocked.
    mutex_t copy(held);
    EXPECT_TRUE(other_thread_acquires(copy));
    mutex_t target;
    target.acquire();
    target = copy;
    // The target is still held by this thread, the source still free.
    EXPECT_TRUE(other_thread_acquires(copy));
    target.release();
    EXPECT_TRUE(other_thread_acquires(target));
}

} // namespace
