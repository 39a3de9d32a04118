// XML file descriptors from the runtime library's sharing modes; text mode translates line
// ends to CR LF on writing and back on reading. Saves write a new file, flush it
// (FlushFileBuffers through _commit) and move it over the old one.
#include "os/xml_file.hpp"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <fcntl.h>
#include <io.h>
#include <share.h>
#include <sys/stat.h>
#include <windows.h>

namespace velmor2::_internal::os {
namespace {

// Creates a new file beside `target`, named after it; -1 (errno set) when none can be made.
int create_beside(const std::wstring& target, std::wstring& name) {
    static std::atomic<unsigned> counter{0};
    const std::size_t slash = target.find_last_of(L"\\/");
    const std::wstring folder = slash == std::wstring::npos ? L"" : target.substr(0, slash + 1);
    const std::wstring base = target.substr(folder.size(), 200);
    for (int attempt = 0; attempt < 100; ++attempt) {
        name = folder + L"." + base + L"." + std::to_wstring(GetCurrentProcessId()) + L"-" +
               std::to_wstring(counter++) + L".tmp";
        int descriptor = -1;
        const int error = _wsopen_s(&descriptor, name.c_str(), _O_WRONLY | _O_CREAT | _O_EXCL,
                                    _SH_DENYRW, _S_IREAD | _S_IWRITE);
        if (error == 0) {
            return descriptor;
        }
        if (error != EEXIST) {
            errno = error;
            return -1;
        }
    }
    return -1;
}

bool write_text(int descriptor, const std::string& text) {
    for (std::size_t done = 0; done < text.size();) {
        const auto chunk =
            static_cast<unsigned>(std::min<std::size_t>(text.size() - done, 1u << 20));
        if (_write(descriptor, text.data() + done, chunk) != static_cast<int>(chunk)) {
            return false;
        }
        done += chunk;
    }
    return true;
}

} // namespace

int open_xml_for_reading(const std::wstring& printed) {
    int descriptor = -1;
    // A NUL would end the name early, at another file.
    if (printed.find(L'\0') != std::wstring::npos ||
        _wsopen_s(&descriptor, printed.c_str(), _O_RDONLY, _SH_DENYWR, 0) != 0) {
        return -1;
    }
    return descriptor;
}

void close_xml_file(int descriptor) {
    _close(descriptor);
}

bool replace_xml_file(const std::wstring& printed, const std::string& text) {
    if (printed.find(L'\0') != std::wstring::npos) {
        return false;
    }
    int held = -1;
    const int opened = _wsopen_s(&held, printed.c_str(), _O_WRONLY, _SH_DENYRW, 0);
    const bool exists = opened == 0;
    if (!exists && opened != ENOENT) {
        return false;
    }
    std::wstring staged_name;
    const int staged = create_beside(printed, staged_name);
    if (staged < 0) {
        const bool in_place = exists && errno == EACCES && _chsize_s(held, 0) == 0 &&
                              write_text(held, text) && _commit(held) == 0;
        if (exists) {
            _close(held);
        }
        return in_place;
    }
    bool done = write_text(staged, text) && _commit(staged) == 0;
    done = _close(staged) == 0 && done;
    // The move needs the old file free; the window until it replaces the file is short.
    if (exists) {
        _close(held);
    }
    done =
        done && MoveFileExW(staged_name.c_str(), printed.c_str(),
                            (exists ? MOVEFILE_REPLACE_EXISTING : 0) | MOVEFILE_WRITE_THROUGH) != 0;
    if (!done) {
        DeleteFileW(staged_name.c_str());
    }
    return done;
}

} // namespace velmor2::_internal::os
