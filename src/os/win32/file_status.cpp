// File attributes, drive types and the effective write-access check through the Win32 API.
#include "os/file_status.hpp"

#include <memory>
#include <vector>
#include <windows.h>

namespace velmor2::_internal::os {
namespace {

// A text with a NUL in it names nothing: the system would read only the part before it.
bool names_an_entry(const std::wstring& text) {
    return text.find(L'\0') == std::wstring::npos;
}

std::wstring drive_root(wchar_t letter) {
    return std::wstring(1, letter) + L":\\";
}

struct handle_closer_t {
    void operator()(HANDLE h) const { CloseHandle(h); }
};
using unique_handle_t = std::unique_ptr<void, handle_closer_t>;

// The thread's impersonation token, or the process token when the thread has none.
unique_handle_t open_caller_token() {
    HANDLE token = nullptr;
    if (OpenThreadToken(GetCurrentThread(), TOKEN_DUPLICATE | TOKEN_QUERY, FALSE, &token)) {
        return unique_handle_t(token);
    }
    if (GetLastError() == ERROR_NO_TOKEN &&
        OpenProcessToken(GetCurrentProcess(), TOKEN_DUPLICATE | TOKEN_QUERY, &token)) {
        return unique_handle_t(token);
    }
    return nullptr;
}

} // namespace

std::wstring native_text(const std::wstring& printed) {
    return printed;
}

bool get_attributes(const std::wstring& text, attributes_t& attributes, error_kind_t& error) {
    if (!names_an_entry(text)) {
        error = error_kind_t::bad_name;
        return false;
    }
    const DWORD value = GetFileAttributesW(text.c_str());
    if (value == INVALID_FILE_ATTRIBUTES) {
        error = last_error();
        return false;
    }
    attributes.directory = (value & FILE_ATTRIBUTE_DIRECTORY) != 0;
    attributes.read_only = (value & FILE_ATTRIBUTE_READONLY) != 0;
    error = error_kind_t::none;
    return true;
}

bool drive_has_root(wchar_t letter) {
    return GetDriveTypeW(drive_root(letter).c_str()) != DRIVE_NO_ROOT_DIR;
}

bool is_cdrom_drive(wchar_t letter) {
    return GetDriveTypeW(drive_root(letter).c_str()) == DRIVE_CDROM;
}

write_access_t check_write_access(const std::wstring& text) {
    if (!names_an_entry(text)) {
        return write_access_t::unknown;
    }
    unique_handle_t token = open_caller_token();
    if (!token) {
        return write_access_t::unknown;
    }
    HANDLE duplicate_raw = nullptr;
    if (!DuplicateToken(token.get(), SecurityIdentification, &duplicate_raw)) {
        return write_access_t::unknown;
    }
    token.reset();
    const unique_handle_t duplicate(duplicate_raw);

    const SECURITY_INFORMATION info =
        OWNER_SECURITY_INFORMATION | GROUP_SECURITY_INFORMATION | DACL_SECURITY_INFORMATION;
    DWORD needed = 0;
    if (!GetFileSecurityW(text.c_str(), info, nullptr, 0, &needed)) {
        const DWORD error = GetLastError();
        if (error == ERROR_SHARING_VIOLATION || error == ERROR_ACCESS_DENIED ||
            error == ERROR_NOT_READY) {
            return write_access_t::read_only;
        }
        if (error != ERROR_INSUFFICIENT_BUFFER) {
            return write_access_t::unknown;
        }
    }
    std::vector<unsigned char> descriptor(needed, 0);
    if (!GetFileSecurityW(text.c_str(), info, descriptor.data(), needed, &needed)) {
        return write_access_t::unknown;
    }

    GENERIC_MAPPING mapping = {FILE_GENERIC_READ, FILE_GENERIC_WRITE, FILE_GENERIC_EXECUTE,
                               FILE_ALL_ACCESS};
    DWORD access = GENERIC_READ | GENERIC_WRITE;
    MapGenericMask(&access, &mapping);
    // Room for a few privileges; the call needs no more for these rights.
    alignas(PRIVILEGE_SET) unsigned char privileges[256] = {};
    DWORD privileges_length = sizeof(privileges);
    DWORD granted = 0;
    BOOL status = FALSE;
    if (!AccessCheck(descriptor.data(), duplicate.get(), access, &mapping,
                     reinterpret_cast<PRIVILEGE_SET*>(privileges), &privileges_length, &granted,
                     &status)) {
        return write_access_t::unknown;
    }
    // The decision reads the granted mask, not the status flag.
    if (granted == 0) {
        return write_access_t::read_only;
    }
    const DWORD attributes = GetFileAttributesW(text.c_str());
    if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_READONLY) != 0) {
        return write_access_t::read_only;
    }
    return write_access_t::writable;
}

} // namespace velmor2::_internal::os
