// Text conversions between UTF-8, the platform's wide text and UTF-16, and the locale-free
// lower-case mapping: the base every other part of the library builds on.
#pragma once

#include <cstddef>
#include <string>

namespace velmor2::_internal {

/// Replacement character produced for every byte sequence or code unit that cannot be decoded.
constexpr char32_t replacement_char = 0xFFFD;

/// True when the bytes at `p` (with `count` bytes left in the buffer) begin one valid UTF-8
/// sequence: no overlong form, no surrogate, nothing above U+10FFFF.
bool validate_utf8(const char* p, std::size_t count);

/// Length of the UTF-8 sequence at `p`: the whole sequence when valid, otherwise the longest
/// prefix that could still have started a valid one. Always at least 1 when `count` > 0.
std::size_t get_utf8_length(const char* p, std::size_t count);

/// Wide text to UTF-8; unpaired surrogates and values above U+10FFFF become U+FFFD.
std::string to_utf8(const std::wstring& text);

/// Zero-terminated UTF-8 to wide text; a null pointer gives the empty string.
std::wstring to_ustring(const char* utf8);
/// UTF-8 bytes to wide text; invalid sequences become U+FFFD.
std::wstring to_ustring(const std::string& utf8);
/// Zero-terminated wide text, unchanged; a null pointer gives the empty string.
std::wstring to_ustring(const wchar_t* text);
/// Wide text, unchanged.
std::wstring to_ustring(const std::wstring& text);
/// Zero-terminated UTF-16 code units to wide text; pairs are combined where `wchar_t` is 32 bits.
std::wstring to_ustring(const char16_t* utf16);

/// Wide text as UTF-16 code units.
std::u16string to_utf16(const std::wstring& text);
/// Wide text as UTF-16 code units held in a wide string, one unit per element.
std::wstring to_widechar(const std::wstring& text);

/// Unicode simple lower-case mapping of one character, independent of the process locale.
wchar_t tolower(wchar_t c);
/// Unicode simple lower-case mapping of every character of `text`.
std::wstring tolower(const std::wstring& text);

} // namespace velmor2::_internal
