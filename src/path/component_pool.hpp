// Recycled component nodes: most paths are built, used and dropped again at once (a directory
// walk makes one per entry), so the list nodes and name buffers of dropped paths are kept per
// thread and filled again by the next parse instead of going back to the allocator.
#pragma once

#include <list>
#include <string>

namespace velmor2::_internal {

/// Appends the name [first, last) to `components`, reusing a node kept on this thread if any.
void append_component(std::list<std::wstring>& components, const wchar_t* first,
                      const wchar_t* last);

/// Empties `components`, keeping its nodes for later appends on this thread (up to a bound;
/// the rest, and large buffers, are freed).
void recycle_components(std::list<std::wstring>& components) noexcept;

} // namespace velmor2::_internal
