// What an unfriendly POSIX tree holds: names Windows cannot have and the path grammar rejects,
// names that are not UTF-8, symbolic links, and failing system calls through the replaceable
// call table. None of it exists on Windows.
#if !defined(_WIN32)

#include "os/posix/fs_calls.hpp"
#include "support/temp_tree.hpp"

#include <velmor2/file_system.hpp>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <gtest/gtest.h>

namespace {

namespace fs = std::filesystem;
namespace os = velmor2::_internal::os;
using velmor2::path_t;
using velmor_test::temp_tree_t;

// Names legal on POSIX that no path can express as one component of a directory.
const char* const rejected_names[] = {"a:b",        "x|y",  "<",     ">", "q\"q",
                                      "\"quoted\"", "a\\b", " lead", "C:"};

TEST(hostile_names, removal_and_copy_report_false_and_never_delete_anything) {
    for (const char* name : rejected_names) {
        SCOPED_TRACE(name);
        temp_tree_t tree;
        tree.write(std::string("file/") + name);
        tree.write("dir/" + std::string(name) + "/inner");
        for (const char* dir : {"file", "dir"}) {
            EXPECT_FALSE(velmor2::remove_directory(tree.path(dir), true));
            EXPECT_FALSE(
                velmor2::copy_directory(tree.path(dir), tree.path(std::string("to_") + dir)));
        }
        EXPECT_TRUE(tree.has(std::string("file/") + name));
        EXPECT_TRUE(tree.has("dir/" + std::string(name) + "/inner"));
    }
}

TEST(hostile_names, find_skips_them_and_their_contents) {
    temp_tree_t tree;
    for (const char* name : rejected_names) {
        tree.write(std::string("root/") + name + ".xml");
        tree.write(std::string("root/") + name + "/inner.xml");
    }
    tree.write("root/good.xml");
    const std::vector<path_t> found = velmor2::find_files(tree.path("root"), L"*", true);
    ASSERT_EQ(found.size(), 1u);
    EXPECT_EQ(found[0].as_native_string(), tree.native("root/good.xml").wstring());
}

TEST(hostile_names, names_that_are_not_utf8_are_skipped_or_refused) {
    temp_tree_t tree;
    tree.write("root/\xff\xfe.xml");
    tree.write("root/ok.xml");
    EXPECT_EQ(velmor2::find_files(tree.path("root"), L"*.xml", true).size(), 1u);
    EXPECT_FALSE(velmor2::remove_directory(tree.path("root"), true));
    EXPECT_TRUE(tree.has("root/\xff\xfe.xml"));
}

class links_test : public ::testing::Test {
  protected:
    void SetUp() override {
        tree.write("outside/keep.xml", "outside");
        tree.write("target.xml", "target");
        tree.write("d/own.xml", "own");
        fs::create_directory_symlink(tree.native("outside"), tree.native("d/dirlink"));
        fs::create_symlink(tree.native("target.xml"), tree.native("d/filelink.xml"));
        fs::create_symlink(tree.native("nowhere"), tree.native("d/dangling.xml"));
    }
    temp_tree_t tree;
};

TEST_F(links_test, recursive_removal_removes_links_never_their_targets) {
    // A link to a directory given itself goes alone.
    EXPECT_TRUE(velmor2::remove_directory(tree.path("d/dirlink"), true));
    EXPECT_FALSE(tree.has("d/dirlink"));
    fs::create_directory_symlink(tree.native("outside"), tree.native("d/dirlink"));
    fs::permissions(tree.native("target.xml"), fs::perms::owner_read);
    EXPECT_TRUE(velmor2::remove_directory(tree.path("d"), true));
    EXPECT_FALSE(tree.has("d"));
    EXPECT_EQ(tree.read("outside/keep.xml"), "outside");
    EXPECT_EQ(tree.read("target.xml"), "target");
    // The link's target keeps its mode: resetting attributes never goes through a link.
    EXPECT_EQ(fs::status(tree.native("target.xml")).permissions(), fs::perms::owner_read);
}

TEST_F(links_test, find_lists_linked_files_and_never_enters_linked_directories) {
    std::vector<std::wstring> names;
    for (const path_t& found : velmor2::find_files(tree.path("d"), L"*.xml", true)) {
        names.push_back(found.get_leaf());
    }
    std::sort(names.begin(), names.end());
    EXPECT_EQ(names, (std::vector<std::wstring>{L"dangling.xml", L"filelink.xml", L"own.xml"}));
}

TEST_F(links_test, copy_copies_linked_files_skips_linked_directories_fails_on_dangling) {
    EXPECT_FALSE(velmor2::copy_directory(tree.path("d"), tree.path("copy")));
    fs::remove(tree.native("d/dangling.xml"));
    temp_tree_t target;
    EXPECT_TRUE(velmor2::copy_directory(tree.path("d"), target.path("copy")));
    EXPECT_EQ(target.read("copy/own.xml"), "own");
    EXPECT_EQ(target.read("copy/filelink.xml"), "target");
    EXPECT_FALSE(fs::is_symlink(target.native("copy/filelink.xml")));
    EXPECT_FALSE(target.has("copy/dirlink"));
}

// A call that fails with `error`, for any slot of the call table.
template <typename result_t, int error, typename... args_t> result_t failing(args_t...) {
    errno = error;
    return -1;
}

// Restores the real file-system calls after a test that replaced some.
class injected_failures : public ::testing::Test {
  protected:
    ~injected_failures() override { os::fs_calls() = saved_; }
    os::fs_calls_t& calls() { return os::fs_calls(); }
    temp_tree_t tree;

  private:
    os::fs_calls_t saved_ = os::fs_calls();
};

TEST_F(injected_failures, full_disk_during_copy_is_false_and_leaves_no_partial_file) {
    tree.write("src", std::string(300000, 'x'));
    calls().write = failing<ssize_t, ENOSPC>;
    EXPECT_FALSE(velmor2::copy_file(tree.path("src"), tree.path("dst")));
    EXPECT_FALSE(tree.has("dst"));
}

TEST_F(injected_failures, short_writes_are_completed) {
    std::string content;
    for (int i = 0; i < 50000; ++i) {
        content += static_cast<char>('a' + i % 26);
    }
    tree.write("src", content);
    calls().write = [](int fd, const void* data, size_t size) -> ssize_t {
        return os::real_fs_calls().write(fd, data, size < 7 ? size : 7);
    };
    EXPECT_TRUE(velmor2::copy_file(tree.path("src"), tree.path("dst")));
    EXPECT_EQ(tree.read("dst"), content);
}

TEST_F(injected_failures, refused_directory_creation_or_rename_is_false) {
    tree.make_dir("from");
    calls().mkdir = failing<int, EACCES>;
    calls().rename = failing<int, EXDEV>;
    EXPECT_FALSE(velmor2::create_directory(tree.path("a/b")));
    EXPECT_FALSE(tree.has("a"));
    EXPECT_FALSE(velmor2::rename_directory(tree.path("from"), tree.path("to")));
    EXPECT_TRUE(tree.has("from"));
}

TEST_F(injected_failures, failed_sub_directory_removal_is_reported_as_success) {
    for (const char* file : {"d/a.txt", "d/stuck/b.txt", "d/stuck/inner/c.txt"}) {
        tree.write(file);
    }
    calls().rmdir = [](const char* path) {
        if (std::strstr(path, "/stuck") != nullptr && std::strstr(path, "/inner") == nullptr) {
            errno = EBUSY;
            return -1;
        }
        return os::real_fs_calls().rmdir(path);
    };
    EXPECT_TRUE(velmor2::remove_directory(tree.path("d"), true));
    EXPECT_TRUE(tree.has("d/stuck"));
    EXPECT_FALSE(tree.has("d/stuck/inner") || tree.has("d/stuck/b.txt") || tree.has("d/a.txt"));
}

TEST_F(injected_failures, failed_file_delete_is_false_in_its_own_directory_only) {
    tree.write("d/a.txt");
    tree.write("e/sub/a.txt");
    calls().unlink = failing<int, EBUSY>;
    EXPECT_FALSE(velmor2::remove_directory(tree.path("d"), true));
    EXPECT_TRUE(tree.has("d/a.txt"));
    // One level down it is the failure of a sub-directory, reported upward as success.
    EXPECT_TRUE(velmor2::remove_directory(tree.path("e"), true));
    EXPECT_TRUE(tree.has("e/sub/a.txt"));
}

} // namespace

#endif
