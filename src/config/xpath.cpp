// XPath evaluation for the handlers' find_nodes.
#include "config/xpath.hpp"
#include "config/xml_quiet.hpp"

#include <libxml/xpath.h>

#include <memory>

namespace velmor2::_internal {

void select_nodes(xmlNode* node, const std::string& expression, std::vector<xmlNode*>& nodes) {
    if (node == nullptr || node->doc == nullptr) {
        return;
    }
    const quiet_xml_t quiet;
    xmlXPathInit();
    const std::unique_ptr<xmlXPathContext, decltype(&xmlXPathFreeContext)> context(
        xmlXPathNewContext(node->doc), &xmlXPathFreeContext);
    if (!context) {
        return;
    }
    context->node = node;
    const std::unique_ptr<xmlXPathObject, decltype(&xmlXPathFreeObject)> result(
        xmlXPathEvalExpression(reinterpret_cast<const xmlChar*>(expression.c_str()), context.get()),
        &xmlXPathFreeObject);
    if (!result || result->type != XPATH_NODESET || result->nodesetval == nullptr) {
        return;
    }
    const xmlNodeSet* set = result->nodesetval;
    nodes.insert(nodes.end(), set->nodeTab, set->nodeTab + set->nodeNr);
}

} // namespace velmor2::_internal
