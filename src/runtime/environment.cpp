// Environment variables and the host name.
#include <velmor2/runtime.hpp>

#include "os/environment.hpp"

namespace velmor2 {

std::wstring get_environ_value(const std::wstring& name) {
    return _internal::os::get_environment_variable(name);
}

void set_environ_value(const std::wstring& name, const std::wstring& value) {
    _internal::os::set_environment_variable(name, value);
}

std::wstring get_fq_host_name() {
    return _internal::os::fully_qualified_host_name();
}

} // namespace velmor2
