// Whether what a save is about to write reads back: names and characters a parser accepts.
#pragma once

#include <libxml/tree.h>

#include <string>
#include <string_view>

namespace velmor2::_internal {

/// Longest element or attribute name, in UTF-8 bytes, that the parser accepts.
constexpr std::size_t max_name_bytes = 50000;

/// Longest text, comment or CDATA section, in UTF-8 bytes, that the parser accepts.
constexpr std::size_t max_text_bytes = 10000000;

/// Longest start tag, as written, that a save writes. The parser refuses a tag once the bytes
/// it holds from the tag's start on pass 10,000,000, which a tag a little shorter than that
/// can reach; this bound keeps well clear.
constexpr std::size_t max_start_tag_bytes = 9000000;

/// True when `name` (UTF-8) is an XML name without a colon, of at most `max_name_bytes`, usable
/// as an element name that a parser and an XPath name test both accept.
///
///   width => true      2nd => false     a b => false     a/b, a*, a[1], x:y, "" => false
bool is_element_name(std::string_view name);

/// Deepest element nesting, the root counting as 1, that the parser accepts.
constexpr std::size_t max_element_depth = 256;

/// True when the attributes and the whole content of `element` serialise to XML that parses
/// again: names valid, every character allowed in XML 1.0, no entity reference (a parser
/// without the declaration rejects it), no attribute twice, comments without "--", no element
/// nested deeper than `max_element_depth`, no text, comment or start tag past the parser's
/// size limits. `above` counts the element ancestors the element
/// will have in the file beyond those it is linked to now.
bool is_loadable(const xmlNode* element, std::size_t above = 0);

/// True when `text` (UTF-8, up to its first zero byte) holds only characters XML 1.0 allows
/// and is at most `max_text_bytes` long.
bool is_xml_text(const char* text);

/// The UTF-8 form of `text` for libxml2, where a value that cannot be written as it is gets
/// U+FFFF, which `is_loadable` refuses, so that a save reports it rather than write another
/// text: a zero character (libxml2 ends text there) becomes U+FFFF, and a character without a
/// UTF-8 form (a lone surrogate, which `to_utf8` would make U+FFFD) makes all of it U+FFFF.
std::string to_xml_utf8(const std::wstring& text);

} // namespace velmor2::_internal
