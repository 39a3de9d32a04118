// velmor env: read, and in this process set, an environment variable.
#include "command.hpp"
#include "native_text.hpp"

#include <velmor2/runtime.hpp>

namespace velmor_tool {
namespace {

int run(const std::vector<std::wstring>& args) {
    if (args.empty() || args.size() > 2 || args[0].empty()) {
        err(L"usage: velmor env NAME [VALUE]\n");
        return exit_usage;
    }
    // The environment holds text: a stand-in character would change what the caller gave.
    if (!is_unicode(args[0]) || (args.size() == 2 && !is_unicode(args[1]))) {
        err(L"velmor env: NAME and VALUE must be valid UTF-8; nothing set\n");
        return exit_failed;
    }
    if (args.size() == 2) {
        velmor2::set_environ_value(args[0], args[1]);
    }
    const std::wstring value = velmor2::get_environ_value(args[0]);
    if (value.empty()) {
        err(L"velmor env: NAME '" + args[0] + L"' is not set\n");
        return exit_failed;
    }
    out(value + L"\n");
    return exit_ok;
}

const command_registrar_t registered(
    {"env", "print an environment variable (after setting it, given a value)",
     "usage: velmor env NAME [VALUE]\n"
     "Prints the value of NAME. With VALUE, sets it first in this process (an empty VALUE\n"
     "removes it) and prints what reading it back gives. Exit status: 0 printed, 1 not set\n"
     "(or NAME or VALUE not UTF-8), 2 bad usage.\n",
     run});

} // namespace
} // namespace velmor_tool
