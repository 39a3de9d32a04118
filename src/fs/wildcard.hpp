// A wildcard pattern prepared once and matched against many texts.
#pragma once

#include <string>

namespace velmor2::_internal {

/// The wildcard language of `path_t::match`: `?` is any one character, `*` any run of
/// characters (separators included), every other character stands for itself, and the whole
/// text must match, case-sensitively. Answers exactly as `path_t::match` does, without building
/// a regular expression for each text.
class wildcard_t {
  public:
    explicit wildcard_t(std::wstring pattern);
    /// True when the whole of `text` matches.
    bool match(const std::wstring& text) const { return match(text, 0); }
    /// The same, for texts whose first `known` characters are known to equal the pattern's
    /// (see `literal_prefix`), which are then not compared again.
    bool match(const std::wstring& text, std::size_t known) const;
    /// How many leading characters of `text` equal the pattern's leading wildcard-free ones.
    /// Any text that begins with those characters may pass the count to `match` as `known`.
    std::size_t literal_prefix(const std::wstring& text) const;

  private:
    std::wstring pattern_;
};

} // namespace velmor2::_internal
