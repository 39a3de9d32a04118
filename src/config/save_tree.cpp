// Key-to-element look-up of a save without scanning siblings. Figures: docs/performance.md,
// "Configuration store".
#include "config/save_tree.hpp"
#include "config/xml_check.hpp"

#include <new>

namespace velmor2::_internal {
namespace {

// FNV-1a of the name, seeded with the parent: names are short, and most share a prefix.
std::uint32_t hash_of(save_tree_t::id_t parent, std::string_view name) {
    std::uint32_t hash = 2166136261u ^ parent;
    for (const char c : name) {
        hash = (hash ^ static_cast<unsigned char>(c)) * 16777619u;
    }
    return hash;
}

} // namespace

save_tree_t::save_tree_t(std::size_t key_count) : doc(xmlNewDoc(BAD_CAST "1.0")) {
    if (doc == nullptr) {
        throw std::bad_alloc();
    }
    nodes.reserve(key_count + key_count / 8 + 1);
    names.reserve(key_count * 8);
    nodes.emplace_back();
    names = "root";
    nodes.front().name_size = names.size();
    std::size_t slots = 64;
    while (slots < 2 * nodes.capacity()) {
        slots *= 2;
    }
    index.assign(slots, 0);
}

save_tree_t::~save_tree_t() {
    for (xmlNode* element : elements) {
        xmlFreeNode(element);
    }
    xmlFreeDoc(doc);
}

save_tree_t::id_t save_tree_t::find_child(id_t parent, std::string_view name,
                                          std::uint32_t hash) const {
    const std::size_t mask = index.size() - 1;
    for (std::size_t slot = hash & mask;; slot = (slot + 1) & mask) {
        const std::uint64_t entry = index[slot];
        if (entry == 0) {
            return none;
        }
        const auto id = static_cast<id_t>(entry);
        if (entry >> 32 == hash && nodes[id].parent == parent && name_of(nodes[id]) == name) {
            return id;
        }
    }
}

void save_tree_t::grow_index() {
    std::vector<std::uint64_t> old(index.size() * 2, 0);
    old.swap(index);
    const std::size_t mask = index.size() - 1;
    for (const std::uint64_t entry : old) {
        if (entry != 0) {
            std::size_t slot = (entry >> 32) & mask;
            while (index[slot] != 0) {
                slot = (slot + 1) & mask;
            }
            index[slot] = entry;
        }
    }
}

save_tree_t::id_t save_tree_t::add_child(id_t parent, std::string_view name, std::uint32_t hash) {
    if (nodes.size() >= none) {
        throw std::bad_alloc();
    }
    const auto id = static_cast<id_t>(nodes.size());
    node_t child;
    child.name_begin = names.size();
    child.name_size = name.size();
    child.depth = nodes[parent].depth + 1;
    child.parent = parent;
    names.append(name);
    nodes.push_back(child);
    node_t& above = nodes[parent];
    if (above.last_child != none) {
        nodes[above.last_child].next = id;
    } else {
        above.first_child = id;
    }
    above.last_child = id;

    if (2 * (indexed + 1) > index.size()) {
        grow_index();
    }
    const std::size_t mask = index.size() - 1;
    std::size_t slot = hash & mask;
    while (index[slot] != 0) {
        slot = (slot + 1) & mask;
    }
    index[slot] = static_cast<std::uint64_t>(hash) << 32 | id;
    ++indexed;
    return id;
}

save_tree_t::id_t save_tree_t::make_element(const std::vector<std::string_view>& pieces) {
    id_t current = 0;
    for (std::size_t i = 0; i < pieces.size(); ++i) {
        if (nodes[current].written) {
            return none;
        }
        // Sorted keys mostly continue below the child made last.
        id_t child = nodes[current].last_child;
        if (child == none || name_of(nodes[child]) != pieces[i]) {
            const std::uint32_t hash = hash_of(current, pieces[i]);
            child = find_child(current, pieces[i], hash);
            if (child == none) {
                current = add_child(current, pieces[i], hash);
                while (++i < pieces.size()) {
                    current = add_child(current, pieces[i], hash_of(current, pieces[i]));
                }
                return current;
            }
        }
        current = child;
    }
    return none;
}

bool save_tree_t::set_text(id_t id, const std::string* type_name, const std::string& text) {
    // A zero character cannot be written: libxml2 would end the text there.
    if (text.find('\0') != std::string::npos || !is_xml_text(text.c_str())) {
        return false;
    }
    node_t& node = nodes[id];
    node.written = true;
    node.type_name = type_name;
    node.has_text = !text.empty();
    node.text_begin = texts.size();
    node.text_size = text.size();
    texts.append(text);
    return true;
}

xmlNode* save_tree_t::make_value_element(id_t id) {
    node_t& node = nodes[id];
    node.written = true;
    const std::string name(name_of(node));
    node.element = xmlNewDocNode(doc, nullptr, BAD_CAST name.c_str(), nullptr);
    if (node.element == nullptr) {
        throw std::bad_alloc();
    }
    elements.push_back(node.element);
    return node.element;
}

void save_tree_t::clear_value(id_t id) {
    node_t& node = nodes[id];
    node.written = false;
    node.element = nullptr;
}

} // namespace velmor2::_internal
