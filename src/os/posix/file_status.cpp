// File attributes and write access from stat, faccessat and statvfs.
#include "os/file_status.hpp"
#include "os/posix/fs_calls.hpp"
#include "os/posix/native.hpp"
#include "unicode/convert.hpp"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

namespace velmor2::_internal::os {

std::wstring native_text(const std::wstring& printed) {
    static const std::wstring long_prefix = L"\\\\?\\";
    std::wstring out =
        printed.compare(0, long_prefix.size(), long_prefix) == 0 ? printed.substr(4) : printed;
    for (wchar_t& c : out) {
        if (c == L'\\') {
            c = L'/';
        }
    }
    return out;
}

namespace {

bool is_separator(wchar_t c) {
    return c == L'/' || c == L'\\';
}

// A drive (`C:`) or server (`//srv`) has no meaning here; taken as it stands it would name a
// folder of that name under the working directory.
bool is_windows_root(const std::wstring& native) {
    return (native.size() >= 2 && native[1] == L':') ||
           (native.size() >= 3 && is_separator(native[0]) && is_separator(native[1]) &&
            !is_separator(native[2]));
}

} // namespace

std::string native_bytes(const std::wstring& printed) {
    const std::wstring native = native_text(printed);
    // A text with a NUL in it would reach the system cut at the NUL, naming another entry.
    if (native.find(L'\0') != std::wstring::npos || is_windows_root(native)) {
        return std::string();
    }
    return to_utf8(native);
}

bool get_attributes(const std::wstring& text, attributes_t& attributes, error_kind_t& error) {
    const std::string native = native_bytes(text);
    if (native.empty()) {
        error = error_kind_t::bad_name;
        return false;
    }
    struct stat st;
    if (fs_calls().stat(native.c_str(), &st) != 0) {
        error = last_error();
        return false;
    }
    attributes.directory = S_ISDIR(st.st_mode);
    // Only a mode with no write bit at all is the counterpart of the read-only attribute.
    attributes.read_only = (st.st_mode & (S_IWUSR | S_IWGRP | S_IWOTH)) == 0;
    error = error_kind_t::none;
    return true;
}

bool drive_has_root(wchar_t) {
    return false;
}

bool is_cdrom_drive(wchar_t) {
    return false;
}

write_access_t check_write_access(const std::wstring& text) {
    const std::string native = native_bytes(text);
    struct stat st;
    if (native.empty()) {
        return write_access_t::unknown;
    }
    if (fs_calls().stat(native.c_str(), &st) != 0) {
        // What the caller may not even look at, it may not write either.
        return errno == EACCES || errno == EPERM ? write_access_t::read_only
                                                 : write_access_t::unknown;
    }
    if ((st.st_mode & (S_IWUSR | S_IWGRP | S_IWOTH)) == 0) {
        return write_access_t::read_only;
    }
    if (fs_calls().faccessat(AT_FDCWD, native.c_str(), W_OK, AT_EACCESS) != 0) {
        if (errno == EACCES || errno == EROFS || errno == EPERM) {
            return write_access_t::read_only;
        }
        return write_access_t::unknown;
    }
    // A file system mounted read-only plays the part of a CD-ROM drive.
    struct statvfs vfs;
    if (fs_calls().statvfs(native.c_str(), &vfs) == 0 && (vfs.f_flag & ST_RDONLY) != 0) {
        return write_access_t::read_only;
    }
    return write_access_t::writable;
}

} // namespace velmor2::_internal::os
