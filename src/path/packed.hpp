// path_t keeps its model packed into one wide string: a path costs one allocation and its
// texts sit together, where a list of names costs two allocations a name (docs/performance.md,
// "Paths kept"). The layout, each length in two 16-bit units (so that it fits 16-bit wchar_t):
//
//   [flags] [drive length][drive] [server length][server] [count] ([name length][name])...
//
// The empty path packs to the empty string. Operations that rewrite names (normalize,
// to_lower, change_ext, get_relative) unpack into the parser's model and pack again.
#pragma once

#include "path/grammar.hpp"

#include <velmor2/path.hpp>

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <list>
#include <string>
#include <string_view>

namespace velmor2::_internal {

/// The fields of a packed path, read in place.
class packed_view_t {
  public:
    /// The names in order, as views into the packed text.
    class iterator {
      public:
        using iterator_category = std::forward_iterator_tag;
        using value_type = std::wstring_view;
        using difference_type = std::ptrdiff_t;
        using pointer = const std::wstring_view*;
        using reference = std::wstring_view;

        explicit iterator(const wchar_t* at) : at_(at) {}
        std::wstring_view operator*() const { return {at_ + 2, length_at(at_)}; }
        iterator& operator++() {
            at_ += 2 + length_at(at_);
            return *this;
        }
        bool operator==(const iterator& other) const { return at_ == other.at_; }
        bool operator!=(const iterator& other) const { return at_ != other.at_; }

      private:
        const wchar_t* at_;
    };

    explicit packed_view_t(const std::wstring& packed);

    bool relative = false;
    bool windows = false;
    bool posix = false;
    bool absolute = false;
    bool network = false;
    std::wstring_view drive;
    std::wstring_view server;
    /// The number of names.
    std::size_t count = 0;

    iterator begin() const { return iterator(names_); }
    iterator end() const { return iterator(end_); }
    /// The names as they are packed (each a length and its text).
    std::wstring_view names() const { return {names_, static_cast<std::size_t>(end_ - names_)}; }
    /// The last name; empty when there is none.
    std::wstring_view back() const;

    /// The length stored at `at` (two units).
    static std::size_t length_at(const wchar_t* at) {
        return static_cast<std::size_t>(static_cast<std::uint16_t>(at[0])) |
               static_cast<std::size_t>(static_cast<std::uint16_t>(at[1])) << 16;
    }

  private:
    const wchar_t* names_ = nullptr;
    const wchar_t* end_ = nullptr;
};

/// Packs the flags, drive and server of `model` (the model or the parser's spans) and the
/// names [first, last) into `out` (replaced), allocating once.
template <typename Model, typename Names>
void pack(const Model& model, Names first, Names last, std::wstring& out);

/// Packs `model` into `out`.
inline void pack(const path_internal_t<std::wstring>& model, std::wstring& out) {
    pack(model, model.components.begin(), model.components.end(), out);
}

/// Packs the parser's spans into `out`.
inline void pack(const path_spans_t& spans, std::wstring& out) {
    pack(spans, spans.components, spans.components + spans.count, out);
}

/// The model of a packed path.
void unpack(const std::wstring& packed, path_internal_t<std::wstring>& out);

/// True when two packed paths of equal size have the same flags and the same lengths of
/// drive, server and every name (so their texts sit at the same places).
bool same_layout(const std::wstring& a, const std::wstring& b);

/// Adds the names [first, last) (each convertible to `std::wstring_view`) after the names of
/// the non-empty packed path `packed`, allocating once.
template <typename Names>
void append_names(std::wstring& packed, Names first, Names last);

/// Whether a path of these fields prints as the empty string: a relative path without names or
/// with one empty name, a path without root, or a POSIX root without names whose POSIX reading
/// was cleared (`\\?\/`). The long-path prefix never stands alone.
inline bool prints_empty(bool relative, bool absolute, bool windows, bool posix, std::size_t count,
                         bool first_name_empty) {
    if (relative) {
        return count == 0 || (count == 1 && first_name_empty);
    }
    return !absolute || (!windows && !posix && count == 0);
}

/// Writes the length `n` as two units.
inline void put_length(std::wstring& out, std::size_t n) {
    out += static_cast<wchar_t>(n & 0xFFFF);
    out += static_cast<wchar_t>((n >> 16) & 0xFFFF);
}

constexpr unsigned flag_relative = 1;
constexpr unsigned flag_windows = 2;
constexpr unsigned flag_posix = 4;
constexpr unsigned flag_absolute = 8;
constexpr unsigned flag_network = 16;

/// Writes a length and its text.
inline void put_text(std::wstring& out, std::wstring_view text) {
    put_length(out, text.size());
    out.append(text.data(), text.size());
}

template <typename Model, typename Names>
void pack(const Model& model, Names first, Names last, std::wstring& out) {
    const bool any_flag =
        model.relative || model.windows || model.posix || model.absolute || model.network;
    if (!any_flag && first == last && model.drive.empty() && model.server.empty()) {
        out.clear();
        return;
    }
    std::size_t size = 1 + 2 + model.drive.size() + 2 + model.server.size() + 2;
    std::size_t count = 0;
    for (Names it = first; it != last; ++it, ++count) {
        size += 2 + std::wstring_view(*it).size();
    }
    // Sized from empty, so the buffer is exactly as large as the packed text.
    std::wstring packed;
    packed.reserve(size);
    packed += static_cast<wchar_t>((model.relative ? flag_relative : 0u) |
                                   (model.windows ? flag_windows : 0u) |
                                   (model.posix ? flag_posix : 0u) |
                                   (model.absolute ? flag_absolute : 0u) |
                                   (model.network ? flag_network : 0u));
    put_text(packed, model.drive);
    put_text(packed, model.server);
    put_length(packed, count);
    for (Names it = first; it != last; ++it) {
        put_text(packed, *it);
    }
    out.swap(packed);
}

template <typename Names>
void append_names(std::wstring& packed, Names first, Names last) {
    const packed_view_t view(packed);
    std::size_t added = 0;
    std::size_t size = packed.size();
    for (Names it = first; it != last; ++it) {
        ++added;
        size += 2 + std::wstring_view(*it).size();
    }
    std::wstring out;
    out.reserve(size);
    // Everything before the count, the new count, the old names, the new ones.
    const std::size_t head = 1 + 2 + view.drive.size() + 2 + view.server.size();
    out.append(packed, 0, head);
    put_length(out, view.count + added);
    out.append(packed, head + 2, std::wstring::npos);
    for (Names it = first; it != last; ++it) {
        const std::wstring_view name(*it);
        put_length(out, name.size());
        out.append(name.data(), name.size());
    }
    packed.swap(out);
}

} // namespace velmor2::_internal
