// Directory and file operations on POSIX: mkdir, rmdir, unlink, rename, a copy loop, and the
// walks relative to an open directory (openat, fstatat, unlinkat) that never follow a link.
// Listings are read with getdents64 straight into one buffer of names ("File search" in
// docs/performance.md).
#include "os/fs.hpp"
#include "os/posix/descriptor.hpp"
#include "os/posix/fs_calls.hpp"
#include "os/posix/native.hpp"
#include "unicode/convert.hpp"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace velmor2::_internal::os {
namespace {

constexpr mode_t write_bits = S_IWUSR | S_IWGRP | S_IWOTH;
constexpr int directory_flags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;

// The buffer fits the file, up to a limit: a tree of small files is copied without clearing a
// large buffer for each.
bool copy_content(int in, int out, off_t size) {
    const std::size_t largest = 1 << 17;
    std::vector<char> buffer(std::max<std::size_t>(
        4096, std::min(largest, static_cast<std::size_t>(std::max<off_t>(size, 0)) + 1)));
    for (;;) {
        const ssize_t got =
            retry_interrupted([&] { return fs_calls().read(in, buffer.data(), buffer.size()); });
        if (got <= 0) {
            return got == 0;
        }
        if (!write_all(out, buffer.data(), static_cast<std::size_t>(got))) {
            return false;
        }
    }
}

// Content, permission bits and times of the open source into the open, new target.
bool fill_copy(int in, const struct stat& st, fd_t& out) {
    if (!copy_content(in, out.get(), st.st_size)) {
        return false;
    }
    const struct timespec times[2] = {st.st_atim, st.st_mtim};
    if (fs_calls().fchmod(out.get(), st.st_mode & 0777) != 0 ||
        fs_calls().futimens(out.get(), times) != 0) {
        return false;
    }
    return out.close();
}

// Copies the regular file `name` of the directory `from` (AT_FDCWD: a path) to the new entry
// `to_name` of `to`. Non-blocking and without following a link, so that a FIFO is refused
// instead of waiting for a writer and a link never leads the copy out of a tree.
bool copy_regular(int from, const char* name, int to, const char* to_name, int link_flag) {
    const fd_t in(fs_calls().openat(from, name, O_RDONLY | O_NONBLOCK | O_CLOEXEC | link_flag, 0));
    if (in.get() < 0) {
        return false;
    }
    struct stat st;
    if (fs_calls().fstat(in.get(), &st) != 0) {
        return false;
    }
    if (!S_ISREG(st.st_mode)) {
        errno = S_ISDIR(st.st_mode) ? EISDIR : EINVAL;
        return false;
    }
    fd_t out(
        fs_calls().openat(to, to_name, O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600));
    if (out.get() < 0) {
        return false;
    }
    if (fill_copy(in.get(), st, out)) {
        return true;
    }
    const int saved = errno;
    fs_calls().unlinkat(to, to_name, 0);
    errno = saved;
    return false;
}

bool same_entry(const struct stat& a, const struct stat& b) {
    return a.st_dev == b.st_dev && a.st_ino == b.st_ino;
}

entry_type_t type_of_mode(mode_t mode) {
    return S_ISDIR(mode)   ? entry_type_t::directory
           : S_ISLNK(mode) ? entry_type_t::link
           : S_ISREG(mode) ? entry_type_t::file
                           : entry_type_t::special;
}

} // namespace

bool create_directory(const std::wstring& text, error_kind_t& error) {
    const std::string native = native_bytes(text);
    if (native.empty()) {
        error = error_kind_t::bad_name;
        return false;
    }
    if (fs_calls().mkdir(native.c_str(), 0777) == 0) {
        error = error_kind_t::none;
        return true;
    }
    error = last_error();
    return false;
}

bool remove_directory(const std::wstring& text) {
    return fs_calls().rmdir(native_bytes(text).c_str()) == 0;
}

bool delete_file(const std::wstring& text) {
    const std::string native = native_bytes(text);
    struct stat st;
    if (fs_calls().lstat(native.c_str(), &st) != 0) {
        return false;
    }
    if (S_ISDIR(st.st_mode)) {
        errno = EISDIR;
        return false;
    }
    if (!S_ISLNK(st.st_mode) && (st.st_mode & write_bits) == 0) {
        errno = EACCES;
        return false;
    }
    return fs_calls().unlink(native.c_str()) == 0;
}

bool entry_exists(const std::wstring& text) {
    struct stat st;
    return fs_calls().lstat(native_bytes(text).c_str(), &st) == 0;
}

bool is_link(const std::wstring& text) {
    struct stat st;
    return fs_calls().lstat(native_bytes(text).c_str(), &st) == 0 && S_ISLNK(st.st_mode);
}

bool remove_link(const std::wstring& text) {
    return fs_calls().unlink(native_bytes(text).c_str()) == 0;
}

bool copy_file(const std::wstring& from, const std::wstring& to) {
    return copy_regular(AT_FDCWD, native_bytes(from).c_str(), AT_FDCWD, native_bytes(to).c_str(),
                        0);
}

bool move_entry(const std::wstring& from, const std::wstring& to) {
    return fs_calls().rename(native_bytes(from).c_str(), native_bytes(to).c_str()) == 0;
}

bool is_same_or_inside(const std::wstring& inner, const std::wstring& outer) {
    struct stat wanted;
    if (fs_calls().stat(native_bytes(outer).c_str(), &wanted) != 0) {
        return false;
    }
    // Up through `..` until the directory itself or the root, which is its own parent.
    fd_t level(fs_calls().open(native_bytes(inner).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC, 0));
    struct stat st;
    while (level.get() >= 0 && fs_calls().fstat(level.get(), &st) == 0) {
        if (same_entry(st, wanted)) {
            return true;
        }
        fd_t parent(fs_calls().openat(level.get(), "..", O_RDONLY | O_DIRECTORY | O_CLOEXEC, 0));
        struct stat up;
        if (parent.get() < 0 || fs_calls().fstat(parent.get(), &up) != 0 || same_entry(up, st)) {
            return false;
        }
        level.reset(parent.take());
    }
    return false;
}

namespace {

// What an entry is by the type its directory gives; a file system that gives none (some
// network and older ones) is asked about the entry itself.
entry_type_t type_of_entry(int dir, const char* name, unsigned char type) {
    switch (type) {
    case DT_DIR:
        return entry_type_t::directory;
    case DT_LNK:
        return entry_type_t::link;
    case DT_REG:
        return entry_type_t::file;
    case DT_UNKNOWN: {
        struct stat st;
        return fs_calls().fstatat(dir, name, &st, AT_SYMLINK_NOFOLLOW) == 0
                   ? type_of_mode(st.st_mode)
                   : entry_type_t::file;
    }
    default:
        return entry_type_t::special;
    }
}

bool is_ascii(const std::string& text) {
    return std::all_of(text.begin(), text.end(),
                       [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

} // namespace

// The whole listing is read at once (the walks change the directory while they go through
// it) straight from the descriptor, without a second descriptor and a stream for it.
struct directory_t::state_t {
    struct item_t {
        std::size_t at;
        std::size_t size;
        entry_type_t type;
    };

    fd_t fd;
    struct stat identity = {};
    // The names one after the other, and where each starts.
    std::string names;
    std::vector<item_t> items;
    std::size_t next = 0;

    // Takes the open directory `descriptor` and reads its entries; a read error ends the
    // listing as its end does.
    bool take(int descriptor) {
        fd.reset(descriptor);
        if (descriptor < 0) {
            return false;
        }
        alignas(dirent64) char buffer[32768];
        for (;;) {
            const ssize_t got = retry_interrupted(
                [&] { return fs_calls().read_directory(descriptor, buffer, sizeof buffer); });
            if (got <= 0) {
                return true;
            }
            for (ssize_t at = 0; at < got;) {
                const auto* found = reinterpret_cast<const dirent64*>(buffer + at);
                at += found->d_reclen;
                const char* name = found->d_name;
                if (name[0] == '.' && (name[1] == 0 || (name[1] == '.' && name[2] == 0))) {
                    continue;
                }
                const std::size_t size = std::strlen(name);
                items.push_back(
                    {names.size(), size, type_of_entry(descriptor, name, found->d_type)});
                names.append(name, size);
            }
        }
    }
};

directory_t::directory_t() : state_(new state_t) {}

directory_t::~directory_t() = default;

bool directory_t::open(const std::wstring& text, bool follow_link) {
    const std::string native = native_bytes(text);
    const int flags = follow_link ? O_RDONLY | O_DIRECTORY | O_CLOEXEC : directory_flags;
    return !native.empty() && state_->take(fs_calls().openat(AT_FDCWD, native.c_str(), flags, 0));
}

bool directory_t::open(const directory_t& parent, const native_name_t& name) {
    return state_->take(
        fs_calls().openat(parent.state_->fd.get(), name.c_str(), directory_flags, 0));
}

bool directory_t::next(directory_entry_t& entry) {
    if (state_->next >= state_->items.size()) {
        return false;
    }
    const state_t::item_t& item = state_->items[state_->next++];
    entry.native.assign(state_->names, item.at, item.size);
    entry.type = item.type;
    // An ASCII name is its own wide form; any other is kept only when it is UTF-8 that
    // converts back to the same bytes.
    if (is_ascii(entry.native)) {
        entry.name.assign(entry.native.begin(), entry.native.end());
    } else {
        entry.name = to_ustring(entry.native);
        if (to_utf8(entry.name) != entry.native) {
            entry.name.clear();
        }
    }
    return true;
}

void directory_t::release() {
    // What reacquire compares with; taken only here, as few walks go deep enough to need it.
    state_->identity = {};
    fs_calls().fstat(state_->fd.get(), &state_->identity);
    state_->fd.reset(-1);
}

bool directory_t::reacquire(const directory_t& child) {
    fd_t fd(fs_calls().openat(child.state_->fd.get(), "..", directory_flags, 0));
    struct stat st;
    if (fd.get() < 0 || fs_calls().fstat(fd.get(), &st) != 0 || !same_entry(st, state_->identity)) {
        return false;
    }
    state_->fd.reset(fd.take());
    return true;
}

bool directory_t::leads_to_directory(const native_name_t& name) const {
    struct stat st;
    return fs_calls().fstatat(state_->fd.get(), name.c_str(), &st, 0) == 0 && S_ISDIR(st.st_mode);
}

void directory_t::make_writable() {
    // Without write permission a directory keeps its entries; Windows has no such protection.
    struct stat st;
    if (fs_calls().fstat(state_->fd.get(), &st) == 0 && (st.st_mode & S_IWUSR) == 0) {
        fs_calls().fchmod(state_->fd.get(), (st.st_mode & 07777) | S_IWUSR);
    }
}

bool directory_t::remove(const native_name_t& name, entry_type_t type) {
    const int flags = type == entry_type_t::directory ? AT_REMOVEDIR : 0;
    return fs_calls().unlinkat(state_->fd.get(), name.c_str(), flags) == 0;
}

bool directory_t::create_directory(const native_name_t& name) {
    return fs_calls().mkdirat(state_->fd.get(), name.c_str(), 0777) == 0;
}

bool directory_t::copy_file(const native_name_t& name, const directory_t& target) const {
    return copy_regular(state_->fd.get(), name.c_str(), target.state_->fd.get(), name.c_str(),
                        O_NOFOLLOW);
}

bool directory_t::copy_link(const native_name_t& name, const directory_t& target) const {
    std::string to;
    return read_link_at(state_->fd.get(), name.c_str(), to) &&
           fs_calls().symlinkat(to.c_str(), target.state_->fd.get(), name.c_str()) == 0;
}

} // namespace velmor2::_internal::os
