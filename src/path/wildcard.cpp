// Wildcard matching without backtracking. The stars cut the pattern into pieces of literal
// characters and `?`. The first piece must sit at the start of the text and the last at its
// end; each piece between is placed at its leftmost fit after the one before. The leftmost
// fit never loses a match that a later fit would allow (everything after it stays
// available), so no placement is ever revisited: the cost is at most text times pattern
// (docs/performance.md, "Growth").
#include "path/wildcard.hpp"

#include <cstddef>
#include <utility>

namespace velmor2::_internal {

wildcard_t::wildcard_t(std::wstring pattern) : pattern_(std::move(pattern)) {
    std::size_t first = 0;
    for (std::size_t i = 0; i <= pattern_.size(); ++i) {
        if (i == pattern_.size() || pattern_[i] == L'*') {
            // Empty pieces between stars change nothing: `**` is `*`.
            if (pieces_.empty() || i == pattern_.size() || i > first) {
                pieces_.push_back({first, i - first});
            }
            first = i + 1;
        }
    }
}

std::size_t wildcard_t::literal_prefix(const std::wstring& text) const {
    std::size_t n = 0;
    while (n < text.size() && n < pattern_.size() && pattern_[n] != L'*' && pattern_[n] != L'?' &&
           pattern_[n] == text[n]) {
        ++n;
    }
    return n;
}

bool wildcard_t::piece_at(const piece_t& piece, const wchar_t* text) const {
    const wchar_t* p = pattern_.data() + piece.first;
    for (std::size_t i = 0; i < piece.size; ++i) {
        if (p[i] != text[i] && p[i] != L'?') {
            return false;
        }
    }
    return true;
}

const wchar_t* wildcard_t::find_piece(const piece_t& piece, const wchar_t* first,
                                      const wchar_t* last) const {
    const wchar_t lead = pattern_[piece.first];
    for (; last - first >= static_cast<std::ptrdiff_t>(piece.size); ++first) {
        if (lead != L'?') {
            first = std::char_traits<wchar_t>::find(first, last - first - piece.size + 1, lead);
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

bool wildcard_t::match(const std::wstring& text, std::size_t known) const {
    const wchar_t* const begin = text.data();
    const wchar_t* const end = begin + text.size();
    const piece_t& head = pieces_.front();
    if (pieces_.size() == 1) {
        return text.size() == head.size &&
               piece_at({head.first + known, head.size - known}, begin + known);
    }
    const piece_t& tail = pieces_.back();
    if (text.size() < head.size + tail.size ||
        !piece_at({head.first + known, head.size - known}, begin + known) ||
        !piece_at(tail, end - tail.size)) {
        return false;
    }
    const wchar_t* cursor = begin + head.size;
    const wchar_t* const limit = end - tail.size;
    for (std::size_t i = 1; i + 1 < pieces_.size(); ++i) {
        const wchar_t* found = find_piece(pieces_[i], cursor, limit);
        if (found == nullptr) {
            return false;
        }
        cursor = found + pieces_[i].size;
    }
    return true;
}

} // namespace velmor2::_internal
