// XPath evaluation that treats every failure as an empty node set.
#pragma once

#include <libxml/tree.h>
#include <libxml/xpath.h>

#include <string>
#include <vector>

namespace velmor2::_internal {

/// The nodes `expression` (UTF-8) selects with `node` as context node, in document order,
/// appended to `nodes`. Uses `context` when given (it must belong to the node's document),
/// otherwise a context of its own. An invalid expression or a result that is not a node set
/// adds nothing.
void select_nodes(xmlNode* node, const std::string& expression, std::vector<xmlNode*>& nodes,
                  xmlXPathContext* context = nullptr);

} // namespace velmor2::_internal
