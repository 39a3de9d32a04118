// The Windows standard directories: shell folders, the temporary directory as TMP names it,
// and modules of the system.
#if defined(_WIN32)

#include "support/scoped_env.hpp"
#include "support/temp_tree.hpp"

#include <velmor2/standard_directories.hpp>

#include <filesystem>
#include <gtest/gtest.h>
#include <windows.h>

namespace {

namespace fs = std::filesystem;
using velmor2::path_t;
using velmor_test::scoped_env_t;
using velmor_test::temp_tree_t;
namespace stdpaths = velmor2::stdpaths;

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

} // namespace

#endif
