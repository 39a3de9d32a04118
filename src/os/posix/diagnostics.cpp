// Diagnostics on POSIX: the monotonic clock (clock() counts processor time, not elapsed time
// here) and the standard error stream.
#include "os/diagnostics.hpp"
#include "unicode/convert.hpp"

#include <cstdio>
#include <ctime>

namespace velmor2::_internal::os {

std::int32_t elapsed_clock_ms() {
    timespec now = {};
    ::clock_gettime(CLOCK_MONOTONIC, &now);
    const auto ms = static_cast<std::uint64_t>(now.tv_sec) * 1000u +
                    static_cast<std::uint64_t>(now.tv_nsec) / 1000000u;
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(ms));
}

void debug_output(const std::wstring& text) {
    const std::string bytes = to_utf8(text);
    std::fwrite(bytes.data(), 1, bytes.size(), stderr);
}

} // namespace velmor2::_internal::os
