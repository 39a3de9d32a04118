// Command-line bytes as wide text and back, without losing a byte that is not UTF-8.
#include "native_text.hpp"

#include <boost/locale/utf.hpp>

#include <iterator>

namespace velmor_tool {
namespace {

namespace utf = boost::locale::utf;
using narrow_t = utf::utf_traits<char>;
using wide_t = utf::utf_traits<wchar_t>;

bool is_character(utf::code_point c) {
    return c != utf::illegal && c != utf::incomplete;
}

} // namespace

std::wstring from_bytes(const std::string& bytes) {
    std::wstring text;
    for (auto p = bytes.begin(); p != bytes.end();) {
        const auto start = p;
        const utf::code_point c = narrow_t::decode(p, bytes.end());
        if (is_character(c)) {
            wide_t::encode(c, std::back_inserter(text));
        } else {
            text += static_cast<wchar_t>(0xDC00 + static_cast<unsigned char>(*start));
            p = start + 1;
        }
    }
    return text;
}

std::string to_bytes(const std::wstring& text) {
    std::string bytes;
    for (auto p = text.begin(); p != text.end();) {
        const auto start = p;
        const utf::code_point c = wide_t::decode(p, text.end());
        if (is_character(c)) {
            narrow_t::encode(c, std::back_inserter(bytes));
            continue;
        }
        // A kept byte goes back as itself; any other lone surrogate has no UTF-8 form.
        if (*start >= 0xDC80 && *start <= 0xDCFF) {
            bytes += static_cast<char>(*start - 0xDC00);
        } else {
            narrow_t::encode(0xFFFD, std::back_inserter(bytes));
        }
        p = start + 1;
    }
    return bytes;
}

bool is_unicode(const std::wstring& text) {
    for (auto p = text.begin(); p != text.end();) {
        if (!is_character(wide_t::decode(p, text.end()))) {
            return false;
        }
    }
    return true;
}

} // namespace velmor_tool
