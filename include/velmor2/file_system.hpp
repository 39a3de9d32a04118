// Creating, removing, renaming and copying files and directory trees; finding files by wildcard.
#pragma once

#include <velmor2/export.hpp>
#include <velmor2/path.hpp>

#include <string>
#include <vector>

namespace velmor2 {

/// Creates `dir` and every missing directory above it, as `mkdir -p` does (`n1/../n2` makes
/// both). True when it was created or when something of that name already exists (a plain file
/// included); false for the empty path, a text holding a NUL, a drive or server path on POSIX,
/// or when a level cannot be made. Levels made before a failure stay.
///
///   C:\a\b\c, only C:\a exists  => true, C:\a\b and C:\a\b\c made
///   existing directory or file  => true
///   (empty)                     => false
VELMOR_API bool create_directory(const path_t& dir);

/// Removes the directory `dir`; false when it is empty, missing or not a directory.
/// Not recursive: only an empty directory goes. Recursive: its files are deleted (read-only
/// ones too), its sub-directories removed in turn, then `dir` itself. A file of `dir` that
/// cannot be deleted stops with false; a sub-directory that cannot be removed entirely (for any
/// reason, a stuck file in it included) keeps its ancestors in place but gives true. An
/// unreadable `dir` gives true with nothing removed.
/// Entries are removed by the names the system gives, whatever they hold (`a:b`, bytes that
/// are not UTF-8). Links are removed themselves, never followed, even when a directory is
/// swapped for a link while the removal runs: nothing outside the tree is touched.
///
///   non-empty dir, recursive false          => false, nothing removed
///   sub-directory cannot be removed         => true, dir and that sub-directory stay
///   file of dir cannot be deleted           => false
VELMOR_API bool remove_directory(const path_t& dir, bool recursive);

/// Moves or renames `from` (a directory or a file) to `to`; false when either is empty, `from`
/// is missing or `to` exists.
VELMOR_API bool rename_directory(const path_t& from, const path_t& to);

/// Copies the tree `from` into `to` (created if missing), depth first, every name as the system
/// gives it. Names beginning with `.` are left out (`.git`, `.profile`). False at the first file
/// that exists at the destination or cannot be copied; what was copied stays. A `to` inside
/// `from` is refused, judged by the identity of its deepest existing folder, not by its text.
/// An unreadable `from` gives true with nothing made. Links are copied as links, never
/// followed; a FIFO, socket or device cannot be carried and makes the answer false.
VELMOR_API bool copy_directory(const path_t& from, const path_t& to);

/// Copies the file `from` to `to`: content, permission bits and modification time. False when
/// either is empty, `from` is missing or a directory, or `to` exists (never overwritten).
VELMOR_API bool copy_file(const path_t& from, const path_t& to);

/// Deletes the file `file`, or the link `file` itself (a dangling one too); false when it is
/// missing, empty, a directory or read-only.
VELMOR_API bool remove_file(const path_t& file);

/// The files under `dir` whose full path matches `dir` joined with `pattern`, in the order the
/// file system yields them; with `recursive`, the files of each sub-directory stand where the
/// sub-directory was met. Directories are never listed, linked directories never entered, and
/// entries whose names no path can express are skipped. Empty when `dir` is missing. The
/// long-path prefix never decides a match.
///
///   dir, *.xml, false  => dir\a.xml, dir\b.xml
///   dir, *.xml, true   => dir\a.xml, dir\sub\c.xml, dir\b.xml  (sub met between a and b)
VELMOR_API std::vector<path_t> find_files(const path_t& dir, const std::wstring& pattern,
                                          bool recursive);

/// True when `file` matches the wildcard `pattern` (the pattern comes first), both compared
/// without the long-path prefix.
///
///   C:\x\*.txt, C:\x\a.txt  => true
///   C:\x\a.txt, C:\x\*.txt  => false
VELMOR_API bool match_pattern(const path_t& pattern, const path_t& file);

} // namespace velmor2
