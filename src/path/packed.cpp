// Packing and unpacking the path model.
#include "path/packed.hpp"

namespace velmor2::_internal {
namespace {

// The text stored at `at` (a length and its characters); `at` moves past it.
std::wstring_view take_text(const wchar_t*& at) {
    const std::wstring_view text(at + 2, packed_view_t::length_at(at));
    at += 2 + text.size();
    return text;
}

} // namespace

packed_view_t::packed_view_t(const std::wstring& packed) {
    if (packed.empty()) {
        return;
    }
    const auto flags = static_cast<unsigned>(packed[0]);
    relative = (flags & flag_relative) != 0;
    windows = (flags & flag_windows) != 0;
    posix = (flags & flag_posix) != 0;
    absolute = (flags & flag_absolute) != 0;
    network = (flags & flag_network) != 0;
    const wchar_t* at = packed.data() + 1;
    drive = take_text(at);
    server = take_text(at);
    count = length_at(at);
    names_ = at + 2;
    end_ = packed.data() + packed.size();
}

std::wstring_view packed_view_t::back() const {
    std::wstring_view last;
    for (const std::wstring_view name : *this) {
        last = name;
    }
    return last;
}

bool same_layout(const std::wstring& a, const std::wstring& b) {
    if (a.empty() || a[0] != b[0]) {
        return a.empty() && b.empty();
    }
    const wchar_t* p = a.data() + 1;
    const wchar_t* q = b.data() + 1;
    const auto same_length = [&p, &q] {
        const std::size_t n = packed_view_t::length_at(p);
        if (n != packed_view_t::length_at(q)) {
            return false;
        }
        p += 2 + n;
        q += 2 + n;
        return true;
    };
    if (!same_length() || !same_length() || packed_view_t::length_at(p) != packed_view_t::length_at(q)) {
        return false;
    }
    const std::size_t count = packed_view_t::length_at(p);
    p += 2;
    q += 2;
    for (std::size_t i = 0; i < count; ++i) {
        if (!same_length()) {
            return false;
        }
    }
    return true;
}

void unpack(const std::wstring& packed, path_internal_t<std::wstring>& out) {
    const packed_view_t view(packed);
    out.relative = view.relative;
    out.windows = view.windows;
    out.posix = view.posix;
    out.absolute = view.absolute;
    out.network = view.network;
    out.drive.assign(view.drive);
    out.server.assign(view.server);
    out.components.clear();
    for (const std::wstring_view name : view) {
        out.components.emplace_back(name);
    }
}

} // namespace velmor2::_internal
