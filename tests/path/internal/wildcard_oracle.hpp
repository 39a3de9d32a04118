// The wildcard language as a regular expression, the oracle of the product's matcher: `?`
// becomes `.`, `*` becomes `.*`, other regular-expression characters are escaped, and the
// whole text must match.
#pragma once

#include <boost/regex.hpp>
#if defined(_WIN32)
// Boost.Regex leaves the Win32 traits out of its umbrella header under MinGW; they are
// header-only and work there.
#include <boost/regex/v5/w32_regex_traits.hpp>
#endif

#include <optional>
#include <string>

namespace velmor2::test {

#if defined(_WIN32)
using wildcard_regex_t =
    boost::basic_regex<wchar_t, boost::regex_traits<wchar_t, boost::w32_regex_traits<wchar_t>>>;
#else
using wildcard_regex_t = boost::wregex;
#endif

/// Whether `text` matches `pattern` by the regular expression; nothing when the regular
/// expression engine gives up (its complexity limit).
inline std::optional<bool> regex_wildcard_match(const std::wstring& text,
                                                const std::wstring& pattern) {
    static const std::wstring special = L".[]{}()\\*+?|^$";
    std::wstring expression;
    for (const wchar_t c : pattern) {
        if (c == L'?') {
            expression += L'.';
        } else if (c == L'*') {
            expression += L".*";
        } else {
            if (special.find(c) != std::wstring::npos) {
                expression += L'\\';
            }
            expression += c;
        }
    }
    try {
        return boost::regex_match(text, wildcard_regex_t(expression));
    } catch (const std::runtime_error&) {
        return std::nullopt;
    }
}

} // namespace velmor2::test
