// Directory and file operations of the platform, one call each, for the file-system algorithms.
#pragma once

#include "os/error.hpp"

#include <memory>
#include <string>

namespace velmor2::_internal::os {

/// Creates the one directory `text`, whose parent must exist. On failure returns false and
/// sets `error`: `already_exists` when something of that name is there, `not_found` or
/// `path_not_found` when a directory on the way is missing, `bad_name` when the text cannot
/// name an entry here.
bool create_directory(const std::wstring& text, error_kind_t& error);

/// Removes the empty directory `text`.
bool remove_directory(const std::wstring& text);

/// Deletes the file or link `text` itself (a dangling link included). A read-only file is
/// refused, as Windows does (on POSIX read-only means no write bit at all).
bool delete_file(const std::wstring& text);

/// True when something, a dangling link included, is at `text` itself.
bool entry_exists(const std::wstring& text);

/// True when `text` is itself a symbolic link or a mount point.
bool is_link(const std::wstring& text);

/// Removes the link `text` itself, never what it points to.
bool remove_link(const std::wstring& text);

/// Copies the regular file `from` to the new file `to`: content, permission bits and
/// modification time. Fails when `to` exists (never overwrites); a failed copy leaves no `to`.
bool copy_file(const std::wstring& from, const std::wstring& to);

/// Moves or renames `from` to `to`; fails when `to` exists.
bool move_entry(const std::wstring& from, const std::wstring& to);

/// True when the existing directory `inner` is the directory `outer` or lies beneath it,
/// judged by the identity of the directories (links and spellings do not matter).
bool is_same_or_inside(const std::wstring& inner, const std::wstring& outer);

/// What a directory entry is, as the entry itself says (a link is never followed).
enum class entry_type_t {
    file,      ///< a regular file
    directory, ///< a directory
    link,      ///< a symbolic link or a mount point, whatever it points to
    special,   ///< a FIFO, socket or device: listed and removed, never copied
};

/// An entry name as the system gives it: bytes on POSIX, UTF-16 on Windows.
#if defined(_WIN32)
using native_name_t = std::wstring;
#else
using native_name_t = std::string;
#endif

/// One entry of a directory.
struct directory_entry_t {
    /// The entry's name; empty when the system's name has no wide form (POSIX names that are
    /// not UTF-8).
    std::wstring name;
    /// The name as the system gave it, which reaches the entry whatever it holds.
    native_name_t native;
    entry_type_t type = entry_type_t::file;
};

/// An open directory whose entries are reached by their system names relative to it, so that
/// a walk never leaves the tree through a link, even one that replaces a directory while the
/// walk runs. Entries come in the order the file system yields them, `.` and `..` left out.
class directory_t {
  public:
    directory_t();
    ~directory_t();
    directory_t(const directory_t&) = delete;
    directory_t& operator=(const directory_t&) = delete;

    /// Opens the directory `text`; with `follow_link` false a link at `text` itself is refused
    /// (links on the way to it are followed).
    bool open(const std::wstring& text, bool follow_link);
    /// Opens the sub-directory `name` of `parent`; refused when it is not a directory (a link
    /// to one included).
    bool open(const directory_t& parent, const native_name_t& name);
    /// Fills `entry` with the next entry; false at the end (or on a read error).
    bool next(directory_entry_t& entry);
    /// Closes the directory for a while, keeping its entries, so that a deep walk holds a
    /// bounded number of descriptors.
    void release();
    /// Opens the released directory again as the parent of `child`; refused (and the walk must
    /// stop) when that is no longer the same directory, the tree having been moved meanwhile.
    bool reacquire(const directory_t& child);
    /// True when the entry `name` is a directory or a link to one.
    bool leads_to_directory(const native_name_t& name) const;

    /// Makes the open directory itself writable: no read-only flag (on POSIX: the owner's write
    /// bit), so that its entries can be removed.
    void make_writable();
    /// Removes the entry `name`: a file even when read-only, a link itself, an empty directory.
    bool remove(const native_name_t& name, entry_type_t type);

    /// Creates the sub-directory `name`.
    bool create_directory(const native_name_t& name);
    /// Copies the regular file `name` into `target` under the same name as a new file
    /// (content, permission bits, times); a failed copy leaves nothing in `target`.
    bool copy_file(const native_name_t& name, const directory_t& target) const;
    /// Makes in `target` a link of the same name and target text as the link `name`.
    bool copy_link(const native_name_t& name, const directory_t& target) const;

  private:
    struct state_t;
    std::unique_ptr<state_t> state_;
};

} // namespace velmor2::_internal::os
