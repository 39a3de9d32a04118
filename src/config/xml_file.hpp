// Writing prepared XML text to a configuration file.
#pragma once

#include <velmor2/path.hpp>

#include <string>

namespace velmor2::_internal {

/// Writes `text` to `file`, replacing it, under the same sharing rules and line ends as
/// `save_xml_document`; true when bytes were written.
bool write_xml_text(const path_t& file, const std::string& text);

} // namespace velmor2::_internal
