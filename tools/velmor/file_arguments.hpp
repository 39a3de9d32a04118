// File-name arguments of the commands that take a list of files.
#pragma once

#include "command.hpp"

#include <string>
#include <vector>

namespace velmor_tool {

/// The file names of `args`: everything after `--`, and before it every argument that is not
/// an option. False, after reporting on standard error, when an option is given or no file.
inline bool file_arguments(const wchar_t* command, const std::vector<std::wstring>& args,
                           std::vector<std::wstring>& files) {
    bool options = true;
    for (const std::wstring& arg : args) {
        if (options && arg == L"--") {
            options = false;
        } else if (options && arg.size() > 1 && arg[0] == L'-') {
            err(std::wstring(L"velmor ") + command + L": unknown option '" + arg + L"'\n");
            return false;
        } else {
            files.push_back(arg);
        }
    }
    if (files.empty()) {
        err(std::wstring(L"velmor ") + command + L": no FILE given (see velmor " + command +
            L" --help)\n");
        return false;
    }
    return true;
}

} // namespace velmor_tool
