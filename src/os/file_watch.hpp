// Notification of changes to the entries of one folder, for reloading a file that other
// programs replace or rewrite. Nothing here starts a thread: the caller waits on the handle.
#pragma once

#include <cstdint>
#include <string>

namespace velmor2::_internal::os {

/// The value of a handle that watches nothing.
constexpr std::intptr_t no_watch = -1;

/// Starts watching the entries of the folder `printed_folder` (a printed path) for files
/// written, created, renamed into place or removed; `no_watch` when the folder cannot be
/// watched. The handle is a descriptor that turns readable on POSIX and a waitable change
/// notification handle on Windows.
std::intptr_t open_folder_watch(const std::wstring& printed_folder);

/// Takes every pending notification off `watch` without blocking; true when one may concern
/// the entry named `leaf` (an event that cannot be attributed, such as a lost-event overflow,
/// counts as concerning it).
bool drain_folder_watch(std::intptr_t watch, const std::wstring& leaf);

/// Ends a watch from `open_folder_watch`; `no_watch` is ignored.
void close_folder_watch(std::intptr_t watch);

} // namespace velmor2::_internal::os
