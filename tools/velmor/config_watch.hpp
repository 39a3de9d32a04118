// velmor config FILE watch: follow a configuration file as other programs save it.
#pragma once

#include <velmor2/configuration.hpp>

#include <string>

namespace velmor_tool {

/// Watches `file` (named `name` on the command line), already loaded into `store`, and prints
/// one line per key other programs change (key, type and value separated by tabs; "(removed)"
/// for a key that went) until interrupted. Exit status 0 on SIGINT, 1 when the file's folder
/// cannot be watched or output fails.
int watch_changes(velmor2::advanced_xml_config_t& store, const std::wstring& name,
                  const velmor2::path_t& file);

} // namespace velmor_tool
