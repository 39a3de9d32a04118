// The element tree a save builds, with the look-up of the element of a key.
#pragma once

#include <libxml/tree.h>
#include <libxml/xpath.h>

#include <deque>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace velmor2::_internal {

/// Finds or creates the element of a key's pieces below the root of a document being saved.
///
/// The result is the one of querying XPath `p1`, `p1/p2`, ... from the root and taking the
/// first node in document order each time, creating the rest at the first miss. Elements the
/// save itself created hold only children it created, one per name, so below them a map from
/// (parent, name) gives that first node at once. Below an element a handler wrote into, names
/// may repeat and the handler may have built anything, so the rest of the key is queried by
/// XPath there, which only scans that value's own content.
///
/// The per-element state hangs off libxml2's application pointer `_private` of the elements:
/// a child map for a group, a marker for a written element. They point into the tree, so the
/// document is for writing out only and is freed right after.
class save_tree_t {
  public:
    /// A tree whose root is `root` (of a document with no other content yet).
    explicit save_tree_t(xmlNode* root);
    /// Frees the XPath context.
    ~save_tree_t();
    save_tree_t(const save_tree_t&) = delete;
    save_tree_t& operator=(const save_tree_t&) = delete;

    /// The new element of `pieces` (valid XML names, UTF-8), created with every missing
    /// ancestor; null when the element already exists.
    xmlNode* make_element(const std::vector<std::string>& pieces);

    /// Records that a handler wrote into `element`.
    void mark_written(xmlNode* element);

  private:
    xmlNode* query_below(xmlNode* base, const std::vector<std::string>& pieces, std::size_t from);
    xmlNode* create(xmlNode* parent, const std::vector<std::string>& pieces, std::size_t from,
                    bool indexed);

    // Keys view the element names, which the document owns.
    using children_t = std::unordered_map<std::string_view, xmlNode*>;

    children_t& children_of(xmlNode* element);
    bool is_written(const xmlNode* element) const;

    xmlNode* root;
    std::deque<children_t> maps;
    char written_marker = 0;
    xmlXPathContext* context = nullptr;
    std::vector<xmlNode*> found;
};

} // namespace velmor2::_internal
