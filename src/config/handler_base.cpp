// The XML helpers that value handlers read and write elements with.
#include <velmor2/configuration.hpp>

#include "config/handler_scope.hpp"
#include "config/node_text.hpp"
#include "config/xml_check.hpp"
#include "config/xml_quiet.hpp"
#include "config/xpath.hpp"
#include "unicode/convert.hpp"

#include <libxml/tree.h>

namespace velmor2 {
namespace {

using _internal::to_utf8;

const xmlChar* xml_text(const std::string& utf8) {
    return reinterpret_cast<const xmlChar*>(utf8.c_str());
}

std::vector<xmlNode*> select(xmlNode* node, const std::wstring& expression) {
    std::vector<xmlNode*> nodes;
    _internal::select_nodes(node, to_utf8(expression), nodes);
    return nodes;
}

} // namespace

handler_base_t::handler_base_t() : parent(nullptr) {}

handler_base_t::handler_base_t(const handler_base_t& other) = default;

handler_base_t& handler_base_t::operator=(const handler_base_t& other) = default;

handler_base_t::~handler_base_t() = default;

void handler_base_t::set_parent(const advanced_xml_config_t* store) {
    parent = store;
}

std::wstring handler_base_t::get_node_content(xmlNode* node) {
    if (node == nullptr || node->children == nullptr) {
        return std::wstring();
    }
    // A lone text child is what libxml2 would copy out; convert it in place.
    const xmlNode* child = node->children;
    if (child->next == nullptr && child->type == XML_TEXT_NODE) {
        return _internal::to_ustring(reinterpret_cast<const char*>(child->content));
    }
    std::string text;
    if (!_internal::append_list_text(node->doc, node->children, text)) {
        return std::wstring();
    }
    return _internal::to_ustring(text);
}

void handler_base_t::set_node_content(xmlNode* node, const std::wstring& text) const {
    if (node == nullptr) {
        return;
    }
    const std::string utf8 = _internal::to_xml_utf8(text);
    xmlNodeAddContentLen(node, xml_text(utf8), static_cast<int>(utf8.size()));
}

void handler_base_t::add_property(xmlNode* node, const std::wstring& name,
                                  const std::wstring& value) const {
    if (node == nullptr) {
        return;
    }
    // libxml2 reports a malformed reference in the content on stderr unless told otherwise.
    const _internal::quiet_xml_t quiet;
    xmlNewChild(node, nullptr, xml_text(to_utf8(name)), xml_text(to_utf8(value)));
}

std::wstring handler_base_t::get_property(xmlNode* node, const std::wstring& name) {
    const std::vector<xmlNode*> nodes = find_nodes(node, name);
    return nodes.empty() ? std::wstring() : get_node_content(nodes.front());
}

void handler_base_t::set_property(xmlNode* node, const std::wstring& name,
                                  const std::wstring& value) const {
    const std::vector<xmlNode*> nodes = select(node, name);
    if (nodes.empty()) {
        add_property(node, name, value);
    } else {
        set_node_content(nodes.front(), value);
    }
}

std::wstring handler_base_t::get_attribute(xmlNode* node, const std::wstring& name) {
    if (node == nullptr) {
        return std::wstring();
    }
    std::string text;
    if (!_internal::attribute_text(node, to_utf8(name).c_str(), text)) {
        return std::wstring();
    }
    return _internal::to_ustring(text);
}

void handler_base_t::set_attribute(xmlNode* node, const std::wstring& name,
                                   const std::wstring& value) const {
    if (node == nullptr) {
        return;
    }
    xmlSetProp(node, xml_text(to_utf8(name)), xml_text(_internal::to_xml_utf8(value)));
}

boost::any handler_base_t::get_any_property(xmlNode* node, const std::wstring& name,
                                            const std::wstring& type_name) {
    const std::vector<xmlNode*> nodes = find_nodes(node, name);
    if (nodes.empty() || parent == nullptr) {
        return boost::any();
    }
    const smart_pointer_t<handler_base_t> handler = parent->handler_for_name(type_name);
    return handler ? handler->load_value(nodes.front()) : boost::any();
}

bool handler_base_t::set_any_property(xmlNode* node, const std::wstring& name,
                                      const boost::any& value) const {
    if (node == nullptr) {
        return false;
    }
    const std::vector<xmlNode*> nodes = select(node, name);
    xmlNode* target = !nodes.empty() ? nodes.front()
                                     : xmlNewChild(node, nullptr, xml_text(to_utf8(name)), nullptr);
    const smart_pointer_t<handler_base_t> handler = parent != nullptr
                                                        ? parent->handler_for_type(value.type())
                                                        : smart_pointer_t<handler_base_t>();
    if (!handler || target == nullptr) {
        return false;
    }
    handler->save_value(value, target);
    return true;
}

std::vector<xmlNode*> handler_base_t::find_nodes(xmlNode* node, const std::wstring& expression) {
    return select(node, expression);
}

} // namespace velmor2

namespace velmor2::_internal {

handler_scope_t::handler_scope_t(handler_base_t& handler, const advanced_xml_config_t* store)
    : handler(handler) {
    handler.set_parent(store);
}

handler_scope_t::~handler_scope_t() {
    handler.set_parent(nullptr);
}

} // namespace velmor2::_internal
