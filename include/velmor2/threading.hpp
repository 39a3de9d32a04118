// The library's re-entrant lock and its scoped holder.
#pragma once

#include <velmor2/export.hpp>

namespace velmor2::threading {

/// A process-local, re-entrant mutual-exclusion lock: the thread that owns it may acquire it
/// again without blocking, and must release it as many times as it acquired it.
///
/// Copies never share a lock:
///
///   mutex_t b(a)  => b has a fresh, unlocked lock of its own (a is not looked at)
///   b = a         => nothing changes in a or b
///
/// so objects holding a `mutex_t` can be copied and assigned member by member.
class VELMOR_API mutex_t {
  public:
    /// Creates an unlocked lock. Allocation failure throws `std::bad_alloc`.
    mutex_t();
    /// Creates a fresh, unlocked lock; `other` is not looked at.
    mutex_t(const mutex_t& other);
    /// Does nothing: each object keeps its own lock and lock state.
    mutex_t& operator=(const mutex_t& other);
    /// Destroys the lock; it must not be held.
    ~mutex_t();

    /// Blocks until the calling thread owns the lock; re-entrant for the owner.
    void acquire();
    /// Gives up one acquisition by the owning thread.
    void release();

  private:
    /// The platform lock (critical section or recursive pthread mutex), on the heap.
    void* native;
};

/// Holds a `mutex_t` from construction to destruction (also when the scope is left by an
/// exception). Not copyable: one guard, one acquisition.
class VELMOR_API mutex_guard_t {
  public:
    /// Acquires `mutex`, remembering it.
    explicit mutex_guard_t(mutex_t& mutex);
    /// Releases the mutex given to the constructor.
    ~mutex_guard_t();
    /// A guard is bound to the acquisition it made.
    mutex_guard_t(const mutex_guard_t&) = delete;
    /// A guard is bound to the acquisition it made.
    mutex_guard_t& operator=(const mutex_guard_t&) = delete;

  private:
    /// The locked mutex, not owned.
    mutex_t* mutex;
};

} // namespace velmor2::threading
