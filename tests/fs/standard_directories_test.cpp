// Standard directories on every platform: the per-user folder and its levels, modules found by
// address, and the working directory.
#include "support/temp_tree.hpp"
#include "support/user_config_root.hpp"
#include "support/working_dir_guard.hpp"

#include <velmor2/standard_directories.hpp>

#include <cwchar>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>

namespace {

namespace fs = std::filesystem;
using velmor2::path_t;
using velmor_test::temp_tree_t;
using velmor_test::user_config_root_t;
using velmor_test::working_dir_guard_t;
namespace stdpaths = velmor2::stdpaths;

std::wstring native(const path_t& path) {
    return path.as_native_string();
}

std::wstring wide(const std::string& utf8) {
    return fs::u8path(utf8).wstring();
}

TEST(user_config_dir, creates_every_level_of_the_name_and_finds_it_again) {
    temp_tree_t tree;
    user_config_root_t config(tree);
    const std::string company = user_config_root_t::unique_name();
    config.remove_afterwards(company);

    EXPECT_EQ(native(stdpaths::get_user_config_dir(L"")), config.native().wstring());
    EXPECT_TRUE(fs::is_directory(config.native()));
    const path_t joined = stdpaths::get_user_config_dir(wide(company) + L"\\Editor");
    EXPECT_EQ(native(joined), config.native(company + "/Editor").wstring());
    EXPECT_TRUE(fs::is_directory(config.native(company + "/Editor")));
    // Asking again finds it there, whichever separator the name uses.
    EXPECT_EQ(stdpaths::get_user_config_dir(wide(company) + L"/Editor"), joined);
}

TEST(user_config_dir, names_that_are_not_relative_paths_fail) {
    temp_tree_t tree;
    const user_config_root_t config(tree);
    for (const wchar_t* name : {L"a|b", L"/etc/x", L"C:\\x", L"\\\\server\\share\\x"}) {
        SCOPED_TRACE(std::string(name, name + wcslen(name)));
        EXPECT_TRUE(stdpaths::get_user_config_dir(name).is_empty());
    }
}

TEST(user_config_dir, folder_blocked_by_a_file_gives_the_empty_path) {
    temp_tree_t tree;
    user_config_root_t config(tree);
    const std::string blocker = user_config_root_t::unique_name();
    config.remove_afterwards(blocker);
    ASSERT_FALSE(stdpaths::get_user_config_dir(L"").is_empty());
    std::ofstream(config.native(blocker)) << "x";
    ASSERT_TRUE(fs::is_regular_file(config.native(blocker)));
    EXPECT_TRUE(stdpaths::get_user_config_dir(wide(blocker) + L"\\x").is_empty());
    EXPECT_FALSE(fs::exists(config.native(blocker + "/x")));
}

TEST(module_dir, of_this_code_is_the_executable_dir_and_of_no_module_is_empty) {
    const path_t exe = stdpaths::get_executable_dir();
    ASSERT_FALSE(exe.is_empty());
    EXPECT_TRUE(exe.is_directory());
    // This test links the library statically: its code lies in the executable.
    EXPECT_EQ(stdpaths::get_module_dir(reinterpret_cast<const void*>(&stdpaths::get_temp_dir)),
              exe);
    EXPECT_TRUE(stdpaths::get_module_dir(nullptr).is_empty());
    EXPECT_TRUE(stdpaths::get_module_dir(reinterpret_cast<const void*>(16)).is_empty());
    int on_stack = 0;
    EXPECT_TRUE(stdpaths::get_module_dir(&on_stack).is_empty());
}

TEST(working_dir, set_and_read_back_and_unchanged_by_a_refusal) {
    temp_tree_t tree;
    // Declared after the tree: Windows removes no directory that is a working directory.
    const working_dir_guard_t guard;
    tree.make_dir("a dir/sub");
    tree.write("file");
    ASSERT_TRUE(stdpaths::set_working_dir(tree.path("a dir/sub")));
    EXPECT_EQ(stdpaths::get_working_dir(), path_t(fs::current_path().wstring()));
    EXPECT_TRUE(fs::equivalent(fs::current_path(), tree.native("a dir/sub")));
    for (const path_t& refused : {tree.path("missing"), tree.path("file"), path_t()}) {
        SCOPED_TRACE(refused.as_native_string());
        EXPECT_FALSE(stdpaths::set_working_dir(refused));
    }
    EXPECT_TRUE(fs::equivalent(fs::current_path(), tree.native("a dir/sub")));
}

TEST(working_dir, set_and_read_back_beyond_260_characters) {
    temp_tree_t tree;
    const working_dir_guard_t guard;
    std::string deep = "d";
    while (tree.native(deep).wstring().size() < 400) {
        deep += "/directory";
    }
    tree.make_dir(deep);
    ASSERT_TRUE(stdpaths::set_working_dir(tree.path(deep)));
    // The root resolved (POSIX temporary folders may lie behind a link); the standard library
    // itself cannot be asked, MinGW's current_path garbles a directory this long.
    path_t expected(fs::canonical(tree.native()).wstring());
    ASSERT_TRUE(expected.append(path_t(wide(deep))));
    EXPECT_EQ(stdpaths::get_working_dir().as_string(), expected.as_string());
}

} // namespace
