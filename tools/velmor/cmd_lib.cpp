// velmor lib: load a shared library and look a symbol up.
#include "command.hpp"
#include "files.hpp"

#include <velmor2/runtime.hpp>

namespace velmor_tool {
namespace {

int run(const std::vector<std::wstring>& args) {
    if (args.size() != 2) {
        err(L"usage: velmor lib FILE SYMBOL\n");
        return exit_usage;
    }
    const velmor2::path_t file = exact_path(L"lib", args[0]);
    if (file.is_empty()) {
        return exit_failed;
    }
    if (file.get_leaf().empty()) {
        err(L"velmor lib: FILE '" + args[0] + L"' does not name a file\n");
        return exit_usage;
    }
    const velmor2::shared_lib_t library(file.get_leaf(), velmor2::path_t(file.get_branch()));
    if (!library) {
        err(L"velmor lib: FILE '" + args[0] + L"' cannot be loaded\n");
        return exit_failed;
    }
    if (library.get_symbol(args[1]) == nullptr) {
        out(args[1] + L": not found\n");
        return exit_failed;
    }
    out(args[1] + L": found\n");
    return exit_ok;
}

const command_registrar_t registered(
    {"lib", "load a shared library and report whether a symbol exists",
     "usage: velmor lib FILE SYMBOL\n"
     "Loads FILE (its folder and base name; the platform's suffix is tried too) and looks\n"
     "SYMBOL up by its exported name. Exit status: 0 found, 1 not loadable or not found,\n"
     "2 bad usage.\n",
     run});

} // namespace
} // namespace velmor_tool
