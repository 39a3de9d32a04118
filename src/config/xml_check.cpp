// Checks on a written value element before it goes to the file.
#include "config/xml_check.hpp"
#include "unicode/convert.hpp"

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace velmor2::_internal {
namespace {

bool is_xml_char(char32_t c) {
    return c == 0x9 || c == 0xA || c == 0xD || (c >= 0x20 && c <= 0xD7FF) ||
           (c >= 0xE000 && c <= 0xFFFD) || (c >= 0x10000 && c <= 0x10FFFF);
}

// Every sequence valid UTF-8 and an XML character.
bool has_xml_chars(const xmlChar* text) {
    if (text == nullptr) {
        return true;
    }
    const char* p = reinterpret_cast<const char*>(text);
    std::size_t left = std::strlen(p);
    while (left > 0) {
        if (!validate_utf8(p, left)) {
            return false;
        }
        const std::size_t length = get_utf8_length(p, left);
        const auto lead = static_cast<unsigned char>(p[0]);
        char32_t c = length == 1 ? lead : lead & (0x7F >> length);
        for (std::size_t i = 1; i < length; ++i) {
            c = (c << 6) | (static_cast<unsigned char>(p[i]) & 0x3F);
        }
        if (!is_xml_char(c)) {
            return false;
        }
        p += length;
        left -= length;
    }
    return true;
}

std::size_t length_of(const xmlChar* text) {
    return text != nullptr ? std::strlen(reinterpret_cast<const char*>(text)) : 0;
}

// Bytes an attribute value takes once written with libxml2's escapes.
std::size_t escaped_size(const xmlChar* text) {
    std::size_t size = 0;
    for (const xmlChar* p = text; p != nullptr && *p != 0; ++p) {
        switch (*p) {
        case '"':
            size += 6;
            break;
        case '&':
        case '\n':
        case '\r':
            size += 5;
            break;
        case '<':
        case '>':
        case '\t':
            size += 4;
            break;
        default:
            ++size;
        }
    }
    return size;
}

bool attributes_loadable(const xmlNode* element) {
    // "<name" and "/>".
    std::size_t tag = 3 + length_of(element->name);
    for (const xmlAttr* attribute = element->properties; attribute != nullptr;
         attribute = attribute->next) {
        if (attribute->ns != nullptr ||
            !is_element_name(reinterpret_cast<const char*>(attribute->name))) {
            return false;
        }
        for (const xmlAttr* other = attribute->next; other != nullptr; other = other->next) {
            if (xmlStrEqual(attribute->name, other->name)) {
                return false;
            }
        }
        // ' name=""'
        tag += 4 + length_of(attribute->name);
        for (const xmlNode* part = attribute->children; part != nullptr; part = part->next) {
            if (part->type != XML_TEXT_NODE || !has_xml_chars(part->content)) {
                return false;
            }
            tag += escaped_size(part->content);
        }
    }
    return tag <= max_start_tag_bytes;
}

bool content_loadable(const xmlNode* node, std::size_t depth) {
    // Adjacent text nodes read back as one.
    std::size_t text = 0;
    for (const xmlNode* child = node->children; child != nullptr; child = child->next) {
        text = child->type == XML_TEXT_NODE ? text + length_of(child->content) : 0;
        if (text > max_text_bytes || length_of(child->content) > max_text_bytes) {
            return false;
        }
        switch (child->type) {
        case XML_ELEMENT_NODE:
            if (depth >= max_element_depth || child->ns != nullptr ||
                !is_element_name(reinterpret_cast<const char*>(child->name)) ||
                !attributes_loadable(child) || !content_loadable(child, depth + 1)) {
                return false;
            }
            break;
        case XML_TEXT_NODE:
        case XML_CDATA_SECTION_NODE:
            if (!has_xml_chars(child->content)) {
                return false;
            }
            break;
        case XML_COMMENT_NODE: {
            const char* text = reinterpret_cast<const char*>(child->content);
            const std::size_t length = text != nullptr ? std::strlen(text) : 0;
            if (!has_xml_chars(child->content) ||
                (text != nullptr && std::strstr(text, "--") != nullptr) ||
                (length > 0 && text[length - 1] == '-')) {
                return false;
            }
            break;
        }
        default:
            // Entity references, processing instructions and anything else a value has no
            // business holding.
            return false;
        }
    }
    return true;
}

} // namespace

bool is_element_name(std::string_view name) {
    if (name.empty() || name.size() > max_name_bytes) {
        return false;
    }
    const auto is_ascii = [](char c) { return static_cast<unsigned char>(c) < 0x80; };
    if (std::all_of(name.begin(), name.end(), is_ascii)) {
        // libxml2's own rule for ASCII names, without copying to a terminated string.
        const auto is_letter = [](char c) {
            return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_';
        };
        return is_letter(name.front()) && std::all_of(name.begin() + 1, name.end(), [&](char c) {
                   return is_letter(c) || (c >= '0' && c <= '9') || c == '-' || c == '.';
               });
    }
    const std::string terminated(name);
    return terminated.find('\0') == std::string::npos &&
           xmlValidateNCName(reinterpret_cast<const xmlChar*>(terminated.c_str()), 0) == 0;
}

bool is_xml_text(const char* text) {
    return std::strlen(text) <= max_text_bytes &&
           has_xml_chars(reinterpret_cast<const xmlChar*>(text));
}

bool is_loadable(const xmlNode* element, std::size_t above) {
    std::size_t depth = above;
    for (const xmlNode* node = element; node != nullptr && node->type == XML_ELEMENT_NODE;
         node = node->parent) {
        ++depth;
    }
    return depth <= max_element_depth && attributes_loadable(element) &&
           content_loadable(element, depth);
}

std::string to_xml_utf8(const std::wstring& text) {
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto c = static_cast<char32_t>(text[i]);
        const bool paired = sizeof(wchar_t) == 2 && is_high_surrogate(c) && i + 1 < text.size() &&
                            is_low_surrogate(static_cast<char32_t>(text[i + 1]));
        if (paired) {
            ++i;
        } else if (is_high_surrogate(c) || is_low_surrogate(c) || c > 0x10FFFF) {
            return "\xEF\xBF\xBF";
        }
    }
    std::string utf8 = to_utf8(text);
    for (std::size_t zero = utf8.find('\0'); zero != std::string::npos;
         zero = utf8.find('\0', zero)) {
        utf8.replace(zero, 1, "\xEF\xBF\xBF");
    }
    return utf8;
}

} // namespace velmor2::_internal
