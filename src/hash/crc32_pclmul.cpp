// CRC-32 by carry-less multiplication: four 128-bit lanes are folded forward over 64-byte
// blocks, folded into one lane, reduced to 64 bits and then, by Barrett reduction, to the
// 32-bit remainder. The constants are powers of x modulo the bit-reflected polynomial. It serves
// where ISA-L is not built in, the Windows build among them (docs/performance.md, "CRC-32 of a
// buffer": about twice the speed of zlib, under half that of ISA-L).
#include "hash/crc32.hpp"

#include "cpu/features.hpp"

#if VELMOR_X86_ENGINES

#include <immintrin.h>

#define VELMOR_PCLMUL __attribute__((target("pclmul,sse4.1")))

namespace velmor2::_internal {
namespace {

// x^(4*128+32) and x^(4*128-32) mod P: one lane folded across four.
constexpr std::uint64_t k1 = 0x0154442bd4, k2 = 0x01c6e41596;
// x^(128+32) and x^(128-32) mod P: one lane folded into the next.
constexpr std::uint64_t k3 = 0x01751997d0, k4 = 0x00ccaa009e;
// x^64 mod P: 96 bits down to 64.
constexpr std::uint64_t k5 = 0x0163cd6124;
// The polynomial and its Barrett quotient x^64 / P.
constexpr std::uint64_t poly = 0x01db710641, mu = 0x01f7011641;

VELMOR_PCLMUL inline __m128i load(const std::uint8_t* p) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
}

// lane * (x^a, x^b) folded onto `next`.
VELMOR_PCLMUL inline __m128i fold(__m128i lane, __m128i keys, __m128i next) {
    const __m128i low = _mm_clmulepi64_si128(lane, keys, 0x00);
    const __m128i high = _mm_clmulepi64_si128(lane, keys, 0x11);
    return _mm_xor_si128(_mm_xor_si128(low, high), next);
}

// At least 64 bytes, a multiple of 16.
VELMOR_PCLMUL std::uint32_t fold_blocks(std::uint32_t crc, const std::uint8_t* data,
                                        std::size_t size) {
    __m128i x1 = _mm_xor_si128(load(data), _mm_cvtsi32_si128(static_cast<int>(crc)));
    __m128i x2 = load(data + 16);
    __m128i x3 = load(data + 32);
    __m128i x4 = load(data + 48);
    data += 64;
    size -= 64;

    const __m128i k1k2 = _mm_set_epi64x(static_cast<long long>(k2), static_cast<long long>(k1));
    for (; size >= 64; size -= 64, data += 64) {
        x1 = fold(x1, k1k2, load(data));
        x2 = fold(x2, k1k2, load(data + 16));
        x3 = fold(x3, k1k2, load(data + 32));
        x4 = fold(x4, k1k2, load(data + 48));
    }

    const __m128i k3k4 = _mm_set_epi64x(static_cast<long long>(k4), static_cast<long long>(k3));
    x1 = fold(x1, k3k4, x2);
    x1 = fold(x1, k3k4, x3);
    x1 = fold(x1, k3k4, x4);
    for (; size >= 16; size -= 16, data += 16) {
        x1 = fold(x1, k3k4, load(data));
    }

    // 128 bits to 64.
    const __m128i mask32 = _mm_setr_epi32(-1, 0, -1, 0);
    __m128i x2r = _mm_clmulepi64_si128(x1, k3k4, 0x10);
    x1 = _mm_xor_si128(_mm_srli_si128(x1, 8), x2r);
    const __m128i k5k0 = _mm_set_epi64x(0, static_cast<long long>(k5));
    x2r = _mm_srli_si128(x1, 4);
    x1 = _mm_and_si128(x1, mask32);
    x1 = _mm_clmulepi64_si128(x1, k5k0, 0x00);
    x1 = _mm_xor_si128(x1, x2r);

    // Barrett reduction to 32 bits.
    const __m128i polymu = _mm_set_epi64x(static_cast<long long>(mu), static_cast<long long>(poly));
    __m128i t = _mm_and_si128(x1, mask32);
    t = _mm_clmulepi64_si128(t, polymu, 0x10);
    t = _mm_and_si128(t, mask32);
    t = _mm_clmulepi64_si128(t, polymu, 0x00);
    x1 = _mm_xor_si128(x1, t);
    return static_cast<std::uint32_t>(_mm_extract_epi32(x1, 1));
}

} // namespace

std::uint32_t crc32_update_pclmul(std::uint32_t crc, const std::uint8_t* data, std::size_t size) {
    if (size >= 64) {
        const std::size_t folded = size & ~std::size_t{15};
        crc = fold_blocks(crc, data, folded);
        data += folded;
        size -= folded;
    }
    return crc32_update_portable(crc, data, size);
}

} // namespace velmor2::_internal

#else

namespace velmor2::_internal {

std::uint32_t crc32_update_pclmul(std::uint32_t crc, const std::uint8_t* data, std::size_t size) {
    return crc32_update_portable(crc, data, size);
}

} // namespace velmor2::_internal

#endif
