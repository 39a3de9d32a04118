// Shipped defaults under the user's values, and a store that follows its file as another
// process saves it.
#include <velmor2/configuration.hpp>

#include "support/temp_tree.hpp"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <set>
#include <string>

#if defined(_WIN32)
#include <windows.h>
#else
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>
#endif

namespace {

using velmor2::advanced_xml_config_t;
using velmor_test::temp_tree_t;

int int_of(advanced_xml_config_t& store, const std::wstring& key) {
    const boost::any value = store.get_value(key, boost::any());
    return value.empty() ? -1 : boost::any_cast<int>(value);
}

TEST(config_layers, user_values_over_shipped_defaults) {
    temp_tree_t dir;
    auto defaults = std::make_shared<advanced_xml_config_t>();
    defaults->set_value(L"view.width", 80);
    defaults->set_value(L"view.height", 25);
    advanced_xml_config_t user;
    user.set_value(L"View.Width", 120);
    ASSERT_TRUE(user.set_lower_layer(defaults));

    EXPECT_EQ(int_of(user, L"view.width"), 120);
    EXPECT_EQ(int_of(user, L"VIEW.HEIGHT"), 25);
    EXPECT_TRUE(user.has_value(L"view.height"));
    EXPECT_FALSE(user.has_value(L"view.depth"));

    // The user's own value hides the default until a load drops it again; saves hold only the
    // user's values, and the defaults are never written.
    user.set_value(L"view.height", 30);
    EXPECT_EQ(int_of(user, L"view.height"), 30);
    ASSERT_TRUE(user.save(dir.path("user.xml")));
    EXPECT_EQ(dir.read("user.xml").find(">80<"), std::string::npos);
    dir.write("user.xml", "<config><view><width type=\"int\">121</width></view></config>");
    ASSERT_TRUE(user.load(dir.path("user.xml")));
    EXPECT_EQ(int_of(user, L"view.height"), 25);
    EXPECT_EQ(int_of(*defaults, L"view.width"), 80);
    ASSERT_TRUE(user.save(dir.path("user.xml")));
    EXPECT_EQ(dir.read("user.xml").find("height"), std::string::npos);

    // Two layers deep, and never in a circle.
    auto base = std::make_shared<advanced_xml_config_t>();
    base->set_value(L"view.depth", 3);
    ASSERT_TRUE(defaults->set_lower_layer(base));
    EXPECT_EQ(int_of(user, L"view.depth"), 3);
    EXPECT_FALSE(base->set_lower_layer(defaults));
    EXPECT_FALSE(defaults->set_lower_layer(defaults));
    EXPECT_EQ(user.get_lower_layer(), defaults);
}

// Runs `step` in another process where the platform can fork, so that the watch sees a real
// save of another program; in this process elsewhere.
void run_elsewhere(const std::function<void()>& step) {
#if defined(_WIN32)
    step();
#else
    const pid_t child = fork();
    if (child == 0) {
        step();
        _exit(0);
    }
    ASSERT_GT(child, 0);
    ASSERT_EQ(waitpid(child, nullptr, 0), child);
#endif
}

bool wait_for(std::intptr_t handle) {
#if defined(_WIN32)
    return WaitForSingleObject(reinterpret_cast<HANDLE>(handle), 5000) == WAIT_OBJECT_0;
#else
    pollfd fd{static_cast<int>(handle), POLLIN, 0};
    return poll(&fd, 1, 5000) == 1;
#endif
}

struct recorder_t : velmor2::_internal::subscriber_base_t {
    std::set<std::wstring> keys;
    void on_change(const std::wstring& key, const boost::any&, const boost::any&) {
        keys.insert(key);
    }
};

TEST(config_watch, announces_exactly_the_keys_another_process_changed) {
    temp_tree_t dir;
    const velmor2::path_t file = dir.path("settings.xml");
    struct step_t {
        std::function<void()> write;
        std::set<std::wstring> expected;
    };
    const auto save = [&](int a, const wchar_t* b, bool with_c) {
        advanced_xml_config_t other;
        other.set_value(L"a", a);
        other.set_value(L"b", std::wstring(b));
        if (with_c) {
            other.set_value(L"c", true);
        }
        return [other, file]() mutable { other.save(file); };
    };
    const std::vector<step_t> steps = {
        {save(1, L"x", true), {L"a", L"c"}},
        {save(1, L"y", false), {L"b", L"c"}},
        // A careless writer's half-written file is passed over...
        {[&] { dir.write("settings.xml", "<config><a type=\"int\">7</a"); }, {}},
        // ...and the next good file is compared with the last good one.
        {save(2, L"y", false), {L"a"}},
    };
    save(0, L"x", false)();

    advanced_xml_config_t store;
    ASSERT_TRUE(store.load(file));
    if (!store.watch_file(file)) {
#if defined(_WIN32)
        GTEST_SKIP() << "folder change notifications are not available on this system";
#endif
        FAIL() << "the folder cannot be watched";
    }
    recorder_t recorder;
    store.value_changed.connect(&recorder, &recorder_t::on_change);
    store.set_value(L"unsaved", 5);
    recorder.keys.clear();

    for (std::size_t n = 0; n < steps.size(); ++n) {
        SCOPED_TRACE(n);
        run_elsewhere(steps[n].write);
        ASSERT_TRUE(wait_for(store.watch_handle()));
        EXPECT_EQ(store.reload_changes(), steps[n].expected.size());
        EXPECT_EQ(recorder.keys, steps[n].expected);
        recorder.keys.clear();
    }
    EXPECT_EQ(int_of(store, L"a"), 2);
    EXPECT_FALSE(store.has_value(L"c"));
    EXPECT_EQ(int_of(store, L"unsaved"), 5);

    // The store's own save comes back as no change at all.
    store.set_value(L"a", 3);
    recorder.keys.clear();
    ASSERT_TRUE(store.save(file));
    ASSERT_TRUE(wait_for(store.watch_handle()));
    EXPECT_EQ(store.reload_changes(), 0u);
    EXPECT_TRUE(recorder.keys.empty());

    store.stop_watching();
    EXPECT_EQ(store.watch_handle(), -1);
    EXPECT_EQ(store.reload_changes(), 0u);
    EXPECT_FALSE(store.watch_file(dir.path("missing/settings.xml")));
}

} // namespace
