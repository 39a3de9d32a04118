// Wildcard matching by one pass with a single backtrack point: with only `*` and `?` in the
// language, retrying from the latest `*` is enough, so the cost stays linear in practice and
// quadratic at worst, never exponential.
#include "fs/wildcard.hpp"

#include <utility>

namespace velmor2::_internal {

wildcard_t::wildcard_t(std::wstring pattern) : pattern_(std::move(pattern)) {}

std::size_t wildcard_t::literal_prefix(const std::wstring& text) const {
    std::size_t n = 0;
    while (n < text.size() && n < pattern_.size() && pattern_[n] != L'*' && pattern_[n] != L'?' &&
           pattern_[n] == text[n]) {
        ++n;
    }
    return n;
}

bool wildcard_t::match(const std::wstring& text, std::size_t known) const {
    const std::size_t none = std::wstring::npos;
    std::size_t p = known;
    std::size_t t = known;
    std::size_t star = none;
    std::size_t star_text = 0;
    while (t < text.size()) {
        if (p < pattern_.size() && pattern_[p] == L'*') {
            star = p++;
            star_text = t;
        } else if (p < pattern_.size() && (pattern_[p] == L'?' || pattern_[p] == text[t])) {
            ++p;
            ++t;
        } else if (star != none) {
            p = star + 1;
            t = ++star_text;
        } else {
            return false;
        }
    }
    while (p < pattern_.size() && pattern_[p] == L'*') {
        ++p;
    }
    return p == pattern_.size();
}

} // namespace velmor2::_internal
