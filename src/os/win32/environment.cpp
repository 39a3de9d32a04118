// Environment variables through the runtime's _wdupenv_s and _wputenv; the host name through
// GetComputerNameExW.
#include "os/environment.hpp"

#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>
#include <vector>
#include <windows.h>

namespace velmor2::_internal::os {

namespace {

// A copy of the runtime's value of `name` that the caller frees, or null when it is not set.
wchar_t* duplicate_value(const std::wstring& name) {
#if defined(_MSC_VER) || defined(_UCRT)
    wchar_t* buffer = nullptr;
    std::size_t length = 0;
    _wdupenv_s(&buffer, &length, name.c_str());
    return buffer;
#else
    // MinGW's default runtime, msvcrt.dll, has no _wdupenv_s; the copy is made at once from
    // the same table.
    const wchar_t* value = _wgetenv(name.c_str());
    if (value == nullptr) {
        return nullptr;
    }
    wchar_t* copy = _wcsdup(value);
    if (copy == nullptr) {
        throw std::bad_alloc();
    }
    return copy;
#endif
}

} // namespace

std::wstring get_environment_variable(const std::wstring& name) {
    wchar_t* buffer = duplicate_value(name);
    const std::unique_ptr<wchar_t, decltype(&std::free)> owned(buffer, &std::free);
    return buffer != nullptr ? std::wstring(buffer) : std::wstring();
}

void set_environment_variable(const std::wstring& name, const std::wstring& value) {
    // The runtime removes a variable assigned the empty value.
    _wputenv((name + L"=" + value).c_str());
}

std::wstring fully_qualified_host_name() {
    DWORD size = 0;
    std::vector<wchar_t> buffer;
    for (;;) {
        if (GetComputerNameExW(ComputerNameDnsFullyQualified,
                               buffer.empty() ? nullptr : buffer.data(), &size)) {
            return buffer.empty() ? std::wstring() : std::wstring(buffer.data(), size);
        }
        if (GetLastError() != ERROR_MORE_DATA) {
            return {};
        }
        buffer.assign(size, L'\0');
    }
}

} // namespace velmor2::_internal::os
