// The store's values, handler list and notification.
#include <velmor2/configuration.hpp>

#include "config/handlers_internal.hpp"
#include "config/key_hash.hpp"
#include "config/store_watch.hpp"
#include "config/value_store.hpp"
#include "unicode/convert.hpp"

#include <algorithm>

namespace velmor2 {
namespace {

// Runs `use` on the key of `name` and its hash, copying only a name that is not in key form.
template <typename use_t> auto with_key(const std::wstring& name, use_t use) {
    const _internal::key_hash_t hashed = _internal::hash_key(name);
    if (hashed.key_form) {
        return use(name, hashed.hash);
    }
    const std::wstring key = _internal::tolower(name);
    return use(key, _internal::hash_key(key).hash);
}

// The first handler `match` accepts, shared; empty when none does.
template <typename match_t>
smart_pointer_t<handler_base_t>
first_handler(const std::list<smart_pointer_t<handler_base_t>>& handlers, match_t match) {
    const auto found = std::find_if(handlers.begin(), handlers.end(), [&](const auto& handler) {
        return handler && match(*handler);
    });
    return found != handlers.end() ? *found : smart_pointer_t<handler_base_t>();
}

} // namespace

advanced_xml_config_t::advanced_xml_config_t()
    : values(std::make_unique<_internal::value_store_t>()) {
    _internal::add_builtin_handlers(handlers);
}

advanced_xml_config_t::advanced_xml_config_t(const advanced_xml_config_t& other)
    : value_changed(other.value_changed),
      values(std::make_unique<_internal::value_store_t>(*other.values)), handlers(other.handlers),
      lower(other.lower) {}

advanced_xml_config_t& advanced_xml_config_t::operator=(const advanced_xml_config_t& other) {
    value_changed = other.value_changed;
    if (this != &other) {
        // Copied aside first: running out of memory leaves the store as it was.
        auto copied = std::make_unique<_internal::value_store_t>(*other.values);
        handlers = other.handlers;
        if (!set_lower_layer(other.lower)) {
            lower.reset();
        }
        values.swap(copied);
    }
    return *this;
}

advanced_xml_config_t::~advanced_xml_config_t() {
    // Handlers first, then values; the signal goes last as the first-declared member.
    handlers.clear();
    values.reset();
}

boost::any advanced_xml_config_t::get_value(const std::wstring& name,
                                            const boost::any& default_value) {
    values->index();
    return with_key(name, [&](const std::wstring& key, std::uint64_t hash) {
        const boost::any* found = find_value(key, hash);
        return found != nullptr ? *found : default_value;
    });
}

void advanced_xml_config_t::set_value(const std::wstring& name, const boost::any& value) {
    if (_internal::is_key_form(name)) {
        put_value(name, value);
    } else {
        put_value(_internal::tolower(name), value);
    }
}

void advanced_xml_config_t::put_value(const std::wstring& key, boost::any value) {
    boost::any previous;
    const std::size_t id = values->put(key, std::move(value), previous);
    announce(key, previous, id);
}

void advanced_xml_config_t::announce(const std::wstring& key, const boost::any& previous,
                                     std::size_t id) {
    // Entries never move while the store grows, so a listener that sets values does not pull
    // the value from under the others.
    if (value_changed.connection_count() != 0) {
        value_changed(key, previous, values->value(id));
    }
}

bool advanced_xml_config_t::has_value(const std::wstring& name) const {
    return with_key(name, [this](const std::wstring& key, std::uint64_t hash) {
        return find_value(key, hash) != nullptr;
    });
}

const boost::any* advanced_xml_config_t::find_value(const std::wstring& key,
                                                    std::uint64_t hash) const {
    for (const advanced_xml_config_t* layer = this; layer != nullptr; layer = layer->lower.get()) {
        const std::size_t id = layer->values->find(key, hash);
        if (id != _internal::value_store_t::none) {
            return &layer->values->value(id);
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
    names.reserve(values->size());
    values->for_each_in_order([&](std::size_t id) { names.emplace_back(values->key(id)); });
}

void advanced_xml_config_t::add_handler(smart_pointer_t<handler_base_t> handler) {
    handlers.push_back(handler);
}

void advanced_xml_config_t::on_load_value_failed(const std::wstring&, const std::wstring&) {}

void advanced_xml_config_t::on_save_value_failed(const std::wstring&, const std::type_info&) {}

smart_pointer_t<handler_base_t>
advanced_xml_config_t::handler_for_name(const std::wstring& type_name) const {
    return first_handler(handlers, [&](const handler_base_t& handler) {
        return handler.get_type_name() == type_name;
    });
}

smart_pointer_t<handler_base_t>
advanced_xml_config_t::handler_for_type(const std::type_info& type) const {
    return first_handler(
        handlers, [&](const handler_base_t& handler) { return handler.get_type_info() == type; });
}

} // namespace velmor2
