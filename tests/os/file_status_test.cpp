// The operating-system layer against a real file system: the Win32 implementation under Wine,
// the POSIX one on Linux.
#include "os/file_status.hpp"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <random>
#include <string>

namespace {

namespace fs = std::filesystem;
using namespace velmor2::_internal::os;

// A fresh directory per test, removed with everything in it.
class temp_dir_t {
  public:
    temp_dir_t() {
        std::random_device random;
        path_ = fs::temp_directory_path() / ("velmor_os_" + std::to_string(random()));
        fs::create_directories(path_);
    }
    ~temp_dir_t() {
        std::error_code ignored;
        fs::permissions(path_ / "read_only.txt", fs::perms::owner_write, fs::perm_options::add,
                        ignored);
        fs::remove_all(path_, ignored);
    }
    temp_dir_t(const temp_dir_t&) = delete;
    temp_dir_t& operator=(const temp_dir_t&) = delete;

    // The native text of an entry in the directory.
    std::wstring text(const std::string& name = {}) const {
        return (name.empty() ? path_ : path_ / name).wstring();
    }
    void make_file(const std::string& name) const { std::ofstream(path_ / name) << "x"; }
    void make_read_only_file() const {
        make_file("read_only.txt");
        fs::permissions(path_ / "read_only.txt",
                        fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write,
                        fs::perm_options::remove);
    }

  private:
    fs::path path_;
};

struct attributes_case_t {
    const char* name;
    std::string entry;
    bool found;
    bool directory;
    bool read_only;
    error_kind_t error;
};

TEST(os_attributes, of_files_directories_and_missing_entries) {
    temp_dir_t dir;
    dir.make_file("file.txt");
    dir.make_read_only_file();
    fs::create_directory(dir.text("sub"));
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
        const std::wstring text =
            (fs::path(dir.text()) / fs::path(c.entry)).make_preferred().wstring();
        ASSERT_EQ(get_attributes(text, attributes, error), c.found);
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
    temp_dir_t dir;
    dir.make_file("file.txt");
    dir.make_read_only_file();
    EXPECT_EQ(check_write_access(dir.text("read_only.txt")), write_access_t::read_only);

    EXPECT_EQ(check_write_access(dir.text("file.txt")), write_access_t::writable);
    EXPECT_EQ(check_write_access(dir.text()), write_access_t::writable);
}

TEST(os_write_access, of_a_missing_entry_is_unknown) {
    temp_dir_t dir;
    EXPECT_EQ(check_write_access(dir.text("missing.txt")), write_access_t::unknown);
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
