// config_manager_t: default and per-user configuration file locations.
#include <velmor2/configuration_files.hpp>
#include <velmor2/file_system.hpp>
#include <velmor2/standard_directories.hpp>

namespace velmor2 {

config_manager_t::config_manager_t(const std::wstring& default_folder,
                                   const std::wstring& product_folder)
    : default_folder_(default_folder), product_folder_(product_folder), company_name_(L"Norvane") {}

config_manager_t::config_manager_t(const config_manager_t& other) = default;

config_manager_t& config_manager_t::operator=(const config_manager_t& other) = default;

config_manager_t::~config_manager_t() = default;

void config_manager_t::set_company_name(const std::wstring& name) {
    company_name_ = name;
}

void config_manager_t::override_user_config_folder(const path_t& folder) {
    user_folder_ = folder;
}

path_t config_manager_t::get_user_config(const std::wstring& name) const {
    path_t file;
    if (user_folder_.is_empty()) {
        // A failed look-up leaves the empty path, and the rest is then relative: kept as is.
        file = stdpaths::get_user_config_dir(company_name_);
        file.append(path_t(product_folder_));
    } else {
        file = user_folder_;
    }
    create_directory(file);
    file.append(path_t(name + L".xml"));
    return file;
}

path_t config_manager_t::get_default_config(const std::wstring& name) const {
    path_t file(default_folder_);
    file.append(path_t(name + L".xml"));
    return file;
}

} // namespace velmor2
