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
    show(L"executable", stdpaths::get_executable_dir());
    show(L"module", stdpaths::get_module_dir(reinterpret_cast<const void*>(&run)));
    show(L"temporary", stdpaths::get_temp_dir());
    show(L"documents", stdpaths::get_documents_dir());
    show(L"user config", stdpaths::get_user_config_dir(std::wstring()));
    show(L"shared config", stdpaths::get_shared_config_dir(std::wstring()));
    show(L"working", stdpaths::get_working_dir());
    if (args.empty()) {
        return exit_ok;
    }
    if (velmor2::path_t(args[0] + L".xml").is_empty()) {
        err(L"velmor dirs: '" + args[0] + L"' cannot name a file\n");
        return exit_usage;
    }
    const velmor2::config_manager_t manager(stdpaths::get_executable_dir().as_string(), L"velmor");
    const velmor2::path_t file = manager.user_config(args[0]);
    show(L"user config file", file);
    return file.is_empty() ? exit_failed : exit_ok;
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
