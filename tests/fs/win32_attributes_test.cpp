// The Windows file attributes the operations meet: read-only, hidden and system flags.
#if defined(_WIN32)

#include "support/temp_tree.hpp"

#include <velmor2/file_system.hpp>

#include <gtest/gtest.h>
#include <string>
#include <windows.h>

namespace {

using velmor_test::temp_tree_t;

DWORD attributes_of(const temp_tree_t& tree, const std::string& relative) {
    return GetFileAttributesW(tree.native(relative).c_str());
}

void set_attributes(const temp_tree_t& tree, const std::string& relative, DWORD attributes) {
    ASSERT_TRUE(SetFileAttributesW(tree.native(relative).c_str(), attributes)) << relative;
}

TEST(win32_attributes, remove_file_refuses_read_only_but_takes_hidden_and_system_files) {
    temp_tree_t tree;
    tree.write("ro.txt");
    tree.write("hidden.txt");
    tree.write("system.txt");
    set_attributes(tree, "ro.txt", FILE_ATTRIBUTE_READONLY);
    set_attributes(tree, "hidden.txt", FILE_ATTRIBUTE_HIDDEN);
    set_attributes(tree, "system.txt", FILE_ATTRIBUTE_SYSTEM);

    EXPECT_FALSE(velmor2::remove_file(tree.path("ro.txt")));
    EXPECT_TRUE(tree.has("ro.txt"));
    EXPECT_NE(attributes_of(tree, "ro.txt") & FILE_ATTRIBUTE_READONLY, 0u);
    EXPECT_TRUE(velmor2::remove_file(tree.path("hidden.txt")));
    EXPECT_TRUE(velmor2::remove_file(tree.path("system.txt")));
    EXPECT_FALSE(tree.has("hidden.txt") || tree.has("system.txt"));
}

TEST(win32_attributes, recursive_removal_clears_every_flag_on_the_way) {
    temp_tree_t tree;
    tree.write("d/ro.txt");
    tree.write("d/sub/all.txt");
    tree.make_dir("d/ro_dir");
    set_attributes(tree, "d/ro.txt", FILE_ATTRIBUTE_READONLY);
    set_attributes(tree, "d/sub/all.txt",
                   FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM);
    set_attributes(tree, "d/ro_dir", FILE_ATTRIBUTE_READONLY);
    set_attributes(tree, "d", FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN);
    EXPECT_TRUE(velmor2::remove_directory(tree.path("d"), true));
    EXPECT_FALSE(tree.has("d"));
}

TEST(win32_attributes, copies_keep_the_flags_and_hidden_files_are_listed) {
    temp_tree_t tree;
    tree.write("from/ro.txt", "r");
    tree.write("from/hidden.txt", "h");
    set_attributes(tree, "from/ro.txt", FILE_ATTRIBUTE_READONLY);
    set_attributes(tree, "from/hidden.txt", FILE_ATTRIBUTE_HIDDEN);
    EXPECT_EQ(velmor2::find_files(tree.path("from"), L"*.txt", false).size(), 2u);

    ASSERT_TRUE(velmor2::copy_directory(tree.path("from"), tree.path("to")));
    EXPECT_EQ(tree.read("to/ro.txt"), "r");
    EXPECT_NE(attributes_of(tree, "to/ro.txt") & FILE_ATTRIBUTE_READONLY, 0u);
    EXPECT_NE(attributes_of(tree, "to/hidden.txt") & FILE_ATTRIBUTE_HIDDEN, 0u);
    // The copy of a read-only file is itself refused by remove_file, and goes with its tree.
    EXPECT_FALSE(velmor2::remove_file(tree.path("to/ro.txt")));
    EXPECT_TRUE(velmor2::remove_directory(tree.path("to"), true));
    EXPECT_FALSE(tree.has("to"));
    // A rename carries a read-only directory.
    set_attributes(tree, "from", FILE_ATTRIBUTE_READONLY);
    EXPECT_TRUE(velmor2::rename_directory(tree.path("from"), tree.path("moved")));
    EXPECT_EQ(tree.read("moved/ro.txt"), "r");
    EXPECT_FALSE(tree.has("from"));
}

} // namespace

#endif
