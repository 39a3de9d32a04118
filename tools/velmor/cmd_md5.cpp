// velmor md5: MD5 digests of files, printed and checked as md5sum does.
#include "command.hpp"
#include "file_arguments.hpp"
#include "files.hpp"
#include "native_text.hpp"

#include <velmor2/hash.hpp>

#include <algorithm>
#include <cctype>
#include <cerrno>

namespace velmor_tool {
namespace {

class md5_summary_t : public file_summary_t {
  public:
    void start() override { md5 = velmor2::md5_t(); }
    void take(const char* data, std::size_t size) override { md5.update(std::string(data, size)); }
    std::wstring result() override { return md5.get_digest_base16(); }

  private:
    velmor2::md5_t md5;
};

// A line as md5sum writes it: 32 hexadecimal digits, a space, a space or `*`, the name; a
// leading backslash marks a name with `\\`, `\n` and `\r` escapes.
bool parse_line(std::string line, std::wstring& digest, std::wstring& name) {
    if (!line.empty() && line.back() == '\r') {
        line.pop_back();
    }
    const std::size_t start = !line.empty() && line[0] == '\\' ? 1 : 0;
    if (line.size() < start + 35 || line[start + 32] != ' ' ||
        (line[start + 33] != ' ' && line[start + 33] != '*')) {
        return false;
    }
    digest.clear();
    for (std::size_t i = start; i < start + 32; ++i) {
        if (!std::isxdigit(static_cast<unsigned char>(line[i]))) {
            return false;
        }
        digest += static_cast<wchar_t>(std::tolower(static_cast<unsigned char>(line[i])));
    }
    std::string raw;
    for (std::size_t i = start + 34; i < line.size(); ++i) {
        if (start == 0 || line[i] != '\\') {
            raw += line[i];
            continue;
        }
        const char escaped = ++i < line.size() ? line[i] : '\0';
        if (escaped != '\\' && escaped != 'n' && escaped != 'r') {
            return false;
        }
        raw += escaped == 'n' ? '\n' : escaped == 'r' ? '\r' : '\\';
    }
    name = from_bytes(raw);
    return true;
}

// Reports `count` on standard error in md5sum's words; true when there was any.
bool warn(std::size_t count, const wchar_t* one, const wchar_t* many) {
    if (count > 0) {
        err(L"velmor md5: WARNING: " + std::to_wstring(count) + L" " + (count == 1 ? one : many) +
            L"\n");
    }
    return count > 0;
}

// Checks the files listed in the checksum file `list`; exit_failed on any miss.
int check_list(const std::wstring& list) {
    std::string content;
    if (!read_file(
            list, [&content](const char* data, std::size_t size) { content.append(data, size); })) {
        report(L"md5", list, reason(errno));
        return exit_failed;
    }
    std::size_t improper = 0, proper = 0, unreadable = 0, mismatched = 0;
    for (std::size_t start = 0; start < content.size();) {
        const std::size_t end = std::min(content.find('\n', start), content.size());
        const std::string line = content.substr(start, end - start);
        start = end + 1;
        std::wstring digest, name;
        if (line.empty() || line[0] == '#') {
            continue;
        }
        if (!parse_line(line, digest, name)) {
            ++improper;
            continue;
        }
        ++proper;
        const std::wstring shown =
            name.find(L'\n') == std::wstring::npos ? name : L"\\" + escape_name(name);
        md5_summary_t md5;
        md5.start();
        if (!read_file(name,
                       [&md5](const char* data, std::size_t size) { md5.take(data, size); })) {
            report(L"md5", name, reason(errno));
            out(shown + L": FAILED open or read\n");
            ++unreadable;
        } else if (md5.result() != digest) {
            out(shown + L": FAILED\n");
            ++mismatched;
        } else {
            out(shown + L": OK\n");
        }
    }
    if (proper == 0) {
        report(L"md5", list, L"no properly formatted checksum lines found");
        return exit_failed;
    }
    warn(improper, L"line is improperly formatted", L"lines are improperly formatted");
    const bool unread =
        warn(unreadable, L"listed file could not be read", L"listed files could not be read");
    const bool failed =
        warn(mismatched, L"computed checksum did NOT match", L"computed checksums did NOT match");
    return unread || failed ? exit_failed : exit_ok;
}

int run(const std::vector<std::wstring>& args) {
    std::vector<std::wstring> files, flags;
    if (!file_arguments(L"md5", args, files, {L"-c", L"--check"}, &flags)) {
        return exit_usage;
    }
    if (flags.empty()) {
        md5_summary_t summary;
        return print_summaries(L"md5", files, summary);
    }
    int status = exit_ok;
    for (const std::wstring& list : files) {
        status = std::max(status, check_list(list));
    }
    return status;
}

const command_registrar_t registered(
    {"md5", "print or check MD5 digests of files",
     "usage: velmor md5 [FILE]...\n"
     "       velmor md5 --check [FILE]...\n"
     "Prints the MD5 digest of each FILE, two spaces and its name, as md5sum does: a name\n"
     "holding a backslash, newline or carriage return is written with \\\\, \\n and \\r and\n"
     "the line starts with a backslash. With no FILE, or when FILE is -, reads standard\n"
     "input. With -c (--check), reads such lines (from velmor md5 or md5sum) from each FILE\n"
     "and prints for each listed file OK, FAILED, or FAILED open or read.\n"
     "Exit status: 0 done (every listed file matched), 1 a file could not be read or did not\n"
     "match, 2 bad usage.\n",
     run});

} // namespace
} // namespace velmor_tool
