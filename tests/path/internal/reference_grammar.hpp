// The path grammar written with a parser-combinator library, rule for rule, as the reference
// the hand-written parser is checked against. Slow and literal on purpose: every rule, choice
// and action is here as the grammar states it, and the combinators decide every corner
// (what a failed alternative leaves behind, where the cursor stops).
#pragma once

#include <velmor2/path.hpp>

#include <boost/spirit/include/classic.hpp>

#include <clocale>
#include <cwctype>
#include <string>

namespace velmor2::test {

namespace reference_detail {

namespace sc = boost::spirit::classic;

using model_t = _internal::path_internal_t<std::wstring>;
using iterator_t = const wchar_t*;
using scanner_t = sc::scanner<iterator_t>;
using rule_t = sc::rule<scanner_t>;

/// A drive letter was read with its colon.
struct abs_windows_match_t {
    model_t& model;
    void operator()(iterator_t, iterator_t) const {
        model.posix = false;
        model.absolute = true;
    }
};

/// One leading separator roots the path.
struct abs_posix_match_t {
    model_t& model;
    void operator()(iterator_t, iterator_t) const {
        model.windows = false;
        model.absolute = true;
    }
};

/// Two separators and a server name.
struct network_match_t {
    model_t& model;
    void operator()(iterator_t, iterator_t) const {
        model.posix = false;
        model.network = true;
        model.absolute = true;
    }
};

/// The `\\?\` prefix.
struct long_path_match_t {
    model_t& model;
    void operator()(iterator_t, iterator_t) const { model.posix = false; }
};

/// A relative start: the path began with a name, `.` or `..`.
struct relative_match_t {
    model_t& model;
    void operator()(iterator_t, iterator_t) const { model.relative = true; }
};

/// Every matched name becomes a component.
struct append_name_t {
    model_t& model;
    void operator()(iterator_t first, iterator_t last) const {
        model.components.emplace_back(first, last);
    }
};

} // namespace reference_detail

/// Parses like the library's `parse_path`, with the grammar built from combinators.
///
/// The drive letter is `alpha_p`, whose test (`iswalpha`) follows the process locale, while
/// the library takes ASCII letters only. Callers run the reference under the "C" locale (see
/// `c_locale_guard_t`), where glibc's `iswalpha` accepts exactly the ASCII letters. A C library
/// whose "C" locale still classifies other letters (the Windows one does) gets the ASCII
/// letters as a character set instead.
class reference_parser_t {
  public:
    explicit reference_parser_t(bool forbid_wildcards) {
        using namespace reference_detail;
        using namespace reference_detail::sc;

        separator = ch_p(L'\\') | ch_p(L'/');
        long_path_prefix = separator >> separator >> ch_p(L'?') >> separator;
        if (forbid_wildcards) {
            wildcard = ch_p(L'*') | ch_p(L'?');
        }
        invalid_char = ch_p(L'|') | ch_p(L'>') | ch_p(L'<') | ch_p(L':') | ch_p(L'"') | wildcard;
        name = (+(anychar_p - separator - invalid_char))[append_name_t{model_}];
        if (std::iswalpha(0xE9) == 0 && std::iswalpha(0x4E2D) == 0) {
            letter = alpha_p;
        } else {
            letter = chset_p(L"a-zA-Z");
        }
        drive_spec = letter[assign_a(model_.drive)] >> ch_p(L':');
        posix_root = separator >> !name;
        absolute_start =
            drive_spec[abs_windows_match_t{model_}] | posix_root[abs_posix_match_t{model_}];
        // Longest choice is `longest_d`: the library's `operator||` is a different thing
        // (a, b, or a followed by b), which would swallow a leading `.` without a name.
        relative_start = longest_d[str_p(L"..") | ch_p(L'.') | name][relative_match_t{model_}];
        network_start =
            (separator >> separator >> name[assign_a(model_.server)])[network_match_t{model_}];
        blank = ch_p(L' ') | ch_p(L'\t');
        path = *blank >> !long_path_prefix[long_path_match_t{model_}] >>
               (network_start | absolute_start | relative_start) >> *(*separator >> name) >>
               *separator >> *blank;
    }

    reference_parser_t(const reference_parser_t&) = delete;
    reference_parser_t& operator=(const reference_parser_t&) = delete;

    /// Same contract as `parse_path`: true when the whole trimmed text was consumed;
    /// `stop_position` is -1 then, else the index of the first character not consumed.
    bool parse(const std::wstring& text, reference_detail::model_t& out, int& stop_position) {
        model_ = reference_detail::model_t();
        model_.windows = model_.posix = true;
        const std::wstring::size_type first = text.find_first_not_of(L"'\"");
        const std::wstring trimmed =
            first == std::wstring::npos
                ? std::wstring()
                : text.substr(first, text.find_last_not_of(L"'\"") - first + 1);
        const wchar_t* begin = trimmed.c_str();
        const wchar_t* end = begin + trimmed.size();
        const auto info = boost::spirit::classic::parse(begin, end, path);
        stop_position = info.full ? -1 : static_cast<int>(info.stop - begin);
        out = model_;
        return info.full;
    }

  private:
    reference_detail::model_t model_;
    reference_detail::rule_t letter, separator, long_path_prefix, wildcard, invalid_char, name,
        drive_spec, posix_root, absolute_start, relative_start, network_start, blank, path;
};

/// Holds the "C" character classification for its lifetime (the reference's drive letter
/// test follows it), restoring the previous one after.
class c_locale_guard_t {
  public:
    c_locale_guard_t() : previous_(std::setlocale(LC_CTYPE, nullptr)) {
        std::setlocale(LC_CTYPE, "C");
    }
    ~c_locale_guard_t() { std::setlocale(LC_CTYPE, previous_.c_str()); }
    c_locale_guard_t(const c_locale_guard_t&) = delete;
    c_locale_guard_t& operator=(const c_locale_guard_t&) = delete;

  private:
    std::string previous_;
};

} // namespace velmor2::test
