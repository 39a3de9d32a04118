// The ANSI code page of Windows is the system's (CP_ACP).
#include "os/ansi.hpp"

#include <limits>
#include <windows.h>

namespace velmor2::_internal::os {

std::string to_ansi(const std::wstring& text) {
    // The conversion calls count in int; a longer text fails as a whole rather than wrap.
    if (text.empty() || text.size() > static_cast<std::size_t>(std::numeric_limits<int>::max())) {
        return {};
    }
    const int size = static_cast<int>(text.size());
    const int needed =
        WideCharToMultiByte(CP_ACP, 0, text.data(), size, nullptr, 0, nullptr, nullptr);
    std::string out(static_cast<std::size_t>(needed > 0 ? needed : 0), '\0');
    if (needed > 0) {
        WideCharToMultiByte(CP_ACP, 0, text.data(), size, out.data(), needed, "?", nullptr);
    }
    return out;
}

std::wstring from_ansi(const std::string& bytes) {
    if (bytes.empty() || bytes.size() > static_cast<std::size_t>(std::numeric_limits<int>::max())) {
        return {};
    }
    const int size = static_cast<int>(bytes.size());
    const int needed = MultiByteToWideChar(CP_ACP, 0, bytes.data(), size, nullptr, 0);
    std::wstring out(static_cast<std::size_t>(needed > 0 ? needed : 0), L'\0');
    if (needed > 0) {
        MultiByteToWideChar(CP_ACP, 0, bytes.data(), size, out.data(), needed);
    }
    return out;
}

} // namespace velmor2::_internal::os
