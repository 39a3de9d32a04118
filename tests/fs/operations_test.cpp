// Creating, removing, renaming and copying files and directories in a real temporary tree.
#include "support/temp_tree.hpp"

#include <velmor2/file_system.hpp>

#include <filesystem>
#include <gtest/gtest.h>
#include <string>

#if defined(_WIN32)
#include <windows.h>
#else
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace {

namespace fs = std::filesystem;
using velmor2::path_t;
using velmor_test::temp_tree_t;

// Why a directory cannot be made unreadable to this process; empty when it can.
std::string unreadable_directory_unavailable() {
#if defined(_WIN32)
    return "only an access-control list makes a directory unreadable, and Wine does not enforce "
           "one";
#else
    return ::geteuid() == 0 ? "root reads every directory" : "";
#endif
}

TEST(create_directory, makes_every_missing_level_and_accepts_what_exists) {
    struct case_t {
        const char* name;
        const char* existing_dir;  // made before the call ("" for none)
        const char* existing_file; // made before the call ("" for none)
        const char* target;
        bool expected;
        bool target_is_dir_afterwards;
    };
    const case_t cases[] = {
        {"three missing levels", "a", "", "a/b/c/d", true, true},
        {"one missing level", "a", "", "a/b", true, true},
        {"existing directory", "a/b", "", "a/b", true, true},
        {"existing plain file counts as made", "", "f", "f", true, false},
        {"below a plain file", "", "f", "f/x/y", false, false},
    };
    for (const case_t& c : cases) {
        SCOPED_TRACE(c.name);
        temp_tree_t tree;
        if (*c.existing_dir != '\0') {
            tree.make_dir(c.existing_dir);
        }
        if (*c.existing_file != '\0') {
            tree.write(c.existing_file);
        }
        EXPECT_EQ(velmor2::create_directory(tree.path(c.target)), c.expected);
        EXPECT_EQ(fs::is_directory(tree.native(c.target)), c.target_is_dir_afterwards);
    }
}

TEST(create_directory, empty_path_is_refused) {
    EXPECT_FALSE(velmor2::create_directory(path_t()));
}

TEST(remove_directory, argument_checks) {
    temp_tree_t tree;
    tree.write("file");
    EXPECT_FALSE(velmor2::remove_directory(path_t(), true));
    EXPECT_FALSE(velmor2::remove_directory(tree.path("missing"), true));
    EXPECT_FALSE(velmor2::remove_directory(tree.path("file"), true));
    EXPECT_TRUE(tree.has("file"));
}

TEST(remove_directory, non_recursive_only_takes_an_empty_directory) {
    temp_tree_t tree;
    tree.make_dir("empty");
    tree.write("full/x");
    EXPECT_TRUE(velmor2::remove_directory(tree.path("empty"), false));
    EXPECT_FALSE(tree.has("empty"));
    EXPECT_FALSE(velmor2::remove_directory(tree.path("full"), false));
    EXPECT_TRUE(tree.has("full/x"));
}

TEST(remove_directory, recursive_takes_the_tree_with_read_only_files_and_hidden_names) {
    temp_tree_t tree;
    tree.write("d/a.txt");
    tree.write("d/.hidden");
    tree.write("d/sub/deeper/b.txt");
    tree.write("d/sub/ro.txt");
    fs::permissions(tree.native("d/sub/ro.txt"), fs::perms::owner_read);
    EXPECT_TRUE(velmor2::remove_directory(tree.path("d"), true));
    EXPECT_FALSE(tree.has("d"));
}

TEST(remove_directory, recursive_takes_a_read_only_directory) {
    temp_tree_t tree;
    tree.write("d/ro/x");
    fs::permissions(tree.native("d/ro"), fs::perms::owner_read | fs::perms::owner_exec);
    EXPECT_TRUE(velmor2::remove_directory(tree.path("d"), true));
    EXPECT_FALSE(tree.has("d"));
}

TEST(remove_directory, unreadable_directory_gives_true_with_nothing_removed) {
    if (const std::string reason = unreadable_directory_unavailable(); !reason.empty()) {
        GTEST_SKIP() << reason;
    }
    temp_tree_t tree;
    tree.write("d/x");
    fs::permissions(tree.native("d"), fs::perms::none);
    EXPECT_TRUE(velmor2::remove_directory(tree.path("d"), true));
    fs::permissions(tree.native("d"), fs::perms::owner_all);
    EXPECT_TRUE(tree.has("d/x"));
}

TEST(rename_directory, moves_directories_and_files_but_never_onto_something) {
    temp_tree_t tree;
    tree.write("from/x", "content");
    tree.write("file", "f");
    tree.make_dir("taken");
    EXPECT_FALSE(velmor2::rename_directory(tree.path("from"), tree.path("taken")));
    EXPECT_FALSE(velmor2::rename_directory(tree.path("missing"), tree.path("new")));
    EXPECT_FALSE(velmor2::rename_directory(path_t(), tree.path("new")));
    EXPECT_FALSE(velmor2::rename_directory(tree.path("from"), path_t()));
    EXPECT_TRUE(tree.has("from/x"));

    EXPECT_TRUE(velmor2::rename_directory(tree.path("from"), tree.path("taken/moved")));
    EXPECT_EQ(tree.read("taken/moved/x"), "content");
    EXPECT_FALSE(tree.has("from"));
    EXPECT_TRUE(velmor2::rename_directory(tree.path("file"), tree.path("file2")));
    EXPECT_EQ(tree.read("file2"), "f");
}

TEST(copy_file, copies_content_and_permission_bits_and_never_overwrites) {
    temp_tree_t tree;
    tree.write("src", std::string("a\0b\r\n", 5));
    tree.write("existing", "keep");
    // Read-only on Windows, where only the write bits mean anything.
    fs::permissions(tree.native("src"), fs::perms::owner_read | fs::perms::owner_exec);

    EXPECT_TRUE(velmor2::copy_file(tree.path("src"), tree.path("dst")));
    EXPECT_EQ(tree.read("dst"), std::string("a\0b\r\n", 5));
    EXPECT_EQ(fs::status(tree.native("dst")).permissions(),
              fs::status(tree.native("src")).permissions());

    EXPECT_FALSE(velmor2::copy_file(tree.path("src"), tree.path("existing")));
    EXPECT_EQ(tree.read("existing"), "keep");
}

TEST(copy_file, refusals) {
    temp_tree_t tree;
    tree.write("src");
    tree.make_dir("dir");
    struct case_t {
        const char* name;
        path_t from;
        path_t to;
    };
    const case_t cases[] = {
        {"empty source", path_t(), tree.path("a")},
        {"empty target", tree.path("src"), path_t()},
        {"missing source", tree.path("missing"), tree.path("b")},
        {"directory source", tree.path("dir"), tree.path("c")},
        {"target is a directory", tree.path("src"), tree.path("dir")},
        {"target below a missing directory", tree.path("src"), tree.path("no/such/d")},
    };
    for (const case_t& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_FALSE(velmor2::copy_file(c.from, c.to));
    }
    EXPECT_FALSE(tree.has("a") || tree.has("b") || tree.has("c"));
}

#if !defined(_WIN32)
TEST(copy_file, fifo_is_refused_without_waiting) {
    temp_tree_t tree;
    ASSERT_EQ(::mkfifo(tree.native("fifo").c_str(), 0600), 0);
    EXPECT_FALSE(velmor2::copy_file(tree.path("fifo"), tree.path("copy")));
    EXPECT_FALSE(tree.has("copy"));
}
#endif

TEST(remove_file, deletes_plain_files_only) {
    temp_tree_t tree;
    tree.write("plain");
    tree.write("ro");
    tree.make_dir("dir");
    fs::permissions(tree.native("ro"), fs::perms::owner_read);
    EXPECT_TRUE(velmor2::remove_file(tree.path("plain")));
    EXPECT_FALSE(tree.has("plain"));
    // Read-only means no write bit, for root too: the refusal is the library's, not the kernel's.
    EXPECT_FALSE(velmor2::remove_file(tree.path("ro")));
    EXPECT_TRUE(tree.has("ro"));
    EXPECT_FALSE(velmor2::remove_file(tree.path("dir")));
    EXPECT_FALSE(velmor2::remove_file(tree.path("missing")));
    EXPECT_FALSE(velmor2::remove_file(path_t()));
}

TEST(copy_directory, copies_the_tree_and_leaves_dot_names_out) {
    temp_tree_t tree;
    tree.write("from/a.txt", "a");
    tree.write("from/sub/b.txt", "b");
    tree.write("from/sub/deeper/c.txt", "c");
    tree.write("from/.git/config");
    tree.write("from/.profile");
    tree.write("from/sub/.hidden");
    EXPECT_TRUE(velmor2::copy_directory(tree.path("from"), tree.path("to/copy")));
    EXPECT_EQ(tree.read("to/copy/a.txt"), "a");
    EXPECT_EQ(tree.read("to/copy/sub/b.txt"), "b");
    EXPECT_EQ(tree.read("to/copy/sub/deeper/c.txt"), "c");
    EXPECT_FALSE(tree.has("to/copy/.git"));
    EXPECT_FALSE(tree.has("to/copy/.profile"));
    EXPECT_FALSE(tree.has("to/copy/sub/.hidden"));
}

TEST(copy_directory, stops_at_the_first_existing_target_file) {
    temp_tree_t tree;
    tree.write("from/a.txt", "new");
    tree.write("to/a.txt", "old");
    EXPECT_FALSE(velmor2::copy_directory(tree.path("from"), tree.path("to")));
    EXPECT_EQ(tree.read("to/a.txt"), "old");
}

TEST(copy_directory, refusals) {
    temp_tree_t tree;
    tree.write("from/x");
    tree.write("file");
    EXPECT_FALSE(velmor2::copy_directory(path_t(), tree.path("to")));
    EXPECT_FALSE(velmor2::copy_directory(tree.path("from"), path_t()));
    EXPECT_FALSE(velmor2::copy_directory(tree.path("missing"), tree.path("to")));
    EXPECT_FALSE(velmor2::copy_directory(tree.path("file"), tree.path("to")));
    // Into itself: the copy would never run out of entries.
    EXPECT_FALSE(velmor2::copy_directory(tree.path("from"), tree.path("from/inner")));
    EXPECT_FALSE(velmor2::copy_directory(tree.path("from"), tree.path("from")));
    EXPECT_FALSE(tree.has("to"));
    EXPECT_FALSE(tree.has("from/inner"));
}

TEST(copy_directory, unreadable_source_gives_true_and_makes_nothing) {
    if (const std::string reason = unreadable_directory_unavailable(); !reason.empty()) {
        GTEST_SKIP() << reason;
    }
    temp_tree_t tree;
    tree.write("from/x");
    fs::permissions(tree.native("from"), fs::perms::none);
    EXPECT_TRUE(velmor2::copy_directory(tree.path("from"), tree.path("to")));
    EXPECT_FALSE(tree.has("to"));
}

TEST(match_pattern, pattern_comes_first) {
    EXPECT_TRUE(velmor2::match_pattern(path_t(L"C:\\x\\*.txt"), path_t(L"C:\\x\\a.txt")));
    EXPECT_FALSE(velmor2::match_pattern(path_t(L"C:\\x\\a.txt"), path_t(L"C:\\x\\*.txt")));
}

} // namespace
