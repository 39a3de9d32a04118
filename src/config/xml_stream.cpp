// Each outermost typed element is handed over as soon as libxml2 has read it and is freed
// right after, with its finished siblings: the tree never holds more than the open elements,
// and the allocator keeps reusing the same warm blocks instead of faulting in a document the
// size of the file. A value of a built-in scalar type is not built at all: its text is
// gathered from the parser's events. Figures: docs/performance.md, "Configuration store".
#include "config/xml_stream.hpp"

#include "config/node_text.hpp"
#include "config/xml_file.hpp"
#include "config/xml_quiet.hpp"
#include "os/xml_file.hpp"

#include <libxml/SAX2.h>
#include <libxml/parser.h>
#include <libxml/parserInternals.h>

#include <cstring>
#include <exception>
#include <memory>
#include <optional>
#include <vector>

namespace velmor2::_internal {
namespace {

// The value of the first attribute named `type` (as `xmlHasProp` finds it) among libxml2's
// attribute quintuples (name, prefix, URI, value, end); false when there is none. Without a
// document type there are no entities of the file's own, and libxml2 gives the value with
// character and predefined references replaced.
bool type_attribute(int count, const xmlChar** attributes, std::string& out) {
    for (int at = 0; at < count; ++at) {
        const xmlChar** attribute = attributes + 5 * at;
        if (std::strcmp(reinterpret_cast<const char*>(attribute[0]), "type") == 0) {
            out.assign(reinterpret_cast<const char*>(attribute[3]),
                       reinterpret_cast<const char*>(attribute[4]));
            return true;
        }
    }
    return false;
}

class stream_t {
  public:
    stream_t(xmlParserCtxt* context, typed_element_visitor_t& visitor)
        : context(context), visitor(visitor) {
        context->_private = this;
        xmlSAXHandler& sax = *context->sax;
        sax.startElementNs = &stream_t::start;
        sax.endElementNs = &stream_t::end;
        sax.reference = &stream_t::referenced;
        sax.characters = &stream_t::characters;
        // Blanks are kept, so libxml2 reports them as characters too.
        sax.ignorableWhitespace = &stream_t::characters;
        sax.cdataBlock = &stream_t::cdata;
        sax.comment = &stream_t::comment;
        sax.processingInstruction = &stream_t::instruction;
    }

    /// True when the budget was not run out of; rethrows what the visitor threw.
    bool finish() {
        if (failure) {
            std::rethrow_exception(failure);
        }
        return !too_long && (!budget || !budget->exceeded());
    }

  private:
    xmlParserCtxt* context;
    typed_element_visitor_t& visitor;
    /// Elements open inside the typed element being read, itself included; 0 outside one.
    int typed_depth = 0;
    /// True while the typed element being read is not built: its text goes to `text`.
    bool text_only = false;
    std::string type_name;
    std::string text;
    /// Bytes of the run of text being read in an element that is not built, or outside values:
    /// libxml2 refuses a text node of more than `XML_MAX_TEXT_LENGTH` bytes, and so does the
    /// stream.
    std::size_t run = 0;
    bool too_long = false;
    /// The key of the innermost open element outside typed ones, and where each open element's
    /// enclosing key ends in it (one entry per element, the root's included).
    std::string key;
    std::vector<std::size_t> key_ends;
    std::optional<expansion_budget_t> budget;
    std::exception_ptr failure;

    // The stream whose document `context` builds; null while libxml2 parses an entity's
    // text with a context of its own (which inherits `_private`), as that text must stay
    // whole for every reference to it.
    static stream_t* own(void* context) {
        auto* stream = static_cast<stream_t*>(static_cast<xmlParserCtxt*>(context)->_private);
        return stream != nullptr && stream->context == context ? stream : nullptr;
    }

    // libxml2 is C: nothing may unwind through it.
    template <typename body_t> void guarded(body_t body) {
        if (failure) {
            return;
        }
        try {
            body();
        } catch (...) {
            failure = std::current_exception();
            xmlStopParser(context);
        }
    }

    // The root's name is no part of a key.
    void open_key(const xmlChar* name) {
        const bool below_root = !key_ends.empty();
        key_ends.push_back(key.size());
        if (below_root) {
            if (!key.empty()) {
                key += '.';
            }
            key += reinterpret_cast<const char*>(name);
        }
    }

    void close_key() {
        key.resize(key_ends.back());
        key_ends.pop_back();
    }

    static void start(void* context, const xmlChar* name, const xmlChar* prefix, const xmlChar* uri,
                      int namespace_count, const xmlChar** namespaces, int attribute_count,
                      int defaulted_count, const xmlChar** attributes) {
        stream_t* stream = own(context);
        const auto build = [&] {
            xmlSAX2StartElementNs(context, name, prefix, uri, namespace_count, namespaces,
                                  attribute_count, defaulted_count, attributes);
        };
        if (stream == nullptr) {
            build();
            return;
        }
        if (stream->typed_depth > 0) {
            ++stream->typed_depth;
            stream->run = 0;
            if (!stream->text_only) {
                build();
            }
            return;
        }
        bool as_text = false;
        stream->run = 0;
        stream->guarded([&] {
            if (!stream->budget) {
                stream->budget.emplace(stream->context->myDoc);
            }
            stream->open_key(name);
            as_text = stream->takes_text(attribute_count, attributes);
        });
        if (as_text) {
            stream->typed_depth = 1;
            stream->text_only = true;
            stream->text.clear();
            stream->run = 0;
            return;
        }
        build();
        stream->guarded([&] {
            if (stream->context->node != nullptr &&
                attribute_text(stream->context->node, "type", stream->type_name)) {
                stream->typed_depth = 1;
            }
        });
    }

    // Whether an element with these attributes, opened outside typed elements, is a value
    // read from its text alone. In a document with a type declaration an attribute may come
    // from a default or hold an entity's text: then only the built element tells.
    bool takes_text(int attribute_count, const xmlChar** attributes) {
        const xmlDoc* doc = context->myDoc;
        return doc != nullptr && doc->intSubset == nullptr && doc->extSubset == nullptr &&
               type_attribute(attribute_count, attributes, type_name) &&
               visitor.reads_text(type_name);
    }

    static void end(void* context, const xmlChar* name, const xmlChar* prefix, const xmlChar* uri) {
        stream_t* stream = own(context);
        if (stream == nullptr) {
            xmlSAX2EndElementNs(context, name, prefix, uri);
            return;
        }
        xmlNode* element = stream->text_only ? nullptr : stream->context->node;
        if (!stream->text_only) {
            xmlSAX2EndElementNs(context, name, prefix, uri);
        }
        if (stream->typed_depth > 1) {
            --stream->typed_depth;
            stream->run = 0;
            return;
        }
        const bool typed = stream->typed_depth == 1;
        stream->typed_depth = 0;
        stream->run = 0;
        stream->guarded([&] {
            if (typed && stream->text_only) {
                stream->visitor.typed_text(stream->key, stream->text);
            } else if (typed && element != nullptr) {
                stream->visitor.typed(element, stream->key, stream->type_name);
            }
        });
        stream->text_only = false;
        if (!stream->key_ends.empty()) {
            stream->close_key();
        }
        // The ended element was its parent's last child, so every child of the parent has
        // been handed over. The root stays with its document.
        free_children(stream->context->node);
    }

    static void free_children(xmlNode* parent) {
        if (parent != nullptr && parent->type == XML_ELEMENT_NODE) {
            xmlFreeNodeList(parent->children);
            parent->children = nullptr;
            parent->last = nullptr;
        }
    }

    // Text inside an element being read as text is taken when it is the element's own; a
    // run of characters (`cdata` false) is held to libxml2's limit on a text node.
    bool took_text(const xmlChar* characters, int length, bool cdata) {
        if (!text_only) {
            return false;
        }
        const auto size = static_cast<std::size_t>(length);
        if (cdata) {
            run = 0;
        } else if (!within_run(size)) {
            return true;
        }
        if (typed_depth == 1) {
            guarded([&] { text.append(reinterpret_cast<const char*>(characters), size); });
        }
        return true;
    }

    // Nodes other than text inside an element being read as text are skipped.
    bool skipped() {
        run = 0;
        return text_only;
    }

    // Text outside values (the indentation between elements, mostly) is never read: it is
    // held to the limit on a text node as building it would be, and dropped.
    bool passed_over(int length) {
        if (typed_depth != 0) {
            return false;
        }
        within_run(static_cast<std::size_t>(length));
        return true;
    }

    // Adds `size` bytes to the run of text; false, and the parse stopped, past libxml2's
    // limit on a text node.
    bool within_run(std::size_t size) {
        run += size;
        if (run <= XML_MAX_TEXT_LENGTH) {
            return true;
        }
        too_long = true;
        xmlStopParser(context);
        return false;
    }

    static void characters(void* context, const xmlChar* characters, int length) {
        stream_t* stream = own(context);
        if (stream == nullptr ||
            !(stream->took_text(characters, length, false) || stream->passed_over(length))) {
            xmlSAX2Characters(context, characters, length);
        }
    }

    static void cdata(void* context, const xmlChar* characters, int length) {
        stream_t* stream = own(context);
        if (stream == nullptr || !stream->took_text(characters, length, true)) {
            // A node of its own: text after it starts a new run.
            if (stream != nullptr) {
                stream->run = 0;
            }
            xmlSAX2CDataBlock(context, characters, length);
        }
    }

    static void comment(void* context, const xmlChar* value) {
        stream_t* stream = own(context);
        if (stream == nullptr || !stream->skipped()) {
            xmlSAX2Comment(context, value);
        }
    }

    static void instruction(void* context, const xmlChar* target, const xmlChar* data) {
        stream_t* stream = own(context);
        if (stream == nullptr || !stream->skipped()) {
            xmlSAX2ProcessingInstruction(context, target, data);
        }
    }

    static void referenced(void* context, const xmlChar* name) {
        stream_t* stream = own(context);
        if (stream != nullptr && stream->text_only) {
            return;
        }
        if (stream != nullptr) {
            stream->run = 0;
        }
        xmlSAX2Reference(context, name);
        xmlNode* parent = static_cast<xmlParserCtxt*>(context)->node;
        if (stream != nullptr && stream->typed_depth == 0 && parent != nullptr &&
            parent->last != nullptr) {
            stream->guarded([&] { stream->visitor.reference(parent->last); });
        }
    }
};

} // namespace

bool read_typed_elements(const path_t& file, typed_element_visitor_t& visitor) {
    const int descriptor = os::open_xml_for_reading(file.as_string());
    if (descriptor < 0) {
        return false;
    }
    const auto close = [](const int* held) { os::close_xml_file(*held); };
    const std::unique_ptr<const int, decltype(close)> closing(&descriptor, close);
    const quiet_xml_t quiet;
    const std::unique_ptr<xmlParserCtxt, decltype(&xmlFreeParserCtxt)> context(xmlNewParserCtxt(),
                                                                               &xmlFreeParserCtxt);
    if (!context) {
        return false;
    }
    stream_t stream(context.get(), visitor);
    const std::unique_ptr<xmlDoc, decltype(&xmlFreeDoc)> doc(
        xmlCtxtReadFd(context.get(), descriptor, nullptr, nullptr, xml_read_options), &xmlFreeDoc);
    const bool within_budget = stream.finish();
    return within_budget && doc != nullptr;
}

} // namespace velmor2::_internal
