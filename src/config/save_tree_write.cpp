// Writing the tree of a save as libxml2's formatted output would: the declaration, one
// element per line, two spaces of indentation per level up to libxml2's limit, and elements
// holding text on one line.
#include "config/save_tree.hpp"
#include "config/xml_file.hpp"
#include "config/xml_quiet.hpp"

#include <libxml/xmlIO.h>
#include <libxml/xmlsave.h>

#include <algorithm>
#include <memory>
#include <new>

namespace velmor2::_internal {
namespace {

// libxml2 indents by two spaces per level, but never by more than this many levels.
constexpr std::size_t max_indent_levels = 30;

void indent(std::size_t level, std::string& out) {
    out.append(2 * std::min(level, max_indent_levels), ' ');
}

// Element text escaped as libxml2 escapes it in UTF-8 output.
void append_escaped(const char* text, std::size_t size, std::string& out) {
    const char* run = text;
    const char* const end = text + size;
    for (const char* p = text; p != end; ++p) {
        const char* entity = nullptr;
        switch (*p) {
        case '<':
            entity = "&lt;";
            break;
        case '>':
            entity = "&gt;";
            break;
        case '&':
            entity = "&amp;";
            break;
        case '\r':
            entity = "&#13;";
            break;
        default:
            continue;
        }
        out.append(run, p);
        out += entity;
        run = p + 1;
    }
    out.append(run, end);
}

} // namespace

void save_tree_t::write_node(const node_t& node, std::size_t level, std::string& out) const {
    if (node.element != nullptr) {
        const auto close = [](xmlOutputBuffer* buffer) { xmlOutputBufferClose(buffer); };
        std::unique_ptr<xmlOutputBuffer, decltype(close)> buffer(xmlAllocOutputBuffer(nullptr),
                                                                 close);
        if (!buffer) {
            throw std::bad_alloc();
        }
        // A document saved as UTF-8 carries that encoding while it is written, which keeps
        // non-ASCII attribute text as it is rather than as character references.
        doc->encoding = BAD_CAST "UTF-8";
        xmlNodeDumpOutput(buffer.get(), doc, node.element, static_cast<int>(level), 1, "UTF-8");
        doc->encoding = nullptr;
        out.append(reinterpret_cast<const char*>(xmlOutputBufferGetContent(buffer.get())),
                   xmlOutputBufferGetSize(buffer.get()));
        return;
    }
    const std::string_view name = name_of(node);
    out += '<';
    out += name;
    if (node.type_name != nullptr) {
        // Only the built-in type names, which need no escaping, come here.
        out += " type=\"";
        out += *node.type_name;
        out += '"';
    }
    if (node.has_text) {
        out += '>';
        append_escaped(texts.data() + node.text_begin, node.text_size, out);
        out += "</";
        out += name;
        out += '>';
        return;
    }
    if (node.first_child == none) {
        out += "/>";
        return;
    }
    out += ">\n";
    for (id_t child = node.first_child; child != none; child = nodes[child].next) {
        indent(level + 1, out);
        write_node(nodes[child], level + 1, out);
        out += '\n';
    }
    indent(level, out);
    out += "</";
    out += name;
    out += '>';
}

bool save_tree_t::write(const path_t& file) const {
    const quiet_xml_t quiet;
    std::string out;
    // About a line of 40 bytes per element.
    out.reserve(64 + nodes.size() * 40 + texts.size());
    out += "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
    write_node(nodes.front(), 0, out);
    out += '\n';
    return write_xml_text(file, out);
}

} // namespace velmor2::_internal
