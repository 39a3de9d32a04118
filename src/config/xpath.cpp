// XPath evaluation for the handlers' find_nodes and for saving into handler-written content.
#include "config/xpath.hpp"

#include <memory>

namespace velmor2::_internal {

void select_nodes(xmlNode* node, const std::string& expression, std::vector<xmlNode*>& nodes,
                  xmlXPathContext* context) {
    if (node == nullptr || node->doc == nullptr) {
        return;
    }
    xmlXPathInit();
    std::unique_ptr<xmlXPathContext, decltype(&xmlXPathFreeContext)> own(nullptr,
                                                                         &xmlXPathFreeContext);
    if (context == nullptr) {
        own.reset(xmlXPathNewContext(node->doc));
        context = own.get();
        if (context == nullptr) {
            return;
        }
    }
    // Parse errors go to the context's handler, not to stderr.
    context->error = [](void*, xmlError*) {};
    context->node = node;
    std::unique_ptr<xmlXPathObject, decltype(&xmlXPathFreeObject)> result(
        xmlXPathEvalExpression(reinterpret_cast<const xmlChar*>(expression.c_str()), context),
        &xmlXPathFreeObject);
    if (!result || result->type != XPATH_NODESET || result->nodesetval == nullptr) {
        return;
    }
    const xmlNodeSet* set = result->nodesetval;
    nodes.insert(nodes.end(), set->nodeTab, set->nodeTab + set->nodeNr);
}

} // namespace velmor2::_internal
