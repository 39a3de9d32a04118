// Encoding detection of files read in chunks.
#pragma once

#include <velmor2/path.hpp>
#include <velmor2/text_file.hpp>

#include <cstddef>

namespace velmor2::_internal {

/// `get_file_cp`, reading the file `chunk_size` bytes at a time (at least one).
code_page_t detect_file_code_page(const path_t& file, std::size_t chunk_size);

} // namespace velmor2::_internal
