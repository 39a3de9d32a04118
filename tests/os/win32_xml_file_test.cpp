// The descriptors of the configuration files on Windows: the sharing modes as any other opener
// meets them, and the runtime's text mode, which writes CR LF and reads it back as LF.
#if defined(_WIN32)

#include "os/xml_file.hpp"
#include "support/temp_tree.hpp"

#include <gtest/gtest.h>

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

TEST(win32_xml_file, a_writer_keeps_everybody_out) {
    temp_tree_t tree;
    const int writer = os::open_xml_for_writing(tree.native("f.xml").wstring());
    ASSERT_GE(writer, 0);
    EXPECT_EQ(open_error(tree, "f.xml", GENERIC_READ), static_cast<DWORD>(ERROR_SHARING_VIOLATION));
    EXPECT_EQ(open_error(tree, "f.xml", GENERIC_WRITE),
              static_cast<DWORD>(ERROR_SHARING_VIOLATION));
    EXPECT_LT(os::open_xml_for_writing(tree.native("f.xml").wstring()), 0);
    os::close_xml_file(writer);
    EXPECT_EQ(open_error(tree, "f.xml", GENERIC_READ), static_cast<DWORD>(ERROR_SUCCESS));
}

TEST(win32_xml_file, a_writer_empties_the_file_and_writes_cr_lf_that_reads_back_as_lf) {
    temp_tree_t tree;
    tree.write("f.xml", std::string(100, 'o'));
    const std::string text = "<a>\n  <b/>\n</a>\n";
    const int writer = os::open_xml_for_writing(tree.native("f.xml").wstring());
    ASSERT_GE(writer, 0);
    EXPECT_EQ(_write(writer, text.data(), static_cast<unsigned>(text.size())),
              static_cast<int>(text.size()));
    os::close_xml_file(writer);
    EXPECT_EQ(tree.read("f.xml"), "<a>\r\n  <b/>\r\n</a>\r\n");

    const int reader = os::open_xml_for_reading(tree.native("f.xml").wstring());
    ASSERT_GE(reader, 0);
    char buffer[64] = {};
    const int got = _read(reader, buffer, sizeof buffer);
    os::close_xml_file(reader);
    ASSERT_GE(got, 0);
    EXPECT_EQ(std::string(buffer, static_cast<std::size_t>(got)), text);
}

} // namespace

#endif
