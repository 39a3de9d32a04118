// The path handler and the registration of the built-in handlers.
#include "config/handlers_internal.hpp"

#include "config/xml_check.hpp"
#include "unicode/convert.hpp"

#include <cstdint>
#include <cstring>
#include <list>
#include <map>

namespace velmor2::_internal {

std::vector<xmlNode*> child_elements(xmlNode* node, const char* name) {
    std::vector<xmlNode*> found;
    if (node == nullptr) {
        return found;
    }
    for (xmlNode* child = node->children; child != nullptr; child = child->next) {
        if (child->type == XML_ELEMENT_NODE && child->ns == nullptr &&
            std::strcmp(reinterpret_cast<const char*>(child->name), name) == 0) {
            found.push_back(child);
        }
    }
    return found;
}

void add_text_child(xmlNode* node, const char* name, const std::wstring& text) {
    xmlNewTextChild(node, nullptr, reinterpret_cast<const xmlChar*>(name),
                    reinterpret_cast<const xmlChar*>(to_xml_utf8(text).c_str()));
}

void append_utf8(std::wstring_view text, std::string& out) {
    const std::size_t start = out.size();
    out.resize(start + text.size());
    char* p = out.data() + start;
    for (const wchar_t c : text) {
        if (static_cast<std::uint32_t>(c) >= 0x80) {
            out.resize(start);
            out += to_xml_utf8(std::wstring(text));
            return;
        }
        *p++ = static_cast<char>(c);
    }
}

boost::any path_t_handler_t::load_value(xmlNode* element) {
    return boost::any(path_t(get_node_content(element)));
}

void path_t_handler_t::save_value(const boost::any& value, xmlNode* element) {
    if (const path_t* held = boost::any_cast<path_t>(&value)) {
        set_node_content(element, held->as_string());
    }
}

bool path_t_handler_t::append_text(const boost::any& value, std::string& utf8) const {
    const path_t* held = boost::any_cast<path_t>(&value);
    if (held == nullptr) {
        return false;
    }
    append_utf8(held->as_string(), utf8);
    return true;
}

std::wstring path_t_handler_t::get_type_name() const {
    return L"path_t";
}

const std::type_info& path_t_handler_t::get_type_info() const {
    return typeid(path_t);
}

void add_builtin_handlers(std::list<smart_pointer_t<handler_base_t>>& handlers) {
    using string_vector = std::vector<std::wstring>;
    using string_list = std::list<std::wstring>;
    using string_map = std::map<std::wstring, std::wstring>;
    handlers.emplace_back(new generic_handler_t<bool>(L"bool"));
    handlers.emplace_back(new generic_handler_t<int>(L"int"));
    handlers.emplace_back(new generic_handler_t<long>(L"long"));
    handlers.emplace_back(new generic_handler_t<unsigned long>(L"unsigned long"));
    handlers.emplace_back(new generic_handler_t<unsigned short>(L"unsigned short"));
    handlers.emplace_back(new generic_handler_t<unsigned int>(L"unsigned int"));
    handlers.emplace_back(new generic_handler_t<float>(L"float"));
    handlers.emplace_back(new generic_handler_t<double>(L"double"));
    handlers.emplace_back(new generic_handler_t<std::wstring>(L"string"));
    handlers.emplace_back(
        new generic_container_handler_t<string_vector, std::wstring>(L"string_vector"));
    handlers.emplace_back(
        new generic_container_handler_t<string_list, std::wstring>(L"string_list"));
    handlers.emplace_back(new generic_container_handler_t<std::vector<int>, int>(L"int_vector"));
    handlers.emplace_back(new generic_map_handler_t<string_map>(L"string_string_map"));
    handlers.emplace_back(new path_t_handler_t);
}

} // namespace velmor2::_internal
