// Narrowing of 32-bit wide characters of the basic plane to UTF-16 units, eight at a time with
// SSE2 where the compiler targets it (every x86-64 processor has it).
#include "hash/utf16_bytes.hpp"

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace velmor2::_internal {

std::size_t copy_bmp_units(const wchar_t* p, std::size_t count, char16_t* out) {
    std::size_t i = 0;
#if defined(__SSE2__)
    if constexpr (sizeof(wchar_t) == 4) {
        // SSE2 packs with signed saturation: shift the range to the signed one and back.
        const __m128i bias32 = _mm_set1_epi32(0x8000);
        const __m128i bias16 = _mm_set1_epi16(static_cast<short>(0x8000));
        for (; i + 8 <= count; i += 8) {
            const __m128i a = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + i));
            const __m128i b = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + i + 4));
            const __m128i high = _mm_srli_epi32(_mm_or_si128(a, b), 16);
            if (_mm_movemask_epi8(_mm_cmpeq_epi32(high, _mm_setzero_si128())) != 0xFFFF) {
                break;
            }
            const __m128i packed =
                _mm_packs_epi32(_mm_sub_epi32(a, bias32), _mm_sub_epi32(b, bias32));
            _mm_storeu_si128(reinterpret_cast<__m128i*>(out + i), _mm_add_epi16(packed, bias16));
        }
    }
#endif
    // A shift, not a comparison, so that 16-bit wide characters raise no always-true warning.
    for (; i < count && (static_cast<std::uint32_t>(p[i]) >> 16) == 0; ++i) {
        out[i] = static_cast<char16_t>(p[i]);
    }
    return i;
}

} // namespace velmor2::_internal
