// File-name arguments of the commands that take a list of files.
#pragma once

#include "command.hpp"

#include <algorithm>
#include <string>
#include <vector>

namespace velmor_tool {

/// The file names of `args`: everything after `--`, and before it every argument that is not
/// an option ("-" names standard input); with none, "-". The options of `flags` that are given
/// go to `given`. False, after reporting on standard error, when another option is given.
inline bool file_arguments(const wchar_t* command, const std::vector<std::wstring>& args,
                           std::vector<std::wstring>& files,
                           const std::vector<std::wstring>& flags = {},
                           std::vector<std::wstring>* given = nullptr) {
    bool options = true;
    for (const std::wstring& arg : args) {
        if (options && arg == L"--") {
            options = false;
        } else if (options && given != nullptr &&
                   std::find(flags.begin(), flags.end(), arg) != flags.end()) {
            given->push_back(arg);
        } else if (options && arg.size() > 1 && arg[0] == L'-') {
            err(std::wstring(L"velmor ") + command + L": unknown option '" + arg +
                L"' (see velmor " + command + L" --help)\n");
            return false;
        } else {
            files.push_back(arg);
        }
    }
    if (files.empty()) {
        files.push_back(L"-");
    }
    return true;
}

} // namespace velmor_tool
