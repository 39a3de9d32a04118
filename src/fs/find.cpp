// Finding files by wildcard, and matching a path against a wildcard.
#include "fs/entry_path.hpp"
#include "fs/tree_walk.hpp"
#include "path/wildcard.hpp"
#include "os/fs.hpp"

#include <velmor2/file_system.hpp>

namespace velmor2 {
namespace {

namespace os = _internal::os;

// The printed text without the long-path prefix, which only tells Windows how to read a long
// text and must never decide a match: a pattern and a path on either side of the length at
// which it starts would otherwise never match.
std::wstring match_text(const path_t& path) {
    static const std::wstring prefix = L"\\\\?\\";
    std::wstring text = path.as_string();
    if (text.compare(0, prefix.size(), prefix) == 0) {
        text.erase(0, prefix.size());
    }
    return text;
}

// One search: the pattern parsed once, the matches gathered in search order.
class finder_t {
  public:
    finder_t(const std::wstring& pattern, bool recursive, std::vector<path_t>& found)
        : pattern_(pattern), recursive_(recursive), found_(found) {}

    void search(const path_t& dir) {
        const std::wstring dir_text = dir.as_string();
        os::directory_t entries;
        if (!dir_text.empty() && path_t::exists(dir_text) && entries.open(dir_text, true)) {
            walk(dir, entries, 0);
        }
    }

  private:
    // Sub-directories are opened relative to their parent, never through a link.
    void walk(const path_t& dir, os::directory_t& entries, std::size_t depth) {
        // Matching is against the full text, as path_t::match of each entry path would do,
        // with the wildcard prepared once for the directory.
        path_t full_pattern(dir);
        full_pattern.append(pattern_);
        const _internal::wildcard_t wildcard(match_text(full_pattern));

        // An entry's text is the directory's text, a separator and the name, built in one
        // buffer instead of printing a path per entry.
        std::wstring text = match_text(dir);
        if (text.back() != path_t::get_separator_char()) {
            text += path_t::get_separator_char();
        }
        const std::size_t base_size = text.size();
        // The directory's part of every entry text is compared with the pattern once here.
        const std::size_t known = wildcard.literal_prefix(text);

        os::directory_entry_t entry;
        while (entries.next(entry)) {
            if (entry.type == os::entry_type_t::directory) {
                path_t child(dir);
                os::directory_t sub;
                if (recursive_ && _internal::append_entry(child, entry.name) &&
                    sub.open(entries, entry.native)) {
                    const bool release = depth + 1 >= _internal::open_levels;
                    if (release) {
                        entries.release();
                    }
                    walk(child, sub, depth + 1);
                    if (release && !entries.reacquire(sub)) {
                        return;
                    }
                }
                continue;
            }
            // A link is judged by its target: a linked directory is neither listed nor entered.
            if (entry.type == os::entry_type_t::link && entries.leads_to_directory(entry.native)) {
                continue;
            }
            text.resize(base_size);
            text += entry.name;
            if (wildcard.match(text, known)) {
                path_t child(dir);
                if (_internal::append_entry(child, entry.name)) {
                    found_.push_back(std::move(child));
                }
            }
        }
    }

    const path_t pattern_;
    const bool recursive_;
    std::vector<path_t>& found_;
};

} // namespace

std::vector<path_t> find_files(const path_t& dir, const std::wstring& pattern, bool recursive) {
    std::vector<path_t> found;
    finder_t(pattern, recursive, found).search(dir);
    return found;
}

bool match_pattern(const path_t& pattern, const path_t& file) {
    return _internal::wildcard_t(match_text(pattern)).match(match_text(file));
}

} // namespace velmor2
