// Files named exactly as given on the command line, and how the commands name them in output.
#include "files.hpp"

#include "command.hpp"
#include "native_text.hpp"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <sys/stat.h>

#if defined(_WIN32)
#include <fcntl.h>
#include <io.h>
#endif

namespace velmor_tool {
namespace {

constexpr std::size_t chunk_size = 65536;

// The name as the system takes it: the bytes given on POSIX, the wide text on Windows.
#if defined(_WIN32)
std::FILE* open_file(const std::wstring& name, const wchar_t* mode) {
    return _wfopen(name.c_str(), mode);
}
void binary_stdin() {
    _setmode(_fileno(stdin), _O_BINARY);
}
int stat_error(const std::wstring& name) {
    struct _stat64 status;
    return _wstat64(name.c_str(), &status) != 0 ? errno
           : (status.st_mode & _S_IFDIR) != 0   ? EISDIR
                                                : 0;
}
#else
std::FILE* open_file(const std::wstring& name, const wchar_t* mode) {
    return std::fopen(to_bytes(name).c_str(), to_bytes(mode).c_str());
}
void binary_stdin() {}
int stat_error(const std::wstring& name) {
    struct stat status;
    return ::stat(to_bytes(name).c_str(), &status) != 0 ? errno
           : S_ISDIR(status.st_mode)                    ? EISDIR
                                                        : 0;
}
#endif

// Closes `stream` unless it is standard input; keeps `errno` of an earlier failure.
bool finish(std::FILE* stream, bool ok) {
    const int error = errno;
    if (stream == stdin) {
        std::clearerr(stdin);
    } else if (std::fclose(stream) != 0 && ok) {
        return false;
    }
    errno = error;
    return ok;
}

// Collapses runs of separators, which name the same file.
std::wstring collapsed(const std::wstring& name) {
#if defined(_WIN32)
    const std::wstring separators = L"/\\";
#else
    const std::wstring separators = L"/";
#endif
    std::wstring text;
    for (const wchar_t c : name) {
        const bool separator = separators.find(c) != std::wstring::npos;
        if (!separator || text.empty() || text.back() != separators[0]) {
            text += separator ? separators[0] : c;
        }
    }
    return text;
}

} // namespace

bool read_file(const std::wstring& name, const chunk_sink_t& sink) {
    if (name == L"-") {
        binary_stdin();
    }
    std::FILE* stream = name == L"-" ? stdin : open_file(name, L"rb");
    if (stream == nullptr) {
        return false;
    }
    std::vector<char> buffer(chunk_size);
    std::size_t got;
    while ((got = std::fread(buffer.data(), 1, buffer.size(), stream)) > 0) {
        sink(buffer.data(), got);
    }
    return finish(stream, !std::ferror(stream));
}

bool write_file(const std::wstring& name, const std::string& bytes) {
    std::FILE* stream = open_file(name, L"wb");
    if (stream == nullptr) {
        return false;
    }
    return finish(stream, std::fwrite(bytes.data(), 1, bytes.size(), stream) == bytes.size() &&
                              std::fflush(stream) == 0);
}

int file_error(const std::wstring& name) {
    return stat_error(name);
}

std::wstring reason(int code) {
    return from_bytes(std::strerror(code));
}

void report(const wchar_t* command, const std::wstring& name, const std::wstring& problem) {
    err(std::wstring(L"velmor ") + command + L": " + name + L": " + problem + L"\n");
}

velmor2::path_t exact_path(const wchar_t* command, const std::wstring& name) {
    const velmor2::path_t path(name);
    if (!is_unicode(name) || path.is_empty() ||
        collapsed(path.as_native_string()) != collapsed(name)) {
        report(command, name,
               L"the library would take this name for another file (quotes, spaces at the "
               L"ends, '\\', ':' or bytes that are not UTF-8); not used");
        return velmor2::path_t();
    }
    return path;
}

std::wstring escape_name(const std::wstring& name) {
    std::wstring text;
    for (const wchar_t c : name) {
        text += c == L'\\'   ? L"\\\\"
                : c == L'\n' ? L"\\n"
                : c == L'\r' ? L"\\r"
                             : std::wstring(1, c);
    }
    return text;
}

int print_summaries(const wchar_t* command, const std::vector<std::wstring>& files,
                    file_summary_t& summary) {
    int status = exit_ok;
    for (const std::wstring& file : files) {
        summary.start();
        if (!read_file(file, [&summary](const char* data, std::size_t size) {
                summary.take(data, size);
            })) {
            report(command, file, reason(errno));
            status = exit_failed;
            continue;
        }
        const std::wstring escaped = escape_name(file);
        out((escaped == file ? L"" : L"\\") + summary.result() + L"  " + escaped + L"\n");
    }
    return status;
}

} // namespace velmor_tool
