// Creating, removing and renaming directories, and deleting files.
#include "fs/tree_walk.hpp"
#include "os/fs.hpp"

#include <velmor2/file_system.hpp>

#include <vector>

namespace velmor2 {
namespace {

namespace os = _internal::os;

// How emptying a directory ended.
enum class emptied_t {
    all,                // nothing is left: the directory itself may go
    sub_directory_kept, // a sub-directory stayed: reported upward as success
    file_kept,          // an entry other than a directory could not be deleted
};

bool remove_sub_directory(os::directory_t& parent, const os::native_name_t& name,
                          std::size_t depth);

// Deletes the entries of the open `dir` by their system names, whatever they hold; links go
// themselves. Nothing is reached by a path, so nothing outside the tree is ever touched, even
// when a directory is swapped for a link while this runs.
emptied_t empty_directory(os::directory_t& dir, std::size_t depth) {
    dir.make_writable();
    bool sub_directory_kept = false;
    os::directory_entry_t entry;
    while (dir.next(entry)) {
        if (entry.type == os::entry_type_t::directory) {
            if (!remove_sub_directory(dir, entry.native, depth + 1)) {
                sub_directory_kept = true;
            }
        } else if (!dir.remove(entry.native, entry.type)) {
            return emptied_t::file_kept;
        }
    }
    return sub_directory_kept ? emptied_t::sub_directory_kept : emptied_t::all;
}

// What the recursive removal of the sub-directory `name` of `parent` returns.
bool remove_sub_directory(os::directory_t& parent, const os::native_name_t& name,
                          std::size_t depth) {
    os::directory_t dir;
    if (!dir.open(parent, name)) {
        // Replaced by something else since it was listed (a link, say): that goes itself. A
        // directory that cannot be read stays and counts as done, as one at the top does.
        parent.remove(name, os::entry_type_t::file);
        return true;
    }
    const bool release = depth >= _internal::open_levels;
    if (release) {
        parent.release();
    }
    const emptied_t emptied = empty_directory(dir, depth);
    if (release && !parent.reacquire(dir)) {
        return false;
    }
    switch (emptied) {
    case emptied_t::all:
        return parent.remove(name, os::entry_type_t::directory);
    case emptied_t::sub_directory_kept:
        return true;
    case emptied_t::file_kept:
        break;
    }
    return false;
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
    // `n1/../n2` names n2 once n1 exists: each level is made unless an earlier one made it.
    for (auto level = pending.rbegin(); level != pending.rend(); ++level) {
        if (!os::create_directory(level->as_string(), error) &&
            (error != error_kind_t::already_exists || !level->is_directory())) {
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
    emptied_t emptied;
    {
        os::directory_t top;
        if (!top.open(text, false)) {
            return true;
        }
        emptied = empty_directory(top, 0);
    }
    switch (emptied) {
    case emptied_t::all:
        return os::remove_directory(text);
    case emptied_t::sub_directory_kept:
        return true;
    case emptied_t::file_kept:
        break;
    }
    return false;
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
    // The entry itself: a dangling link, which find_files lists, can be removed too.
    const std::wstring text = file.as_string();
    if (text.empty() || !os::entry_exists(text)) {
        return false;
    }
    return os::delete_file(text);
}

} // namespace velmor2
