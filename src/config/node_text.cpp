// Entity replacement without libxml2's string concatenation, which copies the text gathered so
// far for every node and so takes time quadratic in the number of references.
#include "config/node_text.hpp"

#include <libxml/entities.h>

#include <cstring>

namespace velmor2::_internal {
namespace {

thread_local expansion_budget_t* active = nullptr;

// The parser refuses deeper nesting; this guards the stack should a tree be built otherwise.
constexpr int max_entity_depth = 64;

// `left` counts down the bytes that text inside entities may add.
bool append_nodes(const xmlDoc* doc, const xmlNode* node, std::string& out, std::size_t& left,
                  int depth) {
    for (; node != nullptr; node = node->next) {
        const char* text = nullptr;
        if (node->type == XML_TEXT_NODE || node->type == XML_CDATA_SECTION_NODE) {
            text = reinterpret_cast<const char*>(node->content);
        } else if (node->type == XML_ENTITY_REF_NODE) {
            // Each reference costs a byte, so that references to empty entities cannot
            // multiply without bound either.
            if (left == 0) {
                return false;
            }
            --left;
            if (const xmlEntity* entity = xmlGetDocEntity(doc, node->name)) {
                if (depth >= max_entity_depth ||
                    !append_nodes(doc, entity->children, out, left, depth + 1)) {
                    return false;
                }
                continue;
            }
            text = reinterpret_cast<const char*>(node->content);
        }
        if (text == nullptr) {
            continue;
        }
        const std::size_t size = std::strlen(text);
        if (depth > 0) {
            if (size > left) {
                return false;
            }
            left -= size;
        }
        out.append(text, size);
    }
    return true;
}

} // namespace

expansion_budget_t::expansion_budget_t(const xmlDoc* doc) : doc(doc), outer(active) {
    active = this;
}

expansion_budget_t::~expansion_budget_t() {
    active = outer;
}

bool append_list_text(const xmlDoc* doc, const xmlNode* first, std::string& out) {
    expansion_budget_t* budget = active;
    while (budget != nullptr && budget->doc != doc) {
        budget = budget->outer;
    }
    std::size_t fresh = max_expanded_bytes;
    std::size_t& left = budget != nullptr ? budget->left : fresh;
    if (append_nodes(doc, first, out, left, 0)) {
        return true;
    }
    if (budget != nullptr) {
        budget->ran_out = true;
        budget->left = 0;
    }
    return false;
}

bool attribute_text(const xmlNode* element, const char* name, std::string& out) {
    out.clear();
    const xmlAttr* attribute = xmlHasProp(element, reinterpret_cast<const xmlChar*>(name));
    if (attribute == nullptr) {
        return false;
    }
    if (attribute->type == XML_ATTRIBUTE_DECL) {
        // A default from the document type: plain text.
        const xmlChar* value = reinterpret_cast<const xmlAttribute*>(attribute)->defaultValue;
        out = value != nullptr ? reinterpret_cast<const char*>(value) : "";
        return true;
    }
    return append_list_text(element->doc, attribute->children, out);
}

} // namespace velmor2::_internal
