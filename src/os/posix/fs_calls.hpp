// The POSIX calls that reach the file system, through one table so that a test can make any
// of them fail (a full disk, a refused permission, a failing device) and check the failure
// comes back as a value.
#pragma once

#include <cerrno>
#include <cstddef>
#include <string>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <sys/types.h>

namespace velmor2::_internal::os {

/// Every call the file operations make that can fail on the file system.
struct fs_calls_t {
    int (*mkdir)(const char* path, mode_t mode);
    int (*rmdir)(const char* path);
    int (*unlink)(const char* path);
    /// Renames without replacing an existing target.
    int (*rename)(const char* from, const char* to);
    int (*open)(const char* path, int flags, mode_t mode);
    ssize_t (*read)(int fd, void* buffer, size_t size);
    ssize_t (*write)(int fd, const void* buffer, size_t size);
    int (*close)(int fd);
    /// The calls relative to an open directory, with which the tree walks reach entries.
    int (*mkdirat)(int dir, const char* name, mode_t mode);
    int (*unlinkat)(int dir, const char* name, int flags);
    int (*openat)(int dir, const char* name, int flags, mode_t mode);
    int (*fstatat)(int dir, const char* name, struct stat* st, int flags);
    /// Reads entries of the open directory `fd` as `dirent64` records (getdents64).
    ssize_t (*read_directory)(int fd, void* buffer, size_t size);
    ssize_t (*readlinkat)(int dir, const char* name, char* buffer, size_t size);
    int (*symlinkat)(const char* to, int dir, const char* name);
    /// What an entry is, by name (following a link or not) and by descriptor.
    int (*stat)(const char* path, struct stat* st);
    int (*lstat)(const char* path, struct stat* st);
    int (*fstat)(int fd, struct stat* st);
    int (*faccessat)(int dir, const char* name, int mode, int flags);
    int (*statvfs)(const char* path, struct statvfs* vfs);
    /// The working directory.
    char* (*getcwd)(char* buffer, size_t size);
    int (*chdir)(const char* path);
    /// What a copy or a save carries over, and the lock a save or a reader holds.
    int (*fchmod)(int fd, mode_t mode);
    int (*fchown)(int fd, uid_t owner, gid_t group);
    int (*futimens)(int fd, const struct timespec times[2]);
    int (*ftruncate)(int fd, off_t size);
    int (*flock)(int fd, int operation);
    /// Flushes a file's or a folder's data to the disk.
    int (*fsync)(int fd);
    /// Renames, replacing an existing target in one step.
    int (*replace)(const char* from, const char* to);
};

/// Makes `call` again while it fails with EINTR (a signal arrived first); its last result.
template <typename call_t> auto retry_interrupted(call_t call) {
    for (;;) {
        const auto result = call();
        if (!(result < 0 && errno == EINTR)) {
            return result;
        }
    }
}

/// The table in use; starts with the real calls.
fs_calls_t& fs_calls();

/// The real calls.
const fs_calls_t& real_fs_calls();

/// Writes all `size` bytes to `fd` through the table, retrying interrupted writes; false on
/// any other failure.
bool write_all(int fd, const void* data, std::size_t size);

/// The target of the link `name` in the folder `dir` (`AT_FDCWD`: the working folder), read
/// through the table whatever its length; false (errno set) when it cannot be read.
bool read_link_at(int dir, const char* name, std::string& target);

} // namespace velmor2::_internal::os
