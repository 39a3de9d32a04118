// Wildcard patterns: one matcher for path_t::match and the directory search.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>

namespace velmor2::_internal {

/// The wildcard language of `path_t::match`: `?` is any one character, `*` any run of
/// characters (separators included), every other character stands for itself, and the whole
/// text must match, case-sensitively. The answers are those of the regular expression the
/// pattern translates to (`?` as `.`, `*` as `.*`, everything else escaped), found in time
/// proportional to text times pattern at worst, whatever the pattern. The first `known`
/// characters of `text` are known to equal the pattern's (see `wildcard_t::literal_prefix`)
/// and are not compared again.
bool wildcard_match(std::wstring_view pattern, std::wstring_view text, std::size_t known = 0);

/// A wildcard pattern kept for matching many texts.
class wildcard_t {
  public:
    explicit wildcard_t(std::wstring pattern) : pattern_(std::move(pattern)) {}
    /// True when the whole of `text` matches.
    bool match(const std::wstring& text) const { return wildcard_match(pattern_, text); }
    /// The same, for texts whose first `known` characters are known to equal the pattern's
    /// (see `literal_prefix`), which are then not compared again.
    bool match(const std::wstring& text, std::size_t known) const {
        return wildcard_match(pattern_, text, known);
    }
    /// How many leading characters of `text` equal the pattern's leading wildcard-free ones.
    /// Any text that begins with those characters may pass the count to `match` as `known`.
    std::size_t literal_prefix(const std::wstring& text) const;

  private:
    std::wstring pattern_;
};

} // namespace velmor2::_internal
