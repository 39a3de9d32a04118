// CRC-32 by ISA-L where the build found it: its folding engines take the widest carry-less
// multiplication the processor offers (512-bit lanes where there are any), several times the
// speed of our own 128-bit folding (docs/performance.md, "CRC-32 of a buffer").
#include "hash/crc32.hpp"

#if defined(VELMOR_HAVE_ISAL)

#include <isa-l/crc.h>

namespace velmor2::_internal {

bool has_isal() {
    return true;
}

std::uint32_t crc32_update_isal(std::uint32_t crc, const std::uint8_t* data, std::size_t size) {
    // ISA-L takes and gives the finished value, the register inverted.
    return ~crc32_gzip_refl(~crc, data, size);
}

} // namespace velmor2::_internal

#else

namespace velmor2::_internal {

bool has_isal() {
    return false;
}

std::uint32_t crc32_update_isal(std::uint32_t crc, const std::uint8_t* data, std::size_t size) {
    return crc32_update_portable(crc, data, size);
}

} // namespace velmor2::_internal

#endif
