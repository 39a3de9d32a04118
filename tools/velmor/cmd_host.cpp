// velmor host: the fully qualified name of this host.
#include "command.hpp"

#include <velmor2/runtime.hpp>

namespace velmor_tool {
namespace {

int run(const std::vector<std::wstring>& args) {
    if (!args.empty()) {
        err(L"velmor host: unexpected argument '" + args[0] + L"'\n");
        return exit_usage;
    }
    const std::wstring name = velmor2::get_fq_host_name();
    if (name.empty()) {
        err(L"velmor host: the host name is not available\n");
        return exit_failed;
    }
    out(name + L"\n");
    return exit_ok;
}

const command_registrar_t registered(
    {"host", "print the fully qualified host name",
     "usage: velmor host\n"
     "Prints the canonical name of this host from the resolver, or the bare host name when it\n"
     "has no domain. Exit status: 0 printed, 1 not available, 2 bad usage.\n",
     run});

} // namespace
} // namespace velmor_tool
