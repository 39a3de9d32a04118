// Directory and file operations through the Win32 file calls.
#include "os/fs.hpp"

#include <vector>
#include <windows.h>

namespace velmor2::_internal::os {
namespace {

// Symbolic links and junctions; other reparse points (cloud placeholders, deduplicated files)
// are ordinary files and directories to a walk.
bool is_link_data(const WIN32_FIND_DATAW& data) {
    return (data.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0 &&
           (data.dwReserved0 == IO_REPARSE_TAG_SYMLINK ||
            data.dwReserved0 == IO_REPARSE_TAG_MOUNT_POINT);
}

// A NUL would cut the text short and name another entry.
bool holds_nul(const std::wstring& text) {
    return text.find(L'\0') != std::wstring::npos;
}

// `dir` joined with `name`, in the long form once it is too long for the plain one.
std::wstring join(const std::wstring& dir, const std::wstring& name) {
    std::wstring child = dir;
    if (!child.empty() && child.back() != L'\\') {
        child += L'\\';
    }
    child += name;
    if (child.size() >= MAX_PATH - 12 && child.size() > 2 && child[1] == L':') {
        child.insert(0, L"\\\\?\\");
    }
    return child;
}

// The final path of an existing directory, links resolved, in lower case.
std::wstring final_path(const std::wstring& text) {
    const HANDLE h =
        CreateFileW(text.c_str(), 0, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                    nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
    if (h == INVALID_HANDLE_VALUE) {
        return std::wstring();
    }
    std::wstring out(32768, L'\0');
    const DWORD length = GetFinalPathNameByHandleW(h, &out[0], static_cast<DWORD>(out.size()), 0);
    CloseHandle(h);
    out.resize(length < out.size() ? length : 0);
    CharLowerBuffW(&out[0], static_cast<DWORD>(out.size()));
    return out;
}

} // namespace

bool create_directory(const std::wstring& text, error_kind_t& error) {
    if (holds_nul(text)) {
        error = error_kind_t::bad_name;
        return false;
    }
    if (CreateDirectoryW(text.c_str(), nullptr)) {
        error = error_kind_t::none;
        return true;
    }
    error = last_error();
    return false;
}

bool remove_directory(const std::wstring& text) {
    return !holds_nul(text) && RemoveDirectoryW(text.c_str()) != 0;
}

bool delete_file(const std::wstring& text) {
    return !holds_nul(text) && DeleteFileW(text.c_str()) != 0;
}

bool entry_exists(const std::wstring& text) {
    // The attributes are those of a link itself, never of its target.
    return !holds_nul(text) && GetFileAttributesW(text.c_str()) != INVALID_FILE_ATTRIBUTES;
}

bool is_link(const std::wstring& text) {
    // The search call would read `*` and `?` as wildcards; no real name holds them.
    if (text.find_first_of(L"*?") != std::wstring::npos || holds_nul(text)) {
        return false;
    }
    WIN32_FIND_DATAW data;
    const HANDLE handle = FindFirstFileW(text.c_str(), &data);
    if (handle == INVALID_HANDLE_VALUE) {
        return false;
    }
    FindClose(handle);
    return is_link_data(data);
}

bool remove_link(const std::wstring& text) {
    // A directory link is removed as a directory, which leaves its target alone.
    const DWORD attributes = GetFileAttributesW(text.c_str());
    if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0) {
        return RemoveDirectoryW(text.c_str()) != 0;
    }
    return DeleteFileW(text.c_str()) != 0;
}

bool copy_file(const std::wstring& from, const std::wstring& to) {
    // Fail-if-exists keeps an existing target safe even if it appears after the caller's check.
    return !holds_nul(from) && !holds_nul(to) && CopyFileW(from.c_str(), to.c_str(), TRUE) != 0;
}

bool move_entry(const std::wstring& from, const std::wstring& to) {
    return !holds_nul(from) && !holds_nul(to) && MoveFileW(from.c_str(), to.c_str()) != 0;
}

bool is_same_or_inside(const std::wstring& inner, const std::wstring& outer) {
    const std::wstring in = final_path(inner);
    const std::wstring out = final_path(outer);
    return !in.empty() && !out.empty() && in.compare(0, out.size(), out) == 0 &&
           (in.size() == out.size() || in[out.size()] == L'\\' || out.back() == L'\\');
}

struct directory_t::state_t {
    std::wstring text;
    std::vector<directory_entry_t> entries;
    std::size_t next = 0;

    // Reads all entries of the directory `dir` at once: the walks change it as they go.
    bool take(const std::wstring& dir) {
        text = dir;
        WIN32_FIND_DATAW data;
        const HANDLE search = FindFirstFileW(join(dir, L"*").c_str(), &data);
        if (search == INVALID_HANDLE_VALUE) {
            return false;
        }
        do {
            directory_entry_t entry;
            entry.name = data.cFileName;
            if (entry.name == L"." || entry.name == L"..") {
                continue;
            }
            entry.native = entry.name;
            entry.type = is_link_data(data) ? entry_type_t::link
                         : (data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0
                             ? entry_type_t::directory
                             : entry_type_t::file;
            entries.push_back(std::move(entry));
        } while (FindNextFileW(search, &data));
        FindClose(search);
        return true;
    }
};

directory_t::directory_t() : state_(new state_t) {}

directory_t::~directory_t() = default;

bool directory_t::open(const std::wstring& text, bool follow_link) {
    return !holds_nul(text) && (follow_link || !is_link(text)) && state_->take(text);
}

bool directory_t::open(const directory_t& parent, const native_name_t& name) {
    const std::wstring child = join(parent.state_->text, name);
    const DWORD attributes = GetFileAttributesW(child.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0 &&
           !is_link(child) && state_->take(child);
}

bool directory_t::next(directory_entry_t& entry) {
    if (state_->next >= state_->entries.size()) {
        return false;
    }
    entry = std::move(state_->entries[state_->next++]);
    return true;
}

// Entries are reached by their full names here: nothing stays open between calls.
void directory_t::release() {}

bool directory_t::reacquire(const directory_t&) {
    return true;
}

bool directory_t::leads_to_directory(const native_name_t& name) const {
    const DWORD attributes = GetFileAttributesW(join(state_->text, name).c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

void directory_t::make_writable() {
    SetFileAttributesW(state_->text.c_str(), FILE_ATTRIBUTE_NORMAL);
}

bool directory_t::remove(const native_name_t& name, entry_type_t type) {
    const std::wstring child = join(state_->text, name);
    switch (type) {
    case entry_type_t::link:
        return remove_link(child);
    case entry_type_t::directory:
        return RemoveDirectoryW(child.c_str()) != 0;
    default:
        // The read-only flag would refuse the delete.
        SetFileAttributesW(child.c_str(), FILE_ATTRIBUTE_NORMAL);
        return DeleteFileW(child.c_str()) != 0;
    }
}

bool directory_t::create_directory(const native_name_t& name) {
    return CreateDirectoryW(join(state_->text, name).c_str(), nullptr) != 0;
}

bool directory_t::copy_file(const native_name_t& name, const directory_t& target) const {
    return velmor2::_internal::os::copy_file(join(state_->text, name),
                                             join(target.state_->text, name));
}

bool directory_t::copy_link(const native_name_t& name, const directory_t& target) const {
    return CopyFileExW(join(state_->text, name).c_str(), join(target.state_->text, name).c_str(),
                       nullptr, nullptr, nullptr,
                       COPY_FILE_COPY_SYMLINK | COPY_FILE_FAIL_IF_EXISTS) != 0;
}

} // namespace velmor2::_internal::os
