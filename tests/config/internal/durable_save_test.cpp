// Saves in an unlucky world: the disk fills, a call fails, the process is killed mid-save.
// Whatever happens, the file holds the old content or the new one, byte for byte.
#if !defined(_WIN32)

#include <velmor2/configuration.hpp>

#include "os/posix/fs_calls.hpp"
#include "support/temp_tree.hpp"

#include <gtest/gtest.h>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <random>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

namespace os = velmor2::_internal::os;
using velmor_test::temp_tree_t;

// `count` keys in 16 groups, each value tagged.
velmor2::advanced_xml_config_t store_of(int count, const std::wstring& tag) {
    velmor2::advanced_xml_config_t store;
    for (int i = 0; i < count; ++i) {
        store.set_value(L"g" + std::to_wstring(i % 16) + L".key" + std::to_wstring(i),
                        tag + std::to_wstring(i));
    }
    return store;
}

// The names in the tree's top folder.
std::vector<std::string> names_in(const temp_tree_t& tree) {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(tree.native())) {
        names.push_back(entry.path().filename().string());
    }
    return names;
}

// Restores the real calls after each test.
class durable_save : public ::testing::Test {
  protected:
    ~durable_save() override { os::fs_calls() = os::real_fs_calls(); }
    temp_tree_t tree;
};

// The failures injected: each call fails with its errno when that is not 0.
int write_error, fsync_error, replace_error, new_file_error;

void inject() {
    os::fs_calls_t& calls = os::fs_calls();
    calls.write = [](int fd, const void* data, size_t size) -> ssize_t {
        return write_error != 0 ? (errno = write_error, -1) : ::write(fd, data, size);
    };
    calls.fsync = [](int fd) { return fsync_error != 0 ? (errno = fsync_error, -1) : ::fsync(fd); };
    calls.replace = [](const char* from, const char* to) {
        return replace_error != 0 ? (errno = replace_error, -1) : ::rename(from, to);
    };
    calls.open = [](const char* path, int flags, mode_t mode) {
        const bool fail = (flags & O_EXCL) != 0 && new_file_error != 0;
        return fail ? (errno = new_file_error, -1) : ::open(path, flags, mode);
    };
}

TEST_F(durable_save, a_failing_call_leaves_the_old_file_and_no_other) {
    struct case_t {
        const char* what;
        int* error;
        int value;
        bool saved;
    };
    const case_t cases[] = {
        {"no failure", &write_error, 0, true},
        {"disk full", &write_error, ENOSPC, false},
        {"flush fails", &fsync_error, EIO, false},
        {"rename fails", &replace_error, EIO, false},
        {"no new file: descriptors used up", &new_file_error, EMFILE, false},
        {"no new file: folder not writable, so in place", &new_file_error, EACCES, true},
    };
    velmor2::advanced_xml_config_t before = store_of(200, L"old"), after = store_of(300, L"new");
    ASSERT_TRUE(after.save(tree.path("new.xml")));
    const std::string new_bytes = tree.read("new.xml");
    std::filesystem::remove(tree.native("new.xml"));
    for (const case_t& c : cases) {
        SCOPED_TRACE(c.what);
        ASSERT_TRUE(before.save(tree.path("f.xml")));
        const std::string old_bytes = tree.read("f.xml");
        ASSERT_EQ(::chmod(tree.native("f.xml").c_str(), 0640), 0);
        *c.error = c.value;
        inject();
        EXPECT_EQ(after.save(tree.path("f.xml")), c.saved);
        os::fs_calls() = os::real_fs_calls();
        *c.error = 0;
        EXPECT_TRUE(tree.read("f.xml") == (c.saved ? new_bytes : old_bytes));
        EXPECT_EQ(names_in(tree), std::vector<std::string>{"f.xml"});
        struct stat st;
        ASSERT_EQ(::stat(tree.native("f.xml").c_str(), &st), 0);
        EXPECT_EQ(st.st_mode & 07777, 0640u);
    }
    // Nothing to write in place when the file does not exist yet.
    std::filesystem::remove(tree.native("f.xml"));
    new_file_error = EACCES;
    inject();
    EXPECT_FALSE(after.save(tree.path("f.xml")));
    EXPECT_TRUE(names_in(tree).empty());
    new_file_error = 0;
}

TEST_F(durable_save, the_owner_and_a_symbolic_link_stay) {
    velmor2::advanced_xml_config_t store = store_of(3, L"v");
    tree.make_dir("real");
    ASSERT_TRUE(store.save(tree.path("real/f.xml")));
    std::filesystem::create_symlink("real/f.xml", tree.native("link.xml"));
    if (::geteuid() == 0) {
        ASSERT_EQ(::chown(tree.native("real/f.xml").c_str(), 65534, 65534), 0);
    }
    store.set_value(L"added", 1);
    ASSERT_TRUE(store.save(tree.path("link.xml")));
    EXPECT_TRUE(std::filesystem::is_symlink(tree.native("link.xml")));
    EXPECT_NE(tree.read("real/f.xml").find("added"), std::string::npos);
    struct stat st;
    ASSERT_EQ(::stat(tree.native("real/f.xml").c_str(), &st), 0);
    EXPECT_EQ(st.st_uid, ::geteuid() == 0 ? 65534u : ::geteuid());
}

// A child saves two large stores in turn, forever, and is killed at a random moment; 500 times.
TEST_F(durable_save, killed_mid_save_the_file_holds_old_or_new_content) {
    velmor2::advanced_xml_config_t stores[] = {store_of(2000, L"first"), store_of(2000, L"second")};
    std::string contents[2];
    for (int i = 0; i < 2; ++i) {
        ASSERT_TRUE(stores[i].save(tree.path("f.xml")));
        contents[i] = tree.read("f.xml");
    }
    std::mt19937 random(7);
    int torn = 0;
    for (int round = 0; round < 500; ++round) {
        const pid_t child = ::fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            for (int i = 0;; i ^= 1) {
                stores[i].save(tree.path("f.xml"));
            }
        }
        ::usleep(static_cast<useconds_t>(random() % 6000));
        ::kill(child, SIGKILL);
        ::waitpid(child, nullptr, 0);
        const std::string now = tree.read("f.xml");
        torn += now != contents[0] && now != contents[1];
        // A killed save leaves its new file behind; nothing else does.
        for (const std::string& name : names_in(tree)) {
            if (name != "f.xml") {
                std::filesystem::remove(tree.native(name));
            }
        }
    }
    EXPECT_EQ(torn, 0);
    // Many keys: the store finds each in any letter case after a load, and a store filled in
    // another order saves the same bytes.
    velmor2::advanced_xml_config_t loaded, reversed;
    ASSERT_TRUE(loaded.load(tree.path("f.xml")));
    const std::wstring tag = tree.read("f.xml") == contents[0] ? L"first" : L"second";
    int wrong = 0;
    for (int i = 1999; i >= 0; --i) {
        const std::wstring key = L"G" + std::to_wstring(i % 16) + L".Key" + std::to_wstring(i);
        wrong +=
            loaded.get_value(key, 0).type() != typeid(std::wstring) ||
            boost::any_cast<std::wstring>(loaded.get_value(key, 0)) != tag + std::to_wstring(i);
        reversed.set_value(key, L"first" + std::to_wstring(i));
    }
    EXPECT_EQ(wrong, 0);
    ASSERT_TRUE(reversed.save(tree.path("f.xml")));
    EXPECT_TRUE(tree.read("f.xml") == contents[0]);
}

// A real full disk: a tiny tmpfs, where the machine lets the test mount one.
TEST_F(durable_save, a_full_disk_leaves_the_old_file) {
    tree.make_dir("small");
    const std::string mount_point = tree.native("small").string();
    if (::mount("tmpfs", mount_point.c_str(), "tmpfs", 0, "size=128k") != 0) {
        GTEST_SKIP() << "cannot mount a tmpfs here: " << std::strerror(errno);
    }
    velmor2::advanced_xml_config_t small = store_of(200, L"kept"), large = store_of(6000, L"big");
    const bool saved_small = small.save(tree.path("small/f.xml"));
    const std::string old_bytes = tree.read("small/f.xml");
    const bool saved_large = large.save(tree.path("small/f.xml"));
    const std::string after = tree.read("small/f.xml");
    const std::size_t files = std::distance(std::filesystem::directory_iterator(mount_point),
                                            std::filesystem::directory_iterator());
    velmor2::advanced_xml_config_t loaded;
    const bool loads = loaded.load(tree.path("small/f.xml"));
    ::umount2(mount_point.c_str(), MNT_DETACH);
    ASSERT_TRUE(saved_small);
    EXPECT_FALSE(saved_large);
    EXPECT_TRUE(after == old_bytes);
    EXPECT_EQ(files, 1u);
    EXPECT_TRUE(loads && loaded.has_value(L"g0.key192"));
}

} // namespace

#endif
