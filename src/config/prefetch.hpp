// Asking for memory before it is read, where a loop knows the addresses it will need a few
// steps ahead: a hint, with no effect on what the program computes. Figures:
// docs/performance.md, "Configuration store".
#pragma once

#include <cstdint>

#if defined(_MSC_VER) && !defined(__clang__)
#include <xmmintrin.h>
#endif

namespace velmor2::_internal {

/// Starts loading the cache line holding `address` (any address, even an invalid one).
inline void prefetch(const void* address) {
#if defined(_MSC_VER) && !defined(__clang__)
    _mm_prefetch(static_cast<const char*>(address), _MM_HINT_T0);
#else
    __builtin_prefetch(address);
#endif
}

/// Starts loading the `lines` cache lines from `address` on.
inline void prefetch_lines(const void* address, int lines) {
    for (int line = 0; line < lines; ++line) {
        prefetch(reinterpret_cast<const void*>(reinterpret_cast<std::uintptr_t>(address) +
                                               64 * static_cast<std::uintptr_t>(line)));
    }
}

/// Starts loading a store's entry and the lines after it, where its key's text and its value
/// usually are: inserting an entry allocates them right after the map node when nothing else
/// allocates in between.
inline void prefetch_entry(const void* node) {
    prefetch_lines(node, 6);
}

} // namespace velmor2::_internal
