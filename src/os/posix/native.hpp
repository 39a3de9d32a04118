// Path text as the POSIX calls receive it.
#pragma once

#include <string>

namespace velmor2::_internal::os {

/// UTF-8 bytes of the native text of a printed path (separators `/`, no long-path prefix);
/// empty, which every call refuses, for a text that cannot name an entry here: one holding a
/// NUL, or a Windows drive or server path.
std::string native_bytes(const std::wstring& printed);

} // namespace velmor2::_internal::os
