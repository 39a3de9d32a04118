// Creating, removing and renaming directories, and deleting files.
#include "fs/entry_path.hpp"
#include "os/fs.hpp"

#include <velmor2/file_system.hpp>

#include <vector>

namespace velmor2 {
namespace {

namespace os = _internal::os;

// Removes what the entries of `dir` are, then `dir`; the caller has checked it is a directory.
bool remove_tree(const path_t& dir, const std::wstring& text) {
    // On POSIX a directory without write permission keeps its entries; clearing the flag first
    // makes the removal behave as it does on Windows, where the flag does not protect entries.
    os::reset_attributes(text);
    bool sub_directory_failed = false;
    {
        os::directory_search_t search(text);
        if (!search.is_open()) {
            return true;
        }
        os::directory_entry_t entry;
        while (search.next(entry)) {
            if (entry.name == L"." || entry.name == L"..") {
                continue;
            }
            path_t child(dir);
            if (!_internal::append_entry(child, entry.name)) {
                return false;
            }
            const std::wstring child_text = child.as_string();
            switch (entry.type) {
            case os::entry_type_t::link:
                if (!os::remove_link(child_text)) {
                    return false;
                }
                break;
            case os::entry_type_t::file:
                os::reset_attributes(child_text);
                if (!os::delete_file(child_text)) {
                    return false;
                }
                break;
            case os::entry_type_t::directory:
                // Reported upward as success: only the ancestors of the failure stay.
                if (!remove_directory(child, true)) {
                    sub_directory_failed = true;
                }
                break;
            }
        }
    }
    if (sub_directory_failed) {
        return true;
    }
    os::reset_attributes(text);
    return os::remove_directory(text);
}

} // namespace

bool create_directory(const path_t& dir) {
    if (dir.is_empty()) {
        return false;
    }
    using os::error_kind_t;
    // Walk up until a level exists or can be made, then make the missing ones top-down.
    path_t current(dir);
    std::vector<path_t> pending;
    error_kind_t error;
    while (!os::create_directory(current.as_string(), error) &&
           error != error_kind_t::already_exists) {
        if (error != error_kind_t::not_found && error != error_kind_t::path_not_found) {
            return false;
        }
        const std::wstring branch = current.get_branch();
        pending.push_back(std::move(current));
        if (branch.empty()) {
            return false;
        }
        current = path_t(branch);
    }
    for (auto level = pending.rbegin(); level != pending.rend(); ++level) {
        if (!os::create_directory(level->as_string(), error)) {
            return false;
        }
    }
    return true;
}

bool remove_directory(const path_t& dir, bool recursive) {
    if (dir.is_empty()) {
        return false;
    }
    const std::wstring text = dir.as_string();
    if (!path_t::exists(text) || !path_t::is_directory(text)) {
        return false;
    }
    if (!recursive) {
        return os::remove_directory(text);
    }
    // A link to a directory goes as a link: nothing outside the tree is touched.
    if (os::is_link(text)) {
        return os::remove_link(text);
    }
    return remove_tree(dir, text);
}

bool rename_directory(const path_t& from, const path_t& to) {
    if (from.is_empty() || to.is_empty()) {
        return false;
    }
    const std::wstring from_text = from.as_string();
    const std::wstring to_text = to.as_string();
    if (!path_t::exists(from_text) || path_t::exists(to_text)) {
        return false;
    }
    return os::move_entry(from_text, to_text);
}

bool remove_file(const path_t& file) {
    const std::wstring text = file.as_string();
    if (!path_t::exists(text) || text.empty()) {
        return false;
    }
    return os::delete_file(text);
}

} // namespace velmor2
