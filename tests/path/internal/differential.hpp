// Runs the library's parser and the reference grammar on one text and says how they differ.
#pragma once

#include "path/grammar.hpp"
#include "path/internal/reference_grammar.hpp"
#include "path/packed.hpp"

#include <cstdio>
#include <sstream>
#include <string>

namespace velmor2::test {

/// The text with every character outside printable ASCII written as `\u{hex}`.
inline std::string escaped(const std::wstring& text) {
    std::string out;
    for (wchar_t c : text) {
        if (c >= 0x20 && c < 0x7f) {
            out += static_cast<char>(c);
        } else {
            char buffer[16];
            std::snprintf(buffer, sizeof(buffer), "\\u{%x}", static_cast<unsigned>(c));
            out += buffer;
        }
    }
    return out;
}

/// The two parsers of one wildcard setting, checked against each other.
class differential_t {
  public:
    explicit differential_t(bool forbid_wildcards)
        : forbid_wildcards_(forbid_wildcards), reference_(forbid_wildcards) {}

    /// Empty when both parsers give the same result, stop position and model field by field;
    /// otherwise a description of every difference.
    std::string difference(const std::wstring& text) {
        _internal::path_internal_t<std::wstring> mine;
        _internal::path_internal_t<std::wstring> theirs;
        int my_stop = -2;
        int their_stop = -2;
        const bool my_result = _internal::parse_path(text, mine, forbid_wildcards_, my_stop);
        const bool their_result = reference_.parse(text, theirs, their_stop);

        std::ostringstream out;
        const auto field = [&out](const char* what, const auto& a, const auto& b) {
            if (!(a == b)) {
                out << ' ' << what;
            }
        };
        field("result", my_result, their_result);
        field("stop", my_stop, their_stop);
        field("components", mine.components, theirs.components);
        field("relative", mine.relative, theirs.relative);
        field("windows", mine.windows, theirs.windows);
        field("posix", mine.posix, theirs.posix);
        field("drive", mine.drive, theirs.drive);
        field("server", mine.server, theirs.server);
        field("absolute", mine.absolute, theirs.absolute);
        field("network", mine.network, theirs.network);
        if (!forbid_wildcards_) {
            // The constructors' parse into places in the text must pack to the same path.
            _internal::path_spans_t spans;
            bool complete = false;
            const bool spans_result =
                _internal::parse_path(text.data(), text.data() + text.size(), spans, complete);
            std::wstring packed_spans;
            std::wstring packed_model;
            if (spans_result && complete) {
                _internal::pack(spans, packed_spans);
                _internal::pack(mine, packed_model);
            }
            field("spans", spans_result, my_result);
            field("packed", packed_spans, packed_model);
        }
        if (out.tellp() == 0) {
            return {};
        }
        out << " | text [" << escaped(text) << "] forbid_wildcards=" << forbid_wildcards_
            << " | hand: " << describe(my_result, my_stop, mine)
            << " | reference: " << describe(their_result, their_stop, theirs);
        return out.str();
    }

  private:
    static std::string describe(bool result, int stop,
                                const _internal::path_internal_t<std::wstring>& model) {
        std::ostringstream out;
        out << result << " stop=" << stop << " components={";
        for (const std::wstring& component : model.components) {
            out << '[' << escaped(component) << ']';
        }
        out << "} rel=" << model.relative << " win=" << model.windows << " posix=" << model.posix
            << " drive=[" << escaped(model.drive) << "] server=[" << escaped(model.server)
            << "] abs=" << model.absolute << " net=" << model.network;
        return out.str();
    }

    bool forbid_wildcards_;
    reference_parser_t reference_;
};

} // namespace velmor2::test
