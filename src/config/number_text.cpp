// Classic-locale number text through <charconv>, which never consults a locale.
#include "config/number_text.hpp"

#include <charconv>
#include <cstdint>
#include <type_traits>

namespace velmor2::_internal {
namespace {

// Longest text any supported number takes; longer text cannot convert.
constexpr std::size_t max_number_text = 64;

bool narrow(std::wstring_view text, char* out, std::size_t& length) {
    if (text.empty() || text.size() > max_number_text) {
        return false;
    }
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto c = static_cast<std::uint32_t>(text[i]);
        if (c == 0 || c > 0x7F) {
            return false;
        }
        out[i] = static_cast<char>(text[i]);
    }
    length = text.size();
    return true;
}

} // namespace

template <typename T> bool parse_number(std::wstring_view text, T& value) {
    char buffer[max_number_text];
    std::size_t length = 0;
    if (!narrow(text, buffer, length)) {
        return false;
    }
    if constexpr (std::is_same_v<T, bool>) {
        if (length != 1 || (buffer[0] != '0' && buffer[0] != '1')) {
            return false;
        }
        value = buffer[0] == '1';
        return true;
    } else {
        const char* first = buffer;
        const char* last = buffer + length;
        if (*first == '+') {
            ++first;
            if (first == last || *first == '-' || *first == '+') {
                return false;
            }
        }
        if constexpr (std::is_unsigned_v<T>) {
            if (*first == '-') {
                return false;
            }
        }
        std::from_chars_result result;
        if constexpr (std::is_floating_point_v<T>) {
            result = std::from_chars(first, last, value, std::chars_format::general);
        } else {
            result = std::from_chars(first, last, value, 10);
        }
        return result.ec == std::errc() && result.ptr == last;
    }
}

template <typename T> void append_number(T value, std::string& out) {
    if constexpr (std::is_same_v<T, bool>) {
        out += value ? '1' : '0';
    } else {
        char buffer[max_number_text];
        std::to_chars_result result;
        if constexpr (std::is_floating_point_v<T>) {
            result =
                std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::general, 6);
        } else {
            result = std::to_chars(buffer, buffer + sizeof buffer, value);
        }
        out.append(buffer, result.ptr);
    }
}

template <typename T> std::wstring format_number(T value) {
    std::string text;
    append_number(value, text);
    return std::wstring(text.begin(), text.end());
}

#define VELMOR_NUMBER_TEXT(T)                                                                      \
    template bool parse_number<T>(std::wstring_view, T&);                                          \
    template void append_number<T>(T, std::string&);                                               \
    template std::wstring format_number<T>(T);

VELMOR_NUMBER_TEXT(bool)
VELMOR_NUMBER_TEXT(int)
VELMOR_NUMBER_TEXT(long)
VELMOR_NUMBER_TEXT(unsigned long)
VELMOR_NUMBER_TEXT(unsigned short)
VELMOR_NUMBER_TEXT(unsigned int)
VELMOR_NUMBER_TEXT(float)
VELMOR_NUMBER_TEXT(double)

#undef VELMOR_NUMBER_TEXT

} // namespace velmor2::_internal
