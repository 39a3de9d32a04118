// Temporary directories and file helpers for the configuration tests.
#pragma once

#include <velmor2/path.hpp>

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>
#include <unistd.h>

namespace config_test {

/// A fresh directory under the system's temporary folder, removed with its files at the end.
class temp_dir_t {
  public:
    temp_dir_t() {
        std::string pattern = "/tmp/velmor_config_XXXXXX";
        if (::mkdtemp(pattern.data()) == nullptr) {
            ADD_FAILURE() << "mkdtemp failed";
        }
        dir = pattern;
    }
    ~temp_dir_t() { std::system(("rm -rf '" + dir + "'").c_str()); }
    temp_dir_t(const temp_dir_t&) = delete;
    temp_dir_t& operator=(const temp_dir_t&) = delete;

    /// Native name of a file in the directory.
    std::string file(const std::string& name) const { return dir + "/" + name; }
    /// The same as a path_t.
    velmor2::path_t path(const std::string& name) const { return velmor2::make_path(file(name)); }

  private:
    std::string dir;
};

/// Whole content of a file; empty if it cannot be read.
inline std::string read_file(const std::string& name) {
    std::ifstream in(name, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

/// Replaces a file's content.
inline void write_file(const std::string& name, const std::string& content) {
    std::ofstream out(name, std::ios::binary | std::ios::trunc);
    out << content;
}

} // namespace config_test
