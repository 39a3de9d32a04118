// Standard folders on POSIX: the XDG base directories, /proc/self/exe, dladdr, TMPDIR, getcwd.
#include "os/standard_dirs.hpp"
#include "os/posix/fs_calls.hpp"
#include "os/posix/native.hpp"
#include "unicode/convert.hpp"

#include <velmor2/file_system.hpp>

#include <cerrno>
#include <cstdlib>
#include <dlfcn.h>
#include <fcntl.h>
#include <fstream>
#include <link.h>
#include <pwd.h>
#include <string>
#include <unistd.h>
#include <vector>

namespace velmor2::_internal::os {
namespace {

std::string environment(const char* name) {
    const char* value = std::getenv(name);
    return value == nullptr ? std::string() : std::string(value);
}

bool is_absolute(const std::string& text) {
    return !text.empty() && text[0] == '/';
}

// $HOME, or the password database's entry for the user when it is unset.
std::string home_dir() {
    std::string home = environment("HOME");
    if (!home.empty()) {
        return home;
    }
    std::vector<char> buffer(1024);
    for (;;) {
        struct passwd entry;
        struct passwd* found = nullptr;
        const int error = ::getpwuid_r(::geteuid(), &entry, buffer.data(), buffer.size(), &found);
        if (error == ERANGE) {
            buffer.resize(buffer.size() * 2);
            continue;
        }
        return error == 0 && found != nullptr && found->pw_dir != nullptr ? found->pw_dir : "";
    }
}

std::string config_home() {
    const std::string configured = environment("XDG_CONFIG_HOME");
    if (is_absolute(configured)) {
        return configured;
    }
    const std::string home = home_dir();
    return home.empty() ? std::string() : home + "/.config";
}

// The first absolute entry of $XDG_CONFIG_DIRS, else the default.
std::string config_dirs_first() {
    const std::string list = environment("XDG_CONFIG_DIRS");
    std::size_t start = 0;
    while (start <= list.size()) {
        std::size_t end = list.find(':', start);
        if (end == std::string::npos) {
            end = list.size();
        }
        const std::string entry = list.substr(start, end - start);
        if (is_absolute(entry)) {
            return entry;
        }
        start = end + 1;
    }
    return "/etc/xdg";
}

// XDG_DOCUMENTS_DIR of user-dirs.dirs: a quoted absolute path or one under "$HOME/". $HOME
// alone means the folder is disabled, which names nothing.
std::string documents_from_user_dirs(const std::string& home) {
    const std::string base = config_home();
    if (base.empty()) {
        return {};
    }
    std::ifstream file(base + "/user-dirs.dirs");
    std::string line;
    const std::string key = "XDG_DOCUMENTS_DIR=";
    std::string found;
    while (std::getline(file, line)) {
        const std::size_t start = line.find_first_not_of(" \t");
        if (start != std::string::npos && line.compare(start, key.size(), key) == 0) {
            found = line.substr(start + key.size());
        }
    }
    if (found.size() < 2 || found.front() != '"') {
        return {};
    }
    std::string value;
    std::size_t i = 1;
    for (; i < found.size() && found[i] != '"'; ++i) {
        if (found[i] == '\\' && i + 1 < found.size()) {
            ++i;
        }
        value += found[i];
    }
    if (i == found.size()) {
        return {};
    }
    const std::string home_prefix = "$HOME/";
    if (value.compare(0, home_prefix.size(), home_prefix) == 0 && !home.empty()) {
        const std::string rest = value.substr(home_prefix.size());
        return rest.find_first_not_of('/') == std::string::npos ? std::string() : home + "/" + rest;
    }
    return is_absolute(value) ? value : std::string();
}

std::string documents_dir() {
    const std::string home = home_dir();
    const std::string configured = documents_from_user_dirs(home);
    if (!configured.empty()) {
        return configured;
    }
    return home.empty() ? std::string() : home + "/Documents";
}

// The real file behind a name; the name itself when it cannot be resolved.
std::wstring resolved(const std::string& name) {
    char* real = ::realpath(name.c_str(), nullptr);
    if (real == nullptr) {
        return to_ustring(name);
    }
    std::wstring out = to_ustring(real);
    std::free(real);
    return out;
}

} // namespace

std::wstring get_folder(folder_t folder) {
    std::string text;
    switch (folder) {
    case folder_t::documents:
        text = documents_dir();
        break;
    case folder_t::user_config:
        text = config_home();
        break;
    case folder_t::shared_config:
        text = config_dirs_first();
        break;
    }
    if (text.empty()) {
        return {};
    }
    const std::wstring wide = to_ustring(text);
    return create_folder_tree(wide) ? wide : std::wstring();
}

bool create_folder_tree(const std::wstring& text) {
    // The library's own creation walk has the shell call's rule: made, or already there.
    return velmor2::create_directory(path_t(text));
}

std::wstring get_executable_file() {
    std::string target;
    return read_link_at(AT_FDCWD, "/proc/self/exe", target) ? to_ustring(target) : std::wstring();
}

std::wstring get_module_file(const void* address) {
    Dl_info info;
    link_map* module = nullptr;
    if (::dladdr1(address, &info, reinterpret_cast<void**>(&module), RTLD_DL_LINKMAP) == 0 ||
        module == nullptr) {
        return {};
    }
    // The main program has no name of its own in the loader's list.
    if (module->l_name == nullptr || module->l_name[0] == '\0') {
        return get_executable_file();
    }
    return resolved(module->l_name);
}

std::wstring get_temp_folder() {
    const std::string configured = environment("TMPDIR");
    return resolved(is_absolute(configured) ? configured : "/tmp");
}

std::wstring get_working_dir() {
    std::vector<char> buffer(256);
    while (fs_calls().getcwd(buffer.data(), buffer.size()) == nullptr) {
        if (errno != ERANGE) {
            return {};
        }
        buffer.resize(buffer.size() * 2);
    }
    return to_ustring(buffer.data());
}

bool set_working_dir(const std::wstring& text) {
    return !text.empty() && fs_calls().chdir(native_bytes(text).c_str()) == 0;
}

} // namespace velmor2::_internal::os
