// path_t: construction, composition, normalisation and comparison on the parsed model.
#include "path/component_pool.hpp"
#include "path/grammar.hpp"
#include "text/convert.hpp"

#include <cstdint>
#include <locale>
#include <optional>
#include <utility>

namespace velmor2 {
namespace {

using model_t = _internal::path_internal_t<std::wstring>;

// The global locale's upper-casing, looked up again only when the global locale changes: the
// ASCII characters' upper-case forms in a table, the locale asked for the others.
class upper_case_t {
  public:
    /// The upper-casing of the current global locale, for this thread.
    static const upper_case_t& current() {
        thread_local std::optional<upper_case_t> cached;
        std::locale global;
        if (!cached || !(cached->locale_ == global)) {
            cached.emplace(std::move(global));
        }
        return *cached;
    }

    explicit upper_case_t(std::locale locale)
        : locale_(std::move(locale)), ctype_(&std::use_facet<std::ctype<wchar_t>>(locale_)) {
        for (wchar_t c = 0; c < 128; ++c) {
            ascii_[c] = ctype_->toupper(c);
        }
    }

    bool same(wchar_t a, wchar_t b) const {
        if (static_cast<std::uint32_t>(a | b) < 128) {
            return ascii_[a] == ascii_[b];
        }
        return ctype_->toupper(a) == ctype_->toupper(b);
    }

  private:
    // Holds the facet alive, and tells by its identity whether the global locale changed.
    std::locale locale_;
    const std::ctype<wchar_t>* ctype_;
    wchar_t ascii_[128];
};

// Case-insensitive comparison with the global locale's upper-casing. The locale is looked up
// only when two characters differ: equal paths, the common case, never need it.
class same_text_t {
  public:
    bool operator()(const std::wstring& a, const std::wstring& b) const {
        if (a.size() != b.size()) {
            return false;
        }
        for (std::size_t i = 0; i < a.size(); ++i) {
            if (a[i] != b[i] && !upper().same(a[i], b[i])) {
                return false;
            }
        }
        return true;
    }

  private:
    const upper_case_t& upper() const {
        if (upper_ == nullptr) {
            upper_ = &upper_case_t::current();
        }
        return *upper_;
    }

    mutable const upper_case_t* upper_ = nullptr;
};

// Parses with wildcards allowed, as the constructors do; text that does not parse completely
// leaves the empty model, nothing of the partial parse.
void parse_into(model_t& model, const wchar_t* begin, const wchar_t* end) {
    int stop_position;
    if (!_internal::parse_path(begin, end, model, false, stop_position)) {
        _internal::recycle_components(model.components);
        model = model_t();
    }
}

bool same_form(const model_t& a, const model_t& b) {
    return a.relative == b.relative && a.windows == b.windows && a.posix == b.posix &&
           a.absolute == b.absolute && a.network == b.network;
}

} // namespace

path_t::path_t() = default;

path_t::path_t(const std::wstring& text) {
    parse_into(path_, text.data(), text.data() + text.size());
}

path_t::path_t(const wchar_t* text) {
    if (text != nullptr) {
        parse_into(path_, text, text + std::char_traits<wchar_t>::length(text));
    }
}

path_t::path_t(const path_t& other) {
    assign(other);
}

path_t::path_t(path_t&& other) noexcept : path_(std::move(other.path_)) {
    other.path_ = model_t();
}

path_t& path_t::operator=(const path_t& other) {
    assign(other);
    return *this;
}

path_t& path_t::operator=(path_t&& other) noexcept {
    if (this != &other) {
        _internal::recycle_components(path_.components);
        path_ = std::move(other.path_);
        other.path_ = model_t();
    }
    return *this;
}

path_t::~path_t() {
    _internal::recycle_components(path_.components);
}

bool path_t::is_posix() const {
    return path_.posix;
}
bool path_t::is_windows() const {
    return path_.windows;
}
bool path_t::is_absolute() const {
    return path_.absolute;
}
bool path_t::is_drive_path() const {
    return path_.windows && path_.absolute && !path_.network;
}
bool path_t::is_empty() const {
    // Without printing: only a relative path without names (or with one empty name), a path
    // without a root, and a POSIX root without components whose POSIX reading was cleared
    // (`\\?\/`) print as nothing; the long-path prefix never stands alone.
    if (path_.relative) {
        return path_.components.empty() ||
               (path_.components.size() == 1 && path_.components.front().empty());
    }
    return !path_.absolute || (!path_.windows && !path_.posix && path_.components.empty());
}
wchar_t path_t::get_separator_char() {
    return L'\\';
}

bool path_t::assign(const path_t& other) {
    return assign(other.path_);
}

bool path_t::assign(const model_t& model) {
    if (&model != &path_) {
        path_ = model;
    }
    return true;
}

bool path_t::assign(const std::list<std::wstring>& parts) {
    // The first text gives the form (it may be a root such as `C:` or `\`); the others are
    // appended to it, so they must be relative.
    path_t joined;
    bool first = true;
    for (const std::wstring& part : parts) {
        model_t parsed;
        int stop_position;
        if (!_internal::parse_path(part, parsed, false, stop_position) ||
            !(first ? joined.assign(parsed) : joined.append(parsed))) {
            path_ = model_t();
            return false;
        }
        first = false;
    }
    path_ = std::move(joined.path_);
    return true;
}

bool path_t::append(const path_t& other) {
    return append(other.path_);
}

bool path_t::append(const model_t& model) {
    if (model.absolute || model.network) {
        return false;
    }
    if (is_empty()) {
        return assign(model);
    }
    // Copied aside first: `p.append(p)` inserts a list into itself.
    std::list<std::wstring> added(model.components);
    path_.components.splice(path_.components.end(), added);
    return true;
}

bool path_t::normalize() {
    auto& components = path_.components;
    components.remove(L".");
    for (auto it = components.begin(); it != components.end();) {
        if (*it == L".." && it != components.begin() && *std::prev(it) != L"..") {
            components.erase(std::prev(it));
            it = components.erase(it);
        } else {
            ++it;
        }
    }
    return true;
}

path_t path_t::get_relative(const path_t& other) const {
    if (as_string().empty()) {
        return other;
    }
    if (other.as_string().empty()) {
        return *this;
    }
    if (!same_form(path_, other.path_)) {
        return path_t();
    }
    const same_text_t same;
    auto mine = path_.components.begin();
    auto theirs = other.path_.components.begin();
    while (mine != path_.components.end() && theirs != other.path_.components.end() &&
           same(*mine, *theirs)) {
        ++mine;
        ++theirs;
    }
    // The difference of the two remainders, not the remainder of `other` alone.
    const auto rest_other = std::distance(theirs, other.path_.components.end());
    const auto rest_this = std::distance(mine, path_.components.end());
    path_t result;
    const model_t up = _internal::name_model(L"..");
    for (auto n = rest_other - rest_this; n > 0; --n) {
        result.append(up);
    }
    for (; mine != path_.components.end(); ++mine) {
        result.append(_internal::name_model(*mine));
    }
    result.normalize();
    if (result.as_string().empty()) {
        result.append(_internal::name_model(L"."));
    }
    return result;
}

void path_t::to_lower() {
    for (std::wstring& component : path_.components) {
        component = _internal::tolower(component);
    }
}

bool path_t::operator==(const path_t& other) const {
    if (!same_form(path_, other.path_)) {
        return false;
    }
    const same_text_t same;
    if (!same(path_.server, other.path_.server) || !same(path_.drive, other.path_.drive) ||
        path_.components.size() != other.path_.components.size()) {
        return false;
    }
    return std::equal(path_.components.begin(), path_.components.end(),
                      other.path_.components.begin(), same);
}

bool path_t::operator!=(const path_t& other) const {
    return !(*this == other);
}

path_t make_path(const std::wstring& text) {
    path_t path(_internal::to_ustring(text));
    path.normalize();
    return path;
}

path_t make_path(const std::string& text) {
    path_t path(_internal::to_ustring(text));
    path.normalize();
    return path;
}

} // namespace velmor2
