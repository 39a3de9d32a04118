// The element tree a save builds, with the look-up of the element of a key and the writing
// of the file.
#pragma once

#include <velmor2/path.hpp>

#include <libxml/tree.h>
#include <libxml/xpath.h>

#include <cstddef>
#include <deque>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace velmor2::_internal {

/// The document of a save, kept light: groups and text values are small nodes of its own, and
/// only the values a handler writes into an element get a libxml2 element. The file it writes
/// holds the bytes libxml2's formatted output of the equivalent document would hold.
///
/// Finding the element of a key gives the result of querying XPath `p1`, `p1/p2`, ... from the
/// root and taking the first node in document order each time, creating the rest at the first
/// miss. Groups hold only children the save created, one per name, so an index from (parent,
/// name) gives that first node at once. Below a value element names may repeat and a handler
/// may have built anything, so the rest of the key is queried by XPath there, which only scans
/// that value's own content.
class save_tree_t {
  public:
    /// An element of the file: a group, or a value written as text or by a handler.
    struct node_t {
        std::string name;
        /// The root is at depth 1.
        std::size_t depth = 1;
        node_t* first_child = nullptr;
        node_t* last_child = nullptr;
        node_t* next = nullptr;
        /// A value went into it: later keys below it look into its content.
        bool written = false;
        /// The type attribute of a text value; null for none.
        const std::string* type_name = nullptr;
        /// A text value's text node (maybe empty), its bytes in `texts`.
        bool has_text = false;
        std::size_t text_begin = 0;
        std::size_t text_size = 0;
        /// The element holding a value's content once it needs one; written as it stands.
        xmlNode* element = nullptr;
    };

    /// Where the element of a new key went: a node of the tree, or an element inside content a
    /// handler wrote. Empty when the key's element exists already.
    struct place_t {
        node_t* node = nullptr;
        xmlNode* element = nullptr;
        /// Ancestors of `element` in the file that it is not linked to.
        std::size_t above = 0;
        explicit operator bool() const { return node != nullptr || element != nullptr; }
    };

    /// An empty tree expecting about `key_count` keys.
    explicit save_tree_t(std::size_t key_count);
    /// Frees the libxml2 elements.
    ~save_tree_t();
    save_tree_t(const save_tree_t&) = delete;
    save_tree_t& operator=(const save_tree_t&) = delete;

    /// The new element of `pieces` (valid XML names, UTF-8), created with every missing
    /// ancestor; empty when the element already exists.
    place_t make_element(const std::vector<std::string_view>& pieces);

    /// Makes `node` a value holding `type_name` and the UTF-8 `text` (nothing when empty).
    /// When the text cannot go into XML, leaves an empty group element and returns false.
    /// `type_name` must outlive the tree.
    bool set_text(node_t* node, const std::string* type_name, const std::string& text);

    /// Makes `node` a value whose content a handler writes into the returned element.
    xmlNode* make_value_element(node_t* node);

    /// Writes the document to `file` as formatted UTF-8 XML; false when the file cannot be
    /// written (see `save_xml_document`).
    bool write(const path_t& file) const;

  private:
    place_t query_below(node_t* node, const std::vector<std::string_view>& pieces,
                        std::size_t from);
    node_t* add_child(node_t* parent, std::string_view name);
    xmlNode* element_of(node_t* node);
    void write_node(const node_t& node, std::size_t level, std::string& out) const;

    struct child_key_t {
        const node_t* parent;
        std::string_view name;
        bool operator==(const child_key_t& other) const {
            return parent == other.parent && name == other.name;
        }
    };
    struct child_hash_t {
        std::size_t operator()(const child_key_t& key) const;
    };

    std::deque<node_t> nodes;
    node_t* root;
    // Keys view the names of the nodes, which the deque keeps in place.
    std::unordered_map<child_key_t, node_t*, child_hash_t> children;
    std::string texts;
    // Holds the elements handlers write into; they are never linked to it.
    xmlDoc* doc;
    xmlXPathContext* context = nullptr;
    std::vector<xmlNode*> found;
};

} // namespace velmor2::_internal
