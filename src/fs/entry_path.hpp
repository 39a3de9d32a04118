// Joining a directory entry's name to its directory.
#pragma once

#include <velmor2/path.hpp>

#include <string>

namespace velmor2::_internal {

/// Appends the entry `name` to `dir`. False, leaving `dir` alone, when no path can name the
/// entry: the name is empty, or the path grammar reads it as something other than one component
/// that prints as itself (`a:b` is a drive path, `x|y` no path at all, `a\b` two names, `"x"`
/// loses its quotes). A walk must never go on with such an entry: appending nothing would leave
/// the directory itself, which it would then recurse into, copy or delete.
bool append_entry(path_t& dir, const std::wstring& name);

} // namespace velmor2::_internal
