// Sets or clears an environment variable for the lifetime of a test and restores it afterwards.
#pragma once

#include <cstdlib>
#include <optional>
#include <string>

namespace velmor_test {

class scoped_env_t {
  public:
    /// Sets `name` to `value`, or clears it for `std::nullopt`.
    scoped_env_t(std::string name, const std::optional<std::string>& value)
        : name_(std::move(name)) {
        if (const char* old = std::getenv(name_.c_str())) {
            saved_ = old;
        }
        apply(value);
    }
    ~scoped_env_t() { apply(saved_); }
    scoped_env_t(const scoped_env_t&) = delete;
    scoped_env_t& operator=(const scoped_env_t&) = delete;

  private:
    void apply(const std::optional<std::string>& value) const {
        if (value) {
            ::setenv(name_.c_str(), value->c_str(), 1);
        } else {
            ::unsetenv(name_.c_str());
        }
    }

    std::string name_;
    std::optional<std::string> saved_;
};

} // namespace velmor_test
