// Reading a store's file without keeping its whole tree.
#pragma once

#include <velmor2/path.hpp>

#include <libxml/tree.h>

#include <string>

namespace velmor2::_internal {

/// What `read_typed_elements` hands over, in document order. A key is the UTF-8 names of the
/// elements from below the root down to the element, joined with ".".
class typed_element_visitor_t {
  public:
    virtual ~typed_element_visitor_t() = default;
    /// True when a value of `type_name` is made from its element's text alone.
    virtual bool reads_text(const std::string& type_name) = 0;
    /// A complete element with a `type` attribute (its text `type_name`) and no typed element
    /// above it; `element` and its subtree are freed when the call returns.
    virtual void typed(xmlNode* element, const std::string& key, const std::string& type_name) = 0;
    /// Such an element, of the type `reads_text` was last asked about and said yes to, handed
    /// over as its text (that of its text and CDATA children) without being built.
    virtual void typed_text(const std::string& key, const std::string& text) = 0;
    /// An entity reference outside typed elements, just added to the tree.
    virtual void reference(xmlNode* reference) = 0;
};

/// Parses `file` (opened as `open_xml_document` does, quietly) and hands its typed elements to
/// `visitor` as each ends, freeing what has been handed over and what came before it, so that
/// memory stays at the depth of the tree. In a document without a document type declaration
/// (so without entities of its own or attribute defaults), elements whose type `reads_text`
/// are not built at all. Entity text read meanwhile shares one expansion budget. False when
/// the file cannot be opened, is not well-formed or runs out of the budget; the visitor may
/// have been called before. An exception from the visitor stops the parse and reaches the
/// caller.
bool read_typed_elements(const path_t& file, typed_element_visitor_t& visitor);

} // namespace velmor2::_internal
