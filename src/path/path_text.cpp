// path_t: the printed form and the texts taken from it.
#include "os/file_status.hpp"
#include "path/grammar.hpp"

#include <algorithm>
#include <cwchar>
#include <string>

namespace velmor2 {
namespace {

using model_t = _internal::path_internal_t<std::wstring>;

constexpr std::size_t long_path_length = 248;
constexpr const wchar_t* long_path_prefix = L"\\\\?\\";

// The printed form of a model's first `count` components without the long-path prefix, piece
// by piece: the root's texts, then the names with a separator before each (between them for
// a relative path). Printing appends the pieces; ordering compares them without printing.
class pieces_t {
  public:
    pieces_t(const model_t& model, std::size_t count)
        : name_(model.components.begin()), names_left_(count) {
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
            total += name->size();
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
        text = name_->data();
        size = name_->size();
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
    std::list<std::wstring>::const_iterator name_;
    std::size_t names_left_;
    bool separator_due_ = false;
};

// Writes the printed form of the model's first `count` components to `out` (emptied first),
// the long-path prefix included. `out` is sized once, so printing allocates at most once.
void print_into(std::wstring& out, const model_t& model, std::size_t count) {
    out.clear();
    pieces_t pieces(model, count);
    out.reserve(std::wcslen(long_path_prefix) + pieces.size());
    const wchar_t* text;
    std::size_t size;
    while (pieces.next(text, size)) {
        out.append(text, size);
    }
    if (out.size() >= long_path_length) {
        out.insert(0, long_path_prefix);
    }
}

// Whether the printed form of `a` comes before that of `b`, for texts below the long-path
// length, compared piece against piece.
bool less_without_prefix(const model_t& a, const model_t& b) {
    pieces_t mine(a, a.components.size());
    pieces_t theirs(b, b.components.size());
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

std::wstring print(const model_t& model, std::size_t count) {
    std::wstring out;
    print_into(out, model, count);
    return out;
}

} // namespace

std::wstring path_t::as_string() const {
    return print(path_, path_.components.size());
}

std::wstring path_t::as_native_string() const {
    return _internal::os::native_text(as_string());
}

std::list<std::wstring> path_t::as_string_list() const {
    std::list<std::wstring> out(path_.components.begin(), path_.components.end());
    if (path_.relative || !path_.absolute) {
        return out;
    }
    // The first element holds the root, so that assigning the list gives the path back.
    if (!path_.windows) {
        out.push_front(L"\\");
    } else if (path_.network) {
        out.front().insert(0, L"\\\\");
    } else {
        out.push_front(path_.drive + L':');
    }
    return out;
}

std::wstring path_t::get_branch() const {
    const std::size_t count = path_.components.size();
    if (count == 0 || as_string().empty()) {
        return {};
    }
    if (count == 1) {
        if (path_.relative || path_.network) {
            return {};
        }
        return path_.windows ? path_.drive + L":\\" : L"\\";
    }
    return print(path_, count - 1);
}

std::wstring path_t::get_leaf() const {
    return path_.components.empty() ? std::wstring() : path_.components.back();
}

std::wstring path_t::get_ext() const {
    if (path_.components.empty() || is_directory()) {
        return {};
    }
    const std::wstring& leaf = path_.components.back();
    const std::size_t dot = leaf.rfind(L'.');
    return dot == std::wstring::npos ? std::wstring() : leaf.substr(dot + 1);
}

bool path_t::change_ext(const std::wstring& ext) {
    if (path_.components.empty() || is_directory()) {
        return false;
    }
    std::wstring& leaf = path_.components.back();
    const std::size_t dot = leaf.rfind(L'.');
    if (dot == std::wstring::npos) {
        leaf += L'.';
    } else {
        leaf.erase(dot + 1);
    }
    leaf += ext;
    return true;
}

bool path_t::operator<(const path_t& other) const {
    const auto prints_short = [](const model_t& model) {
        return pieces_t(model, model.components.size()).size() < long_path_length;
    };
    if (prints_short(path_) && prints_short(other.path_)) {
        return less_without_prefix(path_, other.path_);
    }
    // A long-path prefix on one side: printed into buffers kept per thread.
    thread_local std::wstring mine;
    thread_local std::wstring theirs;
    print_into(mine, path_, path_.components.size());
    print_into(theirs, other.path_, other.path_.components.size());
    return mine < theirs;
}

} // namespace velmor2
