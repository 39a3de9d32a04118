// The platform's re-entrant lock: a critical section or a recursive pthread mutex.
#pragma once

namespace velmor2::_internal::os {

/// Allocates and initialises an unlocked re-entrant lock; throws `std::bad_alloc` when memory
/// runs out.
void* create_mutex();
/// Destroys and frees a lock made by `create_mutex`; it must not be held.
void destroy_mutex(void* mutex);
/// Blocks until the calling thread owns the lock (again, if it already does).
void lock_mutex(void* mutex);
/// Gives up one acquisition.
void unlock_mutex(void* mutex);

} // namespace velmor2::_internal::os
