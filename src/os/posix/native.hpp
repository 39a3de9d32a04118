// Path text as the POSIX calls receive it.
#pragma once

#include <string>

namespace velmor2::_internal::os {

/// UTF-8 bytes of the native text of a printed path (separators `/`, no long-path prefix).
std::string native_bytes(const std::wstring& printed);

} // namespace velmor2::_internal::os
