// What the file system says about one path text: attributes, drive type, write access.
#pragma once

#include "os/error.hpp"

#include <string>

namespace velmor2::_internal::os {

/// The attributes the library looks at.
struct attributes_t {
    bool directory = false;
    bool read_only = false;
};

/// The native text for a printed path: itself on Windows; on POSIX every `\` becomes `/` and
/// the long-path prefix is dropped.
std::wstring native_text(const std::wstring& printed);

/// Reads the attributes of `text`; on failure returns false and sets `error`.
bool get_attributes(const std::wstring& text, attributes_t& attributes, error_kind_t& error);

/// True when the drive of `letter` has a root directory (never on POSIX, which has no drives).
bool drive_has_root(wchar_t letter);

/// True when the drive of `letter` is a CD-ROM drive (never on POSIX).
bool is_cdrom_drive(wchar_t letter);

/// The answer of the effective write-access check of an existing path.
enum class write_access_t { writable, read_only, unknown };

/// Whether the calling thread could write to the existing entry `text`: the security check of
/// the platform and the read-only attribute (the drive type is the caller's business).
write_access_t check_write_access(const std::wstring& text);

} // namespace velmor2::_internal::os
