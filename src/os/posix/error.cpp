// errno to the library's error kinds, in one place.
#include "os/error.hpp"

#include <cerrno>

namespace velmor2::_internal::os {

error_kind_t last_error() {
    switch (errno) {
    case 0:
        return error_kind_t::none;
    case ENOENT:
        return error_kind_t::not_found;
    case ENOTDIR:
        return error_kind_t::path_not_found;
    case EEXIST:
    case ENOTEMPTY:
        return error_kind_t::already_exists;
    case EACCES:
    case EPERM:
    case EROFS:
        return error_kind_t::access_denied;
    case EBUSY:
    case ETXTBSY:
    case EWOULDBLOCK:
        return error_kind_t::sharing_violation;
    case ENAMETOOLONG:
        return error_kind_t::bad_name;
    default:
        return error_kind_t::other;
    }
}

} // namespace velmor2::_internal::os
