// Directory and file operations on POSIX: mkdir, rmdir, unlink, rename, chmod, a copy loop and
// readdir.
#include "os/fs.hpp"
#include "os/posix/fs_calls.hpp"
#include "os/posix/native.hpp"
#include "unicode/convert.hpp"

#include <cerrno>
#include <cstdio>
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace velmor2::_internal::os {
namespace {

constexpr mode_t write_bits = S_IWUSR | S_IWGRP | S_IWOTH;

int open_call(const char* path, int flags, mode_t mode) {
    return ::open(path, flags, mode);
}

int rename_no_replace(const char* from, const char* to) {
#ifdef RENAME_NOREPLACE
    if (::renameat2(AT_FDCWD, from, AT_FDCWD, to, RENAME_NOREPLACE) == 0) {
        return 0;
    }
    // File systems without the flag answer EINVAL; the caller has checked the target already.
    if (errno != EINVAL && errno != ENOSYS) {
        return -1;
    }
#endif
    return ::rename(from, to);
}

// Closes a descriptor on every way out, keeping errno of the failure being reported.
class fd_t {
  public:
    explicit fd_t(int fd) : fd_(fd) {}
    ~fd_t() {
        if (fd_ >= 0) {
            const int saved = errno;
            ::close(fd_);
            errno = saved;
        }
    }
    fd_t(const fd_t&) = delete;
    fd_t& operator=(const fd_t&) = delete;
    int get() const { return fd_; }
    // Closes now; false (errno set) when the system reports a late write failure.
    bool close() {
        const int fd = fd_;
        fd_ = -1;
        return ::close(fd) == 0;
    }

  private:
    int fd_;
};

} // namespace

bool write_all(int fd, const void* bytes, std::size_t size) {
    const char* data = static_cast<const char*>(bytes);
    while (size > 0) {
        const ssize_t written = fs_calls().write(fd, data, size);
        if (written < 0) {
            if (errno == EINTR) {
                continue;
            }
            return false;
        }
        data += written;
        size -= static_cast<std::size_t>(written);
    }
    return true;
}

namespace {

bool copy_content(int in, int out) {
    std::vector<char> buffer(1 << 17);
    for (;;) {
        const ssize_t got = fs_calls().read(in, buffer.data(), buffer.size());
        if (got == 0) {
            return true;
        }
        if (got < 0) {
            if (errno == EINTR) {
                continue;
            }
            return false;
        }
        if (!write_all(out, buffer.data(), static_cast<std::size_t>(got))) {
            return false;
        }
    }
}

// Content, permission bits and times of the open source into the open, new target.
bool fill_copy(int in, const struct stat& st, fd_t& out) {
    if (!copy_content(in, out.get())) {
        return false;
    }
    const struct timespec times[2] = {st.st_atim, st.st_mtim};
    if (::fchmod(out.get(), st.st_mode & 0777) != 0 || ::futimens(out.get(), times) != 0) {
        return false;
    }
    return out.close();
}

} // namespace

fs_calls_t& fs_calls() {
    static fs_calls_t calls = real_fs_calls();
    return calls;
}

const fs_calls_t& real_fs_calls() {
    static const fs_calls_t calls = {::mkdir, ::rmdir,   ::unlink, rename_no_replace,
                                     ::chmod, open_call, ::read,   ::write,
                                     ::fsync, ::rename};
    return calls;
}

bool create_directory(const std::wstring& text, error_kind_t& error) {
    if (fs_calls().mkdir(native_bytes(text).c_str(), 0777) == 0) {
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
    if (::lstat(native.c_str(), &st) != 0) {
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

bool is_link(const std::wstring& text) {
    struct stat st;
    return ::lstat(native_bytes(text).c_str(), &st) == 0 && S_ISLNK(st.st_mode);
}

bool remove_link(const std::wstring& text) {
    return fs_calls().unlink(native_bytes(text).c_str()) == 0;
}

bool reset_attributes(const std::wstring& text) {
    const std::string native = native_bytes(text);
    struct stat st;
    if (::lstat(native.c_str(), &st) != 0) {
        return false;
    }
    if (S_ISLNK(st.st_mode) || (st.st_mode & S_IWUSR) != 0) {
        return true;
    }
    return fs_calls().chmod(native.c_str(), (st.st_mode & 07777) | S_IWUSR) == 0;
}

bool copy_file(const std::wstring& from, const std::wstring& to) {
    // Non-blocking so that a FIFO is refused below instead of waiting for a writer.
    const fd_t in(
        fs_calls().open(native_bytes(from).c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC, 0));
    if (in.get() < 0) {
        return false;
    }
    struct stat st;
    if (::fstat(in.get(), &st) != 0) {
        return false;
    }
    if (!S_ISREG(st.st_mode)) {
        errno = S_ISDIR(st.st_mode) ? EISDIR : EINVAL;
        return false;
    }
    const std::string target = native_bytes(to);
    fd_t out(fs_calls().open(target.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
    if (out.get() < 0) {
        return false;
    }
    if (fill_copy(in.get(), st, out)) {
        return true;
    }
    const int saved = errno;
    ::unlink(target.c_str());
    errno = saved;
    return false;
}

bool move_entry(const std::wstring& from, const std::wstring& to) {
    return fs_calls().rename(native_bytes(from).c_str(), native_bytes(to).c_str()) == 0;
}

struct directory_search_t::state_t {
    DIR* dir = nullptr;
};

directory_search_t::directory_search_t(const std::wstring& text) : state_(new state_t) {
    state_->dir = ::opendir(native_bytes(text).c_str());
}

directory_search_t::~directory_search_t() {
    if (state_->dir != nullptr) {
        ::closedir(state_->dir);
    }
}

bool directory_search_t::is_open() const {
    return state_->dir != nullptr;
}

bool directory_search_t::next(directory_entry_t& entry) {
    if (state_->dir == nullptr) {
        return false;
    }
    errno = 0;
    const dirent* found = ::readdir(state_->dir);
    if (found == nullptr) {
        return false;
    }
    const char* name = found->d_name;
    const unsigned char* p = reinterpret_cast<const unsigned char*>(name);
    while (*p != 0 && *p < 0x80) {
        ++p;
    }
    if (*p == 0) {
        // Plain ASCII, the usual case: widened in place, reusing the entry's buffer.
        entry.name.assign(name, reinterpret_cast<const char*>(p));
    } else {
        entry.name = to_ustring(name);
        if (to_utf8(entry.name) != name) {
            entry.name.clear();
        }
    }
    unsigned char type = found->d_type;
    if (type == DT_UNKNOWN) {
        struct stat st;
        if (::fstatat(::dirfd(state_->dir), name, &st, AT_SYMLINK_NOFOLLOW) == 0) {
            type = S_ISDIR(st.st_mode) ? DT_DIR : S_ISLNK(st.st_mode) ? DT_LNK : DT_REG;
        }
    }
    entry.type = type == DT_DIR   ? entry_type_t::directory
                 : type == DT_LNK ? entry_type_t::link
                                  : entry_type_t::file;
    return true;
}

} // namespace velmor2::_internal::os
