// Composition, normalisation, relative paths, comparison and the texts taken from a path.
#include "path/internal/print_path.hpp"
#include "support/temp_tree.hpp"

#include <velmor2/path.hpp>

#include <gtest/gtest.h>

#include <cstdlib>
#include <list>
#include <locale>
#include <string>
#include <thread>
#include <vector>

namespace {

using velmor2::path_t;
using velmor_test::temp_tree_t;

TEST(path_compose, append_adds_relative_paths_only_assign_list_parses_and_joins) {
    struct case_t {
        const wchar_t* base;
        const wchar_t* added;
        bool appended;
        const wchar_t* printed;
    };
    const case_t cases[] = {
        {L"C:\\a", L"b\\c", true, L"C:\\a\\b\\c"},
        {L"/usr", L"../lib", true, L"\\usr\\..\\lib"},
        {L"\\\\srv\\share", L"x", true, L"\\\\srv\\share\\x"},
        {L"", L"a/b", true, L"a\\b"},
        {L"", L"C:\\x", false, L""},
        {L"a", L"C:\\x", false, L"a"},
        {L"a", L"\\\\srv\\share", false, L"a"},
        {L"a", L"/x", false, L"a"},
        {L"a", L"", true, L"a"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << "[" << c.base << "] + [" << c.added << "]");
        path_t path(c.base);
        EXPECT_EQ(path.append(path_t(c.added)), c.appended);
        EXPECT_EQ(path.as_string(), c.printed);
    }
    path_t twice(L"a\\b");
    EXPECT_TRUE(twice.append(twice));
    EXPECT_EQ(twice.as_string(), L"a\\b\\a\\b");

    // An empty base takes the form of what is appended, flags included.
    path_t empty;
    empty.append(path_t(L"\\\\?\\x"));
    EXPECT_TRUE(empty.is_windows());
    EXPECT_FALSE(empty.is_posix());

    // assign of a list parses and joins each text.
    path_t path(L"old");
    EXPECT_TRUE(path.assign(std::list<std::wstring>{L"C:", L"a", L"b\\c"}));
    EXPECT_EQ(path.as_string(), L"C:\\a\\b\\c");
    EXPECT_EQ(path, path_t(L"C:\\a\\b\\c"));

    EXPECT_FALSE(path.assign(std::list<std::wstring>{L"a", L"/b"}));
    EXPECT_TRUE(path.is_empty());
    EXPECT_FALSE(path.assign(std::list<std::wstring>{L"a", L"x|y"}));
    EXPECT_TRUE(path.is_empty());
    // A first text that prints as nothing is replaced by the next, form and all.
    EXPECT_TRUE(path.assign(std::list<std::wstring>{L"\\\\?\\/", L"x", L"y"}));
    EXPECT_EQ(path, path_t(L"x\\y"));

    // The list a path gives builds the same path again, whatever its form.
    for (const wchar_t* text :
         {L"C:\\a\\b", L"c:", L"/usr/lib", L"/", L"\\\\srv\\share\\d", L"..\\x", L"\\\\srv"}) {
        SCOPED_TRACE(testing::Message() << "[" << text << "]");
        const path_t original(text);
        path_t rebuilt;
        EXPECT_TRUE(rebuilt.assign(original.as_string_list()));
        EXPECT_EQ(rebuilt, original);
        EXPECT_EQ(rebuilt.as_string(), original.as_string());
    }
    EXPECT_EQ(path_t(L"C:\\a\\b").as_string_list(), (std::list<std::wstring>{L"C:", L"a", L"b"}));
}

TEST(path_compose, normalize_drops_dots_and_name_parent_pairs) {
    struct case_t {
        const wchar_t* text;
        const wchar_t* printed;
    };
    const case_t cases[] = {
        {L".\\a\\.\\b", L"a\\b"},
        {L"..\\a\\..", L".."},
        {L"a\\b\\..\\..\\..\\c", L"..\\c"},
        {L"a\\b\\..\\..\\c", L"c"},
        {L"..\\..\\a", L"..\\..\\a"},
        {L"a\\..\\..", L".."},
        {L"C:\\..\\x", L"C:\\..\\x"},
        {L"a\\..", L""},
        {L"/a/./../b/", L"\\b"},
        {L"\\\\srv\\..\\x", L"\\\\x"},
        // Exact comparison: `...` and `. ` are names.
        {L"a\\...\\b\\. ", L"a\\...\\b\\. "},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << "[" << c.text << "]");
        path_t path(c.text);
        EXPECT_TRUE(path.normalize());
        EXPECT_EQ(path.as_string(), c.printed);
    }
    // The form stays: `a\..` is still a relative path, just one that prints as nothing.
    path_t gone(L"a\\..");
    gone.normalize();
    EXPECT_TRUE(gone.is_empty());
    EXPECT_TRUE(gone.is_windows() && gone.is_posix());
}

TEST(path_compose, get_relative_counts_the_difference_of_the_remainders) {
    struct case_t {
        const wchar_t* path;
        const wchar_t* other;
        const wchar_t* relative;
    };
    const case_t cases[] = {
        {L"C:\\a", L"C:\\a\\b\\c", L"..\\.."},
        {L"C:\\a\\b\\c", L"C:\\a", L"b\\c"},
        {L"C:\\a\\b", L"C:\\a\\x\\y", L"..\\b"},
        {L"C:\\a\\b\\c", L"C:\\a\\x", L"b\\c"},
        {L"C:\\x", L"C:\\y", L"x"},
        {L"C:\\a", L"D:\\a", L"."},
        {L"C:\\A\\b", L"c:\\a", L"b"},
        {L"/usr/lib", L"/usr", L"lib"},
        {L"C:\\a", L"\\a", L""},
        {L"a", L"C:\\a", L""},
        {L"", L"C:\\x", L"C:\\x"},
        {L"/x", L"", L"\\x"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << "[" << c.path << "] against [" << c.other << "]");
        const path_t relative = path_t(c.path).get_relative(path_t(c.other));
        EXPECT_EQ(relative.as_string(), c.relative);
        // The result is the path its text would parse to, down to the drive letter.
        EXPECT_EQ(relative, path_t(c.relative));
    }
}

TEST(path_compose, equality_ignores_case_follows_the_global_locale_and_order_does_not) {
    struct case_t {
        const wchar_t* a;
        const wchar_t* b;
        bool equal;
        bool less;
    };
    const case_t cases[] = {
        {L"C:\\Dir\\File", L"c:\\dir\\FILE", true, true},
        {L"/usr/lib", L"\\usr\\lib", true, false},
        {L"/usr/lib", L"usr/lib", false, true},
        {L"\\\\SRV\\s", L"\\\\srv\\S", true, true},
        {L"C:\\x", L"D:\\x", false, true},
        {L"C:\\x", L"C:\\x\\y", false, true},
        {L"\\\\?\\C:\\x", L"C:\\x", true, false},
        {L"\\\\?\\x", L"x", false, false},
        // Case folds with the global C++ locale, whatever it makes of a non-ASCII letter.
        {L"\u00c9t\u00c9", L"\u00e9t\u00e9",
         std::use_facet<std::ctype<wchar_t>>(std::locale()).toupper(L'\u00e9') == L'\u00c9', true},
        {L"", L"", true, false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << "[" << c.a << "] vs [" << c.b << "]");
        const path_t a(c.a);
        const path_t b(c.b);
        EXPECT_EQ(a == b, c.equal);
        EXPECT_EQ(b == a, c.equal);
        EXPECT_EQ(a != b, !c.equal);
        EXPECT_EQ(a < b, c.less);
        EXPECT_FALSE(a < b && b < a);
    }
    // Ordering is that of the printed forms, also where one has the long-path prefix.
    for (const std::size_t size : {243, 244, 245}) {
        const path_t a(L"C:\\" + std::wstring(size, L'a'));
        for (const wchar_t* b : {L"C:\\b", L"C:\\a", L"\\\\?\\C:\\b", L"\\x"}) {
            EXPECT_EQ(a < path_t(b), a.as_string() < path_t(b).as_string()) << size << b;
            EXPECT_EQ(path_t(b) < a, path_t(b).as_string() < a.as_string()) << size << b;
        }
    }
    // Equality follows the global locale when it changes: here every character upper-cases
    // to `X`.
    struct all_x_ctype_t : std::ctype<wchar_t> {
        wchar_t do_toupper(wchar_t) const override { return L'X'; }
    };
    const path_t a(L"C:\\ab");
    const path_t b(L"C:\\yz");
    EXPECT_NE(a, b);
    const std::locale saved = std::locale::global(std::locale(std::locale(), new all_x_ctype_t));
    EXPECT_EQ(a, b);
    std::locale::global(saved);
    EXPECT_NE(a, b);
}

TEST(path_compose, branch_and_leaf_and_to_lower) {
    struct case_t {
        const wchar_t* text;
        const wchar_t* branch;
        const wchar_t* leaf;
    };
    const case_t cases[] = {
        {L"C:\\a\\b", L"C:\\a", L"b"},
        {L"C:\\x", L"C:\\", L"x"},
        {L"C:", L"", L""},
        {L"/usr/lib", L"\\usr", L"lib"},
        {L"/x", L"\\", L"x"},
        {L"/", L"", L""},
        {L"a\\b", L"a", L"b"},
        {L"a", L"", L"a"},
        {L"\\\\srv\\s\\d", L"\\\\srv\\s", L"d"},
        {L"\\\\srv", L"", L"srv"},
        {L"", L"", L""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << "[" << c.text << "]");
        const path_t path(c.text);
        EXPECT_EQ(path.get_branch(), c.branch);
        EXPECT_EQ(path.get_leaf(), c.leaf);
    }
    // A long branch is printed as the operating system needs it.
    const std::wstring name(250, L'n');
    EXPECT_EQ(path_t(L"C:\\" + name + L"\\x").get_branch(), L"\\\\?\\C:\\" + name);

    // to_lower leaves drive and server.
    path_t path(L"C:\\Dir\\\u00c4\u03a3");
    path.to_lower();
    EXPECT_EQ(path.as_string(), L"C:\\dir\\\u00e4\u03c3");
    path_t unc(L"\\\\SRV\\Share");
    unc.to_lower();
    EXPECT_EQ(unc.as_string(), L"\\\\srv\\share");
    EXPECT_EQ(unc, path_t(L"\\\\SRV\\share"));
}

TEST(path_compose, extensions_of_files_but_not_of_directories) {
    const temp_tree_t dir;
    struct case_t {
        const wchar_t* leaf;
        const wchar_t* ext;
        const wchar_t* changed;
    };
    const case_t cases[] = {
        {L"archive.tar.gz", L"gz", L"archive.tar.txt"},
        {L"README", L"", L"README.txt"},
        {L".profile", L"profile", L".txt"},
        {L"trailing.", L"", L"trailing.txt"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << "[" << c.leaf << "]");
        path_t path(dir.native().wstring() + L"/" + c.leaf);
        EXPECT_EQ(path.get_ext(), c.ext);
        EXPECT_TRUE(path.change_ext(L"txt"));
        EXPECT_EQ(path.get_leaf(), c.changed);
    }
    path_t file(L"C:\\d\\a.cpp");
    EXPECT_TRUE(file.change_ext(L".h"));
    EXPECT_EQ(file.as_string(), L"C:\\d\\a..h");

    // An existing directory has no extension and keeps its name.
    path_t directory = dir.make_dir("dir.d");
    EXPECT_EQ(directory.get_ext(), L"");
    EXPECT_FALSE(directory.change_ext(L"x"));
    EXPECT_EQ(directory.get_leaf(), L"dir.d");

    path_t root(L"C:");
    EXPECT_EQ(root.get_ext(), L"");
    EXPECT_FALSE(root.change_ext(L"x"));
    EXPECT_EQ(root.as_string(), L"C:\\");
}

// Equality keeps tables of the locale that every thread shares. Threads that compare and end,
// and a comparison made while the program's static objects are destroyed, must neither leak
// nor read a destroyed table.
TEST(path_lifetime, comparisons_on_ending_threads_and_at_exit) {
    static const struct compares_at_exit_t {
        ~compares_at_exit_t() {
            if (!(path_t(L"C:\\A") == path_t(L"c:\\a"))) {
                std::abort();
            }
        }
    } at_exit;
    std::thread([] { EXPECT_EQ(path_t(L"C:\\A"), path_t(L"c:\\a")); }).join();
    EXPECT_EQ(path_t(L"C:\\A"), path_t(L"c:\\a"));
}

} // namespace
