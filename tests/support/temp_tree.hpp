// A fresh directory under the system's temporary directory for one test, removed afterwards.
#pragma once

#include <velmor2/path.hpp>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <system_error>

namespace velmor_test {

class temp_tree_t {
  public:
    temp_tree_t() {
        std::string pattern = (std::filesystem::temp_directory_path() / "velmor-XXXXXX").string();
        if (::mkdtemp(pattern.data()) == nullptr) {
            throw std::runtime_error("cannot create a temporary directory");
        }
        root_ = pattern;
    }
    ~temp_tree_t() {
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
    }
    temp_tree_t(const temp_tree_t&) = delete;
    temp_tree_t& operator=(const temp_tree_t&) = delete;

    /// The native path of `relative` under the root (the root itself for an empty text).
    std::filesystem::path native(const std::string& relative = std::string()) const {
        return relative.empty() ? root_ : root_ / relative;
    }
    /// The same as a library path.
    velmor2::path_t path(const std::string& relative = std::string()) const {
        return velmor2::path_t(native(relative).wstring());
    }
    /// Creates the directory `relative` with its parents.
    void make_dir(const std::string& relative) const {
        std::filesystem::create_directories(native(relative));
    }
    /// Writes `content` to the file `relative`, creating its parents.
    void write(const std::string& relative, const std::string& content = "x") const {
        std::filesystem::create_directories(native(relative).parent_path());
        std::ofstream(native(relative), std::ios::binary) << content;
    }
    /// The content of the file `relative`.
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
    std::filesystem::path root_;
};

} // namespace velmor_test
