// XPath evaluation that treats every failure as an empty node set.
#pragma once

#include <libxml/tree.h>

#include <string>
#include <vector>

namespace velmor2::_internal {

/// The nodes `expression` (UTF-8) selects with `node` as context node, in document order,
/// appended to `nodes`. An invalid expression or a result that is not a node set adds nothing;
/// nothing is printed.
void select_nodes(xmlNode* node, const std::string& expression, std::vector<xmlNode*>& nodes);

} // namespace velmor2::_internal
