// Validation positions, wildcard matching and what the file system says about a path.
#include "path/internal/print_path.hpp"
#include "path/internal/wildcard_oracle.hpp"
#include "path/wildcard.hpp"
#include "support/temp_tree.hpp"

#include <velmor2/path.hpp>

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <utility>
#include <vector>
#if !defined(_WIN32)
#include <unistd.h>
#endif

namespace {

using velmor2::path_t;
using velmor2::_internal::wildcard_t;
using velmor_test::temp_tree_t;

TEST(path_validate, gives_the_first_character_not_accepted) {
    struct case_t {
        const wchar_t* text;
        bool forbid_wildcards;
        bool valid;
        int position;
    };
    const case_t cases[] = {
        {L"C:\\a\\*.txt", true, false, 5},
        {L"C:\\a\\*.txt", false, true, -1},
        {L"C:\\x\\?", true, false, 5},
        {L"\"C:\\a|b\"", false, false, 4}, // counted after the leading quote
        {L"", false, false, 0},
        {L"C:\\a:b", false, false, 4},
        {L"ab:c", false, false, 2},
        {L"a\"b", false, false, 1},
        {L"'it's'", false, true, -1},
        {L"a:b", false, true, -1},
        {L"C:\\x\\  ", false, true, -1},
        // The prefix's `?` is not a wildcard.
        {L"\\\\?\\C:\\x", true, true, -1},
        // A prefix with nothing after it: the prefix is kept and no start can follow it.
        {L"\\\\?\\", false, false, 4},
        // When no start matches, the cursor is left past the first bad character, where the
        // failed name left it: the position is one beyond that character.
        {L"|x", false, false, 1},
        {L"?", true, false, 1},
        {L"   ", false, false, 3},
        {L"  <", false, false, 3},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << "[" << c.text << "] forbid " << c.forbid_wildcards);
        int position = -2;
        EXPECT_EQ(path_t::validate(c.text, c.forbid_wildcards, position), c.valid);
        EXPECT_EQ(position, c.position);
    }
}

TEST(path_match, compares_the_printed_form_with_a_wildcard_pattern) {
    struct case_t {
        const wchar_t* path;
        const wchar_t* pattern;
        bool matches;
    };
    const case_t cases[] = {
        {L"C:\\src\\a.cpp", L"C:\\src\\*.cpp", true},
        {L"C:\\src\\a.cpp", L"c:\\src\\*.cpp", false},
        {L"C:\\src\\a.cpp", L"C:/src/*.cpp", false},
        {L"C:\\src\\a.cpp", L"*.cpp", true},
        {L"C:\\src\\a.cpp", L"C:\\src\\?.cpp", true},
        {L"C:\\src\\a.cpp", L"C:\\src\\a.c", false},
        {L"C:\\src\\a.cpp", L"C:\\src\\a?cpp", true},
        {L"C:\\src\\a.cpp", L"C:\\src\\a.cpp*", true},
        {L"/usr/lib", L"\\usr\\*", true},
        {L"/usr/lib", L"/usr/*", false},
        // Every regular-expression character of the pattern stands for itself.
        {L"x\\a+b(1)[2]{3}^$.txt", L"x\\a+b(1)[2]{3}^$.txt", true},
        {L"a", L"a|b", false},
        {L"x\\aab", L"x\\a+b", false},
        {L"x\\abc", L"x\\[a-z]bc", false},
        {L"\u00e9\\\u4e2d", L"?\\?", true},
        {L"", L"*", true},
        {L"", L"", true},
        {L"a", L"", false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << "[" << c.path << "] ~ [" << c.pattern << "]");
        EXPECT_EQ(path_t(c.path).match(c.pattern), c.matches);
    }
}

// The matcher against the regular expression on every pattern of up to five characters and
// every text of up to five (`*` and `?` may stand in a path's names), with and without a known
// prefix.
TEST(path_match, agrees_with_the_regular_expression) {
    const auto all_up_to_five = [](const std::wstring& alphabet) {
        std::vector<std::wstring> out = {L""};
        for (std::size_t i = 0; out[i].size() < 5; ++i) {
            for (const wchar_t c : alphabet) {
                out.push_back(out[i] + c);
            }
        }
        return out;
    };
    const std::vector<std::wstring> texts = all_up_to_five(L"ab*");
    int failures = 0;
    for (const std::wstring& pattern : all_up_to_five(L"ab*?")) {
        const wildcard_t wildcard(pattern);
        for (const std::wstring& text : texts) {
            const std::size_t known = wildcard.literal_prefix(text.substr(0, 2));
            const bool expected = *velmor2::test::regex_wildcard_match(text, pattern);
            if ((wildcard.match(text) != expected || wildcard.match(text, known) != expected) &&
                ++failures <= 10) {
                ADD_FAILURE() << "[" << text << "] ~ [" << pattern << "] should be " << expected;
            }
        }
    }
}

class path_status : public testing::Test {
  protected:
    temp_tree_t dir_;
};

// (read_only, unknown) as `readonly` gives them for `text`.
std::pair<bool, bool> readonly_of(const std::wstring& text) {
    bool read_only = true;
    bool unknown = false;
    path_t::readonly(text, read_only, unknown);
    return {read_only, unknown};
}

TEST_F(path_status, exists_is_directory_and_readonly) {
    const std::wstring file = dir_.make_file("f.txt").as_native_string();
    const std::wstring sub = dir_.make_dir("sub").as_native_string();
    struct case_t {
        std::wstring text;
        bool exists;
        bool directory;
    };
    const case_t cases[] = {
        {file, true, false},
        {sub, true, true},
        {dir_.native("missing").wstring(), false, false},
        // A file used as a directory is "not there".
        {file + L"/child", false, false},
        // A NUL ends the text for the system; such a text names nothing.
        {sub + std::wstring(1, L'\0') + L"x", false, false},
        {L"", false, false},
        // No bare drives on POSIX: `Q:` does not get a second chance.
        {L"Q:", false, false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << "[" << c.text << "]");
        EXPECT_EQ(path_t::exists(c.text), c.exists);
        EXPECT_EQ(path_t::is_directory(c.text), c.directory);
    }
    // The members ask about the printed form, which the system gets in its own spelling.
    const path_t sub_path(sub);
    EXPECT_TRUE(sub_path.is_exists());
    EXPECT_TRUE(sub_path.is_directory());
    EXPECT_FALSE(path_t().is_exists());

    // readonly of missing, writable and read-only files.
    using result_t = std::pair<bool, bool>;
    EXPECT_EQ(readonly_of(dir_.native("missing").wstring()), result_t(false, true));
    EXPECT_EQ(readonly_of(file), result_t(false, false));
    EXPECT_FALSE(path_t(file).is_readonly());
    // No write bit at all is the read-only attribute, for root as well.
    std::filesystem::permissions(file, std::filesystem::perms::owner_read |
                                           std::filesystem::perms::group_read);
    EXPECT_EQ(readonly_of(file), result_t(true, false));
    EXPECT_TRUE(path_t(file).is_readonly());
    EXPECT_FALSE(path_t().is_readonly());
}

#if !defined(_WIN32)
// The meanings the POSIX calls give: `stat` errors, modes, effective access.
TEST_F(path_status, long_texts_reach_the_system_read_only_directory_effective_access) {
    std::string relative;
    for (int i = 0; i < 3; ++i) {
        relative += (i == 0 ? "" : "/") + std::string(100, static_cast<char>('a' + i));
    }
    const path_t deep = dir_.make_dir(relative);
    ASSERT_GE(deep.as_string().size(), 248u);
    EXPECT_TRUE(deep.is_exists());
    EXPECT_TRUE(deep.is_directory());
    // A name too long for the system is not there.
    EXPECT_FALSE(path_t::exists(dir_.native(std::string(300, 'n')).wstring()));

    // A read-only directory, and the effective access.
    const std::wstring sub = dir_.make_dir("sub").as_native_string();
    dir_.write("sub/f");
    std::filesystem::permissions(sub, std::filesystem::perms::owner_read |
                                          std::filesystem::perms::owner_exec);
    EXPECT_EQ(readonly_of(sub), std::make_pair(true, false));
    if (::geteuid() == 0) {
        GTEST_SKIP() << "root may write whatever the mode says and reads every directory";
    }
    // Others may write, the owner may not: the caller's effective access decides.
    const std::wstring file = dir_.make_file("f").as_native_string();
    std::filesystem::permissions(file, std::filesystem::perms::owner_read |
                                           std::filesystem::perms::others_write);
    EXPECT_EQ(readonly_of(file), std::make_pair(true, false));
    // An entry below a directory that may not be searched still counts as there.
    std::filesystem::permissions(sub, std::filesystem::perms::none);
    EXPECT_TRUE(path_t::exists(sub + L"/f"));
    EXPECT_TRUE(path_t::exists(sub + L"/missing"));
}
#endif

} // namespace
