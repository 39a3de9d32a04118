// Files named exactly as given on the command line, and how the commands name them in output.
#pragma once

#include <velmor2/path.hpp>

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace velmor_tool {

/// Receives the bytes of a file, chunk by chunk.
using chunk_sink_t = std::function<void(const char* data, std::size_t size)>;

/// Reads the file of exactly the name `name` (standard input for "-") to its end through
/// `sink`; false, with the system's error code in `errno`, when it cannot be opened or read.
bool read_file(const std::wstring& name, const chunk_sink_t& sink);

/// Replaces the content of the file of exactly the name `name` by `bytes`, creating it if
/// needed; false, with the system's error code in `errno`, when that fails.
bool write_file(const std::wstring& name, const std::string& bytes);

/// 0 when an entry of exactly the name `name` exists and is not a directory; otherwise the
/// system's error code (`EISDIR` for a directory).
int file_error(const std::wstring& name);

/// The system's text for the error code `code`, e.g. "No such file or directory".
std::wstring reason(int code);

/// Reports "velmor COMMAND: NAME: PROBLEM" on standard error.
void report(const wchar_t* command, const std::wstring& name, const std::wstring& problem);

/// The path through which the library opens exactly the file `name`. The library reads file
/// names through its path grammar, which trims quotes and spaces, takes `\` for a separator
/// and `x:` for a drive, and holds Unicode only; for a name it would take for another file,
/// reports so on standard error and gives the empty path.
velmor2::path_t exact_path(const wchar_t* command, const std::wstring& name);

/// `name` with backslash, newline and carriage return written as `\\`, `\n` and `\r`, as
/// md5sum writes a name holding any of them (and then starts the line with a backslash).
std::wstring escape_name(const std::wstring& name);

/// What a command computes from the bytes of one file at a time.
class file_summary_t {
  public:
    virtual ~file_summary_t() = default;
    /// Starts on the next file.
    virtual void start() = 0;
    /// Takes the next bytes of the file.
    virtual void take(const char* data, std::size_t size) = 0;
    /// The text printed before the file's name.
    virtual std::wstring result() = 0;
};

/// Prints for each of `files` ("-" standard input) the summary, two spaces and the name, as
/// md5sum prints a digest line; reports each file that cannot be read. `exit_failed` when one
/// could not be read, else `exit_ok`.
int print_summaries(const wchar_t* command, const std::vector<std::wstring>& files,
                    file_summary_t& summary);

} // namespace velmor_tool
