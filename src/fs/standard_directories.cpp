// The standard directories as paths, on the platform's folder look-ups.
#include "os/standard_dirs.hpp"

#include <velmor2/standard_directories.hpp>

namespace velmor2::stdpaths {
namespace {

namespace os = _internal::os;

// The parent directory of a module's file; empty for an empty name.
path_t directory_of(const std::wstring& file) {
    return path_t(path_t(file).get_branch());
}

path_t config_dir(os::folder_t folder, const std::wstring& name) {
    path_t dir(os::get_folder(folder));
    // A file where the folder should be (a mistaken XDG_CONFIG_HOME) makes it unavailable.
    if (dir.is_empty() || !dir.is_directory()) {
        return path_t();
    }
    if (name.empty()) {
        return dir;
    }
    const path_t levels(name);
    if (levels.is_empty() || !dir.append(levels)) {
        return path_t();
    }
    return os::create_folder_tree(dir.as_string()) ? dir : path_t();
}

} // namespace

path_t get_executable_dir() {
    return directory_of(os::get_executable_file());
}

path_t get_module_dir(const void* address) {
    return directory_of(os::get_module_file(address));
}

path_t get_temp_dir() {
    const path_t dir(os::get_temp_folder());
    if (dir.is_empty() || !os::create_folder_tree(dir.as_string())) {
        return path_t();
    }
    return dir;
}

path_t get_documents_dir() {
    return path_t(os::get_folder(os::folder_t::documents));
}

path_t get_user_config_dir(const std::wstring& name) {
    return config_dir(os::folder_t::user_config, name);
}

path_t get_shared_config_dir(const std::wstring& name) {
    return config_dir(os::folder_t::shared_config, name);
}

path_t get_working_dir() {
    return path_t(os::get_working_dir());
}

bool set_working_dir(const path_t& dir) {
    return os::set_working_dir(dir.as_string());
}

} // namespace velmor2::stdpaths
