// The process environment and the name of the computer.
#pragma once

#include <string>

namespace velmor2::_internal::os {

/// The value of the variable `name` in the runtime's environment; empty when it is not set.
std::wstring get_environment_variable(const std::wstring& name);

/// Sets the variable `name` to `value`, or removes it when `value` is empty. A name the
/// system refuses changes nothing.
void set_environment_variable(const std::wstring& name, const std::wstring& value);

/// The fully qualified DNS name of the computer, the bare host name when it has no domain,
/// or empty on failure.
std::wstring fully_qualified_host_name();

} // namespace velmor2::_internal::os
