// Copying files and directory trees.
#include "fs/entry_path.hpp"
#include "os/fs.hpp"

#include <velmor2/file_system.hpp>

namespace velmor2 {
namespace {

namespace os = _internal::os;

// True when `inner` is `outer` or lies beneath it, judged on the texts as given: copying a
// tree into itself would never run out of entries to copy.
bool is_within(const path_t& inner, const path_t& outer) {
    path_t level(inner);
    while (!level.is_empty()) {
        if (level == outer) {
            return true;
        }
        level = path_t(level.get_branch());
    }
    return false;
}

} // namespace

bool copy_file(const path_t& from, const path_t& to) {
    if (from.is_empty() || to.is_empty()) {
        return false;
    }
    const std::wstring from_text = from.as_string();
    const std::wstring to_text = to.as_string();
    if (!path_t::exists(from_text) || path_t::is_directory(from_text) || path_t::exists(to_text)) {
        return false;
    }
    return os::copy_file(from_text, to_text);
}

namespace {

// The copy of one level; sub-directories come back here.
bool copy_tree(const path_t& from, const path_t& to) {
    if (from.is_empty() || to.is_empty()) {
        return false;
    }
    const std::wstring from_text = from.as_string();
    if (!path_t::exists(from_text) || !path_t::is_directory(from_text)) {
        return false;
    }
    os::directory_search_t search(from_text);
    if (!search.is_open()) {
        return true;
    }
    create_directory(to);
    os::directory_entry_t entry;
    while (search.next(entry)) {
        // Drops `.` and `..`, and every hidden name with them.
        if (!entry.name.empty() && entry.name[0] == L'.') {
            continue;
        }
        path_t source(from);
        path_t target(to);
        if (!_internal::append_entry(source, entry.name) ||
            !_internal::append_entry(target, entry.name)) {
            return false;
        }
        switch (entry.type) {
        case os::entry_type_t::directory:
            if (!copy_tree(source, target)) {
                return false;
            }
            break;
        case os::entry_type_t::link:
            // Linked directories are not entered; a linked file is copied as its content.
            if (path_t::is_directory(source.as_string())) {
                break;
            }
            if (!copy_file(source, target)) {
                return false;
            }
            break;
        case os::entry_type_t::file:
            if (!copy_file(source, target)) {
                return false;
            }
            break;
        }
    }
    return true;
}

} // namespace

bool copy_directory(const path_t& from, const path_t& to) {
    return !is_within(to, from) && copy_tree(from, to);
}

} // namespace velmor2
