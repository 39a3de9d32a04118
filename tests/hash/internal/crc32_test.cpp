#include "hash/crc32.hpp"
#include "support/temp_tree.hpp"

#include <velmor2/hash.hpp>

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

namespace {

using namespace velmor2;
using velmor_test::temp_tree_t;

// CRC-32 one bit at a time, from the definition.
std::uint32_t bitwise_crc(const std::string& data) {
    std::uint32_t r = 0xFFFFFFFF;
    for (const char c : data) {
        r ^= static_cast<unsigned char>(c);
        for (int bit = 0; bit < 8; ++bit) {
            r = (r >> 1) ^ ((r & 1) ? 0xEDB88320u : 0u);
        }
    }
    return r ^ 0xFFFFFFFF;
}

TEST(crc32, engines_agree_with_the_check_value_and_bitwise_at_every_length_and_alignment) {
    temp_tree_t dir;
    EXPECT_EQ(bitwise_crc("123456789"), 0xCBF43926u);
    EXPECT_EQ(generate_hash(dir.make_file("check", "123456789")), 0xCBF43926ul);
    std::mt19937 rng(3);
    std::vector<std::uint8_t> data(4200);
    for (auto& byte : data) {
        byte = static_cast<std::uint8_t>(rng());
    }
    for (std::size_t length = 0; length < 1100; length += 1 + length / 64) {
        for (std::size_t offset : {0, 1, 7, 15}) {
            SCOPED_TRACE(std::to_string(length) + " at " + std::to_string(offset));
            const std::string bytes(data.begin() + offset, data.begin() + offset + length);
            const std::uint32_t expected = bitwise_crc(bytes);
            const std::uint8_t* p = data.data() + offset;
            for (const auto engine :
                 {_internal::crc32_update_portable, _internal::crc32_update_pclmul,
                  _internal::crc32_update_isal}) {
                ASSERT_EQ(engine(0xFFFFFFFF, p, length) ^ 0xFFFFFFFF, expected);
            }
            const std::size_t half = length / 2;
            ASSERT_EQ(update_hash(update_hash(0, p, half), p + half, length - half), expected);
        }
    }
}

struct wide_case_t {
    std::wstring text;
    std::string bytes;
};

TEST(crc32, wide_strings_hash_their_utf16le_bytes_unreadable_files_zero) {
    std::string cjk;
    for (int i = 0; i < 300; ++i) {
        cjk += std::string("\x00\x4E", 2);
    }
    const wide_case_t cases[] = {
        {L"", ""},
        {L"1", std::string("1\0", 2)},
        {L"hello", std::string("h\0e\0l\0l\0o\0", 10)},
        {L"A\U0001F600\u00E9", std::string("A\0\x3D\xD8\x00\xDE\xE9\x00", 8)},
        {std::wstring(300, L'\u4E00'), cjk},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.bytes.size());
        EXPECT_EQ(generate_hash(c.text), bitwise_crc(c.bytes));
    }
    EXPECT_EQ(generate_hash(std::wstring()), 0ul);

    // Files (the chunk sizes are tested with MD5, which reads them alike); unreadable or empty
    // ones hash to zero.
    temp_tree_t dir;
    std::string data(100000, '\0');
    std::mt19937 rng(8);
    for (char& c : data) {
        c = static_cast<char>(rng());
    }
    const path_t file = dir.make_file("f", data);
    const unsigned long expected = bitwise_crc(data);
    EXPECT_EQ(generate_hash(file, 15), expected);
    EXPECT_EQ(generate_hash(file), expected);
    EXPECT_EQ(generate_hash(file, 0), 0ul);
    EXPECT_EQ(generate_hash(dir.path("missing")), 0ul);
    EXPECT_EQ(generate_hash(dir.make_file("empty", "")), 0ul);
    EXPECT_EQ(generate_hash(path_t()), 0ul);
    EXPECT_EQ(generate_hash(dir.path("")), 0ul);
}

} // namespace
