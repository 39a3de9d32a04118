// path_t: the printed form and the texts taken from it.
#include "os/file_status.hpp"
#include "path/grammar.hpp"
#include "path/packed.hpp"

#include <algorithm>
#include <cwchar>
#include <string>

namespace velmor2 {
namespace {

using model_t = _internal::path_internal_t<std::wstring>;
using _internal::packed_view_t;

constexpr std::size_t long_path_length = 248;
constexpr const wchar_t* long_path_prefix = L"\\\\?\\";

// The printed form of a model's first `count` components without the long-path prefix, piece
// by piece: the root's texts, then the names with a separator before each (between them for
// a relative path). Printing appends the pieces; ordering compares them without printing.
class pieces_t {
  public:
    pieces_t(const packed_view_t& model, std::size_t count)
        : name_(model.begin()), names_left_(count) {
        if (model.relative) {
            return;
        }
        separator_due_ = true;
        if (!model.absolute) {
            names_left_ = 0;
        } else if (!model.windows) {
            if (model.posix && count == 0) {
                add_root(separator, 1);
            }
        } else if (!model.network) {
            add_root(model.drive.data(), model.drive.size());
            add_root(L":", 1);
            if (count == 0) {
                add_root(separator, 1);
            }
        } else {
            add_root(separator, 1);
        }
    }

    /// The number of characters of all the pieces.
    std::size_t size() const {
        std::size_t total = 0;
        for (int i = 0; i < root_count_; ++i) {
            total += root_[i].size;
        }
        auto name = name_;
        for (std::size_t i = 0; i < names_left_; ++i, ++name) {
            total += (*name).size();
        }
        if (names_left_ > 0) {
            total += separator_due_ ? names_left_ : names_left_ - 1;
        }
        return total;
    }

    /// The next piece; false after the last.
    bool next(const wchar_t*& text, std::size_t& size) {
        if (root_index_ < root_count_) {
            text = root_[root_index_].text;
            size = root_[root_index_++].size;
            return true;
        }
        if (names_left_ == 0) {
            return false;
        }
        if (separator_due_) {
            separator_due_ = false;
            text = separator;
            size = 1;
            return true;
        }
        const std::wstring_view name = *name_;
        text = name.data();
        size = name.size();
        ++name_;
        --names_left_;
        separator_due_ = true;
        return true;
    }

  private:
    static constexpr const wchar_t* separator = L"\\";

    struct piece_t {
        const wchar_t* text;
        std::size_t size;
    };

    void add_root(const wchar_t* text, std::size_t size) { root_[root_count_++] = {text, size}; }

    piece_t root_[3] = {};
    int root_count_ = 0;
    int root_index_ = 0;
    packed_view_t::iterator name_;
    std::size_t names_left_;
    bool separator_due_ = false;
};

// Writes the printed form of the model's first `count` components to `out` (emptied first),
// the long-path prefix included. `out` is sized once, so printing allocates at most once.
void print_into(std::wstring& out, const packed_view_t& model, std::size_t count) {
    out.clear();
    pieces_t pieces(model, count);
    out.reserve(std::wcslen(long_path_prefix) + pieces.size());
    const wchar_t* text;
    std::size_t size;
    while (pieces.next(text, size)) {
        out.append(text, size);
    }
    // Only a drive or server path can carry the prefix: on a rooted POSIX or a relative path
    // Windows would misread it, and parsing the text again would give another path.
    if (out.size() >= long_path_length && model.windows && model.absolute) {
        out.insert(0, long_path_prefix);
    }
}

// Whether the printed form of `a` comes before that of `b`, for texts below the long-path
// length, compared piece against piece.
bool less_without_prefix(const packed_view_t& a, const packed_view_t& b) {
    pieces_t mine(a, a.count);
    pieces_t theirs(b, b.count);
    const wchar_t* p = nullptr;
    const wchar_t* q = nullptr;
    std::size_t m = 0;
    std::size_t n = 0;
    const auto fill = [](pieces_t& pieces, const wchar_t*& text, std::size_t& size) {
        while (size == 0) {
            if (!pieces.next(text, size)) {
                return false;
            }
        }
        return true;
    };
    for (;;) {
        const bool more_mine = fill(mine, p, m);
        const bool more_theirs = fill(theirs, q, n);
        if (!more_mine || !more_theirs) {
            return !more_mine && more_theirs;
        }
        // Names are short: a loop beats a call, and separators are one shared text.
        const std::size_t common = std::min(m, n);
        if (p != q) {
            for (std::size_t i = 0; i < common; ++i) {
                if (p[i] != q[i]) {
                    return p[i] < q[i];
                }
            }
        }
        p += common;
        q += common;
        m -= common;
        n -= common;
    }
}

std::wstring print(const packed_view_t& model, std::size_t count) {
    std::wstring out;
    print_into(out, model, count);
    return out;
}

} // namespace

std::wstring path_t::as_string() const {
    const packed_view_t view(packed_);
    return print(view, view.count);
}

std::wstring path_t::as_native_string() const {
    return _internal::os::native_text(as_string());
}

std::list<std::wstring> path_t::as_string_list() const {
    const packed_view_t view(packed_);
    std::list<std::wstring> out(view.begin(), view.end());
    if (view.relative || !view.absolute) {
        return out;
    }
    // The first element holds the root, so that assigning the list gives the path back.
    if (!view.windows) {
        out.push_front(L"\\");
    } else if (view.network) {
        out.front().insert(0, L"\\\\");
    } else {
        out.push_front(std::wstring(view.drive) + L':');
    }
    return out;
}

std::wstring path_t::get_branch() const {
    const packed_view_t view(packed_);
    if (view.count == 0 || is_empty()) {
        return {};
    }
    if (view.count == 1) {
        if (view.relative || view.network) {
            return {};
        }
        return view.windows ? std::wstring(view.drive) + L":\\" : L"\\";
    }
    return print(view, view.count - 1);
}

std::wstring path_t::get_leaf() const {
    return std::wstring(packed_view_t(packed_).back());
}

std::wstring path_t::get_ext() const {
    const packed_view_t view(packed_);
    if (view.count == 0 || is_directory()) {
        return {};
    }
    const std::wstring_view leaf = view.back();
    const std::size_t dot = leaf.rfind(L'.');
    return dot == std::wstring_view::npos ? std::wstring() : std::wstring(leaf.substr(dot + 1));
}

bool path_t::change_ext(const std::wstring& ext) {
    if (packed_view_t(packed_).count == 0 || is_directory()) {
        return false;
    }
    model_t model = this->model();
    std::wstring& leaf = model.components.back();
    const std::size_t dot = leaf.rfind(L'.');
    if (dot == std::wstring::npos) {
        leaf += L'.';
    } else {
        leaf.erase(dot + 1);
    }
    leaf += ext;
    return assign(model);
}

bool path_t::operator<(const path_t& other) const {
    const packed_view_t mine(packed_);
    const packed_view_t theirs(other.packed_);
    // The packed text is longer than the printed one (each name carries two length units
    // where the printed form has one separator), so short packed texts need no count.
    const auto prints_short = [](const std::wstring& packed, const packed_view_t& view) {
        return packed.size() < long_path_length ||
               pieces_t(view, view.count).size() < long_path_length;
    };
    if (prints_short(packed_, mine) && prints_short(other.packed_, theirs)) {
        return less_without_prefix(mine, theirs);
    }
    // A long-path prefix on one side: printed into buffers kept per thread.
    thread_local std::wstring mine_text;
    thread_local std::wstring their_text;
    print_into(mine_text, mine, mine.count);
    print_into(their_text, theirs, theirs.count);
    return mine_text < their_text;
}

} // namespace velmor2
