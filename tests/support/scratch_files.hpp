// A fresh temporary directory per test, removed with everything in it afterwards.
#pragma once

#include <velmor2/path.hpp>

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace velmor_test {

class scratch_dir_t {
  public:
    scratch_dir_t() {
        std::string pattern = (std::filesystem::temp_directory_path() / "velmor-XXXXXX").string();
        if (::mkdtemp(pattern.data()) == nullptr) {
            ADD_FAILURE() << "cannot create a temporary directory";
        }
        root_ = pattern;
    }
    scratch_dir_t(const scratch_dir_t&) = delete;
    scratch_dir_t& operator=(const scratch_dir_t&) = delete;
    ~scratch_dir_t() {
        std::error_code ignored;
        std::filesystem::remove_all(root_, ignored);
    }

    /// The native path of `name` inside the directory.
    std::filesystem::path native(const std::string& name) const { return root_ / name; }

    /// The library's path of `name` inside the directory.
    velmor2::path_t path(const std::string& name) const {
        return velmor2::make_path(native(name).string());
    }

    /// Creates or replaces the file `name` with `bytes`; returns its library path.
    velmor2::path_t write(const std::string& name, const std::string& bytes) const {
        std::ofstream out(native(name), std::ios::binary | std::ios::trunc);
        out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
        return path(name);
    }

    /// The bytes of the file `name`, empty when it cannot be read.
    std::string read(const std::string& name) const {
        std::ifstream in(native(name), std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
    }

  private:
    std::filesystem::path root_;
};

} // namespace velmor_test
