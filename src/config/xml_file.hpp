// Reading and writing configuration files.
#pragma once

#include <velmor2/path.hpp>

#include <libxml/parser.h>

#include <string>

namespace velmor2::_internal {

/// How every configuration file is parsed: quietly, entities left as references.
constexpr int xml_read_options = XML_PARSE_NOERROR | XML_PARSE_NOWARNING | XML_PARSE_COMPACT;

/// Replaces `file` by one holding `text` (see `save_xml_document`); true when it was written.
bool write_xml_text(const path_t& file, const std::string& text);

} // namespace velmor2::_internal
