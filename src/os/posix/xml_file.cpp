// XML file descriptors with flock advisory locks (per open file description, so two opens in
// one process exclude each other as two processes do), and saves by write, fsync and rename.
#include "os/xml_file.hpp"
#include "os/posix/descriptor.hpp"
#include "os/posix/fs_calls.hpp"
#include "os/posix/native.hpp"

#include <atomic>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace velmor2::_internal::os {
namespace {

int open_retrying(const char* native, int flags, mode_t mode) {
    return retry_interrupted([&] { return fs_calls().open(native, flags | O_CLOEXEC, mode); });
}

// The file a save replaces: a symbolic link is followed, so that the link stays.
std::string final_target(const std::string& native) {
    struct stat st;
    if (fs_calls().lstat(native.c_str(), &st) == 0 && S_ISLNK(st.st_mode)) {
        if (char* resolved = ::realpath(native.c_str(), nullptr)) {
            std::string target(resolved);
            std::free(resolved);
            return target;
        }
    }
    return native;
}

// Locks the open `fd` of `native` against every other holder; false when it is not a regular
// file, is held, or no longer is what `native` names (another save replaced it meanwhile).
bool hold_alone(int fd, const std::string& native, struct stat& st) {
    struct stat named;
    return fs_calls().fstat(fd, &st) == 0 && S_ISREG(st.st_mode) &&
           fs_calls().flock(fd, LOCK_EX | LOCK_NB) == 0 &&
           fs_calls().stat(native.c_str(), &named) == 0 && named.st_dev == st.st_dev &&
           named.st_ino == st.st_ino;
}

// Creates a new, hidden file beside `target`; -1 (errno set) when none can be made.
int create_beside(const std::string& target, std::string& name) {
    static std::atomic<unsigned> counter{0};
    const std::size_t slash = target.rfind('/');
    const std::string folder = slash == std::string::npos ? "" : target.substr(0, slash + 1);
    // Short enough for every file-name limit, whatever the length of the target's name.
    const std::string base = target.substr(folder.size(), NAME_MAX - 40);
    for (int attempt = 0; attempt < 100; ++attempt) {
        name = folder + "." + base + "." + std::to_string(::getpid()) + "-" +
               std::to_string(counter++) + ".tmp";
        const int fd = open_retrying(name.c_str(), O_WRONLY | O_CREAT | O_EXCL, 0666);
        if (fd >= 0 || errno != EEXIST) {
            return fd;
        }
    }
    return -1;
}

// Gives the new file the owner and permission bits of the old; an owner only a privileged
// process may give is left as it is.
bool take_owner_and_mode(int fd, const struct stat& old) {
    if ((old.st_uid != ::geteuid() || old.st_gid != ::getegid()) &&
        fs_calls().fchown(fd, old.st_uid, old.st_gid) != 0 && errno != EPERM) {
        return false;
    }
    return fs_calls().fchmod(fd, old.st_mode & 07777) == 0;
}

bool write_in_place(int fd, const std::string& text) {
    return fs_calls().ftruncate(fd, 0) == 0 && write_all(fd, text.data(), text.size()) &&
           fs_calls().fsync(fd) == 0;
}

// Makes the rename durable. The new content is in place either way, so a failure here does
// not fail the save.
void sync_folder_of(const std::string& target) {
    const std::size_t slash = target.rfind('/');
    const std::string folder = slash == std::string::npos ? "."
                               : slash == 0               ? "/"
                                                          : target.substr(0, slash);
    const fd_t fd(open_retrying(folder.c_str(), O_RDONLY | O_DIRECTORY, 0));
    if (fd.get() >= 0) {
        fs_calls().fsync(fd.get());
    }
}

} // namespace

int open_xml_for_reading(const std::wstring& printed) {
    fd_t fd(open_retrying(native_bytes(printed).c_str(), O_RDONLY | O_NONBLOCK, 0));
    struct stat st;
    if (fd.get() < 0 || fs_calls().fstat(fd.get(), &st) != 0 || !S_ISREG(st.st_mode) ||
        fs_calls().flock(fd.get(), LOCK_SH | LOCK_NB) != 0) {
        return -1;
    }
    const int descriptor = fd.get();
    fd.take();
    return descriptor;
}

void close_xml_file(int descriptor) {
    fs_calls().close(descriptor);
}

bool replace_xml_file(const std::wstring& printed, const std::string& text) {
    const std::string target = final_target(native_bytes(printed));
    // O_NONBLOCK: a FIFO without a reader fails at once instead of blocking.
    const fd_t held(open_retrying(target.c_str(), O_WRONLY | O_NONBLOCK, 0));
    const bool exists = held.get() >= 0;
    struct stat old;
    if ((!exists && errno != ENOENT) || (exists && !hold_alone(held.get(), target, old))) {
        return false;
    }
    std::string staged_name;
    fd_t staged(create_beside(target, staged_name));
    if (staged.get() < 0) {
        return exists && (errno == EACCES || errno == EPERM) && write_in_place(held.get(), text);
    }
    // A new file must not replace one that appeared meanwhile: that is another save's.
    const bool done =
        (!exists || take_owner_and_mode(staged.get(), old)) &&
        write_all(staged.get(), text.data(), text.size()) && fs_calls().fsync(staged.get()) == 0 &&
        staged.close() &&
        (exists ? fs_calls().replace : fs_calls().rename)(staged_name.c_str(), target.c_str()) == 0;
    if (!done) {
        fs_calls().unlink(staged_name.c_str());
        return false;
    }
    sync_folder_of(target);
    return true;
}

} // namespace velmor2::_internal::os
