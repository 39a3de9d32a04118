// Names outside ASCII on every platform: accented, CJK and beyond the Basic Multilingual Plane
// (a surrogate pair in UTF-16).
#include "support/temp_tree.hpp"

#include <velmor2/file_system.hpp>

#include <gtest/gtest.h>

namespace {

using velmor_test::temp_tree_t;

TEST(hostile_names, unicode_names_are_ordinary) {
    temp_tree_t tree;
    tree.write("root/\xc3\xa9t\xc3\xa9/\xe6\x97\xa5\xe6\x9c\xac.xml", "u");
    tree.write("root/\xf0\x9d\x84\x9e clef.xml", "g");
    const auto found = velmor2::find_files(tree.path("root"), L"*.xml", true);
    ASSERT_EQ(found.size(), 2u);
    for (const auto& file : found) {
        SCOPED_TRACE(file.as_string().size());
        EXPECT_TRUE(file.get_leaf() == L"\u65e5\u672c.xml" ||
                    file.get_leaf() == L"\U0001D11E clef.xml");
        EXPECT_TRUE(file.is_exists());
    }
    EXPECT_TRUE(velmor2::copy_directory(tree.path("root"), tree.path("copy")));
    EXPECT_EQ(tree.read("copy/\xc3\xa9t\xc3\xa9/\xe6\x97\xa5\xe6\x9c\xac.xml"), "u");
    EXPECT_EQ(tree.read("copy/\xf0\x9d\x84\x9e clef.xml"), "g");
    EXPECT_TRUE(velmor2::remove_directory(tree.path("root"), true));
    EXPECT_FALSE(tree.has("root"));
}

} // namespace
