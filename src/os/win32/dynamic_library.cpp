// Dynamic libraries through LoadLibraryExW, GetProcAddress and FreeLibrary.
#include "os/dynamic_library.hpp"
#include "os/ansi.hpp"
#include "unicode/convert.hpp"

#include <windows.h>

namespace velmor2::_internal::os {

void* load_library(const std::wstring& printed) {
    if (printed.empty()) {
        return nullptr;
    }
    // The library's own dependencies are searched first in its directory.
    return LoadLibraryExW(printed.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
}

void free_library(void* handle) {
    FreeLibrary(static_cast<HMODULE>(handle));
}

void* find_symbol(void* handle, const std::wstring& name) {
    // Exports are looked up by their narrow names; ordinals are not supported.
    return reinterpret_cast<void*>(
        GetProcAddress(static_cast<HMODULE>(handle), to_ansi(name).c_str()));
}

const wchar_t* library_suffix() {
    return L".dll";
}

} // namespace velmor2::_internal::os
