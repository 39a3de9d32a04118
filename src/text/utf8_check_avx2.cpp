// UTF-8 validation 32 bytes at a time with AVX2: each byte is classified by three 16-entry
// table look-ups (high and low nibble of the byte before, high nibble of the byte itself) whose
// conjunction flags every two-byte error; a second test checks where three- and four-byte
// sequences need their further continuation bytes.
#include "text/utf8_check.hpp"

#include "cpu/features.hpp"

#if VELMOR_X86_ENGINES

#include <cstdint>
#include <cstring>
#include <immintrin.h>

#define VELMOR_AVX2 __attribute__((target("avx2")))

namespace velmor2::_internal {
namespace {

// Error classes of a byte pair (byte 1 = the byte before, byte 2 = the byte itself).
constexpr std::uint8_t too_short = 1 << 0;      // lead followed by ASCII or another lead
constexpr std::uint8_t too_long = 1 << 1;       // ASCII followed by a continuation
constexpr std::uint8_t overlong_3 = 1 << 2;     // E0 80..9F
constexpr std::uint8_t too_large = 1 << 3;      // F4 90..BF, F5..FF
constexpr std::uint8_t surrogate = 1 << 4;      // ED A0..BF
constexpr std::uint8_t overlong_2 = 1 << 5;     // C0, C1
constexpr std::uint8_t too_large_1000 = 1 << 6; // F5..FF 80..8F
constexpr std::uint8_t overlong_4 = 1 << 6;     // F0 80..8F
constexpr std::uint8_t two_conts = 1 << 7;      // continuation after continuation
constexpr std::uint8_t carry = too_short | too_long | two_conts;

VELMOR_AVX2 inline __m256i table16(std::uint8_t v0, std::uint8_t v1, std::uint8_t v2,
                                   std::uint8_t v3, std::uint8_t v4, std::uint8_t v5,
                                   std::uint8_t v6, std::uint8_t v7, std::uint8_t v8,
                                   std::uint8_t v9, std::uint8_t v10, std::uint8_t v11,
                                   std::uint8_t v12, std::uint8_t v13, std::uint8_t v14,
                                   std::uint8_t v15) {
    return _mm256_setr_epi8(static_cast<char>(v0), static_cast<char>(v1), static_cast<char>(v2),
                            static_cast<char>(v3), static_cast<char>(v4), static_cast<char>(v5),
                            static_cast<char>(v6), static_cast<char>(v7), static_cast<char>(v8),
                            static_cast<char>(v9), static_cast<char>(v10), static_cast<char>(v11),
                            static_cast<char>(v12), static_cast<char>(v13), static_cast<char>(v14),
                            static_cast<char>(v15), static_cast<char>(v0), static_cast<char>(v1),
                            static_cast<char>(v2), static_cast<char>(v3), static_cast<char>(v4),
                            static_cast<char>(v5), static_cast<char>(v6), static_cast<char>(v7),
                            static_cast<char>(v8), static_cast<char>(v9), static_cast<char>(v10),
                            static_cast<char>(v11), static_cast<char>(v12), static_cast<char>(v13),
                            static_cast<char>(v14), static_cast<char>(v15));
}

struct tables_t {
    __m256i byte_1_high;
    __m256i byte_1_low;
    __m256i byte_2_high;
    __m256i nibble_mask;
    __m256i incomplete_limit;
};

VELMOR_AVX2 tables_t make_tables() {
    tables_t t;
    t.byte_1_high = table16(too_long, too_long, too_long, too_long, too_long, too_long, too_long,
                            too_long, two_conts, two_conts, two_conts, two_conts,
                            too_short | overlong_2, too_short, too_short | overlong_3 | surrogate,
                            too_short | too_large | too_large_1000 | overlong_4);
    constexpr std::uint8_t large = carry | too_large | too_large_1000;
    t.byte_1_low = table16(carry | overlong_3 | overlong_2 | overlong_4, carry | overlong_2, carry,
                           carry, carry | too_large, large, large, large, large, large, large,
                           large, large, large | surrogate, large, large);
    constexpr std::uint8_t cont_80 =
        too_long | overlong_2 | two_conts | overlong_3 | too_large_1000 | overlong_4;
    constexpr std::uint8_t cont_90 = too_long | overlong_2 | two_conts | overlong_3 | too_large;
    constexpr std::uint8_t cont_a0 = too_long | overlong_2 | two_conts | surrogate | too_large;
    t.byte_2_high = table16(too_short, too_short, too_short, too_short, too_short, too_short,
                            too_short, too_short, cont_80, cont_90, cont_a0, cont_a0, too_short,
                            too_short, too_short, too_short);
    t.nibble_mask = _mm256_set1_epi8(0x0F);
    // A block that ends in a lead byte whose sequence it does not complete.
    t.incomplete_limit =
        _mm256_setr_epi8(-1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1,
                         -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, static_cast<char>(0xF0 - 1),
                         static_cast<char>(0xE0 - 1), static_cast<char>(0xC0 - 1));
    return t;
}

// The input shifted by `n` bytes towards the end, the gap filled from the previous block.
template <int n> VELMOR_AVX2 inline __m256i previous(__m256i input, __m256i prev_input) {
    return _mm256_alignr_epi8(input, _mm256_permute2x128_si256(prev_input, input, 0x21), 16 - n);
}

VELMOR_AVX2 inline __m256i check_block(const tables_t& t, __m256i input, __m256i prev_input) {
    const __m256i prev1 = previous<1>(input, prev_input);
    const __m256i b1_high = _mm256_shuffle_epi8(
        t.byte_1_high, _mm256_and_si256(_mm256_srli_epi16(prev1, 4), t.nibble_mask));
    const __m256i b1_low =
        _mm256_shuffle_epi8(t.byte_1_low, _mm256_and_si256(prev1, t.nibble_mask));
    const __m256i b2_high = _mm256_shuffle_epi8(
        t.byte_2_high, _mm256_and_si256(_mm256_srli_epi16(input, 4), t.nibble_mask));
    const __m256i special = _mm256_and_si256(_mm256_and_si256(b1_high, b1_low), b2_high);
    // Two continuations in a row are right only as the third or fourth byte of a sequence.
    const __m256i prev2 = previous<2>(input, prev_input);
    const __m256i prev3 = previous<3>(input, prev_input);
    const __m256i third = _mm256_subs_epu8(prev2, _mm256_set1_epi8(static_cast<char>(0xE0 - 0x80)));
    const __m256i fourth =
        _mm256_subs_epu8(prev3, _mm256_set1_epi8(static_cast<char>(0xF0 - 0x80)));
    const __m256i must_continue =
        _mm256_and_si256(_mm256_or_si256(third, fourth), _mm256_set1_epi8(static_cast<char>(0x80)));
    return _mm256_xor_si256(must_continue, special);
}

VELMOR_AVX2 inline __m256i incomplete(const tables_t& t, __m256i input) {
    return _mm256_subs_epu8(input, t.incomplete_limit);
}

// A sequence boundary before which everything was checked, given that the checks of the bytes
// before `pos` found nothing: only sequences that began in the last three bytes are open.
std::size_t safe_boundary(const char* p, std::size_t pos) {
    std::size_t b = pos >= 3 ? pos - 3 : 0;
    while (b > 0 && (static_cast<unsigned char>(p[b]) & 0xC0) == 0x80) {
        --b;
    }
    return b;
}

// The running state of the check between 64-byte steps.
struct checker_t {
    tables_t t;
    __m256i prev_input;
    __m256i prev_incomplete;

    // Checks the 64 bytes at `block`; false when they hold an error.
    VELMOR_AVX2 bool step(const char* block) {
        const __m256i a = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(block));
        const __m256i b = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(block + 32));
        __m256i error;
        if (_mm256_movemask_epi8(_mm256_or_si256(a, b)) == 0) {
            error = prev_incomplete;
            prev_incomplete = _mm256_setzero_si256();
        } else {
            error = _mm256_or_si256(check_block(t, a, prev_input), check_block(t, b, a));
            prev_incomplete = incomplete(t, b);
        }
        prev_input = b;
        return _mm256_testz_si256(error, error) != 0;
    }
};

} // namespace

VELMOR_AVX2 std::size_t valid_utf8_prefix_avx2(const char* p, std::size_t count) {
    checker_t checker{make_tables(), _mm256_setzero_si256(), _mm256_setzero_si256()};
    std::size_t pos = 0;
    for (; pos + 64 <= count; pos += 64) {
        if (!checker.step(p + pos)) {
            return safe_boundary(p, pos);
        }
    }
    // The tail, padded with zero bytes: ASCII, so an unfinished last sequence shows as an error.
    char tail[64] = {};
    if (count > pos) {
        std::memcpy(tail, p + pos, count - pos);
    }
    if (!checker.step(tail) ||
        !_mm256_testz_si256(checker.prev_incomplete, checker.prev_incomplete)) {
        return safe_boundary(p, pos);
    }
    return count;
}

} // namespace velmor2::_internal

#else

namespace velmor2::_internal {

std::size_t valid_utf8_prefix_avx2(const char* p, std::size_t count) {
    return valid_utf8_prefix_portable(p, count);
}

} // namespace velmor2::_internal

#endif
