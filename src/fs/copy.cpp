// Copying files and directory trees.
#include "fs/tree_walk.hpp"
#include "os/fs.hpp"

#include <velmor2/file_system.hpp>

namespace velmor2 {
namespace {

namespace os = _internal::os;

// True when `to` would lie in the tree `from`, which a copy would then never finish. Judged by
// the identity of the deepest level of `to` that exists, so that neither a link nor another
// spelling (relative, `..`, letter case) hides it, and folders that only look alike pass.
bool lies_within(const path_t& to, const std::wstring& from) {
    for (path_t level(to); !level.is_empty(); level = path_t(level.get_branch())) {
        const std::wstring text = level.as_string();
        if (path_t::is_directory(text)) {
            return os::is_same_or_inside(text, from);
        }
    }
    // A relative `to` of which nothing exists lies in the working directory.
    return os::is_same_or_inside(L".", from);
}

// Copies the entries of the open `from` into the open `to` by their system names, so that
// every name is carried and no link is ever followed out of the tree (links are copied as
// links). An entry that cannot be carried (a FIFO, socket or device) makes the answer false.
bool copy_entries(os::directory_t& from, os::directory_t& to, std::size_t depth) {
    bool whole = true;
    os::directory_entry_t entry;
    while (from.next(entry)) {
        // Drops every hidden name.
        if (entry.native[0] == '.') {
            continue;
        }
        switch (entry.type) {
        case os::entry_type_t::directory: {
            os::directory_t source;
            if (!source.open(from, entry.native)) {
                // An unreadable directory is copied as nothing, as one at the top is.
                continue;
            }
            // An existing directory is merged into; a file of that name stops the copy below.
            to.create_directory(entry.native);
            os::directory_t target;
            if (!target.open(to, entry.native)) {
                return false;
            }
            const bool release = depth + 1 >= _internal::open_levels;
            if (release) {
                from.release();
                to.release();
            }
            const bool copied = copy_entries(source, target, depth + 1);
            if ((release && (!from.reacquire(source) || !to.reacquire(target))) || !copied) {
                return false;
            }
            break;
        }
        case os::entry_type_t::file:
            if (!from.copy_file(entry.native, to)) {
                return false;
            }
            break;
        case os::entry_type_t::link:
            if (!from.copy_link(entry.native, to)) {
                return false;
            }
            break;
        case os::entry_type_t::special:
            whole = false;
            break;
        }
    }
    return whole;
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

bool copy_directory(const path_t& from, const path_t& to) {
    if (from.is_empty() || to.is_empty()) {
        return false;
    }
    const std::wstring from_text = from.as_string();
    if (!path_t::exists(from_text) || !path_t::is_directory(from_text) ||
        lies_within(to, from_text)) {
        return false;
    }
    os::directory_t source;
    if (!source.open(from_text, true)) {
        return true;
    }
    create_directory(to);
    os::directory_t target;
    return target.open(to.as_string(), true) && copy_entries(source, target, 0);
}

} // namespace velmor2
