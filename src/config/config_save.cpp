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
#include <libxml/dict.h>

#include <memory>
#include <typeindex>
#include <unordered_map>

namespace velmor2 {
namespace {

// The UTF-8 pieces of a key, empty pieces dropped; false when a piece is not an XML name or
// the key nests deeper than a reader accepts. "." is ASCII, so splitting the UTF-8 form gives
// the pieces of the wide one.
bool split_key(const std::wstring& key, std::vector<std::string>& pieces) {
    using separator_t = boost::char_separator<char>;
    const std::string utf8 = _internal::to_utf8(key);
    const boost::tokenizer<separator_t> tokens(utf8, separator_t("."));
    pieces.clear();
    for (const std::string& token : tokens) {
        if (!_internal::is_element_name(token) ||
            pieces.size() + 1 >= _internal::max_element_depth) {
            return false;
        }
        pieces.push_back(token);
    }
    return true;
}

const xmlChar* xml_text(const char* text) {
    return reinterpret_cast<const xmlChar*>(text);
}

} // namespace

bool advanced_xml_config_t::save(const path_t& file) {
    std::unique_ptr<xmlDoc, decltype(&xmlFreeDoc)> doc(xmlNewDoc(xml_text("1.0")), &xmlFreeDoc);
    if (!doc) {
        throw std::bad_alloc();
    }
    // Element names repeat (type, item, group names): a dictionary stores each once.
    doc->dict = xmlDictCreate();
    xmlNode* root = doc->dict != nullptr
                        ? xmlNewDocNode(doc.get(), nullptr, xml_text("root"), nullptr)
                        : nullptr;
    if (root == nullptr) {
        throw std::bad_alloc();
    }
    xmlDocSetRootElement(doc.get(), root);

    _internal::save_tree_t tree(root);
    // Held types resolved once per save; the copies keep the handlers alive during the save.
    struct writer_t {
        smart_pointer_t<handler_base_t> handler;
        std::string type_name;
    };
    std::unordered_map<std::type_index, writer_t> known;
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
                    writer_t writer{owned, _internal::to_utf8(found->get_type_name())};
                    handler = known.emplace(value.type(), writer).first;
                    break;
                }
            }
        }
        handler_base_t& writer = *handler->second.handler;
        xmlSetProp(element, xml_text("type"), xml_text(handler->second.type_name.c_str()));
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
