// Re-entrant lock from a critical section.
#include "os/mutex.hpp"

#include <windows.h>

namespace velmor2::_internal::os {

void* create_mutex() {
    auto* section = new CRITICAL_SECTION;
    InitializeCriticalSection(section);
    return section;
}

void destroy_mutex(void* mutex) {
    auto* section = static_cast<CRITICAL_SECTION*>(mutex);
    DeleteCriticalSection(section);
    delete section;
}

void lock_mutex(void* mutex) {
    EnterCriticalSection(static_cast<CRITICAL_SECTION*>(mutex));
}

void unlock_mutex(void* mutex) {
    LeaveCriticalSection(static_cast<CRITICAL_SECTION*>(mutex));
}

} // namespace velmor2::_internal::os
