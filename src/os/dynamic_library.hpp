// Loading dynamic libraries and finding their symbols.
#pragma once

#include <string>

namespace velmor2::_internal::os {

/// Loads the library at the printed path text (a bare name is searched the system's way),
/// resolving its symbols now and keeping them private; null when it cannot be loaded.
void* load_library(const std::wstring& printed);

/// Releases one reference to a library that `load_library` returned.
void free_library(void* handle);

/// The address of the exported symbol `name` of a loaded library, or null.
void* find_symbol(void* handle, const std::wstring& name);

/// The file-name suffix of dynamic libraries on this platform, dot included.
const wchar_t* library_suffix();

} // namespace velmor2::_internal::os
