// Files of the configuration store, with the sharing rules of the store (a reader keeps
// writers out, a writer keeps everybody out) and saves that never leave a torn file.
#pragma once

#include <string>

namespace velmor2::_internal::os {

/// Opens the printed path `printed` read-only while refusing writers (a shared advisory lock
/// on POSIX, `_SH_DENYWR` on Windows); -1 when it cannot be opened or a writer holds it.
int open_xml_for_reading(const std::wstring& printed);

/// Closes a descriptor from `open_xml_for_reading` (releasing its lock).
void close_xml_file(int descriptor);

/// Replaces the file `printed` by one holding `text`, or creates it. The text goes to a new
/// file in the same folder, which is flushed to the disk and then renamed over the old one in
/// one step (on POSIX the folder is flushed too), so that a failed or interrupted save leaves
/// the old file as it was; the new file keeps the old one's permission bits, and its owner
/// where the process may set it. A symbolic link stays and its target is replaced. Meanwhile
/// the old file is held against every other reader and writer.
///
/// Where no new file can be made in the folder (no permission) but the file itself is
/// writable, the text is written into the file in place, which a crash can tear.
///
/// False, the old file untouched and no new file left, when the file is held, cannot be
/// opened for writing, or anything fails. On Windows the text is written in text mode (lines
/// end in CR LF).
bool replace_xml_file(const std::wstring& printed, const std::string& text);

} // namespace velmor2::_internal::os
