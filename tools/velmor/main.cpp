// velmor: the library's families from the shell.
#include "command.hpp"

#include "text/convert.hpp"

#include <algorithm>
#include <cstdio>

#if defined(_WIN32)
#include <windows.h>

#include <shellapi.h>
#endif

namespace velmor_tool {
namespace {

std::vector<command_t>& registry() {
    static std::vector<command_t> list;
    return list;
}

void write(std::FILE* stream, const std::wstring& text) {
    const std::string bytes = velmor2::_internal::to_utf8(text);
    std::fwrite(bytes.data(), 1, bytes.size(), stream);
}

void print_help() {
    out(L"usage: velmor COMMAND [ARGS...]\n       velmor COMMAND --help\n\ncommands:\n");
    for (const command_t& command : commands()) {
        std::wstring name = velmor2::_internal::to_ustring(command.name);
        name.resize(std::max<std::size_t>(name.size(), 8), L' ');
        out(L"  " + name + L"  " + velmor2::_internal::to_ustring(command.summary) + L"\n");
    }
}

// The arguments after the program name. Windows hands argv over in the ANSI code page, which
// loses characters, so there they come from the wide command line; elsewhere argv is UTF-8.
std::vector<std::wstring> arguments(int argc, char** argv) {
    std::vector<std::wstring> args;
#if defined(_WIN32)
    int count = 0;
    if (LPWSTR* wide = CommandLineToArgvW(GetCommandLineW(), &count)) {
        for (int i = 1; i < count; ++i) {
            args.emplace_back(wide[i]);
        }
        LocalFree(wide);
        return args;
    }
#endif
    for (int i = 1; i < argc; ++i) {
        args.push_back(velmor2::_internal::to_ustring(argv[i]));
    }
    return args;
}

} // namespace

command_registrar_t::command_registrar_t(const command_t& command) {
    auto& list = registry();
    list.insert(std::upper_bound(list.begin(), list.end(), command,
                                 [](const command_t& a, const command_t& b) {
                                     return std::string(a.name) < b.name;
                                 }),
                command);
}

const std::vector<command_t>& commands() { return registry(); }

void out(const std::wstring& text) { write(stdout, text); }
void err(const std::wstring& text) { write(stderr, text); }

} // namespace velmor_tool

int main(int argc, char** argv) {
    using namespace velmor_tool;
    // Lines on standard output and the library's diagnostics on standard error stay in order.
    std::setvbuf(stdout, nullptr, _IOLBF, BUFSIZ);
    std::vector<std::wstring> args = arguments(argc, argv);
    if (args.empty()) {
        print_help();
        return exit_usage;
    }
    if (args[0] == L"--help" || args[0] == L"-h" || args[0] == L"help") {
        print_help();
        return exit_ok;
    }
    for (const command_t& command : commands()) {
        if (velmor2::_internal::to_ustring(command.name) != args[0]) {
            continue;
        }
        args.erase(args.begin());
        if (!args.empty() && (args[0] == L"--help" || args[0] == L"-h")) {
            out(velmor2::_internal::to_ustring(command.usage));
            return exit_ok;
        }
        return command.run(args);
    }
    err(L"velmor: unknown command '" + args[0] + L"' (see velmor --help)\n");
    return exit_usage;
}
