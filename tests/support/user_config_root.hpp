// The per-user configuration folder as a test sees it. On POSIX it is redirected into the
// test's own tree. The Windows shell folder cannot be redirected, so there a test works in the
// real folder under names of its own and everything it made goes again afterwards.
#pragma once

#include "support/scoped_env.hpp"
#include "support/temp_tree.hpp"

#include <velmor2/standard_directories.hpp>

#include <filesystem>
#include <optional>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

namespace velmor_test {

class user_config_root_t {
  public:
    explicit user_config_root_t(const temp_tree_t& tree) {
#if defined(_WIN32)
        static_cast<void>(tree);
        const velmor2::path_t folder = velmor2::stdpaths::get_user_config_dir(std::wstring());
        if (folder.is_empty()) {
            throw std::runtime_error("no per-user application-data folder");
        }
        root_ = std::filesystem::path(folder.as_native_string());
#else
        root_ = tree.native("cfg");
        redirect_.emplace("XDG_CONFIG_HOME", root_.string());
#endif
    }
    ~user_config_root_t() {
        std::error_code ignored;
        for (auto it = made_.rbegin(); it != made_.rend(); ++it) {
            std::filesystem::remove_all(*it, ignored);
        }
    }
    user_config_root_t(const user_config_root_t&) = delete;
    user_config_root_t& operator=(const user_config_root_t&) = delete;

    /// The native path of the UTF-8 `relative`, written with `/`, under the folder.
    std::filesystem::path native(const std::string& relative = std::string()) const {
        return relative.empty() ? root_
                                : (root_ / std::filesystem::u8path(relative)).make_preferred();
    }

    /// Removes `relative` at the end of the test unless it is already there now. Name outer
    /// folders before inner ones.
    void remove_afterwards(const std::string& relative) {
        std::error_code ignored;
        if (!std::filesystem::exists(native(relative), ignored)) {
            made_.push_back(native(relative));
        }
    }

    /// A folder name of this test alone.
    static std::string unique_name() {
        std::random_device random;
        return "velmor-test-" + std::to_string(random());
    }

  private:
    std::filesystem::path root_;
    std::optional<scoped_env_t> redirect_;
    std::vector<std::filesystem::path> made_;
};

} // namespace velmor_test
