#include <velmor2/runtime.hpp>

#include <gtest/gtest.h>

#include <cstdlib>
#include <optional>
#include <string>

namespace {

using namespace velmor2;

// Restores a variable to what it was before the test.
class environment_guard_t {
  public:
    explicit environment_guard_t(const char* name) : name_(name) {
        if (const char* value = std::getenv(name)) {
            saved_ = value;
        }
    }
    environment_guard_t(const environment_guard_t&) = delete;
    environment_guard_t& operator=(const environment_guard_t&) = delete;
    ~environment_guard_t() {
        if (saved_) {
            ::setenv(name_.c_str(), saved_->c_str(), 1);
        } else {
            ::unsetenv(name_.c_str());
        }
    }

  private:
    std::string name_;
    std::optional<std::string> saved_;
};

TEST(environment, round_trip) {
    environment_guard_t guard("VELMOR_TEST_A");
    ::unsetenv("VELMOR_TEST_A");
    EXPECT_EQ(get_environ_value(L"VELMOR_TEST_A"), L"");
    set_environ_value(L"VELMOR_TEST_A", L"1");
    EXPECT_EQ(get_environ_value(L"VELMOR_TEST_A"), L"1");
    EXPECT_STREQ(std::getenv("VELMOR_TEST_A"), "1");
    set_environ_value(L"VELMOR_TEST_A", L"caf\u00E9 \U0001F600 = x");
    EXPECT_EQ(get_environ_value(L"VELMOR_TEST_A"), L"caf\u00E9 \U0001F600 = x");
    set_environ_value(L"VELMOR_TEST_A", L"");
    EXPECT_EQ(get_environ_value(L"VELMOR_TEST_A"), L"");
    EXPECT_EQ(std::getenv("VELMOR_TEST_A"), nullptr);
}

TEST(environment, non_ascii_names) {
    environment_guard_t guard("VELMOR_TEST_\xC3\xA9");
    set_environ_value(L"VELMOR_TEST_\u00E9", L"v");
    EXPECT_EQ(get_environ_value(L"VELMOR_TEST_\u00E9"), L"v");
}

TEST(environment, hostile_names_change_nothing) {
    environment_guard_t guard("VELMOR_TEST_B");
    set_environ_value(L"VELMOR_TEST_B", L"kept");
    set_environ_value(std::wstring(L"VELMOR_TEST_B\0X", 15), L"changed");
    set_environ_value(L"VELMOR_TEST_B=Y", L"changed");
    set_environ_value(L"", L"changed");
    EXPECT_EQ(get_environ_value(L"VELMOR_TEST_B"), L"kept");
    EXPECT_EQ(get_environ_value(L""), L"");
    EXPECT_EQ(get_environ_value(std::wstring(L"VELMOR_TEST_B\0X", 15)), L"");
    // A value ends at its first zero character.
    set_environ_value(L"VELMOR_TEST_B", std::wstring(L"ab\0cd", 5));
    EXPECT_EQ(get_environ_value(L"VELMOR_TEST_B"), L"ab");
}

TEST(host_name, starts_with_the_host_name) {
    char host[256] = {};
    if (::gethostname(host, sizeof host - 1) != 0) {
        GTEST_SKIP() << "the system has no host name";
    }
    const std::wstring name = get_fq_host_name();
    ASSERT_FALSE(name.empty());
    EXPECT_EQ(name.find_first_of(L" \t\r\n"), std::wstring::npos);
}

} // namespace
