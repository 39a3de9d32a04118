// Keys are read sixteen bytes at a time: four or eight units, tested side by side for key
// form and folded into the hash with one full 64 x 64-bit product, whose mixing depends on
// the process's seed.
#include "config/key_hash.hpp"

#include <chrono>
#include <cstddef>
#include <cstring>

namespace velmor2::_internal {
namespace {

constexpr unsigned lane_bits = 8 * sizeof(wchar_t);

// `value` in every unit-sized lane of a word.
constexpr std::uint64_t lanes(std::uint64_t value) {
    std::uint64_t word = 0;
    for (unsigned at = 0; at < 64; at += lane_bits) {
        word |= value << at;
    }
    return word;
}

// Non-zero when a unit of `word` is not ASCII or is a capital. An ASCII unit stays below
// 0x80 after the additions, so that they carry into no other lane.
std::uint64_t not_key_units(std::uint64_t word) {
    constexpr std::uint64_t unit_mask = (std::uint64_t(1) << lane_bits) - 1;
    const std::uint64_t non_ascii = word & lanes(unit_mask & ~std::uint64_t(0x7F));
    const std::uint64_t capital =
        (word + lanes(0x80 - 'A')) & ~(word + lanes(0x80 - 'Z' - 1)) & lanes(0x80);
    return non_ascii | capital;
}

// Both halves of the 128-bit product, folded.
std::uint64_t fold(std::uint64_t a, std::uint64_t b) {
    __extension__ typedef unsigned __int128 wide_t;
    const wide_t product = static_cast<wide_t>(a) * b;
    return static_cast<std::uint64_t>(product) ^ static_cast<std::uint64_t>(product >> 64);
}

constexpr std::uint64_t secrets[] = {0xa0761d6478bd642fULL, 0xe7037ed1a0b428dbULL,
                                     0x8ebc6af09c88c6e3ULL, 0x589965cc75374cc3ULL};

// Per process: where the stack lies and the time both move from run to run. Every constant a
// word meets is seeded, so that no word can be chosen to cancel what came before it.
struct seeds_t {
    std::uint64_t start;
    std::uint64_t word;
    std::uint64_t state;
};

const seeds_t& seeds() {
    static const seeds_t value = [] {
        const int local = 0;
        const auto place = static_cast<std::uint64_t>(reinterpret_cast<std::uintptr_t>(&local));
        const auto now =
            static_cast<std::uint64_t>(std::chrono::steady_clock::now().time_since_epoch().count());
        const std::uint64_t seed = fold(place ^ secrets[0], now ^ secrets[1]);
        return seeds_t{seed, fold(seed ^ secrets[2], secrets[3]),
                       fold(seed ^ secrets[3], secrets[0])};
    }();
    return value;
}

// Calls `each(first, second)` for every sixteen bytes of `name`, the last ones padded with
// zero units, which are ASCII without capitals; the length goes into the hash apart.
template <typename each_t> void for_each_pair(std::wstring_view name, each_t each) {
    const char* bytes = reinterpret_cast<const char*>(name.data());
    std::size_t left = name.size() * sizeof(wchar_t);
    std::uint64_t words[2];
    for (; left >= sizeof words; bytes += sizeof words, left -= sizeof words) {
        std::memcpy(words, bytes, sizeof words);
        each(words[0], words[1]);
    }
    if (left > 0) {
        words[0] = words[1] = 0;
        std::memcpy(words, bytes, left);
        each(words[0], words[1]);
    }
}

} // namespace

key_hash_t hash_key(std::wstring_view name) {
    const seeds_t& seed = seeds();
    std::uint64_t hash = seed.start;
    std::uint64_t not_key = 0;
    for_each_pair(name, [&](std::uint64_t first, std::uint64_t second) {
        not_key |= not_key_units(first) | not_key_units(second);
        hash = fold(first ^ seed.word, second ^ seed.state ^ hash);
    });
    return {fold(hash ^ secrets[2], name.size() ^ secrets[3]), not_key == 0};
}

bool is_key_form(std::wstring_view name) {
    std::uint64_t not_key = 0;
    for_each_pair(name, [&](std::uint64_t first, std::uint64_t second) {
        not_key |= not_key_units(first) | not_key_units(second);
    });
    return not_key == 0;
}

} // namespace velmor2::_internal
