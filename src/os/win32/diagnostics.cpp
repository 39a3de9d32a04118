// Diagnostics on Windows: the runtime's clock(), which counts elapsed milliseconds there, and
// OutputDebugStringW.
#include "os/diagnostics.hpp"

#include <ctime>
#include <windows.h>

namespace velmor2::_internal::os {

std::int32_t elapsed_clock_ms() {
    return static_cast<std::int32_t>(std::clock());
}

void debug_output(const std::wstring& text) {
    OutputDebugStringW(text.c_str());
}

} // namespace velmor2::_internal::os
