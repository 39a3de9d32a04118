// Where a program's shipped default configuration files lie and where each user's copies go.
#pragma once

#include <velmor2/export.hpp>
#include <velmor2/path.hpp>

#include <string>

namespace velmor2 {

/// Locates configuration files named `name.xml`: the default one in a fixed folder, the user's
/// one under the per-user application-data folder, a company folder and a product folder (or in
/// a folder set explicitly). It computes paths and creates the user's folder; it never reads,
/// writes or copies a file.
///
///   default folder C:\App\defaults, product Editor, name settings:
///   default_config  => C:\App\defaults\settings.xml
///   user_config     => <per-user application data>\Norvane\Editor\settings.xml
class VELMOR_API config_manager_t {
  public:
    /// Keeps both folders as given; the company name starts as "Norvane", no override.
    config_manager_t(const std::wstring& default_folder, const std::wstring& product_folder);
    /// Copies the folders, the company name and the override.
    config_manager_t(const config_manager_t& other);
    /// Copies the folders, the company name and the override.
    config_manager_t& operator=(const config_manager_t& other);
    /// Nothing to release beyond the members.
    virtual ~config_manager_t();

    /// Replaces the company folder name; an empty name puts the product folder directly in the
    /// per-user application-data folder.
    void set_company_name(const std::wstring& name);
    /// Puts the user's files in `folder` instead; the empty path restores the company and
    /// product layout.
    void override_user_config_folder(const path_t& folder);

    /// The user's file for `name`: the override folder, or the per-user application-data
    /// folder with the company and product folders; that folder is created (a failure does not
    /// stop the look-up). A `name` with separators gives sub-folders.
    path_t user_config(const std::wstring& name) const { return get_user_config(name); }
    /// The shipped default file for `name`: the default folder joined with `name.xml`, whether
    /// it exists or not; nothing is created.
    path_t default_config(const std::wstring& name) const { return get_default_config(name); }

  private:
    path_t get_user_config(const std::wstring& name) const;
    path_t get_default_config(const std::wstring& name) const;

    std::wstring default_folder_;
    std::wstring product_folder_;
    std::wstring company_name_;
    path_t user_folder_;
};

} // namespace velmor2
