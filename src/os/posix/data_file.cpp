// Whole-file reading and writing with open, read and write. A small file takes one read: a
// short read that reaches the size seen at opening is the end ("CRC-32 of a file" in
// docs/performance.md).
#include "os/data_file.hpp"
#include "os/posix/fs_calls.hpp"
#include "os/posix/native.hpp"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace velmor2::_internal::os {
namespace {

// Opens without blocking (a FIFO would wait for a writer) and keeps regular files only: a
// device such as /dev/zero never ends.
int open_file(const std::wstring& printed, int flags, std::uint64_t& size) {
    const std::string native = native_bytes(printed);
    if (native.empty()) {
        return -1;
    }
    const int fd = retry_interrupted(
        [&] { return fs_calls().open(native.c_str(), flags | O_NONBLOCK | O_CLOEXEC, 0666); });
    if (fd < 0) {
        return -1;
    }
    struct stat st;
    if (fs_calls().fstat(fd, &st) != 0 || !S_ISREG(st.st_mode)) {
        fs_calls().close(fd);
        return -1;
    }
    size = static_cast<std::uint64_t>(st.st_size);
    return fd;
}

// Reads until `size` bytes, the end, or a short read at or past `end` (0: no end known; a
// file reported empty, as under /proc, may answer short anywhere).
bool read_fd(int fd, char* out, std::size_t size, std::size_t& got, std::uint64_t& position,
             std::uint64_t end) {
    while (got < size) {
        const ssize_t n =
            retry_interrupted([&] { return fs_calls().read(fd, out + got, size - got); });
        if (n < 0) {
            return false;
        }
        if (n == 0) {
            break;
        }
        got += static_cast<std::size_t>(n);
        position += static_cast<std::uint64_t>(n);
        if (got < size && end > 0 && position >= end) {
            break;
        }
    }
    return true;
}

} // namespace

data_file_t::~data_file_t() {
    if (handle_ >= 0) {
        fs_calls().close(static_cast<int>(handle_));
    }
}

bool data_file_t::open_read(const std::wstring& printed) {
    handle_ = open_file(printed, O_RDONLY, size_at_open_);
    return handle_ >= 0;
}

bool data_file_t::open_write(const std::wstring& printed) {
    handle_ = open_file(printed, O_WRONLY | O_CREAT | O_TRUNC, size_at_open_);
    return handle_ >= 0;
}

bool data_file_t::size(std::uint64_t& bytes) {
    struct stat st;
    if (handle_ < 0 || fs_calls().fstat(static_cast<int>(handle_), &st) != 0) {
        return false;
    }
    if (st.st_size == 0 && read_ahead_.empty() && served_ == 0) {
        char chunk[4096];
        for (;;) {
            std::size_t got = 0;
            if (!read_fd(static_cast<int>(handle_), chunk, sizeof chunk, got, position_, 0)) {
                return false;
            }
            read_ahead_.append(chunk, got);
            if (got < sizeof chunk) {
                break;
            }
        }
        bytes = read_ahead_.size();
        return true;
    }
    bytes = static_cast<std::uint64_t>(st.st_size);
    return true;
}

bool data_file_t::read(void* buffer, std::size_t size, std::size_t& got) {
    char* out = static_cast<char*>(buffer);
    got = std::min(size, read_ahead_.size() - served_);
    std::memcpy(out, read_ahead_.data() + served_, got);
    served_ += got;
    return read_fd(static_cast<int>(handle_), out, size, got, position_, size_at_open_);
}

bool data_file_t::write(const void* data, std::size_t size) {
    return write_all(static_cast<int>(handle_), data, size);
}

} // namespace velmor2::_internal::os
