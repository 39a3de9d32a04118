// Saving a store to its XML file.
//
// Keys are written in ascending order, each as the element path of its "."-separated pieces.
// A key with a piece that is not an XML name, a value with no handler, and a value whose
// written content would not read back are reported to on_save_value_failed and left out, so a
// save never produces a file that load rejects.
#include <velmor2/configuration.hpp>

#include "config/handler_scope.hpp"
#include "config/save_tree.hpp"
#include "config/xml_check.hpp"
#include "text/convert.hpp"

#include <boost/tokenizer.hpp>

#include <memory>
#include <typeindex>
#include <unordered_map>

namespace velmor2 {
namespace {

// The UTF-8 pieces of a key, empty pieces dropped; false when a piece is not an XML name.
bool split_key(const std::wstring& key, std::vector<std::string>& pieces) {
    using separator_t = boost::char_separator<wchar_t>;
    const boost::tokenizer<separator_t, std::wstring::const_iterator, std::wstring> tokens(
        key, separator_t(L"."));
    pieces.clear();
    for (const std::wstring& token : tokens) {
        pieces.push_back(_internal::to_utf8(token));
        if (!_internal::is_element_name(pieces.back())) {
            return false;
        }
    }
    return true;
}

const xmlChar* xml_text(const char* text) { return reinterpret_cast<const xmlChar*>(text); }

} // namespace

bool advanced_xml_config_t::save(const path_t& file) {
    std::unique_ptr<xmlDoc, decltype(&xmlFreeDoc)> doc(xmlNewDoc(xml_text("1.0")), &xmlFreeDoc);
    xmlNode* root = doc ? xmlNewDocNode(doc.get(), nullptr, xml_text("root"), nullptr) : nullptr;
    if (root == nullptr) {
        throw std::bad_alloc();
    }
    xmlDocSetRootElement(doc.get(), root);

    _internal::save_tree_t tree(root);
    // Held types resolved once per save; the copies keep the handlers alive during the save.
    std::unordered_map<std::type_index, smart_pointer_t<handler_base_t>> known;
    std::vector<std::string> pieces;
    for (const auto& [key, value] : values) {
        if (!split_key(key, pieces)) {
            on_save_value_failed(key, value.type());
            continue;
        }
        if (pieces.empty()) {
            continue;
        }
        xmlNode* element = tree.make_element(pieces);
        if (element == nullptr) {
            continue;
        }
        auto handler = known.find(value.type());
        if (handler == known.end()) {
            handler_base_t* found = handler_for_type(value.type());
            if (found == nullptr) {
                on_save_value_failed(key, value.type());
                continue;
            }
            for (const smart_pointer_t<handler_base_t>& owned : handlers) {
                if (owned.get() == found) {
                    handler = known.emplace(value.type(), owned).first;
                    break;
                }
            }
        }
        handler_base_t& writer = *handler->second;
        xmlSetProp(element, xml_text("type"),
                   xml_text(_internal::to_utf8(writer.get_type_name()).c_str()));
        {
            _internal::handler_scope_t scope(writer, this);
            writer.save_value(value, element);
        }
        tree.mark_written(element);
        if (!_internal::is_loadable(element)) {
            _internal::clear_element(element);
            on_save_value_failed(key, value.type());
        }
    }
    return save_xml_document(file, doc.get());
}

} // namespace velmor2
