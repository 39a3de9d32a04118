// Key-to-element look-up of a save without scanning siblings.
#include "config/save_tree.hpp"
#include "config/xpath.hpp"

#include <new>

namespace velmor2::_internal {

save_tree_t::save_tree_t(xmlNode* root) : root(root) {}

save_tree_t::~save_tree_t() {
    if (context != nullptr) {
        xmlXPathFreeContext(context);
    }
}

void save_tree_t::mark_written(xmlNode* element) {
    element->_private = &written_marker;
}

bool save_tree_t::is_written(const xmlNode* element) const {
    return element->_private == &written_marker;
}

save_tree_t::children_t& save_tree_t::children_of(xmlNode* element) {
    if (element->_private == nullptr) {
        element->_private = &maps.emplace_back();
    }
    return *static_cast<children_t*>(element->_private);
}

xmlNode* save_tree_t::make_element(const std::vector<std::string>& pieces) {
    xmlNode* current = root;
    for (std::size_t i = 0; i < pieces.size(); ++i) {
        if (is_written(current)) {
            return query_below(current, pieces, i);
        }
        const children_t& children = children_of(current);
        const auto child = children.find(pieces[i]);
        if (child == children.end()) {
            return create(current, pieces, i, true);
        }
        current = child->second;
    }
    return nullptr;
}

xmlNode* save_tree_t::query_below(xmlNode* base, const std::vector<std::string>& pieces,
                                  std::size_t from) {
    if (context == nullptr) {
        context = xmlXPathNewContext(base->doc);
        if (context == nullptr) {
            throw std::bad_alloc();
        }
    }
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
            return create(current, pieces, i, false);
        }
        current = found.front();
    }
    return nullptr;
}

xmlNode* save_tree_t::create(xmlNode* parent, const std::vector<std::string>& pieces,
                             std::size_t from, bool indexed) {
    for (std::size_t i = from; i < pieces.size(); ++i) {
        xmlNode* child = xmlNewChild(parent, nullptr,
                                     reinterpret_cast<const xmlChar*>(pieces[i].c_str()), nullptr);
        if (child == nullptr) {
            throw std::bad_alloc();
        }
        if (indexed) {
            children_of(parent).emplace(reinterpret_cast<const char*>(child->name), child);
        }
        parent = child;
    }
    return parent;
}

} // namespace velmor2::_internal
