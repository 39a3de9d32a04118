// velmor dirs: the standard directories, and where a user's configuration file of a name goes.
#include "command.hpp"

#include <velmor2/configuration_files.hpp>
#include <velmor2/standard_directories.hpp>

namespace velmor_tool {
namespace {

namespace stdpaths = velmor2::stdpaths;

void show(const wchar_t* label, const velmor2::path_t& path) {
    std::wstring line = label;
    line.resize(18, L' ');
    out(line + (path.is_empty() ? L"(unavailable)" : path.as_native_string()) + L"\n");
}

int run(const std::vector<std::wstring>& args) {
    if (args.size() > 1 || (args.size() == 1 && !args[0].empty() && args[0][0] == L'-')) {
        err(L"usage: velmor dirs [NAME]\n");
        return exit_usage;
    }
    const velmor2::path_t name(args.empty() ? std::wstring() : args[0] + L".xml");
    if (!args.empty() && (name.is_empty() || name.is_absolute())) {
        err(L"velmor dirs: '" + args[0] + L"' cannot name a file in a folder\n");
        return exit_usage;
    }
    show(L"executable", stdpaths::get_executable_dir());
    show(L"module", stdpaths::get_module_dir(reinterpret_cast<const void*>(&run)));
    show(L"temporary", stdpaths::get_temp_dir());
    show(L"documents", stdpaths::get_documents_dir());
    const velmor2::path_t user_config = stdpaths::get_user_config_dir(std::wstring());
    show(L"user config", user_config);
    show(L"shared config", stdpaths::get_shared_config_dir(std::wstring()));
    show(L"working", stdpaths::get_working_dir());
    if (user_config.is_empty()) {
        return exit_failed;
    }
    if (args.empty()) {
        return exit_ok;
    }
    // Asked first: without the per-user folder the locator would answer, and create, a folder
    // under the working directory.
    if (stdpaths::get_user_config_dir(L"Norvane\\velmor").is_empty()) {
        show(L"user config file", velmor2::path_t());
        return exit_failed;
    }
    const velmor2::config_manager_t manager(stdpaths::get_executable_dir().as_string(), L"velmor");
    show(L"user config file", manager.user_config(args[0]));
    return exit_ok;
}

const command_registrar_t registered(
    {"dirs", "show the standard directories and a user configuration file",
     "usage: velmor dirs [NAME]\n"
     "Prints the directory of the executable and of the module holding this tool, the\n"
     "temporary, documents, per-user and all-users configuration folders (each created if\n"
     "missing) and the working directory. With NAME, also prints where the user's\n"
     "configuration file NAME.xml of this tool goes (company folder Norvane, product folder\n"
     "velmor; the folder is created).\n"
     "Exit status: 0 shown, 1 the configuration folder is unavailable, 2 bad usage.\n",
     run});

} // namespace
} // namespace velmor_tool
