// A wildcard pattern prepared once and matched against many texts.
#pragma once

#include <string>
#include <vector>

namespace velmor2::_internal {

/// The wildcard language of `path_t::match`: `?` is any one character, `*` any run of
/// characters (separators included), every other character stands for itself, and the whole
/// text must match, case-sensitively. The answers are those of the regular expression the
/// pattern translates to (`?` as `.`, `*` as `.*`, everything else escaped), found in time
/// proportional to text times pattern at worst, whatever the pattern.
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
    // A run of the pattern between stars: literal characters and `?`.
    struct piece_t {
        std::size_t first;
        std::size_t size;
    };

    bool piece_at(const piece_t& piece, const wchar_t* text) const;
    const wchar_t* find_piece(const piece_t& piece, const wchar_t* first,
                              const wchar_t* last) const;

    std::wstring pattern_;
    // The pieces in order; more than one exactly when the pattern has a star, the first then
    // anchored at the start of the text and the last at its end.
    std::vector<piece_t> pieces_;
};

} // namespace velmor2::_internal
