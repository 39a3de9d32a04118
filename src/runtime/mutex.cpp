// mutex_t and mutex_guard_t over the platform lock.
#include <velmor2/threading.hpp>

#include "os/mutex.hpp"

namespace velmor2::threading {

mutex_t::mutex_t() : native(_internal::os::create_mutex()) {}

mutex_t::mutex_t(const mutex_t&) : native(_internal::os::create_mutex()) {}

mutex_t& mutex_t::operator=(const mutex_t&) {
    return *this;
}

mutex_t::~mutex_t() {
    if (native != nullptr) {
        _internal::os::destroy_mutex(native);
    }
}

void mutex_t::acquire() {
    _internal::os::lock_mutex(native);
}

void mutex_t::release() {
    _internal::os::unlock_mutex(native);
}

mutex_guard_t::mutex_guard_t(mutex_t& mutex) : mutex(&mutex) {
    mutex.acquire();
}

mutex_guard_t::~mutex_guard_t() {
    mutex->release();
}

} // namespace velmor2::threading
