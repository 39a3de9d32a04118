// The standard places of a desktop program: its own directory, the temporary, documents and
// configuration folders, and the working directory.
#pragma once

#include <velmor2/export.hpp>
#include <velmor2/path.hpp>

#include <string>

namespace velmor2::stdpaths {

/// The directory of the process's main executable (never that of this library); empty on
/// failure.
VELMOR_API path_t get_executable_dir();

/// The directory of the module (executable or shared library) whose image holds `address`,
/// resolved to the real file; empty when no module holds it. Pass the address of one of a
/// library's own functions to find that library's directory.
VELMOR_API path_t get_module_dir(const void* address);

/// The temporary directory, resolved to its long form and created if missing; empty when it
/// cannot be created. POSIX: `$TMPDIR` when set and absolute, else `/tmp`.
VELMOR_API path_t get_temp_dir();

/// The user's documents folder, created if missing; empty on failure. POSIX:
/// `XDG_DOCUMENTS_DIR` of `user-dirs.dirs` when it names one, else `$HOME/Documents`.
VELMOR_API path_t get_documents_dir();

/// The per-user application-data folder joined with `name` (which may hold several levels),
/// every level created; the folder itself for an empty `name`; empty on failure or when `name`
/// is not a relative path. POSIX: `$XDG_CONFIG_HOME` when absolute, else `$HOME/.config`.
///
///   (empty)         => ~/.config
///   Norvane\Editor  => ~/.config/Norvane/Editor  (both levels created)
VELMOR_API path_t get_user_config_dir(const std::wstring& name);

/// The all-users application-data folder joined with `name`, as `get_user_config_dir` does.
/// POSIX: the first absolute entry of `$XDG_CONFIG_DIRS`, else `/etc/xdg`.
VELMOR_API path_t get_shared_config_dir(const std::wstring& name);

/// The process's working directory, however long; empty on failure.
VELMOR_API path_t get_working_dir();

/// Makes `dir` the process's working directory; false, changing nothing, when it cannot.
VELMOR_API bool set_working_dir(const path_t& dir);

} // namespace velmor2::stdpaths
