// Whole text files: reading in a code page, writing in a code page, and the XML declaration.
#include <velmor2/text_file.hpp>

#include "os/ansi.hpp"
#include "os/data_file.hpp"
#include "unicode/convert.hpp"

#include <algorithm>
#include <locale>
#include <vector>

namespace velmor2 {

std::string encode_text(const std::wstring& text, code_page_t cp) {
    switch (cp) {
    case cp_utf8:
        return _internal::to_utf8(text);
    case cp_utf16: {
        const std::u16string units = _internal::to_utf16(text);
        std::string bytes = "\xFF\xFE";
        bytes.reserve(2 + units.size() * 2);
        for (const char16_t unit : units) {
            bytes += static_cast<char>(unit & 0xFF);
            bytes += static_cast<char>(unit >> 8);
        }
        return bytes;
    }
    default:
        return _internal::os::to_ansi(text);
    }
}

namespace {

// Two zero bytes after the content end the text as a zero character of either width.
constexpr std::size_t terminator_bytes = 2;

// Reads the whole file once; the bytes are followed by `terminator_bytes` zeros. False when
// the file cannot be opened; an empty file gives `size` 0.
bool read_file(const path_t& file, std::vector<char>& bytes, std::size_t& size) {
    _internal::os::data_file_t stream;
    std::uint64_t length = 0;
    if (!stream.open_read(file.as_string()) || !stream.size(length)) {
        return false;
    }
    size = static_cast<std::size_t>(length);
    bytes.assign(size + terminator_bytes, '\0');
    std::size_t got = 0;
    // A short read leaves zeros, which end the text where the reading stopped.
    stream.read(bytes.data(), size, got);
    return true;
}

// The text of `bytes` (zero-terminated in both widths) up to its first zero character.
std::wstring decode(code_page_t cp, const std::vector<char>& bytes) {
    switch (cp) {
    case cp_utf8:
        return _internal::to_ustring(bytes.data());
    case cp_utf16: {
        // Little-endian units whatever the byte order of the machine.
        std::u16string units;
        units.reserve(bytes.size() / 2);
        for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
            const auto unit = static_cast<char16_t>(static_cast<unsigned char>(bytes[i]) |
                                                    static_cast<unsigned char>(bytes[i + 1]) << 8);
            if (unit == 0) {
                break;
            }
            units += unit;
        }
        return _internal::to_ustring(units.c_str());
    }
    default:
        return _internal::os::from_ansi(std::string(bytes.data()));
    }
}

const std::wstring declaration_end = L"?>";

} // namespace

std::wstring get_file_content(code_page_t cp, const path_t& file) {
    std::vector<char> bytes;
    std::size_t size = 0;
    if (!read_file(file, bytes, size) || size == 0) {
        return {};
    }
    return decode(cp, bytes);
}

bool set_file_content(const std::wstring& text, code_page_t cp, const path_t& file) {
    const std::string bytes = encode_text(text, cp);
    _internal::os::data_file_t stream;
    return stream.open_write(file.as_string()) && stream.write(bytes.data(), bytes.size());
}

std::wstring get_xml_file_content(const path_t& file) {
    std::vector<char> bytes;
    std::size_t size = 0;
    if (!read_file(file, bytes, size) || size == 0) {
        return {};
    }
    const code_page_t cp = get_bytes_cp(bytes.data(), size);
    std::wstring content = decode(cp, bytes);
    const std::size_t pos = content.find(declaration_end);
    if (pos == std::wstring::npos) {
        return content;
    }
    std::wstring declaration = content.substr(0, pos + declaration_end.size());
    const auto& ctype = std::use_facet<std::ctype<wchar_t>>(std::locale());
    std::transform(declaration.begin(), declaration.end(), declaration.begin(),
                   [&ctype](wchar_t c) { return ctype.toupper(c); });
    content.erase(0, declaration.size());
    switch (cp) {
    case cp_utf8:
        return declaration.find(L"UTF-8") != std::wstring::npos ? content : std::wstring();
    case cp_utf16:
        return declaration.find(L"UTF-16") != std::wstring::npos ? content : std::wstring();
    default:
        // An ANSI file is accepted only without a declaration.
        return {};
    }
}

bool set_xml_file_content(const std::wstring& text, code_page_t cp, const path_t& file) {
    if (text.find(declaration_end) != std::wstring::npos) {
        return false;
    }
    switch (cp) {
    case cp_utf8:
        return set_file_content(L"<?xml version='1.0' encoding='UTF-8'?>\n" + text, cp, file);
    case cp_utf16:
        return set_file_content(L"<?xml version='1.0' encoding='UTF-16'?>\n" + text, cp, file);
    default:
        return false;
    }
}

} // namespace velmor2
