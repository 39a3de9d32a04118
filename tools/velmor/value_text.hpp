// Type names and texts of configuration values for the tool's output.
#pragma once

#include <boost/any.hpp>

#include <string>
#include <utility>

namespace velmor_tool {

/// The type name a configuration file gives `value`, and its text as the file would hold it.
std::pair<std::wstring, std::wstring> describe_value(const boost::any& value);

} // namespace velmor_tool
