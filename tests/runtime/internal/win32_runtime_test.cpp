// The Win32 side of the runtime services: LoadLibraryExW of the test DLL, the runtime's
// environment table against the process environment, GetComputerNameExW and OutputDebugStringW.
#if defined(_WIN32)

#include "debug_output_capture.hpp"
#include "support/scoped_env.hpp"

#include <velmor2/runtime.hpp>
#include <velmor2/standard_directories.hpp>

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <windows.h>

namespace {

using namespace velmor2;
using velmor_test::scoped_env_t;

const std::wstring plugin_file = make_path(std::string(VELMOR_TEST_PLUGIN_FILE)).as_string();

path_t plugin_dir() {
    path_t dir = stdpaths::get_executable_dir();
    dir.append(path_t(L"plugin"));
    return dir;
}

std::wstring plugin_path() {
    return plugin_dir().as_string() + L"\\" + plugin_file;
}

// The module that holds `address`, without taking a reference to it.
HMODULE module_of(const void* address) {
    HMODULE module = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS |
                           GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                       static_cast<LPCWSTR>(address), &module);
    return module;
}

TEST(win32_shared_lib, symbols_come_from_the_dll_that_stays_until_the_last_copy_goes) {
    ASSERT_EQ(GetModuleHandleW(plugin_path().c_str()), nullptr) << "loaded before the test";
    {
        shared_lib_t lib(L"velmor_test_plugin", plugin_dir());
        ASSERT_TRUE(lib);
        const HMODULE module = GetModuleHandleW(plugin_path().c_str());
        ASSERT_NE(module, nullptr);
        void* const answer = lib.get_symbol(L"velmor_plugin_answer");
        EXPECT_EQ(answer, reinterpret_cast<void*>(GetProcAddress(module, "velmor_plugin_answer")));
        EXPECT_EQ(module_of(answer), module);
        {
            const shared_lib_t copy(lib);
            lib.uninitialize();
            EXPECT_EQ(GetModuleHandleW(plugin_path().c_str()), module);
        }
        EXPECT_EQ(GetModuleHandleW(plugin_path().c_str()), nullptr);
    }
    // Named with its suffix, the file is tried as it stands before the doubled suffix.
    shared_lib_t by_file(plugin_file, plugin_dir());
    EXPECT_TRUE(by_file);
}

TEST(win32_shared_lib, file_names_ignore_case_but_export_names_do_not) {
    std::wstring upper = plugin_file;
    for (wchar_t& c : upper) {
        c = static_cast<wchar_t>(towupper(c));
    }
    shared_lib_t lib(upper, plugin_dir());
    EXPECT_TRUE(lib);
    EXPECT_NE(lib.get_symbol(L"velmor_plugin_answer"), nullptr);
    // Export names are case-sensitive.
    EXPECT_EQ(lib.get_symbol(L"VELMOR_PLUGIN_ANSWER"), nullptr);
}

TEST(win32_environment, the_runtime_table_and_the_process_environment_agree) {
    const scoped_env_t guard("VELMOR_TEST_W", std::nullopt);
    set_environ_value(L"VELMOR_TEST_W", L"caf\u00E9");
    wchar_t buffer[64] = {};
    EXPECT_EQ(GetEnvironmentVariableW(L"VELMOR_TEST_W", buffer, 64), 4u);
    EXPECT_STREQ(buffer, L"caf\u00E9");
    // Names are not case-sensitive on Windows.
    EXPECT_EQ(get_environ_value(L"velmor_test_w"), L"caf\u00E9");
    set_environ_value(L"VELMOR_TEST_W", L"");
    EXPECT_EQ(GetEnvironmentVariableW(L"VELMOR_TEST_W", buffer, 64), 0u);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_ENVVAR_NOT_FOUND));
}

TEST(win32_environment, names_go_to_the_runtime_as_they_stand) {
    const scoped_env_t guard("VELMOR_TEST_E", std::nullopt);
    set_environ_value(L"VELMOR_TEST_E", L"kept");
    // The runtime gets a C string: the name ends at a zero character.
    EXPECT_EQ(get_environ_value(std::wstring(L"VELMOR_TEST_E\0X", 15)), L"kept");
    // It reads "VELMOR_TEST_E=Y=z" as the name up to the first "=".
    set_environ_value(L"VELMOR_TEST_E=Y", L"z");
    EXPECT_EQ(get_environ_value(L"VELMOR_TEST_E"), L"Y=z");
}

TEST(win32_host_name, is_the_dns_host_name_with_any_domain) {
    wchar_t host[256] = {};
    DWORD size = 256;
    ASSERT_TRUE(GetComputerNameExW(ComputerNameDnsHostname, host, &size));
    const std::wstring name = get_fq_host_name();
    ASSERT_FALSE(name.empty());
    EXPECT_EQ(CompareStringOrdinal(name.c_str(), static_cast<int>(size), host,
                                   static_cast<int>(size), TRUE),
              CSTR_EQUAL)
        << "host " << host;
    EXPECT_TRUE(name.size() == size || name[size] == L'.') << name;
}

TEST(win32_time_logger, writes_the_line_and_its_end_in_two_debugger_calls) {
    velmor_test::debug_output_capture_t capture;
    { debugging::time_logger_t logger(std::wstring(L"\u20AC")); }
    const std::string out = capture.take();
    EXPECT_EQ(out.rfind("\xE2\x82\xAC ", 0), 0u) << out;
    EXPECT_EQ(out.back(), '\n');
    EXPECT_EQ(capture.calls(), 2);
}

} // namespace

#endif
