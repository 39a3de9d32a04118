// The few kinds of operating-system failure that the library's algorithms distinguish.
#pragma once

namespace velmor2::_internal::os {

/// A system error, translated once by the platform layer so that algorithms test kinds.
enum class error_kind_t {
    none,
    not_found,         ///< the entry itself is missing
    path_not_found,    ///< a directory on the way is missing or not a directory
    already_exists,    ///< the entry to create is already there
    access_denied,     ///< permission refused
    sharing_violation, ///< another holder of the file refuses access
    not_ready,         ///< the device or network location cannot be reached
    bad_name,          ///< the text cannot name an entry (too long, invalid)
    other,             ///< anything else
};

/// The kind of the calling thread's last system error (`errno` or `GetLastError()`).
error_kind_t last_error();

} // namespace velmor2::_internal::os
