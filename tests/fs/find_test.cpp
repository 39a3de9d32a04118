// find_files on real trees: search order, recursion, and agreement with path_t::match.
#include "support/temp_tree.hpp"

#include <velmor2/file_system.hpp>

#include <algorithm>
#include <filesystem>
#include <gtest/gtest.h>

namespace {

namespace fs = std::filesystem;
using velmor2::path_t;
using velmor_test::temp_tree_t;

std::vector<std::wstring> native_texts(const std::vector<path_t>& paths) {
    std::vector<std::wstring> out;
    for (const path_t& path : paths) {
        out.push_back(path.as_native_string());
    }
    return out;
}

// What the search must give: entries in directory order, a sub-directory's matches where it
// was met. std::filesystem reads the same directory in the same order.
void expected_walk(const fs::path& dir, const std::wstring& suffix, bool recursive,
                   std::vector<std::wstring>& out) {
    for (const fs::directory_entry& entry : fs::directory_iterator(dir)) {
        if (entry.is_directory()) {
            if (recursive) {
                expected_walk(entry.path(), suffix, recursive, out);
            }
            continue;
        }
        const std::wstring name = entry.path().filename().wstring();
        if (name.size() >= suffix.size() &&
            name.compare(name.size() - suffix.size(), suffix.size(), suffix) == 0) {
            out.push_back(entry.path().wstring());
        }
    }
}

class find_files_test : public ::testing::Test {
  protected:
    void SetUp() override {
        for (const char* file :
             {"a.xml", "b.txt", "c.xml", "sub/d.xml", "sub/e.txt", "sub/deep/f.xml", "other/g.xml",
              "other/h.XML", "dir.xml/i.txt", "z.xml"}) {
            tree.write(std::string("root/") + file);
        }
    }
    temp_tree_t tree;
};

TEST_F(find_files_test, search_is_depth_first_in_directory_order) {
    for (const bool recursive : {true, false}) {
        SCOPED_TRACE(recursive);
        std::vector<std::wstring> expected;
        expected_walk(tree.native("root"), L".xml", recursive, expected);
        ASSERT_EQ(expected.size(), recursive ? 6u : 3u);
        EXPECT_EQ(native_texts(velmor2::find_files(tree.path("root"), L"*.xml", recursive)),
                  expected);
    }
    // A missing directory or a file gives nothing.
    EXPECT_TRUE(velmor2::find_files(tree.path("missing"), L"*", true).empty());
    EXPECT_TRUE(velmor2::find_files(tree.path("root/a.xml"), L"*", true).empty());
}

TEST_F(find_files_test, pattern_forms) {
    struct case_t {
        const wchar_t* pattern;
        bool recursive;
        std::size_t count;
    };
    const case_t cases[] = {
        {L"*.xml", true, 6},
        {L"*.XML", true, 1},
        {L"?.xml", false, 3},
        {L"*", false, 4},
        {L"sub\\*.xml", false, 0},
        {L"*.none", true, 0},
        {L"", true, 0},
        // The pattern is joined to each directory searched: a folder in it is looked for below
        // every directory, and the files of `sub` itself are met with `sub\sub\*`.
        {L"sub\\*", true, 0},
    };
    for (const case_t& c : cases) {
        SCOPED_TRACE(testing::Message() << std::string(c.pattern, c.pattern + wcslen(c.pattern))
                                        << (c.recursive ? " recursive" : ""));
        EXPECT_EQ(velmor2::find_files(tree.path("root"), c.pattern, c.recursive).size(), c.count);
    }
}

TEST(find_files, the_long_path_prefix_never_decides_a_match) {
    temp_tree_t tree;
    // Entry paths on both sides of the length at which a drive path is printed with the prefix.
    std::string deep = "root";
    while (tree.native(deep).wstring().size() < 228) {
        deep += "/d";
    }
    std::vector<std::wstring> names;
    for (std::size_t length = 1; length < 40; length += 3) {
        names.push_back(std::wstring(length, L'n') + L".txt");
        tree.write(deep + "/" + fs::path(names.back()).u8string());
    }
    const std::vector<path_t> found = velmor2::find_files(tree.path("root"), L"*.txt", true);
    EXPECT_EQ(found.size(), names.size());
    for (const path_t& file : found) {
        EXPECT_EQ(path_t(file.as_string()), file) << file.as_string().size();
        path_t pattern(file.get_branch());
        pattern.append(path_t(L"*.txt"));
        EXPECT_TRUE(velmor2::match_pattern(pattern, file)) << file.as_string().size();
        // The pattern comes first.
        EXPECT_FALSE(velmor2::match_pattern(file, pattern)) << file.as_string().size();
    }
}

} // namespace
