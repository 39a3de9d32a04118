// The table of file-system calls, filled with the real ones.
#include "os/posix/fs_calls.hpp"

#include <cerrno>
#include <cstdio>
#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>
#include <vector>

namespace velmor2::_internal::os {
namespace {

// open and openat take their mode through `...`, which a table slot cannot hold.
int open_call(const char* path, int flags, mode_t mode) {
    return ::open(path, flags, mode);
}

int openat_call(int dir, const char* name, int flags, mode_t mode) {
    return ::openat(dir, name, flags, mode);
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

fs_calls_t real_calls() {
    fs_calls_t calls;
    calls.mkdir = ::mkdir;
    calls.rmdir = ::rmdir;
    calls.unlink = ::unlink;
    calls.rename = rename_no_replace;
    calls.open = open_call;
    calls.read = ::read;
    calls.write = ::write;
    calls.close = ::close;
    calls.mkdirat = ::mkdirat;
    calls.unlinkat = ::unlinkat;
    calls.openat = openat_call;
    calls.fstatat = ::fstatat;
    calls.read_directory = ::getdents64;
    calls.readlinkat = ::readlinkat;
    calls.symlinkat = ::symlinkat;
    calls.stat = ::stat;
    calls.lstat = ::lstat;
    calls.fstat = ::fstat;
    calls.faccessat = ::faccessat;
    calls.statvfs = ::statvfs;
    calls.getcwd = ::getcwd;
    calls.chdir = ::chdir;
    calls.fchmod = ::fchmod;
    calls.fchown = ::fchown;
    calls.futimens = ::futimens;
    calls.ftruncate = ::ftruncate;
    calls.flock = ::flock;
    calls.fsync = ::fsync;
    calls.replace = ::rename;
    return calls;
}

} // namespace

fs_calls_t& fs_calls() {
    static fs_calls_t calls = real_fs_calls();
    return calls;
}

const fs_calls_t& real_fs_calls() {
    static const fs_calls_t calls = real_calls();
    return calls;
}

bool write_all(int fd, const void* bytes, std::size_t size) {
    const char* data = static_cast<const char*>(bytes);
    while (size > 0) {
        const ssize_t written = retry_interrupted([&] { return fs_calls().write(fd, data, size); });
        if (written < 0) {
            return false;
        }
        data += written;
        size -= static_cast<std::size_t>(written);
    }
    return true;
}

bool read_link_at(int dir, const char* name, std::string& target) {
    std::vector<char> buffer(256);
    for (;;) {
        const ssize_t length = fs_calls().readlinkat(dir, name, buffer.data(), buffer.size());
        if (length < 0) {
            return false;
        }
        if (static_cast<std::size_t>(length) < buffer.size()) {
            target.assign(buffer.data(), static_cast<std::size_t>(length));
            return true;
        }
        buffer.resize(buffer.size() * 2);
    }
}

} // namespace velmor2::_internal::os
