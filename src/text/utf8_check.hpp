// Fast validity check of a whole UTF-8 buffer, used before the per-sequence scan.
#pragma once

#include <cstddef>

namespace velmor2::_internal {

/// Length of a prefix of the `count` bytes at `p` that is proven to consist of whole, valid
/// UTF-8 sequences: `count` when the whole buffer is valid, otherwise a sequence boundary at or
/// before the first invalid sequence. The engine (vector instructions when the processor has
/// them) is chosen once.
std::size_t valid_utf8_prefix(const char* p, std::size_t count);

/// The vector engine's answer; only to be called when the processor supports AVX2.
std::size_t valid_utf8_prefix_avx2(const char* p, std::size_t count);

/// The portable engine's answer.
std::size_t valid_utf8_prefix_portable(const char* p, std::size_t count);

} // namespace velmor2::_internal
