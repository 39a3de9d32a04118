// The wildcard matcher against its regular-expression form on arbitrary patterns and texts.
//
// The first byte says how many of the following bytes make the pattern; the rest make the
// text. Each byte picks a character of a small alphabet (wildcards, regular-expression
// characters, a separator, two letters and a non-ASCII one), so that near-matches, which are
// what a matcher gets wrong, come up often.
#include "path/internal/wildcard_oracle.hpp"
#include "path/wildcard.hpp"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

namespace {

const wchar_t alphabet[] = L"aab*?\\.+\u00e9";

std::wstring to_text(const std::uint8_t* data, std::size_t size) {
    std::wstring text;
    for (std::size_t i = 0; i < size; ++i) {
        text += alphabet[data[i] % (sizeof(alphabet) / sizeof(alphabet[0]) - 1)];
    }
    return text;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) {
        return 0;
    }
    const std::size_t pattern_size = std::min<std::size_t>(data[0], size - 1);
    const std::wstring pattern = to_text(data + 1, pattern_size);
    const std::wstring text = to_text(data + 1 + pattern_size, size - 1 - pattern_size);
    const auto expected = velmor2::test::regex_wildcard_match(text, pattern);
    if (!expected) {
        return 0;
    }
    const velmor2::_internal::wildcard_t wildcard(pattern);
    const std::size_t known = wildcard.literal_prefix(text.substr(0, text.size() / 2));
    if (wildcard.match(text) != *expected || wildcard.match(text, known) != *expected) {
        std::fprintf(stderr, "matchers differ: pattern of %zu, text of %zu, expected %d\n",
                     pattern.size(), text.size(), *expected);
        std::abort();
    }
    return 0;
}
