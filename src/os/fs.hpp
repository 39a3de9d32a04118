// Directory and file operations of the platform, one call each, for the file-system algorithms.
#pragma once

#include "os/error.hpp"

#include <memory>
#include <string>

namespace velmor2::_internal::os {

/// Creates the one directory `text`, whose parent must exist. On failure returns false and
/// sets `error`: `already_exists` when something of that name is there, `not_found` or
/// `path_not_found` when a directory on the way is missing.
bool create_directory(const std::wstring& text, error_kind_t& error);

/// Removes the empty directory `text`.
bool remove_directory(const std::wstring& text);

/// Deletes the file `text`. A read-only file is refused, as Windows does (on POSIX read-only
/// means no write bit at all).
bool delete_file(const std::wstring& text);

/// True when `text` is itself a symbolic link or a mount point.
bool is_link(const std::wstring& text);

/// Removes the link `text` itself, never what it points to.
bool remove_link(const std::wstring& text);

/// Makes `text` a plain entry: no read-only, hidden or system flag (on POSIX: the owner's write
/// bit added). A link is left alone, so nothing outside a tree is ever changed through it.
bool reset_attributes(const std::wstring& text);

/// Copies the regular file `from` to the new file `to`: content, permission bits and
/// modification time. Fails when `to` exists (never overwrites); a failed copy leaves no `to`.
bool copy_file(const std::wstring& from, const std::wstring& to);

/// Moves or renames `from` to `to`; fails when `to` exists.
bool move_entry(const std::wstring& from, const std::wstring& to);

/// What a directory entry is, as the entry itself says (a link is never followed).
enum class entry_type_t {
    file,      ///< anything that is neither a directory nor a link
    directory, ///< a directory
    link,      ///< a symbolic link or a mount point, whatever it points to
};

/// One entry of a directory search.
struct directory_entry_t {
    /// The entry's name; empty when the platform's name has no wide form (POSIX names that are
    /// not UTF-8), which no path can name.
    std::wstring name;
    entry_type_t type = entry_type_t::file;
};

/// A search over the entries of one directory, `.` and `..` included, in the order the file
/// system yields them.
class directory_search_t {
  public:
    /// Opens the search on the directory `text`; `is_open()` tells whether that worked.
    explicit directory_search_t(const std::wstring& text);
    ~directory_search_t();
    directory_search_t(const directory_search_t&) = delete;
    directory_search_t& operator=(const directory_search_t&) = delete;

    /// True when the directory could be read.
    bool is_open() const;
    /// Fills `entry` with the next entry; false at the end (or on a read error).
    bool next(directory_entry_t& entry);

  private:
    struct state_t;
    std::unique_ptr<state_t> state_;
};

} // namespace velmor2::_internal::os
