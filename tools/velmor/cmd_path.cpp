// velmor path: what the library makes of path texts.
#include "command.hpp"

#include <velmor2/path.hpp>

namespace velmor_tool {
namespace {

// Texts shown when no argument is given: one of each form, and two that are not paths.
const wchar_t* const examples[] = {
    L"C:\\Program Files\\Tool\\..\\bin\\tool.exe",
    L"/usr//local/lib/",
    L"\\\\server\\share\\docs\\report.txt",
    L"..\\src\\.\\main.cpp",
    L"\\\\?\\D:\\very\\long",
    L"C:\\a|b",
    L"\"C:\\quoted path\\x\"",
};

// The root element of `as_string_list` tells drive and server apart.
struct parts_t {
    std::wstring form;
    std::wstring drive;
    std::wstring server;
    std::list<std::wstring> components;
};

parts_t split(const velmor2::path_t& path) {
    parts_t parts;
    parts.components = path.as_string_list();
    if (path.is_empty()) {
        parts.form = L"empty";
    } else if (!path.is_absolute()) {
        parts.form = path.is_posix() ? L"relative" : L"relative, Windows (long-path prefix)";
    } else if (!path.is_windows()) {
        parts.form = L"POSIX";
        parts.components.pop_front();
    } else if (parts.components.front().rfind(L"\\\\", 0) == 0) {
        parts.form = L"UNC";
        parts.server = parts.components.front().substr(2);
        parts.components.front() = parts.server;
    } else {
        parts.form = L"Windows";
        parts.drive = parts.components.front().substr(0, 1);
        parts.components.pop_front();
    }
    return parts;
}

std::wstring or_none(const std::wstring& text) { return text.empty() ? L"(none)" : text; }

void describe(const std::wstring& text) {
    out(L"text:        " + text + L"\n");
    int stop = -1;
    if (velmor2::path_t::validate(text, true, stop)) {
        out(L"valid:       yes\n");
    } else {
        out(L"valid:       no, first bad character at " + std::to_wstring(stop) + L"\n");
    }
    const velmor2::path_t path(text);
    const parts_t parts = split(path);
    std::wstring components;
    for (const std::wstring& component : parts.components) {
        components += L"[" + component + L"]";
    }
    out(L"form:        " + parts.form + L"\n");
    out(L"drive:       " + or_none(parts.drive) + L"\n");
    out(L"server:      " + or_none(parts.server) + L"\n");
    out(L"components:  " + or_none(components) + L"\n");
    out(L"printed:     " + path.as_string() + L"\n");
    out(L"normalised:  " + velmor2::make_path(text).as_string() + L"\n");
    out(L"native:      " + path.as_native_string() + L"\n\n");
}

int run(const std::vector<std::wstring>& args) {
    if (args.empty()) {
        for (const wchar_t* example : examples) {
            describe(example);
        }
        return exit_ok;
    }
    for (const std::wstring& text : args) {
        describe(text);
    }
    return exit_ok;
}

const command_registrar_t registered({"path", "show how path texts are parsed and printed",
                                      "usage: velmor path [TEXT...]\n"
                                      "Prints for each text its validity (with the position of "
                                      "the first bad character),\nits form, root, parts, printed, "
                                      "normalised and native forms. Without TEXT, shows\nbuilt-in "
                                      "examples.\n",
                                      run});

} // namespace
} // namespace velmor_tool
