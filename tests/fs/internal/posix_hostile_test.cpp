// What an unfriendly POSIX tree holds: names the path grammar cannot hold, names that are not
// UTF-8, links in and out, FIFOs and devices, a tree changing under a walk, failing system
// calls through the replaceable call table, and users without privileges. None of it exists
// on Windows.
#if !defined(_WIN32)

#include "os/file_status.hpp"
#include "os/fs.hpp"
#include "os/posix/fs_calls.hpp"
#include "support/temp_tree.hpp"
#include "support/unprivileged.hpp"
#include "support/working_dir_guard.hpp"

#include <velmor2/file_system.hpp>
#include <velmor2/hash.hpp>
#include <velmor2/text_file.hpp>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <functional>
#include <gtest/gtest.h>
#include <map>
#include <sys/stat.h>
#include <thread>

namespace {

namespace fs = std::filesystem;
namespace os = velmor2::_internal::os;
using velmor2::path_t;
using velmor_test::temp_tree_t;

// Names legal on POSIX that no path can hold as one component, and one that is not UTF-8.
const char* const hostile_names[] = {
    "2024-01-01T10:00", "x|y", "<>", "q\"q", "\"quoted\"", "a\\b", " lead", "C:", "\xff\xfe.xml"};

// Every entry below the working directory by its path relative to it: "d" for a directory,
// "l" and the target for a link, "f" and the content for anything else. The walk goes down
// and up by `chdir`, so that neither long paths nor open directories pile up.
using snapshot_t = std::map<std::string, std::string>;
void snapshot(snapshot_t& out, const std::string& relative) {
    DIR* stream = ::opendir(".");
    ASSERT_NE(stream, nullptr) << relative.size();
    std::vector<std::string> names;
    while (const dirent* entry = ::readdir(stream)) {
        if (std::strcmp(entry->d_name, ".") != 0 && std::strcmp(entry->d_name, "..") != 0) {
            names.emplace_back(entry->d_name);
        }
    }
    ::closedir(stream);
    for (const std::string& name : names) {
        const std::string key = relative + "/" + name;
        struct stat st;
        ASSERT_EQ(::lstat(name.c_str(), &st), 0);
        if (S_ISDIR(st.st_mode)) {
            out[key] = "d";
            ASSERT_EQ(::chdir(name.c_str()), 0);
            snapshot(out, key);
            ASSERT_EQ(::chdir(".."), 0);
        } else if (S_ISLNK(st.st_mode)) {
            out[key] = "l" + fs::read_symlink(name).string();
        } else {
            std::ifstream in(name, std::ios::binary);
            out[key] = "f" + std::string(std::istreambuf_iterator<char>(in), {});
        }
    }
}

snapshot_t snapshot_of(const fs::path& dir) {
    const velmor_test::working_dir_guard_t guard;
    fs::current_path(dir);
    snapshot_t out;
    snapshot(out, "");
    return out;
}

TEST(links, find_lists_linked_files_copy_recreates_links_removal_removes_links_only) {
    temp_tree_t tree;
    tree.write("outside/keep.xml", "outside");
    tree.write("target.xml", "target");
    tree.write("d/own.xml", "own");
    fs::create_directory_symlink(tree.native("outside"), tree.native("d/dirlink"));
    fs::create_symlink(tree.native("target.xml"), tree.native("d/filelink.xml"));
    fs::create_symlink("../nowhere", tree.native("d/dangling.xml"));
    fs::create_symlink(std::string(300, 'x'), tree.native("d/long"));

    // find lists linked files and never enters linked directories.
    std::vector<std::wstring> names;
    for (const path_t& found : velmor2::find_files(tree.path("d"), L"*.xml", true)) {
        names.push_back(found.get_leaf());
    }
    std::sort(names.begin(), names.end());
    EXPECT_EQ(names, (std::vector<std::wstring>{L"dangling.xml", L"filelink.xml", L"own.xml"}));

    // Copies recreate links and refuse what they cannot carry.
    EXPECT_TRUE(velmor2::copy_directory(tree.path("d"), tree.path("copy")));
    EXPECT_EQ(snapshot_of(tree.native("copy")), snapshot_of(tree.native("d")));
    // A FIFO is neither copied nor waited on, by either copy, and the tree copy says so.
    ASSERT_EQ(::mkfifo(tree.native("d/fifo").c_str(), 0600), 0);
    EXPECT_FALSE(velmor2::copy_file(tree.path("d/fifo"), tree.path("fifo_copy")));
    EXPECT_FALSE(velmor2::copy_directory(tree.path("d"), tree.path("copy2")));
    EXPECT_EQ(tree.read("copy2/own.xml"), "own");
    EXPECT_FALSE(tree.has("copy2/fifo") || tree.has("fifo_copy"));

    // Removal removes links, never their targets.
    // A link to a directory given itself goes alone; so does a dangling link given to
    // remove_file, as find_files lists it.
    EXPECT_TRUE(velmor2::remove_directory(tree.path("d/dirlink"), true));
    EXPECT_TRUE(velmor2::remove_file(tree.path("d/dangling.xml")));
    EXPECT_FALSE(tree.has("d/dirlink") || tree.has("d/dangling.xml"));
    fs::create_directory_symlink(tree.native("outside"), tree.native("d/dirlink"));
    fs::permissions(tree.native("target.xml"), fs::perms::owner_read);
    EXPECT_TRUE(velmor2::remove_directory(tree.path("d"), true));
    EXPECT_FALSE(tree.has("d"));
    EXPECT_EQ(tree.read("outside/keep.xml"), "outside");
    EXPECT_EQ(fs::status(tree.native("target.xml")).permissions(), fs::perms::owner_read);
}

TEST(special_files, whole_file_reads_fail_at_once_and_proc_files_are_read_to_the_end) {
    temp_tree_t tree;
    ASSERT_EQ(::mkfifo(tree.native("fifo").c_str(), 0600), 0);
    for (const std::string& name : {tree.native("fifo").string(), std::string("/dev/zero")}) {
        SCOPED_TRACE(name);
        const path_t file(fs::path(name).wstring());
        velmor2::md5_t md5;
        EXPECT_FALSE(md5.update_from_file(file));
        EXPECT_EQ(velmor2::generate_hash(file), 0u);
        EXPECT_EQ(velmor2::get_file_cp(file), velmor2::cp_unknown);
        EXPECT_TRUE(velmor2::get_file_content(velmor2::cp_utf8, file).empty());
        EXPECT_TRUE(velmor2::get_xml_file_content(file).empty());
    }
    const path_t status(L"/proc/self/limits");
    ASSERT_EQ(fs::file_size("/proc/self/limits"), 0u);
    std::ifstream in("/proc/self/limits");
    const std::string content(std::istreambuf_iterator<char>(in), {});
    EXPECT_EQ(velmor2::get_file_content(velmor2::cp_utf8, status),
              std::wstring(content.begin(), content.end()));
    EXPECT_EQ(velmor2::get_file_cp(status), velmor2::cp_utf8);
    velmor2::md5_t from_file;
    velmor2::md5_t from_text;
    EXPECT_TRUE(from_file.update_from_file(status));
    from_text.update(content);
    EXPECT_EQ(from_file.get_digest(), from_text.get_digest());
}

TEST(unprivileged, unreachable_files_are_read_only_and_unreadable_trees_are_kept) {
    temp_tree_t tree;
    fs::permissions(tree.native(), fs::perms::all);
    tree.write("closed/f");
    tree.write("open/closed/x");
    fs::permissions(tree.native("open"), fs::perms::all);
    fs::permissions(tree.native("closed"), fs::perms::owner_all);
    fs::permissions(tree.native("open/closed"), fs::perms::owner_all);
    const int failed = velmor_test::run_unprivileged([&] {
        bool read_only = false;
        bool unknown = true;
        path_t::readonly(tree.path("closed/f").as_string(), read_only, unknown);
        // An unreadable tree: nothing removed, nothing copied.
        return (read_only && !unknown ? 0 : 1) |
               (velmor2::remove_directory(tree.path("closed"), true) ? 0 : 2) |
               (velmor2::copy_directory(tree.path("closed"), tree.path("open/to")) ? 0 : 4) |
               (!velmor2::remove_directory(tree.path("open"), true) ? 0 : 8);
    });
    ASSERT_NE(failed, -1) << "cannot run as nobody here";
    EXPECT_EQ(failed, 0);
    EXPECT_TRUE(tree.has("closed/f") && tree.has("open/closed/x"));
    EXPECT_FALSE(tree.has("open/to"));
}

TEST(links_race, a_folder_swapped_for_a_link_never_leads_the_removal_outside) {
    temp_tree_t tree;
    for (int i = 0; i < 20; ++i) {
        tree.write("outside/f" + std::to_string(i), "keep");
    }
    const snapshot_t outside = snapshot_of(tree.native("outside"));
    const std::string sub = tree.native("t/sub").string();
    const std::string real = tree.native("t/real").string();
    for (int run = 0; run < 50; ++run) {
        for (int i = 0; i < 30; ++i) {
            tree.write("t/sub/f" + std::to_string(i));
        }
        std::atomic<bool> stop(false);
        std::atomic<int> swaps(0);
        // `sub` is now the folder, now a fresh link to `outside`.
        std::thread swapper([&] {
            while (!stop) {
                ::rename(sub.c_str(), real.c_str());
                ::symlink(tree.native("outside").c_str(), sub.c_str());
                ++swaps;
                ::unlink(sub.c_str());
                ::rename(real.c_str(), sub.c_str());
            }
        });
        // The removal starts once the swapping runs, not before the thread has started.
        while (swaps == 0) {
        }
        velmor2::remove_directory(tree.path("t"), true);
        stop = true;
        swapper.join();
        fs::remove_all(tree.native("t"));
    }
    EXPECT_EQ(snapshot_of(tree.native("outside")), outside);
}

// 3,000 entries (scaled down from 100,000 to keep the suite within seconds) of every kind of
// name no path can hold, in folders of such names, links into and out of the tree, and a chain
// 2,000 directories deep.
TEST(hostile_tree, copy_is_identical_and_removal_leaves_nothing_and_touches_nothing_outside) {
    temp_tree_t tree;
    tree.write("sibling/a", "a");
    tree.write("sibling/d/b", "b");
    const snapshot_t sibling = snapshot_of(tree.native("sibling"));
    const std::string src = tree.native("src").string();
    const auto hostile = [](int i) {
        return hostile_names[i % std::size(hostile_names)] + std::to_string(i);
    };
    for (int i = 0; i < 3000; ++i) {
        const std::string dir = "src/" + hostile(i % 100) + "/";
        if (i % 100 < 2) {
            fs::create_directories(tree.native(dir));
            ::symlink(i % 2 ? tree.native("sibling").c_str() : ("../" + hostile(1)).c_str(),
                      tree.native(dir + hostile(i)).c_str());
        } else {
            tree.write(dir + hostile(i), hostile(i));
        }
    }
    const std::string chain = src + "/chain";
    ASSERT_EQ(::mkdir(chain.c_str(), 0700), 0);
    const int top = ::open(chain.c_str(), O_RDONLY | O_DIRECTORY);
    int level = top;
    for (int i = 0; i < 2000; ++i) {
        ASSERT_EQ(::mkdirat(level, "c", 0700), 0);
        const int next = ::openat(level, "c", O_RDONLY | O_DIRECTORY);
        ::close(level);
        level = next;
    }
    ::close(::openat(level, "bottom", O_WRONLY | O_CREAT, 0600));
    ::close(level);
    tree.write("src/.hidden/x");

    snapshot_t expected = snapshot_of(src);
    for (auto it = expected.begin(); it != expected.end();) {
        it = it->first.rfind("/.hidden", 0) == 0 ? expected.erase(it) : std::next(it);
    }
    EXPECT_TRUE(velmor2::copy_directory(tree.path("src"), tree.path("copy")));
    EXPECT_EQ(snapshot_of(tree.native("copy")), expected);
    // No path can name the hostile entries: find_files leaves them out, and only them.
    const std::vector<path_t> found = velmor2::find_files(tree.path("src"), L"*", true);
    EXPECT_EQ(found.size(), 2u);
    for (const path_t& file : found) {
        EXPECT_TRUE(file.get_leaf() == L"bottom" || file.get_leaf() == L"x");
    }
    for (const char* dir : {"copy", "src"}) {
        EXPECT_TRUE(velmor2::remove_directory(tree.path(dir), true));
        EXPECT_FALSE(tree.has(dir));
    }
    EXPECT_EQ(snapshot_of(tree.native("sibling")), sibling);
}

// A call that fails with `error`, for any slot of the call table.
template <int error, typename result_t, typename... args_t> result_t failing(args_t...) {
    errno = error;
    return -1;
}

// Makes the call `slot` of the table fail with `error`.
template <auto slot, int error> void fail(os::fs_calls_t& calls) {
    calls.*slot = failing<error>;
}

// Makes openat fail with `error` when it would create a file.
template <int error> int no_creation_at(int dir, const char* name, int flags, mode_t mode) {
    return (flags & O_CREAT) != 0 ? failing<error, int>()
                                  : os::real_fs_calls().openat(dir, name, flags, mode);
}

// A file system that gives no entry types (some network and older ones).
ssize_t listing_without_types(int fd, void* buffer, size_t size) {
    const ssize_t got = os::real_fs_calls().read_directory(fd, buffer, size);
    for (ssize_t at = 0; at < got;) {
        auto* entry = reinterpret_cast<dirent64*>(static_cast<char*>(buffer) + at);
        entry->d_type = DT_UNKNOWN;
        at += entry->d_reclen;
    }
    return got;
}

ssize_t short_writes(int fd, const void* data, size_t size) {
    return os::real_fs_calls().write(fd, data, size < 7 ? size : 7);
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

// One call failing (or writing short) at a time: each operation fails as a value or answers
// "unknown" or "read-only" as the failure means, and leaves the source as it was.
TEST_F(injected_failures, each_failing_call_fails_its_operation_and_leaves_the_source) {
    std::string content;
    for (int i = 0; i < 300000; ++i) {
        content += static_cast<char>('a' + i % 26);
    }
    tree.write("src/f.txt", content);
    tree.write("src/d/a.txt", "a");
    fs::create_symlink("f.txt", tree.native("src/link"));
    const snapshot_t source = snapshot_of(tree.native("src"));
    const auto src = [&](const char* name) { return tree.path(std::string("src/") + name); };
    const auto copy_fails = [&] {
        return !velmor2::copy_file(src("f.txt"), tree.path("out")) && !tree.has("out");
    };
    const auto access_is = [&](os::write_access_t access) {
        return [&, access] { return os::check_write_access(src("f.txt").as_string()) == access; };
    };
    using calls_t = os::fs_calls_t;
    struct case_t {
        const char* name;
        void (*inject)(calls_t&);
        std::function<bool()> holds;
    };
    const case_t cases[] = {
        {"copy: disk full", fail<&calls_t::write, ENOSPC>, copy_fails},
        {"copy: short writes completed", [](calls_t& c) { c.write = short_writes; },
         [&] {
             return velmor2::copy_file(src("f.txt"), tree.path("out")) &&
                    tree.read("out") == content;
         }},
        {"copy: modes refused", fail<&calls_t::fchmod, EPERM>, copy_fails},
        {"copy: source not examinable", fail<&calls_t::fstat, EIO>, copy_fails},
        {"copy: no room for the target", [](calls_t& c) { c.openat = no_creation_at<ENOSPC>; },
         copy_fails},
        {"copy: link unreadable", fail<&calls_t::readlinkat, EIO>,
         [&] { return !velmor2::copy_directory(tree.path("src"), tree.path("out")); }},
        {"delete: entry not examinable", fail<&calls_t::lstat, EIO>,
         [&] { return !os::delete_file(src("f.txt").as_string()); }},
        {"rename: across devices", fail<&calls_t::rename, EXDEV>,
         [&] { return !velmor2::rename_directory(src("d"), tree.path("out")); }},
        {"hash: read fails", fail<&calls_t::read, EIO>,
         [&] { return !velmor2::md5_t().update_from_file(src("f.txt")); }},
        {"hash: read of a /proc file fails", fail<&calls_t::read, EIO>,
         [] { return !velmor2::md5_t().update_from_file(path_t(L"/proc/self/limits")); }},
        {"find: listing fails", fail<&calls_t::read_directory, EIO>,
         [&] { return velmor2::find_files(tree.path("src"), L"*", true).empty(); }},
        {"find: no entry types", [](calls_t& c) { c.read_directory = listing_without_types; },
         [&] { return velmor2::find_files(tree.path("src"), L"*.txt", true).size() == 2; }},
        {"mkdir: refused", fail<&calls_t::mkdir, EACCES>,
         [&] { return !velmor2::create_directory(tree.path("a/b")) && !tree.has("a"); }},
        {"access: not examinable", fail<&calls_t::stat, EACCES>,
         access_is(os::write_access_t::read_only)},
        {"access: device error", fail<&calls_t::stat, EIO>, access_is(os::write_access_t::unknown)},
        {"access: read-only file system", fail<&calls_t::faccessat, EROFS>,
         access_is(os::write_access_t::read_only)},
        {"access: undecided", fail<&calls_t::faccessat, EIO>,
         access_is(os::write_access_t::unknown)},
    };
    for (const case_t& c : cases) {
        SCOPED_TRACE(c.name);
        c.inject(calls());
        const bool held = c.holds();
        calls() = os::real_fs_calls();
        EXPECT_TRUE(held);
        EXPECT_EQ(snapshot_of(tree.native("src")), source);
        fs::remove_all(tree.native("out"));
    }
}

TEST_F(injected_failures, a_kept_sub_directory_is_success_a_kept_file_is_not) {
    for (const char* file : {"d/a.txt", "d/stuck/b.txt", "d/stuck/inner/c.txt", "e/sub/a.txt"}) {
        tree.write(file);
    }
    calls().unlinkat = [](int dir, const char* name, int flags) {
        if (std::strcmp(name, "stuck") == 0) {
            errno = EBUSY;
            return -1;
        }
        return os::real_fs_calls().unlinkat(dir, name, flags);
    };
    EXPECT_TRUE(velmor2::remove_directory(tree.path("d"), true));
    EXPECT_TRUE(tree.has("d/stuck"));
    EXPECT_FALSE(tree.has("d/stuck/inner") || tree.has("d/stuck/b.txt") || tree.has("d/a.txt"));
    calls().unlinkat = failing<EBUSY>;
    tree.write("e/a.txt");
    EXPECT_FALSE(velmor2::remove_directory(tree.path("e"), true));
    EXPECT_TRUE(tree.has("e/a.txt"));
}

} // namespace

#endif
