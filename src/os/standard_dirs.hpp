// Where the platform keeps the standard folders, the running modules and the working directory.
#pragma once

#include <string>

namespace velmor2::_internal::os {

/// The shell folders the library offers.
enum class folder_t {
    documents,     ///< the user's documents
    user_config,   ///< per-user application data
    shared_config, ///< application data of all users
};

/// The text of `folder`, created if missing; empty on failure.
std::wstring get_folder(folder_t folder);

/// Creates `text` with every missing level; true when it was made or was already there.
bool create_folder_tree(const std::wstring& text);

/// The full name of the process's main executable file; empty on failure.
std::wstring get_executable_file();

/// The full name of the module whose image holds `address`; empty when none does.
std::wstring get_module_file(const void* address);

/// The temporary directory in its long (resolved) form, not created.
std::wstring get_temp_folder();

/// The process's working directory, however long; empty on failure.
std::wstring get_working_dir();

/// Changes the process's working directory.
bool set_working_dir(const std::wstring& text);

} // namespace velmor2::_internal::os
