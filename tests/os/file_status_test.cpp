// The operating-system layer against a real file system: the Win32 implementation under Wine,
// the POSIX one on Linux.
#include "os/file_status.hpp"
#include "support/temp_tree.hpp"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

namespace {

namespace fs = std::filesystem;
using namespace velmor2::_internal::os;
using velmor_test::temp_tree_t;

// The native text of the entry `relative` of the tree (the root for an empty text).
std::wstring text(const temp_tree_t& tree, const std::string& relative = {}) {
    return tree.native(relative).wstring();
}

// Makes the file `read_only.txt` that nobody may write; the tree restores the permission when
// it goes.
void make_read_only_file(const temp_tree_t& tree) {
    tree.write("read_only.txt");
    fs::permissions(tree.native("read_only.txt"),
                    fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write,
                    fs::perm_options::remove);
}

struct attributes_case_t {
    const char* name;
    std::string entry;
    bool found;
    bool directory;
    bool read_only;
    error_kind_t error;
};

TEST(os_attributes, of_files_directories_and_missing_entries) {
    temp_tree_t tree;
    tree.write("file.txt");
    make_read_only_file(tree);
    tree.make_dir("sub");
    const attributes_case_t cases[] = {
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
        ASSERT_EQ(get_attributes(text(tree, c.entry), attributes, error), c.found);
        EXPECT_EQ(error, c.error);
        if (c.found) {
            EXPECT_EQ(attributes.directory, c.directory);
            EXPECT_EQ(attributes.read_only, c.read_only);
        }
    }
}

TEST(os_attributes, hostile_names_fail_without_crashing) {
    const std::wstring names[] = {L"", std::wstring(40000, L'a'), std::wstring(L"a\0b", 3),
                                  L"\\\\?\\", L"\xD800"};
    for (const auto& name : names) {
        attributes_t attributes;
        error_kind_t error = error_kind_t::none;
        EXPECT_FALSE(get_attributes(name, attributes, error));
        EXPECT_NE(error, error_kind_t::none);
    }
}

TEST(os_write_access, follows_the_read_only_attribute) {
    temp_tree_t tree;
    tree.write("file.txt");
    make_read_only_file(tree);
    EXPECT_EQ(check_write_access(text(tree, "read_only.txt")), write_access_t::read_only);

    EXPECT_EQ(check_write_access(text(tree, "file.txt")), write_access_t::writable);
    EXPECT_EQ(check_write_access(text(tree)), write_access_t::writable);
}

TEST(os_write_access, of_a_missing_entry_is_unknown) {
    temp_tree_t tree;
    EXPECT_EQ(check_write_access(text(tree, "missing.txt")), write_access_t::unknown);
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
