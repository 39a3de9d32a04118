// Keeps libxml2 silent: it prints parse errors, huge-node notices and tree warnings on
// standard error unless a thread's handlers say otherwise.
#pragma once

#include <libxml/xmlerror.h>

namespace velmor2::_internal {

/// While alive, libxml2's structured and generic error handlers of this thread drop every
/// message; the handlers in place before are restored afterwards, so nesting is fine.
class quiet_xml_t {
  public:
    quiet_xml_t();
    ~quiet_xml_t();
    quiet_xml_t(const quiet_xml_t&) = delete;
    quiet_xml_t& operator=(const quiet_xml_t&) = delete;

  private:
    xmlStructuredErrorFunc structured;
    void* structured_context;
    xmlGenericErrorFunc generic;
    void* generic_context;
};

} // namespace velmor2::_internal
