// Creating, removing, renaming and copying files and directories in a real temporary tree.
#include "support/temp_tree.hpp"
#include "support/working_dir_guard.hpp"

#include <velmor2/configuration.hpp>
#include <velmor2/file_system.hpp>
#include <velmor2/hash.hpp>
#include <velmor2/standard_directories.hpp>
#include <velmor2/text_file.hpp>

#include <filesystem>
#include <gtest/gtest.h>
#include <string>

namespace {

namespace fs = std::filesystem;
using velmor2::path_t;
using velmor_test::temp_tree_t;
using velmor_test::working_dir_guard_t;

TEST(file_operations, refuse_the_empty_path_and_a_text_with_a_nul_and_touch_nothing) {
    temp_tree_t tree;
    tree.write("victim", "keep");
    tree.make_dir("dir");
    // The NUL would cut the text at `victim` on its way to the system.
    for (const path_t& bad :
         {path_t(), path_t(tree.native().wstring() + std::wstring(L"/victim\0x", 9))}) {
        SCOPED_TRACE(bad.as_string().size());
        EXPECT_FALSE(bad.is_exists());
        EXPECT_FALSE(velmor2::create_directory(bad));
        EXPECT_FALSE(velmor2::remove_directory(bad, true));
        EXPECT_FALSE(velmor2::remove_file(bad));
        EXPECT_FALSE(velmor2::rename_directory(bad, tree.path("new")));
        EXPECT_FALSE(velmor2::rename_directory(tree.path("dir"), bad));
        EXPECT_FALSE(velmor2::copy_file(bad, tree.path("new")));
        EXPECT_FALSE(velmor2::copy_file(tree.path("victim"), bad));
        EXPECT_FALSE(velmor2::copy_directory(bad, tree.path("new")));
        EXPECT_FALSE(velmor2::copy_directory(tree.path("dir"), bad));
        EXPECT_TRUE(velmor2::find_files(bad, L"*", true).empty());
        EXPECT_FALSE(velmor2::set_file_content(L"new", velmor2::cp_utf8, bad));
        EXPECT_TRUE(velmor2::get_file_content(velmor2::cp_utf8, bad).empty());
        EXPECT_EQ(velmor2::get_file_cp(bad), velmor2::cp_unknown);
        EXPECT_EQ(velmor2::generate_hash(bad), 0u);
        velmor2::md5_t md5;
        EXPECT_FALSE(md5.update_from_file(bad));
        velmor2::advanced_xml_config_t store;
        EXPECT_FALSE(store.load(bad));
        EXPECT_FALSE(store.save(bad));
    }
    EXPECT_EQ(tree.read("victim"), "keep");
    EXPECT_FALSE(tree.has("new"));
    EXPECT_TRUE(tree.has("dir"));
}

TEST(create_directory, makes_every_missing_level_and_accepts_what_exists) {
    temp_tree_t tree;
    tree.make_dir("a");
    tree.write("f");
    struct case_t {
        const char* target;
        bool expected;
        bool target_is_dir_afterwards;
    };
    const case_t cases[] = {
        {"a/b/c/d", true, true}, {"a", true, true},
        {"f", true, false},                                // an existing plain file counts as made
        {"f/x/y", false, false}, {"n1/../n2", true, true}, // both made, as mkdir -p does
    };
    for (const case_t& c : cases) {
        SCOPED_TRACE(c.target);
        EXPECT_EQ(velmor2::create_directory(tree.path(c.target)), c.expected);
        EXPECT_EQ(fs::is_directory(tree.native(c.target)), c.target_is_dir_afterwards);
    }
#if !defined(_WIN32)
    // A drive or server has no meaning on POSIX: nothing appears under the working directory.
    const working_dir_guard_t guard;
    ASSERT_TRUE(velmor2::stdpaths::set_working_dir(tree.path()));
    EXPECT_FALSE(velmor2::create_directory(path_t(L"C:\\vtest")));
    EXPECT_FALSE(velmor2::create_directory(path_t(L"\\\\srv\\share\\x")));
    EXPECT_FALSE(tree.has("C:") || tree.has("srv"));
#endif
}

TEST(remove_directory_and_file, non_recursive_only_takes_an_empty_directory_files_only_files) {
    temp_tree_t tree;
    tree.make_dir("empty");
    tree.write("full/x");
    EXPECT_TRUE(velmor2::remove_directory(tree.path("empty"), false));
    EXPECT_FALSE(tree.has("empty"));
    EXPECT_FALSE(velmor2::remove_directory(tree.path("full"), false));
    EXPECT_TRUE(tree.has("full/x"));
    EXPECT_FALSE(velmor2::remove_directory(tree.path("missing"), true));
    EXPECT_FALSE(velmor2::remove_directory(tree.path("full/x"), true));
    EXPECT_TRUE(tree.has("full/x"));
    // remove_file deletes plain files only.
    tree.write("plain");
    tree.write("ro");
    fs::permissions(tree.native("ro"), fs::perms::owner_read);
    EXPECT_TRUE(velmor2::remove_file(tree.path("plain")));
    EXPECT_FALSE(tree.has("plain"));
    // Read-only means no write bit, for root too: the refusal is the library's, not the kernel's.
    EXPECT_FALSE(velmor2::remove_file(tree.path("ro")));
    EXPECT_TRUE(tree.has("ro"));
    EXPECT_FALSE(velmor2::remove_file(tree.path("full")));
    EXPECT_FALSE(velmor2::remove_file(tree.path("missing")));
}

TEST(remove_and_rename, recursive_removal_takes_read_only_and_hidden_rename_never_onto_something) {
    temp_tree_t tree;
    for (const char* file : {"d/a.txt", "d/.hidden", "d/sub/deeper/b.txt", "d/sub/ro.txt"}) {
        tree.write(file);
    }
    tree.write("d/ro/x");
    fs::permissions(tree.native("d/sub/ro.txt"), fs::perms::owner_read);
    fs::permissions(tree.native("d/ro"), fs::perms::owner_read | fs::perms::owner_exec);
    EXPECT_TRUE(velmor2::remove_directory(tree.path("d"), true));
    EXPECT_FALSE(tree.has("d"));

    // rename moves directories and files, but never onto something.
    tree.write("from/x", "content");
    tree.write("file", "f");
    tree.make_dir("taken");
    EXPECT_FALSE(velmor2::rename_directory(tree.path("from"), tree.path("taken")));
    EXPECT_FALSE(velmor2::rename_directory(tree.path("missing"), tree.path("new")));
    EXPECT_TRUE(tree.has("from/x"));

    EXPECT_TRUE(velmor2::rename_directory(tree.path("from"), tree.path("taken/moved")));
    EXPECT_EQ(tree.read("taken/moved/x"), "content");
    EXPECT_FALSE(tree.has("from"));
    EXPECT_TRUE(velmor2::rename_directory(tree.path("file"), tree.path("file2")));
    EXPECT_EQ(tree.read("file2"), "f");
}

TEST(copy_file, copies_content_and_permission_bits_and_never_overwrites_and_refusals) {
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

    tree.make_dir("dir");
    struct case_t {
        const char* name;
        const char* from;
        const char* to;
    };
    const case_t cases[] = {
        {"missing source", "missing", "b"},
        {"directory source", "dir", "c"},
        {"target is a directory", "src", "dir"},
        {"target below a missing directory", "src", "no/such/d"},
    };
    for (const case_t& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_FALSE(velmor2::copy_file(tree.path(c.from), tree.path(c.to)));
    }
    EXPECT_FALSE(tree.has("b") || tree.has("c") || tree.has("no"));
}

TEST(copy_directory, any_unicode_name_no_dot_names_never_into_itself_look_alikes_are_fine) {
    temp_tree_t tree;
    // Accented, CJK and beyond the Basic Multilingual Plane (a surrogate pair in UTF-16).
    const std::string names[] = {"a.txt", "sub/deeper/c.txt",
                                 "\xc3\xa9t\xc3\xa9/\xe6\x97\xa5\xe6\x9c\xac.txt",
                                 "\xf0\x9d\x84\x9e clef.txt"};
    for (const std::string& name : names) {
        tree.write("from/" + name, name);
    }
    for (const char* dotted : {"from/.git/config", "from/.profile", "from/sub/.hidden"}) {
        tree.write(dotted);
    }
    EXPECT_TRUE(velmor2::copy_directory(tree.path("from"), tree.path("to/copy")));
    for (const std::string& name : names) {
        EXPECT_EQ(tree.read("to/copy/" + name), name);
    }
    const std::vector<path_t> found = velmor2::find_files(tree.path("to/copy"), L"*.txt", true);
    EXPECT_EQ(found.size(), std::size(names));
    for (const path_t& file : found) {
        EXPECT_TRUE(file.is_exists());
    }
    EXPECT_FALSE(tree.has("to/copy/.git") || tree.has("to/copy/.profile") ||
                 tree.has("to/copy/sub/.hidden"));
    // An existing target file stops the copy and keeps its content.
    tree.write("to/copy/a.txt", "old");
    EXPECT_FALSE(velmor2::copy_directory(tree.path("from"), tree.path("to/copy")));
    EXPECT_EQ(tree.read("to/copy/a.txt"), "old");
    EXPECT_TRUE(velmor2::remove_directory(tree.path("from"), true));
    EXPECT_FALSE(tree.has("from"));

    // Into itself is refused however written; look-alikes are not.
    tree.write("s/sub/a.txt", "a");
    tree.write("file");
    const working_dir_guard_t guard;
    ASSERT_TRUE(velmor2::stdpaths::set_working_dir(tree.path()));
#if !defined(_WIN32)
    fs::create_directory_symlink(tree.native("s"), tree.native("ls"));
#endif
    struct case_t {
        const wchar_t* from;
        std::wstring to;
        bool copied;
    };
    const case_t cases[] = {
        {L"missing", L"new", false},
        {L"file", L"new", false},
        {L"s", tree.native("s/backup").wstring(), false},
        {L"s", L"s", false},
        {L"s/sub", L"s/../s/sub/x/y", false},
#if !defined(_WIN32)
        {L"s", L"ls/copy", false},
        {L"s/sub", L"s/Sub/copy", true}, // another folder on POSIX
#endif
        {L"s/sub", L"s/sub/../sub2", true},
    };
    for (const case_t& c : cases) {
        SCOPED_TRACE(path_t(c.to).as_native_string().size());
        EXPECT_EQ(velmor2::copy_directory(path_t(c.from), path_t(c.to)), c.copied);
    }
    EXPECT_EQ(tree.read("s/sub2/a.txt"), "a");
    EXPECT_FALSE(tree.has("new") || tree.has("s/backup") || tree.has("s/sub/x") ||
                 tree.has("s/copy"));
}

} // namespace
