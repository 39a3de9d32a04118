// Standard directories: the per-user folder and its levels, modules found by address, the
// working directory; on POSIX under a controlled environment (XDG variables, HOME, TMPDIR,
// /proc, the dynamic loader's modules), on Windows the shell folders and TMP.
#include "support/scoped_env.hpp"
#include "support/temp_tree.hpp"
#include "support/user_config_root.hpp"
#include "support/working_dir_guard.hpp"

#include <velmor2/file_system.hpp>
#include <velmor2/standard_directories.hpp>

#include <cwchar>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <optional>
#include <string>

namespace {

namespace fs = std::filesystem;
using velmor2::path_t;
using velmor_test::scoped_env_t;
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

TEST(user_config_dir, creates_every_level_of_the_name_and_finds_it_again_and_refuses_others) {
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

    // Names that are not relative paths fail, and so does a folder blocked by a file.
    for (const wchar_t* name : {L"a|b", L"/etc/x", L"C:\\x", L"\\\\server\\share\\x"}) {
        SCOPED_TRACE(std::string(name, name + wcslen(name)));
        EXPECT_TRUE(stdpaths::get_user_config_dir(name).is_empty());
    }
    const std::string blocker = user_config_root_t::unique_name();
    config.remove_afterwards(blocker);
    std::ofstream(config.native(blocker)) << "x";
    ASSERT_TRUE(fs::is_regular_file(config.native(blocker)));
    EXPECT_TRUE(stdpaths::get_user_config_dir(wide(blocker) + L"\\x").is_empty());
    EXPECT_FALSE(fs::exists(config.native(blocker + "/x")));
}

void code_of_this_program() {}

TEST(module_dir, of_the_program_and_of_the_shared_library_and_of_no_module) {
    const path_t exe = stdpaths::get_executable_dir();
    ASSERT_FALSE(exe.is_empty());
    EXPECT_TRUE(exe.is_directory());
    EXPECT_EQ(stdpaths::get_module_dir(reinterpret_cast<const void*>(&code_of_this_program)), exe);
    // The library's code lies in the shared library, whose folder holds its file.
    const path_t library =
        stdpaths::get_module_dir(reinterpret_cast<const void*>(&stdpaths::get_temp_dir));
    EXPECT_FALSE(velmor2::find_files(library, L"*velmor_core*", false).empty());
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

    // Beyond 260 characters.
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

#if !defined(_WIN32)

TEST(user_and_shared_config_dir, home_dot_config_otherwise_xdg_config_dirs_else_etc_xdg) {
    temp_tree_t tree;
    for (const char* xdg : {"", "relative/cfg"}) {
        SCOPED_TRACE(xdg);
        const scoped_env_t config("XDG_CONFIG_HOME", std::string(xdg));
        const scoped_env_t home("HOME", tree.native("home").string());
        EXPECT_EQ(native(stdpaths::get_user_config_dir(L"p")),
                  tree.native("home/.config/p").wstring());
    }

    // The shared folder: the first absolute entry of XDG_CONFIG_DIRS, else /etc/xdg.
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

TEST(temp_and_executable_dir, tmpdir_resolved_and_created_and_this_program) {
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

    // The folder of this program (a library's is tested on every system).
    EXPECT_EQ(native(stdpaths::get_executable_dir()),
              fs::canonical("/proc/self/exe").parent_path().wstring());
}

#else

TEST(shell_folders, are_existing_absolute_directories) {
    struct case_t {
        const char* name;
        path_t folder;
    };
    const case_t cases[] = {
        {"documents", stdpaths::get_documents_dir()},
        {"user config", stdpaths::get_user_config_dir(L"")},
        {"shared config", stdpaths::get_shared_config_dir(L"")},
    };
    for (const case_t& c : cases) {
        SCOPED_TRACE(c.name);
        ASSERT_FALSE(c.folder.is_empty());
        EXPECT_TRUE(c.folder.is_absolute());
        EXPECT_TRUE(fs::is_directory(c.folder.as_string()));
    }
    EXPECT_NE(cases[1].folder, cases[2].folder);
}

// The short 8.3 form of an existing entry, or empty when the volume keeps none.
std::wstring short_form(const fs::path& path) {
    wchar_t buffer[MAX_PATH] = {};
    const DWORD length = GetShortPathNameW(path.c_str(), buffer, MAX_PATH);
    return length > 0 && length < MAX_PATH ? std::wstring(buffer, length) : std::wstring();
}

TEST(temp_dir, follows_tmp_in_its_long_form_and_is_created) {
    temp_tree_t tree;
    tree.make_dir("A Long Temporary Folder Name");
    const std::wstring short_name = short_form(tree.native("A Long Temporary Folder Name"));
    ASSERT_FALSE(short_name.empty());
    ASSERT_NE(short_name, tree.native("A Long Temporary Folder Name").wstring());
    {
        const scoped_env_t tmp("TMP", fs::path(short_name).u8string());
        EXPECT_EQ(stdpaths::get_temp_dir().as_string(),
                  tree.path("A Long Temporary Folder Name").as_string());
    }
    {
        const scoped_env_t tmp("TMP", tree.native("new\\tmp").u8string());
        EXPECT_EQ(stdpaths::get_temp_dir(), tree.path("new/tmp"));
        EXPECT_TRUE(fs::is_directory(tree.native("new/tmp")));
    }
}

TEST(executable_and_module_dir, name_this_program_and_the_system_directory) {
    const path_t exe = stdpaths::get_executable_dir();
    ASSERT_FALSE(exe.is_empty());
    EXPECT_TRUE(fs::is_regular_file(fs::path(exe.as_string()) / "velmor_fs_tests.exe"));

    wchar_t system[MAX_PATH] = {};
    ASSERT_GT(GetSystemDirectoryW(system, MAX_PATH), 0u);
    const void* in_kernel32 = reinterpret_cast<const void*>(
        GetProcAddress(GetModuleHandleW(L"kernel32.dll"), "GetTickCount"));
    ASSERT_NE(in_kernel32, nullptr);
    EXPECT_EQ(stdpaths::get_module_dir(in_kernel32), path_t(system));
}

// Unloads a module at the end of a test.
struct module_t {
    HMODULE handle;
    ~module_t() {
        if (handle != nullptr) {
            FreeLibrary(handle);
        }
    }
};

TEST(executable_and_module_dir, module_with_a_long_name_gives_the_whole_directory) {
    temp_tree_t tree;
    // Well past the 64 characters the name lookup starts with, and past twice that.
    const std::string folder =
        "a folder whose name is long enough to need several buffers/" + std::string(100, 'm');
    tree.make_dir(folder);
    const fs::path copy = tree.native(folder + "/copy.exe");
    fs::copy_file(fs::path(stdpaths::get_executable_dir().as_string()) / "velmor_fs_tests.exe",
                  copy);
    const module_t module{LoadLibraryW(copy.c_str())};
    ASSERT_NE(module.handle, nullptr) << GetLastError();
    const path_t dir = stdpaths::get_module_dir(reinterpret_cast<const void*>(module.handle));
    EXPECT_EQ(dir.as_string(), tree.path(folder).as_string());
    EXPECT_NE(dir, stdpaths::get_executable_dir());
}

#endif

} // namespace
