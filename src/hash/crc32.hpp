// CRC-32 engines: reflected polynomial 0x04C11DB7, check value 0xCBF43926.
#pragma once

#include <cstddef>
#include <cstdint>

namespace velmor2::_internal {

/// Runs `size` bytes through the CRC-32 register `crc` (start with 0xFFFFFFFF, finish by
/// inverting). The engine is chosen once: ISA-L's where the build has it, else carry-less
/// multiplication when the processor has it, else the portable one.
std::uint32_t crc32_update(std::uint32_t crc, const std::uint8_t* data, std::size_t size);

/// The portable engine: eight table look-ups per eight bytes.
std::uint32_t crc32_update_portable(std::uint32_t crc, const std::uint8_t* data, std::size_t size);

/// The carry-less multiplication engine; only to be called when the processor has PCLMULQDQ
/// and SSE4.1.
std::uint32_t crc32_update_pclmul(std::uint32_t crc, const std::uint8_t* data, std::size_t size);

/// True when the build has ISA-L.
bool has_isal();

/// ISA-L's engine; only to be called when `has_isal()` is true.
std::uint32_t crc32_update_isal(std::uint32_t crc, const std::uint8_t* data, std::size_t size);

} // namespace velmor2::_internal
