// The element tree a save builds, with the look-up of the element of a key and the writing
// of the file.
#pragma once

#include <velmor2/path.hpp>

#include <libxml/tree.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace velmor2::_internal {

/// The document of a save, kept light: groups and text values are small nodes of its own, and
/// only the values a handler writes into an element get a libxml2 element. The file it writes
/// holds the bytes libxml2's formatted output of the equivalent document would hold.
///
/// Finding the element of a key gives the result of querying XPath `p1`, `p1/p2`, ... from the
/// root and taking the first node in document order each time, creating the rest at the first
/// miss. Groups hold only children the save created, one per name, so an index from (parent,
/// name) gives that first node at once. A key below one that holds a value gets no element:
/// written into the value's element it would change the value (a text value would gain the
/// indentation around it) and would never be read. Neither does a key whose element exists.
class save_tree_t {
  public:
    /// Index of a node; `none` for no node.
    using id_t = std::uint32_t;
    static constexpr id_t none = UINT32_MAX;

    /// An empty tree expecting about `key_count` keys.
    explicit save_tree_t(std::size_t key_count);
    /// Frees the libxml2 elements.
    ~save_tree_t();
    save_tree_t(const save_tree_t&) = delete;
    save_tree_t& operator=(const save_tree_t&) = delete;

    /// The new element of `pieces` (valid XML names, UTF-8), created with every missing
    /// ancestor; `none` when the element exists already (another key's) or lies below a value.
    id_t make_element(const std::vector<std::string_view>& pieces);

    /// Makes `node` a value holding `type_name` and the UTF-8 `text` (nothing when empty).
    /// When the text cannot go into XML, leaves `node` a group and returns false.
    /// `type_name` must outlive the tree.
    bool set_text(id_t node, const std::string* type_name, const std::string& text);

    /// Makes `node` a value whose content a handler writes into the returned element.
    xmlNode* make_value_element(id_t node);

    /// Turns the value `node` back into an empty group, its element's content dropped.
    void clear_value(id_t node);

    /// Nesting of `node`'s element below the root, the root's children counting 1.
    std::size_t depth_of(id_t node) const { return nodes[node].depth - 1; }

    /// Writes the document to `file` as formatted UTF-8 XML; false when the file cannot be
    /// written (see `save_xml_document`).
    bool write(const path_t& file) const;

  private:
    // An element of the file: a group, or a value written as text or by a handler. Plain
    // data, so that thousands of them cost a few allocations.
    struct node_t {
        std::size_t name_begin = 0;
        std::size_t name_size = 0;
        std::size_t depth = 1;
        id_t parent = none;
        id_t first_child = none;
        id_t last_child = none;
        id_t next = none;
        // It holds a value.
        bool written = false;
        // A text value's text node (maybe empty), its bytes in `texts`.
        bool has_text = false;
        std::size_t text_begin = 0;
        std::size_t text_size = 0;
        // The type attribute of a text value; null for none.
        const std::string* type_name = nullptr;
        // The element holding a value's content once it needs one; written as it stands.
        xmlNode* element = nullptr;
    };

    std::string_view name_of(const node_t& node) const {
        return std::string_view(names.data() + node.name_begin, node.name_size);
    }
    id_t find_child(id_t parent, std::string_view name, std::uint32_t hash) const;
    id_t add_child(id_t parent, std::string_view name, std::uint32_t hash);
    void grow_index();
    void write_node(const node_t& node, std::size_t level, std::string& out) const;

    std::vector<node_t> nodes;
    std::string names;
    std::string texts;
    // Open-addressing index of the children by (parent, name): each slot holds a name hash
    // in its high half and a node id in its low half; empty slots are zero (the root is never
    // a child).
    std::vector<std::uint64_t> index;
    std::size_t indexed = 0;
    // Owns the elements handlers write into; they are never linked to it.
    xmlDoc* doc;
    std::vector<xmlNode*> elements;
};

} // namespace velmor2::_internal
