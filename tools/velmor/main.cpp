// velmor: the library's families from the shell.
#include "command.hpp"
#include "files.hpp"
#include "native_text.hpp"

#include <algorithm>
#include <cerrno>
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

// The first error writing standard output; reported once, when the command is done.
int output_error = 0;

void write(std::FILE* stream, const std::wstring& text) {
    const std::string bytes = to_bytes(text);
    if (std::fwrite(bytes.data(), 1, bytes.size(), stream) != bytes.size() && stream == stdout &&
        output_error == 0) {
        output_error = errno;
    }
}

// `status`, or `exit_failed` after a message when standard output could not be written.
int finish(const std::wstring& command, int status) {
    if (std::fflush(stdout) != 0 && output_error == 0) {
        output_error = errno;
    }
    if (output_error == 0 && !std::ferror(stdout)) {
        return status;
    }
    err(command + L": write error" + (output_error != 0 ? L": " + reason(output_error) : L"") +
        L"\n");
    return exit_failed;
}

void print_help(void (*print)(const std::wstring&)) {
    print(L"usage: velmor COMMAND [ARGS...]\n       velmor COMMAND --help\n\ncommands:\n");
    for (const command_t& command : commands()) {
        std::wstring name = from_bytes(command.name);
        name.resize(std::max<std::size_t>(name.size(), 8), L' ');
        print(L"  " + name + L"  " + from_bytes(command.summary) + L"\n");
    }
}

// The arguments after the program name. Windows hands argv over in the ANSI code page, which
// loses characters, so there they come from the wide command line; elsewhere argv holds bytes,
// UTF-8 as a rule, and any other byte is kept so that file names stay exact.
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
        args.push_back(from_bytes(argv[i]));
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
        print_help(err);
        return exit_usage;
    }
    if (args[0] == L"--help" || args[0] == L"-h" || args[0] == L"help") {
        print_help(out);
        return finish(L"velmor", exit_ok);
    }
    for (const command_t& command : commands()) {
        const std::wstring name = from_bytes(command.name);
        if (name != args[0]) {
            continue;
        }
        args.erase(args.begin());
        if (!args.empty() && (args[0] == L"--help" || args[0] == L"-h")) {
            out(from_bytes(command.usage));
            return finish(L"velmor " + name, exit_ok);
        }
        return finish(L"velmor " + name, command.run(args));
    }
    err(L"velmor: unknown command '" + args[0] + L"' (see velmor --help)\n");
    return exit_usage;
}
