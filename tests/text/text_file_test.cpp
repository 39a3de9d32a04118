#include "support/temp_tree.hpp"

#include <velmor2/text_file.hpp>

#include <gtest/gtest.h>

#include <string>

namespace {

using namespace velmor2;
using velmor_test::temp_tree_t;

// ASCII, Latin-1, a BMP symbol and a character above U+FFFF.
const std::wstring sample = L"line 1\r\nGr\u00FC\u00DFe \u20AC \U0001F600 end";
const std::string sample_utf8 = "line 1\r\nGr\xC3\xBC\xC3\x9F"
                                "e \xE2\x82\xAC \xF0\x9F\x98\x80 end";

TEST(file_content, utf8_and_utf16_round_trip_utf16_keeps_the_mark_and_pairs) {
    temp_tree_t dir;
    ASSERT_TRUE(set_file_content(sample, cp_utf8, dir.path("f")));
    EXPECT_EQ(dir.read("f"), sample_utf8);
    EXPECT_EQ(get_file_cp(dir.path("f")), cp_utf8);
    EXPECT_EQ(get_file_content(cp_utf8, dir.path("f")), sample);

    // UTF-16 keeps the mark and pairs.
    ASSERT_TRUE(set_file_content(L"A\U0001F600", cp_utf16, dir.path("f")));
    EXPECT_EQ(dir.read("f"), std::string("\xFF\xFE\x41\0\x3D\xD8\x00\xDE", 8));
    EXPECT_EQ(get_file_cp(dir.path("f")), cp_utf16);
    EXPECT_EQ(get_file_content(cp_utf16, dir.path("f")), L"\uFEFFA\U0001F600");

    ASSERT_TRUE(set_file_content(sample, cp_utf16, dir.path("g")));
    EXPECT_EQ(get_file_content(cp_utf16, dir.path("g")), L"\uFEFF" + sample);
}

TEST(file_content, ansi_round_trip_and_fallbacks_empty_files_and_the_first_zero) {
    temp_tree_t dir;
    const std::wstring text = L"Gr\u00FC\u00DFe \u20AC";
    for (const code_page_t cp : {cp_ansi, cp_unknown, static_cast<code_page_t>(42)}) {
        SCOPED_TRACE(cp);
        ASSERT_TRUE(set_file_content(text, cp, dir.path("f")));
        EXPECT_EQ(dir.read("f"), "Gr\xFC\xDF\x65 \x80");
        EXPECT_EQ(get_file_cp(dir.path("f")), cp_ansi);
        EXPECT_EQ(get_file_content(cp, dir.path("f")), text);
    }
    ASSERT_TRUE(set_file_content(L"\U0001F600", cp_ansi, dir.path("f")));
#if defined(_WIN32)
    // The system replaces each unit of the surrogate pair.
    EXPECT_EQ(dir.read("f"), "??");
#else
    EXPECT_EQ(dir.read("f"), "?");
#endif

    // Empty and missing files.
    for (const code_page_t cp : {cp_unknown, cp_utf8, cp_utf16, cp_ansi}) {
        SCOPED_TRACE(cp);
        EXPECT_EQ(get_file_content(cp, dir.make_file("empty", "")), L"");
        EXPECT_EQ(get_file_content(cp, dir.path("missing")), L"");
    }
    ASSERT_TRUE(set_file_content(L"", cp_utf16, dir.path("u16")));
    EXPECT_EQ(dir.read("u16"), "\xFF\xFE");
    for (const code_page_t cp : {cp_utf8, cp_ansi}) {
        ASSERT_TRUE(set_file_content(L"", cp, dir.path("e")));
        EXPECT_EQ(dir.read("e"), "");
        EXPECT_EQ(get_file_cp(dir.path("e")), cp_ansi);
    }

    // Text ends at the first zero character.
    EXPECT_EQ(get_file_content(cp_utf8, dir.make_file("a", std::string("ab\0cd", 5))), L"ab");
    EXPECT_EQ(get_file_content(cp_ansi, dir.make_file("b", std::string("ab\0cd", 5))), L"ab");
    EXPECT_EQ(get_file_content(cp_utf16, dir.make_file("c", std::string("\xFF\xFEx\0\0\0y\0", 8))),
              L"\uFEFFx");
    // A zero byte inside a unit does not end UTF-16 text; an odd length ends with a half unit.
    EXPECT_EQ(get_file_content(cp_utf16, dir.make_file("d", std::string("\xFF\xFE\0\x4E", 4))),
              L"\uFEFF\u4E00");
    EXPECT_EQ(get_file_content(cp_utf16, dir.make_file("f", std::string("\xFF\xFE\x41\0B", 5))),
              L"\uFEFFAB");
    EXPECT_EQ(get_file_content(cp_utf16, dir.make_file("g", std::string("\xFF\xFE\x41\0\0", 5))),
              L"\uFEFFA");
}

TEST(file_content, writing_fails_cleanly_xml_round_trips_and_refuses_others) {
    temp_tree_t dir;
    EXPECT_FALSE(set_file_content(L"x", cp_utf8, dir.path("no/such/dir/f")));
    EXPECT_FALSE(set_file_content(L"x", cp_utf8, path_t()));
    EXPECT_FALSE(set_file_content(L"x", cp_utf8, dir.path("")));
    // Writing replaces, never appends.
    ASSERT_TRUE(set_file_content(L"long old content", cp_utf8, dir.path("f")));
    ASSERT_TRUE(set_file_content(L"new", cp_utf8, dir.path("f")));
    EXPECT_EQ(dir.read("f"), "new");

    // XML text round-trips keeping the line feed.
    const std::wstring text = L"<a b='\u00E9\U0001F600'/>";
    ASSERT_TRUE(set_xml_file_content(text, cp_utf8, dir.path("u8")));
    EXPECT_EQ(dir.read("u8"),
              "<?xml version='1.0' encoding='UTF-8'?>\n<a b='\xC3\xA9\xF0\x9F\x98\x80'/>");
    EXPECT_EQ(get_xml_file_content(dir.path("u8")), L"\n" + text);
    ASSERT_TRUE(set_xml_file_content(text, cp_utf16, dir.path("u16")));
    EXPECT_EQ(get_file_cp(dir.path("u16")), cp_utf16);
    EXPECT_EQ(get_xml_file_content(dir.path("u16")), L"\n" + text);

    // Writing refuses declarations and other code pages.
    dir.write("f", "old");
    EXPECT_FALSE(set_xml_file_content(L"<?pi x?><a/>", cp_utf8, dir.path("f")));
    EXPECT_FALSE(set_xml_file_content(L"<a/>", cp_ansi, dir.path("f")));
    EXPECT_FALSE(set_xml_file_content(L"<a/>", cp_unknown, dir.path("f")));
    EXPECT_EQ(dir.read("f"), "old");
    EXPECT_FALSE(set_xml_file_content(L"<a/>", cp_ansi, dir.path("new")));
    EXPECT_FALSE(std::filesystem::exists(dir.native("new")));
}

struct xml_case_t {
    const char* name;
    std::string bytes;
    std::wstring expected;
};

TEST(xml_file_content, declaration_rules) {
    const xml_case_t cases[] = {
        {"lower-case encoding name", "<?xml version='1.0' encoding='utf-8'?><a/>", L"<a/>"},
        {"no encoding attribute", "<?xml version='1.0'?>\n<a/>", L""},
        {"UTF-8 file naming UTF-16", "<?xml version='1.0' encoding='UTF-16'?><a/>", L""},
        {"no declaration", "<a>\xC3\xA9</a>", L"<a>\u00E9</a>"},
        {"processing instruction without declaration", "<a/><?pi UTF-8?>rest", L"rest"},
        {"ANSI file with a declaration", "<?xml encoding='windows-1252'?><a>\xE9</a>", L""},
        {"ANSI file without declaration", "<a>\xE9</a>", L"<a>\u00E9</a>"},
        {"UTF-16 file", std::string("\xFF\xFE<\0?\0U\0T\0F\0-\0\x31\0\x36\0?\0>\0x\0", 24), L"x"},
        {"UTF-16 file naming UTF-8", std::string("\xFF\xFE<\0?\0U\0T\0F\0-\0\x38\0?\0>\0x\0", 22),
         L""},
        {"empty file", "", L""},
    };
    temp_tree_t dir;
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(get_xml_file_content(dir.make_file("f", c.bytes)), c.expected);
    }
    EXPECT_EQ(get_xml_file_content(dir.path("missing")), L"");
}

} // namespace
