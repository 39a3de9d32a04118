// path_t: the printed form and the texts taken from it.
#include "os/file_status.hpp"
#include "path/grammar.hpp"

#include <cwchar>

namespace velmor2 {
namespace {

using model_t = _internal::path_internal_t<std::wstring>;

constexpr std::size_t long_path_length = 248;
constexpr const wchar_t* long_path_prefix = L"\\\\?\\";

// Writes the printed form of the model's first `count` components to `out` (emptied first),
// the long-path prefix included. `out` is sized once, so printing allocates at most once.
void print_into(std::wstring& out, const model_t& model, std::size_t count) {
    out.clear();
    std::size_t length = std::wcslen(long_path_prefix) + model.drive.size() + 3;
    auto it = model.components.begin();
    for (std::size_t i = 0; i < count; ++i, ++it) {
        length += it->size() + 1;
    }
    out.reserve(length);

    it = model.components.begin();
    if (model.relative) {
        for (std::size_t i = 0; i < count; ++i, ++it) {
            if (i != 0) {
                out += L'\\';
            }
            out += *it;
        }
    } else if (model.absolute) {
        if (!model.windows) {
            if (model.posix && count == 0) {
                out += L'\\';
            }
        } else if (!model.network) {
            out += model.drive;
            out += L':';
            if (count == 0) {
                out += L'\\';
            }
        } else {
            out += L'\\';
        }
        for (std::size_t i = 0; i < count; ++i, ++it) {
            out += L'\\';
            out += *it;
        }
    }
    // Only a drive or server path can carry the prefix: on a rooted POSIX or a relative path
    // Windows would misread it, and parsing the text again would give another path.
    if (out.size() >= long_path_length && model.windows && model.absolute) {
        out.insert(0, long_path_prefix);
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
    // Printed into buffers kept per thread: ordering a list of paths allocates nothing.
    thread_local std::wstring mine;
    thread_local std::wstring theirs;
    print_into(mine, path_, path_.components.size());
    print_into(theirs, other.path_, other.path_.components.size());
    return mine < theirs;
}

} // namespace velmor2
