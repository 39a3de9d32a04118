// config_manager_t: default and per-user file locations, with the per-user folder redirected.
#include "support/scoped_env.hpp"
#include "support/temp_tree.hpp"

#include <velmor2/configuration_files.hpp>

#include <filesystem>
#include <gtest/gtest.h>

namespace {

namespace fs = std::filesystem;
using velmor2::config_manager_t;
using velmor2::path_t;
using velmor_test::scoped_env_t;
using velmor_test::temp_tree_t;

class config_manager_test : public ::testing::Test {
  protected:
    std::wstring native(const std::string& relative) const {
        return tree.native(relative).wstring();
    }
    temp_tree_t tree;
    const scoped_env_t config{"XDG_CONFIG_HOME", tree.native("cfg").string()};
    config_manager_t manager{tree.native("defaults").wstring(), L"Product"};
};

TEST_F(config_manager_test, user_file_lies_under_company_and_product_folders) {
    EXPECT_EQ(manager.user_config(L"settings").as_native_string(),
              native("cfg/Norvane/Product/settings.xml"));
    EXPECT_TRUE(fs::is_directory(tree.native("cfg/Norvane/Product")));
    EXPECT_FALSE(tree.has("cfg/Norvane/Product/settings.xml"));
}

TEST_F(config_manager_test, company_name) {
    struct case_t {
        const wchar_t* company;
        const char* expected;
    };
    const case_t cases[] = {
        {L"Acme", "cfg/Acme/Product/x.xml"},
        {L"", "cfg/Product/x.xml"},
        {L"Norvane", "cfg/Norvane/Product/x.xml"},
    };
    for (const case_t& c : cases) {
        SCOPED_TRACE(c.expected);
        manager.set_company_name(c.company);
        EXPECT_EQ(manager.user_config(L"x").as_native_string(), native(c.expected));
    }
}

TEST_F(config_manager_test, override_replaces_company_and_product_until_cleared) {
    manager.override_user_config_folder(tree.path("mine/configs"));
    EXPECT_EQ(manager.user_config(L"x").as_native_string(), native("mine/configs/x.xml"));
    EXPECT_TRUE(fs::is_directory(tree.native("mine/configs")));
    EXPECT_FALSE(tree.has("cfg/Norvane"));

    manager.override_user_config_folder(path_t());
    EXPECT_EQ(manager.user_config(L"x").as_native_string(), native("cfg/Norvane/Product/x.xml"));
}

TEST_F(config_manager_test, default_file_is_computed_never_created) {
    EXPECT_EQ(manager.default_config(L"x").as_native_string(), native("defaults/x.xml"));
    EXPECT_EQ(manager.default_config(L"sub\\x").as_native_string(), native("defaults/sub/x.xml"));
    EXPECT_FALSE(tree.has("defaults"));
}

TEST_F(config_manager_test, copies_answer_as_the_source_does) {
    manager.set_company_name(L"Acme");
    manager.override_user_config_folder(tree.path("over"));
    const config_manager_t copy(manager);
    config_manager_t assigned(L"elsewhere", L"Other");
    assigned = manager;
    for (const config_manager_t* m : {&copy, static_cast<const config_manager_t*>(&assigned)}) {
        EXPECT_EQ(m->user_config(L"x"), manager.user_config(L"x"));
        EXPECT_EQ(m->default_config(L"x"), manager.default_config(L"x"));
    }
    manager.override_user_config_folder(path_t());
    EXPECT_EQ(copy.user_config(L"x").as_native_string(), native("over/x.xml"));
}

TEST_F(config_manager_test, failed_folder_creation_still_gives_the_file_path) {
    tree.write("blocker");
    manager.override_user_config_folder(tree.path("blocker/sub"));
    EXPECT_EQ(manager.user_config(L"x").as_native_string(), native("blocker/sub/x.xml"));
}

} // namespace
