// velmor config: list, read and change the values of a configuration file.
#include "command.hpp"
#include "config_watch.hpp"
#include "files.hpp"
#include "native_text.hpp"
#include "value_text.hpp"

#include <velmor2/configuration.hpp>

#include <libxml/parser.h>
#include <libxml/parserInternals.h>
#include <libxml/tree.h>

#include <algorithm>
#include <cerrno>
#include <memory>
#include <string>
#include <typeinfo>
#include <vector>

namespace velmor_tool {
namespace {

using document_t = std::unique_ptr<xmlDoc, decltype(&xmlFreeDoc)>;

const xmlChar* xml(const std::string& text) {
    return reinterpret_cast<const xmlChar*>(text.c_str());
}

// The built-in types whose value is the text of its element: the types `set` takes.
const wchar_t* const text_types[] = {L"bool",           L"int",          L"long",  L"unsigned long",
                                     L"unsigned short", L"unsigned int", L"float", L"double",
                                     L"string",         L"path_t"};

// The deepest element, the root counting as 1, whose value a store's save still writes.
constexpr std::size_t max_value_depth = 256;

// Reads and writes a value element through a store's handler for the value's type, as any
// handler of that store reaches the handlers of other types.
class value_codec_t : public velmor2::handler_base_t {
  public:
    explicit value_codec_t(const velmor2::advanced_xml_config_t& store) { set_parent(&store); }

    // The value of type `type_name` that the content of `element` gives; empty when it does
    // not convert.
    boost::any read(xmlNode* element, const std::wstring& type_name) {
        return get_any_property(element, L".", type_name);
    }
    // Writes `value` into `element`, as a save would.
    void write(xmlNode* element, const boost::any& value) const {
        set_any_property(element, L".", value);
    }

    // The codec stores no type of its own.
    boost::any load_value(xmlNode*) override { return boost::any(); }
    void save_value(const boost::any&, xmlNode*) override {}
    std::wstring get_type_name() const override { return std::wstring(); }
    const std::type_info& get_type_info() const override { return typeid(void); }
};

// One level of a key, held as the one key of a store, which lower-cases it and compares
// element names with it as a load does.
class key_level_t {
  public:
    explicit key_level_t(const std::wstring& level) {
        keys.set_value(level, boost::any());
        std::vector<std::wstring> names;
        keys.get_names(names);
        name = to_bytes(names.front());
    }
    // Whether `node` is an element that a load files under the level.
    bool holds(const xmlNode* node) const {
        return node->type == XML_ELEMENT_NODE &&
               keys.has_value(from_bytes(reinterpret_cast<const char*>(node->name)));
    }

    // The level lower-cased, as the name of its element.
    std::string name;

  private:
    velmor2::advanced_xml_config_t keys;
};

// Reports the elements a load skips.
struct reporting_store_t : velmor2::advanced_xml_config_t {
  protected:
    void on_load_value_failed(const std::wstring& name, const std::wstring& type_name) override {
        err(L"velmor config: " + name + L": unknown type \"" + type_name + L"\", ignored\n");
    }
};

int usage_error(const std::wstring& message) {
    err(L"velmor config: " + message + L" (see velmor config --help)\n");
    return exit_usage;
}

int failure(const std::wstring& message) {
    err(L"velmor config: " + message + L"\n");
    return exit_failed;
}

// The levels of `key`, lower-cased, as element names; empty when one is not an XML name
// without a colon that the parser takes.
std::vector<key_level_t> key_levels(const std::wstring& key) {
    std::vector<key_level_t> levels;
    for (std::size_t start = 0, end; start <= key.size(); start = end + 1) {
        end = std::min(key.find(L'.', start), key.size());
        const std::string& name = levels.emplace_back(key.substr(start, end - start)).name;
        if (name.size() > XML_MAX_NAME_LENGTH || xmlValidateNCName(xml(name), 0) != 0) {
            return {};
        }
    }
    return levels;
}

// Removes the attributes and content of `element`, leaving it empty for a handler to fill.
void clear_element(xmlNode* element) {
    while (element->properties != nullptr) {
        xmlRemoveProp(element->properties);
    }
    xmlFreeNodeList(element->children);
    element->children = nullptr;
    element->last = nullptr;
}

bool has_type(xmlNode* node) {
    return xmlHasProp(node, xml("type")) != nullptr;
}

// The elements of `levels[depth...]` below `node` that a load reaches (through elements
// without a type), in document order.
void find_elements(xmlNode* node, const std::vector<key_level_t>& levels, std::size_t depth,
                   std::vector<xmlNode*>& found) {
    for (xmlNode* child = node->children; child != nullptr; child = child->next) {
        if (!levels[depth].holds(child)) {
            continue;
        }
        if (depth + 1 == levels.size()) {
            found.push_back(child);
        } else if (!has_type(child)) {
            find_elements(child, levels, depth + 1, found);
        }
    }
}

// libxml2 indents on its own only the content of elements without text in or above them.
bool indented_by_writer(xmlNode* node) {
    for (; node != nullptr && node->type == XML_ELEMENT_NODE; node = node->parent) {
        for (xmlNode* child = node->children; child != nullptr; child = child->next) {
            if (child->type == XML_TEXT_NODE) {
                return false;
            }
        }
    }
    return true;
}

// Appends element `name` to `parent`, which sits at nesting `depth` (the root at 0), indented
// two spaces a level as the store writes files.
xmlNode* append_element(xmlNode* parent, const std::string& name, std::size_t depth) {
    xmlNode* element = xmlNewDocNode(parent->doc, nullptr, xml(name), nullptr);
    if (indented_by_writer(parent)) {
        return xmlAddChild(parent, element);
    }
    const std::string indent = "\n" + std::string(2 * (depth + 1), ' ');
    if (parent->last != nullptr && xmlIsBlankNode(parent->last)) {
        xmlAddPrevSibling(parent->last, element);
    } else {
        xmlAddChild(parent, element);
        xmlAddNextSibling(element,
                          xmlNewDocText(parent->doc, xml("\n" + std::string(2 * depth, ' '))));
    }
    xmlAddPrevSibling(element, xmlNewDocText(parent->doc, xml(indent)));
    return element;
}

// The element a load takes for `levels` (the last typed one in document order), created with the
// levels it lacks when there is none; null, after a message, when a value or a group is in
// the way.
xmlNode* value_element(xmlDoc* doc, const std::wstring& key,
                       const std::vector<key_level_t>& levels) {
    xmlNode* node = xmlDocGetRootElement(doc);
    std::vector<xmlNode*> found;
    find_elements(node, levels, 0, found);
    if (!found.empty()) {
        const auto typed = std::find_if(found.rbegin(), found.rend(), has_type);
        xmlNode* element = typed != found.rend() ? *typed : found.back();
        if (!has_type(element) && xmlFirstElementChild(element) != nullptr) {
            failure(L"KEY '" + key + L"' names a group of values; file not changed");
            return nullptr;
        }
        return element;
    }
    for (std::size_t depth = 0; depth < levels.size(); ++depth) {
        xmlNode* next = nullptr;
        bool value_in_way = false;
        for (xmlNode* child = node->children; child != nullptr; child = child->next) {
            if (levels[depth].holds(child)) {
                value_in_way = value_in_way || has_type(child);
                next = has_type(child) ? next : child;
            }
        }
        if (next == nullptr && value_in_way) {
            failure(L"KEY '" + key + L"': level '" + from_bytes(levels[depth].name) +
                    L"' holds a value; file not changed");
            return nullptr;
        }
        node = next != nullptr ? next : append_element(node, levels[depth].name, depth);
    }
    return node;
}

// The document of an existing `file`, or a fresh one with the store's root element when there
// is no such file; null, after a message, when it cannot be read.
xmlDoc* open_document(const std::wstring& name, const velmor2::path_t& file) {
    const int error = file_error(name);
    if (error == ENOENT) {
        xmlDoc* doc = xmlNewDoc(xml("1.0"));
        xmlDocSetRootElement(doc, xmlNewDocNode(doc, nullptr, xml("root"), nullptr));
        return doc;
    }
    xmlDoc* doc = error == 0 ? velmor2::open_xml_document(file) : nullptr;
    if (doc == nullptr) {
        report(L"config", name,
               (error != 0 ? reason(error)
                           : L"cannot be read (no access, not well-formed XML, or being written)") +
                   L"; not changed");
    }
    return doc;
}

// Whether `doc`, written as a save writes it, parses again: no character XML cannot keep, no
// element nested deeper or text longer than the parser takes.
bool reads_back(xmlDoc* doc) {
    xmlChar* bytes = nullptr;
    int size = 0;
    xmlDocDumpFormatMemoryEnc(doc, &bytes, &size, "UTF-8", 1);
    const document_t parsed(bytes == nullptr
                                ? nullptr
                                : xmlReadMemory(reinterpret_cast<const char*>(bytes), size, nullptr,
                                                nullptr, XML_PARSE_NOERROR | XML_PARSE_NOWARNING),
                            &xmlFreeDoc);
    xmlFree(bytes);
    return parsed != nullptr;
}

int set(const std::wstring& name, const velmor2::path_t& file, const std::wstring& key,
        const std::wstring& text, const std::wstring& type) {
    if (!is_unicode(key) || !is_unicode(text)) {
        return failure(L"KEY and VALUE must be valid UTF-8; file not changed");
    }
    const std::vector<key_level_t> levels = key_levels(key);
    if (levels.empty()) {
        return failure(L"KEY '" + key +
                       L"': each level must be an XML name without ':'; file not changed");
    }
    const document_t doc(open_document(name, file), &xmlFreeDoc);
    xmlNode* element = doc ? value_element(doc.get(), key, levels) : nullptr;
    if (element == nullptr) {
        return exit_failed;
    }
    // The store's handler reads the value from the element's text as a load would.
    const velmor2::advanced_xml_config_t store;
    value_codec_t codec(store);
    clear_element(element);
    xmlAddChild(element, xmlNewDocText(doc.get(), xml(to_bytes(text))));
    const boost::any value = codec.read(element, type);
    if (value.empty()) {
        return usage_error(L"VALUE '" + text + L"' is not of type '" + type + L"'");
    }
    clear_element(element);
    xmlSetProp(element, xml("type"), xml(to_bytes(type)));
    codec.write(element, value);
    if (levels.size() >= max_value_depth || !reads_back(doc.get())) {
        return failure(L"VALUE holds characters XML cannot keep, or KEY is nested too deep; file "
                       L"not changed");
    }
    if (!velmor2::save_xml_document(file, doc.get())) {
        report(L"config", name,
               L"cannot be written (no access, disk full, or in use); left as it was");
        return exit_failed;
    }
    return exit_ok;
}

int read(const std::wstring& action, const std::wstring& name, const velmor2::path_t& file,
         const std::wstring& key) {
    const int error = file_error(name);
    reporting_store_t store;
    if (error != 0 || !store.load(file)) {
        report(L"config", name,
               error != 0 ? reason(error)
                          : L"cannot be read (no access, not well-formed XML, or being written)");
        return exit_failed;
    }
    if (action == L"watch") {
        return watch_changes(store, name, file);
    }
    if (action == L"list") {
        std::vector<std::wstring> names;
        store.get_names(names);
        for (const std::wstring& each : names) {
            const auto [type_name, text] = describe_value(store.get_value(each, boost::any()));
            out(each + L"\t" + type_name + L"\t" + text + L"\n");
        }
        return exit_ok;
    }
    if (!store.has_value(key)) {
        return failure(L"KEY '" + key + L"': not set");
    }
    out(describe_value(store.get_value(key, boost::any())).second + L"\n");
    return exit_ok;
}

int run(const std::vector<std::wstring>& args) {
    std::vector<std::wstring> positional;
    std::wstring type = L"string";
    bool type_given = false;
    for (std::size_t i = 0; i < args.size(); ++i) {
        if (args[i] == L"--type" && i + 1 == args.size()) {
            return usage_error(L"--type needs a type name");
        }
        if (args[i] == L"--type" || args[i].rfind(L"--type=", 0) == 0) {
            type = args[i] == L"--type" ? args[++i] : args[i].substr(7);
            type_given = true;
        } else {
            positional.push_back(args[i]);
        }
    }
    if (positional.size() < 2) {
        return usage_error(L"FILE and an action are required");
    }
    const std::wstring& action = positional[1];
    const std::size_t wanted = action == L"list" || action == L"watch" ? 2
                               : action == L"get"                      ? 3
                               : action == L"set"                      ? 4
                                                                       : 0;
    if (wanted == 0) {
        return usage_error(L"unknown action '" + action + L"'");
    }
    if (positional.size() != wanted) {
        return usage_error(L"wrong number of arguments for '" + action + L"'");
    }
    if (type_given && action != L"set") {
        return usage_error(L"--type applies to 'set' only");
    }
    if (std::find(std::begin(text_types), std::end(text_types), type) == std::end(text_types)) {
        std::wstring known;
        for (const wchar_t* each : text_types) {
            known += (known.empty() ? L"" : L", ") + std::wstring(each);
        }
        return usage_error(L"unknown type '" + type + L"'; known types: " + known);
    }
    const velmor2::path_t file = exact_path(L"config", positional[0]);
    if (file.is_empty()) {
        return exit_failed;
    }
    if (action == L"set") {
        return set(positional[0], file, positional[2], positional[3], type);
    }
    return read(action, positional[0], file, wanted == 3 ? positional[2] : std::wstring());
}

const command_registrar_t registered(
    {"config", "list, read and change the values of a configuration file",
     "usage: velmor config FILE list\n"
     "       velmor config FILE get KEY\n"
     "       velmor config FILE set KEY VALUE [--type T]\n"
     "       velmor config FILE watch\n"
     "list prints one line per key: key, type and value separated by tabs. get prints the\n"
     "value of KEY (keys are case-insensitive, levels separated by '.'). set changes the one\n"
     "element of KEY in place, creating it and the levels above it when missing, and keeps\n"
     "everything else in the file (comments, elements of other types, the root's name); it\n"
     "creates FILE when there is none, never replaces a FILE that cannot be read, and changes\n"
     "nothing when VALUE cannot be stored (not UTF-8, characters XML does not allow). T is\n"
     "one of bool, int, long, unsigned long, unsigned short, unsigned int, float, double,\n"
     "string (the default) or path_t; --type=T works too. watch prints a line as list does\n"
     "for each key that other programs change as they save FILE (\"(removed)\" for a key that\n"
     "went), until interrupted.\n"
     "Exit status: 0 done (watch: interrupted), 1 the file, key or value could not be used,\n"
     "2 bad usage.\n",
     run});

} // namespace
} // namespace velmor_tool
