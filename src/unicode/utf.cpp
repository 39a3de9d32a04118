// UTF-8, UTF-16 and UTF-32 coding shared by every conversion of the library.
#include "unicode/convert.hpp"

namespace velmor2::_internal {
namespace {

constexpr bool wide_is_utf16 = sizeof(wchar_t) == 2;

bool is_surrogate(char32_t c) {
    return is_high_surrogate(c) || is_low_surrogate(c);
}

struct decoded_t {
    std::size_t length; // bytes consumed, as get_utf8_length counts them
    char32_t value;     // the code point, or U+FFFD when the sequence is invalid
    bool valid;
};

decoded_t decode_utf8(const unsigned char* p, std::size_t count) {
    if (count == 0) {
        return {1, replacement_char, false};
    }
    const unsigned char lead = p[0];
    if (lead < 0x80) {
        return {1, lead, true};
    }
    std::size_t need;
    char32_t value;
    // Bounds of the second byte exclude overlong forms, surrogates and values above U+10FFFF.
    unsigned char low = 0x80, high = 0xBF;
    if (lead >= 0xC2 && lead <= 0xDF) {
        need = 1;
        value = lead & 0x1F;
    } else if (lead >= 0xE0 && lead <= 0xEF) {
        need = 2;
        value = lead & 0x0F;
        if (lead == 0xE0) {
            low = 0xA0;
        } else if (lead == 0xED) {
            high = 0x9F;
        }
    } else if (lead >= 0xF0 && lead <= 0xF4) {
        need = 3;
        value = lead & 0x07;
        if (lead == 0xF0) {
            low = 0x90;
        } else if (lead == 0xF4) {
            high = 0x8F;
        }
    } else {
        return {1, replacement_char, false};
    }
    for (std::size_t i = 1; i <= need; ++i) {
        if (i >= count || p[i] < low || p[i] > high) {
            return {i, replacement_char, false};
        }
        low = 0x80;
        high = 0xBF;
        value = (value << 6) | (p[i] & 0x3F);
    }
    return {need + 1, value, true};
}

void append_utf8(std::string& out, char32_t c) {
    if (c < 0x80) {
        out += static_cast<char>(c);
    } else if (c < 0x800) {
        out += static_cast<char>(0xC0 | (c >> 6));
        out += static_cast<char>(0x80 | (c & 0x3F));
    } else if (c < 0x10000) {
        out += static_cast<char>(0xE0 | (c >> 12));
        out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (c & 0x3F));
    } else {
        out += static_cast<char>(0xF0 | (c >> 18));
        out += static_cast<char>(0x80 | ((c >> 12) & 0x3F));
        out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (c & 0x3F));
    }
}

template <typename String> void append_utf16(String& out, char32_t c) {
    typename String::value_type units[2];
    out.append(units, encode_utf16(c, units));
}

void append_wide(std::wstring& out, char32_t c) {
    if constexpr (wide_is_utf16) {
        append_utf16(out, c);
    } else {
        out += static_cast<wchar_t>(c);
    }
}

// Reads one character from UTF-16 units; a lone surrogate gives U+FFFD.
template <typename Unit> char32_t next_utf16(const Unit*& p, const Unit* end) {
    const char32_t first = static_cast<char32_t>(p[0]) & 0xFFFF;
    ++p;
    if (!is_high_surrogate(first) && !is_low_surrogate(first)) {
        return first;
    }
    if (is_high_surrogate(first) && p != end) {
        const char32_t second = static_cast<char32_t>(p[0]) & 0xFFFF;
        if (is_low_surrogate(second)) {
            ++p;
            return combine_surrogates(first, second);
        }
    }
    return replacement_char;
}

// Calls `sink` with every character of the wide text, in order.
template <typename Sink> void for_each_char(const std::wstring& text, Sink sink) {
    const wchar_t* p = text.data();
    const wchar_t* end = p + text.size();
    while (p != end) {
        if constexpr (wide_is_utf16) {
            sink(next_utf16(p, end));
        } else {
            const char32_t c = static_cast<char32_t>(*p++);
            sink(c > 0x10FFFF || is_surrogate(c) ? replacement_char : c);
        }
    }
}

} // namespace

bool validate_utf8(const char* p, std::size_t count) {
    return decode_utf8(reinterpret_cast<const unsigned char*>(p), count).valid;
}

std::size_t get_utf8_length(const char* p, std::size_t count) {
    return decode_utf8(reinterpret_cast<const unsigned char*>(p), count).length;
}

std::string to_utf8(const std::wstring& text) {
    std::string out;
    out.reserve(text.size());
    for_each_char(text, [&out](char32_t c) { append_utf8(out, c); });
    return out;
}

std::wstring to_ustring(const std::string& utf8) {
    std::wstring out;
    append_ustring(utf8, out);
    return out;
}

void append_ustring(std::string_view utf8, std::wstring& out) {
    // A byte gives at most one wide unit (a 4-byte sequence, two UTF-16 units), so the text
    // is written in place and the string cut to its length after.
    const std::size_t start = out.size();
    out.resize(start + utf8.size());
    wchar_t* to = out.data() + start;
    const auto* p = reinterpret_cast<const unsigned char*>(utf8.data());
    const auto* end = p + utf8.size();
    while (p != end) {
        // ASCII, most of most text, needs no decoding.
        if (*p < 0x80) {
            *to++ = static_cast<wchar_t>(*p++);
            continue;
        }
        const decoded_t d = decode_utf8(p, static_cast<std::size_t>(end - p));
        if constexpr (wide_is_utf16) {
            to += encode_utf16(d.value, to);
        } else {
            *to++ = static_cast<wchar_t>(d.value);
        }
        p += d.length;
    }
    out.resize(static_cast<std::size_t>(to - out.data()));
}

std::wstring to_ustring(const char* utf8) {
    return utf8 == nullptr ? std::wstring() : to_ustring(std::string(utf8));
}

std::wstring to_ustring(const wchar_t* text) {
    return text == nullptr ? std::wstring() : std::wstring(text);
}

std::wstring to_ustring(const std::wstring& text) {
    return text;
}

std::wstring to_ustring(const char16_t* utf16) {
    if (utf16 == nullptr) {
        return {};
    }
    const std::u16string units(utf16);
    std::wstring out;
    out.reserve(units.size());
    const char16_t* p = units.data();
    const char16_t* end = p + units.size();
    while (p != end) {
        append_wide(out, next_utf16(p, end));
    }
    return out;
}

std::u16string to_utf16(const std::wstring& text) {
    std::u16string out;
    out.reserve(text.size());
    for (const wchar_t c : text) {
        append_utf16(out, static_cast<char32_t>(c));
    }
    return out;
}

std::wstring to_widechar(const std::wstring& text) {
    const std::u16string units = to_utf16(text);
    return std::wstring(units.begin(), units.end());
}

} // namespace velmor2::_internal
