// Sets or clears an environment variable for the lifetime of a test and restores it afterwards.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <optional>
#include <string>

namespace velmor_test {

class scoped_env_t {
  public:
    /// Sets `name` to the UTF-8 `value`, or clears it for `std::nullopt`.
    scoped_env_t(std::string name, const std::optional<std::string>& value)
        : name_(std::move(name)), saved_(read(name_)) {
        apply(value);
    }
    ~scoped_env_t() { apply(saved_); }
    scoped_env_t(const scoped_env_t&) = delete;
    scoped_env_t& operator=(const scoped_env_t&) = delete;

  private:
#if defined(_WIN32)
    // The runtime's wide calls keep the runtime's copy and the process environment, which the
    // system calls read, in step.
    static std::optional<std::string> read(const std::string& name) {
        const wchar_t* value = ::_wgetenv(std::filesystem::u8path(name).wstring().c_str());
        return value != nullptr ? std::optional<std::string>(std::filesystem::path(value).u8string())
                                : std::nullopt;
    }
    void apply(const std::optional<std::string>& value) const {
        // An empty value removes the variable.
        const std::wstring entry =
            std::filesystem::u8path(name_ + "=" + value.value_or("")).wstring();
        ::_wputenv(entry.c_str());
    }
#else
    static std::optional<std::string> read(const std::string& name) {
        const char* value = std::getenv(name.c_str());
        return value != nullptr ? std::optional<std::string>(value) : std::nullopt;
    }
    void apply(const std::optional<std::string>& value) const {
        if (value) {
            ::setenv(name_.c_str(), value->c_str(), 1);
        } else {
            ::unsetenv(name_.c_str());
        }
    }
#endif

    std::string name_;
    std::optional<std::string> saved_;
};

} // namespace velmor_test
