// What the operating-system layer says about an entry, where the error kind matters to the
// callers: the Win32 implementation under Wine, the POSIX one on Linux.
#include "os/file_status.hpp"
#include "support/temp_tree.hpp"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

namespace {

namespace fs = std::filesystem;
using namespace velmor2::_internal::os;
using velmor_test::temp_tree_t;

TEST(os_attributes, of_files_directories_and_missing_entries_hostile_names_fail) {
    temp_tree_t tree;
    tree.write("file.txt");
    tree.write("read_only.txt");
    fs::permissions(tree.native("read_only.txt"),
                    fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write,
                    fs::perm_options::remove);
    tree.make_dir("sub");
    struct case_t {
        const char* name;
        std::string entry;
        bool found;
        bool directory;
        bool read_only;
        error_kind_t error;
    };
    const case_t cases[] = {
        {"directory", "sub", true, true, false, error_kind_t::none},
        {"file", "file.txt", true, false, false, error_kind_t::none},
        {"read-only file", "read_only.txt", true, false, true, error_kind_t::none},
        {"missing entry", "missing.txt", false, false, false, error_kind_t::not_found},
        {"through a file", "file.txt/child", false, false, false, error_kind_t::path_not_found},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        attributes_t attributes;
        attributes.directory = !c.directory;
        error_kind_t error = error_kind_t::other;
        ASSERT_EQ(get_attributes(tree.native(c.entry).wstring(), attributes, error), c.found);
        EXPECT_EQ(error, c.error);
        if (c.found) {
            EXPECT_EQ(attributes.directory, c.directory);
            EXPECT_EQ(attributes.read_only, c.read_only);
        }
    }

    // Hostile names fail without crashing.
    const std::wstring names[] = {L"", std::wstring(40000, L'a'), std::wstring(L"a\0b", 3),
                                  L"\\\\?\\", L"\xD800"};
    for (const auto& name : names) {
        attributes_t attributes;
        error_kind_t error = error_kind_t::none;
        EXPECT_FALSE(get_attributes(name, attributes, error));
        EXPECT_NE(error, error_kind_t::none);
    }
}

TEST(os_drives, exist_only_on_windows) {
#if defined(_WIN32)
    const wchar_t system_drive = fs::temp_directory_path().wstring().at(0);
    EXPECT_TRUE(drive_has_root(system_drive));
    EXPECT_FALSE(is_cdrom_drive(system_drive));
    EXPECT_EQ(native_text(L"C:\\a\\b"), L"C:\\a\\b");
#else
    EXPECT_FALSE(drive_has_root(L'C'));
    EXPECT_FALSE(is_cdrom_drive(L'C'));
    EXPECT_EQ(native_text(L"\\\\?\\C:\\a\\b"), L"C:/a/b");
#endif
}

} // namespace
