// velmor config: list, read and change the values of a configuration file.
#include "command.hpp"
#include "value_text.hpp"

#include <velmor2/configuration.hpp>

#include "config/number_text.hpp"

#include <list>
#include <map>
#include <string>
#include <vector>

namespace velmor_tool {
namespace {

using velmor2::_internal::parse_number;

template <typename T> bool parse_into(const std::wstring& text, boost::any& value) {
    T number;
    if (!parse_number(text, number)) {
        return false;
    }
    value = number;
    return true;
}

// The value of `text` as type `type`; false for an unknown type or text that does not convert.
bool make_value(const std::wstring& type, const std::wstring& text, boost::any& value) {
    if (type == L"string") {
        value = text;
        return true;
    }
    if (type == L"path_t") {
        value = velmor2::path_t(text);
        return true;
    }
    if (type == L"bool") {
        return parse_into<bool>(text, value);
    }
    if (type == L"int") {
        return parse_into<int>(text, value);
    }
    if (type == L"long") {
        return parse_into<long>(text, value);
    }
    if (type == L"unsigned long") {
        return parse_into<unsigned long>(text, value);
    }
    if (type == L"unsigned short") {
        return parse_into<unsigned short>(text, value);
    }
    if (type == L"unsigned int") {
        return parse_into<unsigned int>(text, value);
    }
    if (type == L"float") {
        return parse_into<float>(text, value);
    }
    if (type == L"double") {
        return parse_into<double>(text, value);
    }
    return false;
}

// Reports what save leaves out.
struct reporting_store_t : velmor2::advanced_xml_config_t {
    bool skipped = false;

  protected:
    void on_load_value_failed(const std::wstring& name, const std::wstring& type_name) override {
        err(L"velmor config: " + name + L": unknown type \"" + type_name + L"\", ignored\n");
    }
    void on_save_value_failed(const std::wstring& name, const std::type_info&) override {
        err(L"velmor config: " + name + L": cannot be written (key or value), left out\n");
        skipped = true;
    }
};

int usage_error(const std::wstring& message) {
    err(L"velmor config: " + message + L" (see velmor config --help)\n");
    return exit_usage;
}

int run(const std::vector<std::wstring>& args) {
    std::vector<std::wstring> positional;
    std::wstring type = L"string";
    bool type_given = false;
    for (std::size_t i = 0; i < args.size(); ++i) {
        if (args[i] == L"--type") {
            if (i + 1 == args.size()) {
                return usage_error(L"--type needs a type name");
            }
            type = args[++i];
            type_given = true;
        } else {
            positional.push_back(args[i]);
        }
    }
    if (positional.size() < 2) {
        return usage_error(L"FILE and an action are required");
    }
    const velmor2::path_t file = velmor2::make_path(positional[0]);
    const std::wstring& action = positional[1];
    const std::size_t wanted = action == L"list"  ? 2
                               : action == L"get" ? 3
                               : action == L"set" ? 4
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
    boost::any value;
    if (action == L"set" && !make_value(type, positional[3], value)) {
        return usage_error(L"VALUE '" + positional[3] + L"' is not of type '" + type + L"'");
    }

    reporting_store_t store;
    const bool exists = file.is_exists();
    if (exists && !store.load(file)) {
        err(L"velmor config: FILE '" + positional[0] +
            L"': cannot be read (not well-formed XML, or being written)\n");
        return exit_failed;
    }
    if (!exists && action != L"set") {
        err(L"velmor config: FILE '" + positional[0] + L"': no such file\n");
        return exit_failed;
    }

    if (action == L"list") {
        std::vector<std::wstring> names;
        store.get_names(names);
        for (const std::wstring& name : names) {
            const auto [type_name, text] = describe_value(store.get_value(name, boost::any()));
            out(name + L"\t" + type_name + L"\t" + text + L"\n");
        }
        return exit_ok;
    }
    if (action == L"get") {
        if (!store.has_value(positional[2])) {
            err(L"velmor config: KEY '" + positional[2] + L"': not set\n");
            return exit_failed;
        }
        out(describe_value(store.get_value(positional[2], boost::any())).second + L"\n");
        return exit_ok;
    }
    store.set_value(positional[2], value);
    if (!store.save(file)) {
        err(L"velmor config: FILE '" + positional[0] +
            L"': cannot be written (locked or no "
            L"access)\n");
        return exit_failed;
    }
    return store.skipped ? exit_failed : exit_ok;
}

const command_registrar_t registered(
    {"config", "list, read and change the values of a configuration file",
     "usage: velmor config FILE list\n"
     "       velmor config FILE get KEY\n"
     "       velmor config FILE set KEY VALUE [--type T]\n"
     "list prints one line per key: key, type and value separated by tabs. get prints the\n"
     "value of KEY (keys are case-insensitive, levels separated by '.'). set stores VALUE under\n"
     "KEY and saves the file, creating it if needed; T is one of bool, int, long, unsigned "
     "long,\nunsigned short, unsigned int, float, double, string (the default) or path_t.\n"
     "Exit status: 0 done, 1 the file or key could not be used, 2 bad usage.\n",
     run});

} // namespace
} // namespace velmor_tool
