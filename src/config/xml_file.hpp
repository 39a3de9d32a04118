// Writing prepared XML text to a configuration file.
#pragma once

#include <velmor2/path.hpp>

#include <string>

namespace velmor2::_internal {

/// Replaces `file` by one holding `text` (see `save_xml_document`); true when it was written.
bool write_xml_text(const path_t& file, const std::string& text);

} // namespace velmor2::_internal
