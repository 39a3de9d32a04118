// Folder watches through inotify: the folder rather than the file is watched, because a file
// saved by replacement is a new inode that a watch on the old one would never report.
#include "os/file_watch.hpp"

#include "os/posix/fs_calls.hpp"
#include "os/posix/native.hpp"

#include <cerrno>
#include <climits>
#include <cstring>
#include <sys/inotify.h>
#include <unistd.h>

namespace velmor2::_internal::os {

std::intptr_t open_folder_watch(const std::wstring& printed_folder) {
    const int fd = inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
    if (fd < 0) {
        return no_watch;
    }
    constexpr std::uint32_t events = IN_CLOSE_WRITE | IN_MOVED_TO | IN_MOVED_FROM | IN_CREATE |
                                     IN_DELETE | IN_ATTRIB | IN_ONLYDIR;
    if (inotify_add_watch(fd, native_bytes(printed_folder).c_str(), events) < 0) {
        fs_calls().close(fd);
        return no_watch;
    }
    return fd;
}

bool drain_folder_watch(std::intptr_t watch, const std::wstring& leaf) {
    const std::string name = native_bytes(leaf);
    bool concerned = false;
    alignas(inotify_event) char buffer[64 * (sizeof(inotify_event) + NAME_MAX + 1)];
    for (;;) {
        const int fd = static_cast<int>(watch);
        const ssize_t got =
            retry_interrupted([&] { return fs_calls().read(fd, buffer, sizeof buffer); });
        if (got <= 0) {
            return concerned;
        }
        for (ssize_t at = 0; at < got;) {
            inotify_event event;
            std::memcpy(&event, buffer + at, sizeof event);
            const char* event_name = buffer + at + sizeof event;
            concerned = concerned || (event.mask & (IN_Q_OVERFLOW | IN_IGNORED)) != 0 ||
                        (event.len > 0 && name == event_name);
            at += static_cast<ssize_t>(sizeof event + event.len);
        }
    }
}

void close_folder_watch(std::intptr_t watch) {
    if (watch != no_watch) {
        fs_calls().close(static_cast<int>(watch));
    }
}

} // namespace velmor2::_internal::os
