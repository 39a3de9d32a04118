// Hand-written recursive descent over the path grammar.
//
//   path           = blank* [long_prefix] (network_start | absolute_start | relative_start)
//                    (separator* name)* separator* blank*
//   long_prefix    = separator separator '?' separator
//   network_start  = separator separator name          (UNC: server = name)
//   absolute_start = letter ':' | separator [name]     (drive | POSIX root)
//   relative_start = ".." || "." || name                (name always wins: it matches as much)
//   name           = (any - separator - '|' '>' '<' ':' '"' [wildcard])+
//
// Choices are ordered and never revisited, and actions are not undone when a choice fails:
// the letter of a failed drive is kept (`usr/lib` leaves drive `u`). Where the parse fails
// outright, the stop position is where a combinator parser leaves its cursor: one past an
// invalid first character.
#include "path/grammar.hpp"

namespace velmor2::_internal {
namespace {

bool is_separator(wchar_t c) {
    return c == L'\\' || c == L'/';
}
bool is_blank(wchar_t c) {
    return c == L' ' || c == L'\t';
}
bool is_letter(wchar_t c) {
    return (c >= L'a' && c <= L'z') || (c >= L'A' && c <= L'Z');
}

// The parser's actions on the model: names appended to the list.
class model_out_t {
  public:
    explicit model_out_t(path_internal_t<std::wstring>& model) : model_(model) {}

    bool add_name(const wchar_t* first, const wchar_t* last) {
        model_.components.emplace_back(first, last);
        return true;
    }
    void set_server(const wchar_t* first, const wchar_t* last) { model_.server.assign(first, last); }
    void set_drive(const wchar_t* letter) { model_.drive.assign(1, *letter); }
    path_internal_t<std::wstring>& flags() { return model_; }

  private:
    path_internal_t<std::wstring>& model_;
};

// The parser's actions on places in the text; refused past the capacity for names.
class spans_out_t {
  public:
    explicit spans_out_t(path_spans_t& spans) : spans_(spans) {}

    bool add_name(const wchar_t* first, const wchar_t* last) {
        if (spans_.count == path_spans_t::capacity) {
            return false;
        }
        spans_.components[spans_.count++] = {first, static_cast<std::size_t>(last - first)};
        return true;
    }
    void set_server(const wchar_t* first, const wchar_t* last) {
        spans_.server = std::wstring_view(first, last - first);
    }
    void set_drive(const wchar_t* letter) { spans_.drive = std::wstring_view(letter, 1); }
    path_spans_t& flags() { return spans_; }

  private:
    path_spans_t& spans_;
};

template <typename Out> class parser_t {
  public:
    parser_t(const wchar_t* begin, const wchar_t* end, Out out, bool forbid_wildcards)
        : p_(begin), end_(end), out_(out), forbid_wildcards_(forbid_wildcards) {}

    // False when the output could take no more names.
    bool complete() const { return complete_; }

    // Runs the `path` rule; false when its start fails. `p_` is left where the rule stopped.
    bool parse() {
        while (p_ != end_ && is_blank(*p_)) {
            ++p_;
        }
        if (long_prefix()) {
            out_.flags().posix = false;
        }
        if (!network_start() && !absolute_start() && !relative_start()) {
            return false;
        }
        for (;;) {
            const wchar_t* save = p_;
            skip_separators();
            if (!name()) {
                p_ = save;
                break;
            }
        }
        skip_separators();
        while (p_ != end_ && is_blank(*p_)) {
            ++p_;
        }
        return true;
    }

    const wchar_t* position() const { return p_; }

  private:
    bool is_name_char(wchar_t c) const {
        switch (c) {
        case L'\\':
        case L'/':
        case L'|':
        case L'>':
        case L'<':
        case L':':
        case L'"':
            return false;
        case L'*':
        case L'?':
            return !forbid_wildcards_;
        default:
            return true;
        }
    }

    void skip_separators() {
        while (p_ != end_ && is_separator(*p_)) {
            ++p_;
        }
    }

    // The name rule with its action. A failure on a character that is not a name character
    // consumes it, as the combinator's difference parser does.
    bool name() {
        const wchar_t* start = p_;
        while (p_ != end_ && is_name_char(*p_)) {
            ++p_;
        }
        if (p_ == start) {
            if (p_ != end_) {
                ++p_;
            }
            return false;
        }
        complete_ = out_.add_name(start, p_) && complete_;
        return true;
    }

    bool long_prefix() {
        if (end_ - p_ >= 4 && is_separator(p_[0]) && is_separator(p_[1]) && p_[2] == L'?' &&
            is_separator(p_[3])) {
            p_ += 4;
            return true;
        }
        return false;
    }

    bool network_start() {
        const wchar_t* save = p_;
        if (end_ - p_ >= 2 && is_separator(p_[0]) && is_separator(p_[1])) {
            p_ += 2;
            const wchar_t* start = p_;
            if (name()) {
                out_.set_server(start, p_);
                out_.flags().posix = false;
                out_.flags().network = true;
                out_.flags().absolute = true;
                return true;
            }
        }
        p_ = save;
        return false;
    }

    bool absolute_start() {
        if (p_ != end_ && is_letter(*p_)) {
            out_.set_drive(p_);
            if (end_ - p_ >= 2 && p_[1] == L':') {
                p_ += 2;
                out_.flags().posix = false;
                out_.flags().absolute = true;
                return true;
            }
        }
        if (p_ != end_ && is_separator(*p_)) {
            ++p_;
            const wchar_t* save = p_;
            if (!name()) {
                p_ = save;
            }
            out_.flags().windows = false;
            out_.flags().absolute = true;
            return true;
        }
        return false;
    }

    bool relative_start() {
        if (!name()) {
            return false;
        }
        out_.flags().relative = true;
        return true;
    }

    const wchar_t* p_;
    const wchar_t* end_;
    Out out_;
    bool forbid_wildcards_;
    bool complete_ = true;
};

bool is_quote(wchar_t c) {
    return c == L'\'' || c == L'"';
}

// Trims the quotes and runs the parser; the flags must have been reset.
template <typename Out>
bool run_parser(const wchar_t* begin, const wchar_t* end, Out out, bool forbid_wildcards,
                int& stop_position, bool& complete) {
    while (begin != end && is_quote(*begin)) {
        ++begin;
    }
    while (end != begin && is_quote(end[-1])) {
        --end;
    }
    parser_t<Out> parser(begin, end, out, forbid_wildcards);
    const bool hit = parser.parse();
    complete = parser.complete();
    if (hit && parser.position() == end) {
        stop_position = -1;
        return true;
    }
    stop_position = static_cast<int>(parser.position() - begin);
    return false;
}

} // namespace

path_internal_t<std::wstring> name_model(const std::wstring& name) {
    path_internal_t<std::wstring> model;
    model.components.push_back(name);
    model.relative = model.windows = model.posix = true;
    if (!name.empty() && is_letter(name[0])) {
        model.drive.assign(1, name[0]);
    }
    return model;
}

bool parse_path(const std::wstring& text, path_internal_t<std::wstring>& out, bool forbid_wildcards,
                int& stop_position) {
    return parse_path(text.data(), text.data() + text.size(), out, forbid_wildcards, stop_position);
}

bool parse_path(const wchar_t* begin, const wchar_t* end, path_internal_t<std::wstring>& out,
                bool forbid_wildcards, int& stop_position) {
    out.components.clear();
    out.relative = out.absolute = out.network = false;
    out.drive.clear();
    out.server.clear();
    out.windows = out.posix = true;
    bool complete;
    return run_parser(begin, end, model_out_t(out), forbid_wildcards, stop_position, complete);
}

bool parse_path(const wchar_t* begin, const wchar_t* end, path_spans_t& out, bool& complete) {
    out.relative = out.absolute = out.network = false;
    out.windows = out.posix = true;
    out.drive = out.server = std::wstring_view();
    out.count = 0;
    int stop_position;
    return run_parser(begin, end, spans_out_t(out), false, stop_position, complete);
}

} // namespace velmor2::_internal
