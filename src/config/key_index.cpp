// A flat hash table: one array of slots, so that a look-up touches one slot and then the
// entry, and a store of many keys costs no allocation per key. Figures: docs/performance.md,
// "Configuration store".
#include "config/key_index.hpp"
#include "config/prefetch.hpp"
#include "unicode/convert.hpp"

#include <algorithm>
#include <cstdint>
#include <functional>

namespace velmor2::_internal::key_index {
namespace {

constexpr std::size_t min_slots = 16;

void place(index_t& index, const slot_t& slot) {
    const std::size_t mask = index.size() - 1;
    std::size_t at = std::get<0>(slot) & mask;
    while (std::get<2>(index[at]) != nullptr) {
        at = (at + 1) & mask;
    }
    index[at] = slot;
}

// Rebuilds `index` with room for `count` entries at most half full.
void resize(index_t& index, std::size_t count) {
    std::size_t slots = min_slots;
    while (slots < 2 * count) {
        slots *= 2;
    }
    index_t resized(slots, slot_t{0, {}, nullptr});
    for (const slot_t& slot : index) {
        if (std::get<2>(slot) != nullptr) {
            place(resized, slot);
        }
    }
    index.swap(resized);
}

} // namespace

bool is_key_form(std::wstring_view name) {
    return std::all_of(name.begin(), name.end(), [](wchar_t c) {
        return static_cast<std::uint32_t>(c) < 0x80 && !(c >= L'A' && c <= L'Z');
    });
}

std::wstring key_of_name(std::wstring name) {
    return is_key_form(name) ? name : _internal::tolower(name);
}

std::size_t hash_of(std::wstring_view key) {
    return std::hash<std::wstring_view>()(key);
}

entry_t* find(const index_t& index, std::wstring_view key, std::size_t hash) {
    if (index.empty()) {
        return nullptr;
    }
    const std::size_t mask = index.size() - 1;
    for (std::size_t at = hash & mask;; at = (at + 1) & mask) {
        const auto& [slot_hash, slot_key, entry] = index[at];
        if (entry == nullptr) {
            return nullptr;
        }
        if (slot_hash == hash) {
            // The caller reads the entry next: fetch it while the keys are compared.
            _internal::prefetch_entry(entry);
            if (slot_key == key) {
                return entry;
            }
        }
    }
}

void reserve(index_t& index, std::size_t count, std::size_t more) {
    if (2 * (count + more) > index.size()) {
        resize(index, count + more);
    }
}

void add(index_t& index, std::size_t count, std::size_t hash, entry_t* entry) {
    reserve(index, count, 1);
    place(index, slot_t{hash, entry->first, entry});
}

index_t build(std::map<std::wstring, boost::any>& values) {
    index_t index;
    resize(index, values.size());
    for (entry_t& entry : values) {
        place(index, slot_t{hash_of(entry.first), entry.first, &entry});
    }
    return index;
}

std::vector<const entry_t*> in_key_order(const std::map<std::wstring, boost::any>& values,
                                         const index_t& index) {
    // Walking the tree one entry after the other waits for each node in turn when the nodes
    // lie scattered (a store filled in another order than its keys'). So the walk is split
    // at keys taken from the index, where they lie in no particular order, and the pieces are
    // walked side by side: their steps do not depend on each other, and the processor fetches
    // their nodes at the same time.
    constexpr std::size_t pieces = 64;
    std::vector<const entry_t*> splits;
    if (values.size() >= 16 * pieces) {
        for (std::size_t at = 0; at < index.size(); at += index.size() / pieces) {
            if (const entry_t* entry = std::get<2>(index[at])) {
                splits.push_back(entry);
            }
        }
        std::sort(splits.begin(), splits.end(),
                  [](const entry_t* a, const entry_t* b) { return a->first < b->first; });
    }
    using iterator_t = std::map<std::wstring, boost::any>::const_iterator;
    struct walk_t {
        iterator_t next;
        iterator_t end;
        std::vector<const entry_t*> entries;
    };
    std::vector<walk_t> walks;
    iterator_t begin = values.begin();
    for (const entry_t* split : splits) {
        const iterator_t end = values.find(split->first);
        walks.push_back({begin, end, {}});
        begin = end;
    }
    walks.push_back({begin, values.end(), {}});
    for (walk_t& walk : walks) {
        walk.entries.reserve(2 * values.size() / walks.size());
    }
    for (bool busy = true; busy;) {
        busy = false;
        for (walk_t& walk : walks) {
            if (walk.next != walk.end) {
                walk.entries.push_back(&*walk.next);
                ++walk.next;
                busy = true;
            }
        }
    }
    std::vector<const entry_t*> ordered;
    ordered.reserve(values.size());
    for (const walk_t& walk : walks) {
        ordered.insert(ordered.end(), walk.entries.begin(), walk.entries.end());
    }
    return ordered;
}

} // namespace velmor2::_internal::key_index
