#include "support/temp_tree.hpp"

#include <velmor2/hash.hpp>

#include <gtest/gtest.h>

#include <random>
#include <string>

namespace {

using namespace velmor2;
using velmor_test::temp_tree_t;

std::wstring md5_of(const std::string& data) {
    md5_t md5;
    md5.update(data);
    return md5.get_digest_base16();
}

std::string random_bytes(std::size_t size, unsigned seed) {
    std::mt19937 rng(seed);
    std::string data(size, '\0');
    for (char& c : data) {
        c = static_cast<char>(rng());
    }
    return data;
}

struct digest_case_t {
    std::string input;
    const wchar_t* digest;
};

TEST(md5, rfc1321_test_suite_and_padding_boundaries) {
    const digest_case_t cases[] = {
        {"", L"d41d8cd98f00b204e9800998ecf8427e"},
        {"a", L"0cc175b9c0f1b6a831c399e269772661"},
        {"abc", L"900150983cd24fb0d6963f7d28e17f72"},
        {"message digest", L"f96b697d7cb7938d525a2f31aaf161d0"},
        {"abcdefghijklmnopqrstuvwxyz", L"c3fcd3d76192e4007dfb496cca67e13b"},
        {"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789",
         L"d174ab98d277d9f5a5611c2c9f419d9f"},
        {"12345678901234567890123456789012345678901234567890123456789012345678901"
         "23456789"
         "0",
         L"57edf4a22be3c955ac49da2e2107b67a"},
        {std::string(1000000, 'a'), L"7707d6ae4e027c70eea2a935c2296f21"},
        // Around the 56-byte point where the length no longer fits the last block.
        {std::string(55, 'a'), L"ef1772b6dff9a122358552954ad0df65"},
        {std::string(56, 'a'), L"3b0c8ac703f828b04c6c197006d17218"},
        {std::string(63, 'a'), L"b06521f39153d618550606be297466d5"},
        {std::string(64, 'a'), L"014842d480b571495a4a0363793f7367"},
        {std::string(119, 'a'), L"8a7bd0732ed6a28ce75f6dabc90e1613"},
        {std::string(120, 'a'), L"5f61c0ccad4cac44c75ff505e1f1e537"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.input.substr(0, 80));
        EXPECT_EQ(md5_of(c.input), c.digest);
    }
}

TEST(md5, wide_strings_hash_their_utf16le_bytes_reading_the_digest_finishes_nothing) {
    md5_t wide;
    wide.update(std::wstring(L"abc"));
    EXPECT_EQ(wide.get_digest_base16(), L"ce1473cf80c6b3fda8e3dfc006adc315");
    EXPECT_EQ(md5_of(std::string("a\0b\0c\0", 6)), L"ce1473cf80c6b3fda8e3dfc006adc315");

    md5_t pair;
    pair.update(std::wstring(L"A\U0001F600\u00E9"));
    EXPECT_EQ(pair.get_digest_base16(), L"6dd35b7b922ede9b853ba2835bd248e0");

    // What a UTF-16 string can hold and a UTF-32 one spells differently: a lone surrogate
    // stays itself; a value no UTF-16 string can hold is U+FFFD.
    if (sizeof(wchar_t) == 4) {
        md5_t odd;
        odd.update(std::wstring{static_cast<wchar_t>(0xD800), static_cast<wchar_t>(0x110000)});
        EXPECT_EQ(odd.get_digest_base16(), L"8aa003daba86aaad5b8f0621e99b1ef7");
    }

    // Long strings cross the conversion's internal pieces.
    std::wstring long_text;
    std::string long_bytes;
    for (int i = 0; i < 5000; ++i) {
        long_text += i % 7 == 0 ? L"\U0001F600" : L"\u00E9";
        long_bytes += i % 7 == 0 ? std::string("\x3D\xD8\x00\xDE", 4) : std::string("\xE9\x00", 2);
    }
    md5_t from_text;
    from_text.update(long_text);
    EXPECT_EQ(from_text.get_digest_base16(), md5_of(long_bytes));

    // Reading the digest does not finish the computation.
    md5_t md5;
    md5.update(std::string("ab"));
    const md5_digest_t ab = md5.get_digest();
    EXPECT_EQ(md5.get_digest(), ab);
    md5_t copy = md5;
    md5.update(std::string("x"));
    EXPECT_EQ(md5.get_digest_base16(), md5_of("abx"));
    EXPECT_FALSE(copy.get_digest() != ab);
}

TEST(md5, any_split_and_files_in_any_chunk_size_give_the_same_digest_failures_change_nothing) {
    std::mt19937 rng(99);
    const std::string data = random_bytes(5000, 98);
    const std::wstring expected = md5_of(data);
    for (int round = 0; round < 200; ++round) {
        md5_t md5;
        for (std::size_t at = 0; at < data.size();) {
            const std::size_t piece = std::min<std::size_t>(rng() % 150, data.size() - at);
            md5.update(data.substr(at, piece));
            at += piece;
        }
        ASSERT_EQ(md5.get_digest_base16(), expected);
    }

    // Files in any chunk size; failures leave the state alone.
    temp_tree_t dir;
    const std::string file_data = random_bytes(70000, 5);
    const path_t file = dir.make_file("f", file_data);
    for (const std::size_t chunk :
         {std::size_t{1}, std::size_t{63}, std::size_t{64}, std::size_t{65}, std::size_t{4096},
          std::size_t{70000}, std::size_t{1} << 20, ~std::size_t{0}}) {
        SCOPED_TRACE(chunk);
        md5_t md5;
        md5.update(std::string("prefix"));
        ASSERT_TRUE(md5.update_from_file(file, chunk));
        EXPECT_EQ(md5.get_digest_base16(), md5_of("prefix" + file_data));
    }

    md5_t md5;
    md5.update(std::string("abc"));
    EXPECT_FALSE(md5.update_from_file(dir.path("missing")));
    EXPECT_FALSE(md5.update_from_file(file, 0));
    EXPECT_FALSE(md5.update_from_file(path_t()));
    EXPECT_TRUE(md5.update_from_file(dir.make_file("empty", "")));
    EXPECT_EQ(md5.get_digest_base16(), L"900150983cd24fb0d6963f7d28e17f72");
}

} // namespace
