// path_t: the printed form and the texts taken from it.
#include "os/file_status.hpp"
#include "path/grammar.hpp"

namespace velmor2 {
namespace {

using model_t = _internal::path_internal_t<std::wstring>;

constexpr std::size_t long_path_length = 248;
constexpr const wchar_t* long_path_prefix = L"\\\\?\\";

// The printed form of the model's first `count` components, before the long-path rule.
std::wstring print(const model_t& model, std::size_t count) {
    std::wstring out;
    auto it = model.components.begin();
    if (model.relative) {
        for (std::size_t i = 0; i < count; ++i, ++it) {
            if (i != 0) {
                out += L'\\';
            }
            out += *it;
        }
        return out;
    }
    if (!model.absolute) {
        return out;
    }
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
    return out;
}

std::wstring with_long_prefix(std::wstring text) {
    if (text.size() >= long_path_length) {
        text.insert(0, long_path_prefix);
    }
    return text;
}

} // namespace

std::wstring path_t::as_string() const {
    return with_long_prefix(print(path_, path_.components.size()));
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
    return with_long_prefix(print(path_, count - 1));
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

} // namespace velmor2
