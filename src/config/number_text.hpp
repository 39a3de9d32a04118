// Numbers as configuration text, always in the classic "C" form: the process's global locale
// (thousands separators, decimal comma) never enters a file or the reading of one.
#pragma once

#include <string>
#include <string_view>

namespace velmor2::_internal {

/// Reads the whole of `text` as a T (bool, integer, float or double). No white space is
/// skipped; a leading `+` is allowed; a bool is exactly "0" or "1"; an unsigned type refuses a
/// minus sign; a value out of the type's range fails. False leaves `value` unspecified.
///
///   "42"    => 42          "+7" => 7
///   " 1"    => (fails)     "12abc" => (fails)
///   "0.5"   => 0.5         "0,5"   => (fails)
template <typename T> bool parse_number(std::wstring_view text, T& value);

/// Decimal text of an integer, "0"/"1" for a bool, and for float and double the general
/// format with six significant digits (`printf("%g")`).
///
///   1.0 / 3.0  => 0.333333      1e6 => 1e+06      true => 1
template <typename T> std::wstring format_number(T value);

/// Appends the text `format_number` gives (ASCII, so also its UTF-8 form) to `out`.
template <typename T> void append_number(T value, std::string& out);

} // namespace velmor2::_internal
