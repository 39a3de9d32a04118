// The store's key look-up and its save order with many keys: copies, assignment and loads
// must keep finding every key (in any letter case), and a save must list the keys in order
// however the store was filled.
#include <velmor2/configuration.hpp>

#include "support/temp_tree.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cwctype>
#include <numeric>
#include <random>
#include <sstream>
#include <string>
#include <vector>

namespace {

using velmor2::advanced_xml_config_t;

// Enough keys to grow the index many times over and to make save split its walk.
constexpr int key_count = 5000;

// "Grp3.Item00042": few groups, and numbers padded so that text order is number order.
std::wstring key_name(int number) {
    std::wostringstream name;
    name << L"Grp" << number % 7 << L".Item";
    name.width(5);
    name.fill(L'0');
    name << number;
    return name.str();
}

std::wstring recase(std::wstring text, std::wint_t (*change)(std::wint_t)) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [&](wchar_t c) { return static_cast<wchar_t>(change(c)); });
    return text;
}

// Every key number, ascending for seed 0, else shuffled.
std::vector<int> numbers(unsigned seed) {
    std::vector<int> numbers(key_count);
    std::iota(numbers.begin(), numbers.end(), 0);
    if (seed != 0) {
        std::shuffle(numbers.begin(), numbers.end(), std::mt19937(seed));
    }
    return numbers;
}

std::wstring text_of(int number) {
    return L"text " + std::to_wstring(number);
}

// Even numbers hold ints, odd ones strings.
void fill(advanced_xml_config_t& store, unsigned seed) {
    for (const int number : numbers(seed)) {
        if (number % 2 == 0) {
            store.set_value(key_name(number), number);
        } else {
            store.set_value(key_name(number), text_of(number));
        }
    }
}

bool holds(const boost::any& value, int number) {
    if (number % 2 == 0) {
        const int* held = boost::any_cast<int>(&value);
        return held != nullptr && *held == number;
    }
    const std::wstring* held = boost::any_cast<std::wstring>(&value);
    return held != nullptr && *held == text_of(number);
}

std::size_t name_count(const advanced_xml_config_t& store) {
    std::vector<std::wstring> names;
    store.get_names(names);
    return names.size();
}

// Every key is found as written, lower- and upper-cased, with the value `fill` gave it.
void expect_every_key(advanced_xml_config_t& store, const char* what) {
    SCOPED_TRACE(what);
    int wrong = 0;
    for (int number = 0; number < key_count; ++number) {
        const std::wstring name = key_name(number);
        for (const std::wstring& spelling :
             {name, recase(name, std::towlower), recase(name, std::towupper)}) {
            if (!holds(store.get_value(spelling, boost::any()), number) ||
                !store.has_value(spelling)) {
                ++wrong;
            }
        }
    }
    EXPECT_EQ(wrong, 0);
    EXPECT_EQ(name_count(store), static_cast<std::size_t>(key_count));
    EXPECT_FALSE(store.has_value(L"grp0.item"));
    EXPECT_FALSE(store.has_value(key_name(key_count)));
    EXPECT_TRUE(store.get_value(L"grp0.item00000.x", boost::any()).empty());
}

TEST(config_store_index, copies_assignments_and_loads_keep_finding_keys) {
    velmor_test::temp_tree_t dir;
    auto* original = new advanced_xml_config_t;
    fill(*original, 2);
    expect_every_key(*original, "filled");
    // Setting again, in another case, replaces the value in place.
    original->set_value(recase(key_name(42), std::towupper), 7);
    EXPECT_EQ(boost::any_cast<int>(original->get_value(key_name(42), boost::any())), 7);
    EXPECT_EQ(name_count(*original), static_cast<std::size_t>(key_count));
    original->set_value(key_name(42), 42);

    advanced_xml_config_t copy(*original);
    advanced_xml_config_t assigned;
    assigned.set_value(L"only.here", 1);
    assigned = *original;
    advanced_xml_config_t& same = assigned;
    assigned = same;
    ASSERT_TRUE(original->save(dir.path("all.xml")));
    // The copies must not lean on the original's entries.
    delete original;

    expect_every_key(copy, "copy");
    expect_every_key(assigned, "assigned");
    EXPECT_FALSE(assigned.has_value(L"only.here"));

    // Loading over a store drops its keys and indexes the file's.
    advanced_xml_config_t loaded;
    loaded.set_value(L"stale.key", 1);
    loaded.set_value(key_name(3), 3);
    ASSERT_TRUE(loaded.load(dir.path("all.xml")));
    expect_every_key(loaded, "loaded");
    EXPECT_FALSE(loaded.has_value(L"stale.key"));
    ASSERT_TRUE(loaded.load(dir.path("all.xml")));
    expect_every_key(loaded, "loaded twice");

    // Assigning a smaller store over a large one leaves only its keys.
    advanced_xml_config_t small;
    small.set_value(L"a.b", 1);
    loaded = small;
    EXPECT_EQ(name_count(loaded), 1u);
    EXPECT_FALSE(loaded.has_value(key_name(0)));
    loaded.set_value(key_name(0), 0);
    EXPECT_TRUE(loaded.has_value(recase(key_name(0), std::towlower)));
}

TEST(config_store_index, save_lists_many_keys_in_key_order_whatever_the_filling_order) {
    velmor_test::temp_tree_t dir;
    advanced_xml_config_t in_order;
    fill(in_order, 0);
    ASSERT_TRUE(in_order.save(dir.path("ordered.xml")));
    const std::string expected = dir.read("ordered.xml");

    // The items of each group appear in ascending order, each once.
    std::istringstream lines(expected);
    std::vector<int> last(7, -1);
    int seen = 0;
    for (std::string line; std::getline(lines, line);) {
        const std::size_t at = line.find("<item");
        if (at == std::string::npos) {
            continue;
        }
        const int number = std::stoi(line.substr(at + 5, 5));
        EXPECT_GT(number, last[static_cast<std::size_t>(number % 7)]) << line;
        last[static_cast<std::size_t>(number % 7)] = number;
        ++seen;
    }
    EXPECT_EQ(seen, key_count);

    for (const unsigned seed : {3u, 4u, 5u}) {
        SCOPED_TRACE(seed);
        advanced_xml_config_t shuffled;
        fill(shuffled, seed);
        ASSERT_TRUE(shuffled.save(dir.path("shuffled.xml")));
        EXPECT_TRUE(dir.read("shuffled.xml") == expected);
        const advanced_xml_config_t copy(shuffled);
        advanced_xml_config_t copied = copy;
        ASSERT_TRUE(copied.save(dir.path("copied.xml")));
        EXPECT_TRUE(dir.read("copied.xml") == expected);
    }
}

} // namespace
