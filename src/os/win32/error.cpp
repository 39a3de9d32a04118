// GetLastError() to the library's error kinds, in one place.
#include "os/error.hpp"

#include <windows.h>

namespace velmor2::_internal::os {

error_kind_t last_error() {
    switch (GetLastError()) {
    case ERROR_SUCCESS:
        return error_kind_t::none;
    case ERROR_FILE_NOT_FOUND:
        return error_kind_t::not_found;
    case ERROR_PATH_NOT_FOUND:
    case ERROR_INVALID_DRIVE:
    case ERROR_DIRECTORY:
        return error_kind_t::path_not_found;
    case ERROR_ALREADY_EXISTS:
    case ERROR_FILE_EXISTS:
    case ERROR_DIR_NOT_EMPTY:
        return error_kind_t::already_exists;
    case ERROR_ACCESS_DENIED:
    case ERROR_WRITE_PROTECT:
        return error_kind_t::access_denied;
    case ERROR_SHARING_VIOLATION:
    case ERROR_LOCK_VIOLATION:
        return error_kind_t::sharing_violation;
    case ERROR_NOT_READY:
    case ERROR_BAD_NETPATH:
    case ERROR_BAD_NET_NAME:
    case ERROR_DEV_NOT_EXIST:
        return error_kind_t::not_ready;
    case ERROR_INVALID_PARAMETER:
    case ERROR_INVALID_NAME:
    case ERROR_BAD_PATHNAME:
    case ERROR_FILENAME_EXCED_RANGE:
    case ERROR_NO_UNICODE_TRANSLATION:
        return error_kind_t::bad_name;
    default:
        return error_kind_t::other;
    }
}

} // namespace velmor2::_internal::os
