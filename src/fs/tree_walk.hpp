// What the walks over trees share.
#pragma once

#include <cstddef>

namespace velmor2::_internal {

/// Directories a walk keeps open along its way down; deeper, each parent is released while its
/// sub-directory is walked and reacquired through the sub-directory's `..` afterwards, so that
/// a chain of thousands of levels does not exhaust the process's descriptors.
constexpr std::size_t open_levels = 32;

} // namespace velmor2::_internal
