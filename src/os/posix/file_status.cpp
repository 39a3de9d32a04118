// File attributes and write access from stat, faccessat and statvfs.
#include "os/file_status.hpp"
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

std::string native_bytes(const std::wstring& printed) {
    return to_utf8(native_text(printed));
}

namespace {

// A text with a NUL in it names nothing: the system would read only the part before it.
bool names_an_entry(const std::string& native) {
    return native.find('\0') == std::string::npos;
}

} // namespace

bool get_attributes(const std::wstring& text, attributes_t& attributes, error_kind_t& error) {
    const std::string native = native_bytes(text);
    if (!names_an_entry(native)) {
        error = error_kind_t::bad_name;
        return false;
    }
    struct stat st;
    if (::stat(native.c_str(), &st) != 0) {
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
    if (!names_an_entry(native) || ::stat(native.c_str(), &st) != 0) {
        return write_access_t::unknown;
    }
    if ((st.st_mode & (S_IWUSR | S_IWGRP | S_IWOTH)) == 0) {
        return write_access_t::read_only;
    }
    if (::faccessat(AT_FDCWD, native.c_str(), W_OK, AT_EACCESS) != 0) {
        if (errno == EACCES || errno == EROFS || errno == EPERM) {
            return write_access_t::read_only;
        }
        return write_access_t::unknown;
    }
    // A file system mounted read-only plays the part of a CD-ROM drive.
    struct statvfs vfs;
    if (::statvfs(native.c_str(), &vfs) == 0 && (vfs.f_flag & ST_RDONLY) != 0) {
        return write_access_t::read_only;
    }
    return write_access_t::writable;
}

} // namespace velmor2::_internal::os
