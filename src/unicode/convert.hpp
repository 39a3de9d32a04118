// Text conversions between UTF-8, the platform's wide text and UTF-16, and the locale-free
// lower-case mapping: the base every other part of the library builds on.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace velmor2::_internal {

/// Replacement character produced for every byte sequence or code unit that cannot be decoded.
constexpr char32_t replacement_char = 0xFFFD;

/// True for the first unit of a UTF-16 surrogate pair.
constexpr bool is_high_surrogate(char32_t unit) {
    return unit >= 0xD800 && unit <= 0xDBFF;
}

/// True for the second unit of a UTF-16 surrogate pair.
constexpr bool is_low_surrogate(char32_t unit) {
    return unit >= 0xDC00 && unit <= 0xDFFF;
}

/// The character of the surrogate pair `high`, `low`.
constexpr char32_t combine_surrogates(char32_t high, char32_t low) {
    return 0x10000 + ((high - 0xD800) << 10) + (low - 0xDC00);
}

/// The library's one UTF-16 encoder: writes the units of `c` to `out` (room for two) and
/// returns their count. A character above U+FFFF becomes a surrogate pair; a lone surrogate
/// stays the unit it is, as a UTF-16 string holds it, so that a wide string has the same
/// UTF-16 form where `wchar_t` is 16 bits and where it is 32; a value above U+10FFFF becomes
/// U+FFFD. (UTF-8 has no form for a lone surrogate: there it becomes U+FFFD.)
///
///   U+0041 => 0041     U+10400 => D801 DC00     U+D800 => D800     0x110000 => FFFD
template <typename unit_t> std::size_t encode_utf16(char32_t c, unit_t* out) {
    if (c < 0x10000) {
        out[0] = static_cast<unit_t>(c);
        return 1;
    }
    if (c > 0x10FFFF) {
        out[0] = static_cast<unit_t>(replacement_char);
        return 1;
    }
    out[0] = static_cast<unit_t>(0xD800 + ((c - 0x10000) >> 10));
    out[1] = static_cast<unit_t>(0xDC00 + (c & 0x3FF));
    return 2;
}

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
/// Appends what `to_ustring` gives for `utf8` to `out`.
void append_ustring(std::string_view utf8, std::wstring& out);
/// Zero-terminated wide text, unchanged; a null pointer gives the empty string.
std::wstring to_ustring(const wchar_t* text);
/// Wide text, unchanged.
std::wstring to_ustring(const std::wstring& text);
/// Zero-terminated UTF-16 code units to wide text; pairs are combined where `wchar_t` is 32 bits.
std::wstring to_ustring(const char16_t* utf16);

/// Wide text as UTF-16 code units (`encode_utf16` of each character; where `wchar_t` is 16 bits,
/// the text's own units).
std::u16string to_utf16(const std::wstring& text);
/// `to_utf16` held in a wide string, one unit per element.
std::wstring to_widechar(const std::wstring& text);

/// Unicode simple lower-case mapping of one character, independent of the process locale.
wchar_t tolower(wchar_t c);
/// Unicode simple lower-case mapping of every character of `text`.
std::wstring tolower(const std::wstring& text);

} // namespace velmor2::_internal
