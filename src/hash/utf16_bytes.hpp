// The bytes that hashing sees for a wide string: its UTF-16 code units, low byte first.
#pragma once

#include "unicode/convert.hpp"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>

// The units are handed on in the machine's byte order.
#if defined(__BYTE_ORDER__) && __BYTE_ORDER__ != __ORDER_LITTLE_ENDIAN__
#error "hashing of wide strings expects a little-endian machine"
#endif

namespace velmor2::_internal {

/// Copies characters of the basic plane from `p` (at most `count`) into `out` as UTF-16 units,
/// stopping before the first one that is not; returns how many were copied.
std::size_t copy_bmp_units(const wchar_t* p, std::size_t count, char16_t* out);

/// Calls `sink(const std::uint8_t* bytes, std::size_t size)` with the UTF-16LE bytes of
/// `text`, in order, in one or more pieces. Where `wchar_t` is UTF-16 these are the string's own
/// units; where it is UTF-32, those of `encode_utf16` (as `to_utf16` gives them).
template <typename Sink> void for_each_utf16_piece(const std::wstring& text, Sink&& sink) {
    if constexpr (sizeof(wchar_t) == 2) {
        if (!text.empty()) {
            sink(reinterpret_cast<const std::uint8_t*>(text.data()), text.size() * 2);
        }
    } else {
        // Converted in pieces that stay in the first-level cache.
        constexpr std::size_t capacity = 2048;
        char16_t units[capacity];
        std::size_t n = 0;
        const wchar_t* p = text.data();
        const wchar_t* const end = p + text.size();
        while (p != end) {
            const std::size_t copied =
                copy_bmp_units(p, std::min<std::size_t>(end - p, capacity - n), units + n);
            p += copied;
            n += copied;
            if (p != end && n + 2 <= capacity) {
                n += encode_utf16(static_cast<char32_t>(*p++), units + n);
            }
            if (n + 2 > capacity) {
                sink(reinterpret_cast<const std::uint8_t*>(units), n * 2);
                n = 0;
            }
        }
        if (n > 0) {
            sink(reinterpret_cast<const std::uint8_t*>(units), n * 2);
        }
    }
}

} // namespace velmor2::_internal
