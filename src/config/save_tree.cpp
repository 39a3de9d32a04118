// Key-to-element look-up of a save without scanning siblings.
#include "config/save_tree.hpp"
#include "config/xml_check.hpp"
#include "config/xpath.hpp"

#include <cstring>
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
    if (context != nullptr) {
        xmlXPathFreeContext(context);
    }
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

save_tree_t::place_t save_tree_t::make_element(const std::vector<std::string_view>& pieces) {
    id_t current = 0;
    for (std::size_t i = 0; i < pieces.size(); ++i) {
        if (nodes[current].written) {
            return query_below(current, pieces, i);
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
                return place_t{current, nullptr, nodes[current].depth - 1};
            }
        }
        current = child;
    }
    return place_t{};
}

xmlNode* save_tree_t::element_of(id_t id) {
    node_t& node = nodes[id];
    if (node.element != nullptr) {
        return node.element;
    }
    // A text value turns into the element libxml2 would have made of it.
    const std::string name(name_of(node));
    xmlNode* element = xmlNewDocNode(doc, nullptr, BAD_CAST name.c_str(), nullptr);
    if (element == nullptr) {
        throw std::bad_alloc();
    }
    elements.push_back(element);
    node.element = element;
    if (node.type_name != nullptr) {
        xmlSetProp(element, BAD_CAST "type", BAD_CAST node.type_name->c_str());
    }
    if (node.has_text) {
        xmlAddChild(element, xmlNewTextLen(BAD_CAST texts.data() + node.text_begin,
                                           static_cast<int>(node.text_size)));
    }
    return element;
}

save_tree_t::place_t
save_tree_t::query_below(id_t node, const std::vector<std::string_view>& pieces, std::size_t from) {
    if (context == nullptr) {
        context = xmlXPathNewContext(doc);
        if (context == nullptr) {
            throw std::bad_alloc();
        }
    }
    xmlNode* const base = element_of(node);
    xmlNode* current = base;
    std::string expression;
    for (std::size_t i = from; i < pieces.size(); ++i) {
        if (i > from) {
            expression += '/';
        }
        expression += pieces[i];
        found.clear();
        select_nodes(base, expression, found, context);
        if (found.empty()) {
            for (; i < pieces.size(); ++i) {
                const std::string name(pieces[i]);
                current = xmlNewChild(current, nullptr, BAD_CAST name.c_str(), nullptr);
                if (current == nullptr) {
                    throw std::bad_alloc();
                }
            }
            return place_t{none, current, nodes[node].depth - 1};
        }
        current = found.front();
    }
    return place_t{};
}

bool save_tree_t::set_text(id_t id, const std::string* type_name, const std::string& text) {
    node_t& node = nodes[id];
    node.written = true;
    if (!is_xml_text(text.c_str())) {
        return false;
    }
    // libxml2 keeps text as a terminated string: it ends at the first zero byte.
    const std::size_t size = std::strlen(text.c_str());
    node.type_name = type_name;
    node.has_text = !text.empty();
    node.text_begin = texts.size();
    node.text_size = size;
    texts.append(text, 0, size);
    return true;
}

xmlNode* save_tree_t::make_value_element(id_t node) {
    nodes[node].written = true;
    return element_of(node);
}

} // namespace velmor2::_internal
