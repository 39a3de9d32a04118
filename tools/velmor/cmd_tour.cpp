// velmor tour: what a desktop tool does at start-up, step by step, on a sample product.
#include "code_page_name.hpp"
#include "command.hpp"
#include "value_text.hpp"

#include <velmor2/velmor2.hpp>

#include <ctime>
#include <vector>

namespace velmor_tool {
namespace {

const wchar_t* const product = L"velmor-tour";

// Prints every change the store announces.
class change_printer_t : public velmor2::_internal::subscriber_base_t {
public:
    ~change_printer_t() override { disconnect_signals(); }

    void on_change(const std::wstring& key, const boost::any& previous, const boost::any& value) {
        const std::wstring before = previous.empty() ? L"(unset)" : describe_value(previous).second;
        out(L"   changed " + key + L": " + before + L" -> " + describe_value(value).second + L"\n");
    }
};

std::wstring utc_now() {
    const std::time_t now = std::time(nullptr);
    wchar_t text[32] = L"";
    std::wcsftime(text, sizeof(text) / sizeof(text[0]), L"%Y-%m-%dT%H:%M:%SZ", std::gmtime(&now));
    return text;
}

void step(int number, const std::wstring& title) {
    out(L"\n" + std::to_wstring(number) + L". " + title + L"\n");
}

void show(const std::wstring& label, const std::wstring& value) {
    std::wstring line = L"   " + label;
    line.resize(24, L' ');
    out(line + value + L"\n");
}

int run(const std::vector<std::wstring>& args) {
    if (!args.empty()) {
        err(L"velmor tour: unexpected argument '" + args[0] + L"' (see velmor tour --help)\n");
        return exit_usage;
    }
    out(L"velmor tour: what a desktop tool does at start-up\n");

    step(1, L"Locate the per-user configuration file (company Norvane, product velmor-tour)");
    // Without a per-user folder the locator would build a relative path: the working directory.
    const velmor2::path_t folder = velmor2::stdpaths::get_user_config_dir(std::wstring());
    if (folder.is_empty() || !folder.is_absolute()) {
        err(L"velmor tour: no per-user configuration folder is available\n");
        return exit_failed;
    }
    const velmor2::config_manager_t manager(velmor2::stdpaths::get_executable_dir().as_string(),
                                            product);
    const velmor2::path_t file = manager.user_config(L"settings");
    if (!file.is_absolute()) {
        err(L"velmor tour: no per-user configuration folder is available\n");
        return exit_failed;
    }
    out(L"   " + file.as_native_string() + L"\n");

    step(2, L"Load it");
    velmor2::advanced_xml_config_t store;
    if (!file.is_exists()) {
        out(L"   not there yet: starting empty\n");
    } else if (store.load(file)) {
        std::vector<std::wstring> names;
        store.get_names(names);
        out(L"   loaded " + std::to_wstring(names.size()) + L" values\n");
    } else {
        err(L"velmor tour: '" + file.as_native_string() +
            L"' cannot be read (not well-formed, or being written); left as it is\n");
        return exit_failed;
    }

    step(3, L"Count this run and record when and where it ran");
    change_printer_t printer;
    store.value_changed.connect(&printer, &change_printer_t::on_change);
    const boost::any runs = store.get_value(L"Tour.Runs", 0);
    const int* previous_runs = boost::any_cast<int>(&runs);
    store.set_value(L"Tour.Runs", (previous_runs != nullptr ? *previous_runs : 0) + 1);
    store.set_value(L"Tour.Last_Run.Time", utc_now());
    store.set_value(L"Tour.Last_Run.Host", velmor2::get_fq_host_name());
    store.set_value(L"Tour.Last_Run.Tool", velmor2::stdpaths::get_executable_dir());
    if (!store.has_value(L"Tour.Window.Scale")) {
        store.set_value(L"Tour.Window.Scale", 1.25);
    }

    step(4, L"The values, with their types");
    std::vector<std::wstring> names;
    store.get_names(names);
    for (const std::wstring& name : names) {
        const auto [type, text] = describe_value(store.get_value(name, boost::any()));
        std::wstring line = L"   " + name;
        line.resize(26, L' ');
        std::wstring type_column = type;
        type_column.resize(10, L' ');
        out(line + type_column + text + L"\n");
    }

    step(5, L"Save it (timed on the debugger output: standard error here)");
    {
        const velmor2::debugging::time_logger_t timer(L"velmor tour: save");
        if (!store.save(file)) {
            err(L"velmor tour: cannot write '" + file.as_native_string() + L"'\n");
            return exit_failed;
        }
    }
    out(L"   saved\n");

    step(6, L"Hash it and detect its encoding");
    velmor2::md5_t md5;
    md5.update_from_file(file);
    wchar_t crc[9];
    std::swprintf(crc, 9, L"%08lx", velmor2::generate_hash(file));
    show(L"MD5", md5.get_digest_base16());
    show(L"CRC-32", crc);
    show(L"encoding", code_page_name(velmor2::get_file_cp(file)));

    step(7, L"Where everything is");
    show(L"configuration file", file.as_native_string());
    show(L"configuration folder", velmor2::path_t(file.get_branch()).as_native_string());
    show(L"temporary folder", velmor2::stdpaths::get_temp_dir().as_native_string());
    show(L"executable folder", velmor2::stdpaths::get_executable_dir().as_native_string());
    show(L"host", velmor2::get_fq_host_name());
    out(L"\nRun 'velmor tour' again to see the count go up.\n");
    return exit_ok;
}

const command_registrar_t registered(
    {"tour", "show what a tool does at start-up: locate, load, change, save, hash a config",
     "usage: velmor tour\n"
     "Locates the per-user configuration file of a sample product (company Norvane, product\n"
     "velmor-tour; the folder is created), loads it or starts empty, counts the run, records\n"
     "the time and host, prints the values with their types, saves the file, hashes it with\n"
     "MD5 and CRC-32 and detects its encoding. Writes nothing outside the user's\n"
     "configuration folder, and stops, changing nothing, when there is no such folder or the\n"
     "file exists but cannot be read. Exit status: 0 done, 1 the file could not be read or\n"
     "written.\n",
     run});

} // namespace
} // namespace velmor_tool
