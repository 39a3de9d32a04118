// Paths written in Windows or POSIX form: parsing, printing, composition, comparison, checks.
#pragma once

#include <velmor2/export.hpp>

#include <list>
#include <string>

namespace velmor2 {

namespace _internal {

/// The parsed model of a path: its names and the form it was written in. `path_t` keeps it
/// packed into one string rather than as these fields, for memory and speed.
template <typename String> struct path_internal_t {
    /// The names of the path in order, root excluded; for a UNC path the first is the server.
    std::list<String> components;
    /// The path began with a name, `.` or `..`.
    bool relative = false;
    /// The path may be read as a Windows path.
    bool windows = false;
    /// The path may be read as a POSIX path.
    bool posix = false;
    /// The drive letter as written, without its colon; empty if none.
    String drive;
    /// The server of a UNC path (a copy of the first component); empty if none.
    String server;
    /// The path has a root: a drive, a leading separator or a UNC server.
    bool absolute = false;
    /// The path is a UNC path.
    bool network = false;
};

} // namespace _internal

/// A file-system path, parsed once into names and flags and printed again on demand.
///
/// Windows forms (`C:\x`, `\\server\share`, the `\\?\` prefix) and POSIX forms (`/usr/lib`,
/// `a/b`) are accepted on every platform; `\` and `/` are interchangeable. The printed form
/// always uses `\`:
///
///   C:/Dir//File.txt  => C:\Dir\File.txt
///   /usr/lib/         => \usr\lib
///   //srv/share       => \\srv\share
///   a|b               => (empty: not a path)
class VELMOR_API path_t {
public:
    /// The empty path: no components, every flag false.
    path_t();
    /// Parses `text`; `*` and `?` are allowed in names. Text that does not parse completely
    /// gives the empty path.
    path_t(const std::wstring& text);
    /// Same as constructing from `std::wstring(text)`; a null pointer gives the empty path.
    path_t(const wchar_t* text);
    /// Copies every field.
    path_t(const path_t& other);
    /// Takes over the fields of `other`, which is left empty.
    path_t(path_t&& other) noexcept;
    /// Copies every field.
    path_t& operator=(const path_t& other);
    /// Takes over the fields of `other`, which is left empty.
    path_t& operator=(path_t&& other) noexcept;
    /// Releases the model.
    ~path_t();

    /// True when the path may be read as a POSIX path.
    bool is_posix() const;
    /// True when the path may be read as a Windows path.
    bool is_windows() const;
    /// True when the path has a root (drive, leading separator or UNC server).
    bool is_absolute() const;
    /// True exactly when the printed form is empty.
    bool is_empty() const;
    /// The separator of every printed form: always `\`.
    static wchar_t get_separator_char();

    /// Copies every field of `other`; always true.
    bool assign(const path_t& other);
    /// Rebuilds the path from texts, each parsed as a path and appended in turn; the first
    /// text gives the form. False, leaving the empty path, when a text does not parse or
    /// cannot be appended.
    ///
    ///   {C:, a, b\c}  => C:\a\b\c
    ///   {a, /b}       => false (an absolute text after the first)
    bool assign(const std::list<std::wstring>& parts);
    /// Adds the components of a relative `other`; false, changing nothing, when `other` is
    /// absolute or UNC. An empty path becomes a copy of `other`.
    bool append(const path_t& other);

    /// The printed form; `\\?\` is put in front of a drive or server path when it reaches 248
    /// characters (never of a POSIX or relative one, which it would turn into another path).
    ///
    ///   c:x        => c:\x
    ///   /          => \ (the root)
    ///   a\..       => a\..  (printing does not normalise)
    std::wstring as_string() const;
    /// The text handed to the operating system: the printed form on Windows; on POSIX the
    /// printed form with every `\` turned into `/` and without the `\\?\` prefix.
    std::wstring as_native_string() const;
    /// The path as texts, one element per component; the first element carries the root, so
    /// that `assign` of the list gives the path back.
    ///
    ///   C:\a\b        => {C:, a, b}
    ///   /usr/lib      => {\, usr, lib}
    ///   \\srv\share   => {\\srv, share}
    ///   a\b           => {a, b}
    std::list<std::wstring> as_string_list() const;
    /// The printed path without its last component.
    ///
    ///   C:\a\b  => C:\a
    ///   C:\x    => C:\ (the drive root)
    ///   /x      => \ (the root)
    ///   a       => (empty)
    std::wstring get_branch() const;
    /// The last component; empty when there is none.
    std::wstring get_leaf() const;
    /// The text after the last `.` of the last component; empty for an existing directory.
    ///
    ///   C:\d\a.tar.gz  => gz
    ///   C:\d\.profile  => profile
    ///   C:\d\README    => (empty)
    std::wstring get_ext() const;
    /// Replaces the extension of the last component with `ext` (added after a `.` when there
    /// is none); false for an existing directory or a path without components.
    bool change_ext(const std::wstring& ext);
    /// This path relative to `other`; the empty path when their forms differ.
    ///
    ///   C:\a\b\c against C:\a      => b\c
    ///   C:\a     against C:\a\b\c  => ..\..
    ///   C:\a     against D:\a      => .
    path_t get_relative(const path_t& other) const;
    /// Removes `.` components and collapses `name\..` pairs; leading `..` stay. Always true.
    ///
    ///   .\a\.\b        => a\b
    ///   a\b\..\..\..\c => ..\c
    bool normalize();
    /// Lower-cases every component with the Unicode simple mapping; drive and server keep
    /// their case.
    void to_lower();

    /// Case-insensitive equality of form, server, drive and components.
    bool operator==(const path_t& other) const;
    /// Negation of `==`.
    bool operator!=(const path_t& other) const;
    /// Case-sensitive order of the printed forms (so `C:\A` < `C:\a` although they are equal).
    bool operator<(const path_t& other) const;

    /// True when the whole `text` is a path. `stop_position` receives -1 then, or else the
    /// index of the first character not accepted (counted after leading quotes are removed).
    ///
    ///   C:\a\*.txt, forbid_wildcards  => false, 5
    ///   "C:\a|b"                      => false, 4
    ///   (empty)                       => false, 0
    static bool validate(const std::wstring& text, bool forbid_wildcards, int& stop_position);
    /// True when the printed form matches the wildcard `pattern` as a whole (`?` one character,
    /// `*` any run, separators included); case-sensitive, `\` is the only separator.
    bool match(const std::wstring& pattern) const;
    /// True when the file system has something at `text`; failures other than "not found"
    /// count as something being there.
    static bool exists(const std::wstring& text);
    /// `exists(as_string())`.
    bool is_exists() const;
    /// True when `text` names an existing directory.
    static bool is_directory(const std::wstring& text);
    /// `is_directory(as_string())`.
    bool is_directory() const;
    /// Whether the caller could not write to `text`. `unknown` is true when the check could not
    /// be made (a missing path), and `read_only` is then false. An entry the caller may not
    /// even reach (access denied) is read-only.
    static void readonly(const std::wstring& text, bool& read_only, bool& unknown);
    /// `read_only` of `readonly(as_string())`; false for the empty path.
    bool is_readonly() const;

private:
    bool is_drive_path() const;
    _internal::path_internal_t<std::wstring> model() const;
    bool assign(const _internal::path_internal_t<std::wstring>& model);
    bool append(const _internal::path_internal_t<std::wstring>& model);

    // The model packed into one string (flags, drive, server, then the names with their
    // lengths): one allocation per path. Empty for the empty path.
    std::wstring packed_;
};

/// Parses `text` and normalises the result; text that does not parse gives the empty path.
VELMOR_API path_t make_path(const std::wstring& text);
/// Same for UTF-8 text.
VELMOR_API path_t make_path(const std::string& text);

} // namespace velmor2
