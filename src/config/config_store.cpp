// The store's values, handler list and notification.
#include <velmor2/configuration.hpp>

#include "config/handlers_internal.hpp"
#include "config/key_index.hpp"
#include "config/store_watch.hpp"
#include "unicode/convert.hpp"

namespace velmor2 {
namespace {

// Runs `use` on the key of `name`, copying only a name that is not in key form.
template <typename use_t> auto with_key(const std::wstring& name, use_t use) {
    return _internal::key_index::is_key_form(name) ? use(name) : use(_internal::tolower(name));
}

} // namespace

advanced_xml_config_t::advanced_xml_config_t() {
    _internal::add_builtin_handlers(handlers);
}

advanced_xml_config_t::advanced_xml_config_t(const advanced_xml_config_t& other)
    : value_changed(other.value_changed), values(other.values), handlers(other.handlers),
      index(_internal::key_index::build(values)), lower(other.lower) {}

advanced_xml_config_t& advanced_xml_config_t::operator=(const advanced_xml_config_t& other) {
    value_changed = other.value_changed;
    if (this != &other) {
        // Copied and indexed aside first: running out of memory leaves the store as it was.
        // Swapping maps keeps their iterators valid.
        auto copied = other.values;
        auto copied_index = _internal::key_index::build(copied);
        handlers = other.handlers;
        if (!set_lower_layer(other.lower)) {
            lower.reset();
        }
        values.swap(copied);
        index.swap(copied_index);
    }
    return *this;
}

advanced_xml_config_t::~advanced_xml_config_t() {
    // Handlers first, then values; the signal goes last as the first-declared member.
    handlers.clear();
    index.clear();
    values.clear();
}

boost::any advanced_xml_config_t::get_value(const std::wstring& name,
                                            const boost::any& default_value) {
    index_values();
    return with_key(name, [&](const std::wstring& key) {
        const boost::any* found = find_value(key);
        return found != nullptr ? *found : default_value;
    });
}

void advanced_xml_config_t::set_value(const std::wstring& name, const boost::any& value) {
    put_value(_internal::key_index::key_of_name(name), value);
}

void advanced_xml_config_t::put_value(std::wstring key, boost::any value) {
    // A key after the last one is new without a look-up: files and loops mostly bring keys
    // in ascending order. Otherwise the index finds it, or where nothing was read yet and the
    // index is not built, the tree search that an insertion makes anyway.
    const bool after_last = values.empty() || values.rbegin()->first < key;
    const std::size_t hash = index.empty() ? 0 : _internal::key_index::hash_of(key);
    _internal::key_index::entry_t* entry = nullptr;
    auto place = values.end();
    if (!after_last && !index.empty()) {
        entry = _internal::key_index::find(index, key, hash);
    } else if (!after_last) {
        place = values.lower_bound(key);
        entry = place != values.end() && place->first == key ? &*place : nullptr;
    }
    boost::any previous;
    if (entry != nullptr) {
        previous.swap(entry->second);
        entry->second = std::move(value);
    } else {
        const auto added = values.emplace_hint(place, std::move(key), std::move(value));
        if (!index.empty()) {
            try {
                _internal::key_index::add(index, values.size() - 1, hash, &*added);
            } catch (...) {
                values.erase(added);
                throw;
            }
        }
        entry = &*added;
    }
    value_changed(entry->first, previous, entry->second);
}

void advanced_xml_config_t::index_values() {
    if (index.empty() && !values.empty()) {
        index = _internal::key_index::build(values);
    }
}

bool advanced_xml_config_t::has_value(const std::wstring& name) const {
    return with_key(name, [this](const std::wstring& key) { return find_value(key) != nullptr; });
}

const boost::any* advanced_xml_config_t::find_value(const std::wstring& key) const {
    const std::size_t hash = _internal::key_index::hash_of(key);
    for (const advanced_xml_config_t* layer = this; layer != nullptr; layer = layer->lower.get()) {
        if (!layer->index.empty()) {
            if (const auto* found = _internal::key_index::find(layer->index, key, hash)) {
                return &found->second;
            }
        } else if (const auto found = layer->values.find(key); found != layer->values.end()) {
            return &found->second;
        }
    }
    return nullptr;
}

bool advanced_xml_config_t::set_lower_layer(std::shared_ptr<const advanced_xml_config_t> layer) {
    for (const advanced_xml_config_t* below = layer.get(); below != nullptr;
         below = below->lower.get()) {
        if (below == this) {
            return false;
        }
    }
    lower = std::move(layer);
    return true;
}

std::shared_ptr<const advanced_xml_config_t> advanced_xml_config_t::get_lower_layer() const {
    return lower;
}

void advanced_xml_config_t::get_names(std::vector<std::wstring>& names) const {
    names.clear();
    names.reserve(values.size());
    for (const auto& entry : values) {
        names.push_back(entry.first);
    }
}

void advanced_xml_config_t::add_handler(smart_pointer_t<handler_base_t> handler) {
    handlers.push_back(handler);
}

void advanced_xml_config_t::on_load_value_failed(const std::wstring&, const std::wstring&) {}

void advanced_xml_config_t::on_save_value_failed(const std::wstring&, const std::type_info&) {}

handler_base_t* advanced_xml_config_t::handler_for_name(const std::wstring& type_name) const {
    for (const smart_pointer_t<handler_base_t>& handler : handlers) {
        if (handler && handler->get_type_name() == type_name) {
            return handler.get();
        }
    }
    return nullptr;
}

handler_base_t* advanced_xml_config_t::handler_for_type(const std::type_info& type) const {
    for (const smart_pointer_t<handler_base_t>& handler : handlers) {
        if (handler && handler->get_type_info() == type) {
            return handler.get();
        }
    }
    return nullptr;
}

} // namespace velmor2
