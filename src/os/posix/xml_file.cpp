// XML file descriptors with flock advisory locks (per open file description, so two opens in
// one process exclude each other as two processes do).
#include "os/xml_file.hpp"
#include "os/posix/native.hpp"

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace velmor2::_internal::os {
namespace {

int open_locked(const std::wstring& printed, int flags, int lock) {
    int descriptor;
    do {
        descriptor = ::open(native_bytes(printed).c_str(), flags | O_CLOEXEC, 0666);
    } while (descriptor < 0 && errno == EINTR);
    if (descriptor < 0) {
        return -1;
    }
    struct stat st;
    if (::fstat(descriptor, &st) != 0 || !S_ISREG(st.st_mode) ||
        ::flock(descriptor, lock | LOCK_NB) != 0) {
        ::close(descriptor);
        return -1;
    }
    return descriptor;
}

} // namespace

int open_xml_for_reading(const std::wstring& printed) {
    return open_locked(printed, O_RDONLY | O_NONBLOCK, LOCK_SH);
}

int open_xml_for_writing(const std::wstring& printed) {
    // No O_TRUNC: the file is emptied only once the exclusive lock is ours.
    const int descriptor = open_locked(printed, O_WRONLY | O_CREAT | O_NONBLOCK, LOCK_EX);
    if (descriptor >= 0 && ::ftruncate(descriptor, 0) != 0) {
        ::close(descriptor);
        return -1;
    }
    return descriptor;
}

void close_xml_file(int descriptor) {
    ::close(descriptor);
}

} // namespace velmor2::_internal::os
