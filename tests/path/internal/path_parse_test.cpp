// Parsing and printing: the model each form gives and the text printed back.
#include "path/grammar.hpp"
#include "path/internal/print_path.hpp"

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

TEST(path_parse, prints_each_form_back) {
    // The model behind each text is checked field by field against the reference grammar.
    struct case_t {
        const wchar_t* text;
        const wchar_t* printed;
    };
    const case_t cases[] = {
        {L"C:", L"C:\\"},
        {L"c:x", L"c:\\x"},
        {L"C:/Dir//File.txt/", L"C:\\Dir\\File.txt"},
        {L"/usr//lib/", L"\\usr\\lib"},
        {L"/", L"\\"},
        {L"\\\\", L"\\"},
        {L"//srv/share", L"\\\\srv\\share"},
        {L"\\\\?\\C:\\very\\long", L"C:\\very\\long"},
        {L"\\\\?\\\\\\srv\\s", L"\\\\srv\\s"},
        {L"../x", L"..\\x"},
        {L".", L"."},
        {L"a\\\\\\b", L"a\\b"},
        {L"\"C:\\Program Files\\x\"", L"C:\\Program Files\\x"},
        {L"'\"it's\"'", L"it's"},
        {L"  C:\\x  ", L"C:\\x  "},
        {L"  rel  ", L"rel  "},
        {L"C:\\x\\*.cpp", L"C:\\x\\*.cpp"},
        {L"\u00e9t\u00e9/\u4e2d", L"\u00e9t\u00e9\\\u4e2d"},
        // The prefix leaves no trace but `posix` cleared; both forms cleared prints nothing.
        {L"\\\\?\\x", L"x"},
        {L"\\\\?\\\\x", L"\\x"},
        {L"\\\\?\\\\", L""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << "[" << c.text << "]");
        parse(c.text);
        EXPECT_EQ(path_t(c.text).as_string(), c.printed);
    }
}

TEST(path_parse, rejects_what_is_not_a_path_and_follows_the_grammar_over_the_prose) {
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

    // Where the written rules of the grammar and the prose about them part ways, the rules decide.
    // The `C:x` shape: a single letter and a colon are a drive, whatever letter it is, so
    // `a:b` is the component `b` on drive `a` rather than a rejected colon.
    const model_t drive = parse(L"a:b");
    EXPECT_TRUE(drive.windows && drive.absolute);
    EXPECT_FALSE(drive.posix || drive.relative || drive.network);
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

TEST(path_parse, long_path_prefix_from_248_characters_make_path_and_the_separator) {
    const std::wstring name(242, L'n');
    EXPECT_EQ(path_t(L"C:\\" + name + L"xy").as_string(), L"C:\\" + name + L"xy"); // 247
    EXPECT_EQ(path_t(L"C:\\" + name + L"xyz").as_string(), L"\\\\?\\C:\\" + name + L"xyz");
    // Printed again from the model: a short path written with the prefix loses it.
    EXPECT_EQ(path_t(L"\\\\?\\C:\\short").as_string(), L"C:\\short");
    // Deeper than the constructors' fast parse takes: every name is kept.
    std::wstring deep = L"C:";
    for (int i = 0; i < 40; ++i) {
        deep += L"\\" + std::to_wstring(i);
    }
    EXPECT_EQ(path_t(deep).as_string(), deep);

    // make_path normalises and reads UTF-8.
    EXPECT_EQ(make_path(L"C:/Tools/../Data//settings.xml").as_string(), L"C:\\Data\\settings.xml");
    EXPECT_EQ(make_path(std::string("/d\xC3\xA9j\xC3\xA0/./x")).as_string(),
              L"\\d\u00e9j\u00e0\\x");
    EXPECT_TRUE(make_path(std::string("a|b")).is_empty());
    // Bytes that are not UTF-8 turn into U+FFFD, which is a name character.
    EXPECT_EQ(make_path(std::string("a\xFF")).as_string(), L"a\uFFFD");

    // The separator is always the backslash.
    EXPECT_EQ(path_t::get_separator_char(), L'\\');
#if defined(_WIN32)
    EXPECT_EQ(path_t(L"\\\\?\\C:/x").as_native_string(), L"C:\\x");
#else
    // POSIX calls get `/` separators and never the long-path prefix.
    const std::wstring long_name(300, L'n');
    EXPECT_EQ(path_t(L"/a/" + long_name).as_native_string(), L"/a/" + long_name);
    EXPECT_EQ(path_t(L"\\usr\\lib").as_native_string(), L"/usr/lib");
#endif
}

} // namespace
