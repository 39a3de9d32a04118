// The path grammar: one parse routine shared by the constructors and validation.
#pragma once

#include <velmor2/path.hpp>

#include <string>

namespace velmor2::_internal {

/// Parses `text` into `out`. True when the whole text (after removing leading and trailing
/// `'` and `"`) was accepted; `stop_position` then receives -1, otherwise the index of the
/// first character not consumed. `out` may be partly written when the result is false.
bool parse_path(const std::wstring& text, path_internal_t<std::wstring>& out, bool forbid_wildcards,
                int& stop_position);

/// The same for the text [begin, end).
bool parse_path(const wchar_t* begin, const wchar_t* end, path_internal_t<std::wstring>& out,
                bool forbid_wildcards, int& stop_position);

/// The model the parser gives for a text that is one relative name: the name as the only
/// component, both forms allowed, and the drive letter left behind by a leading letter.
path_internal_t<std::wstring> name_model(const std::wstring& name);

} // namespace velmor2::_internal
