// The portable CRC-32 engine (slicing by eight) and the choice of engine.
#include "hash/crc32.hpp"

#include "cpu/features.hpp"

namespace velmor2::_internal {
namespace {

using tables_t = std::uint32_t[8][256];

// Table 0 is the classic byte table; table k advances a byte that sits k positions earlier.
// Built on first use; the values never change.
const tables_t& tables() {
    static const struct built_t {
        tables_t t;
        built_t() : t{} {
            for (std::uint32_t i = 0; i < 256; ++i) {
                std::uint32_t r = i;
                for (int bit = 0; bit < 8; ++bit) {
                    r = (r >> 1) ^ (0xEDB88320u & (0u - (r & 1)));
                }
                t[0][i] = r;
            }
            for (std::uint32_t i = 0; i < 256; ++i) {
                for (int k = 1; k < 8; ++k) {
                    t[k][i] = (t[k - 1][i] >> 8) ^ t[0][t[k - 1][i] & 0xFF];
                }
            }
        }
    } built;
    return built.t;
}

inline std::uint32_t load_le32(const std::uint8_t* p) {
    return static_cast<std::uint32_t>(p[0]) | static_cast<std::uint32_t>(p[1]) << 8 |
           static_cast<std::uint32_t>(p[2]) << 16 | static_cast<std::uint32_t>(p[3]) << 24;
}

} // namespace

std::uint32_t crc32_update_portable(std::uint32_t crc, const std::uint8_t* data, std::size_t size) {
    const tables_t& t = tables();
    for (; size >= 8; size -= 8, data += 8) {
        const std::uint32_t low = load_le32(data) ^ crc;
        const std::uint32_t high = load_le32(data + 4);
        crc = t[7][low & 0xFF] ^ t[6][(low >> 8) & 0xFF] ^ t[5][(low >> 16) & 0xFF] ^
              t[4][low >> 24] ^ t[3][high & 0xFF] ^ t[2][(high >> 8) & 0xFF] ^
              t[1][(high >> 16) & 0xFF] ^ t[0][high >> 24];
    }
    for (; size > 0; --size, ++data) {
        crc = (crc >> 8) ^ t[0][(crc ^ *data) & 0xFF];
    }
    return crc;
}

std::uint32_t crc32_update(std::uint32_t crc, const std::uint8_t* data, std::size_t size) {
    using engine_t = std::uint32_t (*)(std::uint32_t, const std::uint8_t*, std::size_t);
    static const engine_t engine = has_isal()           ? crc32_update_isal
                                   : cpu::has_pclmul() ? crc32_update_pclmul
                                                       : crc32_update_portable;
    return engine(crc, data, size);
}

} // namespace velmor2::_internal
