#include <velmor2/path.hpp>

#include <gtest/gtest.h>

namespace {

using velmor2::path_t;

TEST(path_smoke, prints_back) {
    EXPECT_EQ(path_t(L"C:/Dir//File.txt").as_string(), L"C:\\Dir\\File.txt");
}

} // namespace
