// The configuration files on Windows: the sharing modes as any other opener meets them, saves
// that replace the file, and the runtime's text mode, which writes CR LF and reads it back as LF.
#if defined(_WIN32)

#include "os/xml_file.hpp"
#include "support/temp_tree.hpp"

#include <gtest/gtest.h>

#include <filesystem>
#include <io.h>
#include <string>
#include <windows.h>

namespace {

namespace os = velmor2::_internal::os;
using velmor_test::temp_tree_t;

// Whether CreateFileW gets `access` to the file while sharing everything it can; the error
// when it does not.
DWORD open_error(const temp_tree_t& tree, const std::string& name, DWORD access) {
    const HANDLE handle = CreateFileW(tree.native(name).c_str(), access,
                                      FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                      nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (handle == INVALID_HANDLE_VALUE) {
        return GetLastError();
    }
    CloseHandle(handle);
    return ERROR_SUCCESS;
}

TEST(win32_xml_file, a_reader_lets_readers_in_and_keeps_writers_out) {
    temp_tree_t tree;
    tree.write("f.xml", "<root/>");
    const int reader = os::open_xml_for_reading(tree.native("f.xml").wstring());
    ASSERT_GE(reader, 0);
    EXPECT_EQ(open_error(tree, "f.xml", GENERIC_READ), static_cast<DWORD>(ERROR_SUCCESS));
    EXPECT_EQ(open_error(tree, "f.xml", GENERIC_WRITE),
              static_cast<DWORD>(ERROR_SHARING_VIOLATION));
    os::close_xml_file(reader);
    EXPECT_EQ(open_error(tree, "f.xml", GENERIC_WRITE), static_cast<DWORD>(ERROR_SUCCESS));
}

TEST(win32_xml_file, a_save_replaces_the_file_with_cr_lf_that_reads_back_as_lf) {
    temp_tree_t tree;
    tree.write("f.xml", std::string(100, 'o'));
    const std::string text = "<a>\n  <b/>\n</a>\n";
    const int reader = os::open_xml_for_reading(tree.native("f.xml").wstring());
    ASSERT_GE(reader, 0);
    EXPECT_FALSE(os::replace_xml_file(tree.native("f.xml").wstring(), text));
    os::close_xml_file(reader);
    EXPECT_EQ(tree.read("f.xml"), std::string(100, 'o'));
    ASSERT_TRUE(os::replace_xml_file(tree.native("f.xml").wstring(), text));
    EXPECT_EQ(tree.read("f.xml"), "<a>\r\n  <b/>\r\n</a>\r\n");
    // Only the file itself: the new file it was written to has taken its place.
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(tree.native()),
                            std::filesystem::directory_iterator()),
              1);

    const int again = os::open_xml_for_reading(tree.native("f.xml").wstring());
    ASSERT_GE(again, 0);
    char buffer[64] = {};
    const int got = _read(again, buffer, sizeof buffer);
    os::close_xml_file(again);
    ASSERT_GE(got, 0);
    EXPECT_EQ(std::string(buffer, static_cast<std::size_t>(got)), text);
}

} // namespace

#endif
