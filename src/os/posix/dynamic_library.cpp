// Dynamic libraries through dlopen, dlsym and dlclose.
#include "os/dynamic_library.hpp"
#include "os/posix/native.hpp"
#include "unicode/convert.hpp"

#include <dlfcn.h>

namespace velmor2::_internal::os {

void* load_library(const std::wstring& printed) {
    const std::string native = native_bytes(printed);
    if (native.empty()) {
        return nullptr;
    }
    return ::dlopen(native.c_str(), RTLD_NOW | RTLD_LOCAL);
}

void free_library(void* handle) {
    ::dlclose(handle);
}

void* find_symbol(void* handle, const std::wstring& name) {
    // Symbol names are bytes; UTF-8 is what compilers emit for names beyond ASCII.
    return ::dlsym(handle, to_utf8(name).c_str());
}

const wchar_t* library_suffix() {
#if defined(__APPLE__)
    return L".dylib";
#else
    return L".so";
#endif
}

} // namespace velmor2::_internal::os
