// Directory and file operations through the Win32 file calls.
#include "os/fs.hpp"

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

} // namespace

bool create_directory(const std::wstring& text, error_kind_t& error) {
    if (CreateDirectoryW(text.c_str(), nullptr)) {
        error = error_kind_t::none;
        return true;
    }
    error = last_error();
    return false;
}

bool remove_directory(const std::wstring& text) {
    return RemoveDirectoryW(text.c_str()) != 0;
}

bool delete_file(const std::wstring& text) {
    return DeleteFileW(text.c_str()) != 0;
}

bool is_link(const std::wstring& text) {
    // The search call would read `*` and `?` as wildcards; no real name holds them.
    if (text.find_first_of(L"*?") != std::wstring::npos) {
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

bool reset_attributes(const std::wstring& text) {
    return SetFileAttributesW(text.c_str(), FILE_ATTRIBUTE_NORMAL) != 0;
}

bool copy_file(const std::wstring& from, const std::wstring& to) {
    // Fail-if-exists keeps an existing target safe even if it appears after the caller's check.
    return CopyFileW(from.c_str(), to.c_str(), TRUE) != 0;
}

bool move_entry(const std::wstring& from, const std::wstring& to) {
    return MoveFileW(from.c_str(), to.c_str()) != 0;
}

struct directory_search_t::state_t {
    HANDLE handle = INVALID_HANDLE_VALUE;
    WIN32_FIND_DATAW data = {};
    // FindFirstFileW already holds the first entry.
    bool pending = false;
};

directory_search_t::directory_search_t(const std::wstring& text) : state_(new state_t) {
    std::wstring pattern = text;
    if (!pattern.empty() && pattern.back() != L'\\') {
        pattern += L'\\';
    }
    pattern += L'*';
    state_->handle = FindFirstFileW(pattern.c_str(), &state_->data);
    state_->pending = state_->handle != INVALID_HANDLE_VALUE;
}

directory_search_t::~directory_search_t() {
    if (state_->handle != INVALID_HANDLE_VALUE) {
        FindClose(state_->handle);
    }
}

bool directory_search_t::is_open() const {
    return state_->handle != INVALID_HANDLE_VALUE;
}

bool directory_search_t::next(directory_entry_t& entry) {
    if (state_->handle == INVALID_HANDLE_VALUE) {
        return false;
    }
    if (!state_->pending && !FindNextFileW(state_->handle, &state_->data)) {
        return false;
    }
    state_->pending = false;
    entry.name = state_->data.cFileName;
    if (is_link_data(state_->data)) {
        entry.type = entry_type_t::link;
    } else if ((state_->data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0) {
        entry.type = entry_type_t::directory;
    } else {
        entry.type = entry_type_t::file;
    }
    return true;
}

} // namespace velmor2::_internal::os
