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

std::wstring form_of(const velmor2::path_t& path) {
    if (path.is_empty()) {
        return L"empty";
    }
    std::wstring form = path.is_absolute() ? L"absolute" : L"relative";
    if (path.is_windows() && path.is_posix()) {
        return form + L", Windows or POSIX";
    }
    if (path.is_posix()) {
        return form + L", POSIX";
    }
    const std::list<std::wstring> parts = path.as_string_list();
    if (path.is_absolute() && !parts.empty() && parts.front().rfind(L"\\\\", 0) == 0) {
        return form + L", Windows UNC";
    }
    return form + L", Windows";
}

void describe(const std::wstring& text) {
    out(L"text:        " + text + L"\n");
    int stop = -1;
    if (velmor2::path_t::validate(text, true, stop)) {
        out(L"valid:       yes\n");
    } else {
        out(L"valid:       no, first bad character at " + std::to_wstring(stop) + L"\n");
    }
    const velmor2::path_t path(text);
    out(L"form:        " + form_of(path) + L"\n");
    if (!path.is_empty()) {
        const std::list<std::wstring> parts = path.as_string_list();
        std::wstring root = L"(none)";
        if (path.is_absolute() && !parts.empty() && (path.is_windows() || parts.front() == L"\\")) {
            root = parts.front();
        }
        out(L"root:        " + root + L"\n");
        std::wstring components;
        for (const std::wstring& part : parts) {
            components += L"[" + part + L"]";
        }
        out(L"parts:       " + components + L"\n");
    }
    velmor2::path_t normalised = velmor2::make_path(text);
    out(L"printed:     " + path.as_string() + L"\n");
    out(L"normalised:  " + normalised.as_string() + L"\n");
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
