// A fresh directory under the system's temporary directory for one test, removed afterwards.
#pragma once

#include <velmor2/path.hpp>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <stdexcept>
#include <string>
#include <system_error>

#if defined(_WIN32)
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>
#endif

namespace velmor_test {

class temp_tree_t {
  public:
    temp_tree_t() {
        // Creating the directory is the test of a free name, so two tests never share one.
        const std::filesystem::path base = std::filesystem::temp_directory_path();
        std::random_device random;
        for (int attempt = 0; attempt < 100; ++attempt) {
            const std::filesystem::path candidate = base / ("velmor-" + std::to_string(random()));
            std::error_code error;
            if (std::filesystem::create_directory(candidate, error)) {
                std::filesystem::permissions(candidate, std::filesystem::perms::owner_all, error);
                root_ = candidate;
                return;
            }
            if (error) {
                break;
            }
        }
        throw std::runtime_error("cannot create a temporary directory");
    }
    ~temp_tree_t() {
#if defined(_WIN32)
        // MinGW's std::filesystem stops at 260 characters, which deep trees cross.
        remove_tree(L"\\\\?\\" + root_.wstring());
#else
        // Restores write and search permission that a test took away, so that all of it goes.
        std::error_code ignored;
        for (auto it = std::filesystem::recursive_directory_iterator(root_, ignored);
             it != std::filesystem::recursive_directory_iterator(); it.increment(ignored)) {
            if (!it->is_symlink(ignored)) {
                std::filesystem::permissions(it->path(), std::filesystem::perms::owner_all,
                                             std::filesystem::perm_options::add, ignored);
            }
        }
        std::filesystem::remove_all(root_, ignored);
#endif
    }
    temp_tree_t(const temp_tree_t&) = delete;
    temp_tree_t& operator=(const temp_tree_t&) = delete;

    /// The native path of the UTF-8 `relative`, written with `/`, under the root (the root
    /// itself for an empty text), with the platform's own separators.
    std::filesystem::path native(const std::string& relative = std::string()) const {
        return relative.empty() ? root_
                                : (root_ / std::filesystem::u8path(relative)).make_preferred();
    }
    /// The same as a library path.
    velmor2::path_t path(const std::string& relative = std::string()) const {
        return velmor2::path_t(native(relative).wstring());
    }
    /// Creates the directory `relative` with its parents and returns its library path.
    velmor2::path_t make_dir(const std::string& relative) const {
        std::filesystem::create_directories(native(relative));
        return path(relative);
    }
    /// Writes the bytes `content` to the file `relative`, creating its parents and replacing
    /// an earlier content.
    void write(const std::string& relative, const std::string& content = "x") const {
        std::filesystem::create_directories(native(relative).parent_path());
        std::ofstream(native(relative), std::ios::binary | std::ios::trunc) << content;
    }
    /// Writes as `write` does and returns the file's library path.
    velmor2::path_t make_file(const std::string& relative, const std::string& content = "x") const {
        write(relative, content);
        return path(relative);
    }
    /// The bytes of the file `relative`, empty when it cannot be read.
    std::string read(const std::string& relative) const {
        std::ifstream in(native(relative), std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(in), {});
    }
    /// True when something (a dangling link included) is at `relative`.
    bool has(const std::string& relative) const {
        std::error_code ignored;
        return std::filesystem::symlink_status(native(relative), ignored).type() !=
               std::filesystem::file_type::not_found;
    }

  private:
#if defined(_WIN32)
    // Removes `dir` with everything in it, clearing the flags that would refuse a removal.
    static void remove_tree(const std::wstring& dir) {
        WIN32_FIND_DATAW data;
        const HANDLE search = FindFirstFileW((dir + L"\\*").c_str(), &data);
        if (search != INVALID_HANDLE_VALUE) {
            do {
                const std::wstring name = data.cFileName;
                if (name == L"." || name == L"..") {
                    continue;
                }
                const std::wstring child = dir + L"\\" + name;
                SetFileAttributesW(child.c_str(), FILE_ATTRIBUTE_NORMAL);
                if ((data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0) {
                    remove_tree(child);
                } else {
                    DeleteFileW(child.c_str());
                }
            } while (FindNextFileW(search, &data));
            FindClose(search);
        }
        SetFileAttributesW(dir.c_str(), FILE_ATTRIBUTE_NORMAL);
        RemoveDirectoryW(dir.c_str());
    }
#endif

    std::filesystem::path root_;
};

} // namespace velmor_test
