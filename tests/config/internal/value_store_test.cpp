// The flat value store against std::map under random puts, removals and copies, with keys
// that arrive in order, out of order, twice, empty, with NULs and longer than a key block.
#include "config/value_store.hpp"

#include <gtest/gtest.h>

#include <map>
#include <random>
#include <string>
#include <vector>

namespace {

using velmor2::_internal::value_store_t;
using reference_t = std::map<std::wstring, int>;

void expect_same(const value_store_t& store, const reference_t& reference) {
    ASSERT_EQ(store.size(), reference.size());
    auto expected = reference.begin();
    store.for_each_in_order([&](std::size_t id) {
        EXPECT_EQ(store.key(id), expected->first);
        EXPECT_EQ(boost::any_cast<int>(store.value(id)), expected->second);
        EXPECT_EQ(store.find(expected->first), id);
        ++expected;
    });
    EXPECT_EQ(store.find(L"absent"), value_store_t::none);
}

std::wstring random_key(std::mt19937& random) {
    static const std::wstring pieces[] = {L"a",       L"b",          L"key10",
                                          L"key9",    L"",           std::wstring(L"n\0l", 3),
                                          L"\u00e9t", L"\U0001F600", std::wstring(9000, L'x')};
    std::wstring key;
    for (int piece = 0, count = 1 + static_cast<int>(random() % 3); piece < count; ++piece) {
        key += (piece > 0 ? L"." : L"") + pieces[random() % std::size(pieces)];
    }
    return key;
}

TEST(value_store, follows_a_map_through_puts_removals_and_copies) {
    std::mt19937 random(20261123);
    for (int round = 0; round < 30; ++round) {
        SCOPED_TRACE(round);
        value_store_t store;
        reference_t reference;
        // Rounds start with keys in ascending order, so that the unindexed search and the
        // switch to the index are both taken.
        for (int n = 0; n < 3000 && round % 2 == 0; ++n) {
            const std::wstring key = L"k" + std::to_wstring(100000 + n);
            boost::any previous;
            store.put(key, boost::any(n), previous);
            reference[key] = n;
        }
        for (int step = 0; step < 400; ++step) {
            const std::wstring key = random_key(random);
            const int value = static_cast<int>(random() % 1000);
            switch (random() % 8) {
            case 0:
                store.index();
                break;
            case 1: {
                std::vector<std::size_t> ids;
                for (auto kept = reference.begin(); kept != reference.end();) {
                    if (random() % 4 == 0) {
                        ids.push_back(store.find(kept->first));
                        kept = reference.erase(kept);
                    } else {
                        ++kept;
                    }
                }
                store.remove(ids);
                break;
            }
            case 2: {
                const value_store_t copy(store);
                store = copy;
                break;
            }
            default: {
                boost::any previous;
                const auto found = reference.find(key);
                const std::size_t id = store.put(key, boost::any(value), previous);
                EXPECT_EQ(store.key(id), key);
                EXPECT_EQ(previous.empty(), found == reference.end());
                if (found != reference.end()) {
                    EXPECT_EQ(boost::any_cast<int>(previous), found->second);
                }
                reference[key] = value;
            }
            }
        }
        expect_same(store, reference);
    }
}

TEST(value_store, a_log_keeps_each_key_as_often_as_it_came_and_knows_whether_it_ascends) {
    const struct {
        std::vector<std::wstring> keys;
        bool ascending;
    } cases[] = {
        {{}, true},
        {{L"a", L"b", L"c"}, true},
        {{L"a", L"a"}, false},
        {{L"key9", L"key10"}, false},
        {{L"", L"a", std::wstring(9000, L'z')}, true},
    };
    for (const auto& [keys, ascending] : cases) {
        value_store_t log;
        for (std::size_t at = 0; at < keys.size(); ++at) {
            log.append(keys[at], boost::any(static_cast<int>(at)));
        }
        EXPECT_EQ(log.ascending(), ascending);
        ASSERT_EQ(log.size(), keys.size());
        for (std::size_t at = 0; at < keys.size(); ++at) {
            EXPECT_EQ(log.key(at), keys[at]);
            EXPECT_NE(log.find(keys[at]), value_store_t::none);
        }
    }
}

} // namespace
