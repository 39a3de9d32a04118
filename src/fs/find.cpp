// Finding files by wildcard, and matching a path against a wildcard.
#include "fs/entry_path.hpp"
#include "path/wildcard.hpp"
#include "os/fs.hpp"

#include <velmor2/file_system.hpp>

namespace velmor2 {
namespace {

namespace os = _internal::os;

// path_t prints texts shorter than this without the long-path prefix (which starts at 248);
// longer entry paths are printed by path_t itself.
constexpr std::size_t short_text_limit = 240;

// One search: the pattern parsed once, the matches gathered in search order.
class finder_t {
  public:
    finder_t(const std::wstring& pattern, bool recursive, std::vector<path_t>& found)
        : pattern_(pattern), recursive_(recursive), found_(found) {}

    void search(const path_t& dir) {
        const std::wstring dir_text = dir.as_string();
        if (!dir_text.empty() && path_t::exists(dir_text)) {
            walk(dir, dir_text);
        }
    }

  private:
    // Sub-directories come here straight from their parent's enumeration, which has just said
    // they are directories; one that vanished since then simply cannot be opened.
    void walk(const path_t& dir, const std::wstring& dir_text) {
        os::directory_search_t entries(dir_text);
        if (!entries.is_open()) {
            return;
        }
        // Matching is against the full text, as path_t::match of each entry path would do,
        // with the wildcard prepared once for the directory.
        path_t full_pattern(dir);
        full_pattern.append(pattern_);
        const _internal::wildcard_t wildcard(full_pattern.as_string());

        // An entry's text is the directory's text, a separator and the name, built in one
        // buffer instead of printing a path per entry.
        const bool fast = dir_text.size() < short_text_limit;
        std::wstring text = dir_text;
        if (text.back() != path_t::get_separator_char()) {
            text += path_t::get_separator_char();
        }
        const std::size_t base_size = text.size();
        // The directory's part of every entry text is compared with the pattern once here.
        const std::size_t known = wildcard.literal_prefix(text);

        os::directory_entry_t entry;
        while (entries.next(entry)) {
            if (entry.name == L"." || entry.name == L"..") {
                continue;
            }
            if (entry.type == os::entry_type_t::directory) {
                path_t child(dir);
                if (recursive_ && _internal::append_entry(child, entry.name)) {
                    walk(child, child.as_string());
                }
                continue;
            }
            text.resize(base_size);
            text += entry.name;
            if (!fast || text.size() >= short_text_limit) {
                add_if_match(dir, entry, wildcard);
                continue;
            }
            // The entry type is certain for plain files; a link is judged by its target and a
            // linked directory is neither listed nor entered.
            if (entry.type == os::entry_type_t::link && path_t::is_directory(text)) {
                continue;
            }
            if (wildcard.match(text, known)) {
                path_t child(dir);
                if (_internal::append_entry(child, entry.name)) {
                    found_.push_back(std::move(child));
                }
            }
        }
    }

  private:
    // The slow way for long texts: print the entry path itself.
    void add_if_match(const path_t& dir, const os::directory_entry_t& entry,
                      const _internal::wildcard_t& wildcard) {
        path_t child(dir);
        if (!_internal::append_entry(child, entry.name)) {
            return;
        }
        const std::wstring text = child.as_string();
        if (entry.type == os::entry_type_t::link && path_t::is_directory(text)) {
            return;
        }
        if (wildcard.match(text)) {
            found_.push_back(std::move(child));
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
    return file.match(pattern.as_string());
}

} // namespace velmor2
