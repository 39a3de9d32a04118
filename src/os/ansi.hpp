// The ANSI code page: the system's on Windows; on POSIX, which has none, Windows-1252.
#pragma once

#include <string>

namespace velmor2::_internal::os {

/// Wide text to the ANSI code page (the system's on Windows, Windows-1252 elsewhere); characters
/// it cannot represent become `?`.
std::string to_ansi(const std::wstring& text);
/// ANSI code page bytes to wide text.
std::wstring from_ansi(const std::string& bytes);

} // namespace velmor2::_internal::os
