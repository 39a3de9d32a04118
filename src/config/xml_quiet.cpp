// Silent libxml2 error handlers for one scope of one thread.
#include "config/xml_quiet.hpp"

#include <libxml/globals.h>

namespace velmor2::_internal {
namespace {

void drop_structured(void*, xmlError*) {}
void drop_generic(void*, const char*, ...) {}

} // namespace

quiet_xml_t::quiet_xml_t()
    : structured(xmlStructuredError), structured_context(xmlStructuredErrorContext),
      generic(xmlGenericError), generic_context(xmlGenericErrorContext) {
    xmlSetStructuredErrorFunc(nullptr, drop_structured);
    xmlSetGenericErrorFunc(nullptr, drop_generic);
}

quiet_xml_t::~quiet_xml_t() {
    xmlSetStructuredErrorFunc(structured_context, structured);
    xmlSetGenericErrorFunc(generic_context, generic);
}

} // namespace velmor2::_internal
