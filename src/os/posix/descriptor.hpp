// An owned file descriptor.
#pragma once

#include "os/posix/fs_calls.hpp"

#include <cerrno>

namespace velmor2::_internal::os {

/// Closes its descriptor on every way out, keeping errno of the failure being reported.
class fd_t {
  public:
    explicit fd_t(int fd = -1) : fd_(fd) {}
    ~fd_t() { reset(-1); }
    fd_t(const fd_t&) = delete;
    fd_t& operator=(const fd_t&) = delete;
    int get() const { return fd_; }
    /// Closes the descriptor held, if any, and holds `fd`.
    void reset(int fd) {
        if (fd_ >= 0) {
            const int saved = errno;
            fs_calls().close(fd_);
            errno = saved;
        }
        fd_ = fd;
    }
    /// Hands the descriptor over to the caller.
    int take() {
        const int fd = fd_;
        fd_ = -1;
        return fd;
    }
    /// Closes now; false (errno set) when the system reports a late write failure.
    bool close() { return fs_calls().close(take()) == 0; }

  private:
    int fd_;
};

} // namespace velmor2::_internal::os
