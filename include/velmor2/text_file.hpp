// Whole text files read and written in a detected or given encoding, plain and XML.
#pragma once

#include <velmor2/export.hpp>
#include <velmor2/path.hpp>

#include <cstddef>
#include <cstdint>
#include <string>

namespace velmor2 {

/// The encoding of a text file, stored as a 32-bit integer (every value of which is valid: the
/// functions treat values they do not know as `cp_ansi`).
enum code_page_t : std::int32_t {
    cp_unknown = 0, ///< the file could not be opened; read and written like `cp_ansi`
    cp_utf8 = 1,    ///< UTF-8, no byte-order mark written or required
    cp_utf16 = 2,   ///< UTF-16 little-endian after the byte-order mark FF FE
    cp_ansi = 3,    ///< the system's ANSI code page (Windows-1252 on POSIX systems)
};

/// Detects the encoding of a file from its bytes:
///
///   (missing or unreadable)        => cp_unknown
///   (empty)                        => cp_ansi
///   FF FE ...                      => cp_utf16
///   valid UTF-8, ASCII included    => cp_utf8
///   E9 (any single byte)           => cp_utf8
///   61 62 63 C3 (bad last byte)    => cp_utf8 (the last byte alone is never examined)
///   61 62 C3 63 64                 => cp_ansi
///   FE FF ... (big-endian mark)    => cp_ansi unless the bytes happen to be valid UTF-8
VELMOR_API code_page_t get_file_cp(const path_t& file);

/// The encoding `get_file_cp` detects in a file holding the `size` bytes at `bytes`, for bytes
/// that come from elsewhere (a pipe, say): `cp_ansi` when `size` is 0.
VELMOR_API code_page_t get_bytes_cp(const char* bytes, std::size_t size);

/// The whole file decoded as `cp`, up to its first zero character; empty on any failure. A
/// byte-order mark is kept: a `cp_utf16` file yields U+FEFF first. `cp_unknown` and values
/// out of range decode as `cp_ansi`.
VELMOR_API std::wstring get_file_content(code_page_t cp, const path_t& file);

/// Replaces the file's content with `text` encoded as `cp` (`cp_utf16` writes FF FE first;
/// nothing else writes a mark; `cp_unknown` and values out of range write ANSI). False when the
/// file cannot be opened or a write fails, which may leave it truncated.
VELMOR_API bool set_file_content(const std::wstring& text, code_page_t cp, const path_t& file);

/// The bytes `set_file_content` writes for `text` in `cp`, for output that is not a file.
VELMOR_API std::string encode_text(const std::wstring& text, code_page_t cp);

/// The XML file's text after its declaration (everything up to the first `?>`), in the
/// detected encoding; empty when the declaration does not name that encoding:
///
///   UTF-8 file  <?xml version='1.0' encoding='utf-8'?>\n<a/>   => \n<a/>
///   UTF-8 file  <?xml version='1.0'?>\n<a/>                    => (empty)
///   UTF-16 file <?xml ... encoding='UTF-16'?><a/>              => <a/>
///   ANSI file   <?xml ... ?><a/>                               => (empty)
///   any file    <a/> (no ?> at all)                            => <a/>
VELMOR_API std::wstring get_xml_file_content(const path_t& file);

/// Writes `<?xml version='1.0' encoding='UTF-8'?>` (or `'UTF-16'`), a line feed and `text`.
/// False, leaving the file untouched, when `cp` is not `cp_utf8` or `cp_utf16` or `text`
/// contains `?>`.
VELMOR_API bool set_xml_file_content(const std::wstring& text, code_page_t cp, const path_t& file);

} // namespace velmor2
