// The MD5 compression function written out step by step: the message words are loaded once,
// the round constants are immediate operands, the rotations are constants, and the round
// functions use the forms with the shortest dependency on the previous step's result.
// Figures: docs/performance.md, "MD5".
#include "hash/md5_transform.hpp"

namespace velmor2::_internal {
namespace {

template <int s> inline std::uint32_t rotate(std::uint32_t x) {
    return (x << s) | (x >> (32 - s));
}

inline std::uint32_t load_le32(const std::uint8_t* p) {
    return static_cast<std::uint32_t>(p[0]) | static_cast<std::uint32_t>(p[1]) << 8 |
           static_cast<std::uint32_t>(p[2]) << 16 | static_cast<std::uint32_t>(p[3]) << 24;
}

// F(b, c, d) = (b & c) | (~b & d), as d ^ (b & (c ^ d)).
template <int s>
inline void step_f(std::uint32_t& a, std::uint32_t b, std::uint32_t c, std::uint32_t d,
                   std::uint32_t word, std::uint32_t k) {
    a += word + k + (d ^ (b & (c ^ d)));
    a = rotate<s>(a) + b;
}

// G(b, c, d) = (b & d) | (c & ~d): the two terms share no bit, so they may be added, and the
// term without b is ready before b is.
template <int s>
inline void step_g(std::uint32_t& a, std::uint32_t b, std::uint32_t c, std::uint32_t d,
                   std::uint32_t word, std::uint32_t k) {
    a += word + k + (c & ~d);
    a += b & d;
    a = rotate<s>(a) + b;
}

template <int s>
inline void step_h(std::uint32_t& a, std::uint32_t b, std::uint32_t c, std::uint32_t d,
                   std::uint32_t word, std::uint32_t k) {
    a += word + k + (b ^ c ^ d);
    a = rotate<s>(a) + b;
}

template <int s>
inline void step_i(std::uint32_t& a, std::uint32_t b, std::uint32_t c, std::uint32_t d,
                   std::uint32_t word, std::uint32_t k) {
    a += word + k + (c ^ (b | ~d));
    a = rotate<s>(a) + b;
}

} // namespace

void md5_transform(std::uint32_t state[4], const std::uint8_t* blocks, std::size_t block_count) {
    std::uint32_t a = state[0], b = state[1], c = state[2], d = state[3];
    for (; block_count > 0; --block_count, blocks += 64) {
        const std::uint32_t x0 = load_le32(blocks), x1 = load_le32(blocks + 4),
                            x2 = load_le32(blocks + 8), x3 = load_le32(blocks + 12),
                            x4 = load_le32(blocks + 16), x5 = load_le32(blocks + 20),
                            x6 = load_le32(blocks + 24), x7 = load_le32(blocks + 28),
                            x8 = load_le32(blocks + 32), x9 = load_le32(blocks + 36),
                            x10 = load_le32(blocks + 40), x11 = load_le32(blocks + 44),
                            x12 = load_le32(blocks + 48), x13 = load_le32(blocks + 52),
                            x14 = load_le32(blocks + 56), x15 = load_le32(blocks + 60);
        const std::uint32_t aa = a, bb = b, cc = c, dd = d;

        step_f<7>(a, b, c, d, x0, 0xd76aa478);
        step_f<12>(d, a, b, c, x1, 0xe8c7b756);
        step_f<17>(c, d, a, b, x2, 0x242070db);
        step_f<22>(b, c, d, a, x3, 0xc1bdceee);
        step_f<7>(a, b, c, d, x4, 0xf57c0faf);
        step_f<12>(d, a, b, c, x5, 0x4787c62a);
        step_f<17>(c, d, a, b, x6, 0xa8304613);
        step_f<22>(b, c, d, a, x7, 0xfd469501);
        step_f<7>(a, b, c, d, x8, 0x698098d8);
        step_f<12>(d, a, b, c, x9, 0x8b44f7af);
        step_f<17>(c, d, a, b, x10, 0xffff5bb1);
        step_f<22>(b, c, d, a, x11, 0x895cd7be);
        step_f<7>(a, b, c, d, x12, 0x6b901122);
        step_f<12>(d, a, b, c, x13, 0xfd987193);
        step_f<17>(c, d, a, b, x14, 0xa679438e);
        step_f<22>(b, c, d, a, x15, 0x49b40821);

        step_g<5>(a, b, c, d, x1, 0xf61e2562);
        step_g<9>(d, a, b, c, x6, 0xc040b340);
        step_g<14>(c, d, a, b, x11, 0x265e5a51);
        step_g<20>(b, c, d, a, x0, 0xe9b6c7aa);
        step_g<5>(a, b, c, d, x5, 0xd62f105d);
        step_g<9>(d, a, b, c, x10, 0x02441453);
        step_g<14>(c, d, a, b, x15, 0xd8a1e681);
        step_g<20>(b, c, d, a, x4, 0xe7d3fbc8);
        step_g<5>(a, b, c, d, x9, 0x21e1cde6);
        step_g<9>(d, a, b, c, x14, 0xc33707d6);
        step_g<14>(c, d, a, b, x3, 0xf4d50d87);
        step_g<20>(b, c, d, a, x8, 0x455a14ed);
        step_g<5>(a, b, c, d, x13, 0xa9e3e905);
        step_g<9>(d, a, b, c, x2, 0xfcefa3f8);
        step_g<14>(c, d, a, b, x7, 0x676f02d9);
        step_g<20>(b, c, d, a, x12, 0x8d2a4c8a);

        step_h<4>(a, b, c, d, x5, 0xfffa3942);
        step_h<11>(d, a, b, c, x8, 0x8771f681);
        step_h<16>(c, d, a, b, x11, 0x6d9d6122);
        step_h<23>(b, c, d, a, x14, 0xfde5380c);
        step_h<4>(a, b, c, d, x1, 0xa4beea44);
        step_h<11>(d, a, b, c, x4, 0x4bdecfa9);
        step_h<16>(c, d, a, b, x7, 0xf6bb4b60);
        step_h<23>(b, c, d, a, x10, 0xbebfbc70);
        step_h<4>(a, b, c, d, x13, 0x289b7ec6);
        step_h<11>(d, a, b, c, x0, 0xeaa127fa);
        step_h<16>(c, d, a, b, x3, 0xd4ef3085);
        step_h<23>(b, c, d, a, x6, 0x04881d05);
        step_h<4>(a, b, c, d, x9, 0xd9d4d039);
        step_h<11>(d, a, b, c, x12, 0xe6db99e5);
        step_h<16>(c, d, a, b, x15, 0x1fa27cf8);
        step_h<23>(b, c, d, a, x2, 0xc4ac5665);

        step_i<6>(a, b, c, d, x0, 0xf4292244);
        step_i<10>(d, a, b, c, x7, 0x432aff97);
        step_i<15>(c, d, a, b, x14, 0xab9423a7);
        step_i<21>(b, c, d, a, x5, 0xfc93a039);
        step_i<6>(a, b, c, d, x12, 0x655b59c3);
        step_i<10>(d, a, b, c, x3, 0x8f0ccc92);
        step_i<15>(c, d, a, b, x10, 0xffeff47d);
        step_i<21>(b, c, d, a, x1, 0x85845dd1);
        step_i<6>(a, b, c, d, x8, 0x6fa87e4f);
        step_i<10>(d, a, b, c, x15, 0xfe2ce6e0);
        step_i<15>(c, d, a, b, x6, 0xa3014314);
        step_i<21>(b, c, d, a, x13, 0x4e0811a1);
        step_i<6>(a, b, c, d, x4, 0xf7537e82);
        step_i<10>(d, a, b, c, x11, 0xbd3af235);
        step_i<15>(c, d, a, b, x2, 0x2ad7d2bb);
        step_i<21>(b, c, d, a, x9, 0xeb86d391);

        a += aa;
        b += bb;
        c += cc;
        d += dd;
    }
    state[0] = a;
    state[1] = b;
    state[2] = c;
    state[3] = d;
}

} // namespace velmor2::_internal
