#include <velmor2/runtime.hpp>
#include <velmor2/standard_directories.hpp>

#include <gtest/gtest.h>

#include <string>

namespace {

using namespace velmor2;

using function_t = int (*)();

// The folder "plugin" beside the test program.
path_t find_plugin_dir() {
    path_t dir = stdpaths::get_executable_dir();
    dir.append(path_t(L"plugin"));
    return dir;
}

const path_t plugin_dir = find_plugin_dir();
const std::wstring plugin_file = make_path(std::string(VELMOR_TEST_PLUGIN_FILE)).as_string();
const std::wstring plugin_base = plugin_file.substr(0, plugin_file.rfind(L'.'));

int call(const shared_lib_t& lib, const wchar_t* symbol) {
    const auto function = reinterpret_cast<function_t>(lib.get_symbol(symbol));
    return function == nullptr ? -1 : function();
}

TEST(shared_lib, loads_by_base_name_or_file_name) {
    shared_lib_t by_base(plugin_base, plugin_dir);
    ASSERT_TRUE(by_base);
    EXPECT_EQ(call(by_base, L"velmor_plugin_answer"), 42);

    shared_lib_t by_file(plugin_file, plugin_dir);
    ASSERT_TRUE(by_file);
    EXPECT_EQ(call(by_file, L"velmor_plugin_answer"), 42);

    // Names are used as given: no suffix is added.
    EXPECT_EQ(suffixize_lib_name(L"foo"), L"foo");
    EXPECT_EQ(suffixize_lib_name(L"foo.so"), L"foo.so");
    EXPECT_EQ(suffixize_lib_name(L""), L"");
    // The directory may also be part of the name.
    shared_lib_t whole(plugin_dir.as_string() + L"\\" + plugin_base, path_t());
    EXPECT_TRUE(whole);
#if defined(__linux__)
    // Without a directory the system searches its usual places.
    shared_lib_t system(L"libc.so.6", path_t());
    EXPECT_TRUE(system);
    EXPECT_NE(system.get_symbol(L"strlen"), nullptr);
#endif
}

TEST(shared_lib, failures_leave_an_object_that_tests_false) {
    shared_lib_t missing(L"velmor_no_such_library", plugin_dir);
    EXPECT_FALSE(missing);
    EXPECT_EQ(missing.get_symbol(L"velmor_plugin_answer"), nullptr);
    // A copy tries the load again, and fails again.
    EXPECT_FALSE(shared_lib_t(missing));

    shared_lib_t nothing;
    EXPECT_FALSE(nothing);
    EXPECT_EQ(nothing.get_symbol(L"velmor_plugin_answer"), nullptr);
    EXPECT_FALSE(nothing.initialize(L"", plugin_dir));

    shared_lib_t loaded(plugin_base, plugin_dir);
    ASSERT_TRUE(loaded);
    EXPECT_EQ(loaded.get_symbol(L"velmor_no_such_symbol"), nullptr);
    EXPECT_EQ(loaded.get_symbol(L""), nullptr);
    // An empty name unloads and fails.
    EXPECT_FALSE(loaded.initialize(L"", plugin_dir));
    EXPECT_FALSE(loaded);
    // A copy of the emptied object has nothing to load.
    shared_lib_t copy(loaded);
    EXPECT_FALSE(copy);
}

TEST(shared_lib, copies_hold_their_own_reference_assignment_and_release) {
    auto* original = new shared_lib_t(plugin_base, plugin_dir);
    ASSERT_TRUE(*original);
    const int first = call(*original, L"velmor_plugin_count_calls");
    shared_lib_t copy(*original);
    ASSERT_TRUE(copy);
    delete original;
    // Still loaded, with the same state: the module was never unloaded in between.
    EXPECT_EQ(call(copy, L"velmor_plugin_count_calls"), first + 1);
    EXPECT_EQ(call(copy, L"velmor_plugin_answer"), 42);

    // Assignment and release.
    shared_lib_t target(plugin_base, plugin_dir);
    ASSERT_TRUE(target);
    target = shared_lib_t();
    EXPECT_FALSE(target);

    shared_lib_t source(plugin_base, plugin_dir);
    target = source;
    EXPECT_TRUE(target);
    EXPECT_EQ(call(target, L"velmor_plugin_answer"), 42);
    shared_lib_t& alias = target;
    target = alias;
    EXPECT_TRUE(target);
    source.uninitialize();
    EXPECT_FALSE(source);
    source.uninitialize();
    EXPECT_EQ(call(target, L"velmor_plugin_answer"), 42);

    EXPECT_TRUE(source.initialize(plugin_base, plugin_dir));
    EXPECT_TRUE(source.initialize(plugin_file, plugin_dir));
    EXPECT_EQ(call(source, L"velmor_plugin_answer"), 42);
}

} // namespace
