// The MD5 compression function.
#pragma once

#include <cstddef>
#include <cstdint>

namespace velmor2::_internal {

/// Applies the MD5 compression function of RFC 1321 to `block_count` consecutive 64-byte
/// blocks at `blocks`, chaining through `state`.
void md5_transform(std::uint32_t state[4], const std::uint8_t* blocks, std::size_t block_count);

} // namespace velmor2::_internal
