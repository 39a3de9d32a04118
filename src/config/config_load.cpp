// Loading a store from its XML file.
#include <velmor2/configuration.hpp>

#include "config/handler_scope.hpp"
#include "config/handlers_internal.hpp"
#include "config/key_index.hpp"
#include "config/node_text.hpp"
#include "config/xml_stream.hpp"
#include "unicode/convert.hpp"

#include <libxml/tree.h>

#include <deque>
#include <string>
#include <unordered_map>

namespace velmor2 {

bool advanced_xml_config_t::load(const path_t& file) {
    // Everything is read before the store changes, so that a file that turns out malformed or
    // refused for the text its entities expand to leaves the values as they were.
    // A deque: growing it moves nothing, and its blocks are small enough for the allocator to
    // reuse instead of mapping fresh memory.
    std::deque<read_value_t> read;
    if (!read_file(file, read)) {
        return false;
    }
    index.clear();
    values.clear();
    _internal::key_index::reserve(index, 0, read.size());
    for (read_value_t& value : read) {
        if (value.handled) {
            put_value(_internal::key_index::key_of_name(std::move(value.key)),
                      std::move(value.value));
        } else {
            on_load_value_failed(value.key, value.type_name);
        }
    }
    return true;
}

bool advanced_xml_config_t::read_file(const path_t& file, std::deque<read_value_t>& read) {
    struct reader_t final : _internal::typed_element_visitor_t {
        // A type name's handler, resolved once per load; the copy keeps it alive.
        struct known_t {
            smart_pointer_t<handler_base_t> handler;
            const _internal::text_reader_t* text_reader;
        };

        advanced_xml_config_t& store;
        std::deque<read_value_t>& read;
        std::unordered_map<std::string, known_t> known;
        std::string type_name;
        /// The handler `reads_text` last said yes for: `typed_text` comes for that element.
        const _internal::text_reader_t* text_reader = nullptr;

        reader_t(advanced_xml_config_t& store, std::deque<read_value_t>& read)
            : store(store), read(read) {}

        const known_t* handler_for(const std::string& type_name) {
            const auto found = known.find(type_name);
            if (found != known.end()) {
                return &found->second;
            }
            const std::wstring wide = _internal::to_ustring(type_name);
            for (const smart_pointer_t<handler_base_t>& handler : store.handlers) {
                if (handler && handler->get_type_name() == wide) {
                    const auto* text_reader =
                        dynamic_cast<const _internal::text_reader_t*>(handler.get());
                    return &known.emplace(type_name, known_t{handler, text_reader}).first->second;
                }
            }
            return nullptr;
        }

        bool reads_text(const std::string& type_name) override {
            const known_t* found = handler_for(type_name);
            text_reader = found != nullptr ? found->text_reader : nullptr;
            return text_reader != nullptr;
        }

        void typed(xmlNode* node, const std::string& key, const std::string& type_name) override {
            read_value_t value{_internal::to_ustring(key), true, {}, {}};
            const known_t* found = handler_for(type_name);
            if (found == nullptr) {
                value.handled = false;
                value.type_name = _internal::to_ustring(type_name);
            } else {
                _internal::handler_scope_t scope(*found->handler, &store);
                value.value = found->handler->load_value(node);
            }
            read.push_back(std::move(value));
        }

        void typed_text(const std::string& key, const std::string& text) override {
            read.push_back({_internal::to_ustring(key),
                            true,
                            {},
                            text_reader->value_of_text(_internal::to_ustring(text))});
        }

        // The elements an entity's text holds, walked where the reference stands; their keys
        // start inside the entity.
        void reference(xmlNode* node) override { walk(node, std::string()); }

        void walk(xmlNode* node, const std::string& key) {
            if (node->type == XML_ELEMENT_NODE &&
                _internal::attribute_text(node, "type", type_name)) {
                typed(node, key, type_name);
                return;
            }
            for (xmlNode* child = node->children; child != nullptr; child = child->next) {
                if (child->type != XML_ELEMENT_NODE) {
                    walk(child, std::string());
                } else {
                    const std::string name = reinterpret_cast<const char*>(child->name);
                    walk(child, key.empty() ? name : key + '.' + name);
                }
            }
        }
    };
    reader_t reader(*this, read);
    return _internal::read_typed_elements(file, reader);
}

} // namespace velmor2
