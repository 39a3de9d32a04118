// The bytes of a text in a code page, as they are written to a file.
#pragma once

#include <velmor2/text_file.hpp>

#include <string>

namespace velmor2::_internal {

/// `text` encoded as `cp`: UTF-8 without a mark, FF FE and UTF-16LE units, or the ANSI code
/// page for every other value.
std::string encode_text(const std::wstring& text, code_page_t cp);

} // namespace velmor2::_internal
