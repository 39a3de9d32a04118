// path_t: validation, wildcard matching and what the file system says about a path.
#include "os/file_status.hpp"
#include "path/grammar.hpp"
#include "path/packed.hpp"
#include "path/wildcard.hpp"

namespace velmor2 {

bool path_t::validate(const std::wstring& text, bool forbid_wildcards, int& stop_position) {
    _internal::path_internal_t<std::wstring> scratch;
    return _internal::parse_path(text, scratch, forbid_wildcards, stop_position);
}

bool path_t::match(const std::wstring& pattern) const {
    return _internal::wildcard_match(pattern, as_string());
}

bool path_t::exists(const std::wstring& text) {
    using _internal::os::error_kind_t;
    _internal::os::attributes_t attributes;
    error_kind_t error;
    if (_internal::os::get_attributes(text, attributes, error)) {
        return true;
    }
    switch (error) {
    case error_kind_t::not_found:
    case error_kind_t::path_not_found:
    case error_kind_t::not_ready:
    case error_kind_t::bad_name:
        break;
    default:
        return true;
    }
    // A bare drive (`C:`) is the only text whose "not found" gets a second look.
    const path_t path(text);
    const _internal::packed_view_t view(path.packed_);
    return path.is_drive_path() && view.count == 0 && !view.drive.empty() &&
           _internal::os::drive_has_root(view.drive[0]);
}

bool path_t::is_exists() const {
    return exists(as_string());
}

bool path_t::is_directory(const std::wstring& text) {
    _internal::os::attributes_t attributes;
    _internal::os::error_kind_t error;
    return _internal::os::get_attributes(text, attributes, error) && attributes.directory;
}

bool path_t::is_directory() const {
    return is_directory(as_string());
}

void path_t::readonly(const std::wstring& text, bool& read_only, bool& unknown) {
    read_only = false;
    unknown = true;
    if (!exists(text)) {
        return;
    }
    switch (_internal::os::check_write_access(text)) {
    case _internal::os::write_access_t::unknown:
        return;
    case _internal::os::write_access_t::read_only:
        read_only = true;
        unknown = false;
        return;
    case _internal::os::write_access_t::writable:
        break;
    }
    const path_t path(text);
    const _internal::packed_view_t view(path.packed_);
    if (path.is_drive_path() && !view.drive.empty() && _internal::os::is_cdrom_drive(view.drive[0])) {
        read_only = true;
    }
    unknown = false;
}

bool path_t::is_readonly() const {
    const std::wstring text = as_string();
    if (text.empty()) {
        return false;
    }
    bool read_only;
    bool unknown;
    readonly(text, read_only, unknown);
    return read_only;
}

} // namespace velmor2
