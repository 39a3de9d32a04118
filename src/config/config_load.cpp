// Loading a store from its XML file.
#include <velmor2/configuration.hpp>

#include "config/handler_scope.hpp"
#include "config/node_text.hpp"
#include "unicode/convert.hpp"

#include <libxml/tree.h>

#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

namespace velmor2 {
namespace {

// The key of a typed element: the element names from below the root down to the element,
// joined with ".".
std::wstring key_of(const xmlNode* node) {
    std::vector<const xmlChar*> names;
    const xmlNode* root = xmlDocGetRootElement(node->doc);
    for (const xmlNode* n = node; n != nullptr && n != root && n->type == XML_ELEMENT_NODE;
         n = n->parent) {
        names.push_back(n->name);
    }
    std::string key;
    for (auto it = names.rbegin(); it != names.rend(); ++it) {
        if (!key.empty() || it != names.rbegin()) {
            key += '.';
        }
        key += reinterpret_cast<const char*>(*it);
    }
    return _internal::to_ustring(key);
}

} // namespace

bool advanced_xml_config_t::load(const path_t& file) {
    std::unique_ptr<xmlDoc, decltype(&xmlFreeDoc)> doc(open_xml_document(file), &xmlFreeDoc);
    if (!doc) {
        return false;
    }
    // Everything is read before the store changes, so that a file refused for the text its
    // entities expand to leaves the values as they were.
    std::vector<read_value_t> read;
    {
        const _internal::expansion_budget_t budget(doc.get());
        parse_node(xmlDocGetRootElement(doc.get()), read);
        if (budget.exceeded()) {
            return false;
        }
    }
    doc.reset();
    index.clear();
    values.clear();
    for (const read_value_t& value : read) {
        if (value.handled) {
            set_value(value.key, value.value);
        } else {
            on_load_value_failed(value.key, value.type_name);
        }
    }
    return true;
}

void advanced_xml_config_t::parse_node(xmlNode* node, std::vector<read_value_t>& read) {
    // Type names resolved once per load; the copies keep the handlers alive.
    struct reader_t {
        advanced_xml_config_t& store;
        std::vector<read_value_t>& read;
        std::unordered_map<std::string, smart_pointer_t<handler_base_t>> known;
        std::string type_name;

        handler_base_t* handler_for(const std::string& type_name) {
            const auto found = known.find(type_name);
            if (found != known.end()) {
                return found->second.get();
            }
            const std::wstring wide = _internal::to_ustring(type_name);
            for (const smart_pointer_t<handler_base_t>& handler : store.handlers) {
                if (handler && handler->get_type_name() == wide) {
                    known.emplace(type_name, handler);
                    return handler.get();
                }
            }
            return nullptr;
        }

        void walk(xmlNode* node) {
            if (node == nullptr) {
                return;
            }
            if (node->type != XML_ELEMENT_NODE ||
                !_internal::attribute_text(node, "type", type_name)) {
                for (xmlNode* child = node->children; child != nullptr; child = child->next) {
                    walk(child);
                }
                return;
            }
            read_value_t value{key_of(node), true, {}, {}};
            handler_base_t* handler = handler_for(type_name);
            if (handler == nullptr) {
                value.handled = false;
                value.type_name = _internal::to_ustring(type_name);
            } else {
                _internal::handler_scope_t scope(*handler, &store);
                value.value = handler->load_value(node);
            }
            read.push_back(std::move(value));
        }
    };
    reader_t{*this, read, {}, {}}.walk(node);
}

} // namespace velmor2
