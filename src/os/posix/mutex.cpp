// Re-entrant lock from a recursive pthread mutex.
#include "os/mutex.hpp"

#include <new>
#include <pthread.h>

namespace velmor2::_internal::os {

void* create_mutex() {
    auto* mutex = new pthread_mutex_t;
    pthread_mutexattr_t attributes;
    pthread_mutexattr_init(&attributes);
    pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_RECURSIVE);
    const int result = pthread_mutex_init(mutex, &attributes);
    pthread_mutexattr_destroy(&attributes);
    if (result != 0) {
        delete mutex;
        throw std::bad_alloc();
    }
    return mutex;
}

void destroy_mutex(void* mutex) {
    auto* native = static_cast<pthread_mutex_t*>(mutex);
    pthread_mutex_destroy(native);
    delete native;
}

void lock_mutex(void* mutex) {
    pthread_mutex_lock(static_cast<pthread_mutex_t*>(mutex));
}

void unlock_mutex(void* mutex) {
    pthread_mutex_unlock(static_cast<pthread_mutex_t*>(mutex));
}

} // namespace velmor2::_internal::os
