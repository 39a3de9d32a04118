// Standard folders through the shell, module names and the working directory through kernel32.
#include "os/standard_dirs.hpp"

#include <shlobj.h>
#include <vector>
#include <windows.h>

namespace velmor2::_internal::os {
namespace {

// The full name of a loaded module, the buffer doubling from 64 characters until it fits.
std::wstring module_file_name(HMODULE module) {
    std::vector<wchar_t> buffer(64, L'\0');
    for (;;) {
        const DWORD size = static_cast<DWORD>(buffer.size());
        const DWORD length = GetModuleFileNameW(module, buffer.data(), size);
        if (length == 0) {
            return {};
        }
        if (length < size) {
            return std::wstring(buffer.data(), length);
        }
        buffer.assign(buffer.size() * 2, L'\0');
    }
}

int csidl_of(folder_t folder) {
    switch (folder) {
    case folder_t::documents:
        return CSIDL_PERSONAL;
    case folder_t::user_config:
        return CSIDL_APPDATA;
    case folder_t::shared_config:
        return CSIDL_COMMON_APPDATA;
    }
    return CSIDL_PERSONAL;
}

} // namespace

std::wstring get_folder(folder_t folder) {
    wchar_t buffer[MAX_PATH] = {};
    // The flag makes the shell create the folder when it is missing.
    if (FAILED(SHGetFolderPathW(nullptr, csidl_of(folder) | CSIDL_FLAG_CREATE, nullptr,
                                SHGFP_TYPE_CURRENT, buffer))) {
        return {};
    }
    return buffer;
}

bool create_folder_tree(const std::wstring& text) {
    const int code = SHCreateDirectoryExW(nullptr, text.c_str(), nullptr);
    return code == ERROR_SUCCESS || code == ERROR_FILE_EXISTS || code == ERROR_ALREADY_EXISTS;
}

std::wstring get_executable_file() {
    return module_file_name(GetModuleHandleA(nullptr));
}

std::wstring get_module_file(const void* address) {
    MEMORY_BASIC_INFORMATION region = {};
    // A free region has no allocation base, and a null handle would name the executable.
    if (VirtualQuery(address, &region, sizeof(region)) == 0 || region.AllocationBase == nullptr) {
        return {};
    }
    return module_file_name(static_cast<HMODULE>(region.AllocationBase));
}

std::wstring get_temp_folder() {
    wchar_t buffer[MAX_PATH + 1] = {};
    // Neither answer is checked: a failed long-name lookup leaves the short form in place.
    GetTempPathW(MAX_PATH + 1, buffer);
    GetLongPathNameW(buffer, buffer, MAX_PATH + 1);
    return buffer;
}

std::wstring get_working_dir() {
    std::vector<wchar_t> buffer(MAX_PATH + 1, L'\0');
    for (;;) {
        const DWORD size = static_cast<DWORD>(buffer.size());
        const DWORD length = GetCurrentDirectoryW(size, buffer.data());
        if (length == 0) {
            return {};
        }
        if (length < size) {
            return std::wstring(buffer.data(), length);
        }
        // The answer is then the size needed, terminating zero included.
        buffer.assign(length, L'\0');
    }
}

bool set_working_dir(const std::wstring& text) {
    return SetCurrentDirectoryW(text.c_str()) != 0;
}

} // namespace velmor2::_internal::os
