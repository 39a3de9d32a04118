// Restores the process's working directory after a test that changes it.
#pragma once

#include <filesystem>

namespace velmor_test {

class working_dir_guard_t {
  public:
    working_dir_guard_t() : saved_(std::filesystem::current_path()) {}
    ~working_dir_guard_t() {
        std::error_code ignored;
        std::filesystem::current_path(saved_, ignored);
    }
    working_dir_guard_t(const working_dir_guard_t&) = delete;
    working_dir_guard_t& operator=(const working_dir_guard_t&) = delete;

  private:
    std::filesystem::path saved_;
};

} // namespace velmor_test
