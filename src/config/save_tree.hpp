// The element tree a save builds, with the look-up of the element of a key.
#pragma once

#include <libxml/tree.h>
#include <libxml/xpath.h>

#include <boost/functional/hash.hpp>

#include <string>
#include <unordered_map>
#include <unordered_set>
#include <utility>
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
    void mark_written(const xmlNode* element);

private:
    xmlNode* query_below(xmlNode* base, const std::vector<std::string>& pieces, std::size_t from);
    xmlNode* create(xmlNode* parent, const std::vector<std::string>& pieces, std::size_t from,
                    bool indexed);

    using child_key_t = std::pair<const xmlNode*, std::string>;

    xmlNode* root;
    std::unordered_map<child_key_t, xmlNode*, boost::hash<child_key_t>> children;
    std::unordered_set<const xmlNode*> written;
    xmlXPathContext* context = nullptr;
    std::vector<xmlNode*> found;
};

} // namespace velmor2::_internal
