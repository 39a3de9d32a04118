// Command-line bytes as wide text and back, without losing a byte that is not UTF-8.
#include "native_text.hpp"

#include "unicode/convert.hpp"

namespace velmor_tool {
namespace {

bool is_high_surrogate(wchar_t c) {
    return c >= 0xD800 && c <= 0xDBFF;
}
bool is_low_surrogate(wchar_t c) {
    return c >= 0xDC00 && c <= 0xDFFF;
}

// Where `wchar_t` holds UTF-16, a high surrogate followed by a low one is one character.
bool is_pair(const std::wstring& text, std::size_t i) {
    return sizeof(wchar_t) == 2 && i > 0 && is_high_surrogate(text[i - 1]) &&
           is_low_surrogate(text[i]);
}

bool is_kept_byte(const std::wstring& text, std::size_t i) {
    return text[i] >= 0xDC80 && text[i] <= 0xDCFF && !is_pair(text, i);
}

} // namespace

std::wstring from_bytes(const std::string& bytes) {
    using velmor2::_internal::get_utf8_length;
    std::wstring text;
    std::size_t start = 0;
    for (std::size_t i = 0;;) {
        const std::size_t left = bytes.size() - i;
        if (left > 0 && velmor2::_internal::validate_utf8(bytes.data() + i, left)) {
            i += get_utf8_length(bytes.data() + i, left);
            continue;
        }
        text += velmor2::_internal::to_ustring(bytes.substr(start, i - start));
        if (left == 0) {
            return text;
        }
        text += static_cast<wchar_t>(0xDC00 + static_cast<unsigned char>(bytes[i]));
        start = ++i;
    }
}

std::string to_bytes(const std::wstring& text) {
    std::string bytes;
    std::size_t start = 0;
    for (std::size_t i = 0; i <= text.size(); ++i) {
        if (i < text.size() && !is_kept_byte(text, i)) {
            continue;
        }
        bytes += velmor2::_internal::to_utf8(text.substr(start, i - start));
        if (i < text.size()) {
            bytes += static_cast<char>(text[i] - 0xDC00);
        }
        start = i + 1;
    }
    return bytes;
}

bool is_unicode(const std::wstring& text) {
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (i + 1 < text.size() && is_pair(text, i + 1)) {
            ++i;
        } else if (is_high_surrogate(text[i]) || is_low_surrogate(text[i])) {
            return false;
        }
    }
    return true;
}

} // namespace velmor_tool
