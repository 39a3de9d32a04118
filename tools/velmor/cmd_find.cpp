// velmor find: the files under a directory whose names match a wildcard.
#include "command.hpp"
#include "files.hpp"

#include <velmor2/file_system.hpp>

#include <cerrno>

namespace velmor_tool {
namespace {

int run(const std::vector<std::wstring>& args) {
    std::vector<std::wstring> operands;
    bool recursive = false;
    for (const std::wstring& arg : args) {
        if (arg == L"-r" || arg == L"--recursive") {
            recursive = true;
        } else if (arg.size() > 1 && arg[0] == L'-') {
            err(L"velmor find: unknown option '" + arg + L"'\n");
            return exit_usage;
        } else {
            operands.push_back(arg);
        }
    }
    if (operands.size() != 2) {
        err(L"usage: velmor find DIR PATTERN [-r]\n");
        return exit_usage;
    }
    const velmor2::path_t dir = exact_path(L"find", operands[0]);
    if (dir.is_empty()) {
        return exit_failed;
    }
    const int error = file_error(operands[0]);
    if (error != EISDIR) {
        report(L"find", operands[0], reason(error != 0 ? error : ENOTDIR));
        return exit_failed;
    }
    for (const velmor2::path_t& file : velmor2::find_files(dir, operands[1], recursive)) {
        out(file.as_native_string() + L"\n");
    }
    return exit_ok;
}

const command_registrar_t registered(
    {"find", "list the files of a directory that match a wildcard",
     "usage: velmor find DIR PATTERN [-r]\n"
     "Prints, one per line, the files of DIR whose names match PATTERN (`*` any run of\n"
     "characters, `?` any one; case-sensitive). With -r (--recursive), searches every\n"
     "sub-directory too, depth first, in the order the file system gives the entries.\n"
     "Directories are never listed and linked directories never entered.\n"
     "Exit status: 0 searched (even with no match), 1 DIR is not a directory (or a name the\n"
     "library cannot take exactly), 2 bad usage.\n",
     run});

} // namespace
} // namespace velmor_tool
