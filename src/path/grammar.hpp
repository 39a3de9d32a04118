// The path grammar: one parse routine shared by the constructors and validation.
#pragma once

#include <velmor2/path.hpp>

#include <cstddef>
#include <string>
#include <string_view>

namespace velmor2::_internal {

/// Parses `text` into `out`. True when the whole text (after removing leading and trailing
/// `'` and `"`) was accepted; `stop_position` then receives -1, otherwise the index of the
/// first character not consumed. `out` may be partly written when the result is false.
bool parse_path(const std::wstring& text, path_internal_t<std::wstring>& out, bool forbid_wildcards,
                int& stop_position);

/// The same for the text [begin, end).
bool parse_path(const wchar_t* begin, const wchar_t* end, path_internal_t<std::wstring>& out,
                bool forbid_wildcards, int& stop_position);

/// The parse result as places in the parsed text, for texts of up to `capacity` names: the
/// fields of the model without copies of the texts.
struct path_spans_t {
    /// A name as a place in the text (left uninitialised until written: no cost per parse).
    struct name_t {
        const wchar_t* first;
        std::size_t size;
        operator std::wstring_view() const { return {first, size}; }
    };

    static constexpr std::size_t capacity = 32;
    bool relative = false;
    bool windows = false;
    bool posix = false;
    std::wstring_view drive;
    std::wstring_view server;
    bool absolute = false;
    bool network = false;
    name_t components[capacity];
    std::size_t count = 0;
};

/// Parses [begin, end) with wildcards permitted, as the constructors do, into `out`, whose
/// views point into the text. `complete` is false when the text has more names than `out` can
/// take (then parse into the model instead).
bool parse_path(const wchar_t* begin, const wchar_t* end, path_spans_t& out, bool& complete);

/// The model the parser gives for a text that is one relative name: the name as the only
/// component, both forms allowed, and the drive letter left behind by a leading letter.
path_internal_t<std::wstring> name_model(const std::wstring& name);

} // namespace velmor2::_internal
