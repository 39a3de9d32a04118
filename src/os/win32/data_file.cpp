// Whole-file reading and writing with CreateFileW, ReadFile and WriteFile.
#include "os/data_file.hpp"

#include <algorithm>
#include <windows.h>

namespace velmor2::_internal::os {
namespace {

// ReadFile and WriteFile take 32-bit counts.
constexpr std::size_t max_transfer = 1u << 30;

HANDLE to_handle(std::intptr_t value) {
    return reinterpret_cast<HANDLE>(value);
}

std::intptr_t open_file(const std::wstring& printed, DWORD access, DWORD disposition) {
    // A NUL would cut the name short and reach another file.
    if (printed.empty() || printed.find(L'\0') != std::wstring::npos) {
        return -1;
    }
    const HANDLE h =
        CreateFileW(printed.c_str(), access, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                    nullptr, disposition, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (h == INVALID_HANDLE_VALUE) {
        return -1;
    }
    // Only files on a disk: a pipe or a console would block or never end.
    if (GetFileType(h) != FILE_TYPE_DISK) {
        CloseHandle(h);
        return -1;
    }
    return reinterpret_cast<std::intptr_t>(h);
}

} // namespace

data_file_t::~data_file_t() {
    if (handle_ != -1) {
        CloseHandle(to_handle(handle_));
    }
}

bool data_file_t::open_read(const std::wstring& printed) {
    handle_ = open_file(printed, GENERIC_READ, OPEN_EXISTING);
    return handle_ != -1;
}

bool data_file_t::open_write(const std::wstring& printed) {
    handle_ = open_file(printed, GENERIC_WRITE, CREATE_ALWAYS);
    return handle_ != -1;
}

bool data_file_t::size(std::uint64_t& bytes) {
    LARGE_INTEGER value;
    if (handle_ == -1 || !GetFileSizeEx(to_handle(handle_), &value)) {
        return false;
    }
    bytes = static_cast<std::uint64_t>(value.QuadPart);
    return true;
}

bool data_file_t::read(void* buffer, std::size_t size, std::size_t& got) {
    got = 0;
    char* out = static_cast<char*>(buffer);
    while (got < size) {
        DWORD n = 0;
        const DWORD want = static_cast<DWORD>(std::min(size - got, max_transfer));
        if (!ReadFile(to_handle(handle_), out + got, want, &n, nullptr)) {
            return false;
        }
        if (n == 0) {
            break;
        }
        got += n;
    }
    return true;
}

bool data_file_t::write(const void* data, std::size_t size) {
    const char* in = static_cast<const char*>(data);
    while (size > 0) {
        DWORD n = 0;
        const DWORD want = static_cast<DWORD>(std::min(size, max_transfer));
        if (!WriteFile(to_handle(handle_), in, want, &n, nullptr)) {
            return false;
        }
        in += n;
        size -= n;
    }
    return true;
}

} // namespace velmor2::_internal::os
