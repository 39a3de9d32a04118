// Reading a file into an xmlDoc and writing an xmlDoc to a file, under the sharing rules of
// the platform layer.
#include <velmor2/configuration.hpp>

#include "os/xml_file.hpp"

#include <libxml/parser.h>
#include <libxml/xmlsave.h>

namespace velmor2 {

xmlDoc* open_xml_document(const path_t& file) {
    const int descriptor = _internal::os::open_xml_for_reading(file.as_string());
    if (descriptor < 0) {
        return nullptr;
    }
    xmlDoc* doc = xmlReadFd(descriptor, nullptr, nullptr,
                            XML_PARSE_NOERROR | XML_PARSE_NOWARNING | XML_PARSE_COMPACT);
    _internal::os::close_xml_file(descriptor);
    return doc;
}

bool save_xml_document(const path_t& file, xmlDoc* doc) {
    if (doc == nullptr) {
        return false;
    }
    const int descriptor = _internal::os::open_xml_for_writing(file.as_string());
    if (descriptor < 0) {
        return false;
    }
    int written = -1;
    // The buffer does not own the descriptor; xmlSaveFormatFileTo frees the buffer.
    if (xmlOutputBuffer* buffer = xmlOutputBufferCreateFd(descriptor, nullptr)) {
        written = xmlSaveFormatFileTo(buffer, doc, "UTF-8", 1);
    }
    _internal::os::close_xml_file(descriptor);
    return written > 0;
}

} // namespace velmor2
