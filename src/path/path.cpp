// path_t: construction, composition, normalisation and comparison on the packed model.
#include "path/grammar.hpp"
#include "path/packed.hpp"
#include "unicode/convert.hpp"

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <locale>
#include <memory>
#include <mutex>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

namespace velmor2 {
namespace {

using model_t = _internal::path_internal_t<std::wstring>;
using _internal::packed_view_t;

std::uint32_t classic_upper(std::uint32_t c) {
    return c - ((c - U'a' < 26u) << 5);
}

// The global locale's upper-casing of ASCII as a table, and its facet for the rest.
struct locale_table_t {
    // Holds the facet alive, and tells by its identity whether the global locale changed.
    std::locale locale;
    const std::ctype<wchar_t>* ctype;
    wchar_t ascii[128];
    // The locale upper-cases ASCII as the "C" locale does (every locale but a few).
    bool classic_ascii = true;

    explicit locale_table_t(std::locale global)
        : locale(std::move(global)), ctype(&std::use_facet<std::ctype<wchar_t>>(locale)) {
        for (wchar_t c = 0; c < 128; ++c) {
            ascii[c] = ctype->toupper(c);
            classic_ascii = classic_ascii && static_cast<std::uint32_t>(ascii[c]) ==
                                                 classic_upper(static_cast<std::uint32_t>(c));
        }
    }
};

// The tables built, one per global locale seen, shared by every thread and never freed, so
// that a comparison may run on any thread at any time (even while static objects are being
// destroyed) and no thread-local object needs destroying. A program that keeps installing new
// global locales stops adding tables after a few and builds its own table per comparison.
class table_cache_t {
  public:
    static const locale_table_t* find(const std::locale& global) {
        const locale_table_t* last = last_.load(std::memory_order_acquire);
        if (last != nullptr && last->locale == global) {
            return last;
        }
        static auto* const tables = new table_cache_t;
        const std::lock_guard<std::mutex> lock(tables->mutex_);
        for (const auto& table : tables->tables_) {
            if (table->locale == global) {
                last_.store(table.get(), std::memory_order_release);
                return table.get();
            }
        }
        if (tables->tables_.size() == max_tables) {
            return nullptr;
        }
        tables->tables_.push_back(std::make_unique<locale_table_t>(global));
        last_.store(tables->tables_.back().get(), std::memory_order_release);
        return tables->tables_.back().get();
    }

  private:
    static constexpr std::size_t max_tables = 8;
    static inline std::atomic<const locale_table_t*> last_{nullptr};
    std::mutex mutex_;
    std::vector<std::unique_ptr<locale_table_t>> tables_;
};

// Case-insensitive comparison of texts with the global locale's upper-casing
// (docs/performance.md, "Path comparison").
class same_text_t {
  public:
    same_text_t() {
        std::locale global;
        const locale_table_t* table = table_cache_t::find(global);
        if (table == nullptr) {
            table = &own_.emplace(std::move(global));
        }
        ascii_ = table->ascii;
        ctype_ = table->ctype;
        classic_ascii_ = table->classic_ascii;
    }

    bool operator()(std::wstring_view a, std::wstring_view b) const {
        if (a.size() != b.size()) {
            return false;
        }
        if (classic_ascii_) {
            // Without branches, so that the compiler may take several characters at a time;
            // any character beyond ASCII sends the text to the exact loop below.
            std::uint32_t differ = 0;
            std::uint32_t beyond_ascii = 0;
            for (std::size_t i = 0; i < a.size(); ++i) {
                const auto x = static_cast<std::uint32_t>(a[i]);
                const auto y = static_cast<std::uint32_t>(b[i]);
                beyond_ascii |= (x | y) & ~0x7Fu;
                differ |= classic_upper(x) ^ classic_upper(y);
            }
            if (beyond_ascii == 0) {
                return differ == 0;
            }
        }
        for (std::size_t i = 0; i < a.size(); ++i) {
            if (!same(a[i], b[i])) {
                return false;
            }
        }
        return true;
    }

  private:
    bool same(wchar_t a, wchar_t b) const {
        if (static_cast<std::uint32_t>(a | b) < 128) {
            return ascii_[a] == ascii_[b];
        }
        return a == b || ctype_->toupper(a) == ctype_->toupper(b);
    }

    std::optional<locale_table_t> own_;
    const wchar_t* ascii_;
    const std::ctype<wchar_t>* ctype_;
    bool classic_ascii_;
};

// Parses with wildcards allowed, as the constructors do, and packs the result straight from
// the text; text that does not parse completely leaves the empty path, nothing of the partial
// parse.
void parse_into(std::wstring& packed, const wchar_t* begin, const wchar_t* end) {
    _internal::path_spans_t spans;
    bool complete;
    if (!_internal::parse_path(begin, end, spans, complete)) {
        packed.clear();
        return;
    }
    if (complete) {
        _internal::pack(spans, packed);
        return;
    }
    // More names than the spans hold: through the model.
    model_t model;
    int stop_position;
    _internal::parse_path(begin, end, model, false, stop_position);
    _internal::pack(model, packed);
}

bool prints_empty(const model_t& model) {
    return _internal::prints_empty(model.relative, model.absolute, model.windows, model.posix,
                                   model.components.size(),
                                   !model.components.empty() && model.components.front().empty());
}

// The append rule on models: a rooted `other` is refused; an empty `into` becomes `other`.
bool append_model(model_t& into, const model_t& other) {
    if (other.absolute || other.network) {
        return false;
    }
    if (prints_empty(into)) {
        into = other;
    } else {
        into.components.insert(into.components.end(), other.components.begin(),
                               other.components.end());
    }
    return true;
}

bool same_form(const packed_view_t& a, const packed_view_t& b) {
    return a.relative == b.relative && a.windows == b.windows && a.posix == b.posix &&
           a.absolute == b.absolute && a.network == b.network;
}

} // namespace

path_t::path_t() = default;

path_t::path_t(const std::wstring& text) {
    parse_into(packed_, text.data(), text.data() + text.size());
}

path_t::path_t(const wchar_t* text) {
    if (text != nullptr) {
        parse_into(packed_, text, text + std::char_traits<wchar_t>::length(text));
    }
}

path_t::path_t(const path_t& other) {
    assign(other);
}

path_t::path_t(path_t&& other) noexcept : packed_(std::move(other.packed_)) {
    other.packed_.clear();
}

path_t& path_t::operator=(const path_t& other) {
    assign(other);
    return *this;
}

path_t& path_t::operator=(path_t&& other) noexcept {
    if (this != &other) {
        packed_ = std::move(other.packed_);
        other.packed_.clear();
    }
    return *this;
}

path_t::~path_t() = default;

bool path_t::is_posix() const {
    return packed_view_t(packed_).posix;
}
bool path_t::is_windows() const {
    return packed_view_t(packed_).windows;
}
bool path_t::is_absolute() const {
    return packed_view_t(packed_).absolute;
}
bool path_t::is_drive_path() const {
    const packed_view_t view(packed_);
    return view.windows && view.absolute && !view.network;
}
bool path_t::is_empty() const {
    const packed_view_t view(packed_);
    return _internal::prints_empty(view.relative, view.absolute, view.windows, view.posix,
                                   view.count, view.count != 0 && (*view.begin()).empty());
}
wchar_t path_t::get_separator_char() {
    return L'\\';
}

model_t path_t::model() const {
    model_t model;
    _internal::unpack(packed_, model);
    return model;
}

bool path_t::assign(const path_t& other) {
    if (&other != this) {
        packed_ = other.packed_;
    }
    return true;
}

bool path_t::assign(const model_t& model) {
    _internal::pack(model, packed_);
    return true;
}

bool path_t::assign(const std::list<std::wstring>& parts) {
    // The first text gives the form (it may be a root such as `C:` or `\`); the others are
    // appended to it, so they must be relative. The names appended are gathered packed in one
    // buffer and joined to the head once at the end.
    path_t head;
    std::wstring tail;
    bool first = true;
    for (const std::wstring& part : parts) {
        const path_t piece(part);
        const packed_view_t view(piece.packed_);
        // A text that parses always leaves a flag set: an empty packed text is a failure.
        if (piece.packed_.empty() || (!first && (view.absolute || view.network))) {
            packed_.clear();
            return false;
        }
        if (first || (tail.empty() && head.is_empty())) {
            head = piece;
        } else {
            tail += view.names();
        }
        first = false;
    }
    if (!tail.empty()) {
        _internal::append_names(head.packed_, packed_view_t::iterator(tail.data()),
                                packed_view_t::iterator(tail.data() + tail.size()));
    }
    packed_ = std::move(head.packed_);
    return true;
}

bool path_t::append(const path_t& other) {
    const packed_view_t view(other.packed_);
    if (view.absolute || view.network) {
        return false;
    }
    if (is_empty()) {
        return assign(other);
    }
    // Copied aside first: `p.append(p)` reads the names it adds to.
    const std::wstring names = other.packed_;
    const packed_view_t copy(names);
    _internal::append_names(packed_, copy.begin(), copy.end());
    return true;
}

bool path_t::append(const model_t& model) {
    if (model.absolute || model.network) {
        return false;
    }
    if (is_empty()) {
        return assign(model);
    }
    _internal::append_names(packed_, model.components.begin(), model.components.end());
    return true;
}

bool path_t::normalize() {
    const packed_view_t view(packed_);
    if (std::none_of(view.begin(), view.end(),
                     [](std::wstring_view name) { return name == L"." || name == L".."; })) {
        return true;
    }
    model_t model = this->model();
    auto& components = model.components;
    components.remove(L".");
    for (auto it = components.begin(); it != components.end();) {
        if (*it == L".." && it != components.begin() && *std::prev(it) != L"..") {
            components.erase(std::prev(it));
            it = components.erase(it);
        } else {
            ++it;
        }
    }
    return assign(model);
}

path_t path_t::get_relative(const path_t& other) const {
    if (is_empty()) {
        return other;
    }
    if (other.is_empty()) {
        return *this;
    }
    const packed_view_t mine_view(packed_);
    const packed_view_t their_view(other.packed_);
    if (!same_form(mine_view, their_view)) {
        return path_t();
    }
    const same_text_t same;
    auto mine = mine_view.begin();
    auto theirs = their_view.begin();
    while (mine != mine_view.end() && theirs != their_view.end() && same(*mine, *theirs)) {
        ++mine;
        ++theirs;
    }
    // The difference of the two remainders, not the remainder of `other` alone.
    const auto rest_other = std::distance(theirs, their_view.end());
    const auto rest_this = std::distance(mine, mine_view.end());
    model_t result;
    for (auto n = rest_other - rest_this; n > 0; --n) {
        append_model(result, _internal::name_model(L".."));
    }
    for (; mine != mine_view.end(); ++mine) {
        append_model(result, _internal::name_model(std::wstring(*mine)));
    }
    path_t relative;
    relative.assign(result);
    relative.normalize();
    if (relative.is_empty()) {
        relative.append(_internal::name_model(L"."));
    }
    return relative;
}

void path_t::to_lower() {
    model_t model = this->model();
    for (std::wstring& component : model.components) {
        component = _internal::tolower(component);
    }
    assign(model);
}

bool path_t::operator==(const path_t& other) const {
    // Equal paths have equal flags and names of equal lengths, so packed texts that differ at
    // most in the case of their characters: the layouts are compared exactly, then the whole
    // texts case-insensitively (equal flags and lengths compare equal either way).
    if (packed_.size() != other.packed_.size()) {
        return false;
    }
    if (packed_ == other.packed_) {
        return true;
    }
    return _internal::same_layout(packed_, other.packed_) && same_text_t()(packed_, other.packed_);
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
