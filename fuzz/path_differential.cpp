// The hand-written path parser against the combinator reference on arbitrary input.
//
// The first byte chooses the wildcard setting (bit 0) and how the rest becomes text (bit 1):
// UTF-8 decoding, where bad sequences turn into U+FFFD, or one character of a small alphabet
// of path trouble per byte, which reaches deep into the grammar far sooner.
#include "path/internal/differential.hpp"
#include "unicode/convert.hpp"

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

namespace {

const wchar_t trouble[] = L"\\/:.*?|<>\"' \taCz09\u00e9\u4e2d";

std::wstring to_text(const std::uint8_t* data, std::size_t size, bool decode_utf8) {
    if (decode_utf8) {
        return velmor2::_internal::to_ustring(
            std::string(reinterpret_cast<const char*>(data), size));
    }
    std::wstring text;
    text.reserve(size);
    for (std::size_t i = 0; i < size; ++i) {
        text += trouble[data[i] % (sizeof(trouble) / sizeof(trouble[0]) - 1)];
    }
    return text;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    // The reference's drive-letter test follows the locale: keep the one that matches ours.
    static velmor2::test::c_locale_guard_t locale;
    static velmor2::test::differential_t permitted(false);
    static velmor2::test::differential_t forbidden(true);
    if (size == 0) {
        return 0;
    }
    const std::wstring text = to_text(data + 1, size - 1, (data[0] & 2) != 0);
    const std::string difference = ((data[0] & 1) != 0 ? forbidden : permitted).difference(text);
    if (!difference.empty()) {
        std::fprintf(stderr, "parsers differ:%s\n", difference.c_str());
        std::abort();
    }
    return 0;
}
