// The directory and file calls of the operating-system layer against a real file system: what
// the algorithms above rely on, whichever platform answers.
#include "os/fs.hpp"
#include "support/temp_tree.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;
namespace os = velmor2::_internal::os;
using velmor_test::temp_tree_t;

std::wstring text(const temp_tree_t& tree, const std::string& relative) {
    return tree.path(relative).as_native_string();
}

TEST(os_create_directory, tells_an_existing_entry_from_a_missing_parent) {
    temp_tree_t tree;
    tree.write("file");
    struct case_t {
        const char* target;
        bool made;
        std::vector<os::error_kind_t> errors; // any of them
    };
    const case_t cases[] = {
        {"new", true, {os::error_kind_t::none}},
        {"new", false, {os::error_kind_t::already_exists}},
        {"file", false, {os::error_kind_t::already_exists}},
        {"missing/new", false, {os::error_kind_t::not_found, os::error_kind_t::path_not_found}},
    };
    for (const case_t& c : cases) {
        SCOPED_TRACE(c.target);
        os::error_kind_t error = os::error_kind_t::other;
        EXPECT_EQ(os::create_directory(text(tree, c.target), error), c.made);
        EXPECT_NE(std::find(c.errors.begin(), c.errors.end(), error), c.errors.end());
    }
    EXPECT_TRUE(fs::is_directory(tree.native("new")));
}

TEST(os_directory_search, yields_the_dot_entries_and_tells_directories_from_files) {
    temp_tree_t tree;
    tree.write("d/file.txt");
    tree.make_dir("d/sub");
    os::directory_search_t search(text(tree, "d"));
    ASSERT_TRUE(search.is_open());
    std::vector<std::pair<std::wstring, os::entry_type_t>> entries;
    os::directory_entry_t entry;
    while (search.next(entry)) {
        entries.emplace_back(entry.name, entry.type);
    }
    std::sort(entries.begin(), entries.end());
    const std::vector<std::pair<std::wstring, os::entry_type_t>> expected = {
        {L".", os::entry_type_t::directory},
        {L"..", os::entry_type_t::directory},
        {L"file.txt", os::entry_type_t::file},
        {L"sub", os::entry_type_t::directory},
    };
    EXPECT_EQ(entries, expected);
    EXPECT_FALSE(search.next(entry));

    EXPECT_FALSE(os::directory_search_t(text(tree, "missing")).is_open());
}

TEST(os_files, read_only_refuses_deletion_until_reset) {
    temp_tree_t tree;
    tree.write("ro");
    fs::permissions(tree.native("ro"), fs::perms::owner_read);
    EXPECT_FALSE(os::is_link(text(tree, "ro")));
    EXPECT_FALSE(os::delete_file(text(tree, "ro")));
    EXPECT_TRUE(tree.has("ro"));
    EXPECT_TRUE(os::reset_attributes(text(tree, "ro")));
    EXPECT_TRUE(os::delete_file(text(tree, "ro")));
    EXPECT_FALSE(tree.has("ro"));
}

TEST(os_files, copy_and_move_never_replace_a_target) {
    temp_tree_t tree;
    tree.write("a", "a");
    tree.write("b", "b");
    EXPECT_FALSE(os::copy_file(text(tree, "a"), text(tree, "b")));
    EXPECT_FALSE(os::move_entry(text(tree, "a"), text(tree, "b")));
    EXPECT_EQ(tree.read("b"), "b");
    EXPECT_TRUE(os::copy_file(text(tree, "a"), text(tree, "c")));
    EXPECT_TRUE(os::move_entry(text(tree, "c"), text(tree, "d")));
    EXPECT_EQ(tree.read("d"), "a");
    EXPECT_FALSE(tree.has("c"));
    EXPECT_FALSE(os::copy_file(text(tree, "missing"), text(tree, "e")));
    EXPECT_FALSE(tree.has("e"));
}

} // namespace
