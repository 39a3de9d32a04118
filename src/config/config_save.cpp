// Saving a store to its XML file.
//
// Keys are written in ascending order, each as the element path of its "."-separated pieces.
// A key with a piece that is not an XML name, a key below one that holds a value or whose
// element another key made (`x..y` after `x.y`), a value with no handler, and a value whose written
// content would not read back are reported to on_save_value_failed and left out, so a save never
// produces a file that load rejects or that loads other values.
#include <velmor2/configuration.hpp>

#include "config/handler_scope.hpp"
#include "config/handlers_internal.hpp"
#include "config/save_tree.hpp"
#include "config/value_store.hpp"
#include "config/xml_check.hpp"
#include "unicode/convert.hpp"

#include <libxml/tree.h>

#include <string_view>
#include <typeindex>
#include <unordered_map>

namespace velmor2 {
namespace {

// The UTF-8 pieces of a key, viewing `utf8`, empty pieces dropped; false when a piece is not
// an XML name or the key nests deeper than a reader accepts. "." is ASCII, so splitting the
// UTF-8 form gives the pieces of the wide one.
bool split_key(std::wstring_view key, std::string& utf8, std::vector<std::string_view>& pieces) {
    utf8.clear();
    _internal::append_utf8(key, utf8);
    pieces.clear();
    const std::string_view text(utf8);
    for (std::size_t begin = 0; begin < text.size();) {
        std::size_t end = text.find('.', begin);
        if (end == std::string_view::npos) {
            end = text.size();
        }
        if (end > begin) {
            const std::string_view piece = text.substr(begin, end - begin);
            if (!_internal::is_element_name(piece) ||
                pieces.size() + 1 >= _internal::max_element_depth) {
                return false;
            }
            pieces.push_back(piece);
        }
        begin = end + 1;
    }
    return true;
}

} // namespace

bool advanced_xml_config_t::save(const path_t& file) {
    // Held types resolved once per save; the copies keep the handlers alive during the save,
    // and the type names stay for the tree, which points at them.
    struct writer_t {
        smart_pointer_t<handler_base_t> handler;
        std::string type_name;
        // Set for a handler that only appends text: its value needs no libxml2 element.
        const _internal::text_writer_t* text_writer;
    };
    std::unordered_map<std::type_index, writer_t> known;
    _internal::save_tree_t tree(values->size());
    std::string utf8;
    std::string text;
    std::vector<std::string_view> pieces;
    const auto failed = [this](std::wstring_view key, const boost::any& value) {
        on_save_value_failed(std::wstring(key), value.type());
    };
    values->for_each_in_order([&](std::size_t id) {
        const std::wstring_view key = values->key(id);
        const boost::any& value = values->value(id);
        if (!split_key(key, utf8, pieces)) {
            failed(key, value);
            return;
        }
        if (pieces.empty()) {
            return;
        }
        const _internal::save_tree_t::id_t node = tree.make_element(pieces);
        if (node == _internal::save_tree_t::none) {
            failed(key, value);
            return;
        }
        auto handler = known.find(value.type());
        if (handler == known.end()) {
            const smart_pointer_t<handler_base_t> found = handler_for_type(value.type());
            if (!found) {
                failed(key, value);
                return;
            }
            writer_t writer{found, _internal::to_utf8(found->get_type_name()),
                            dynamic_cast<const _internal::text_writer_t*>(found.get())};
            handler = known.emplace(value.type(), writer).first;
        }
        const writer_t& writer = handler->second;
        if (writer.text_writer != nullptr) {
            text.clear();
            writer.text_writer->append_text(value, text);
            if (!tree.set_text(node, &writer.type_name, text)) {
                failed(key, value);
            }
            return;
        }
        xmlNode* element = tree.make_value_element(node);
        xmlSetProp(element, BAD_CAST "type", BAD_CAST writer.type_name.c_str());
        {
            _internal::handler_scope_t scope(*writer.handler, this);
            writer.handler->save_value(value, element);
        }
        if (!_internal::is_loadable(element, tree.depth_of(node))) {
            tree.clear_value(node);
            failed(key, value);
        }
    });
    return tree.write(file);
}

} // namespace velmor2
