#include <velmor2/runtime.hpp>

#include "support/scoped_env.hpp"

#include <gtest/gtest.h>

#include <cstdlib>
#include <optional>
#include <string>

#if !defined(_WIN32)
#include <unistd.h>
#endif

namespace {

using namespace velmor2;

TEST(environment, round_trip_of_non_ascii_names_and_values_and_hostile_names_change_nothing) {
    velmor_test::scoped_env_t guard("VELMOR_TEST_A", std::nullopt);
    EXPECT_EQ(get_environ_value(L"VELMOR_TEST_A"), L"");
    set_environ_value(L"VELMOR_TEST_A", L"1");
    EXPECT_EQ(get_environ_value(L"VELMOR_TEST_A"), L"1");
    EXPECT_STREQ(std::getenv("VELMOR_TEST_A"), "1");
    set_environ_value(L"VELMOR_TEST_A", L"caf\u00E9 \U0001F600 = x");
    EXPECT_EQ(get_environ_value(L"VELMOR_TEST_A"), L"caf\u00E9 \U0001F600 = x");
    set_environ_value(L"VELMOR_TEST_A", L"");
    EXPECT_EQ(get_environ_value(L"VELMOR_TEST_A"), L"");
    EXPECT_EQ(std::getenv("VELMOR_TEST_A"), nullptr);

    velmor_test::scoped_env_t accented("VELMOR_TEST_\xC3\xA9", std::nullopt);
    set_environ_value(L"VELMOR_TEST_\u00E9", L"v");
    EXPECT_EQ(get_environ_value(L"VELMOR_TEST_\u00E9"), L"v");

    // Hostile names change nothing.
    velmor_test::scoped_env_t guard_b("VELMOR_TEST_B", std::nullopt);
    set_environ_value(L"VELMOR_TEST_B", L"kept");
    set_environ_value(std::wstring(L"VELMOR_TEST_B\0X", 15), L"changed");
#if !defined(_WIN32)
    // The Windows runtime cuts such names at the zero and splits them at the "=" instead (see
    // the Windows tests).
    set_environ_value(L"VELMOR_TEST_B=Y", L"changed");
    EXPECT_EQ(get_environ_value(std::wstring(L"VELMOR_TEST_B\0X", 15)), L"");
#endif
    set_environ_value(L"", L"changed");
    EXPECT_EQ(get_environ_value(L"VELMOR_TEST_B"), L"kept");
    EXPECT_EQ(get_environ_value(L""), L"");
    // A value ends at its first zero character.
    set_environ_value(L"VELMOR_TEST_B", std::wstring(L"ab\0cd", 5));
    EXPECT_EQ(get_environ_value(L"VELMOR_TEST_B"), L"ab");
}

TEST(host_name, starts_with_the_host_name) {
#if !defined(_WIN32)
    char host[256] = {};
    if (::gethostname(host, sizeof host - 1) != 0) {
        GTEST_SKIP() << "the system has no host name";
    }
#endif
    const std::wstring name = get_fq_host_name();
    ASSERT_FALSE(name.empty());
    EXPECT_EQ(name.find_first_of(L" \t\r\n"), std::wstring::npos);
}

} // namespace
