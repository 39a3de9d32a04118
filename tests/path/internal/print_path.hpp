// Shows a path in test failures by its printed form.
#pragma once

#include "unicode/convert.hpp"

#include <velmor2/path.hpp>

#include <ostream>

namespace velmor2 {

inline void PrintTo(const path_t& path, std::ostream* out) {
    *out << "path [" << _internal::to_utf8(path.as_string()) << "]";
}

} // namespace velmor2
