// Directory entries as path components.
#include "fs/entry_path.hpp"

namespace velmor2::_internal {

bool append_entry(path_t& dir, const std::wstring& name) {
    if (name.empty()) {
        return false;
    }
    const path_t component(name);
    if (component.is_absolute() || component.get_leaf() != name ||
        !component.get_branch().empty()) {
        return false;
    }
    return dir.append(component);
}

} // namespace velmor2::_internal
