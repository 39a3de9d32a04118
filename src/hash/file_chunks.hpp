// Reading a whole file piece by piece for hashing.
#pragma once

#include <velmor2/path.hpp>

#include <cstddef>
#include <cstdint>
#include <functional>

namespace velmor2::_internal {

/// How reading a file for hashing ended.
enum class chunks_end_t {
    not_opened, ///< the file could not be opened; nothing was read
    failed,     ///< a read failed; the pieces before it were delivered
    complete,   ///< every byte up to the end of the file was delivered
};

/// Reads `file` `chunk_size` bytes at a time (`chunk_size` > 0) and passes each piece read to
/// `sink`.
chunks_end_t read_chunks(const path_t& file, std::size_t chunk_size,
                         const std::function<void(const std::uint8_t*, std::size_t)>& sink);

} // namespace velmor2::_internal
