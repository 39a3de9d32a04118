// The hand-written parser against the combinator reference, on texts built to hit every corner.
#include "path/internal/differential.hpp"

#include <gtest/gtest.h>

#include <random>
#include <vector>

namespace {

using velmor2::test::c_locale_guard_t;
using velmor2::test::differential_t;

// Pieces that each exercise a rule: separators, the invalid characters, wildcards, quotes,
// blanks, dots, drive-letter material, non-ASCII letters and the long-path prefix.
const std::vector<std::wstring> trouble_pieces = {
    L"\\", L"/",  L":",  L".", L"..",     L"*",      L"?",      L"|",       L"<",
    L">",  L"\"", L"'",  L" ", L"\t",     L"a",      L"C",      L"z",       L"0",
    L"9",  L"x",  L"\\", L"/", L"\u00e9", L"\u4e2d", L"\u00c9", L"\\\\?\\", L"c:",
};

// Single characters for the exhaustive short texts.
const std::wstring short_alphabet = L"\\/:.*?|\"' \tC\u00e9";

class path_differential : public testing::TestWithParam<bool> {
  protected:
    // Counts a difference and reports the first few in full.
    void check(differential_t& differential, const std::wstring& text) {
        const std::string difference = differential.difference(text);
        if (!difference.empty() && ++failures_ <= 20) {
            ADD_FAILURE() << difference;
        }
    }

    // Every text of up to four characters over the alphabet that starts with `text`.
    void every_text_from(differential_t& differential, std::wstring& text) {
        check(differential, text);
        if (text.size() < 4) {
            for (const wchar_t c : short_alphabet) {
                text.push_back(c);
                every_text_from(differential, text);
                text.pop_back();
            }
        }
    }

    void TearDown() override { EXPECT_EQ(failures_, 0); }

    c_locale_guard_t locale_;
    int failures_ = 0;
};

TEST_P(path_differential, every_short_text) {
    differential_t differential(GetParam());
    std::wstring text;
    every_text_from(differential, text);
}

TEST_P(path_differential, generated_texts) {
    differential_t differential(GetParam());
    // The engine's sequence is fixed by the standard: every platform sees the same texts.
    std::mt19937 prng;
    std::wstring text;
    for (int n = 0; n < 200000; ++n) {
        text.clear();
        for (auto pieces = prng() % 13; pieces > 0; --pieces) {
            text += trouble_pieces[prng() % trouble_pieces.size()];
        }
        check(differential, text);
    }
}

INSTANTIATE_TEST_SUITE_P(wildcards, path_differential, testing::Values(false, true),
                         [](const testing::TestParamInfo<bool>& info) {
                             return info.param ? "forbidden" : "permitted";
                         });

} // namespace
