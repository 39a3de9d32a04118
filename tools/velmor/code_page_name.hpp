// The names the tool gives encodings, as `velmor text convert --to` takes them.
#pragma once

#include <velmor2/text_file.hpp>

namespace velmor_tool {

/// `utf8`, `utf16`, `ansi`, or `unknown` for a file that could not be read.
inline const wchar_t* code_page_name(velmor2::code_page_t cp) {
    switch (cp) {
    case velmor2::cp_utf8:
        return L"utf8";
    case velmor2::cp_utf16:
        return L"utf16";
    case velmor2::cp_ansi:
        return L"ansi";
    default:
        return L"unknown";
    }
}

} // namespace velmor_tool
