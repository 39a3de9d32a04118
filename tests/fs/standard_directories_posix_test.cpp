// The POSIX standard directories under a controlled environment: XDG variables, HOME and
// TMPDIR, /proc and the dynamic loader's modules.
#if !defined(_WIN32)

#include "support/scoped_env.hpp"
#include "support/temp_tree.hpp"

#include <velmor2/standard_directories.hpp>

#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>
#include <optional>
#include <string>

namespace {

namespace fs = std::filesystem;
using velmor2::path_t;
using velmor_test::scoped_env_t;
using velmor_test::temp_tree_t;
namespace stdpaths = velmor2::stdpaths;

std::wstring native(const path_t& path) {
    return path.as_native_string();
}

TEST(user_config_dir, home_dot_config_otherwise) {
    temp_tree_t tree;
    for (const char* xdg : {"", "relative/cfg"}) {
        SCOPED_TRACE(xdg);
        const scoped_env_t config("XDG_CONFIG_HOME", std::string(xdg));
        const scoped_env_t home("HOME", tree.native("home").string());
        EXPECT_EQ(native(stdpaths::get_user_config_dir(L"p")),
                  tree.native("home/.config/p").wstring());
    }
}

TEST(shared_config_dir, first_absolute_entry_of_xdg_config_dirs_else_etc_xdg) {
    temp_tree_t tree;
    {
        const scoped_env_t dirs("XDG_CONFIG_DIRS", "relative:" + tree.native("first").string() +
                                                       ":" + tree.native("second").string());
        EXPECT_EQ(native(stdpaths::get_shared_config_dir(L"Norvane")),
                  tree.native("first/Norvane").wstring());
        EXPECT_FALSE(tree.has("second"));
    }
    const scoped_env_t unset("XDG_CONFIG_DIRS", std::nullopt);
    if (!fs::is_directory("/etc/xdg")) {
        GTEST_SKIP() << "no /etc/xdg here";
    }
    EXPECT_EQ(native(stdpaths::get_shared_config_dir(L"")), L"/etc/xdg");
}

TEST(documents_dir, user_dirs_file_then_home_documents) {
    temp_tree_t tree;
    const scoped_env_t config("XDG_CONFIG_HOME", tree.native("cfg").string());
    const scoped_env_t home("HOME", tree.native("home").string());
    struct case_t {
        const char* name;
        std::optional<std::string> user_dirs; // no file for none
        const char* expected;                 // under the tree
    };
    const case_t cases[] = {
        {"no file", std::nullopt, "home/Documents"},
        {"absolute", "XDG_DOCUMENTS_DIR=\"" + tree.native("docs").string() + "\"\n", "docs"},
        {"home relative", "# comment\nXDG_DOCUMENTS_DIR=\"$HOME/Papers\"\n", "home/Papers"},
        {"escaped quote", "XDG_DOCUMENTS_DIR=\"$HOME/My \\\"Docs\\\"\"\n", "home/My \"Docs\""},
        {"disabled", "XDG_DOCUMENTS_DIR=\"$HOME/\"\n", "home/Documents"},
        {"unterminated", "XDG_DOCUMENTS_DIR=\"$HOME/x\n", "home/Documents"},
        {"relative", "XDG_DOCUMENTS_DIR=\"Papers\"\n", "home/Documents"},
        {"other keys only", "XDG_MUSIC_DIR=\"$HOME/Music\"\n", "home/Documents"},
    };
    for (const case_t& c : cases) {
        SCOPED_TRACE(c.name);
        fs::remove_all(tree.native("cfg"));
        if (c.user_dirs) {
            tree.write("cfg/user-dirs.dirs", *c.user_dirs);
        }
        const path_t documents = stdpaths::get_documents_dir();
        if (std::string(c.expected).find('"') != std::string::npos) {
            // The path grammar has no room for quotes: the folder cannot be a path.
            EXPECT_TRUE(documents.is_empty());
            continue;
        }
        EXPECT_EQ(native(documents), tree.native(c.expected).wstring());
        EXPECT_TRUE(fs::is_directory(tree.native(c.expected)));
    }
}

TEST(home, falls_back_to_the_password_database) {
    const scoped_env_t config("XDG_CONFIG_HOME", std::nullopt);
    const scoped_env_t home("HOME", std::nullopt);
    const path_t dir = stdpaths::get_user_config_dir(L"");
    if (dir.is_empty()) {
        GTEST_SKIP() << "no usable password entry for this user";
    }
    EXPECT_EQ(dir.get_leaf(), L".config");
}

TEST(temp_dir, tmpdir_when_absolute_resolved_and_created) {
    temp_tree_t tree;
    fs::create_directory_symlink(tree.native(), tree.native("link"));
    struct case_t {
        const char* name;
        std::optional<std::string> tmpdir;
        std::wstring expected;
    };
    const case_t cases[] = {
        {"resolved through a link", tree.native("link").string(),
         fs::canonical(tree.native()).wstring()},
        {"created when missing", tree.native("new/tmp").string(), tree.native("new/tmp").wstring()},
        {"relative ignored", std::string("relative"), fs::canonical("/tmp").wstring()},
        {"unset", std::nullopt, fs::canonical("/tmp").wstring()},
    };
    for (const case_t& c : cases) {
        SCOPED_TRACE(c.name);
        const scoped_env_t tmpdir("TMPDIR", c.tmpdir);
        EXPECT_EQ(native(stdpaths::get_temp_dir()), c.expected);
    }
    EXPECT_TRUE(fs::is_directory(tree.native("new/tmp")));
}

TEST(executable_and_module_dir, name_this_program_and_a_shared_library) {
    const path_t exe = stdpaths::get_executable_dir();
    ASSERT_FALSE(exe.is_empty());
    EXPECT_EQ(native(exe), fs::canonical("/proc/self/exe").parent_path().wstring());
    const path_t libc = stdpaths::get_module_dir(reinterpret_cast<const void*>(&std::abort));
    ASSERT_FALSE(libc.is_empty());
    EXPECT_NE(libc, exe);
    EXPECT_TRUE(libc.is_directory());
}

} // namespace

#endif
