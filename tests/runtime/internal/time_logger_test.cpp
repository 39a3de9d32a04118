#include "debug_output_capture.hpp"
#include "runtime/time_log_line.hpp"

#include <velmor2/runtime.hpp>

#include <gtest/gtest.h>

#include <regex>
#include <string>

namespace {

using namespace velmor2;

struct line_case_t {
    std::int32_t ms;
    const wchar_t* line;
};

TEST(time_logger, line_format) {
    const line_case_t cases[] = {
        {1234, L"load 1.234"},       {2000000, L"load 2000"},
        {12345678, L"load 12345.7"}, {0, L"load 0"},
        {1, L"load 0.001"},          {-5, L"load -0.005"},
        {1500, L"load 1.5"},         {2147483647, L"load 2.14748e+06"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.ms);
        EXPECT_EQ(_internal::time_log_line(L"load", c.ms), c.line);
    }
    EXPECT_EQ(_internal::time_log_line(L"", 1000), L" 1");
}

TEST(time_logger, prints_one_line_when_destroyed_and_copies_their_own) {
    velmor_test::debug_output_capture_t capture;
    {
        debugging::time_logger_t logger("scope \xC3\xA9");
        EXPECT_EQ(capture.take(), "");
    }
    const std::string out = capture.take();
    EXPECT_TRUE(std::regex_match(out, std::regex("scope \xC3\xA9 [0-9.e+-]+\n"))) << out;
    { debugging::time_logger_t unnamed(std::wstring{}); }
    const std::string unnamed_out = capture.take();
    EXPECT_TRUE(std::regex_match(unnamed_out, std::regex(" [0-9.e+-]+\n"))) << unnamed_out;

    // Copies print their own lines.
    {
        debugging::time_logger_t a(std::wstring(L"a"));
        debugging::time_logger_t b(a);
        debugging::time_logger_t c(static_cast<const char*>(nullptr));
        c = a;
        const debugging::time_logger_t& alias = c;
        c = alias;
    }
    const std::string copies_out = capture.take();
    EXPECT_TRUE(std::regex_match(copies_out, std::regex("(a [0-9.e+-]+\n){3}"))) << copies_out;
}

struct printing_logger_t : debugging::time_logger_t {
    printing_logger_t() : time_logger_t("p") {}
    using time_logger_t::debug_print;
};

TEST(time_logger, debug_print_ends_the_line) {
    velmor_test::debug_output_capture_t capture;
    printing_logger_t logger;
    logger.debug_print(L"text \u20AC");
    EXPECT_EQ(capture.take(), "text \xE2\x82\xAC\n");
}

} // namespace
