// Environment variables through getenv, setenv and unsetenv (UTF-8); the host name through
// gethostname and the resolver's canonical name.
#include "os/environment.hpp"
#include "unicode/convert.hpp"

#include <climits>
#include <cstdlib>
#include <netdb.h>
#include <sys/socket.h>
#include <unistd.h>

namespace velmor2::_internal::os {

std::wstring get_environment_variable(const std::wstring& name) {
    if (name.find(L'\0') != std::wstring::npos) {
        return {};
    }
    return to_ustring(std::getenv(to_utf8(name).c_str()));
}

void set_environment_variable(const std::wstring& name, const std::wstring& value) {
    if (name.find(L'\0') != std::wstring::npos) {
        return;
    }
    const std::string key = to_utf8(name);
    // A value ends at its first zero character, as a C string does.
    const std::string text = to_utf8(value.substr(0, value.find(L'\0')));
    if (text.empty()) {
        ::unsetenv(key.c_str());
    } else {
        ::setenv(key.c_str(), text.c_str(), 1);
    }
}

std::wstring fully_qualified_host_name() {
    char host[HOST_NAME_MAX + 1] = {};
    if (::gethostname(host, sizeof host - 1) != 0 || host[0] == '\0') {
        return {};
    }
    addrinfo hints = {};
    hints.ai_family = AF_UNSPEC;
    hints.ai_socktype = SOCK_STREAM;
    hints.ai_flags = AI_CANONNAME;
    addrinfo* found = nullptr;
    std::wstring name = to_ustring(host);
    if (::getaddrinfo(host, nullptr, &hints, &found) == 0) {
        if (found != nullptr && found->ai_canonname != nullptr && found->ai_canonname[0] != '\0') {
            name = to_ustring(found->ai_canonname);
        }
        ::freeaddrinfo(found);
    }
    return name;
}

} // namespace velmor2::_internal::os
