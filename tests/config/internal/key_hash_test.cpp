// The key-form test that runs on several units at once against one that looks at each unit.
#include "config/key_hash.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

namespace {

bool key_form_unit_by_unit(const std::wstring& name) {
    for (const wchar_t c : name) {
        const auto code = static_cast<std::uint32_t>(c);
        if (code >= 0x80 || (c >= L'A' && c <= L'Z')) {
            return false;
        }
    }
    return true;
}

TEST(key_hash, key_form_of_every_unit_at_every_place_of_a_word) {
    // Units around the ASCII edges and capitals, and ones whose low byte looks like them.
    std::wstring units;
    for (std::uint32_t code = 0; code < 0x200; ++code) {
        units += static_cast<wchar_t>(code);
    }
    for (const std::uint32_t code : {0x141u, 0x15Au, 0x4100u, 0xFF41u, 0xFFFFu}) {
        units += static_cast<wchar_t>(code);
    }
    for (const wchar_t unit : units) {
        for (std::size_t length = 1; length <= 9; ++length) {
            for (std::size_t at = 0; at < length; ++at) {
                std::wstring name(length, L'k');
                name[at] = unit;
                const bool expected = key_form_unit_by_unit(name);
                ASSERT_EQ(velmor2::_internal::is_key_form(name), expected)
                    << static_cast<std::uint32_t>(unit) << " at " << at << " of " << length;
                ASSERT_EQ(velmor2::_internal::hash_key(name).key_form, expected);
            }
        }
    }
}

TEST(key_hash, equal_text_hashes_alike_and_trailing_nul_units_count) {
    const std::wstring name = L"group1.sub2.key3";
    EXPECT_EQ(velmor2::_internal::hash_key(name).hash,
              velmor2::_internal::hash_key(std::wstring(name)).hash);
    EXPECT_NE(velmor2::_internal::hash_key(L"a").hash,
              velmor2::_internal::hash_key(std::wstring(L"a\0", 2)).hash);
    EXPECT_TRUE(velmor2::_internal::hash_key(L"").key_form);
}

} // namespace
