// XML file descriptors from the runtime library's sharing modes; text mode translates line
// ends to CR LF on writing and back on reading.
#include "os/xml_file.hpp"

#include <fcntl.h>
#include <io.h>
#include <share.h>
#include <sys/stat.h>

namespace velmor2::_internal::os {

int open_xml_for_reading(const std::wstring& printed) {
    int descriptor = -1;
    if (_wsopen_s(&descriptor, printed.c_str(), _O_RDONLY, _SH_DENYWR, 0) != 0) {
        return -1;
    }
    return descriptor;
}

int open_xml_for_writing(const std::wstring& printed) {
    int descriptor = -1;
    if (_wsopen_s(&descriptor, printed.c_str(), _O_WRONLY | _O_CREAT | _O_TRUNC, _SH_DENYRW,
                  _S_IREAD | _S_IWRITE) != 0) {
        return -1;
    }
    return descriptor;
}

void close_xml_file(int descriptor) {
    _close(descriptor);
}

} // namespace velmor2::_internal::os
