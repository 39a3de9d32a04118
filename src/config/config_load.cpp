// Loading a store from its XML file.
#include <velmor2/configuration.hpp>

#include "config/handler_scope.hpp"
#include "text/convert.hpp"

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
    index.clear();
    values.clear();
    parse_node(xmlDocGetRootElement(doc.get()));
    return true;
}

void advanced_xml_config_t::parse_node(xmlNode* node) {
    // Type names resolved once per load; the copies keep the handlers alive should a
    // subscriber replace the store's list during the load.
    struct reader_t {
        advanced_xml_config_t& store;
        std::unordered_map<std::string, smart_pointer_t<handler_base_t>> known;

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

        void read(xmlNode* node) {
            if (node == nullptr) {
                return;
            }
            const std::unique_ptr<xmlChar, void (*)(xmlChar*)> type(
                node->type == XML_ELEMENT_NODE
                    ? xmlGetProp(node, reinterpret_cast<const xmlChar*>("type"))
                    : nullptr,
                [](xmlChar* p) { xmlFree(p); });
            if (!type) {
                for (xmlNode* child = node->children; child != nullptr; child = child->next) {
                    read(child);
                }
                return;
            }
            const std::string type_name(reinterpret_cast<const char*>(type.get()));
            const std::wstring key = key_of(node);
            handler_base_t* handler = handler_for(type_name);
            if (handler == nullptr) {
                store.on_load_value_failed(key, _internal::to_ustring(type_name));
                return;
            }
            boost::any value;
            {
                _internal::handler_scope_t scope(*handler, &store);
                value = handler->load_value(node);
            }
            store.set_value(key, value);
        }
    };
    reader_t{*this, {}}.read(node);
}

} // namespace velmor2
