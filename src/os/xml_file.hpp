// Descriptors for the configuration store's XML files, with the sharing rules of the store:
// a reader keeps writers out, a writer keeps everybody out.
#pragma once

#include <string>

namespace velmor2::_internal::os {

/// Opens the printed path `printed` read-only while refusing writers (a shared advisory lock
/// on POSIX, `_SH_DENYWR` on Windows); -1 when it cannot be opened or a writer holds it.
int open_xml_for_reading(const std::wstring& printed);

/// Opens `printed` write-only, creating it if missing, and empties it, while refusing every
/// other holder (an exclusive advisory lock taken before truncating on POSIX, `_SH_DENYRW` on
/// Windows, in text mode so lines end in CR LF); -1 when it cannot be opened or is held, and
/// then its content is untouched.
int open_xml_for_writing(const std::wstring& printed);

/// Closes a descriptor from the functions above (releasing its lock).
void close_xml_file(int descriptor);

} // namespace velmor2::_internal::os
