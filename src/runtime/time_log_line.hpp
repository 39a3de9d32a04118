// The text of a time logger's line.
#pragma once

#include <cstdint>
#include <string>

namespace velmor2::_internal {

/// `name`, a space and `elapsed_ms` / 1000 in the stream's general format (six significant
/// digits, no trailing zeros).
std::wstring time_log_line(const std::wstring& name, std::int32_t elapsed_ms);

} // namespace velmor2::_internal
