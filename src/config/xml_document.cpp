// Reading a file into an xmlDoc and writing an xmlDoc or prepared XML text to a file, under
// the sharing rules of the platform layer.
#include <velmor2/configuration.hpp>

#include "config/xml_file.hpp"
#include "os/xml_file.hpp"

#include <libxml/parser.h>
#include <libxml/xmlsave.h>

#include <algorithm>
#include <climits>

namespace velmor2 {
namespace {

// Opens `file` for writing and hands `write` a libxml2 output buffer on it, which `write`
// must close; true when the byte count it returns is positive.
template <typename write_t> bool write_file(const path_t& file, write_t write) {
    const int descriptor = _internal::os::open_xml_for_writing(file.as_string());
    if (descriptor < 0) {
        return false;
    }
    int written = -1;
    // The buffer does not own the descriptor.
    if (xmlOutputBuffer* buffer = xmlOutputBufferCreateFd(descriptor, nullptr)) {
        written = write(buffer);
    }
    _internal::os::close_xml_file(descriptor);
    return written > 0;
}

} // namespace

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
    return write_file(file, [doc](xmlOutputBuffer* buffer) {
        // Closes the buffer.
        return xmlSaveFormatFileTo(buffer, doc, "UTF-8", 1);
    });
}

namespace _internal {

bool write_xml_text(const path_t& file, const std::string& text) {
    return write_file(file, [&text](xmlOutputBuffer* buffer) {
        for (std::size_t done = 0; done < text.size();) {
            const std::size_t chunk = std::min<std::size_t>(text.size() - done, INT_MAX / 2);
            if (xmlOutputBufferWrite(buffer, static_cast<int>(chunk), text.data() + done) < 0) {
                break;
            }
            done += chunk;
        }
        return xmlOutputBufferClose(buffer);
    });
}

} // namespace _internal
} // namespace velmor2
