#include "support/temp_tree.hpp"
#include "text/detect.hpp"
#include "text/utf8_check.hpp"
#include "unicode/convert.hpp"

#include <velmor2/text_file.hpp>

#include <gtest/gtest.h>

#include <random>
#include <string>

namespace {

using namespace velmor2;
using velmor_test::temp_tree_t;

// The detection rule applied byte sequence by byte sequence, straight from its definition.
code_page_t reference_detect(const std::string& b) {
    if (b.empty()) {
        return cp_ansi;
    }
    if (b.size() >= 2 && b[0] == '\xFF' && b[1] == '\xFE') {
        return cp_utf16;
    }
    if (b.size() == 1) {
        return cp_utf8;
    }
    for (std::size_t p = 0;;) {
        if (!_internal::validate_utf8(b.data() + p, b.size() - p)) {
            return cp_ansi;
        }
        p += _internal::get_utf8_length(b.data() + p, b.size() - p);
        if (p >= b.size() - 1) {
            return cp_utf8;
        }
    }
}

bool whole_valid(const std::string& b) {
    for (std::size_t p = 0; p < b.size();
         p += _internal::get_utf8_length(b.data() + p, b.size() - p)) {
        if (!_internal::validate_utf8(b.data() + p, b.size() - p)) {
            return false;
        }
    }
    return true;
}

// Mostly valid text of every sequence length, with now and then a damaged, dropped or random
// byte: the mix that exercises every error class at every offset of a vector block.
std::string random_text(std::mt19937& rng, std::size_t length) {
    static const char* const pieces[] = {"a",
                                         "Z",
                                         "\n",
                                         "\xC3\xA9",
                                         "\xDF\xBF",
                                         "\xE2\x82\xAC",
                                         "\xED\x9F\xBF",
                                         "\xEF\xBF\xBD",
                                         "\xF0\x9F\x98\x80",
                                         "\xF4\x8F\xBF\xBF",
                                         "\xE0\xA0\x80",
                                         "\xF0\x90\x80\x80"};
    std::string out;
    while (out.size() < length) {
        out += pieces[rng() % (sizeof pieces / sizeof *pieces)];
    }
    out.resize(length);
    const unsigned damage = rng() % 4;
    for (unsigned i = 0; i < damage && !out.empty(); ++i) {
        const std::size_t at = rng() % out.size();
        switch (rng() % 3) {
        case 0:
            out[at] = static_cast<char>(rng());
            break;
        case 1:
            out.erase(at, 1);
            break;
        default:
            out[at] = static_cast<char>(0x80 | (rng() & 0x7F));
        }
    }
    return out;
}

struct detect_case_t {
    const char* name;
    std::string bytes;
    code_page_t expected;
};

TEST(get_file_cp, boundary_cases_unopenable_files_and_the_engines_agree) {
    const detect_case_t cases[] = {
        {"empty", "", cp_ansi},
        {"one byte E9", "\xE9", cp_utf8},
        {"one byte FF", "\xFF", cp_utf8},
        {"ascii", "hello\r\nworld", cp_utf8},
        {"lone lead byte last", "abc\xC3", cp_utf8},
        {"lone lead byte in the middle", "ab\xC3\x63\x64", cp_ansi},
        {"truncated three-byte sequence at the end", "ab\xE2\x82", cp_ansi},
        {"complete sequence at the end", "abc\xE2\x82\xAC", cp_utf8},
        {"bad last byte after ascii", "a\xFF", cp_utf8},
        {"bad first byte", "\xFF\x61", cp_ansi},
        {"FF FE alone", "\xFF\xFE", cp_utf16},
        {"FF FE and anything", "\xFF\xFE\xC3\x00\xFF", cp_utf16},
        {"FE FF is not a mark", std::string("\xFE\xFF\0a", 4), cp_ansi},
        {"UTF-8 mark", "\xEF\xBB\xBFtext", cp_utf8},
        {"overlong", "\xC0\x80x", cp_ansi},
        {"surrogate", "x\xED\xA0\x80x", cp_ansi},
        {"windows-1252", "Gr\xFC\xDF\x65", cp_ansi},
        {"zero bytes", std::string("a\0b", 3), cp_utf8},
    };
    temp_tree_t dir;
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(get_file_cp(dir.make_file("f", c.bytes)), c.expected);
        EXPECT_EQ(get_bytes_cp(c.bytes.data(), c.bytes.size()), c.expected);
        EXPECT_EQ(reference_detect(c.bytes), c.expected);
    }
    EXPECT_EQ(get_file_cp(dir.path("missing.txt")), cp_unknown);
    EXPECT_EQ(get_file_cp(dir.path("")), cp_unknown);
    EXPECT_EQ(get_file_cp(path_t()), cp_unknown);

    // The UTF-8 engines agree with the sequence scan.
    std::mt19937 rng(12345);
    for (int i = 0; i < 20000; ++i) {
        const std::string text = random_text(rng, rng() % 300);
        SCOPED_TRACE(testing::PrintToString(text));
        const bool valid = whole_valid(text);
        for (const auto engine :
             {_internal::valid_utf8_prefix_portable, _internal::valid_utf8_prefix_avx2,
              _internal::valid_utf8_prefix}) {
            const std::size_t prefix = engine(text.data(), text.size());
            ASSERT_EQ(prefix == text.size(), valid);
            ASSERT_LE(prefix, text.size());
            ASSERT_TRUE(whole_valid(text.substr(0, prefix)));
        }
        ASSERT_EQ(get_bytes_cp(text.data(), text.size()), reference_detect(text));
    }
}

TEST(get_file_cp, chunked_reading_gives_the_answer_of_the_whole_and_one_error_anywhere) {
    temp_tree_t dir;
    std::mt19937 rng(777);
    for (int i = 0; i < 400; ++i) {
        const std::string text = random_text(rng, 1 + rng() % 200);
        const path_t file = dir.make_file("f", text);
        const code_page_t expected = reference_detect(text);
        for (const std::size_t chunk : {1, 2, 3, 4, 5, 7, 64, 65, 4096}) {
            SCOPED_TRACE(testing::PrintToString(text) + " chunk " + std::to_string(chunk));
            ASSERT_EQ(_internal::detect_file_code_page(file, chunk), expected);
        }
    }

    // Large files with one error anywhere.
    std::string text;
    while (text.size() < 600 * 1024) {
        text += "plain text and \xC3\xA9t\xC3\xA9 \xE2\x82\xAC \xF0\x9F\x98\x80\n";
    }
    text.resize(600 * 1024 - 3);
    EXPECT_EQ(get_file_cp(dir.make_file("f", text)), reference_detect(text));
    for (const std::size_t at :
         {std::size_t{0}, std::size_t{256 * 1024 - 1}, std::size_t{256 * 1024},
          std::size_t{512 * 1024 + 1}, text.size() - 2, text.size() - 1}) {
        SCOPED_TRACE(at);
        std::string damaged = text;
        damaged[at] = '\xC3';
        damaged[at + 1 < damaged.size() ? at + 1 : at] = at + 1 < damaged.size() ? 'x' : '\xC3';
        EXPECT_EQ(get_file_cp(dir.make_file("f", damaged)), reference_detect(damaged));
    }
}

} // namespace
