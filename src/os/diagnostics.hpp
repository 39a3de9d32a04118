// The clock and the output channel of diagnostics.
#pragma once

#include <cstdint>
#include <string>

namespace velmor2::_internal::os {

/// Milliseconds of a clock that counts elapsed time (1000 ticks per second), as a 32-bit value
/// that wraps around; only differences mean anything.
std::int32_t elapsed_clock_ms();

/// Writes `text` to the debugger output: the standard error stream on POSIX systems.
void debug_output(const std::wstring& text);

} // namespace velmor2::_internal::os
