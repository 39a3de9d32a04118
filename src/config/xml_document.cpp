// Reading a file into an xmlDoc and writing an xmlDoc or prepared XML text to a file, under
// the sharing rules of the platform layer and without printing anything.
#include <velmor2/configuration.hpp>

#include "config/xml_file.hpp"
#include "config/xml_quiet.hpp"
#include "os/xml_file.hpp"

#include <libxml/parser.h>
#include <libxml/tree.h>

#include <memory>

namespace velmor2 {

xmlDoc* open_xml_document(const path_t& file) {
    const int descriptor = _internal::os::open_xml_for_reading(file.as_string());
    if (descriptor < 0) {
        return nullptr;
    }
    const _internal::quiet_xml_t quiet;
    xmlDoc* doc = xmlReadFd(descriptor, nullptr, nullptr, _internal::xml_read_options);
    _internal::os::close_xml_file(descriptor);
    return doc;
}

bool save_xml_document(const path_t& file, xmlDoc* doc) {
    if (doc == nullptr) {
        return false;
    }
    std::string text;
    {
        const _internal::quiet_xml_t quiet;
        xmlChar* bytes = nullptr;
        int size = 0;
        xmlDocDumpFormatMemoryEnc(doc, &bytes, &size, "UTF-8", 1);
        const auto release = [](xmlChar* p) { xmlFree(p); };
        const std::unique_ptr<xmlChar, decltype(release)> owned(bytes, release);
        if (bytes == nullptr || size <= 0) {
            return false;
        }
        text.assign(reinterpret_cast<const char*>(bytes), static_cast<std::size_t>(size));
    }
    return _internal::write_xml_text(file, text);
}

namespace _internal {

bool write_xml_text(const path_t& file, const std::string& text) {
    return !text.empty() && os::replace_xml_file(file.as_string(), text);
}

} // namespace _internal
} // namespace velmor2
