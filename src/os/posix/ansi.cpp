// POSIX has no ANSI code page: Windows-1252 stands in for it, both ways.
#include "os/ansi.hpp"

#include <algorithm>
#include <iterator>

namespace velmor2::_internal::os {
namespace {

// Characters of bytes 0x80-0x9F; the five bytes Windows leaves undefined map to the C1 controls.
constexpr char32_t cp1252_high[32] = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

char encode_cp1252(char32_t c) {
    if (c < 0x80 || (c >= 0xA0 && c <= 0xFF)) {
        return static_cast<char>(c);
    }
    const auto* hit = std::find(std::begin(cp1252_high), std::end(cp1252_high), c);
    return hit == std::end(cp1252_high) ? '?'
                                        : static_cast<char>(0x80 + (hit - std::begin(cp1252_high)));
}

} // namespace

std::string to_ansi(const std::wstring& text) {
    std::string out;
    out.reserve(text.size());
    for (wchar_t c : text) {
        out += encode_cp1252(static_cast<char32_t>(c));
    }
    return out;
}

std::wstring from_ansi(const std::string& bytes) {
    std::wstring out;
    out.reserve(bytes.size());
    for (char b : bytes) {
        const auto byte = static_cast<unsigned char>(b);
        out += static_cast<wchar_t>(byte >= 0x80 && byte < 0xA0 ? cp1252_high[byte - 0x80] : byte);
    }
    return out;
}

} // namespace velmor2::_internal::os
