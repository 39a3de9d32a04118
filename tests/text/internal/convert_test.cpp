#include "os/ansi.hpp"
#include "unicode/convert.hpp"

#include <gtest/gtest.h>

#include <clocale>
#include <string>

namespace {

using namespace velmor2::_internal;

struct utf8_case_t {
    const char* name;
    std::string bytes;
    bool valid;
    std::size_t length;
};

TEST(utf8_sequence, validity_and_length_follow_rfc3629) {
    const utf8_case_t cases[] = {
        {"ascii", "A", true, 1},
        {"two bytes", "\xC3\xA4", true, 2},
        {"three bytes", "\xE2\x82\xAC", true, 3},
        {"four bytes", "\xF0\x9F\x98\x80", true, 4},
        {"largest", "\xF4\x8F\xBF\xBF", true, 4},
        {"overlong two", "\xC0\x80", false, 1},
        {"overlong three", "\xE0\x80\xAF", false, 1},
        {"overlong four", "\xF0\x8F\xBF\xBF", false, 1},
        {"surrogate", "\xED\xA0\x80", false, 1},
        {"above U+10FFFF", "\xF4\x90\x80\x80", false, 1},
        {"lead F5", "\xF5\x80\x80\x80", false, 1},
        {"lone continuation", "\x80", false, 1},
        {"truncated three", "\xE2\x82", false, 2},
        {"bad continuation", "\xE2\x41\x41", false, 1},
        {"lead FF", "\xFF", false, 1},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(validate_utf8(c.bytes.data(), c.bytes.size()), c.valid);
        EXPECT_EQ(get_utf8_length(c.bytes.data(), c.bytes.size()), c.length);
    }
    EXPECT_FALSE(validate_utf8("", 0));
    EXPECT_EQ(get_utf8_length("", 0), 1u);
}

TEST(utf_conversion, round_trips_every_plane_invalid_bytes_are_replaced_pairs_split) {
    const std::wstring text = L"a\u00e4\u20ac\U0001F600z";
    EXPECT_EQ(to_utf8(text), "a\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80z");
    EXPECT_EQ(to_ustring(to_utf8(text)), text);
    EXPECT_EQ(to_ustring(static_cast<const char*>(nullptr)), L"");
    EXPECT_EQ(to_ustring(static_cast<const wchar_t*>(nullptr)), L"");
    // Invalid bytes become replacement characters.
    EXPECT_EQ(to_ustring(std::string("a\xFF" "b\xE2\x82")), L"a\uFFFDb\uFFFD");
    EXPECT_EQ(to_ustring(std::string("\xED\xA0\x80")), L"\uFFFD\uFFFD\uFFFD");
    // UTF-16 pairs are split and combined.
    const std::u16string units = to_utf16(L"x\U00010400");
    EXPECT_EQ(units, (std::u16string{u'x', 0xD801, 0xDC00}));
    EXPECT_EQ(to_ustring(units.c_str()), L"x\U00010400");
    const char16_t lone[] = {0xDC00, u'a', 0xD800, 0};
    EXPECT_EQ(to_ustring(lone), L"\uFFFDa\uFFFD");
    EXPECT_EQ(to_widechar(L"\U00010400").size(), 2u);
    // A lone surrogate keeps its unit in UTF-16, as a 16-bit wide string holds it.
    EXPECT_EQ(to_utf16(std::wstring(1, static_cast<wchar_t>(0xDC00))), std::u16string(1, 0xDC00));
}

TEST(ansi_conversion, unmappable_characters_become_question_marks) {
#if !defined(_WIN32)
    EXPECT_EQ(os::to_ansi(L"a\u00e4\u20ac\u4e2d"), "a\xE4\x80?");
    EXPECT_EQ(os::from_ansi("a\xE4\x80\x81"), L"a\u00e4\u20ac\u0081");
#endif
    EXPECT_EQ(os::from_ansi(os::to_ansi(L"plain text")), L"plain text");
}

TEST(lower_case, ignores_the_process_locale) {
    const char* previous = std::setlocale(LC_ALL, nullptr);
    const std::string saved = previous == nullptr ? "C" : previous;
    for (const char* locale : {"C", "C.UTF-8", "tr_TR.UTF-8"}) {
        SCOPED_TRACE(locale);
        std::setlocale(LC_ALL, locale);
        EXPECT_EQ(tolower(std::wstring(L"\u00c4\u03a3IZ\u0130\u0401")), L"\u00e4\u03c3iz\u0069\u0451");
        EXPECT_EQ(tolower(std::wstring(L"already lower 123")), L"already lower 123");
        EXPECT_EQ(tolower(std::wstring(L"\U00010400x")), L"\U00010428x");
    }
    std::setlocale(LC_ALL, saved.c_str());
}

} // namespace
