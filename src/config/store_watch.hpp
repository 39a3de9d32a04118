// What a store keeps about the file it watches.
#pragma once

#include <velmor2/configuration.hpp>

#include "os/file_watch.hpp"

#include <map>
#include <string>

namespace velmor2::_internal {

/// The watched file, the folder watch that reports on it, and the saved text of each of its
/// values when it was last read.
struct store_watch_t {
    path_t file;
    std::intptr_t handle = os::no_watch;
    std::map<std::wstring, std::string> on_disk;

    store_watch_t() = default;
    store_watch_t(const store_watch_t&) = delete;
    store_watch_t& operator=(const store_watch_t&) = delete;
    ~store_watch_t() { os::close_folder_watch(handle); }
};

} // namespace velmor2::_internal
