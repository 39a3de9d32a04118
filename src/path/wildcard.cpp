// Wildcard matching without backtracking. The stars cut the pattern into pieces of literal
// characters and `?`. The first piece must sit at the start of the text and the last at its
// end; each piece between is placed at its leftmost fit after the one before. The leftmost
// fit never loses a match that a later fit would allow (everything after it stays
// available), so no placement is ever revisited: the cost is at most text times pattern
// (docs/performance.md, "Growth").
#include "path/wildcard.hpp"

namespace velmor2::_internal {
namespace {

// Whether `piece` (literal characters and `?`) matches the text starting at `text`.
bool piece_at(std::wstring_view piece, const wchar_t* text) {
    for (std::size_t i = 0; i < piece.size(); ++i) {
        if (piece[i] != text[i] && piece[i] != L'?') {
            return false;
        }
    }
    return true;
}

// The leftmost place in [first, last) where the non-empty `piece` fits; null when none.
const wchar_t* find_piece(std::wstring_view piece, const wchar_t* first, const wchar_t* last) {
    const wchar_t lead = piece[0];
    for (; static_cast<std::size_t>(last - first) >= piece.size(); ++first) {
        if (lead != L'?') {
            first = std::char_traits<wchar_t>::find(first, last - first - piece.size() + 1, lead);
            if (first == nullptr) {
                return nullptr;
            }
        }
        if (piece_at(piece, first)) {
            return first;
        }
    }
    return nullptr;
}

} // namespace

bool wildcard_match(std::wstring_view pattern, std::wstring_view text, std::size_t known) {
    const std::size_t first_star = pattern.find(L'*');
    if (first_star == std::wstring_view::npos) {
        return text.size() == pattern.size() &&
               piece_at(pattern.substr(known), text.data() + known);
    }
    const std::size_t last_star = pattern.rfind(L'*');
    const std::wstring_view head = pattern.substr(0, first_star);
    const std::wstring_view tail = pattern.substr(last_star + 1);
    if (text.size() < head.size() + tail.size() ||
        !piece_at(head.substr(known), text.data() + known) ||
        !piece_at(tail, text.data() + text.size() - tail.size())) {
        return false;
    }
    const wchar_t* cursor = text.data() + head.size();
    const wchar_t* const limit = text.data() + text.size() - tail.size();
    for (std::size_t start = first_star + 1; start < last_star;) {
        const std::size_t star = pattern.find(L'*', start);
        const std::wstring_view piece = pattern.substr(start, star - start);
        start = star + 1;
        // Empty pieces between stars change nothing: `**` is `*`.
        if (piece.empty()) {
            continue;
        }
        cursor = find_piece(piece, cursor, limit);
        if (cursor == nullptr) {
            return false;
        }
        cursor += piece.size();
    }
    return true;
}

std::size_t wildcard_t::literal_prefix(const std::wstring& text) const {
    std::size_t n = 0;
    while (n < text.size() && n < pattern_.size() && pattern_[n] != L'*' && pattern_[n] != L'?' &&
           pattern_[n] == text[n]) {
        ++n;
    }
    return n;
}

} // namespace velmor2::_internal
