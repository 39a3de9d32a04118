// A fresh directory per test, removed with everything in it afterwards.
#pragma once

#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <system_error>

namespace velmor2::test {

class scratch_dir_t {
  public:
    scratch_dir_t() {
        const auto base = std::filesystem::temp_directory_path();
        std::random_device random;
        for (;;) {
            root_ = base / ("velmor-path-" + std::to_string(random()));
            if (std::filesystem::create_directory(root_)) {
                break;
            }
        }
    }
    ~scratch_dir_t() {
        // Gives back the write permission a test took away, so that everything goes.
        std::error_code ignored;
        for (auto it = std::filesystem::recursive_directory_iterator(root_, ignored);
             it != std::filesystem::recursive_directory_iterator(); it.increment(ignored)) {
            std::filesystem::permissions(it->path(), std::filesystem::perms::owner_all,
                                         std::filesystem::perm_options::add, ignored);
        }
        std::filesystem::permissions(root_, std::filesystem::perms::owner_all,
                                     std::filesystem::perm_options::add, ignored);
        std::filesystem::remove_all(root_, ignored);
    }
    scratch_dir_t(const scratch_dir_t&) = delete;
    scratch_dir_t& operator=(const scratch_dir_t&) = delete;

    /// The wide text of `relative` under the directory (the directory itself when empty).
    std::wstring text(const std::string& relative = {}) const {
        return relative.empty() ? root_.wstring() : (root_ / relative).wstring();
    }
    /// Creates the directory `relative` and returns its text.
    std::wstring make_dir(const std::string& relative) const {
        std::filesystem::create_directories(root_ / relative);
        return text(relative);
    }
    /// Creates the file `relative` and returns its text.
    std::wstring make_file(const std::string& relative) const {
        std::ofstream(root_ / relative) << "x";
        return text(relative);
    }

  private:
    std::filesystem::path root_;
};

} // namespace velmor2::test
