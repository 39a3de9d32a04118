// The store's values, handler list and notification.
#include <velmor2/configuration.hpp>

#include "config/handlers_internal.hpp"
#include "text/convert.hpp"

#include <algorithm>
#include <cstdint>

namespace velmor2 {
namespace {

// The key of `name`: `tolower(name)`, which for ASCII text without capitals is the name itself
// and needs no pass over it.
template <typename use_t> auto with_key(const std::wstring& name, use_t use) {
    const bool lower = std::all_of(name.begin(), name.end(), [](wchar_t c) {
        return static_cast<std::uint32_t>(c) < 0x80 && !(c >= L'A' && c <= L'Z');
    });
    return lower ? use(name) : use(_internal::tolower(name));
}

} // namespace

advanced_xml_config_t::advanced_xml_config_t() {
    _internal::add_builtin_handlers(handlers);
}

advanced_xml_config_t::advanced_xml_config_t(const advanced_xml_config_t& other)
    : value_changed(other.value_changed), values(other.values), handlers(other.handlers) {}

advanced_xml_config_t& advanced_xml_config_t::operator=(const advanced_xml_config_t& other) {
    value_changed = other.value_changed;
    if (this != &other) {
        values = other.values;
        handlers = other.handlers;
    }
    return *this;
}

advanced_xml_config_t::~advanced_xml_config_t() {
    // Handlers first, then values; the signal goes last as the first-declared member.
    handlers.clear();
    values.clear();
}

boost::any advanced_xml_config_t::get_value(const std::wstring& name,
                                            const boost::any& default_value) {
    return with_key(name, [&](const std::wstring& key) {
        const auto found = values.find(key);
        return found != values.end() ? found->second : default_value;
    });
}

void advanced_xml_config_t::set_value(const std::wstring& name, const boost::any& value) {
    const std::wstring key = with_key(name, [](const std::wstring& lower) { return lower; });
    boost::any previous;
    // Files and loops mostly bring keys in ascending order: the end is the likely place, and a
    // wrong hint costs one comparison.
    const std::size_t count = values.size();
    const auto slot = values.try_emplace(values.end(), key);
    if (values.size() == count) {
        previous.swap(slot->second);
    }
    slot->second = value;
    value_changed(key, previous, value);
}

bool advanced_xml_config_t::has_value(const std::wstring& name) const {
    return with_key(name, [this](const std::wstring& key) { return values.count(key) != 0; });
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
