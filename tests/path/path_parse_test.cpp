// Parsing and printing: the model each form gives and the text printed back.
#include "path/grammar.hpp"
#include "path/print_path.hpp"

#include <velmor2/path.hpp>

#include <gtest/gtest.h>

#include <list>
#include <string>

namespace {

using velmor2::make_path;
using velmor2::path_t;
using model_t = velmor2::_internal::path_internal_t<std::wstring>;

model_t parse(const std::wstring& text) {
    model_t model;
    int stop_position = 0;
    EXPECT_TRUE(velmor2::_internal::parse_path(text, model, false, stop_position)) << text;
    EXPECT_EQ(stop_position, -1);
    return model;
}

// The five flags as letters: r relative, w windows, p posix, a absolute, n network.
std::string flags_of(const model_t& m) {
    std::string flags;
    flags += m.relative ? "r" : "";
    flags += m.windows ? "w" : "";
    flags += m.posix ? "p" : "";
    flags += m.absolute ? "a" : "";
    flags += m.network ? "n" : "";
    return flags;
}

struct parse_case_t {
    const wchar_t* text;
    const char* flags;
    const wchar_t* drive;
    const wchar_t* server;
    std::list<std::wstring> components;
    const wchar_t* printed;
};

TEST(path_parse, gives_the_model_of_each_form_and_prints_it_back) {
    const parse_case_t cases[] = {
        {L"C:", "wa", L"C", L"", {}, L"C:\\"},
        {L"c:x", "wa", L"c", L"", {L"x"}, L"c:\\x"},
        {L"c:\\Dir\\File.TXT", "wa", L"c", L"", {L"Dir", L"File.TXT"}, L"c:\\Dir\\File.TXT"},
        {L"C:/Dir//File.txt/", "wa", L"C", L"", {L"Dir", L"File.txt"}, L"C:\\Dir\\File.txt"},
        {L"/usr//lib/", "pa", L"", L"", {L"usr", L"lib"}, L"\\usr\\lib"},
        {L"\\x", "pa", L"", L"", {L"x"}, L"\\x"},
        {L"/", "pa", L"", L"", {}, L"\\"},
        {L"\\\\", "pa", L"", L"", {}, L"\\"},
        {L"\\\\server\\share\\dir",
         "wan",
         L"",
         L"server",
         {L"server", L"share", L"dir"},
         L"\\\\server\\share\\dir"},
        {L"//srv/share", "wan", L"", L"srv", {L"srv", L"share"}, L"\\\\srv\\share"},
        {L"\\\\?\\C:\\very\\long", "wa", L"C", L"", {L"very", L"long"}, L"C:\\very\\long"},
        {L"\\\\?\\\\\\srv\\s", "wan", L"", L"srv", {L"srv", L"s"}, L"\\\\srv\\s"},
        {L"../x", "rwp", L"", L"", {L"..", L"x"}, L"..\\x"},
        {L".", "rwp", L"", L"", {L"."}, L"."},
        {L"a\\\\\\b", "rwp", L"a", L"", {L"a", L"b"}, L"a\\b"},
        {L"\"C:\\Program Files\\x\"",
         "wa",
         L"C",
         L"",
         {L"Program Files", L"x"},
         L"C:\\Program Files\\x"},
        {L"'\"it's\"'", "rwp", L"i", L"", {L"it's"}, L"it's"},
        {L"  C:\\x  ", "wa", L"C", L"", {L"x  "}, L"C:\\x  "},
        {L"  rel  ", "rwp", L"r", L"", {L"rel  "}, L"rel  "},
        {L"C:\\x\\*.cpp", "wa", L"C", L"", {L"x", L"*.cpp"}, L"C:\\x\\*.cpp"},
        {L"\u00e9t\u00e9/\u4e2d",
         "rwp",
         L"",
         L"",
         {L"\u00e9t\u00e9", L"\u4e2d"},
         L"\u00e9t\u00e9\\\u4e2d"},
        // The prefix leaves no trace but `posix` cleared; both forms cleared prints nothing.
        {L"\\\\?\\x", "rw", L"x", L"", {L"x"}, L"x"},
        {L"\\\\?\\\\x", "a", L"", L"", {L"x"}, L"\\x"},
        {L"\\\\?\\\\", "a", L"", L"", {}, L""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << "[" << c.text << "]");
        const model_t model = parse(c.text);
        EXPECT_EQ(flags_of(model), c.flags);
        EXPECT_EQ(model.drive, c.drive);
        EXPECT_EQ(model.server, c.server);
        EXPECT_EQ(model.components, c.components);
        EXPECT_EQ(path_t(c.text).as_string(), c.printed);
    }
}

TEST(path_parse, rejects_text_that_is_not_a_path_completely) {
    for (const wchar_t* text : {L"", L"a|b", L"a<b", L"a>b", L"C:\\a:b", L"a\"b", L"ab:c", L"\"\"",
                                L"   ", L"\\\\?\\", L"|", L"C:\\x\\\"y"}) {
        SCOPED_TRACE(testing::Message() << "[" << text << "]");
        const path_t path(text);
        EXPECT_TRUE(path.is_empty());
        EXPECT_FALSE(path.is_windows());
        EXPECT_FALSE(path.is_posix());
        EXPECT_FALSE(path.is_absolute());
        EXPECT_EQ(path, path_t());
    }
    EXPECT_TRUE(path_t(static_cast<const wchar_t*>(nullptr)).is_empty());
}

// Where the written rules of the grammar and the prose about them part ways, the rules decide.
TEST(path_parse, follows_the_grammar_where_the_prose_says_otherwise) {
    // The `C:x` shape: a single letter and a colon are a drive, whatever letter it is, so
    // `a:b` is the component `b` on drive `a` rather than a rejected colon.
    const model_t drive = parse(L"a:b");
    EXPECT_EQ(flags_of(drive), "wa");
    EXPECT_EQ(drive.drive, L"a");
    EXPECT_EQ(drive.components, std::list<std::wstring>{L"b"});
    EXPECT_EQ(path_t(L"a:b").as_string(), L"a:\\b");

    // Blanks after a trailing separator are name characters like any other: the loop over
    // `separator* name` takes them before the final blanks can.
    EXPECT_EQ(parse(L"C:\\x\\  ").components, (std::list<std::wstring>{L"x", L"  "}));
    EXPECT_EQ(path_t(L"C:\\x\\\t").as_string(), L"C:\\x\\\t");
    // ...whereas blanks before the start of the path are skipped.
    EXPECT_EQ(parse(L" \t/x").components, std::list<std::wstring>{L"x"});

    // A leading letter is taken as a drive letter before the colon is looked for, and is not
    // taken back: `usr/lib` keeps drive `u`. It is not printed, but equality sees it.
    EXPECT_EQ(parse(L"usr/lib").drive, L"u");
    EXPECT_EQ(path_t(L"usr/lib"), path_t(L"Usr/lib"));
    path_t with_letter(L"a");
    with_letter.append(path_t(L"b"));
    const path_t without_letter = make_path(L"./a/b");
    EXPECT_EQ(with_letter.as_string(), without_letter.as_string());
    EXPECT_NE(with_letter, without_letter);
}

TEST(path_parse, prints_the_long_path_prefix_from_248_characters) {
    const std::wstring name(242, L'n');
    EXPECT_EQ(path_t(L"C:\\" + name + L"xy").as_string(), L"C:\\" + name + L"xy"); // 247
    EXPECT_EQ(path_t(L"C:\\" + name + L"xyz").as_string(), L"\\\\?\\C:\\" + name + L"xyz");
    // Printed again from the model: a short path written with the prefix loses it.
    EXPECT_EQ(path_t(L"\\\\?\\C:\\short").as_string(), L"C:\\short");
}

TEST(path_parse, make_path_normalises_and_reads_utf8) {
    EXPECT_EQ(make_path(L"C:/Tools/../Data//settings.xml").as_string(), L"C:\\Data\\settings.xml");
    EXPECT_EQ(make_path(std::string("/d\xC3\xA9j\xC3\xA0/./x")).as_string(),
              L"\\d\u00e9j\u00e0\\x");
    EXPECT_TRUE(make_path(std::string("a|b")).is_empty());
    // Bytes that are not UTF-8 turn into U+FFFD, which is a name character.
    EXPECT_EQ(make_path(std::string("a\xFF")).as_string(), L"a\uFFFD");
}

TEST(path_parse, separator_is_always_the_backslash) {
    EXPECT_EQ(path_t::get_separator_char(), L'\\');
#if defined(_WIN32)
    EXPECT_EQ(path_t(L"\\\\?\\C:/x").as_native_string(), L"C:\\x");
#else
    // POSIX calls get `/` separators and never the long-path prefix.
    const std::wstring name(300, L'n');
    EXPECT_EQ(path_t(L"/a/" + name).as_native_string(), L"/a/" + name);
    EXPECT_EQ(path_t(L"\\usr\\lib").as_native_string(), L"/usr/lib");
#endif
}

} // namespace
