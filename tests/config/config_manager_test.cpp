// config_manager_t: default and per-user file locations, with the per-user folder redirected.
#include "support/temp_tree.hpp"
#include "support/user_config_root.hpp"

#include <velmor2/configuration_files.hpp>

#include <filesystem>
#include <gtest/gtest.h>

namespace {

namespace fs = std::filesystem;
using velmor2::config_manager_t;
using velmor2::path_t;
using velmor_test::temp_tree_t;
using velmor_test::user_config_root_t;

class config_manager_test : public ::testing::Test {
  protected:
    config_manager_test() {
        // Outer folders first: the removal runs the other way round.
        for (const std::string company : {"Norvane", "Acme"}) {
            config.remove_afterwards(company);
            config.remove_afterwards(company + "/" + product);
        }
        config.remove_afterwards(product);
    }
    // The native text of `file` in the product folder, which lies in the `company` folder (or
    // directly, for an empty company) of the per-user folder.
    std::wstring user(const std::string& company, const std::string& file = "") const {
        std::string relative = company.empty() ? product : company + "/" + product;
        if (!file.empty()) {
            relative += "/" + file;
        }
        return config.native(relative).wstring();
    }
    std::wstring native(const std::string& relative) const {
        return tree.native(relative).wstring();
    }
    temp_tree_t tree;
    user_config_root_t config{tree};
    const std::string product = user_config_root_t::unique_name();
    config_manager_t manager{tree.native("defaults").wstring(), fs::u8path(product).wstring()};
};

TEST_F(config_manager_test, user_file_under_company_and_product_or_override_default_never_made) {
    // An override replaces company and product until cleared.
    manager.override_user_config_folder(tree.path("mine/configs"));
    EXPECT_EQ(manager.user_config(L"x").as_native_string(), native("mine/configs/x.xml"));
    EXPECT_TRUE(fs::is_directory(tree.native("mine/configs")));
    EXPECT_FALSE(fs::exists(user("Norvane")));
    // A folder that cannot be made still gives the file's path.
    tree.write("blocker");
    manager.override_user_config_folder(tree.path("blocker/sub"));
    EXPECT_EQ(manager.user_config(L"x").as_native_string(), native("blocker/sub/x.xml"));
    manager.override_user_config_folder(path_t());

    EXPECT_EQ(manager.user_config(L"x").as_native_string(), user("Norvane", "x.xml"));
    for (const char* company : {"Acme", "", "Norvane"}) {
        SCOPED_TRACE(company);
        manager.set_company_name(fs::u8path(company).wstring());
        EXPECT_EQ(manager.user_config(L"x").as_native_string(), user(company, "x.xml"));
        EXPECT_TRUE(fs::is_directory(user(company)));
        EXPECT_FALSE(fs::exists(user(company, "x.xml")));
    }

    // The default file is computed, never created.
    EXPECT_EQ(manager.default_config(L"x").as_native_string(), native("defaults/x.xml"));
    EXPECT_EQ(manager.default_config(L"sub\\x").as_native_string(), native("defaults/sub/x.xml"));
    EXPECT_FALSE(tree.has("defaults"));
}

} // namespace
