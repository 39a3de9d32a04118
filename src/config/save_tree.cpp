// Key-to-element look-up of a save without scanning siblings.
#include "config/save_tree.hpp"
#include "config/xml_check.hpp"
#include "config/xml_file.hpp"
#include "config/xpath.hpp"

#include <cstring>
#include <functional>
#include <new>

namespace velmor2::_internal {

std::size_t save_tree_t::child_hash_t::operator()(const child_key_t& key) const {
    return std::hash<std::string_view>()(key.name) ^ (std::hash<const void*>()(key.parent) << 1);
}

save_tree_t::save_tree_t(std::size_t key_count) : doc(xmlNewDoc(BAD_CAST "1.0")) {
    if (doc == nullptr) {
        throw std::bad_alloc();
    }
    root = &nodes.emplace_back();
    root->name = "root";
    children.reserve(key_count + key_count / 4);
}

save_tree_t::~save_tree_t() {
    if (context != nullptr) {
        xmlXPathFreeContext(context);
    }
    for (node_t& node : nodes) {
        if (node.element != nullptr) {
            xmlFreeNode(node.element);
        }
    }
    xmlFreeDoc(doc);
}

save_tree_t::node_t* save_tree_t::add_child(node_t* parent, std::string_view name) {
    node_t& child = nodes.emplace_back();
    child.name = name;
    child.depth = parent->depth + 1;
    if (parent->last_child != nullptr) {
        parent->last_child->next = &child;
    } else {
        parent->first_child = &child;
    }
    parent->last_child = &child;
    children.emplace(child_key_t{parent, child.name}, &child);
    return &child;
}

save_tree_t::place_t save_tree_t::make_element(const std::vector<std::string_view>& pieces) {
    node_t* current = root;
    for (std::size_t i = 0; i < pieces.size(); ++i) {
        if (current->written) {
            return query_below(current, pieces, i);
        }
        // Sorted keys mostly continue below the child made last.
        node_t* child = current->last_child;
        if (child == nullptr || child->name != pieces[i]) {
            const auto found = children.find(child_key_t{current, pieces[i]});
            child = found != children.end() ? found->second : nullptr;
        }
        if (child == nullptr) {
            for (; i < pieces.size(); ++i) {
                current = add_child(current, pieces[i]);
            }
            return place_t{current, nullptr, 0};
        }
        current = child;
    }
    return place_t{};
}

xmlNode* save_tree_t::element_of(node_t* node) {
    if (node->element != nullptr) {
        return node->element;
    }
    // A text value turns into the element libxml2 would have made of it.
    xmlNode* element = xmlNewDocNode(doc, nullptr, BAD_CAST node->name.c_str(), nullptr);
    if (element == nullptr) {
        throw std::bad_alloc();
    }
    node->element = element;
    if (node->type_name != nullptr) {
        xmlSetProp(element, BAD_CAST "type", BAD_CAST node->type_name->c_str());
    }
    if (node->has_text) {
        xmlAddChild(element, xmlNewTextLen(BAD_CAST texts.data() + node->text_begin,
                                           static_cast<int>(node->text_size)));
    }
    return element;
}

save_tree_t::place_t save_tree_t::query_below(node_t* node,
                                              const std::vector<std::string_view>& pieces,
                                              std::size_t from) {
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
            return place_t{nullptr, current, node->depth - 1};
        }
        current = found.front();
    }
    return place_t{};
}

bool save_tree_t::set_text(node_t* node, const std::string* type_name, const std::string& text) {
    node->written = true;
    // libxml2 keeps text as a terminated string: it ends at the first zero byte.
    const std::size_t size = std::strlen(text.c_str());
    if (!is_xml_text(text.c_str())) {
        return false;
    }
    node->type_name = type_name;
    node->has_text = !text.empty();
    node->text_begin = texts.size();
    node->text_size = size;
    texts.append(text, 0, size);
    return true;
}

xmlNode* save_tree_t::make_value_element(node_t* node) {
    node->written = true;
    return element_of(node);
}

} // namespace velmor2::_internal
