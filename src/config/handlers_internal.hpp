// The built-in value handlers: one template per shape of value (scalar, container of scalars,
// map of strings) and the path handler.
#pragma once

#include <velmor2/configuration.hpp>

#include "config/number_text.hpp"

#include <boost/any.hpp>
#include <libxml/tree.h>

#include <string>
#include <string_view>
#include <type_traits>
#include <typeinfo>
#include <vector>

namespace velmor2::_internal {

/// The child elements of `node` named `name` (UTF-8), in document order: what the XPath
/// expression made of the name selects, without building an XPath context.
std::vector<xmlNode*> child_elements(xmlNode* node, const char* name);

/// Appends to `node` a child element `name` (UTF-8) holding `text` as text: written escaped,
/// so that it reads back unchanged whatever characters it holds.
void add_text_child(xmlNode* node, const char* name, const std::wstring& text);

/// Appends the UTF-8 form of `text` to `out` (what `to_xml_utf8` gives, without a conversion
/// pass when the text is ASCII).
void append_utf8(std::wstring_view text, std::string& out);

/// A handler whose `save_value` only appends text to the element: a save can take that text
/// and write it out without a libxml2 element for the value.
class text_writer_t {
  public:
    virtual ~text_writer_t() = default;
    /// Appends to `utf8` the UTF-8 text `save_value` would add to the element; false when it
    /// would add nothing because `value` does not hold the handler's type.
    virtual bool append_text(const boost::any& value, std::string& utf8) const = 0;
};

/// A handler whose `load_value` only reads the element's text: a load can hand it that text
/// without building a libxml2 element for the value.
class text_reader_t {
  public:
    virtual ~text_reader_t() = default;
    /// What `load_value` returns for an element whose text (references replaced) is `text`.
    virtual boost::any value_of_text(std::wstring_view text) const = 0;
};

/// Text of a scalar for the file.
template <typename T> std::wstring scalar_text(const T& value) {
    if constexpr (std::is_same_v<T, std::wstring>) {
        return value;
    } else {
        return format_number(value);
    }
}

/// Reads a scalar from file text; false when the text does not convert.
template <typename T> bool scalar_value(std::wstring_view text, T& value) {
    if constexpr (std::is_same_v<T, std::wstring>) {
        value = text;
        return true;
    } else {
        return parse_number(text, value);
    }
}

/// A scalar (bool, integers, float, double, std::wstring) as the text of its element.
template <typename T>
class generic_handler_t : public handler_base_t, public text_writer_t, public text_reader_t {
  public:
    explicit generic_handler_t(const std::wstring& type_name) : type_name(type_name) {}

    boost::any load_value(xmlNode* element) override {
        if constexpr (std::is_same_v<T, std::wstring>) {
            return boost::any(get_node_content(element));
        } else {
            return value_of_text(get_node_content(element));
        }
    }
    boost::any value_of_text(std::wstring_view text) const override {
        if constexpr (std::is_same_v<T, std::wstring>) {
            return boost::any(std::wstring(text));
        } else {
            T value;
            if (!scalar_value(text, value)) {
                return boost::any();
            }
            return boost::any(value);
        }
    }
    void save_value(const boost::any& value, xmlNode* element) override {
        if (const T* held = boost::any_cast<T>(&value)) {
            set_node_content(element, scalar_text(*held));
        }
    }
    std::wstring get_type_name() const override { return type_name; }
    const std::type_info& get_type_info() const override { return typeid(T); }
    bool append_text(const boost::any& value, std::string& utf8) const override {
        const T* held = boost::any_cast<T>(&value);
        if (held == nullptr) {
            return false;
        }
        if constexpr (std::is_same_v<T, std::wstring>) {
            append_utf8(*held, utf8);
        } else {
            append_number(*held, utf8);
        }
        return true;
    }

  private:
    std::wstring type_name;
};

/// A sequence container C of E (std::wstring or int) as one `item` child per entry, its text
/// escaped like any other text.
template <typename C, typename E> class generic_container_handler_t : public handler_base_t {
  public:
    explicit generic_container_handler_t(const std::wstring& type_name) : type_name(type_name) {}

    boost::any load_value(xmlNode* element) override {
        C container;
        for (xmlNode* item : child_elements(element, "item")) {
            E entry;
            if (!scalar_value(get_node_content(item), entry)) {
                entry = E();
            }
            container.push_back(entry);
        }
        return boost::any(std::move(container));
    }
    void save_value(const boost::any& value, xmlNode* element) override {
        if (const C* held = boost::any_cast<C>(&value)) {
            for (const E& entry : *held) {
                add_text_child(element, "item", scalar_text(entry));
            }
        }
    }
    std::wstring get_type_name() const override { return type_name; }
    const std::type_info& get_type_info() const override { return typeid(C); }

  private:
    std::wstring type_name;
};

/// A map of strings as one empty `item` child per pair, with attributes `key` and `value`.
template <typename M> class generic_map_handler_t : public handler_base_t {
  public:
    explicit generic_map_handler_t(const std::wstring& type_name) : type_name(type_name) {}

    boost::any load_value(xmlNode* element) override {
        M map;
        for (xmlNode* item : child_elements(element, "item")) {
            map[get_attribute(item, L"key")] = get_attribute(item, L"value");
        }
        return boost::any(std::move(map));
    }
    void save_value(const boost::any& value, xmlNode* element) override {
        if (const M* held = boost::any_cast<M>(&value)) {
            for (const auto& pair : *held) {
                xmlNode* item = xmlNewChild(element, nullptr,
                                            reinterpret_cast<const xmlChar*>("item"), nullptr);
                set_attribute(item, L"key", pair.first);
                set_attribute(item, L"value", pair.second);
            }
        }
    }
    std::wstring get_type_name() const override { return type_name; }
    const std::type_info& get_type_info() const override { return typeid(M); }

  private:
    std::wstring type_name;
};

/// A `path_t` as the text of `as_string()`.
class path_t_handler_t : public handler_base_t, public text_writer_t {
  public:
    boost::any load_value(xmlNode* element) override;
    void save_value(const boost::any& value, xmlNode* element) override;
    std::wstring get_type_name() const override;
    const std::type_info& get_type_info() const override;
    bool append_text(const boost::any& value, std::string& utf8) const override;
};

/// Appends the fourteen built-in handlers, in their fixed order, to `handlers`.
void add_builtin_handlers(std::list<smart_pointer_t<handler_base_t>>& handlers);

} // namespace velmor2::_internal
