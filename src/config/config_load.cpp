// Loading a store from its XML file.
#include <velmor2/configuration.hpp>

#include "config/handler_scope.hpp"
#include "config/handlers_internal.hpp"
#include "config/key_hash.hpp"
#include "config/node_text.hpp"
#include "config/value_store.hpp"
#include "config/xml_stream.hpp"
#include "unicode/convert.hpp"

#include <libxml/tree.h>

#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

namespace velmor2 {
namespace _internal {

/// An element whose type no handler reads, kept with its place among the values read.
struct load_failure_t {
    /// Number of values read before it.
    std::size_t position;
    std::wstring key;
    std::wstring type_name;
};

} // namespace _internal

bool advanced_xml_config_t::load(const path_t& file) {
    // Everything is read before the store changes, so that a file that turns out malformed or
    // refused for the text its entities expand to leaves the values as they were.
    auto read = std::make_unique<_internal::value_store_t>();
    std::vector<_internal::load_failure_t> failed;
    if (!read_file(file, *read, failed)) {
        return false;
    }
    // Values read in ascending key order, as a save writes them, are the store as they stand;
    // others (a file written by hand) are set one by one in document order.
    const std::size_t count = read->size();
    auto failure = failed.begin();
    const auto report_failures_before = [&](std::size_t position) {
        for (; failure != failed.end() && failure->position == position; ++failure) {
            on_load_value_failed(failure->key, failure->type_name);
        }
    };
    if (read->ascending()) {
        values.swap(read);
        // Whether anybody listens is asked again only after a hook ran: nothing else of this
        // thread can connect meanwhile.
        bool heard = value_changed.connection_count() != 0;
        const boost::any none;
        // Only what was read: a listener may add values, announced as they are set.
        for (std::size_t id = 0; id < count && id < values->size(); ++id) {
            if (failure != failed.end() && failure->position == id) {
                report_failures_before(id);
                heard = value_changed.connection_count() != 0;
            }
            if (heard) {
                announce(std::wstring(values->key(id)), none, id);
            }
        }
    } else {
        values->clear();
        for (std::size_t id = 0; id < count; ++id) {
            report_failures_before(id);
            put_value(std::wstring(read->key(id)), std::move(read->value(id)));
        }
    }
    report_failures_before(count);
    return true;
}

bool advanced_xml_config_t::read_file(const path_t& file, _internal::value_store_t& read,
                                      std::vector<_internal::load_failure_t>& failed) {
    struct reader_t final : _internal::typed_element_visitor_t {
        // A type name's handler, resolved once per load; the copy keeps it alive.
        struct known_t {
            smart_pointer_t<handler_base_t> handler;
            const _internal::text_reader_t* text_reader;
        };

        advanced_xml_config_t& store;
        _internal::value_store_t& read;
        std::vector<_internal::load_failure_t>& failed;
        std::unordered_map<std::string, known_t> known;
        std::string type_name;
        /// The handler `reads_text` last said yes for: `typed_text` comes for that element.
        const _internal::text_reader_t* text_reader = nullptr;
        /// The key and text of the value being read, in memory reused from value to value.
        std::wstring wide_key;
        std::wstring wide_text;

        reader_t(advanced_xml_config_t& store, _internal::value_store_t& read,
                 std::vector<_internal::load_failure_t>& failed)
            : store(store), read(read), failed(failed) {}

        const known_t* handler_for(const std::string& type_name) {
            const auto found = known.find(type_name);
            if (found != known.end()) {
                return &found->second;
            }
            const smart_pointer_t<handler_base_t> handler =
                store.handler_for_name(_internal::to_ustring(type_name));
            if (!handler) {
                return nullptr;
            }
            const auto* text_reader = dynamic_cast<const _internal::text_reader_t*>(handler.get());
            return &known.emplace(type_name, known_t{handler, text_reader}).first->second;
        }

        std::wstring_view key_of(const std::string& key) {
            wide_key.clear();
            _internal::append_ustring(key, wide_key);
            if (!_internal::is_key_form(wide_key)) {
                wide_key = _internal::tolower(wide_key);
            }
            return wide_key;
        }

        bool reads_text(const std::string& type_name) override {
            const known_t* found = handler_for(type_name);
            text_reader = found != nullptr ? found->text_reader : nullptr;
            return text_reader != nullptr;
        }

        void typed(xmlNode* node, const std::string& key, const std::string& type_name) override {
            const known_t* found = handler_for(type_name);
            if (found == nullptr) {
                failed.push_back(
                    {read.size(), _internal::to_ustring(key), _internal::to_ustring(type_name)});
                return;
            }
            _internal::handler_scope_t scope(*found->handler, &store);
            read.append(key_of(key), found->handler->load_value(node));
        }

        void typed_text(const std::string& key, const std::string& text) override {
            wide_text.clear();
            _internal::append_ustring(text, wide_text);
            read.append(key_of(key), text_reader->value_of_text(wide_text));
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
    reader_t reader(*this, read, failed);
    return _internal::read_typed_elements(file, reader);
}

} // namespace velmor2
