// The portable UTF-8 check and the choice of engine. Figures: docs/performance.md, "Text
// detection".
#include "text/utf8_check.hpp"

#include "cpu/features.hpp"
#include "unicode/convert.hpp"

#include <cstdint>
#include <cstring>

namespace velmor2::_internal {

std::size_t valid_utf8_prefix_portable(const char* p, std::size_t count) {
    constexpr std::uint64_t high_bits = 0x8080808080808080ull;
    std::size_t i = 0;
    while (i < count) {
        // ASCII dominates real text: skip it eight bytes at a time.
        while (i + 8 <= count) {
            std::uint64_t word;
            std::memcpy(&word, p + i, sizeof word);
            if ((word & high_bits) != 0) {
                break;
            }
            i += 8;
        }
        while (i < count && static_cast<unsigned char>(p[i]) < 0x80) {
            ++i;
        }
        if (i == count) {
            break;
        }
        if (!validate_utf8(p + i, count - i)) {
            return i;
        }
        i += get_utf8_length(p + i, count - i);
    }
    return count;
}

std::size_t valid_utf8_prefix(const char* p, std::size_t count) {
    using engine_t = std::size_t (*)(const char*, std::size_t);
    static const engine_t engine =
        cpu::has_avx2() ? valid_utf8_prefix_avx2 : valid_utf8_prefix_portable;
    return engine(p, count);
}

} // namespace velmor2::_internal
